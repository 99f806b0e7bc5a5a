#include "VN318UvcController.h"

#include "Clock.h"
#include "Log.h"

#include <algorithm>
#include <cstddef>
#include <ctime>

namespace {

/// One byte of the audio block, and its names in log lines.
struct VolumeField {
    std::size_t byte;
    const char* name;
    const char* setter;
    const char* getter;
};

/// One field of the settings block. The device acts only on the field that the command byte names.
struct SettingsField {
    std::uint8_t command;
    const char* readFailure;
    const char* writeFailure;
};

using SettingsBlock = std::array<std::uint8_t, UvcControls2.settings.size>;
using VersionBlock = std::array<std::uint8_t, UvcControls2.versions.size>;
using AudioBlock = std::array<std::uint8_t, UvcControls2.audio.size>;

// Saved logs are searched for these names: the HDMI setter has the headphone setter's, spelt "Haedphone", and the AUX
// getter the HDMI getter's.
constexpr VolumeField kMicrophone{3, "Mic gain", "SetMicrophoneVolume", "GetMicrophoneVolume"};
constexpr VolumeField kHeadphone{5, "Headphone vol", "setHaedphone", "GetHeadphoneVolume"};
constexpr VolumeField kHdmi{1, "HDMI vol", "setHaedphone", "GetHdmiVolume"};
constexpr VolumeField kAux{2, "AUX vol", "setAuxVolume", "GetHdmiVolume"};

// The clock and the bit rate report a failed read as "setData" too.
constexpr SettingsField kClock{2, "getExtension_SyncRtc..setData Fail!\n", "getExtension_SyncRtc..setData Fail!\n"};
constexpr SettingsField kBitRate{
    4, "getExtension_setBitRate..setData Fail! \n", "getExtension_setBitRate..setData Fail! \n"};
constexpr SettingsField kHdcp{
    16, "getExtension_setHdcpState..getData Fail! \n", "getExtension_setHdcpState..setData Fail! \n"};

constexpr std::size_t kBitRateByte = 8;
constexpr std::size_t kHdcpByte = 9;

constexpr double kClockTolerance = 2.0; // seconds, inclusive
constexpr double kSettlingTime = 1.0;   // seconds that the device needs to set its clock or collect its versions
constexpr int kDeviceEpoch = 100;       // the device counts years from 2000, the C library from 1900

std::uint8_t lowByte(int number) {
    return static_cast<std::uint8_t>(number);
}

/// The device's clock as host time. The flag for daylight saving stays 0 on purpose: a host in daylight saving time
/// sees an hour's difference and sets the clock at every start.
std::time_t clockTime(const SettingsBlock& block) {
    std::tm calendar{};
    calendar.tm_year = block[2] + kDeviceEpoch;
    calendar.tm_mon = block[3] - 1;
    calendar.tm_mday = block[4];
    calendar.tm_hour = block[5];
    calendar.tm_min = block[6];
    calendar.tm_sec = block[7];
    return std::mktime(&calendar);
}

void storeClock(SettingsBlock& block, std::time_t time) {
    const std::tm& calendar = *std::localtime(&time);
    block[2] = lowByte(calendar.tm_year - kDeviceEpoch);
    block[3] = lowByte(calendar.tm_mon + 1);
    block[4] = lowByte(calendar.tm_mday);
    block[5] = lowByte(calendar.tm_hour);
    block[6] = lowByte(calendar.tm_min);
    block[7] = lowByte(calendar.tm_sec);
}

void logBitRate(std::uint8_t levels) {
    systemLog("[Get old]video bit rate index : [H264]=%d, [MJPG]=%d \n", levels >> 4, levels & 15);
}

bool readBlock(CUvcBaseControl& device, const UVCControlInfo& control, std::span<std::uint8_t> block) {
    return device.getDataFor(UVCRequest::GET_CUR, control.size, control.selector, control.unit, block);
}

bool writeBlock(CUvcBaseControl& device, const UVCControlInfo& control, std::span<std::uint8_t> block) {
    return device.SetData2(block, control.size, control.selector, control.unit);
}

bool setVolume(CUvcBaseControl& device, const VolumeField& field, int volume) {
    AudioBlock block{};
    const bool read = readBlock(device, UvcControls2.audio, block);
    systemLog("[Get old]%s = %d,\n", field.name, block[field.byte]);
    if (!read) {
        systemLog("getExtension_%s..getData Fail! \n", field.setter);
        return false;
    }
    block[field.byte] = lowByte(volume);
    if (!writeBlock(device, UvcControls2.audio, block)) {
        systemLog("getExtension_%s..setData Fail! \n", field.setter);
        return false;
    }
    return true;
}

bool getVolume(CUvcBaseControl& device, const VolumeField& field, std::uint8_t& volume) {
    AudioBlock block{};
    const bool read = readBlock(device, UvcControls2.audio, block);
    systemLog("[Get old]%s = %d,\n", field.name, block[field.byte]);
    if (!read) systemLog("getExtension_%s..getData Fail! \n", field.getter);
    volume = read ? block[field.byte] : 0;
    return read;
}

bool writeSettings(CUvcBaseControl& device, const SettingsField& field, std::span<std::uint8_t> block) {
    block[0] = field.command;
    const bool written = writeBlock(device, UvcControls2.settings, block);
    if (!written) systemLog("%s", field.writeFailure);
    return written;
}

} // namespace

