#pragma once

#include "UsbIpMessages.h"

#include <cstddef>
#include <optional>
#include <span>

namespace UsbIp {

/// Makes messages of what a client sends, whatever that is. Keeps at most one message and what was appended
/// after it.
class Reader {
public:
    /// Longest transfer, in bytes: a control transfer can't be longer, and the stream's are shorter.
    static constexpr std::uint32_t kLongestTransfer = 65536;

    void append(std::span<const std::uint8_t> bytes);
    /// The next message, absent if it is not complete yet. After `Malformed` there is no next.
    [[nodiscard]] std::optional<Message> next();
    /// The device was handed out: from here on the client sends transfers.
    void imported() { m_imported = true; }

private:
    [[nodiscard]] std::optional<Message> nextOperation();
    [[nodiscard]] std::optional<Message> nextTransfer();
    [[nodiscard]] std::optional<Message> nextSubmit();
    [[nodiscard]] std::uint32_t number(std::size_t offset, unsigned size) const;
    void drop(std::size_t count);

    Bytes m_bytes;
    bool m_imported = false;
};

} // namespace UsbIp
