#include "VirtualCaptureDevice.h"

#include <algorithm>
#include <cerrno>

struct VirtualCaptureDevice::Setup {
    explicit Setup(const std::array<std::uint8_t, 8>& bytes)
        : requestType(bytes[0]),
          request(bytes[1]),
          value(word(bytes[2], bytes[3])),
          index(word(bytes[4], bytes[5])),
          length(word(bytes[6], bytes[7])) {}

    static std::uint16_t word(std::uint8_t low, std::uint8_t high) {
        return static_cast<std::uint16_t>(low | high << 8);
    }
    [[nodiscard]] bool toHost() const { return (requestType & kUsbDeviceToHost) != 0; }
    [[nodiscard]] std::uint8_t valueHigh() const { return static_cast<std::uint8_t>(value >> 8); }
    [[nodiscard]] std::uint8_t valueLow() const { return static_cast<std::uint8_t>(value); }

    std::uint8_t requestType;
    std::uint8_t request;
    std::uint16_t value;
    std::uint16_t index;
    std::uint16_t length;
};

namespace {

using UsbIp::TransferEnd;

// USB 2.0, 9.4
constexpr std::uint8_t kTypeBits = 0x60;
constexpr std::uint8_t kStandardType = 0x00;
constexpr std::uint8_t kClassToInterface = 0x21;
enum StandardRequest : std::uint8_t {
    GetStatus = 0,
    ClearFeature = 1,
    SetFeature = 3,
    GetDescriptor = 6,
    GetConfiguration = 8,
    SetConfiguration = 9,
    GetInterface = 10,
    SetInterface = 11,
};

// UVC 1.5, 4.3.1.1; 34 bytes up to UVC 1.1
enum StreamSelector : std::uint8_t { Probe = 1, Commit = 2 };
enum StreamRequest : std::uint8_t {
    SetCur = 0x01,
    GetCur = 0x81,
    GetMin = 0x82,
    GetMax = 0x83,
    GetLen = 0x85,
    GetInfo = 0x86,
    GetDef = 0x87,
};
constexpr std::uint32_t kParametersLength = 34;
constexpr std::size_t kIntervalPlace = 4;

TransferEnd stalled() {
    return {.status = -EPIPE, .length = 0, .data = {}};
}

TransferEnd done() {
    return {};
}

TransferEnd answered(Bytes bytes, std::uint16_t room) {
    if (bytes.size() > room)
        bytes.resize(room);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    return {.status = 0, .length = length, .data = std::move(bytes)};
}

} // namespace

void VirtualCaptureDevice::reset(CaptureFrames::Clock::time_point now) {
    m_frameInterval = kFrameIntervals[0];
    m_frames.start(m_frameInterval, now);
}

std::optional<TransferEnd> VirtualCaptureDevice::control(const UsbIp::Submit& submit,
                                                         CaptureFrames::Clock::time_point now) {
    const Setup setup(submit.setup);
    // The client must not make one side believe in more bytes than the other has.
    if (submit.toHost != setup.toHost() && setup.length > 0)
        return stalled();
    if (setup.toHost() ? submit.length < setup.length : submit.data.size() != setup.length)
        return stalled();
    if ((setup.requestType & kTypeBits) == kStandardType)
        return standardRequest(setup);
    if ((setup.requestType & ~kUsbDeviceToHost) == kClassToInterface
        && (setup.index & 0xFF) == identity().streamingInterface())
        return streamRequest(setup, submit.data, now);
    return unitRequest(setup, submit.data);
}

std::optional<TransferEnd> VirtualCaptureDevice::unitRequest(const Setup& setup, const Bytes& data) {
    Bytes bytes = data;
    bytes.resize(setup.length);
    UsbControlRequest request{.bmRequestType = setup.requestType,
                              .bRequest = setup.request,
                              .wValue = setup.value,
                              .wIndex = setup.index,
                              .wLength = setup.length,
                              .pData = bytes.data(),
                              .wLenDone = 0};
    const UsbResult result = m_device.control(request);
    m_device.requests.clear(); // it keeps them all, and this may run for weeks
    if (result == UsbCode::TimeOut || result == UsbCode::NoDevice)
        return std::nullopt;
    if (result == UsbCode::Stall)
        return stalled();
    bytes.resize(setup.toHost() ? std::min<std::size_t>(request.wLenDone, setup.length) : 0);
    return TransferEnd{.status = 0, .length = request.wLenDone, .data = std::move(bytes)};
}

TransferEnd VirtualCaptureDevice::standardRequest(const Setup& setup) const {
    switch (setup.request) {
    case GetDescriptor:
        return setup.toHost() ? descriptor(setup) : stalled();
    case GetStatus:
        return setup.toHost() ? answered({0, 0}, setup.length) : stalled();
    case GetConfiguration:
        return setup.toHost() ? answered({kConfigurationValue}, setup.length) : stalled();
    case GetInterface:
        return setup.toHost() ? answered({0}, setup.length) : stalled();
    case SetConfiguration:
    case SetInterface:
    case SetFeature:
    case ClearFeature:
        return setup.toHost() || setup.length > 0 ? stalled() : done();
    default:
        return stalled();
    }
}

TransferEnd VirtualCaptureDevice::descriptor(const Setup& setup) const {
    enum Type : std::uint8_t { Device = 1, Configuration = 2, String = 3, Qualifier = 6 };
    Bytes bytes;
    switch (setup.valueHigh()) {
    case Device:
        bytes = deviceDescriptor(identity());
        break;
    case Configuration:
        if (setup.valueLow() == 0)
            bytes = configurationDescriptor(identity());
        break;
    case String:
        bytes = stringDescriptor(setup.valueLow());
        break;
    case Qualifier:
        bytes = deviceQualifier();
        break;
    default:
        break;
    }
    return bytes.empty() ? stalled() : answered(std::move(bytes), setup.length);
}

TransferEnd VirtualCaptureDevice::streamRequest(const Setup& setup, const Bytes& data,
                                                CaptureFrames::Clock::time_point now) {
    const bool known = setup.valueHigh() == Probe || setup.valueHigh() == Commit;
    if (!known || setup.valueLow() != 0 || setup.index > 0xFF || setup.toHost() == (setup.request == SetCur))
        return stalled();
    switch (setup.request) {
    case SetCur:
        if (data.size() < kIntervalPlace + sizeof m_frameInterval)
            return stalled();
        m_frameInterval =
            data[kIntervalPlace] == (kFrameIntervals[1] & 0xFF) ? kFrameIntervals[1] : kFrameIntervals[0];
        if (setup.valueHigh() == Commit)
            m_frames.start(m_frameInterval, now);
        return {.status = 0, .length = setup.length, .data = {}};
    case GetCur:
    case GetMin:
    case GetMax:
    case GetDef:
        return answered(streamParameters(), setup.length);
    case GetLen:
        return answered({kParametersLength, 0}, setup.length);
    case GetInfo:
        return answered({3}, setup.length);
    default:
        return stalled();
    }
}

Bytes VirtualCaptureDevice::streamParameters() const {
    Bytes bytes{0, 0, 1, 1}; // no hint, first format, first frame size
    appendLittleEndian(bytes, m_frameInterval, 4);
    bytes.resize(18);
    appendLittleEndian(bytes, kFrameSize, 4);
    appendLittleEndian(bytes, kMaxPayload, 4);
    appendLittleEndian(bytes, 48'000'000, 4); // Hz, the clock of the VideoControl header
    bytes.resize(kParametersLength);
    return bytes;
}
