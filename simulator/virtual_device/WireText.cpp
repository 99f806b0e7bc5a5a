#include "WireText.h"

#include <array>
#include <cstdio>
#include <span>

namespace {

std::string hex(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        std::array<char, 4> digits{};
        (void)std::snprintf(digits.data(), digits.size(), "%02x ", byte); // always fits
        text += digits.data();
    }
    return text;
}

} // namespace

std::string wireText(const RecordedRequest& request) {
    std::string text = hex(request.setup) + "| " + hex(request.data);
    text.pop_back();
    if (request.result != UsbCode::Success)
        text += " ! " + std::to_string(request.result);
    return text;
}
