#include "DeviceCommands.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <vector>

namespace {

using Words = std::vector<std::string_view>;

template <class Value>
struct Named {
    std::string_view name;
    Value value;
};

constexpr std::array<Named<RequestFault>, 5> kFaults{{{"stall", RequestFault::Stall},
                                                      {"time-out", RequestFault::TimeOut},
                                                      {"short", RequestFault::ShortData},
                                                      {"garbage", RequestFault::Garbage},
                                                      {"unplug", RequestFault::Unplug}}};
constexpr std::array<Named<std::optional<std::uint8_t>>, 5> kRequests{
    {{"set", 0x01}, {"get", 0x81}, {"get-len", 0x85}, {"get-info", 0x86}, {"any", std::nullopt}}};

template <class Table>
const typename Table::value_type* find(const Table& table, std::string_view name) {
    const auto found = std::ranges::find(table, name, &Table::value_type::name);
    return found == table.end() ? nullptr : &*found;
}

std::optional<unsigned> number(std::string_view text, unsigned least, unsigned most) {
    unsigned value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < least || value > most)
        return std::nullopt;
    return value;
}

Words split(std::string_view line) {
    constexpr std::string_view kBlank = " \t\r";
    Words words;
    while (true) {
        const auto start = line.find_first_not_of(kBlank);
        if (start == std::string_view::npos)
            return words;
        line.remove_prefix(start);
        const auto length = std::min(line.find_first_of(kBlank), line.size());
        words.push_back(line.substr(0, length));
        line.remove_prefix(length);
    }
}

/// fault KIND REQUEST SELECTOR [N]
std::string addFault(const Words& words, SimulatedDevice& device) {
    if (words.size() < 4 || words.size() > 5)
        return "error: fault KIND REQUEST SELECTOR [N]";
    const auto* fault = find(kFaults, words[1]);
    const auto* request = find(kRequests, words[2]);
    const auto selector = number(words[3], 0, 255);
    const auto n = words.size() == 5 ? number(words[4], 1, 1000000) : 1;
    if (!fault || !request || (!selector && words[3] != "any") || !n)
        return "error: no such fault, request, selector or count";
    RequestKind kind{request->value, std::nullopt};
    if (selector)
        kind.selector = static_cast<std::uint8_t>(*selector);
    device.addFault(kind, *n, fault->value);
    return "ok";
}

std::string describe(const SimulatedDevice& device) {
    std::array<char, 160> text{};
    (void)std::snprintf(
        text.data(), text.size(),
        "%s: bit rate H.264 %d MJPEG %d, HDCP %d, microphone %d, headphone %d, HDMI %d, AUX %d",
        device.plugged() ? "plugged" : "unplugged", device.settings[8] >> 4, device.settings[8] & 15,
        device.settings[9], device.audio[3], device.audio[5], device.audio[1], device.audio[2]);
    return text.data();
}

} // namespace

std::string carryOutCommand(std::string_view line, SimulatedDevice& device) {
    const Words words = split(line);
    const std::string_view command = words.empty() ? std::string_view() : words.front();
    if (command == "fault")
        return addFault(words, device);
    if (words.size() != 1)
        return "error: commands are fault, clear, unplug, plug, show";
    if (command == "clear")
        device.clearFaults();
    else if (command == "unplug")
        device.unplug();
    else if (command == "plug" && !device.plugged())
        device.plugIn();
    else if (command == "show")
        return describe(device);
    else if (command != "plug")
        return "error: commands are fault, clear, unplug, plug, show";
    return "ok";
}
