#include "Model.h"

#include "TestHost.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

using Bytes = std::vector<std::size_t>; // by their places in a block

/// The two operations on a field. Getting it reads its block and reports the value. Setting it does that too,
/// stores the new value and writes the block. The texts are log lines, as saved logs have them.
struct Operations {
    int selector;
    Bytes bytes;        ///< that hold the value
    const char* report; ///< with the value that was read
    const char* getFails;
    const char* setFailsToRead = nullptr;
    const char* setFailsToWrite = nullptr;
    int command = 0;                    ///< byte 0 of the written block; 0: stays as it was read
    const char* announcement = nullptr; ///< with the new value
};

namespace {

constexpr int kSettings = 11;
constexpr int kVersions = 12;
constexpr int kAudio = 13;
const Bytes kClockBytes{2, 3, 4, 5, 6, 7};
const Bytes kVersionBytes{22, 23, 24, 25, 14, 15, 16, 17, 18, 19, 20, 21};
constexpr auto* kClockFails = "getExtension_SyncRtc..setData Fail!\n"; // whatever failed
constexpr auto* kBitRateFails = "getExtension_setBitRate..setData Fail! \n";

const std::array<Operations, 9> kOperations{{
    // in the order of the fields:
    {kAudio, {3}, "[Get old]Mic gain = %d,\n", "getExtension_GetMicrophoneVolume..getData Fail! \n",
        "getExtension_SetMicrophoneVolume..getData Fail! \n", "getExtension_SetMicrophoneVolume..setData Fail! \n"},
    {kAudio, {5}, "[Get old]Headphone vol = %d,\n", "getExtension_GetHeadphoneVolume..getData Fail! \n",
        "getExtension_setHaedphone..getData Fail! \n", "getExtension_setHaedphone..setData Fail! \n"},
    {kAudio, {1}, "[Get old]HDMI vol = %d,\n", "getExtension_GetHdmiVolume..getData Fail! \n",
        "getExtension_setHaedphone..getData Fail! \n", "getExtension_setHaedphone..setData Fail! \n"},
    {kAudio, {2}, "[Get old]AUX vol = %d,\n", nullptr, "getExtension_setAuxVolume..getData Fail! \n",
        "getExtension_setAuxVolume..setData Fail! \n"},
    {kSettings, {8}, "[Get old]video bit rate index : [H264]=%d, [MJPG]=%d \n",
        "getExtension_getBitRate..getData Fail! \n", kBitRateFails, kBitRateFails, 4,
        "new video bit rate index : %d \n"},
    {kSettings, {9}, "[Get old]HDCP state : %d,\n", "getExtension_getHdcpState..getData Fail! \n",
        "getExtension_setHdcpState..getData Fail! \n", "getExtension_setHdcpState..setData Fail! \n", 16,
        "new HDCP state value : %d \n"},
    {kVersions, kVersionBytes,
        "[Get version]FW ver = %d.%d.%d.%d, Icatch fw ver= %d.%d.%d.%d, HDMI splitter fw ver= %d.%d.%d.%d\n",
        "getExtension_GetFwVersion..getData Fail! \n"},
    {kSettings, kClockBytes, "[Get old time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", kClockFails, nullptr, kClockFails,
        2},
    {kSettings, kClockBytes, "[Get NEW time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", kClockFails},
}};

/// Fills in a format of at most twelve numbers.
std::string text(const char* format, Block n) {
    n.resize(12);
    std::array<char, 200> filled{};
    (void)std::snprintf(
        filled.data(), filled.size(), format, n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8], n[9], n[10], n[11]);
    return filled.data();
}

/// A value as it is reported: a bit rate by its levels of H.264 and of MJPEG, which have 4 bits each.
Block valueIn(const Block& block, Field field) {
    if (field == BitRate) return {block[8] / 16, block[8] % 16};
    Block value;
    for (const std::size_t byte : kOperations[field].bytes) value.push_back(block[byte]);
    return value;
}

} // namespace

void ModelDevice::plugIn() {
    plugged = true;
    ++plugs;
    setClock({0, 1, 1, 0, 0, 0});
}

void ModelDevice::setClock(const Block& calendar) {
    std::ranges::copy(calendar, settings.begin() + 2);
}

Block ModelDevice::block(int selector) const {
    const Block versions{0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 5, 6, 7, 8,
        9, 10, 11, 12, 1, 2, 3, 4};
    return selector == kSettings ? settings : selector == kVersions ? versions : audio;
}

/// It acts on the field that the command names, or on all four volumes, and on nothing else.
void ModelDevice::accept(int selector, const Block& written) {
    const std::map<int, Bytes> commands{{2, kClockBytes}, {4, {8}}, {16, {9}}};
    const Bytes bytes = selector == kAudio ? Bytes{1, 2, 3, 5} : commands.at(written[0]);
    for (const std::size_t byte : bytes) (selector == kAudio ? audio : settings)[byte] = written[byte];
}

void Model::expect(const Plan& plan) {
    m_plan = plan;
    requests = 0;
    plan.afterRequest(0, devices[0]);
}

bool Model::startUp() {
    if (!open() || !tryTwice([this] { return syncClock(); })) return false;
    for (const Field field : {BitRate, Microphone, Headphone, Hdmi, Versions, Hdcp}) get(field);
    if (m_reported[BitRate][0] < 3) m_item = m_reported[BitRate][0];
    return true;
}

