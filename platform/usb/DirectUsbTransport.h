#pragma once

#include "ControlTransport.h"

/// Through usbfs, where no driver holds the interface; `node` is the device's in usbfs. The interface is
/// claimed for the length of the request only. `Busy`: a driver or another program holds it.
[[nodiscard]] UsbResult transferDirectly(int node, UsbControlRequest& request, std::span<std::uint8_t> bytes);
