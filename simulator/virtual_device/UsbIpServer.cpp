#include "UsbIpServer.h"

#include "DeviceCommands.h"

#include <QLocalSocket>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kMaxConnections = 8;
constexpr qsizetype kMaxCommand = 4096; // bytes

} // namespace

void UsbIpServer::DeleteLater::operator()(QIODevice* socket) const {
    socket->disconnect();
    socket->deleteLater();
}

UsbIpServer::UsbIpServer(VirtualCaptureDevice& device, int commands)
    : m_device(device), m_commands(commands, QSocketNotifier::Read) {
    m_listener.setProxy(QNetworkProxy::NoProxy); // also if the environment names one
    m_frameTimer.setSingleShot(true);
    m_frameTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_commands, &QSocketNotifier::activated, [this] { readCommands(); });
    QObject::connect(&m_listener, &QTcpServer::newConnection, [this] { acceptConnections(); });
    QObject::connect(&m_frameTimer, &QTimer::timeout, [this] { sendFrames(); });
}

QString UsbIpServer::listen(std::uint16_t port) {
    return m_listener.listen(QHostAddress::LocalHost, port) ? QString() : m_listener.errorString();
}

QString UsbIpServer::attachToThisMachine() {
    m_attaches = true;
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return std::strerror(errno);
    auto ours = std::make_unique<QLocalSocket>();
    ours->setSocketDescriptor(ends[0]);
    QString failure = m_controller.attach(ends[1]);
    (void)::close(ends[1]); // the kernel has a reference of its own
    if (failure.isEmpty()) {
        Connection& connection = addConnection(std::move(ours));
        connection.session.importNow(UsbIpSession::Clock::now());
    }
    return failure;
}

void UsbIpServer::acceptConnections() {
    while (auto* socket = m_listener.nextPendingConnection()) {
        // Drop the oldest connection without the device; real clients ask at once. One at most has the device.
        if (m_connections.size() >= kMaxConnections)
            m_connections.erase(std::ranges::find_if(
                m_connections, [](const Connection& connection) { return !connection.session.imported(); }));
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // small answers, for which the client waits
        addConnection(std::unique_ptr<QTcpSocket>(socket));
    }
}

template <class Socket>
UsbIpServer::Connection& UsbIpServer::addConnection(std::unique_ptr<Socket> owned) {
    Socket* socket = owned.release();
    Connection& connection = m_connections.emplace_back(socket, m_device);
    socket->setReadBufferSize(UsbIp::kMaxMessage);
    QObject::connect(socket, &Socket::readyRead, [this, socket, &connection] {
        connection.session.receive(m_device.device().plugged() && !attached(), UsbIpSession::Clock::now());
        sendFrames();
        socket->flush(); // at once: a client may close its end after a request
        dropEnded();
    });
    QObject::connect(socket, &Socket::bytesWritten, [this] { dropEnded(); });
    QObject::connect(socket, &Socket::disconnected, [this, &connection] {
        connection.lost = true;
        dropEnded();
    });
    return connection;
}

/// Sends the frames that are due, and waits for the next one.
void UsbIpServer::sendFrames() {
    using namespace std::chrono;
    const auto now = UsbIpSession::Clock::now();
    m_frameTimer.stop();
    for (Connection& connection : m_connections) {
        connection.session.sendFrames(now);
        if (const auto due = connection.session.due())
            m_frameTimer.start(std::max(ceil<milliseconds>(*due - now), 0ms));
    }
}

bool UsbIpServer::attached() const {
    return std::ranges::any_of(
        m_connections, [](const Connection& connection) { return connection.session.imported(); });
}

/// A client that leaves has unplugged the device. On the loopback interface it can be attached again at once.
void UsbIpServer::dropEnded() {
    const bool plugged = m_device.device().plugged();
    const bool wasAttached = attached();
    m_connections.remove_if([&](const Connection& connection) {
        const UsbIpSession& session = connection.session;
        // At once if it has the device, which others wait for; else when all output is sent.
        const bool isDone = session.ended() && (session.imported() || connection.socket->bytesToWrite() == 0);
        return connection.lost || isDone || (session.imported() && !plugged);
    });
    if (!wasAttached || attached() || !plugged) return;
    m_device.device().unplug();
    if (!m_attaches) m_device.device().plugIn();
}

void UsbIpServer::readCommands() {
    std::array<char, kMaxCommand> bytes{};
    // Not by QFile, which would wait until there are as many bytes.
    const ssize_t count = ::read(static_cast<int>(m_commands.socket()), bytes.data(), bytes.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count < 0 && errno == EIO) { // what is typed at a terminal is for another program now
        using namespace std::chrono_literals;
        m_commands.setEnabled(false);
        QTimer::singleShot(1s, &m_commands, [this] { m_commands.setEnabled(true); });
        return;
    }
    if (count <= 0) {
        m_commands.setEnabled(false); // no more commands can follow
        return;
    }
    m_commandBytes.append(bytes.data(), count);
    for (auto end = m_commandBytes.indexOf('\n'); end >= 0; end = m_commandBytes.indexOf('\n')) {
        execute(m_commandBytes.first(end));
        m_commandBytes.remove(0, end + 1);
    }
    m_commandBytes.truncate(kMaxCommand + 1); // the rest of an overlong command must not become one of its own
}

void UsbIpServer::execute(const QByteArray& line) {
    const bool isOverlong = line.size() > kMaxCommand;
    QByteArray answer = isOverlong ? "error: too long for a command" : executeCommand(line, m_device.device());
    dropEnded();
    if (m_attaches && m_device.device().plugged() && !attached()) {
        if (const QString failure = attachToThisMachine(); !failure.isEmpty())
            answer = "error: " + failure.toLocal8Bit();
    }
    std::puts(answer.constData());
    (void)std::fflush(stdout); // a reader of a pipe gets it at once
}
