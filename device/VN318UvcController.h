#pragma once

#include "UvcBaseClass.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>

/// Three firmware images, four version parts each, most significant first: main firmware, image processor, HDMI
/// splitter.
using FirmwareVersionRecord = std::array<std::uint8_t, 12>;

/// The device's blocks: each is the current value of one control, and the device refuses any other length.
struct VendorControls {
    UVCControlInfo status = uvc_controls.status;
    UVCControlInfo settings{3, 11, 13}; ///< command byte, clock, bit rate, HDCP
    UVCControlInfo versions{3, 12, 26}; ///< of the firmware
    UVCControlInfo audio{3, 13, 7};     ///< four volumes
};
inline constexpr VendorControls UvcControls2;

/// The capture device: its clock, volumes, bit-rate levels, HDCP switch and firmware versions, all stored in three
/// blocks of extension unit 3 (docs/device.md). Nothing is cached. To change a setting, its whole block is read, its
/// field changed and the whole block written back. A block that could not be read is never written.
///
/// Every operation returns true on success. Except for `GetFwVersion`, getters set their out-arguments to 0 on failure.
/// Setters store the low 8 bits of a volume or an HDCP state, and the low 4 bits of a bit-rate level.
class CVn318UvcController : public CUvcBaseControl {
public:
    static constexpr std::uint16_t kVendorID = TAVRO_USB_VENDOR_ID;
    static constexpr std::uint16_t kProductID = TAVRO_USB_PRODUCT_ID;

    /// Sets the device's clock to the host's local time if they are more than 2 seconds apart, which takes a second.
    /// True: it was right, or was set and could be read back.
    [[nodiscard]] bool SyncRtc();

    // "MJEPG" is the operations' own spelling; the log lines say "MJPG".
    [[nodiscard]] bool SetBitRate(int h264, int forMJEPG);
    [[nodiscard]] bool GetBitRate(std::uint8_t& h264, std::uint8_t& forMJEPG);

    [[nodiscard]] bool SetMicrophoneVolume(int volume);
    [[nodiscard]] bool GetMicrophoneVolume(std::uint8_t& volume);
    [[nodiscard]] bool SetHeadphoneVolume(int volume);
    [[nodiscard]] bool GetHeadphoneVolume(std::uint8_t& volume);
    [[nodiscard]] bool SetHdmiVolume(int volume);
    [[nodiscard]] bool GetHdmiVolume(std::uint8_t& volume);
    [[nodiscard]] bool SetAuxVolume(int volume);
    [[nodiscard]] bool GetAuxVolume(std::uint8_t& volume);

    /// Takes at least a second. A failure does not change the record.
    [[nodiscard]] bool GetFwVersion(FirmwareVersionRecord& version);

    /// 1 on, 0 off; other states are refused.
    [[nodiscard]] bool SetHdcpState(int state);
    [[nodiscard]] bool GetHdcpState(std::uint8_t& state);

    /// Opens the device, absent if there is none or it can't be reached.
    [[nodiscard]] static std::unique_ptr<CVn318UvcController> CreateInstance();
};
