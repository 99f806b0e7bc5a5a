#pragma once

#include "SimulatedDevice.h"

#include <string>
#include <string_view>

/// Carries out one command line (docs/virtual-device.md) and answers with one line, without its end:
/// "ok", what was asked for, or "error: ...". What the client may have to be told follows from `plugged()`.
[[nodiscard]] std::string carryOutCommand(std::string_view line, SimulatedDevice& device);
