#include "DirectUsbRequests.h"

#include "OpenResult.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace {

constexpr unsigned kTimeOut = 5000; // milliseconds, the kernel's own; 0 would wait for ever

} // namespace

UsbYield<RequestWay> DirectUsbRequests::open(const std::string& node) {
    OpenFile file(::open(node.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file)
        return {resultOfOpen(errno), nullptr};
    // libusb gets this one device, and must not look at others: version 1.0.26 never comes to an end with the
    // descriptors of one that means no good, now or when it is plugged in later.
    (void)libusb_set_option(nullptr, LIBUSB_OPTION_NO_DEVICE_DISCOVERY);
    libusb_context* made = nullptr;
    if (const UsbResult result = libusb_init(&made); result != UsbCode::Success)
        return {result, nullptr};
    LibusbContext context(made);
    libusb_device_handle* handle = nullptr;
    const UsbResult result = libusb_wrap_sys_device(made, file.get(), &handle);
    if (result != UsbCode::Success)
        return {result, nullptr};
    return {UsbCode::Success,
            std::make_unique<DirectUsbRequests>(std::move(file), std::move(context), LibusbHandle(handle))};
}

UsbResult DirectUsbRequests::carry(UsbControlRequest& request, std::span<std::uint8_t> bytes) {
    // usbfs checks the interface that wIndex names, and would claim it by itself and keep it.
    const int named = request.wIndex & 0xFF;
    if (const UsbResult claimed = libusb_claim_interface(m_handle.get(), named); claimed != UsbCode::Success)
        return claimed;
    const int done = libusb_control_transfer(m_handle.get(), request.bmRequestType, request.bRequest,
                                             request.wValue, request.wIndex, bytes.data(),
                                             static_cast<std::uint16_t>(bytes.size()), kTimeOut);
    (void)libusb_release_interface(m_handle.get(), named); // fails only when the device is gone
    if (done < 0)
        return done;
    request.wLenDone = static_cast<std::uint32_t>(done);
    return request.wLenDone == bytes.size() ? UsbCode::Success : UsbCode::InputOutput;
}
