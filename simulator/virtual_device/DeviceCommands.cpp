#include "DeviceCommands.h"

#include "WireText.h"

#include <QByteArrayView>
#include <QList>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include <unistd.h>

namespace {

using Words = QList<QByteArray>;

constexpr qsizetype kMaxCommand = 4096; // bytes of a line
constexpr const char* kUsage = "error: commands are fault, clear, unplug, plug, show";

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
    bool isNumber = false;
    const unsigned value = text.toUInt(&isNumber);
    return isNumber && value >= least && value <= most ? std::optional(value) : std::nullopt;
}

QByteArray executeCommand(const QByteArray& line, SimulatedDevice& device) {
    if (line.size() > kMaxCommand) return "error: too long for a command";
    const Words words = line.simplified().split(' '); // of an empty line, one empty word
    const QByteArray& command = words.front();
    if (command == "fault") return addFault(words, device);
    if (words.size() != 1) return kUsage;
    if (command == "clear")
        device.clearFaults();
    else if (command == "unplug")
        device.unplug();
    else if (command == "plug" && !device.plugged())
        device.plugIn();
    else if (command == "show")
        return describe(device);
    else if (command != "plug")
        return kUsage;
    return "ok";
}

CommandReader::CommandReader(int file, std::function<void(const QByteArray&)> execute)
    : m_input(file, QSocketNotifier::Read), m_execute(std::move(execute)) {
    QObject::connect(&m_input, &QSocketNotifier::activated, [this] { read(); });
}

void CommandReader::read() {
    std::array<char, kMaxCommand> bytes{};
    // Not by QFile, which would wait until the buffer is full.
    const ssize_t count = ::read(static_cast<int>(m_input.socket()), bytes.data(), bytes.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count <= 0) m_input.setEnabled(false); // at the end no more commands can follow
    if (count < 0 && errno == EIO)             // in the background of a terminal
        QTimer::singleShot(std::chrono::seconds(1), &m_input, [this] { m_input.setEnabled(true); });
    m_bytes.append(bytes.data(), std::max<ssize_t>(count, 0));
    for (auto end = m_bytes.indexOf('\n'); end >= 0; end = m_bytes.indexOf('\n')) {
        m_execute(m_bytes.first(end));
        m_bytes.remove(0, end + 1);
    }
    m_bytes.truncate(kMaxCommand + 1); // enough of an overlong line to refuse it at its end
}
