#include "ControlTransport.h"

#include <linux/uvcvideo.h>
#include <sys/ioctl.h>

namespace {

/// Whether the driver would send the packet byte for byte. It takes the direction from bit 7 of bRequest, and inserts
/// the interface's real number, which `LinuxUsbInterface` has found to be 0.
bool sendsExactly(const UsbControlRequest& request) {
    const int direction = request.bRequest & kUsbDeviceToHost;
    return request.bmRequestType == (Uvc::kSetToInterface | direction) && Uvc::interfaceOf(request) == 0
        && Uvc::valueLowOf(request) == 0;
}

} // namespace

int transferThroughDriver(int node, const UsbControlRequest& request) {
    if (!sendsExactly(request)) return UsbCode::NotSendable;
    uvc_xu_control_query query{.unit = Uvc::unitOf(request),
        .selector = Uvc::selectorOf(request),
        .query = request.bRequest,
        .size = request.wLength,
        .data = request.pData};
    const int done = ::ioctl(node, UVCIOC_CTRL_QUERY, &query);
    if (done < 0) return UsbCode::InputOutput;
    return done > 0 ? done : request.wLength; // the length of a short answer, before Linux 6.12
}
