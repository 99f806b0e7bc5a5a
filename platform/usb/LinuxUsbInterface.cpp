#include "LinuxUsbInterface.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

static_assert(UsbCode::Success == LIBUSB_SUCCESS && UsbCode::InputOutput == LIBUSB_ERROR_IO
              && UsbCode::Access == LIBUSB_ERROR_ACCESS && UsbCode::NoDevice == LIBUSB_ERROR_NO_DEVICE
              && UsbCode::NotFound == LIBUSB_ERROR_NOT_FOUND && UsbCode::Busy == LIBUSB_ERROR_BUSY
              && UsbCode::TimeOut == LIBUSB_ERROR_TIMEOUT && UsbCode::Stall == LIBUSB_ERROR_PIPE
              && UsbCode::NotSupported == LIBUSB_ERROR_NOT_SUPPORTED);

namespace {

constexpr unsigned kTimeOut = 5000; // milliseconds, the kernel's own; 0 would wait for ever

} // namespace

UsbResult LinuxUsbInterface::GetInterfaceNumber(std::uint8_t& number) {
    number = m_number;
    return UsbCode::Success;
}

UsbResult LinuxUsbInterface::open() {
    if (m_handle)
        return UsbCode::Success;
    libusb_device_handle* handle = nullptr;
    m_notOpen = libusb_open(m_device.get(), &handle);
    m_handle.reset(handle);
    return m_notOpen;
}

UsbResult LinuxUsbInterface::ControlRequest(std::uint8_t pipe, UsbControlRequest& request) {
    if (pipe != 0)
        return UsbCode::NotFound; // only the control pipe carries class requests
    if (const UsbResult opened = open(); opened != UsbCode::Success)
        return opened;
    // usbfs checks the interface that wIndex names, and would claim it by itself and keep it.
    const int named = request.wIndex & 0xFF;
    if (const UsbResult claimed = libusb_claim_interface(m_handle.get(), named); claimed != UsbCode::Success)
        return claimed;
    const UsbResult result = transfer(request);
    (void)libusb_release_interface(m_handle.get(), named); // fails only when the device is gone
    return result;
}

UsbResult LinuxUsbInterface::transfer(UsbControlRequest& request) {
    const bool isGet = (request.bmRequestType & kUsbDeviceToHost) != 0;
    const std::span caller(request.pData, request.wLength);
    std::vector<std::uint8_t> bytes(request.wLength);
    if (!isGet)
        std::ranges::copy(caller, bytes.begin());
    const int done =
        libusb_control_transfer(m_handle.get(), request.bmRequestType, request.bRequest, request.wValue,
                                request.wIndex, bytes.data(), request.wLength, kTimeOut);
    if (done < 0)
        return done;
    request.wLenDone = static_cast<std::uint32_t>(done);
    // A block that is half zeros and then written back would wipe settings.
    if (done != request.wLength)
        return UsbCode::InputOutput;
    if (isGet)
        std::ranges::copy(bytes, caller.begin());
    return UsbCode::Success;
}

UsbResult LinuxUsbInterface::USBInterfaceClose() {
    if (!m_handle)
        return m_notOpen;
    m_handle.reset();
    m_notOpen = UsbCode::NotFound;
    return UsbCode::Success;
}
