#pragma once

/// Ends the program at once (abort) after one log line that names what was missing: for faults of the
/// program or its resources, never for something that a device or a user did.
[[noreturn, gnu::format(printf, 1, 2)]] void fatalStop(const char* format, ...);
