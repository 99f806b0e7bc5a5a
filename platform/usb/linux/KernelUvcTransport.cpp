#include "ControlTransport.h"
#include "Uvc.h"

#include <linux/uvcvideo.h>
#include <sys/ioctl.h>

namespace {

/// Whether the driver would send the packet byte for byte. It fills in the real number of the interface, which
/// `LinuxUsbInterface` has found to be 0, and takes the direction from bit 7 of the request code.
bool sendsExactly(const UsbControlRequest& request) {
    const int direction = request.bRequest & kUsbDeviceToHost;
    return request.bmRequestType == (Uvc::kSetToInterface | direction) && (request.wIndex & 0xFF) == 0
        && (request.wValue & 0xFF) == 0;
}

} // namespace

UsbResult transferThroughDriver(int node, UsbControlRequest& request, std::span<std::uint8_t> bytes) {
    if (!sendsExactly(request)) return UsbCode::NotSendable;
    uvc_xu_control_query query{.unit = Uvc::unitOf(request),
        .selector = Uvc::selectorOf(request),
        .query = request.bRequest,
        .size = static_cast<std::uint16_t>(bytes.size()),
        .data = bytes.data()};
    const int done = ::ioctl(node, UVCIOC_CTRL_QUERY, &query);
    if (done < 0) return UsbCode::InputOutput;
    // 0 is a whole answer. For a short one the driver returns its length up to Linux 6.11, and 0 since then.
    request.wLenDone = done > 0 ? static_cast<std::uint32_t>(done) : request.wLength;
    return done > 0 ? UsbCode::InputOutput : UsbCode::Success;
}
