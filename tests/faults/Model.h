#pragma once

#include "Clock.h"
#include "TestHost.h"
#include "Uvc.h"

#include <QString>

#include <array>
#include <functional>

// A second, short implementation of the program, for comparison. Written from the rules of the
// device (docs/device.md) and of the window, not from the code.

using Block = std::vector<std::uint8_t>;
using Numbers = std::vector<int>;

/// A value that is read or changed.
enum Field : std::size_t { Microphone, Headphone, Hdmi, Aux, BitRate, Hdcp, Versions, Clock };

/// The place of a field and the texts in its log lines.
struct FieldRules {
    std::uint8_t selector;          ///< of its block
    std::uint8_t length;            ///< of its block
    std::vector<std::size_t> bytes; ///< of the block
    const char* report;             ///< line of the value that was read
    const char* getter;             ///< name in the line of a failure
    const char* setter = nullptr;
    std::uint8_t command = 0;        ///< byte 0 of the written block; 0: as it was read
    const char* announces = nullptr; ///< line of the value to be written
};

constexpr auto* kBitRates = "[Get old]video bit rate index : [H264]=%d, [MJPG]=%d \n";
constexpr auto* kNewBitRate = "new video bit rate index : %d \n";
constexpr auto* kState = "[Get old]HDCP state : %d,\n";
constexpr auto* kNewState = "new HDCP state value : %d \n";
constexpr auto* kVersions = "[Get version]FW ver = %d.%d.%d.%d, Icatch fw ver= %d.%d.%d.%d, "
                            "HDMI splitter fw ver= %d.%d.%d.%d\n";
constexpr auto* kOldTime = "[Get old time]Time : %02d-%02d-%02d %02d:%02d:%02d \n";
constexpr auto* kNewTime = "[Get NEW time]Time : %02d-%02d-%02d %02d:%02d:%02d \n";

/// By field. The misspelt and wrong names are intended.
inline const std::array<FieldRules, 8> kFields{{
    {13, 7, {3}, "[Get old]Mic gain = %d,\n", "GetMicrophoneVolume", "SetMicrophoneVolume"},
    {13, 7, {5}, "[Get old]Headphone vol = %d,\n", "GetHeadphoneVolume", "setHaedphone"},
    {13, 7, {1}, "[Get old]HDMI vol = %d,\n", "GetHdmiVolume", "setHaedphone"},
    {13, 7, {2}, "[Get old]AUX vol = %d,\n", nullptr, "setAuxVolume"},
    {11, 13, {8}, kBitRates, "getBitRate", "setBitRate", 4, kNewBitRate},
    {11, 13, {9}, kState, "getHdcpState", "setHdcpState", 16, kNewState},
    {12, 26, {22, 23, 24, 25, 14, 15, 16, 17, 18, 19, 20, 21}, kVersions, "GetFwVersion"},
    {11, 13, {2, 3, 4, 5, 6, 7}, kOldTime, nullptr, "SyncRtc", 2},
}};

constexpr std::array kStars{"img_starBest.png", "img_starGood.png", "img_starGen.png"}; // by level

class Model {
public:
    ~Model() { close(); }

    // The actions. The program ends if the first operation fails twice. Later failures show only
    // in the reported values.
    void startUp() {
        if (!open()) end();
        tryTwice([this] { return setField(Clock, hostClock()); });
        for (const auto each : {BitRate, Microphone, Headphone, Hdmi, Versions, Hdcp}) getField(each);
        const int level = m_reported[BitRate][0];
        m_item = level < 3 ? level : -1;
    }
    void change(Field field, int chosen) {
        if (field == BitRate) {
            tryTwice([this] { return getField(BitRate); });
            setField(BitRate, {chosen * 16 + m_reported[BitRate][1]});
            m_item = chosen;
        } else {
            tryTwice([&] { return setField(field, {chosen}); });
        }
        if (field == Hdmi) setField(Aux, {chosen});
        getField(field);
    }

