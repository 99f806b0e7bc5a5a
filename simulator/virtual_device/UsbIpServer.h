#pragma once

#include "HostController.h"
#include "UsbIpSession.h"

#include <QByteArray>
#include <QIODevice>
#include <QSocketNotifier>
#include <QString>
#include <QTcpServer>
#include <QTimer>

#include <cstdint>
#include <list>
#include <memory>

/// Serves one virtual device to one client at a time, and takes its commands, in the thread's event loop.
/// When too many are connected, the oldest connection is dropped, but never the one that has the device.
class UsbIpServer {
public:
    /// `commands`: file descriptor that command lines come from; their answers go to standard output.
    UsbIpServer(VirtualCaptureDevice& device, int commands);

    /// Serves on a TCP port of the loopback interface, and nowhere else. Empty on success, else what is
    /// wrong.
    [[nodiscard]] QString listen(std::uint16_t port);
    /// Plugs the device into this machine's kernel, now and after every "plug". Empty on success.
    [[nodiscard]] QString attachToThisMachine();

private:
    /// A socket can't be deleted in one of its own signals.
    struct DeleteLater {
        void operator()(QIODevice* socket) const;
    };
    struct Connection {
        Connection(QIODevice* owned, VirtualCaptureDevice& device) : socket(owned), session(*owned, device) {}
        std::unique_ptr<QIODevice, DeleteLater> socket;
        UsbIpSession session;
        bool lost = false;
    };

    void acceptConnections();
    template <class Socket>
    Connection& addConnection(std::unique_ptr<Socket> owned);
    void sendFrames();
    void dropEnded();
    void readCommands();
    void execute(const QByteArray& line);
    [[nodiscard]] bool attached() const;

    VirtualCaptureDevice& m_device;
    QSocketNotifier m_commands;
    QByteArray m_commandBytes;
    QTcpServer m_listener;
    QTimer m_frameTimer;
    HostController m_controller;
    bool m_attaches = false;
    std::list<Connection> m_connections;
};
