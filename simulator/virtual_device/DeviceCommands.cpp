#include "DeviceCommands.h"

#include "WireText.h"

#include <QByteArrayView>
#include <QList>

#include <algorithm>
#include <array>
#include <charconv>

namespace {

using Words = QList<QByteArray>;

template <class Value>
struct Named {
    QByteArrayView name;
    Value value;
};

constexpr std::array<Named<RequestFault>, 5> kFaults{
    {{"stall", RequestFault::Stall}, {"timeout", RequestFault::TimeOut}, {"short", RequestFault::ShortData},
        {"garbage", RequestFault::Garbage}, {"unplug", RequestFault::Unplug}}};
constexpr std::array<Named<std::optional<UVCRequest>>, 5> kRequests{
    {{"set", UVCRequest::SET_CUR}, {"get", UVCRequest::GET_CUR}, {"get-len", UVCRequest::GET_LEN},
        {"get-info", UVCRequest::GET_INFO}, {"any", std::nullopt}}};

template <class Table>
const typename Table::value_type* find(const Table& table, QByteArrayView name) {
    const auto found = std::ranges::find(table, name, &Table::value_type::name);
    return found == table.end() ? nullptr : &*found;
}

/// fault KIND REQUEST SELECTOR [N]
QByteArray addFault(const Words& words, SimulatedDevice& device) {
    if (words.size() < 4 || words.size() > 5) return "error: fault KIND REQUEST SELECTOR [N]";
    const auto* fault = find(kFaults, words[1]);
    const auto* request = find(kRequests, words[2]);
    const auto selector = decimalNumber(words[3], 0, 255);
    const auto n = words.size() == 5 ? decimalNumber(words[4], 1, 1000000) : 1;
    if (!fault || !request || (!selector && words[3] != "any") || !n)
        return "error: no such fault, request, selector or count";
    RequestKind kind{request->value, std::nullopt};
    if (selector) kind.selector = static_cast<std::uint8_t>(*selector);
    device.addFault(kind, *n, fault->value);
    return "ok";
}

QByteArray describe(const SimulatedDevice& device) {
    return (device.plugged() ? "plugged: " : "unplugged: ") + QByteArray::fromStdString(settingsText(device));
}

} // namespace

std::optional<unsigned> decimalNumber(const QByteArray& text, unsigned least, unsigned most) {
    unsigned value = 0;
    const auto [stop, error] = std::from_chars(text.begin(), text.end(), value);
    if (error != std::errc{} || stop != text.end() || value < least || value > most) return std::nullopt;
    return value;
}

QByteArray executeCommand(const QByteArray& line, SimulatedDevice& device) {
    const Words words = line.simplified().split(' '); // of an empty line, one empty word
    const QByteArray& command = words.front();
    if (command == "fault") return addFault(words, device);
    if (words.size() != 1) return "error: commands are fault, clear, unplug, plug, show";
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
