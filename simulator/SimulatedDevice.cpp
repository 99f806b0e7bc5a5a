#include "SimulatedDevice.h"

#include "host/Clock.h"

#include <algorithm>
#include <ctime>

namespace {

constexpr std::uint8_t kClassGet = 0xA1;
constexpr std::uint8_t kClassSet = 0x21;
constexpr std::uint8_t kSetCur = 0x01;
constexpr std::uint8_t kGetCur = 0x81;
constexpr std::uint8_t kGetMin = 0x82;
constexpr std::uint8_t kGetMax = 0x83;
constexpr std::uint8_t kGetRes = 0x84;
constexpr std::uint8_t kGetLen = 0x85;
constexpr std::uint8_t kGetInfo = 0x86;
constexpr std::uint8_t kGetDef = 0x87;

constexpr std::uint8_t kReadable = 1; // of an answer to GET_INFO (UVC 1.5, 4.1.2)
constexpr std::uint8_t kReadableAndSettable = 3;
constexpr std::uint8_t kNoError = 0; // of the error code control (UVC 1.5, 4.2.1.2)
constexpr std::uint8_t kInvalidRequest = 7;

constexpr std::uint8_t kInterfaceItself = 0; // stands where a unit would
constexpr std::uint8_t kErrorCodeSelector = 2;
constexpr std::uint8_t kExtensionUnit = 3;
enum Selector : std::uint8_t { Status = 10, Settings = 11, Versions = 12, Audio = 13 };
enum Command : std::uint8_t { SetClock = 2, SetBitRate = 4, SetHdcp = 16 };

constexpr std::size_t kClockBytes = 6;
constexpr std::array<std::uint8_t, kClockBytes> kClockAtPowerOn{0, 1, 1, 0, 0, 0};

std::uint8_t unitOf(const UsbControlRequest& request) {
    return static_cast<std::uint8_t>(request.wIndex >> 8);
}

std::uint8_t selectorOf(const UsbControlRequest& request) {
    return static_cast<std::uint8_t>(request.wValue >> 8);
}

std::array<std::uint8_t, 8> setupPacket(const UsbControlRequest& request) {
    const auto low = [](std::uint16_t word) { return static_cast<std::uint8_t>(word); };
    const auto high = [](std::uint16_t word) { return static_cast<std::uint8_t>(word >> 8); };
    return {request.bmRequestType, request.bRequest,     low(request.wValue),  high(request.wValue),
            low(request.wIndex),   high(request.wIndex), low(request.wLength), high(request.wLength)};
}

std::vector<std::uint8_t> littleEndian(std::uint32_t value, std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
    return bytes;
}

std::uint32_t valueFor(std::uint8_t request, const SimulatedControl& control) {
    switch (request) {
    case kGetMin:
        return control.minimum;
    case kGetMax:
        return control.maximum;
    case kGetRes:
        return control.resolution;
    case kGetDef:
        return control.atPowerOn;
    default:
        return control.current;
    }
}

/// The result that a fault forces on a request, absent if the request still has to be carried.
std::optional<UsbResult> forcedResult(RequestFault fault) {
    switch (fault) {
    case RequestFault::Stall:
        return UsbCode::Stall;
    case RequestFault::TimeOut:
        return UsbCode::TimeOut;
    case RequestFault::Unplug:
        return UsbCode::NoDevice;
    case RequestFault::ShortData:
    case RequestFault::Garbage:
        break;
    }
    return std::nullopt;
}

} // namespace

