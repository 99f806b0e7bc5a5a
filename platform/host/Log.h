#pragma once

#include <string_view>

/// Writes one line to the system log and to standard error.
/// printf-style; a trailing newline is not required and adds no empty line. What is longer than 1023 bytes is
/// cut.
[[gnu::format(printf, 1, 2)]] void systemLog(const char* format, ...);

/// Where `systemLog` delivers: `message` is filled in and complete, its trailing newline included.
void deliverLogMessage(std::string_view message);
