#pragma once

#include "Usb.h"
#include "Uvc.h"

#include <cstdint>
#include <memory>
#include <span>

/// The address of a control and the length of its value.
struct UVCControlInfo {
    int unit;
    int selector;
    int size; ///< bytes
};

/// The standard controls of camera terminal 1 and processing unit 2, which are not looked up in the device's
/// descriptors.
struct CameraControls {
    UVCControlInfo autoExposure{1, Uvc::CT_AE_MODE_CONTROL, 1};
    UVCControlInfo exposure{1, Uvc::CT_EXPOSURE_TIME_ABSOLUTE_CONTROL, 4};
    UVCControlInfo brightness{2, Uvc::PU_BRIGHTNESS_CONTROL, 2};
    UVCControlInfo contrast{2, Uvc::PU_CONTRAST_CONTROL, 2};
    UVCControlInfo gain{2, Uvc::PU_GAIN_CONTROL, 2};
    UVCControlInfo saturation{2, Uvc::PU_SATURATION_CONTROL, 2};
    UVCControlInfo sharpness{2, Uvc::PU_SHARPNESS_CONTROL, 2};
    UVCControlInfo whiteBalance{2, Uvc::PU_WHITE_BALANCE_TEMPERATURE_CONTROL, 2};
    UVCControlInfo autoWhiteBalance{2, Uvc::PU_WHITE_BALANCE_TEMPERATURE_AUTO_CONTROL, 1};
    UVCControlInfo status{3, 10, 4}; ///< the vendor's block
};
inline constexpr CameraControls uvc_controls;

/// Which limits of a standard control the device reported: 1, or 0 for a limit that it did not.
struct UVCRange {
    std::int64_t min;
    std::int64_t max;
};

/// Finds the capture device on the bus and sends class requests to the units of its VideoControl interface. Requests
/// are synchronous. Between requests the interface is not claimed, and no driver is detached from it, so that capture
/// software continues. Failures are log lines and false results, nothing throws.
class UVCCameraControl {
public:
    UVCCameraControl() = default;
    virtual ~UVCCameraControl();
    UVCCameraControl(const UVCCameraControl&) = delete;
    UVCCameraControl& operator=(const UVCCameraControl&) = delete;

    /// Opens the first device with these identifiers (low 32 bits). False: there is none, or it can't be reached;
    /// discard the object. True with a device that has no VideoControl interface: every request fails.
    [[nodiscard]] bool initWithVendorID(std::int64_t vendorID, std::int64_t productID);
    /// Opens the device at a location (`UsbDevice::GetLocationID`). None there: every request fails.
    void initWithLocationID(std::uint32_t locationID);

    /// The VideoControl interface of a device, absent if it has none or it can't be opened. The spelling "Inferace" is
    /// part of the name.
    [[nodiscard]] std::unique_ptr<UsbInterface> getControlInferaceWithDeviceInterface(UsbDevice& device);
    /// Asks the interface for its number and returns 0: all requests have interface number 0.
    std::uint8_t getInterfaceNumberFromInterface(UsbInterface& asked);

    /// Sends one request unchanged. After a failure the interface is closed but kept, and the next request is tried on
    /// it again. Blocks as long as `UsbInterface::ControlRequest`. On Linux requests of more than 64 bytes are refused.
    [[nodiscard]] bool sendControlRequest(UsbControlRequest request);

    // A length that is negative, beyond the caller's data or more than wLength holds: false, and nothing is sent or
    // logged.

    /// SET_CUR of the low `length` (1 to 8) bytes of `data`, little-endian.
    [[nodiscard]] bool setData(std::int64_t data, int length, int selector, int unit);
    /// A GET of `length` bytes into the start of `ret`, which a failure does not change.
    [[nodiscard]] bool getDataFor(UVCRequest request, int length, int selector, int unit, std::span<std::uint8_t> ret);

    // Standard camera controls on a scale from 0.0 to 1.0. What they calculate with is whether the device answered, 1
    // or 0, not its answer: callers get the same numbers from every release.

    [[nodiscard]] UVCRange getRangeForControl(const UVCControlInfo& control);
    /// Linear, each step rounded to single precision. A source range of zero width gives infinity or NaN.
    [[nodiscard]] float mapValue(float value, float fromMin, float fromMax, float toMin, float toMax);
    [[nodiscard]] float getValueForControl(const UVCControlInfo& control);
    [[nodiscard]] bool setValue(float value, const UVCControlInfo& control);
    /// First byte of the vendor status block; 0 after a failed read.
    [[nodiscard]] std::uint8_t getExtension();

    [[nodiscard]] bool setAutoExposure(bool enabled);
    [[nodiscard]] bool getAutoExposure();
    [[nodiscard]] bool setExposure(float value);
    [[nodiscard]] float getExposure();
    [[nodiscard]] bool setGain(float value) { return setValue(value, uvc_controls.gain); }
    [[nodiscard]] float getGain() { return getValueForControl(uvc_controls.gain); }
    [[nodiscard]] bool setBrightness(float value) { return setValue(value, uvc_controls.brightness); }
    [[nodiscard]] float getBrightness() { return getValueForControl(uvc_controls.brightness); }
    [[nodiscard]] bool setContrast(float value) { return setValue(value, uvc_controls.contrast); }
    [[nodiscard]] float getContrast() { return getValueForControl(uvc_controls.contrast); }
    [[nodiscard]] bool setSaturation(float value) { return setValue(value, uvc_controls.saturation); }
    [[nodiscard]] float getSaturation() { return getValueForControl(uvc_controls.saturation); }
    [[nodiscard]] bool setSharpness(float value) { return setValue(value, uvc_controls.sharpness); }
    [[nodiscard]] float getSharpness() { return getValueForControl(uvc_controls.sharpness); }
    [[nodiscard]] bool setWhiteBalance(float value) { return setValue(value, uvc_controls.whiteBalance); }
    [[nodiscard]] float getWhiteBalance() { return getValueForControl(uvc_controls.whiteBalance); }
    [[nodiscard]] bool setAutoWhiteBalance(bool enabled);
    [[nodiscard]] bool getAutoWhiteBalance();

protected:
    /// SET_CUR of the first `length` bytes of `data`.
    [[nodiscard]] bool setCurrent(std::span<std::uint8_t> data, int length, int selector, int unit);

private:
    void closeInterface();

    std::unique_ptr<UsbInterface> interface; ///< absent: none could be opened
    [[maybe_unused]] std::int64_t dataBuffer = 0;
    [[maybe_unused]] std::uint8_t interfaceNum = 0;
};
