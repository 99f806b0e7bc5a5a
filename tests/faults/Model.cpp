#include "Model.h"

#include "TestHost.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>

namespace {

using Bytes = std::vector<std::size_t>; // by their places in a block

/// The two operations on a field. Getting it reads its block and logs the value. Setting it does that too, then
/// stores another value in the block and writes it.
struct Operations {
    int selector;                    ///< of the block: 11 settings, 12 versions, 13 audio
    Bytes bytes;                     ///< that hold the value
    const char* report;              ///< the log line of the value that was read
    const char* getter;              ///< its name in the log line of a failure
    const char* setter = nullptr;    ///< as above
    int command = 0;                 ///< byte 0 of what is written; 0: as it was read
    const char* announces = nullptr; ///< the log line of the value to be written
};

const Bytes kClockBytes{2, 3, 4, 5, 6, 7};
const Bytes kVersionBytes{22, 23, 24, 25, 14, 15, 16, 17, 18, 19, 20, 21};
constexpr std::array kStars{"img_starBest.png", "img_starGood.png", "img_starGen.png"}; // by level
constexpr auto* kNewTime = "[Get NEW time]Time : %02d-%02d-%02d %02d:%02d:%02d \n";

/// By field. Misspellings and mix-ups are those of saved logs.
const std::array<Operations, 8> kOperations{{
    {13, {3}, "[Get old]Mic gain = %d,\n", "GetMicrophoneVolume", "SetMicrophoneVolume"},
    {13, {5}, "[Get old]Headphone vol = %d,\n", "GetHeadphoneVolume", "setHaedphone"},
    {13, {1}, "[Get old]HDMI vol = %d,\n", "GetHdmiVolume", "setHaedphone"},
    {13, {2}, "[Get old]AUX vol = %d,\n", nullptr, "setAuxVolume"},
    {11, {8}, "[Get old]video bit rate index : [H264]=%d, [MJPG]=%d \n", "getBitRate", "setBitRate", 4,
        "new video bit rate index : %d \n"},
    {11, {9}, "[Get old]HDCP state : %d,\n", "getHdcpState", "setHdcpState", 16, "new HDCP state value : %d \n"},
    {12, kVersionBytes,
        "[Get version]FW ver = %d.%d.%d.%d, Icatch fw ver= %d.%d.%d.%d, HDMI splitter fw ver= %d.%d.%d.%d\n",
        "GetFwVersion"},
    {11, kClockBytes, "[Get old time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", nullptr, "SyncRtc", 2},
}};

/// The value in a block as it is reported: a bit rate by its levels of H.264 and of MJPEG, which have 4 bits each.
Block valueIn(const Block& block, Field field) {
    if (field == BitRate) return {block[8] / 16, block[8] % 16};
    Block value;
    for (const std::size_t byte : kOperations[field].bytes) value.push_back(block[byte]);
    return value;
}

/// A device by its rules. What can be done to it is named as the simulated device has it.
struct ModelDevice {
    Block settings{kSettings.begin(), kSettings.end()};
    Block versions{0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 5, 6, 7, 8, 9,
        10, 11, 12, 1, 2, 3, 4};
    Block audio{kAudio.begin(), kAudio.end()};
    std::optional<int> videoControlInterface = 0;
    bool plugged = true;
    bool opened = false; ///< since it was plugged in
    unsigned requests = 0;
    std::map<unsigned, RequestFault> faults; ///< by the number of the request
    std::function<void(const std::string&)> onRequest;

    void addFault(RequestKind /*any*/, unsigned n, RequestFault fault) { faults[requests + n] = fault; }
    void unplug() { plugged = opened = false; }
    void plugIn() {
        plugged = true;
        opened = false;
        std::ranges::copy(Bytes{0, 1, 1, 0, 0, 0}, settings.begin() + 2);
    }
    Block& block(int selector) { return selector == 11 ? settings : selector == 12 ? versions : audio; }