SimulatedDevice::SimulatedDevice()
    : controls{
        {1, 2, 1, 8, 1, 8, 9, 8},                // auto-exposure mode
        {1, 4, 4, 156, 3, 2047, 1, 156},         // exposure time, 100 microseconds
        {2, 2, 2, 128, 0, 255, 1, 128},          // brightness
        {2, 3, 2, 32, 0, 64, 1, 32},             // contrast
        {2, 4, 2, 16, 0, 100, 1, 16},            // gain
        {2, 7, 2, 64, 0, 128, 1, 64},            // saturation
        {2, 8, 2, 3, 0, 7, 1, 3},                // sharpness
        {2, 10, 2, 4600, 2800, 6500, 100, 4600}, // white balance temperature, kelvin
        {2, 11, 1, 1, 0, 1, 1, 1},               // white balance temperature, automatic
    } {
    setClock(kClockAtPowerOn);
}

void SimulatedDevice::plugIn() {
    setClock(kClockAtPowerOn);
    m_plugged = true;
    ++m_plugCount;
}

void SimulatedDevice::setClock(std::span<const std::uint8_t, 6> calendar) {
    std::tm fields{};
    fields.tm_year = calendar[0] + 100;
    fields.tm_mon = calendar[1] - 1;
    fields.tm_mday = calendar[2];
    fields.tm_hour = calendar[3];
    fields.tm_min = calendar[4];
    fields.tm_sec = calendar[5];
    m_clockOffset = ::timegm(&fields) - hostTime();
}

void SimulatedDevice::fillInClock() {
    const std::time_t now = hostTime() + m_clockOffset;
    std::tm fields{};
    (void)::gmtime_r(&now, &fields); // fails only for years that no byte can hold
    const std::array<int, kClockBytes> calendar{fields.tm_year - 100, fields.tm_mon + 1, fields.tm_mday,
                                                fields.tm_hour,       fields.tm_min,     fields.tm_sec};
    std::ranges::transform(calendar, settings.begin() + 2,
                           [](int field) { return static_cast<std::uint8_t>(field); });
}

UsbResult SimulatedDevice::control(UsbControlRequest& request) {
    if (!m_plugged)
        return UsbCode::NoDevice;
    const bool isGet = (request.bmRequestType & kUsbDeviceToHost) != 0;
    const std::optional<RequestFault> fault = m_faults.meet(request);
    if (fault == RequestFault::Unplug)
        unplug();
    const std::optional<UsbResult> forced = fault ? forcedResult(*fault) : std::nullopt;
    const UsbResult result = forced ? *forced : isGet ? get(request, fault) : set(request, fault);
    if (unitOf(request) != kInterfaceItself)
        m_errorCode = result == UsbCode::Stall ? kInvalidRequest : kNoError;
    const std::span<const std::uint8_t> bytes(request.pData, request.wLength);
    const bool carried = !isGet || result == UsbCode::Success;
    requests.push_back({setupPacket(request),
                        carried ? std::vector(bytes.begin(), bytes.end()) : std::vector<std::uint8_t>(),
                        result});
    if (onRequest)
        onRequest(requests.back());
    return result;
}

UsbResult SimulatedDevice::get(UsbControlRequest& request, std::optional<RequestFault> fault) {
    std::vector<std::uint8_t> bytes = answer(request);
    if (bytes.empty())
        return UsbCode::Stall;
    if (fault == RequestFault::ShortData) {
        request.wLenDone = request.wLength / 2U;
        return UsbCode::InputOutput;
    }
    if (fault == RequestFault::Garbage)
        std::ranges::transform(bytes, bytes.begin(), [](std::uint8_t byte) { return byte ^ 0xA5; });
    std::ranges::copy(bytes, request.pData);
    request.wLenDone = request.wLength;
    return UsbCode::Success;
}

UsbResult SimulatedDevice::set(UsbControlRequest& request, std::optional<RequestFault> fault) {
    if (!accept(request))
        return UsbCode::Stall;
    if (fault == RequestFault::ShortData) {
        request.wLenDone = request.wLength / 2U;
        return UsbCode::InputOutput;
    }
    request.wLenDone = request.wLength;
    return UsbCode::Success;
}

SimulatedControl* SimulatedDevice::findControl(const UsbControlRequest& request) {
    const auto found = std::ranges::find_if(controls, [&](const SimulatedControl& control) {
        return control.unit == unitOf(request) && control.selector == selectorOf(request)
               && control.size == request.wLength;
    });
    return found == controls.end() ? nullptr : &*found;
}

