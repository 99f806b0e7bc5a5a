#pragma once

#include "PluggedDevice.h"
#include "RequestWay.h"

/// One interface of a device of this computer. The way to it is chosen by the first request, and again by
/// the first one after a close: through the kernel's driver where that holds the interface and sends exactly
/// our packet, directly where none holds it. The driver is never detached: that would end a recording.
class LinuxUsbInterface : public UsbInterface {
public:
    LinuxUsbInterface(PluggedDevice device, std::uint8_t number)
        : m_device(std::move(device)), m_number(number) {}

    UsbResult GetInterfaceNumber(std::uint8_t& number) override;
    UsbResult ControlRequest(std::uint8_t pipe, UsbControlRequest& request) override;
    UsbResult USBInterfaceClose() override;

private:
    [[nodiscard]] UsbYield<RequestWay> chooseWay() const;

    PluggedDevice m_device;
    std::uint8_t m_number;
    std::unique_ptr<RequestWay> m_way;
    UsbResult m_notOpen = UsbCode::NotFound; ///< why there is no way
};
