#include "Model.h"

#include "TestHost.h"

#include <array>
#include <cstdio>
#include <functional>
#include <sstream>

namespace {

/// The two operations on a field. To get it, its block is read and the value logged. To set it, that is done too, then
/// another value is stored in the block and the block written.
struct Operations {
    int selector;                    ///< of the block: 11 settings, 12 versions, 13 audio
    std::vector<std::size_t> bytes;  ///< indices of the value in the block
    const char* report;              ///< the log line of the value that was read
    const char* getter;              ///< its name in the log line of a failure
    const char* setter = nullptr;    ///< as above
    int command = 0;                 ///< byte 0 of the written block; 0: as it was read
    const char* announces = nullptr; ///< the log line of the value to be written
};

constexpr std::array kStars{"img_starBest.png", "img_starGood.png", "img_starGen.png"}; // by level
constexpr auto* kNewTime = "[Get NEW time]Time : %02d-%02d-%02d %02d:%02d:%02d \n";

/// By selector - 11: the length of the block.
constexpr std::array kLengths{13U, 26U, 7U};

/// By field. The misspelt and wrong names are meant.
const std::array<Operations, 8> kOperations{{
    {13, {3}, "[Get old]Mic gain = %d,\n", "GetMicrophoneVolume", "SetMicrophoneVolume"},
    {13, {5}, "[Get old]Headphone vol = %d,\n", "GetHeadphoneVolume", "setHaedphone"},
    {13, {1}, "[Get old]HDMI vol = %d,\n", "GetHdmiVolume", "setHaedphone"},
    {13, {2}, "[Get old]AUX vol = %d,\n", nullptr, "setAuxVolume"},
    {11, {8}, "[Get old]video bit rate index : [H264]=%d, [MJPG]=%d \n", "getBitRate", "setBitRate", 4,
        "new video bit rate index : %d \n"},
    {11, {9}, "[Get old]HDCP state : %d,\n", "getHdcpState", "setHdcpState", 16, "new HDCP state value : %d \n"},
    {12, {22, 23, 24, 25, 14, 15, 16, 17, 18, 19, 20, 21},
        "[Get version]FW ver = %d.%d.%d.%d, Icatch fw ver= %d.%d.%d.%d, HDMI splitter fw ver= %d.%d.%d.%d\n",
        "GetFwVersion"},
    {11, {2, 3, 4, 5, 6, 7}, "[Get old time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", nullptr, "SyncRtc", 2},
}};

/// The value in a block as it is reported: a bit rate as its levels of H.264 and MJPEG, 4 bits each.
Block valueIn(const Block& block, Field field) {
    if (field == BitRate) return {block[8] / 16, block[8] % 16};
    Block value;
    for (const std::size_t byte : kOperations[field].bytes) value.push_back(block[byte]);
    return value;
}

/// The program by its rules.
class Model {
public:
    explicit Model(const std::vector<std::string>& answered) : m_answered(answered) {}

    std::vector<std::string> journal;

    /// From now on the trouble of the plan can occur.
    void begin(const Plan& plan) {
        m_plan = &plan;
        m_plugged = plan.trouble.devices;
        m_requests = 0;
        if (plan.n == 0) happen();
    }

    // The actions. False: the first operation failed twice, and the program ends. Later failures show only in the
    // reported values.
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
    }

    bool open() {
        if (m_hasInterface) journal.emplace_back("release");
        log("call camera CreateInstance");
        if (m_plugged == 0) return fail("CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc.");
        m_hasInterface = m_isCamera;
        m_isAttached = true;
        return true;
    }

    /// If the operation fails, the device is opened again and the operation is repeated once.
    bool tryTwice(const std::function<bool()>& operation) { return operation() || (open() && operation()); }

    /// After a failed read the value is reported, and shown, as zeros.
    bool getField(Field field) {
        if (field == Versions) sleepOneSecond();
        const Operations& of = kOperations[field];
        Block block;
        const bool done = read(of.selector, block);
        m_reported[field] = valueIn(block, field);
        log(text(of.report, m_reported[field]));
        if (!done) return failAt("getData", of.getter);
        if (field == Hdcp)
            log(block[9] == 1 ? "getExtension_HDCP state is On.\n" : "getExtension_HDCP state is Off.\n");
        return true;
    }

