#include "UsbIpServer.h"

#include <QLocalSocket>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kMaxConnections = 8;

/// First free port for high speed of the kernel's virtual host controller. Its table has a line per port: hub, port,
/// state, and more.
std::optional<unsigned> freePort() {
    constexpr unsigned kFree = 4;
    QFile table("/sys/devices/platform/vhci_hcd.0/status");
    if (!table.open(QIODevice::ReadOnly)) return std::nullopt;
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() > 2 && fields[0] == "hs" && fields[2].toUInt() == kFree) return fields[1].toUInt();
    }
    return std::nullopt;
}

} // namespace

void UsbIpServer::DeleteLater::operator()(QIODevice* socket) const {
    socket->disconnect();
    socket->deleteLater();
}

UsbIpServer::UsbIpServer(VirtualCaptureDevice& device, int commands)
    : m_device(device), m_commands(commands, [this](const QByteArray& line) { execute(line); }) {
    m_listener.setProxy(QNetworkProxy::NoProxy); // also if the environment names one
    m_frameTimer.setSingleShot(true);
    m_frameTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_listener, &QTcpServer::newConnection, [this] { acceptConnections(); });
    QObject::connect(&m_frameTimer, &QTimer::timeout, [this] { sendFrames(); });
}

QString UsbIpServer::listen(std::uint16_t port) {
    return m_listener.listen(QHostAddress::LocalHost, port) ? QString() : m_listener.errorString();
}

QString UsbIpServer::attachToThisMachine() {
    m_reattaches = true;
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return std::strerror(errno);
    auto ours = std::make_unique<QLocalSocket>();
    ours->setSocketDescriptor(ends[0]);
    const UniqueFd kernels(ends[1]); // the kernel keeps a reference of its own
    if (QString failure = handToKernel(ends[1]); !failure.isEmpty()) return failure;
    Connection& connection = addConnection(std::move(ours));
    connection.session.importNow(UsbIpSession::Clock::now());
    return {};
}

QString UsbIpServer::handToKernel(int socket) {
    const auto port = freePort();
    if (!port) return "no free port: is the module vhci_hcd loaded?";
    const QString command = QString("%1 %2 %3 %4").arg(*port).arg(socket).arg(UsbIp::kDeviceID).arg(UsbIp::kHighSpeed);
    constexpr auto kMode = QIODevice::WriteOnly | QIODevice::ExistingOnly | QIODevice::Unbuffered;
    const bool opened = m_attach.isOpen() || m_attach.open(kMode);
    return opened && m_attach.write(command.toLatin1()) > 0 ? QString() : m_attach.errorString();
}

void UsbIpServer::acceptConnections() {
    while (auto* socket = m_listener.nextPendingConnection()) {
        // Drop the oldest connection without the device; real clients ask at once. One at most has the device.
        if (m_connections.size() >= kMaxConnections)
            m_connections.erase(std::ranges::find_if(
                m_connections, [](const Connection& connection) { return !connection.session.imported(); }));
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // the client waits for small answers
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

/// Sends the frames that are due, and sets the timer for the next one.
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

/// The end of a client's connection unplugs the device; without --attach it is plugged in again at once. An ended
/// session with the device is dropped even if answers are unread.
void UsbIpServer::dropEnded() {
    const bool plugged = m_device.device().plugged();
    const bool wasAttached = attached();
    m_connections.remove_if([&](const Connection& connection) {
        const UsbIpSession& session = connection.session;
        return connection.lost || (session.imported() && !plugged)
            || (session.ended() && (session.imported() || connection.socket->bytesToWrite() == 0));
    });
    if (!wasAttached || attached() || !plugged) return;
    m_device.device().unplug();
    if (!m_reattaches) m_device.device().plugIn();
}

void UsbIpServer::execute(const QByteArray& line) {
    QByteArray answer = executeCommand(line, m_device.device());
    dropEnded();
    if (m_reattaches && m_device.device().plugged() && !attached()) {
        if (const QString failure = attachToThisMachine(); !failure.isEmpty())
            answer = "error: " + failure.toLocal8Bit();
    }
    std::puts(answer.constData());
    (void)std::fflush(stdout); // for a reader of a pipe
}
