#pragma once

#include "SimulatedDevice.h"

#include <QByteArray>
#include <QSocketNotifier>

#include <functional>
#include <optional>

/// A decimal number from `least` to `most` without sign or blanks, absent for any other text.
[[nodiscard]] std::optional<unsigned> decimalNumber(const QByteArray& text, unsigned least, unsigned most);

/// Executes one command line (docs/virtual-device.md). The answer is one line without its newline.
[[nodiscard]] QByteArray executeCommand(const QByteArray& line, SimulatedDevice& device);

/// Reads command lines in the thread's event loop.
class CommandReader {
public:
    /// `file`: descriptor to read from. `execute` is called with each line, without its newline.
    CommandReader(int file, std::function<void(const QByteArray&)> execute);

private:
    void read();

    QSocketNotifier m_input;
    QByteArray m_bytes; ///< of a line without its end
    std::function<void(const QByteArray&)> m_execute;
};
