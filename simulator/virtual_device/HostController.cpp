#include "HostController.h"

#include "UsbIpMessages.h"

#include <QByteArray>
#include <QList>

#include <optional>

namespace {

/// First free port for high speed. The controller's table has a line a port: hub, port, state, and more.
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

QString HostController::attach(int socket) {
    const auto port = freePort();
    if (!port) return "no free port: is the module vhci_hcd loaded?";
    const QString command = QString("%1 %2 %3 %4").arg(*port).arg(socket).arg(UsbIp::kDeviceID).arg(UsbIp::kHighSpeed);
    constexpr auto kMode = QIODevice::WriteOnly | QIODevice::ExistingOnly | QIODevice::Unbuffered;
    const bool opened = m_attach.isOpen() || m_attach.open(kMode);
    return opened && m_attach.write(command.toLatin1()) > 0 ? QString() : m_attach.errorString();
}
