#pragma once

#include "SimulatedBus.h"

#include <ctime>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// The host of tests: its time advances by sleeps, which do not wait. All events are recorded in one journal, in order:
///   "log TEXT"    a log message, its newline included
///   "sleep 1.0"   a sleep, in seconds
///   "close"       an interface is closed
///   "exit 0"      the end of the program, or "fatal REASON"
///   "a1 81 00 0b 00 03 0d 00 | 00 5a"  a request, as `wireText` writes it
struct TestHost {
    static inline std::time_t now;
    /// The next USB step of each name fails: "device object" and "interface object" give none, "release" and "close"
    /// return `NotFound`.
    static inline std::set<std::string> failing;
    static inline std::vector<std::string> journal;

    /// Resets all: UTC, an empty journal, and one device on the simulated bus whose clock is right.
    static void reset();
    static void note(const std::string& entry) { journal.push_back(entry); }
    /// Returns the journal, or only its requests, and empties it.
    static std::vector<std::string> take() { return std::exchange(journal, {}); }
    static std::vector<std::string> takeRequests();
};

/// The device on the simulated bus.
[[nodiscard]] inline SimulatedDevice& device() {
    return *SimulatedBus::instance().devices.front();
}

/// Thrown by the program's `exit` and `fatalStop`, so that the test continues after it.
struct ProgramEnd : std::runtime_error {
    using runtime_error::runtime_error; ///< "exit STATUS" or "fatal REASON"
};

/// The end of the program that the part causes, empty if it returns.
[[nodiscard]] std::string endOf(const std::function<void()>& part);
