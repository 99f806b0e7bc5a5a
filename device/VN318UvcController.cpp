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

using SettingsBlock = std::array<std::uint8_t, UvcControls2.settings.size>;
using VersionBlock = std::array<std::uint8_t, UvcControls2.versions.size>;
using AudioBlock = std::array<std::uint8_t, UvcControls2.audio.size>;

// Saved logs are searched for these names: the HDMI setter has the headphone setter's, spelt "Haedphone", and the AUX
// getter the HDMI getter's.
constexpr VolumeField kMicrophone{3, "Mic gain", "SetMicrophoneVolume", "GetMicrophoneVolume"};
constexpr VolumeField kHeadphone{5, "Headphone vol", "setHaedphone", "GetHeadphoneVolume"};
constexpr VolumeField kHdmi{1, "HDMI vol", "setHaedphone", "GetHdmiVolume"};
constexpr VolumeField kAux{2, "AUX vol", "setAuxVolume", "GetHdmiVolume"};

// Byte 0 of a settings block that is written. The device acts only on the field that it names.
constexpr std::uint8_t kSetClock = 2;
constexpr std::uint8_t kSetBitRate = 4;
constexpr std::uint8_t kSetHdcp = 16;

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

/// Logs that a step of an operation failed. False, for its caller to return.
bool failed(const char* operation, const char* step) {
    systemLog("getExtension_%s..%s Fail! \n", operation, step);
    return false;
}

// Every step of the clock is reported as "setData", without the blank.
bool clockFailed() {
    systemLog("getExtension_SyncRtc..setData Fail!\n");
    return false;
}

void logClock(const char* which, const SettingsBlock& block) {
    systemLog("[Get %s time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", which, block[2], block[3], block[4], block[5],
        block[6], block[7]);
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

bool readVolume(CUvcBaseControl& device, const VolumeField& field, AudioBlock& block) {
    const bool read = readBlock(device, UvcControls2.audio, block);
    systemLog("[Get old]%s = %d,\n", field.name, block[field.byte]);
    return read;
}

bool setVolume(CUvcBaseControl& device, const VolumeField& field, int volume) {
    AudioBlock block{};
    if (!readVolume(device, field, block)) return failed(field.setter, "getData");
    block[field.byte] = lowByte(volume);
    return writeBlock(device, UvcControls2.audio, block) || failed(field.setter, "setData");
}

bool getVolume(CUvcBaseControl& device, const VolumeField& field, std::uint8_t& volume) {
    AudioBlock block{};
    const bool read = readVolume(device, field, block);
    volume = block[field.byte];
    return read || failed(field.getter, "getData");
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
    if (!readBlock(*this, UvcControls2.settings, block)) return failed("setBitRate", "setData"); // of the read too
    logBitRate(block[kBitRateByte]);
    const std::uint8_t levels = lowByte(h264 << 4 | (forMJEPG & 15));
    systemLog("new video bit rate index : %d \n", levels);
    block[0] = kSetBitRate;
    block[kBitRateByte] = levels;
    return writeBlock(*this, UvcControls2.settings, block) || failed("setBitRate", "setData");
}

bool CVn318UvcController::GetBitRate(std::uint8_t& h264, std::uint8_t& forMJEPG) {
    SettingsBlock block{};
    const bool read = readBlock(*this, UvcControls2.settings, block);
    const std::uint8_t levels = block[kBitRateByte];
    logBitRate(levels);
    h264 = levels >> 4;
    forMJEPG = levels & 15;
    return read || failed("getBitRate", "getData");
}

bool CVn318UvcController::SetHdcpState(int state) {
    SettingsBlock block{};
    if (!readBlock(*this, UvcControls2.settings, block)) return failed("setHdcpState", "getData");
    const std::uint8_t stored = lowByte(state);
    systemLog("[Get old]HDCP state : %d,\n", block[kHdcpByte]);
    systemLog("new HDCP state value : %d \n", stored);
    if (stored > 1) return false; // neither on nor off: refused without a log line
    block[0] = kSetHdcp;
    block[kHdcpByte] = stored;
    return writeBlock(*this, UvcControls2.settings, block) || failed("setHdcpState", "setData");
}

bool CVn318UvcController::GetHdcpState(std::uint8_t& state) {
    SettingsBlock block{};
    const bool read = readBlock(*this, UvcControls2.settings, block);
    state = block[kHdcpByte];
    systemLog("[Get old]HDCP state : %d,\n", state);
    if (!read) return failed("getHdcpState", "getData");
    systemLog("getExtension_HDCP state is %s.\n", state == 1 ? "On" : "Off");
    return true;
}

bool CVn318UvcController::GetFwVersion(FirmwareVersionRecord& version) {
    sleepForTimeInterval(kSettlingTime);
    VersionBlock block{};
    const bool read = readBlock(*this, UvcControls2.versions, block);
    FirmwareVersionRecord v{};
    std::copy_n(block.begin() + 22, 4, v.begin());
    std::copy_n(block.begin() + 14, 8, v.begin() + 4);
    systemLog("[Get version]FW ver = %d.%d.%d.%d, Icatch fw ver= %d.%d.%d.%d, "
              "HDMI splitter fw ver= %d.%d.%d.%d\n",
        v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], v[11]);
    if (!read) return failed("GetFwVersion", "getData");
    version = v;
    return true;
}

bool CVn318UvcController::SyncRtc() {
    SettingsBlock block{};
    const bool read = readBlock(*this, UvcControls2.settings, block);
    logClock("old", block);
    if (!read) return clockFailed();
    const std::time_t host = hostTime();
    const double difference = std::difftime(clockTime(block), host);
    if (difference >= -kClockTolerance && difference <= kClockTolerance) {
        systemLog("TimeInterval = %f\n", difference);
        return true;
    }
    storeClock(block, hostTime());
    block[0] = kSetClock;
    if (!writeBlock(*this, UvcControls2.settings, block)) return clockFailed();
    sleepForTimeInterval(kSettlingTime);
    const bool readBack = readBlock(*this, UvcControls2.settings, block);
    logClock("NEW", block);
    return readBack || clockFailed();
}
