#include "ControlTransport.h"
#include "Release.h"

#include <libusb.h>

#include <memory>

static_assert(UsbCode::Success == LIBUSB_SUCCESS && UsbCode::InputOutput == LIBUSB_ERROR_IO
    && UsbCode::Access == LIBUSB_ERROR_ACCESS && UsbCode::NoDevice == LIBUSB_ERROR_NO_DEVICE
    && UsbCode::NotFound == LIBUSB_ERROR_NOT_FOUND && UsbCode::Busy == LIBUSB_ERROR_BUSY
    && UsbCode::TimeOut == LIBUSB_ERROR_TIMEOUT && UsbCode::Stall == LIBUSB_ERROR_PIPE
    && UsbCode::NotSupported == LIBUSB_ERROR_NOT_SUPPORTED && UsbCode::NotSendable < LIBUSB_ERROR_OTHER);

namespace {

using Context = std::unique_ptr<libusb_context, Release<libusb_exit>>;
using Handle = std::unique_ptr<libusb_device_handle, Release<libusb_close>>;

constexpr unsigned kTimeout = 5000; // milliseconds, as in the kernel; 0 would disable it

/// Created once, as that costs many times as much as a request. It opens no device.
UsbResult openLibusb(libusb_context*& opened) {
    static Context context;
    if (!context) {
        // libusb must not parse other devices: version 1.0.26 can loop forever on malicious descriptors, also on those
        // of a device that is plugged in later.
        (void)libusb_set_option(nullptr, LIBUSB_OPTION_NO_DEVICE_DISCOVERY);
        libusb_context* made = nullptr;
        if (const UsbResult result = libusb_init(&made); result != UsbCode::Success) return result;
        context.reset(made);
    }
    opened = context.get();
    return UsbCode::Success;
}

int transfer(libusb_device_handle* device, const UsbControlRequest& request) {
    // Without a claim usbfs claims the interface itself, logs that, and does not release it before the close.
    const int named = Uvc::interfaceOf(request);
    if (const int claimed = libusb_claim_interface(device, named); claimed != UsbCode::Success) return claimed;
    const int done = libusb_control_transfer(device, request.bmRequestType, request.bRequest, request.wValue,
        request.wIndex, request.pData, request.wLength, kTimeout);
    (void)libusb_release_interface(device, named); // fails only if the device was unplugged
    return done;
}

} // namespace

int transferDirectly(int node, const UsbControlRequest& request) {
    libusb_context* context = nullptr;
    if (const int result = openLibusb(context); result != UsbCode::Success) return result;
    libusb_device_handle* opened = nullptr;
    if (const int result = libusb_wrap_sys_device(context, node, &opened); result != UsbCode::Success) return result;
    const Handle handle(opened);
    return transfer(opened, request);
}
