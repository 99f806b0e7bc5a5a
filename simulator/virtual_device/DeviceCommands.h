#pragma once

#include "SimulatedDevice.h"

#include <QByteArray>

#include <optional>

/// A decimal number from `least` to `most` without sign or blanks, absent for any other text.
[[nodiscard]] std::optional<unsigned> decimalNumber(const QByteArray& text, unsigned least, unsigned most);

/// Executes one command line (docs/virtual-device.md). The answer is one line without its newline.
[[nodiscard]] QByteArray executeCommand(const QByteArray& line, SimulatedDevice& device);
