#pragma once

#include "usb/Usb.h"

#include <libusb.h>

#include <memory>

/// The computer's USB devices as libusb lists them. Shared by all objects of one look at the bus; the next
/// look makes its own, so that it sees what is plugged in then, also where no udev daemon runs.
using LibusbContext = std::shared_ptr<libusb_context>;
using LibusbDevice = std::shared_ptr<libusb_device>;

/// One interface of a device, reached through usbfs. The device is opened by the first request and the
/// interface is claimed for the length of a request only: nothing stays claimed between two of them, so
/// that other programs can work and a driver that is loaded later can bind.
class LinuxUsbInterface : public UsbInterface {
public:
    LinuxUsbInterface(LibusbContext context, LibusbDevice device, std::uint8_t number)
        : m_context(std::move(context)), m_device(std::move(device)), m_number(number) {}

    UsbResult GetInterfaceNumber(std::uint8_t& number) override;
    UsbResult ControlRequest(std::uint8_t pipe, UsbControlRequest& request) override;
    UsbResult USBInterfaceClose() override;

private:
    struct CloseHandle {
        void operator()(libusb_device_handle* handle) const { libusb_close(handle); }
    };

    [[nodiscard]] UsbResult open();
    [[nodiscard]] UsbResult transfer(UsbControlRequest& request);

    LibusbContext m_context; ///< outlives the handle
    LibusbDevice m_device;
    std::uint8_t m_number;
    std::unique_ptr<libusb_device_handle, CloseHandle> m_handle;
    UsbResult m_notOpen = UsbCode::NotFound; ///< why there is no handle
};
