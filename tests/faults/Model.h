#pragma once

#include "RequestFaults.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

// Predicts what the program asks, logs and shows, also when requests fail. Written from the rules of the device
// (docs/device.md) and of the window, not from the code.

using Block = std::vector<int>;

/// What an action changes. The first six are the settings that a device stores; start-up sets the clock.
enum Field : std::size_t { Microphone, Headphone, Hdmi, Aux, BitRate, Hdcp, Versions, Clock };

/// Fills in a format of at most twelve numbers.
std::string text(const char* format, Block numbers);

/// What happens to a device right after a request.
enum class Event : std::uint8_t { None, Unplug, Replug, BecomeNoCamera };

struct Trouble {
    const char* name;
    std::optional<RequestFault> fault; ///< of the request
    int code = 0;                      ///< libusb's of the request with the fault, 0: success
    Event event = Event::None;
    std::size_t devices = 1; ///< on the bus; the program opens the first that is plugged in
};
/// The first four have a fault that makes the request fail.
inline constexpr std::array<Trouble, 9> kTroubles{{
    {"stall", RequestFault::Stall, -9},
    {"timeout", RequestFault::TimeOut, -7},
    {"short data", RequestFault::ShortData, -1},
    {"unplugged during", RequestFault::Unplug, -4},
    {"garbage", RequestFault::Garbage},
    {"unplugged after", {}, 0, Event::Unplug},
    {"plugged in again after", {}, 0, Event::Replug},
    {"no camera", RequestFault::Stall, -9, Event::BecomeNoCamera},
    {"another device", RequestFault::Unplug, -4, Event::None, 2},
}};

/// When the trouble occurs.
struct Plan {
    Trouble trouble;
    unsigned n; ///< at this request; 0: before the first one, for events only
    bool twice; ///< the request after it stalls
};

/// The journal of an action as TestHost has it, with start-up before it unless the action is start-up itself, and the
/// window's content at its end. `chosen`: the level, volume or state that the user chose. `answered`: the real journal,
/// from which only the data of successful reads is taken.
std::vector<std::string> predict(Field field, int chosen, const Plan& plan, const std::vector<std::string>& answered);
