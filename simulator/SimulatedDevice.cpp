#include "SimulatedDevice.h"

#include "Clock.h"
#include "Uvc.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace {

using Uvc::interfaceOf;
using Uvc::isGet;
using Uvc::selectorOf;
using Uvc::unitOf;

constexpr std::uint8_t kReadable = 1; // of an answer to GET_INFO (UVC 1.5, 4.1.2)
constexpr std::uint8_t kReadableAndSettable = 3;
constexpr std::uint8_t kNoError = 0; // of the error code control (UVC 1.5, 4.2.1.2)
constexpr std::uint8_t kInvalidRequest = 7;

constexpr std::uint8_t kInterfaceItself = 0; // instead of a unit
constexpr std::uint8_t kErrorCodeSelector = 2;
constexpr std::uint8_t kExtensionUnit = 3;
enum Selector : std::uint8_t { Status = 10, Settings = 11, Versions = 12, Audio = 13 };
enum Command : std::uint8_t { SetClock = 2, SetBitRate = 4, SetHdcp = 16 };

constexpr std::size_t kClockBytes = 6;
constexpr std::array<std::uint8_t, kClockBytes> kClockAtPowerOn{0, 1, 1, 0, 0, 0};

UVCRequest codeOf(const UsbControlRequest& request) {
    return static_cast<UVCRequest>(request.bRequest);
}

std::vector<std::uint8_t> littleEndian(std::uint32_t value, std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    Uvc::storeLittleEndian(value, bytes);
    return bytes;
}

std::uint32_t valueFor(UVCRequest request, const SimulatedControl& control) {
    switch (request) {
    case UVCRequest::GET_MIN: return control.minimum;
    case UVCRequest::GET_MAX: return control.maximum;
    case UVCRequest::GET_RES: return control.resolution;
    case UVCRequest::GET_DEF: return control.atPowerOn;
    default: return control.current;
    }
}

std::uint8_t garbled(std::uint8_t byte) {
    return byte ^ 0xA5U;
}

bool isSettable(std::uint8_t selector) {
    return selector == Settings || selector == Audio;
}

} // namespace

SimulatedDevice::SimulatedDevice()
    : controls{
        {1, Uvc::CT_AE_MODE_CONTROL, 1, 8, 1, 8, 9, 8},
        {1, Uvc::CT_EXPOSURE_TIME_ABSOLUTE_CONTROL, 4, 156, 3, 2047, 1, 156}, // 100 microseconds
        {2, Uvc::PU_BRIGHTNESS_CONTROL, 2, 128, 0, 255, 1, 128},
        {2, Uvc::PU_CONTRAST_CONTROL, 2, 32, 0, 64, 1, 32},
        {2, Uvc::PU_GAIN_CONTROL, 2, 16, 0, 100, 1, 16},
        {2, Uvc::PU_SATURATION_CONTROL, 2, 64, 0, 128, 1, 64},
        {2, Uvc::PU_SHARPNESS_CONTROL, 2, 3, 0, 7, 1, 3},
        {2, Uvc::PU_WHITE_BALANCE_TEMPERATURE_CONTROL, 2, 4600, 2800, 6500, 100, 4600}, // kelvin
        {2, Uvc::PU_WHITE_BALANCE_TEMPERATURE_AUTO_CONTROL, 1, 1, 0, 1, 1, 1},
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
    (void)::gmtime_r(&now, &fields); // fails only for years far outside those of a byte
    const std::array<int, kClockBytes> calendar{
        fields.tm_year - 100, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec};
    std::ranges::transform(calendar, settings.begin() + 2, [](int field) { return static_cast<std::uint8_t>(field); });
}

UsbResult SimulatedDevice::control(UsbControlRequest& request) {
    if (!m_plugged) return UsbCode::NoDevice;
    const UsbResult result = resultOf(request, m_faults.takeDue(request));
    if (unitOf(request) != kInterfaceItself) m_errorCode = result == UsbCode::Stall ? kInvalidRequest : kNoError;
    if (onRequest) {
        std::vector<std::uint8_t> data;
        if (!isGet(request) || result == UsbCode::Success) data.assign(request.pData, request.pData + request.wLength);
        onRequest({Uvc::setupPacket(request), std::move(data), result});
    }
    return result;
}

