#pragma once

#include "ByteWriter.h"

#include <array>
#include <chrono>
#include <cstddef>

// The one format that the virtual device streams: YUYV, on a bulk endpoint.

inline constexpr std::uint16_t kFrameWidth = 160;  // pixels
inline constexpr std::uint16_t kFrameHeight = 120; // pixels
inline constexpr std::uint32_t kFrameSize = 2U * kFrameWidth * kFrameHeight;
/// Bytes of one payload with its header. A kernel's bulk transfer has at most 32 packets of 512 bytes, so that each
/// payload fits into one transfer.
inline constexpr std::uint32_t kMaxPayload = 16384;
/// Frame intervals, in units of 100 ns; the first is the default.
inline constexpr std::array<std::uint32_t, 2> kFrameIntervals{666666, 333333};

/// Colour bars with a line that moves down by one row per frame, cut into payloads at the pace of a camera.
class CaptureFrames {
public:
    using Clock = std::chrono::steady_clock;

    /// Starts with a new frame.
    void start(std::uint32_t frameInterval, Clock::time_point now);
    /// When the next payload may go out.
    [[nodiscard]] Clock::time_point due() const { return m_due; }
    /// The next payload, of at most `room` bytes; empty if there is room for a header only.
    [[nodiscard]] Bytes nextPayload(std::size_t room, Clock::time_point now);

private:
    void endFrame(Clock::time_point now);

    Clock::time_point m_due;
    Clock::duration m_interval{};
    std::size_t m_sent = 0; ///< bytes of the current frame
    unsigned m_count = 0;   ///< frames
};