    /// The content of the window.
    [[nodiscard]] std::string shown() const {
        const auto reported = [this](Field field) { return m_reported[field][0]; };
        const auto level = static_cast<std::size_t>(reported(BitRate));
        const Numbers shown{m_item, reported(Microphone), reported(Headphone), reported(Hdmi)};
        const auto* firmware = "Firmware v%d.%d.%d.%d (%02d%02d%02d%02d.%02d%02d%02d%02d) ";
        return text("%d %d %d %d ", shown) + (reported(Hdcp) == 1 ? "true false " : "false true ")
            + text(firmware, m_reported[Versions]) + kStars.at(level < kStars.size() ? level : 0);
    }

private:
    /// Fills in a format of at most twelve numbers.
    static std::string text(const char* format, Numbers n) {
        n.resize(12);
        const QString filled =
            QString::asprintf(format, n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8], n[9], n[10], n[11]);
        return filled.toStdString();
    }

    static void log(const std::string& line) { TestHost::note("log " + line); }
    static bool fail(const std::string& line) {
        log(line);
        return false;
    }
    static bool failAt(const std::string& step, const std::string& operation) {
        const char* end = operation == "SyncRtc" ? " Fail!\n" : " Fail! \n";
        return fail("getExtension_" + operation + ".." + step + end);
    }

    [[noreturn]] static void end() {
        TestHost::note("AlertWindow");
        TestHost::note("exit 0");
        throw ProgramEnd("exit 0");
    }

    /// If the operation fails, the device is opened again and the operation is repeated once.
    void tryTwice(const std::function<bool()>& operation) {
        if (!operation() && !(open() && operation())) end();
    }

    /// The host's time, within a minute, as the device has it.
    static Numbers hostClock() {
        const auto seconds = static_cast<int>(TestHost::now - 1'700'000'000);
        return {23, 11, 14, 22, 13, seconds + 20};
    }

    /// The value in a block as it is reported: of a bit rate, two levels of 4 bits.
    static Numbers valueIn(const Block& block, Field field) {
        if (field == BitRate) return {block[8] / 16, block[8] % 16};
        Numbers value;
        for (const std::size_t byte : kFields[field].bytes) value.push_back(block[byte]);
        return value;
    }

    /// A value that can't be read is reported, and shown, as zeros.
    bool getField(Field field) {
        if (field == Versions) sleepForTimeInterval(1);
        const FieldRules& rules = kFields[field];
        Block block;
        const bool done = read(rules, block);
        m_reported[field] = valueIn(block, field);
        log(text(rules.report, m_reported[field]));
        if (!done) return failAt("getData", rules.getter);
        if (field == Hdcp && block[9] == 1) log("getExtension_HDCP state is On.\n");
        if (field == Hdcp && block[9] != 1) log("getExtension_HDCP state is Off.\n");
        return true;
    }

    /// After a failed read a volume and the clock are reported as zeros, another setting is not. A
    /// failed read of the bit rate and of the clock is called "setData" like a failed write. The
    /// clock is set only if it is wrong, here by years, and is read back.
    bool setField(Field field, const Numbers& value) {
        const FieldRules& rules = kFields[field];
        Block block;
        const bool done = read(rules, block);
        const Numbers old = valueIn(block, field);
        if (done || rules.selector == 13 || field == Clock) log(text(rules.report, old));
        const bool isLikeAWrite = field == BitRate || field == Clock;
        if (!done) return failAt(isLikeAWrite ? "setData" : "getData", rules.setter);
        if (field == Clock && old == value) {
            log("TimeInterval = 0.000000\n");
            return true;
        }
        if (rules.announces) log(text(rules.announces, value));
        for (std::size_t i = 0; i < value.size(); ++i) {
            block[rules.bytes[i]] = static_cast<std::uint8_t>(value[i]);
        }
        if (rules.command != 0) block[0] = rules.command;
        if (!request(0x21, 0x01, rules, block)) return failAt("setData", rules.setter);
        if (field != Clock) return true;
        sleepForTimeInterval(1);
        const bool readBack = read(rules, block);
        log(text(kNewTime, valueIn(block, field)));
        return readBack || failAt("setData", rules.setter);
    }

    void close() {
        if (m_interface) m_interface->USBInterfaceClose();
        m_interface.reset();
    }

    /// False: there is no device. True for a device without a VideoControl interface.
    bool open() {
        close();
        log("call camera CreateInstance");
        const auto service = usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID);
        const std::string failed = "CameraControl Error: IOCreatePlugInInterfaceForService returned ";
        if (!service.object) return fail(failed + "0xfffffffc.");
        const auto device = service.object->createPlugIn().object->QueryInterface().object;
        if (const auto interface = device->CreateInterfaceIterator(14, 1).object->next())
            m_interface = interface->createPlugIn().object->QueryInterface().object;
        return true;
    }

    /// Without an answer the block remains as it was: zeros, or what was written.
    bool read(const FieldRules& rules, Block& block) {
        block.resize(rules.length);
        return request(0xA1, 0x81, rules, block);
    }

    bool request(std::uint8_t type, std::uint8_t code, const FieldRules& rules, Block& block) {
        if (!m_interface) return fail("CameraControl Error: No interface to send request");
        const Uvc::SetupPacket packet{type, code, 0, rules.selector, 0, 3, rules.length, 0};
        auto request = Uvc::requestOf(packet, block.data());
        if (m_interface->ControlRequest(request) == UsbCode::Success) return true;
        m_interface->USBInterfaceClose();
        return fail("CameraControl Error: Control request failed: 00000000");
    }

    std::unique_ptr<UsbInterface> m_interface; ///< absent: not opened, or the device has none
    std::array<Numbers, 7> m_reported;         ///< last value of each field, zeros after a failure
    int m_item = -1;                           ///< of the pop-up
};
