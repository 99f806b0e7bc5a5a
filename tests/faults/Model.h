#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

// The rules of the device and of the window in short, written from the rules and not from the code: what a
// request, an operation and an action do, say and leave behind, also when one request meets a fault.

/// What one request meets. The device goes away before or during it, comes back right after it, or turns out
/// to be no camera any more; or it goes away while a second one is plugged in.
enum class Trouble { None, Stall, TimeOut, ShortData, Garbage, GoneBefore, GoneDuring, BackAfter, NoCamera, Another };
inline constexpr std::array<const char*, 10> kTroubleNames{"none", "stall", "time-out", "short data", "garbage",
    "gone before", "gone during", "back after", "no camera", "another device"};

using Block = std::vector<int>;

struct ModelDevice {
    Block settings{0x00, 0x5A, 23, 11, 14, 22, 13, 20, 0x21, 1, 0xA7, 0x3B, 0xC9}; ///< the clock as it was set
    Block audio{0x6D, 11, 22, 33, 0x92, 55, 0xE4};
    int clockAge = 0; ///< seconds since it was set; stays below a minute here
    bool plugged = true;
    bool camera = true;
    int plugs = 0;
};

/// What the settings window shows.
struct ModelWindow {
    int microphone = 0, headphone = 0, hdmiAux = 0;
    std::string stars, firmware;
    int item = -1;
    bool hdcpOn = false;
    bool operator==(const ModelWindow&) const = default;
};

class Model {
public:
    explicit Model(std::vector<ModelDevice> plugged) : devices(std::move(plugged)) {}

    /// From now on the n-th request that reaches a device meets trouble, and the one after it a stall too if
    /// `twice`.
    void expectTrouble(Trouble kind, int n, bool twice);

    // The actions. False: the alert came up and the program has ended.
    bool startUp();
    bool chooseQuality(int level);
    bool changeVolume(int slider, int volume); ///< 0 microphone, 1 headphone, 2 HDMI and AUX
    bool switchHdcp(int state);

    std::vector<ModelDevice> devices;
    std::vector<std::string> journal;
    ModelWindow window;
    int requests = 0; ///< that reached a device since trouble was expected

private:
    struct Volume {
        std::size_t byte;
        const char *old, *setter, *getter;
    };
    static const std::array<Volume, 4> kVolumes;

    void log(const std::string& line) { journal.push_back("log " + line); }
    bool request(bool isGet, int selector, Block& block);
    bool carry(bool isGet, int selector, Block& block, Trouble met);
    void accept(int selector, const Block& block);
    [[nodiscard]] Block content(int selector) const;
    bool create();
    bool retried(const std::function<bool()>& call);
    void sleepOneSecond();

    bool syncClock();
    bool getBitRate(int& h264, int& mjpeg);
    bool setBitRate(int h264, int mjpeg);
    bool getVolume(const Volume& volume, int& value);
    bool setVolume(const Volume& volume, int value);
    bool getHdcp(int& state);
    bool setHdcp(int state);
    Block firmware();
    void showLevel(int h264);

    ModelDevice* m_open = nullptr;
    bool m_hasInterface = false;
    int m_openPlugs = 0;
    Trouble m_trouble = Trouble::None;
    int m_troubleAt = 0;
    bool m_twice = false;
};
