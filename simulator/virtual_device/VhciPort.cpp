#include "VhciPort.h"

#include "OpenFile.h"
#include "UsbIpMessages.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

namespace {

const std::string kController = "/sys/devices/platform/vhci_hcd.0/";

/// First free port for high speed. The controller's table has a line a port: hub, port, state, and more.
std::optional<unsigned> freePort() {
    constexpr unsigned kFree = 4;
    std::ifstream table(kController + "status");
    std::string line;
    std::getline(table, line); // headings
    while (std::getline(table, line)) {
        std::array<char, 3> hub{};
        unsigned port = 0;
        unsigned state = 0;
        // NOLINTNEXTLINE(cert-err34-c): a line that is not read in full is skipped
        if (std::sscanf(line.c_str(), "%2s %u %u", hub.data(), &port, &state) == 3 && hub[0] == 'h'
            && hub[1] == 's' && state == kFree)
            return port;
    }
    return std::nullopt;
}

} // namespace

std::string attachToKernel(int socket) {
    const auto port = freePort();
    if (!port)
        return "no free port: is the module vhci_hcd loaded?";
    const std::string command = std::to_string(*port) + ' ' + std::to_string(socket) + ' '
                                + std::to_string(UsbIp::kDeviceID) + ' ' + std::to_string(UsbIp::kHighSpeed);
    const OpenFile attach(::open((kController + "attach").c_str(), O_WRONLY | O_CLOEXEC));
    if (!attach || ::write(attach.get(), command.data(), command.size()) < 0)
        return std::strerror(errno);
    return {};
}
