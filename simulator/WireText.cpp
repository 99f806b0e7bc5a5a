#include "WireText.h"

#include <array>
#include <cstdio>

std::string hexText(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        std::array<char, 4> digits{};
        (void)std::snprintf(digits.data(), digits.size(), " %02x", byte); // always fits
        text += digits.data();
    }
    return text.substr(text.empty() ? 0 : 1);
}

std::string wireText(const RecordedRequest& request) {
    std::string text = hexText(request.setup) + " |";
    if (!request.data.empty()) text += ' ' + hexText(request.data);
    if (request.result != UsbCode::Success) text += " ! " + std::to_string(request.result);
    return text;
}

std::string settingsText(const SimulatedDevice& device) {
    std::array<char, 160> text{};
    (void)std::snprintf(text.data(), text.size(), // always fits
        "bit rate H.264 %d MJPEG %d, HDCP %d, microphone %d, headphone %d, HDMI %d, AUX %d", device.settings[8] >> 4,
        device.settings[8] & 15, device.settings[9], device.audio[3], device.audio[5], device.audio[1],
        device.audio[2]);
    return text.data();
}
