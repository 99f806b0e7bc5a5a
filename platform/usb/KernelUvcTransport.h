#pragma once

#include "ControlTransport.h"

/// Through the kernel's UVC driver, also while another program streams video. `node` is the device's capture
/// node. Extension units only: any other request would not leave the driver byte for byte, so the result is
/// `NotSendable`.
[[nodiscard]] UsbResult transferThroughDriver(int node, UsbControlRequest& request,
                                              std::span<std::uint8_t> bytes);
