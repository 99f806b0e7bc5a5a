#pragma once

#include "RequestFaults.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

// Predicts what the program asks, says, shows and leaves in the device, also when requests fail. Written from the
// rules of the device (docs/device.md) and of the window, not from the code.

using Block = std::vector<int>;

// What a device holds at first. Its clock is the test host's, or wrong.
inline constexpr std::array<std::uint8_t, 13> kSettings{0, 0x5A, 23, 11, 14, 22, 13, 20, 0x21, 1, 0xA7, 0x3B, 0xC9};
inline constexpr std::array<std::uint8_t, 7> kAudio{0x6D, 11, 22, 33, 0x92, 55, 0xE4};
inline constexpr std::array<std::uint8_t, 6> kWrongClock{9, 1, 2, 3, 4, 5};

/// What an action changes. The first six are the settings that a device keeps; start-up is about the clock.
enum Field : std::size_t { Microphone, Headphone, Hdmi, Aux, BitRate, Hdcp, Versions, Clock };

/// Fills in a format of at most twelve numbers.
std::string text(const char* format, Block numbers);

inline constexpr auto* kKept = "kept: %d %d %d %d %d %d"; ///< a line of the journal with what `held` returns

/// The settings that a device keeps, by field.
template <class Device>
Block held(const Device& device) {
    return {device.audio[3], device.audio[5], device.audio[1], device.audio[2], device.settings[8], device.settings[9]};
}

/// What happens to a device as a whole.
enum class Event : std::uint8_t { None, Unplug, Replug, BecomeNoCamera };

/// What one request meets.
struct Trouble {
    const char* name;
    std::optional<RequestFault> fault;
    Event event = Event::None; ///< right after the request
    std::size_t devices = 1;   ///< on the bus; the program opens the first that is plugged in
};
/// The first four have a fault that makes the request fail.
inline constexpr std::array<Trouble, 9> kTroubles{{
    {"stall", RequestFault::Stall},
    {"timeout", RequestFault::TimeOut},
    {"short data", RequestFault::ShortData},
    {"gone during", RequestFault::Unplug},
    {"garbage", RequestFault::Garbage},
    {"gone after", {}, Event::Unplug},
    {"back after", {}, Event::Replug},
    {"no camera", RequestFault::Stall, Event::BecomeNoCamera},
    {"another device", RequestFault::Unplug, Event::None, 2},
}};

/// When an action meets the trouble.
struct Plan {
    Trouble trouble;
    unsigned n; ///< at this request; 0: before the first one, which is for events only
    bool twice; ///< the request after it stalls
};

/// Makes devices, the simulated ones and the model's, behave as planned.
template <class Devices>
void prepare(const Devices& devices, const Plan& plan) {
    auto& first = *devices.front();
    if (plan.trouble.fault) first.addFault({}, plan.n, *plan.trouble.fault);
    if (plan.twice) devices.back()->addFault({}, devices.size() > 1 ? 1 : plan.n + 1, RequestFault::Stall);
    const auto happen = [&first, event = plan.trouble.event] {
        if (event == Event::Unplug) first.unplug();
        if (event == Event::Replug) first.plugIn();
        if (event == Event::BecomeNoCamera) first.videoControlInterface.reset();
    };
    if (plan.n == 0) happen();
    first.onRequest = [happen, n = plan.n, number = 0U, note = first.onRequest](const auto& request) mutable {
        note(request);
        if (++number == n) happen();
    };
}

/// The journal of an action as TestHost has it, with start-up before it unless the action is start-up itself. At its
/// end is what the window shows and what each device keeps.
/// `chosen`: the level, volume or state that the user chose.
std::vector<std::string> predict(Field field, int chosen, bool clockIsRight, const Plan& plan);