UsbResult SimulatedDevice::resultOf(UsbControlRequest& request, std::optional<RequestFault> fault) {
    if (fault == RequestFault::Unplug) unplug();
    if (!m_plugged) return UsbCode::NoDevice;
    if (fault == RequestFault::TimeOut) return UsbCode::TimeOut;
    if (fault == RequestFault::Stall || !isForUnits(request)) return UsbCode::Stall;
    std::vector<std::uint8_t> bytes;
    if (isGet(request)) bytes = answer(request);
    if (isGet(request) ? bytes.empty() : !accept(request)) return UsbCode::Stall;
    request.wLenDone = request.wLength;
    if (fault == RequestFault::ShortData) {
        request.wLenDone /= 2;
        return UsbCode::InputOutput;
    }
    if (fault == RequestFault::Garbage) std::ranges::transform(bytes, bytes.begin(), garbled);
    std::ranges::copy(bytes, request.pData);
    return UsbCode::Success;
}

/// Only the VideoControl interface has units.
bool SimulatedDevice::isForUnits(const UsbControlRequest& request) const {
    const int type = request.bmRequestType & ~kUsbDeviceToHost;
    return type == Uvc::kSetToInterface && interfaceOf(request) == videoControlInterface
        && Uvc::valueLowOf(request) == 0;
}

SimulatedControl* SimulatedDevice::findControl(const UsbControlRequest& request) {
    const auto found = std::ranges::find_if(controls, [&](const SimulatedControl& control) {
        return control.unit == unitOf(request) && control.selector == selectorOf(request)
            && control.size == request.wLength;
    });
    return found == controls.end() ? nullptr : &*found;
}

std::vector<std::uint8_t> SimulatedDevice::answer(const UsbControlRequest& request) {
    const UVCRequest code = codeOf(request);
    if (code == UVCRequest::GET_LEN || code == UVCRequest::GET_INFO) return answerAbout(request);
    if (const SimulatedControl* control = findControl(request))
        return littleEndian(valueFor(code, *control), control->size);
    if (code != UVCRequest::GET_CUR) return {};
    if (unitOf(request) == kInterfaceItself && selectorOf(request) == kErrorCodeSelector
        && request.wLength == sizeof m_errorCode)
        return {m_errorCode};
    fillInClock();
    const auto bytes = block(selectorOf(request));
    if (unitOf(request) != kExtensionUnit || bytes.size() != request.wLength) return {};
    return {bytes.begin(), bytes.end()};
}

/// Answers GET_LEN and GET_INFO, which a driver asks before it uses a control.
std::vector<std::uint8_t> SimulatedDevice::answerAbout(const UsbControlRequest& request) const {
    std::size_t size = unitOf(request) == kExtensionUnit ? block(selectorOf(request)).size() : 0;
    bool settable = isSettable(selectorOf(request));
    for (const SimulatedControl& control : controls) {
        if (control.unit == unitOf(request) && control.selector == selectorOf(request)) {
            size = control.size;
            settable = true;
        }
    }
    if (size == 0) return {};
    if (codeOf(request) == UVCRequest::GET_LEN && request.wLength == sizeof(std::uint16_t))
        return littleEndian(static_cast<std::uint32_t>(size), request.wLength);
    if (codeOf(request) == UVCRequest::GET_INFO && request.wLength == sizeof(std::uint8_t))
        return {settable ? kReadableAndSettable : kReadable};
    return {};
}

std::span<const std::uint8_t> SimulatedDevice::block(std::uint8_t selector) const {
    switch (selector) {
    case Status: return status;
    case Settings: return settings;
    case Versions: return versions;
    case Audio: return audio;
    default: return {};
    }
}

bool SimulatedDevice::accept(const UsbControlRequest& request) {
    if (codeOf(request) != UVCRequest::SET_CUR) return false;
    const std::span<const std::uint8_t> bytes(request.pData, request.wLength);
    if (SimulatedControl* control = findControl(request)) {
        control->current = Uvc::littleEndian<std::uint32_t>(bytes);
        return true;
    }
    const std::uint8_t selector = selectorOf(request);
    if (unitOf(request) != kExtensionUnit || !isSettable(selector) || bytes.size() != block(selector).size())
        return false;
    if (selector == Settings)
        acceptSettings(bytes);
    else
        for (const std::size_t volume : {1U, 2U, 3U, 5U}) audio[volume] = bytes[volume];
    return true;
}

void SimulatedDevice::acceptSettings(std::span<const std::uint8_t> block) {
    switch (block[0]) {
    case SetClock: setClock(block.subspan<2, kClockBytes>()); break;
    case SetBitRate: settings[8] = block[8]; break;
    case SetHdcp: settings[9] = block[9]; break;
    default: // the device accepts a block without a command and changes nothing
        break;
    }
}
