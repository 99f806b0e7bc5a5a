#pragma once

/// Aborts the program after one log line with the reason. For faults of the program or its resources, never for those
/// of a device or a user.
[[noreturn, gnu::format(printf, 1, 2)]] void fatalStop(const char* format, ...);
