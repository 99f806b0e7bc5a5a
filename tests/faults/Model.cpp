#include "Model.h"

#include "TestHost.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

const Block kVersions{0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 5, 6, 7, 8, 9,
    10, 11, 12, 1, 2, 3, 4};
constexpr std::array kNow{23, 11, 14, 22, 13, 20}; // the test host's time, before its sleeps
constexpr std::array kPowerOn{0, 1, 1, 0, 0, 0};

template <class... Numbers>
std::string text(const char* format, Numbers... numbers) {
    std::array<char, 200> filled{};
    (void)std::snprintf(filled.data(), filled.size(), format, numbers...);
    return filled.data();
}

std::string clockText(const char* format, const Block& b) {
    return text(format, b[2], b[3], b[4], b[5], b[6], b[7]);
}

Block zeros(int selector) {
    Block block;
    block.resize(selector == 11 ? 13 : selector == 12 ? 26 : 7);
    return block;
}

} // namespace

const std::array<Model::Volume, 4> Model::kVolumes{{{3, "Mic gain", "SetMicrophoneVolume", "GetMicrophoneVolume"},
    {5, "Headphone vol", "setHaedphone", "GetHeadphoneVolume"}, {1, "HDMI vol", "setHaedphone", "GetHdmiVolume"},
    {2, "AUX vol", "setAuxVolume", ""}}};

void Model::expectTrouble(Trouble kind, int n, bool twice) {
    m_twice = twice;
    m_trouble = kind;
    m_troubleAt = n;
    requests = 0;
    if (kind == Trouble::GoneBefore && n == 1) devices[0].plugged = false;
}

void Model::sleepOneSecond() {
    journal.emplace_back("sleep 1.0");
    for (ModelDevice& device : devices) ++device.clockAge;
}

bool Model::create() {
    if (m_open && m_hasInterface) journal.emplace_back("release");
    log("call camera CreateInstance");
    m_open = nullptr;
    for (ModelDevice& device : devices) {
        if (device.plugged && !m_open) m_open = &device;
    }
    if (!m_open) {
        log("CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc.");
        return false;
    }
    m_hasInterface = m_open->camera;
    m_openPlugs = m_open->plugs;
    return true;
}

Block Model::content(int selector) const {
    if (selector == 12) return kVersions;
    if (selector == 13) return m_open->audio;
    Block settings = m_open->settings;
    settings[7] += m_open->clockAge;
    return settings;
}

/// The device acts on the field that the command names, or on all four volumes, and on nothing else.
void Model::accept(int selector, const Block& block) {
    const auto take = [&block](Block& into, std::initializer_list<std::size_t> bytes) {
        for (const std::size_t byte : bytes) into[byte] = block[byte];
    };
    if (selector == 13) take(m_open->audio, {1, 2, 3, 5});
    if (selector == 11 && block[0] == 4) take(m_open->settings, {8});
    if (selector == 11 && block[0] == 16) take(m_open->settings, {9});
    if (selector == 11 && block[0] == 2) {
        take(m_open->settings, {2, 3, 4, 5, 6, 7});
        m_open->clockAge = 0;
    }
}

bool Model::carry(bool isGet, int selector, Block& block, Trouble met) {
    const auto refused = [&](int code) {
        journal.push_back((isGet ? get(selector, {}) : set(selector, block)) + " ! " + std::to_string(code));
        return false;
    };
    if (met == Trouble::GoneDuring || met == Trouble::Another) {
        m_open->plugged = false;
        return refused(-4);
    }
    if (met == Trouble::Stall || met == Trouble::NoCamera || !m_open->camera) {
        m_open->camera = m_open->camera && met != Trouble::NoCamera;
        return refused(-9);
    }
    if (met == Trouble::TimeOut) return refused(-7);
    if (!isGet) accept(selector, block);
    if (met == Trouble::ShortData) return refused(-1);
    if (isGet) block = content(selector);
    for (int& byte : block) byte ^= isGet && met == Trouble::Garbage ? 0xA5 : 0;
    journal.push_back(isGet ? get(selector, block) : set(selector, block));
    return true;
}

bool Model::request(bool isGet, int selector, Block& block) {
    if (!m_hasInterface) {
        log("CameraControl Error: No interface to send request");
        return false;
    }
    bool done = false;
    if (m_open->plugged && m_open->plugs == m_openPlugs) {
        ++requests;
        done = carry(isGet, selector, block,
            requests == m_troubleAt                      ? m_trouble
                : requests == m_troubleAt + 1 && m_twice ? Trouble::Stall
                                                         : Trouble::None);
        if (m_trouble == Trouble::GoneBefore && requests == m_troubleAt - 1) m_open->plugged = false;
        if (m_trouble == Trouble::BackAfter && requests == m_troubleAt) {
            ++m_open->plugs;
            std::copy(kPowerOn.begin(), kPowerOn.end(), m_open->settings.begin() + 2);
            m_open->clockAge = 0;
        }
    }
    if (!done) log("CameraControl Error: Control request failed: 00000000");
    return done;
}

bool Model::syncClock() {
    const std::string fails = "getExtension_SyncRtc..setData Fail!\n";
    Block block = zeros(11);
    const bool read = request(true, 11, block);
    log(clockText("[Get old time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", block));
    if (!read) return log(fails), false;
    std::array now = kNow;
    now[5] += static_cast<int>(std::ranges::count(journal, "sleep 1.0"));
    const int apart = block[7] - now[5];
    if (std::equal(now.begin(), now.end() - 1, block.begin() + 2) && std::abs(apart) <= 2)
        return log(text("TimeInterval = %f\n", double{1} * apart)), true;
    std::ranges::copy(now, block.begin() + 2);
    block[0] = 2;
    if (!request(false, 11, block)) return log(fails), false;
    sleepOneSecond();
    const bool readBack = request(true, 11, block);
    log(clockText("[Get NEW time]Time : %02d-%02d-%02d %02d:%02d:%02d \n", block));
    if (!readBack) log(fails);
    return readBack;
}

