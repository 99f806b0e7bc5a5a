#pragma once

#include "SimulatedBus.h"

#include <ctime>
#include <string>
#include <utility>
#include <vector>

/// The host of tests and fuzzers: its time advances by sleeps only, which take none, and everything that
/// happens is recorded in one journal, in order:
///   "log TEXT"    a log message, its newline included
///   "sleep 1.0"   a sleep, in seconds
///   "release"     the release of an interface
///   "a1 81 00 0b 00 03 0d 00 | 00 5a"  a request, as `wireText` writes it
struct TestHost {
    std::time_t now = 1'700'000'000;
    std::time_t tick = 0; ///< seconds that pass after each look at the time
    /// The next USB step of this name reports the result and gives nothing: "devices", "device plug-in", "device
    /// object", "location", "interfaces", "interface plug-in", "release", "interface object", "number" or "close". Its
    /// name is emptied then.
    std::pair<std::string, UsbResult> failing;
    std::vector<std::string> journal;
    int journalCopy = -1; ///< file descriptor that gets every entry too, each with a NUL after it

    [[nodiscard]] static TestHost& instance();

    /// Starts anew: UTC, an empty journal, and one device on the simulated bus whose clock is in time.
    static void reset();
    /// Appends an entry to the journal.
    static void note(const std::string& entry);
    /// The journal so far, which is emptied. Only the requests, if asked for.
    static std::vector<std::string> take();
    static std::vector<std::string> takeRequests();
};

/// The device on the simulated bus.
[[nodiscard]] SimulatedDevice& device();

/// A GET or SET of a block of unit 3 as the journal shows it, before the result of a failed one.
[[nodiscard]] std::string get(int selector, const std::vector<int>& bytes);
[[nodiscard]] std::string set(int selector, const std::vector<int>& bytes);
