#include "VirtualCaptureDevice.h"

#include <algorithm>
#include <cerrno>

#include <linux/usb/ch9.h>
#include <linux/usb/video.h>

namespace {

using UsbIp::TransferEnd;

// UVC 1.5, 4.3.1.1
constexpr std::uint32_t kParametersLength = 34; // up to UVC 1.1
constexpr std::size_t kIntervalPlace = 4;

TransferEnd stalled() {
    return {.status = -EPIPE, .length = 0, .data = {}};
}

TransferEnd answered(Bytes bytes, std::uint16_t room) {
    if (bytes.size() > room) bytes.resize(room);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    return {.status = 0, .length = length, .data = std::move(bytes)};
}

} // namespace

void VirtualCaptureDevice::reset(CaptureFrames::Clock::time_point now) {
    m_frameInterval = kFrameIntervals[0];
    m_frames.start(m_frameInterval, now);
}

std::optional<TransferEnd> VirtualCaptureDevice::control(
    const UsbIp::Submit& submit, CaptureFrames::Clock::time_point now) {
    const UsbControlRequest setup = Uvc::requestOf(submit.setup, nullptr);
    const bool toHost = Uvc::isGet(setup);
    // The client's lengths must agree with each other.
    if (submit.toHost != toHost && setup.wLength > 0) return stalled();
    if (toHost ? submit.length < setup.wLength : submit.data.size() != setup.wLength) return stalled();
    if ((setup.bmRequestType & USB_TYPE_MASK) == USB_TYPE_STANDARD) return standardRequest(setup);
    if ((setup.bmRequestType & ~kUsbDeviceToHost) == Uvc::kSetToInterface
        && Uvc::interfaceOf(setup) == identity().streamingInterface())
        return streamRequest(setup, submit.data, now);
    return unitRequest(setup, submit.data);
}

std::optional<TransferEnd> VirtualCaptureDevice::unitRequest(const UsbControlRequest& setup, const Bytes& data) {
    Bytes bytes = data;
    bytes.resize(setup.wLength);
    UsbControlRequest request = setup;
    request.pData = bytes.data();
    const UsbResult result = m_device.control(request);
    if (result == UsbCode::TimeOut || result == UsbCode::NoDevice) return std::nullopt;
    if (result == UsbCode::Stall) return stalled();
    bytes.resize(Uvc::isGet(setup) ? std::min<std::size_t>(request.wLenDone, setup.wLength) : 0);
    return TransferEnd{.status = 0, .length = request.wLenDone, .data = std::move(bytes)};
}

TransferEnd VirtualCaptureDevice::standardRequest(const UsbControlRequest& setup) const {
    const bool toHost = Uvc::isGet(setup);
    if (!toHost && setup.wLength > 0) return stalled();
    switch (setup.bRequest) {
    case USB_REQ_GET_DESCRIPTOR: return toHost ? descriptor(setup) : stalled();
    case USB_REQ_GET_STATUS: return toHost ? answered({0, 0}, setup.wLength) : stalled();
    case USB_REQ_GET_CONFIGURATION: return toHost ? answered({kConfigurationValue}, setup.wLength) : stalled();
    case USB_REQ_GET_INTERFACE: return toHost ? answered({0}, setup.wLength) : stalled();
    case USB_REQ_SET_CONFIGURATION:
    case USB_REQ_SET_INTERFACE:
    case USB_REQ_SET_FEATURE:
    case USB_REQ_CLEAR_FEATURE: return toHost ? stalled() : TransferEnd{};
    default: return stalled();
    }
}

TransferEnd VirtualCaptureDevice::descriptor(const UsbControlRequest& setup) const {
    Bytes bytes;
    switch (Uvc::selectorOf(setup)) { // the high byte of wValue is the descriptor's type
    case USB_DT_DEVICE: bytes = deviceDescriptor(identity()); break;
    case USB_DT_CONFIG:
        if (Uvc::valueLowOf(setup) == 0) bytes = configurationDescriptor(identity());
        break;
    case USB_DT_STRING: bytes = stringDescriptor(Uvc::valueLowOf(setup)); break;
    case USB_DT_DEVICE_QUALIFIER: bytes = deviceQualifier(); break;
    default: break;
    }
    return bytes.empty() ? stalled() : answered(std::move(bytes), setup.wLength);
}

TransferEnd VirtualCaptureDevice::streamRequest(
    const UsbControlRequest& setup, const Bytes& data, CaptureFrames::Clock::time_point now) {
    const auto code = static_cast<UVCRequest>(setup.bRequest);
    const std::uint8_t selector = Uvc::selectorOf(setup);
    const bool known = selector == UVC_VS_PROBE_CONTROL || selector == UVC_VS_COMMIT_CONTROL;
    if (!known || Uvc::valueLowOf(setup) != 0 || setup.wIndex > 0xFF
        || Uvc::isGet(setup) == (code == UVCRequest::SET_CUR))
        return stalled();
    switch (code) {
    case UVCRequest::SET_CUR:
        if (data.size() < kIntervalPlace + sizeof m_frameInterval) return stalled();
        m_frameInterval = data[kIntervalPlace] == (kFrameIntervals[1] & 0xFF) ? kFrameIntervals[1] : kFrameIntervals[0];
        if (selector == UVC_VS_COMMIT_CONTROL) m_frames.start(m_frameInterval, now);
        return {.status = 0, .length = setup.wLength, .data = {}};
    case UVCRequest::GET_CUR:
    case UVCRequest::GET_MIN:
    case UVCRequest::GET_MAX:
    case UVCRequest::GET_DEF: return answered(streamParameters(), setup.wLength);
    case UVCRequest::GET_LEN: return answered({kParametersLength, 0}, setup.wLength);
    case UVCRequest::GET_INFO: return answered({3}, setup.wLength);
    default: return stalled();
    }
}

Bytes VirtualCaptureDevice::streamParameters() const {
    Bytes bytes{0, 0, 1, 1}; // no hint, first format, first frame size
    appendLittleEndian(bytes, m_frameInterval, 4);
    bytes.resize(18);
    appendLittleEndian(bytes, kFrameSize, 4);
    appendLittleEndian(bytes, kMaxPayload, 4);
    appendLittleEndian(bytes, kClockFrequency, 4);
    bytes.resize(kParametersLength);
    return bytes;
}
