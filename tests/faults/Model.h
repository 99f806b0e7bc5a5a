#pragma once

#include "RequestFaults.h"

#include <array>
#include <functional>
#include <string>

// Predicts what the program says, asks, shows and leaves in the device, also when a request fails. Written from
// the rules of the device (docs/device.md) and of the window, not from the code.

using Block = std::vector<int>;

enum class Event : std::uint8_t { None, Unplug, Replug, BecomeNoCamera };

/// What one request meets, on the simulated device and in the model.
struct Trouble {
    const char* name;
    int code;                            ///< the request's result; 0: none of its own
    std::optional<RequestFault> fault{}; ///< what the device does with the request
    Event event = Event::None;           ///< what happens to the device as a whole ...
    int eventAfter = 0;                  ///< ... after this request, or -1: after the one before
    std::size_t devices = 1;             ///< on the bus; the program opens the first that is plugged in
};

inline constexpr Trouble kNoTrouble{"none", 0};
inline constexpr Trouble kStall{"stall", -9, RequestFault::Stall};
inline constexpr std::array kTroubles{
    kStall,
    Trouble{"time-out", -7, RequestFault::TimeOut},
    Trouble{"short data", -1, RequestFault::ShortData},
    Trouble{"garbage", 0, RequestFault::Garbage},
    Trouble{"gone before", 0, {}, Event::Unplug, -1},
    Trouble{"gone during", -4, RequestFault::Unplug, Event::Unplug},
    Trouble{"back after", 0, {}, Event::Replug},
    Trouble{"no camera", -9, RequestFault::Stall, Event::BecomeNoCamera},
    Trouble{"another device", -4, RequestFault::Unplug, Event::Unplug, 0, 2},
};

/// The n-th request from now on meets the trouble, and the one after it a stall if `twice`.
struct Plan {
    Trouble trouble = kNoTrouble;
    int n = 0;
    bool twice = false;

    /// To be called with 0 at once, and with each request's number after it.
    template <class Device>
    void afterRequest(int number, Device& device) const {
        if (number != n + trouble.eventAfter) return;
        if (trouble.event == Event::Unplug || trouble.event == Event::Replug) device.unplug();
        if (trouble.event == Event::Replug) device.plugIn();
        if (trouble.event == Event::BecomeNoCamera) device.videoControlInterface.reset();
    }
};

struct ModelDevice {
    Block settings{0x00, 0x5A, 23, 11, 14, 22, 13, 20, 0x21, 1, 0xA7, 0x3B, 0xC9}; ///< in time with the test host
    Block audio{0x6D, 11, 22, 33, 0x92, 55, 0xE4};
    bool plugged = true;
    int plugs = 0;
    std::optional<int> videoControlInterface = 0;

    void unplug() { plugged = false; }
    void plugIn();
    void setClock(const Block& calendar);
    [[nodiscard]] Block block(int selector) const;
    void accept(int selector, const Block& written);
};

/// What the program reads and writes; the first six are settings that the device keeps.
enum Field : std::size_t { Microphone, Headphone, Hdmi, Aux, BitRate, Hdcp, Versions, Clock, NewClock };

class Model {
public:
    explicit Model(std::size_t devicesOnTheBus) : devices(devicesOnTheBus) {}

    /// Trouble comes as planned, requests are counted from now on.
    void expect(const Plan& plan);
    // The actions. False: the alert came up and the program has ended.
    bool startUp();
    bool change(Field field, int chosen);
    /// What the settings window shows.
    [[nodiscard]] std::string window() const;

    std::vector<ModelDevice> devices;
    std::vector<std::string> journal; ///< as TestHost has it
    int requests = 0;                 ///< that reached a device

private:
    void log(const std::string& line) { journal.push_back("log " + line); }
    bool fail(const std::string& line) { return log(line), false; }
    void sleepOneSecond();
    bool open();
    bool tryTwice(const std::function<bool()>& operation);
    bool get(Field field);
    bool set(Field field, int value);
    bool syncClock();
    bool read(Field field, Block& block, bool toSetIt = false);
    bool write(Field field, Block& block);
    bool request(bool isGet, int selector, Block& block);
    bool transfer(bool isGet, int selector, Block& block);

    Plan m_plan;
    Block m_now{23, 11, 14, 22, 13, 20}; ///< the test host's time; sleeps stay within this minute
    ModelDevice* m_open = nullptr;
    bool m_hasInterface = false; ///< what is open is a camera
    int m_openPlugs = 0;
    std::array<Block, 7> m_reported; ///< last, of each field; zeros after a failure
    int m_item = -1;                 ///< of the pop-up
};
