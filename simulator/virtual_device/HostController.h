#pragma once

#include <QFile>
#include <QString>

/// The kernel's virtual host controller, which the module vhci_hcd makes.
class HostController {
public:
    /// Hands `socket`, which stays the caller's, to the controller, which from then on speaks USB/IP on its other end.
    /// Needs root's rights the first time only. Empty on success, else what is wrong.
    [[nodiscard]] QString attach(int socket);

private:
    QFile m_attach{QStringLiteral("/sys/devices/platform/vhci_hcd.0/attach")};
};