/// After the first operation a failure only shows in what is read back.
bool Model::change(Field field, int chosen) {
    const bool isBitRate = field == BitRate;
    if (!tryTwice([&] { return isBitRate ? get(field) : set(field, chosen); })) return false;
    if (isBitRate) set(field, chosen * 16 + m_reported[field][1]);
    if (isBitRate) m_item = chosen;
    if (field == Hdmi) set(Aux, chosen);
    get(field);
    return true;
}

/// If the operation fails, the device is opened again and the operation is repeated once.
bool Model::tryTwice(const std::function<bool()>& operation) {
    return operation() || (open() && operation());
}

std::string Model::window() const {
    const int h264 = m_reported[BitRate][0];
    return text("window: volumes %d %d %d, item %d, HDCP %d, ",
               {m_reported[Microphone][0], m_reported[Headphone][0], m_reported[Hdmi][0], m_item,
                   m_reported[Hdcp][0] == 1 ? 1 : 0})
        + (h264 == 1        ? "img_starGood.png"
                : h264 == 2 ? "img_starGen.png"
                            : "img_starBest.png")
        + text(", Firmware v%d.%d.%d.%d (%02d%02d%02d%02d.%02d%02d%02d%02d)", m_reported[Versions]);
}

void Model::sleepOneSecond() {
    journal.emplace_back("sleep 1.0");
    ++m_now[5];
    for (ModelDevice& device : devices) ++device.settings[7];
}

bool Model::open() {
    if (m_hasInterface) journal.emplace_back("release");
    log("call camera CreateInstance");
    const auto found = std::ranges::find(devices, true, &ModelDevice::plugged);
    if (found == devices.end())
        return fail("CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc.");
    m_open = &*found;
    m_openPlugs = found->plugs;
    m_hasInterface = found->videoControlInterface.has_value();
    return true;
}

bool Model::get(Field field) {
    if (field == Versions) sleepOneSecond(); // the device needs it to gather them
    Block block;
    const bool done = read(field, block);
    m_reported[field] = valueIn(block, field);
    if (field == Hdcp && done)
        log(block[9] == 1 ? "getExtension_HDCP state is On.\n" : "getExtension_HDCP state is Off.\n");
    return done;
}

bool Model::set(Field field, int value) {
    Block block;
    if (!read(field, block, true)) return false;
    if (kOperations[field].announcement) log(text(kOperations[field].announcement, {value}));
    block[kOperations[field].bytes[0]] = value;
    return write(field, block);
}

/// The clock is set if it is more than two seconds wrong, and then read back.
bool Model::syncClock() {
    Block block;
    if (!read(Clock, block)) return false;
    const int apart = block[7] - m_now[5];
    if (std::equal(m_now.begin(), m_now.end() - 1, block.begin() + 2) && std::abs(apart) <= 2) {
        log("TimeInterval = " + std::to_string(double{1} * apart) + "\n");
        return true;
    }
    std::ranges::copy(m_now, block.begin() + 2);
    if (!write(Clock, block)) return false;
    sleepOneSecond();
    return read(NewClock, block);
}

/// Reads a field's block. What can't be read is reported as `block` was, zeros at first; setting a field of the
/// settings block says nothing of it.
bool Model::read(Field field, Block& block, bool toSetIt) {
    const Operations& of = kOperations[field];
    block.resize(devices[0].block(of.selector).size());
    const bool done = request(true, of.selector, block);
    if (done || !toSetIt || of.selector == kAudio) log(text(of.report, valueIn(block, field)));
    return done || fail(toSetIt ? of.setFailsToRead : of.getFails);
}

bool Model::write(Field field, Block& block) {
    const Operations& of = kOperations[field];
    if (of.command != 0) block[0] = of.command;
    return request(false, of.selector, block) || fail(of.setFailsToWrite);
}

bool Model::request(bool isGet, int selector, Block& block) {
    if (!m_hasInterface) return fail("CameraControl Error: No interface to send request");
    const bool isAlive = m_open->plugged && m_open->plugs == m_openPlugs;
    return (isAlive && transfer(isGet, selector, block))
        || fail("CameraControl Error: Control request failed: 00000000");
}

/// A request that reaches the device.
bool Model::transfer(bool isGet, int selector, Block& block) {
    ++requests;
    const bool isSecond = m_plan.twice && requests == m_plan.n + 1;
    const Trouble met = requests == m_plan.n ? m_plan.trouble : isSecond ? kStall : kNoTrouble;
    const int code = m_open->videoControlInterface ? met.code : kStall.code;
    if (!isGet && (code == 0 || met.fault == RequestFault::ShortData)) m_open->accept(selector, block);
    if (isGet && code == 0) block = m_open->block(selector);
    if (isGet && met.fault == RequestFault::Garbage) std::ranges::for_each(block, [](int& byte) { byte ^= 0xA5; });
    journal.push_back((isGet ? ::get(selector, code == 0 ? block : Block()) : ::set(selector, block))
        + (code == 0 ? "" : " ! " + std::to_string(code)));
    m_plan.afterRequest(requests, *m_open);
    return code == 0;
}
