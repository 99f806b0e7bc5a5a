#pragma once

#include <QString>

/// Hands `socket`, which stays the caller's, to the kernel's virtual host controller, which from then on
/// speaks USB/IP on its other end. Needs root and the module vhci_hcd. Empty on success, else what is wrong.
[[nodiscard]] QString attachToKernel(int socket);
