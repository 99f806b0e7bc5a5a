#pragma once

#include <ctime>

/// The host's time in seconds since the epoch, as `time` gives it.
[[nodiscard]] std::time_t hostTime();

/// Blocks the calling thread; `seconds` is positive.
void sleepForTimeInterval(double seconds);
