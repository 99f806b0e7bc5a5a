#pragma once

#include "DeviceCommands.h"
#include "UniqueFd.h"
#include "UsbIpSession.h"

#include <QFile>
#include <QIODevice>
#include <QString>
#include <QTcpServer>
#include <QTimer>

#include <cstdint>
#include <list>
#include <memory>

/// Serves one virtual device to one client at a time and executes its commands, in the thread's event loop. Of too many
/// connections the oldest is dropped, but never the one that has the device.
class UsbIpServer {
public:
    /// `commands`: file descriptor of the command lines; their answers are written to standard output.
    UsbIpServer(VirtualCaptureDevice& device, int commands);

    /// Serves on a TCP port of the loopback interface only. The error, empty on success.
    [[nodiscard]] QString listen(std::uint16_t port);
    /// Plugs the device into this machine's kernel, now and after every "plug". The error, empty on success.
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
    /// Hands one end of a connection, which stays the caller's, to the kernel's virtual host controller.
    [[nodiscard]] QString handToKernel(int socket);
    void sendFrames();
    void dropEnded();
    void execute(const QByteArray& line);
    [[nodiscard]] bool attached() const;

    VirtualCaptureDevice& m_device;
    CommandReader m_commands;
    QTcpServer m_listener;
    QTimer m_frameTimer;
    QFile m_attach{QStringLiteral("/sys/devices/platform/vhci_hcd.0/attach")}; ///< stays open: opening needs root
    bool m_reattaches = false;
    std::list<Connection> m_connections;
};
