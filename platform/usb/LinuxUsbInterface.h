#pragma once

#include "ControlTransport.h"
#include "KernelDriver.h"
#include "PluggedDevice.h"

#include <utility>

/// One interface of a device of this computer. The device's node is open for the length of a request only,
/// and after a failed one until the close: what stays open would keep the device from suspending, the driver
/// from being unloaded and the node's name from coming back after a re-plug.
///
/// The transport is selected at each request: through the kernel's driver where that holds the interface and
/// sends exactly our packet, directly where none holds it. The driver is never detached: that would end a
/// recording. After a re-plug every request fails with `NoDevice`, whatever is on the port then.
class LinuxUsbInterface : public UsbInterface {
public:
    /// `path` is the interface's folder in sysfs, `number` the one in its descriptor.
    LinuxUsbInterface(PluggedDevice device, std::string path, std::uint8_t number)
        : m_device(std::move(device)), m_path(std::move(path)), m_number(number) {}

    UsbResult GetInterfaceNumber(std::uint8_t& number) override;
    UsbResult ControlRequest(std::uint8_t pipe, UsbControlRequest& request) override;
    UsbResult USBInterfaceClose() override;

private:
    /// Each leaves its node open if the result is success.
    [[nodiscard]] UsbResult selectTransport();
    [[nodiscard]] UsbResult openCaptureNode();
    [[nodiscard]] UsbResult openUsbNode();

    PluggedDevice m_device;
    std::string m_path;
    std::uint8_t m_number;
    CaptureNode m_captureNode; ///< found by an earlier request
    OpenFile m_node;
    ControlTransport m_transport = nullptr;  ///< for the open node
    UsbResult m_notOpen = UsbCode::NotFound; ///< why no node is open
};
