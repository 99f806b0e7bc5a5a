#include "CaptureFrames.h"

#include <algorithm>

#include <linux/usb/video.h>

namespace {

constexpr std::size_t kHeaderLength = 2; // of a payload (UVC 1.5, 2.4.3.3)

struct Color {
    std::uint8_t luma;
    std::uint8_t blue;
    std::uint8_t red;
};
constexpr std::array<Color, 8> kBars{{{235, 128, 128}, {210, 16, 146}, {170, 166, 16}, {145, 54, 34}, {106, 202, 222},
    {81, 90, 240}, {41, 240, 110}, {16, 128, 128}}};
constexpr Color kLine{235, 128, 128};

/// Byte `offset` of a frame, whose pixels come in pairs: luma, blue, luma, red.
std::uint8_t frameByte(std::size_t offset, unsigned count) {
    constexpr std::size_t kRowSize = std::size_t{2} * kFrameWidth;
    const std::size_t row = offset / kRowSize;
    const std::size_t column = offset % kRowSize / 2;
    const Color color = row == count % kFrameHeight ? kLine : kBars.at(column * kBars.size() / kFrameWidth);
    if (offset % 2 == 0) return color.luma;
    return offset % 4 == 1 ? color.blue : color.red;
}

} // namespace

void CaptureFrames::start(std::uint32_t frameInterval, Clock::time_point now) {
    m_interval = std::chrono::nanoseconds(100) * frameInterval;
    m_due = now;
    m_sent = 0;
}

Bytes CaptureFrames::nextPayload(std::size_t room, Clock::time_point now) {
    const std::size_t most = std::min<std::size_t>(room, kMaxPayload);
    if (most <= kHeaderLength) return {};
    const std::size_t length = std::min(most - kHeaderLength, kFrameSize - m_sent);
    const bool ends = m_sent + length == kFrameSize;
    const unsigned identifier = m_count % 2 * UVC_STREAM_FID; // toggles with every frame
    Bytes payload{kHeaderLength, static_cast<std::uint8_t>(UVC_STREAM_EOH | (ends ? UVC_STREAM_EOF : 0) | identifier)};
    for (std::size_t i = 0; i < length; ++i) payload.push_back(frameByte(m_sent + i, m_count));
    m_sent += length;
    if (ends) endFrame(now);
    return payload;
}

void CaptureFrames::endFrame(Clock::time_point now) {
    m_sent = 0;
    ++m_count;
    // A client that fetches too slowly gets the next frame at the usual pace, not a burst of late ones.
    m_due = std::max(m_due, now - m_interval) + m_interval;
}
