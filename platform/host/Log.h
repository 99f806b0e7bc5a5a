#pragma once

#include <string_view>

/// Writes one line, cut after 1023 bytes, to the system log, and to standard error unless that is the journal and the
/// system log can be reached. printf-style; a trailing newline is not required and adds no empty line.
[[gnu::format(printf, 1, 2)]] void systemLog(const char* format, ...);

/// Called by `systemLog` with the whole message, its trailing newline included.
void deliverLogMessage(std::string_view message);
