#include "DirectUsbRequests.h"

#include <utility>

namespace {

constexpr unsigned kTimeOut = 5000; // milliseconds, the kernel's own; 0 would wait for ever

} // namespace

UsbYield<RequestWay> DirectUsbRequests::open(const LibusbDevice& device) {
    libusb_device_handle* handle = nullptr;
    if (const UsbResult result = libusb_open(device.get(), &handle); result != UsbCode::Success)
        return {result, nullptr};
    return {UsbCode::Success, std::make_unique<DirectUsbRequests>(LibusbHandle(handle))};
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
