#pragma once

#include "Usb.h"

#include <cstdint>
#include <span>

/// How a request reaches an interface: transfers it through `node`, the open device node. Its data stage is
/// `bytes`, not `request.pData`: they are sent, or hold the answer after success and anything after a
/// failure. Fewer bytes than `bytes.size()` are a failure, but since Linux 6.12 the driver fills up a short
/// answer with zeros and reports success. Blocks as long as `UsbInterface::ControlRequest`.
using ControlTransport = UsbResult (*)(int node, UsbControlRequest& request, std::span<std::uint8_t> bytes);

/// Through the kernel's UVC driver, also while another program streams video. `node` is the device's capture
/// node. Extension units only: any other request would not leave the driver byte for byte, so the result is
/// `NotSendable`. What the driver refuses, whatever its reason, is `InputOutput`.
[[nodiscard]] UsbResult transferThroughDriver(int node, UsbControlRequest& request, std::span<std::uint8_t> bytes);

/// Through usbfs, where no driver holds the interface; `node` is the device's in usbfs. The interface is
/// claimed for the length of the request only. `Busy`: a driver or another program holds it.
[[nodiscard]] UsbResult transferDirectly(int node, UsbControlRequest& request, std::span<std::uint8_t> bytes);
