// The standard camera controls of UVCCameraControl.

#include "UVCControl.h"

#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr int kAutoExposureOn = 8;  // aperture priority (UVC 1.5, 4.2.2.1.2)
constexpr int kAutoExposureOff = 1; // manual

/// Rounded toward zero. Beyond the limits of 32 bits it is the limit, of NaN it is 0.
std::int32_t truncated(float value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    if (value >= static_cast<float>(Limits::max())) return Limits::max();
    if (value <= static_cast<float>(Limits::min())) return Limits::min();
    return static_cast<std::int32_t>(value);
}

/// Whether the device answers; the bytes of its answer are not used.
bool answers(UVCCameraControl& camera, UVCRequest request, const UVCControlInfo& control) {
    std::array<std::uint8_t, std::numeric_limits<std::uint16_t>::max()> scratch;
    return camera.getDataFor(request, control.size, control.selector, control.unit, scratch);
}

bool write(UVCCameraControl& camera, std::int64_t data, const UVCControlInfo& control) {
    return camera.setData(data, control.size, control.selector, control.unit);
}

} // namespace

// The range of a device that answers is 1 to 1.
UVCRange UVCCameraControl::getRangeForControl(const UVCControlInfo& control) {
    const std::int64_t min = answers(*this, UVCRequest::GET_MIN, control) ? 1 : 0;
    const std::int64_t max = answers(*this, UVCRequest::GET_MAX, control) ? 1 : 0;
    return {min, max};
}

float UVCCameraControl::mapValue(float value, float fromMin, float fromMax, float toMin, float toMax) {
    return (value - fromMin) / (fromMax - fromMin) * (toMax - toMin) + toMin;
}

float UVCCameraControl::getValueForControl(const UVCControlInfo& control) {
    const auto [min, max] = getRangeForControl(control);
    const float answered = answers(*this, UVCRequest::GET_CUR, control) ? 1.0F : 0.0F;
    return mapValue(answered, static_cast<float>(min), static_cast<float>(max), 0.0F, 1.0F);
}

bool UVCCameraControl::setValue(float value, const UVCControlInfo& control) {
    const auto [min, max] = getRangeForControl(control);
    const float mapped = mapValue(value, 0.0F, 1.0F, static_cast<float>(min), static_cast<float>(max));
    return write(*this, truncated(mapped), control);
}

std::uint8_t UVCCameraControl::getExtension() {
    constexpr UVCControlInfo kStatus = uvc_controls.status;
    std::array<std::uint8_t, kStatus.size> block{};
    (void)getDataFor(UVCRequest::GET_CUR, kStatus.size, kStatus.selector, kStatus.unit, block);
    return block[0]; // 0 after a failure
}

bool UVCCameraControl::setAutoExposure(bool enabled) {
    return write(*this, enabled ? kAutoExposureOn : kAutoExposureOff, uvc_controls.autoExposure);
}

// Compares the success flag, not the mode, with 8: always false.
bool UVCCameraControl::getAutoExposure() {
    const int answered = answers(*this, UVCRequest::GET_CUR, uvc_controls.autoExposure) ? 1 : 0;
    return answered == kAutoExposureOn;
}

// The exposure scale is inverted: 1.0 is the shortest time.
bool UVCCameraControl::setExposure(float value) {
    return setValue(1.0F - value, uvc_controls.exposure);
}
float UVCCameraControl::getExposure() {
    return 1.0F - getValueForControl(uvc_controls.exposure);
}

bool UVCCameraControl::setAutoWhiteBalance(bool enabled) {
    return write(*this, enabled ? 1 : 0, uvc_controls.autoWhiteBalance);
}

// True if the device answers, with any setting.
bool UVCCameraControl::getAutoWhiteBalance() {
    return answers(*this, UVCRequest::GET_CUR, uvc_controls.autoWhiteBalance);
}