bool Model::getBitRate(int& h264, int& mjpeg) {
    Block block = zeros(11);
    const bool read = request(true, 11, block);
    h264 = block[8] / 16;
    mjpeg = block[8] % 16;
    log(text("[Get old]video bit rate index : [H264]=%d, [MJPG]=%d \n", h264, mjpeg));
    if (!read) log("getExtension_getBitRate..getData Fail! \n");
    return read;
}

bool Model::setBitRate(int h264, int mjpeg) {
    const std::string fails = "getExtension_setBitRate..setData Fail! \n";
    Block block = zeros(11);
    if (!request(true, 11, block)) return log(fails), false;
    log(text("[Get old]video bit rate index : [H264]=%d, [MJPG]=%d \n", block[8] / 16, block[8] % 16));
    log(text("new video bit rate index : %d \n", h264 * 16 + mjpeg));
    block[0] = 4;
    block[8] = h264 * 16 + mjpeg;
    if (!request(false, 11, block)) return log(fails), false;
    return true;
}

bool Model::getVolume(const Volume& volume, int& value) {
    Block block = zeros(13);
    const bool read = request(true, 13, block);
    value = block[volume.byte];
    log(text("[Get old]%s = %d,\n", volume.old, value));
    if (!read) log(text("getExtension_%s..getData Fail! \n", volume.getter));
    return read;
}

bool Model::setVolume(const Volume& volume, int value) {
    Block block = zeros(13);
    const bool read = request(true, 13, block);
    log(text("[Get old]%s = %d,\n", volume.old, block[volume.byte]));
    if (!read) return log(text("getExtension_%s..getData Fail! \n", volume.setter)), false;
    block[volume.byte] = value;
    if (!request(false, 13, block)) return log(text("getExtension_%s..setData Fail! \n", volume.setter)), false;
    return true;
}

bool Model::getHdcp(int& state) {
    Block block = zeros(11);
    const bool read = request(true, 11, block);
    state = block[9];
    log(text("[Get old]HDCP state : %d,\n", state));
    log(!read ? "getExtension_getHdcpState..getData Fail! \n"
              : text("getExtension_HDCP state is %s.\n", state == 1 ? "On" : "Off"));
    return read;
}

bool Model::setHdcp(int state) {
    Block block = zeros(11);
    if (!request(true, 11, block)) return log("getExtension_setHdcpState..getData Fail! \n"), false;
    log(text("[Get old]HDCP state : %d,\n", block[9]));
    log(text("new HDCP state value : %d \n", state));
    block[0] = 16;
    block[9] = state;
    if (!request(false, 11, block)) return log("getExtension_setHdcpState..setData Fail! \n"), false;
    return true;
}

Block Model::firmware() {
    sleepOneSecond();
    Block b = zeros(12);
    const bool read = request(true, 12, b);
    log(text("[Get version]FW ver = %d.%d.%d.%d, Icatch fw ver= %d.%d.%d.%d, HDMI splitter fw ver= %d.%d.%d.%d\n",
        b[22], b[23], b[24], b[25], b[14], b[15], b[16], b[17], b[18], b[19], b[20], b[21]));
    if (!read) log("getExtension_GetFwVersion..getData Fail! \n");
    return b;
}

bool Model::retried(const std::function<bool()>& call) {
    return call() || (create() && call());
}

void Model::showLevel(int h264) {
    window.stars = h264 == 1 ? "img_starGood.png" : h264 == 2 ? "img_starGen.png" : "img_starBest.png";
}

bool Model::startUp() {
    if (!create() || !retried([this] { return syncClock(); })) return false;
    int h264 = 0;
    int mjpeg = 0;
    int hdcp = 0;
    getBitRate(h264, mjpeg);
    showLevel(h264);
    getVolume(kVolumes[0], window.microphone);
    getVolume(kVolumes[1], window.headphone);
    getVolume(kVolumes[2], window.hdmiAux);
    const Block b = firmware();
    getHdcp(hdcp);
    window.hdcpOn = hdcp == 1;
    window.firmware = text("Firmware v%d.%d.%d.%d (%02d%02d%02d%02d.%02d%02d%02d%02d)", b[22], b[23], b[24], b[25],
        b[14], b[15], b[16], b[17], b[18], b[19], b[20], b[21]);
    window.item = h264 < 3 ? h264 : -1;
    return true;
}

bool Model::chooseQuality(int level) {
    int h264 = 0;
    int mjpeg = 0;
    window.item = level;
    if (!retried([&] { return getBitRate(h264, mjpeg); })) return false;
    setBitRate(level, mjpeg);
    getBitRate(h264, mjpeg);
    showLevel(h264);
    return true;
}

bool Model::changeVolume(int slider, int volume) {
    const Volume& changed = kVolumes[static_cast<std::size_t>(slider)];
    if (!retried([&] { return setVolume(changed, volume); })) return false;
    if (slider == 2) setVolume(kVolumes[3], volume);
    getVolume(changed, slider == 0 ? window.microphone : slider == 1 ? window.headphone : window.hdmiAux);
    return true;
}

bool Model::switchHdcp(int state) {
    if (!retried([&] { return setHdcp(state); })) return false;
    int reported = 0;
    getHdcp(reported);
    window.hdcpOn = reported == 1;
    return true;
}
