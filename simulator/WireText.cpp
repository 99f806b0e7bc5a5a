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
    if (!request.data.empty())
        text += ' ' + hexText(request.data);
    if (request.result != UsbCode::Success)
        text += " ! " + std::to_string(request.result);
    return text;
}
