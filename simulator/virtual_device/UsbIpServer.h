#pragma once

#include "OpenFile.h"
#include "UsbIpSession.h"

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include <poll.h>

/// Serves one virtual device to one client at a time, and takes its commands. Everything runs in one loop.
/// When too many are connected, the one that came first leaves, but never the one that has the device.
class UsbIpServer {
public:
    /// `commands`: where command lines come from; their answers go to standard output.
    UsbIpServer(VirtualCaptureDevice& device, OpenFile commands)
        : m_device(device), m_commands(std::move(commands)) {}

    /// Serves on a TCP port of the loopback interface, and nowhere else. Empty on success, else what is
    /// wrong.
    [[nodiscard]] std::string listen(std::uint16_t port);
    /// Plugs the device into this machine's kernel, now and after every "plug". Empty on success.
    [[nodiscard]] std::string attachToThisMachine();
    /// Never returns.
    [[noreturn]] void run();

private:
    struct Connection {
        OpenFile socket;
        UsbIpSession session;
        bool lost = false;
    };

    void turn();
    [[nodiscard]] int patience(UsbIpSession::Clock::time_point now) const;
    void acceptConnection();
    void readFrom(Connection& connection);
    static void writeTo(Connection& connection);
    void dropEnded();
    void readCommands();
    void carryOut(const std::string& line);
    [[nodiscard]] bool attached() const;

    VirtualCaptureDevice& m_device;
    OpenFile m_commands;
    std::string m_commandBytes;
    OpenFile m_listener;
    bool m_attaches = false;
    std::list<Connection> m_connections;
};
