#include "VhciPort.h"

#include "OpenFile.h"
#include "UsbIpMessages.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <optional>

namespace {

const QString kController = "/sys/devices/platform/vhci_hcd.0/";

/// First free port for high speed. The controller's table has a line a port: hub, port, state, and more.
std::optional<unsigned> freePort() {
    constexpr unsigned kFree = 4;
    QFile table(kController + "status");
    if (!table.open(QIODevice::ReadOnly)) return std::nullopt;
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() > 2 && fields[0] == "hs" && fields[2].toUInt() == kFree) return fields[1].toUInt();
    }
    return std::nullopt;
}

} // namespace

QString attachToKernel(int socket) {
    const auto port = freePort();
    if (!port) return "no free port: is the module vhci_hcd loaded?";
    const QString command = QString("%1 %2 %3 %4").arg(*port).arg(socket).arg(UsbIp::kDeviceID).arg(UsbIp::kHighSpeed);
    QFile attach(kController + "attach");
    if (!attach.open(QIODevice::WriteOnly | QIODevice::ExistingOnly | QIODevice::Unbuffered)
        || attach.write(command.toLatin1()) < 0)
        return attach.errorString();
    return {};
}