std::unique_ptr<CVn318UvcController> CVn318UvcController::CreateInstance() {
    systemLog("call camera CreateInstance");
    auto controller = std::make_unique<CVn318UvcController>();
    if (!controller->initWithVendorID(kVendorID, kProductID)) return nullptr;
    return controller;
}

bool CVn318UvcController::SetMicrophoneVolume(int volume) {
    return setVolume(*this, kMicrophone, volume);
}
bool CVn318UvcController::GetMicrophoneVolume(std::uint8_t& volume) {
    return getVolume(*this, kMicrophone, volume);
}
bool CVn318UvcController::SetHeadphoneVolume(int volume) {
    return setVolume(*this, kHeadphone, volume);
}
bool CVn318UvcController::GetHeadphoneVolume(std::uint8_t& volume) {
    return getVolume(*this, kHeadphone, volume);
}
bool CVn318UvcController::SetHdmiVolume(int volume) {
    return setVolume(*this, kHdmi, volume);
}
bool CVn318UvcController::GetHdmiVolume(std::uint8_t& volume) {
    return getVolume(*this, kHdmi, volume);
}
bool CVn318UvcController::SetAuxVolume(int volume) {
    return setVolume(*this, kAux, volume);
}
bool CVn318UvcController::GetAuxVolume(std::uint8_t& volume) {
    return getVolume(*this, kAux, volume);
}

bool CVn318UvcController::SetBitRate(int h264, int forMJEPG) {
    SettingsBlock block{};
    if (!readBlock(*this, UvcControls2.settings, block)) {
        systemLog("%s", kBitRate.readFailure);
        return false;
    }
    logBitRate(block[kBitRateByte]);
    const std::uint8_t levels = lowByte(h264 << 4 | (forMJEPG & 15));
    systemLog("new video bit rate index : %d \n", levels);
    block[kBitRateByte] = levels;
    return writeSettings(*this, kBitRate, block);
}

bool CVn318UvcController::GetBitRate(std::uint8_t& h264, std::uint8_t& forMJEPG) {
    SettingsBlock block{};
    const bool read = readBlock(*this, UvcControls2.settings, block);
    const std::uint8_t levels = block[kBitRateByte];
    logBitRate(levels);
    if (!read) systemLog("getExtension_getBitRate..getData Fail! \n");
    h264 = read ? levels >> 4 : 0;
    forMJEPG = read ? levels & 15 : 0;
    return read;
}

bool CVn318UvcController::SetHdcpState(int state) {
    SettingsBlock block{};
    if (!readBlock(*this, UvcControls2.settings, block)) {
        systemLog("%s", kHdcp.readFailure);
        return false;
    }
    const std::uint8_t stored = lowByte(state);
    systemLog("[Get old]HDCP state : %d,\n", block[kHdcpByte]);
    systemLog("new HDCP state value : %d \n", stored);
    if (stored > 1) return false; // neither on nor off: refused without a log line
    block[kHdcpByte] = stored;
    return writeSettings(*this, kHdcp, block);
}

bool CVn318UvcController::GetHdcpState(std::uint8_t& state) {
    SettingsBlock block{};
    const bool read = readBlock(*this, UvcControls2.settings, block);
    systemLog("[Get old]HDCP state : %d,\n", block[kHdcpByte]);
    state = read ? block[kHdcpByte] : 0;
    if (!read)
        systemLog("getExtension_getHdcpState..getData Fail! \n");
    else if (state == 1)
        systemLog("getExtension_HDCP state is On.\n");
    else
        systemLog("getExtension_HDCP state is Off.\n");
    return read;
}

bool CVn318UvcController::GetFwVersion(FirmwareVersionRecord& version) {
    sleepForTimeInterval(kSettlingTime);
    VersionBlock block{};
    const bool read = readBlock(*this, UvcControls2.versions, block);
    systemLog("[Get version]FW ver = %d.%d.%d.%d, Icatch fw ver= %d.%d.%d.%d, "
              "HDMI splitter fw ver= %d.%d.%d.%d\n",
        block[22], block[23], block[24], block[25], block[14], block[15], block[16], block[17], block[18], block[19],
        block[20], block[21]);
    if (!read) {
        systemLog("getExtension_GetFwVersion..getData Fail! \n");
        return false;
    }
    std::copy_n(block.begin() + 22, 4, version.begin());
    std::copy_n(block.begin() + 14, 8, version.begin() + 4);
    return true;
}

bool CVn318UvcController::SyncRtc() {
    SettingsBlock block{};
    const bool read = readBlock(*this, UvcControls2.settings, block);
    systemLog("[Get old time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", block[2], block[3], block[4], block[5], block[6],
        block[7]);
    if (!read) {
        systemLog("%s", kClock.readFailure);
        return false;
    }
    const std::time_t host = hostTime();
    const double difference = std::difftime(clockTime(block), host);
    if (difference >= -kClockTolerance && difference <= kClockTolerance) {
        systemLog("TimeInterval = %f\n", difference);
        return true;
    }
    storeClock(block, hostTime());
    if (!writeSettings(*this, kClock, block)) return false;
    sleepForTimeInterval(kSettlingTime);
    const bool readBack = readBlock(*this, UvcControls2.settings, block);
    systemLog("[Get NEW time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", block[2], block[3], block[4], block[5], block[6],
        block[7]);
    if (!readBack) systemLog("%s", kClock.readFailure);
    return readBack;
}