    /// Answers a request. The result is 0 or one of libusb's codes.
    int control(bool isGet, int selector, Block& data) {
        static const std::map<RequestFault, int> kCodes{{RequestFault::Stall, -9}, {RequestFault::TimeOut, -7},
            {RequestFault::ShortData, -1}, {RequestFault::Garbage, 0}, {RequestFault::Unplug, -4}};
        const auto met = faults.find(++requests);
        const bool isFaulty = met != faults.end();
        const int code = isFaulty ? kCodes.at(met->second) : videoControlInterface ? 0 : kCodes.at(RequestFault::Stall);
        if (isFaulty && met->second == RequestFault::Unplug) unplug();
        if (!isGet && (code == 0 || code == -1)) accept(selector, data);
        if (isGet && code == 0) data = block(selector);
        if (isGet && code == 0 && isFaulty) std::ranges::for_each(data, [](int& byte) { byte ^= 0xA5; }); // garbage
        onRequest((isGet ? get(selector, code == 0 ? data : Block()) : set(selector, data))
            + (code == 0 ? "" : " ! " + std::to_string(code)));
        return code;
    }

    /// Acts on the field that the command names, or on all four volumes, and on nothing else.
    void accept(int selector, const Block& written) {
        const std::map<int, Bytes> commands{{2, kClockBytes}, {4, {8}}, {16, {9}}};
        const Bytes bytes = selector == 13 ? Bytes{1, 2, 3, 5} : commands.at(written[0]);
        for (const std::size_t byte : bytes) block(selector)[byte] = written[byte];
    }
};

/// The program by its rules.
class Model {
public:
    std::vector<std::shared_ptr<ModelDevice>> devices;
    std::vector<std::string> journal;

    // The actions. False: the first thing that is asked of the device failed twice, and the program ends. Later
    // failures only show in what is reported.
    bool startUp() {
        if (!open() || !tryTwice([this] { return setField(Clock, m_now); })) return false;
        for (const Field field : {BitRate, Microphone, Headphone, Hdmi, Versions, Hdcp}) getField(field);
        if (m_reported[BitRate][0] < 3) m_item = m_reported[BitRate][0];
        return true;
    }
    bool change(Field field, int chosen) {
        const bool isBitRate = field == BitRate;
        if (!tryTwice([&] { return isBitRate ? getField(field) : setField(field, {chosen}); })) return false;
        if (isBitRate) setField(field, {chosen * 16 + m_reported[field][1]});
        if (isBitRate) m_item = chosen;
        if (field == Hdmi) setField(Aux, {chosen});
        getField(field);
        return true;
    }

    [[nodiscard]] std::string window() const {
        const auto reported = [this](Field field) { return m_reported[field][0]; };
        const auto level = static_cast<std::size_t>(reported(BitRate));
        return text("window: %d %d %d %d ", {m_item, reported(Microphone), reported(Headphone), reported(Hdmi)})
            + (reported(Hdcp) == 1 ? "true false " : "false true ")
            + text("Firmware v%d.%d.%d.%d (%02d%02d%02d%02d.%02d%02d%02d%02d) ", m_reported[Versions])
            + kStars.at(level < kStars.size() ? level : 0);
    }

private:
    void log(const std::string& line) { journal.push_back("log " + line); }
    bool fail(const std::string& line) { return log(line), false; }

    bool failAt(const std::string& step, const std::string& operation) {
        return fail("getExtension_" + operation + ".." + step + (operation == "SyncRtc" ? " Fail!\n" : " Fail! \n"));
    }

    void sleepOneSecond() {
        journal.emplace_back("sleep 1.0");
        ++m_now[5];
        for (const auto& device : devices) ++device->settings[7];
    }

    bool open() {
        if (m_open) journal.emplace_back("release");
        log("call camera CreateInstance");
        const auto found = std::ranges::find(devices, true, &ModelDevice::plugged);
        if (found == devices.end())
            return fail("CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc.");
        m_open = (*found)->videoControlInterface ? *found : nullptr;
        (*found)->opened = true;
        return true;
    }

