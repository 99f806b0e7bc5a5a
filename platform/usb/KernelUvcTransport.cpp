#include "KernelUvcTransport.h"

#include <cerrno>

#include <linux/uvcvideo.h>
#include <sys/ioctl.h>

namespace {

constexpr std::uint8_t kClassRequestToInterface = 0x21; // and 0xA1 with the direction bit
constexpr std::uint16_t kInterface = 0;                 // the only one for which the driver's wIndex is ours

UsbResult resultOfQuery(int error) {
    switch (error) {
    case ENODEV:
    case ESHUTDOWN:
        return UsbCode::NoDevice;
    case ETIMEDOUT:
        return UsbCode::TimeOut;
    // No such extension unit or selector, another length, not settable: nothing of ours was sent.
    case ENOENT:
    case ENOBUFS:
    case EBADRQC:
    case ENOTTY:
        return UsbCode::NotSendable;
    // The driver turns a stall into the reason that the device gives for it. EACCES among them is a device in
    // the wrong state, not a user without rights.
    case EPIPE:
    case EBUSY:
    case EILSEQ:
    case EACCES:
    case EREMOTE:
    case ERANGE:
    case EINVAL:
        return UsbCode::Stall;
    default:
        return UsbCode::InputOutput;
    }
}

/// Whether the driver would send the packet byte for byte.
bool sendsExactly(const UsbControlRequest& request) {
    return (request.bmRequestType & ~kUsbDeviceToHost) == kClassRequestToInterface
           && (request.wIndex & 0xFF) == kInterface && (request.wValue & 0xFF) == 0;
}

} // namespace

UsbResult transferThroughDriver(int node, UsbControlRequest& request, std::span<std::uint8_t> bytes) {
    if (!sendsExactly(request))
        return UsbCode::NotSendable;
    uvc_xu_control_query query{.unit = static_cast<std::uint8_t>(request.wIndex >> 8),
                               .selector = static_cast<std::uint8_t>(request.wValue >> 8),
                               .query = request.bRequest,
                               .size = static_cast<std::uint16_t>(bytes.size()),
                               .data = bytes.data()};
    const int done = ::ioctl(node, UVCIOC_CTRL_QUERY, &query);
    if (done < 0)
        return resultOfQuery(errno);
    if (done > 0) { // the driver tells of a short answer by its length
        request.wLenDone = static_cast<std::uint32_t>(done);
        return UsbCode::InputOutput;
    }
    request.wLenDone = request.wLength;
    return UsbCode::Success;
}