/// Only the VideoControl interface has units: a request that names another interface is refused.
std::vector<std::uint8_t> SimulatedDevice::answer(const UsbControlRequest& request) {
    if (request.bmRequestType != kClassGet || (request.wIndex & 0xFF) != videoControlInterface
        || (request.wValue & 0xFF) != 0)
        return {};
    if (request.bRequest == kGetLen || request.bRequest == kGetInfo)
        return answerAbout(request);
    if (const SimulatedControl* control = findControl(request))
        return littleEndian(valueFor(request.bRequest, *control), control->size);
    if (request.bRequest != kGetCur)
        return {};
    fillInClock();
    return answerUnitControl(request);
}

std::vector<std::uint8_t> SimulatedDevice::answerUnitControl(const UsbControlRequest& request) const {
    if (unitOf(request) == kInterfaceItself && selectorOf(request) == kErrorCodeSelector
        && request.wLength == sizeof m_errorCode)
        return {m_errorCode};
    const auto bytes = block(selectorOf(request));
    if (unitOf(request) != kExtensionUnit || bytes.size() != request.wLength)
        return {};
    return {bytes.begin(), bytes.end()};
}

/// What a driver asks before it uses a control: how long it is, and what can be done with it.
std::vector<std::uint8_t> SimulatedDevice::answerAbout(const UsbControlRequest& request) const {
    std::size_t size = unitOf(request) == kExtensionUnit ? block(selectorOf(request)).size() : 0;
    bool settable = selectorOf(request) == Settings || selectorOf(request) == Audio;
    for (const SimulatedControl& control : controls) {
        if (control.unit == unitOf(request) && control.selector == selectorOf(request)) {
            size = control.size;
            settable = true;
        }
    }
    if (size == 0)
        return {};
    if (request.bRequest == kGetLen && request.wLength == sizeof(std::uint16_t))
        return littleEndian(static_cast<std::uint32_t>(size), request.wLength);
    if (request.bRequest == kGetInfo && request.wLength == sizeof(std::uint8_t))
        return {settable ? kReadableAndSettable : kReadable};
    return {};
}

std::span<const std::uint8_t> SimulatedDevice::block(std::uint8_t selector) const {
    switch (selector) {
    case Status:
        return status;
    case Settings:
        return settings;
    case Versions:
        return versions;
    case Audio:
        return audio;
    default:
        return {};
    }
}

bool SimulatedDevice::accept(const UsbControlRequest& request) {
    if (request.bmRequestType != kClassSet || request.bRequest != kSetCur
        || (request.wIndex & 0xFF) != videoControlInterface || (request.wValue & 0xFF) != 0)
        return false;
    const std::span<const std::uint8_t> bytes(request.pData, request.wLength);
    if (SimulatedControl* control = findControl(request)) {
        control->current = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i)
            control->current |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
        return true;
    }
    if (unitOf(request) != kExtensionUnit)
        return false;
    if (selectorOf(request) == Settings && bytes.size() == settings.size())
        acceptSettings(bytes);
    else if (selectorOf(request) == Audio && bytes.size() == audio.size())
        acceptAudio(bytes);
    else
        return false;
    return true;
}

void SimulatedDevice::acceptSettings(std::span<const std::uint8_t> block) {
    switch (block[0]) {
    case SetClock:
        setClock(block.subspan<2, kClockBytes>());
        break;
    case SetBitRate:
        settings[8] = block[8];
        break;
    case SetHdcp:
        settings[9] = block[9];
        break;
    default: // the device takes a block without a command and changes nothing
        break;
    }
}

void SimulatedDevice::acceptAudio(std::span<const std::uint8_t> block) {
    for (const std::size_t volume : {1U, 2U, 3U, 5U})
        audio[volume] = block[volume];
}