    /// If the operation fails, the device is opened again and the operation is repeated once.
    bool tryTwice(const std::function<bool()>& operation) { return operation() || (open() && operation()); }

    /// After a failed read the value is reported, and shown, as zeros.
    bool getField(Field field) {
        if (field == Versions) sleepOneSecond(); // in which the device gathers them
        const Operations& of = kOperations[field];
        Block block(devices[0]->block(of.selector).size());
        const bool done = request(true, of.selector, block);
        m_reported[field] = valueIn(block, field);
        log(text(of.report, m_reported[field]));
        if (!done) return failAt("getData", of.getter);
        if (field == Hdcp)
            log(block[9] == 1 ? "getExtension_HDCP state is On.\n" : "getExtension_HDCP state is Off.\n");
        return true;
    }

    /// After a failed read a volume and the clock are reported as zeros, another setting is not. A failed read of the
    /// bit rate and of the clock is called "setData" like a failed write.
    /// The clock is set only if it is wrong, here by years, and is read back.
    bool setField(Field field, const Block& value) {
        const Operations& of = kOperations[field];
        Block block(devices[0]->block(of.selector).size());
        const bool read = request(true, of.selector, block);
        if (read || of.selector == 13 || field == Clock) log(text(of.report, valueIn(block, field)));
        if (!read) return failAt(field == BitRate || field == Clock ? "setData" : "getData", of.setter);
        if (field == Clock && valueIn(block, field) == value) return log("TimeInterval = 0.000000\n"), true;
        if (of.announces) log(text(of.announces, value));
        for (std::size_t i = 0; i < value.size(); ++i) block[of.bytes[i]] = value[i];
        if (of.command != 0) block[0] = of.command;
        if (!request(false, of.selector, block)) return failAt("setData", of.setter);
        if (field != Clock) return true;
        sleepOneSecond();
        const bool readBack = request(true, of.selector, block);
        log(text(kNewTime, valueIn(block, field)));
        return readBack || failAt("setData", of.setter);
    }

    bool request(bool isGet, int selector, Block& block) {
        if (!m_open) return fail("CameraControl Error: No interface to send request");
        return (m_open->opened && m_open->control(isGet, selector, block) == 0)
            || fail("CameraControl Error: Control request failed: 00000000");
    }

    Block m_now{kSettings.begin() + 2, kSettings.begin() + 8}; ///< the host's time, within one minute
    std::shared_ptr<ModelDevice> m_open;                       ///< absent also if what was opened is no camera
    std::array<Block, 7> m_reported;                           ///< of each field at last, zeros after a failure
    int m_item = -1;                                           ///< of the pop-up
};

} // namespace

std::string text(const char* format, Block n) {
    n.resize(12);
    std::array<char, 200> filled{};
    (void)std::snprintf(
        filled.data(), filled.size(), format, n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8], n[9], n[10], n[11]);
    return filled.data();
}

std::vector<std::string> predict(Field field, int chosen, bool clockIsRight, const Plan& plan) {
    Model model;
    while (model.devices.size() < plan.trouble.devices) {
        ModelDevice& added = *model.devices.emplace_back(std::make_shared<ModelDevice>());
        added.onRequest = [&model](const std::string& request) { model.journal.push_back(request); };
        if (!clockIsRight) std::ranges::copy(kWrongClock, added.settings.begin() + 2);
    }
    if (field != Clock) model.startUp();
    prepare(model.devices, plan);
    if (field == Clock ? model.startUp() : model.change(field, chosen))
        model.journal.push_back(model.window());
    else
        model.journal.insert(model.journal.end(), {"AlertWindow", "exit 0"});
    for (const auto& device : model.devices) model.journal.push_back(text(kKept, held(*device)));
    return model.journal;
}