    /// After a failed read a volume and the clock are reported as zeros, another setting is not. A failed read of the
    /// bit rate and of the clock is called "setData" like a failed write. The clock is set only if it is wrong, here by
    /// years, and is read back.
    bool setField(Field field, const Block& value) {
        const Operations& of = kOperations[field];
        Block block;
        const bool done = read(of.selector, block);
        if (done || of.selector == 13 || field == Clock) log(text(of.report, valueIn(block, field)));
        if (!done) return failAt(field == BitRate || field == Clock ? "setData" : "getData", of.setter);
        if (field == Clock && valueIn(block, field) == value) return log("TimeInterval = 0.000000\n"), true;
        if (of.announces) log(text(of.announces, value));
        for (std::size_t i = 0; i < value.size(); ++i) block[of.bytes[i]] = value[i];
        if (of.command != 0) block[0] = of.command;
        if (!request([&] { return set(of.selector, block); })) return failAt("setData", of.setter);
        if (field != Clock) return true;
        sleepOneSecond();
        const bool readBack = read(of.selector, block);
        log(text(kNewTime, valueIn(block, field)));
        return readBack || failAt("setData", of.setter);
    }

    /// Without an answer the block is not changed, or zeros.
    bool read(int selector, Block& block) {
        block.resize(kLengths.at(static_cast<std::size_t>(selector) - 11));
        const Block answer = nextAnswer(block.size());
        const bool done = request([&] { return get(selector, nextCode() == 0 ? answer : Block()); });
        if (done) block = answer;
        return done;
    }

    /// The data in the real journal at this place.
    [[nodiscard]] Block nextAnswer(std::size_t length) const {
        Block answer;
        if (journal.size() < m_answered.size()) {
            const std::string& entry = m_answered[journal.size()];
            std::istringstream data(entry.substr(std::min(entry.find('|'), entry.size() - 1) + 1));
            for (int byte = 0; data >> std::hex >> byte;) answer.push_back(byte);
        }
        answer.resize(length);
        return answer;
    }

    /// The result of the next request that reaches a device.
    [[nodiscard]] int nextCode() const {
        if (m_plan && m_requests + 1 == m_plan->n) return m_plan->trouble.code;
        const bool isSecond = m_plan != nullptr && m_plan->twice && m_requests == m_plan->n;
        return isSecond || !m_isCamera ? -9 : 0;
    }

    bool request(const std::function<std::string()>& entry) {
        if (!m_hasInterface) return fail("CameraControl Error: No interface to send request");
        const int code = m_isAttached ? nextCode() : -4;
        if (m_isAttached) {
            journal.push_back(entry() + (code == 0 ? "" : " ! " + std::to_string(code)));
            if (m_plan && ++m_requests == m_plan->n) happen();
        }
        return code == 0 || fail("CameraControl Error: Control request failed: 00000000");
    }

    /// The device's part of the trouble.
    void happen() {
        const auto& [name, fault, code, event, devices] = m_plan->trouble;
        const bool isUnplugged = fault == RequestFault::Unplug || event == Event::Unplug;
        if (isUnplugged) --m_plugged;
        if (isUnplugged || event == Event::Replug) m_isAttached = false;
        if (event == Event::BecomeNoCamera) m_isCamera = false;
    }

    const std::vector<std::string>& m_answered;
    const Plan* m_plan = nullptr;
    unsigned m_requests = 0;             ///< since the plan began
    std::size_t m_plugged = 1;           ///< devices
    bool m_isCamera = true;              ///< has a VideoControl interface
    bool m_hasInterface = false;         ///< opened
    bool m_isAttached = false;           ///< has not been unplugged since it was opened
    Block m_now{23, 11, 14, 22, 13, 20}; ///< the host's time, within one minute
    std::array<Block, 7> m_reported;     ///< last value of each field, zeros after a failure
    int m_item = -1;                     ///< of the pop-up
};

} // namespace

std::string text(const char* format, Block n) {
    n.resize(12);
    std::array<char, 200> filled{};
    (void)std::snprintf(
        filled.data(), filled.size(), format, n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8], n[9], n[10], n[11]);
    return filled.data();
}

std::vector<std::string> predict(Field field, int chosen, const Plan& plan, const std::vector<std::string>& answered) {
    Model model(answered);
    if (field != Clock) model.startUp();
    model.begin(plan);
    if (field == Clock ? model.startUp() : model.change(field, chosen))
        model.journal.push_back(model.window());
    else
        model.journal.insert(model.journal.end(), {"AlertWindow", "exit 0"});
    return model.journal;
}
