#include "UsbIpServer.h"

#include "DeviceCommands.h"
#include "VhciPort.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kMostConnections = 8;
constexpr std::size_t kLongestCommand = 4096; // bytes
constexpr std::size_t kReadSize = 65536;

bool wouldWait(ssize_t result) {
    return result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

} // namespace

std::string UsbIpServer::listen(std::uint16_t port) {
    m_listener = OpenFile(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const int on = 1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (!m_listener || ::setsockopt(m_listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0
        || ::bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0
        || ::listen(m_listener.get(), static_cast<int>(kMostConnections)) != 0)
        return std::strerror(errno);
    return {};
}

std::string UsbIpServer::attachToThisMachine() {
    m_attaches = true;
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return std::strerror(errno);
    OpenFile ours(ends[0]);
    const OpenFile theirs(ends[1]);
    if (std::string failure = attachToKernel(theirs.get()); !failure.empty())
        return failure;
    m_connections.push_back({std::move(ours), UsbIpSession(m_device)});
    m_connections.back().session.importNow(UsbIpSession::Clock::now());
    return {};
}

void UsbIpServer::run() {
    while (true)
        turn();
}

int UsbIpServer::patience(UsbIpSession::Clock::time_point now) const {
    constexpr int kForEver = -1;
    int milliseconds = kForEver;
    for (const Connection& connection : m_connections) {
        if (const auto due = connection.session.due()) {
            const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - now).count();
            milliseconds = static_cast<int>(std::clamp<std::int64_t>(wait, 0, 1000));
        }
    }
    return milliseconds;
}

void UsbIpServer::turn() {
    std::vector<pollfd> waits{{m_commands.get(), POLLIN, 0}, {m_listener.get(), POLLIN, 0}};
    for (const Connection& connection : m_connections) {
        const int events = connection.session.output.empty() ? POLLIN : POLLIN | POLLOUT;
        waits.push_back({connection.socket.get(), static_cast<short>(events), 0});
    }
    // A failure is an interruption by a signal, after which nothing is ready.
    const int ready = ::poll(waits.data(), waits.size(), patience(UsbIpSession::Clock::now()));
    auto wait = waits.begin() + 2;
    for (Connection& connection : m_connections) {
        if (ready > 0 && (wait++->revents & (POLLIN | POLLHUP | POLLERR)) != 0)
            readFrom(connection);
        connection.session.proceed(UsbIpSession::Clock::now());
        writeTo(connection);
    }
    dropEnded();
    if (ready > 0 && waits[0].revents != 0)
        readCommands();
    if (ready > 0 && waits[1].revents != 0)
        acceptConnection();
}

bool UsbIpServer::attached() const {
    return std::ranges::any_of(m_connections,
                               [](const Connection& connection) { return connection.session.imported(); });
}

void UsbIpServer::acceptConnection() {
    OpenFile socket(::accept4(m_listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket)
        return;
    // Whoever means it has long asked, and who is merely silent must not keep others out. One of them at most
    // has the device.
    if (m_connections.size() >= kMostConnections)
        m_connections.erase(std::ranges::find_if(
            m_connections, [](const Connection& connection) { return !connection.session.imported(); }));
    const int on = 1;
    // A request's answer is small and waited for; without this it is merely slower.
    (void)::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    m_connections.push_back({std::move(socket), UsbIpSession(m_device)});
}

void UsbIpServer::readFrom(Connection& connection) {
    std::array<std::uint8_t, kReadSize> bytes{};
    const ssize_t count = ::recv(connection.socket.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (wouldWait(count))
        return;
    if (count <= 0) {
        connection.lost = true;
        return;
    }
    connection.session.receive(std::span(bytes).first(static_cast<std::size_t>(count)),
                               m_device.device().plugged() && !attached(), UsbIpSession::Clock::now());
}

void UsbIpServer::writeTo(Connection& connection) {
    Bytes& output = connection.session.output;
    if (output.empty() || connection.lost)
        return;
    const ssize_t count =
        ::send(connection.socket.get(), output.data(), output.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count > 0)
        output.erase(output.begin(), output.begin() + count);
    else if (!wouldWait(count))
        connection.lost = true;
}

/// A client that leaves has pulled the plug. On the loopback interface the device can be had again at once.
void UsbIpServer::dropEnded() {
    const bool plugged = m_device.device().plugged();
    const bool wasAttached = attached();
    m_connections.remove_if([&](const Connection& connection) {
        return connection.lost || (connection.session.ended() && connection.session.output.empty())
               || (connection.session.imported() && !plugged);
    });
    if (!wasAttached || attached() || !plugged)
        return;
    m_device.device().unplug();
    if (!m_attaches)
        m_device.device().plugIn();
}

void UsbIpServer::readCommands() {
    std::array<char, kLongestCommand> bytes{};
    const ssize_t count = ::read(m_commands.get(), bytes.data(), bytes.size());
    if (wouldWait(count))
        return;
    if (count <= 0) {
        m_commands = OpenFile(); // nobody is left to command
        return;
    }
    m_commandBytes.append(bytes.data(), static_cast<std::size_t>(count));
    for (auto end = m_commandBytes.find('\n'); end != std::string::npos; end = m_commandBytes.find('\n')) {
        carryOut(m_commandBytes.substr(0, end));
        m_commandBytes.erase(0, end + 1);
    }
    if (m_commandBytes.size() > kLongestCommand)
        m_commandBytes.clear();
}

void UsbIpServer::carryOut(const std::string& line) {
    std::string answer = carryOutCommand(line, m_device.device());
    dropEnded();
    if (m_attaches && m_device.device().plugged() && !attached()) {
        if (const std::string failure = attachToThisMachine(); !failure.empty())
            answer = "error: " + failure;
    }
    std::puts(answer.c_str());
    (void)std::fflush(stdout); // whoever waits for the answer through a pipe has it at once
}
