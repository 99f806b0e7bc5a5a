#pragma once

#include "usb/Usb.h"

#include <cstdint>
#include <span>

/// How a request reaches an interface: transfers it through `node`, the open device node. Its data stage is
/// `bytes`, not `request.pData`: they are sent, or hold the answer after success and anything after a
/// failure. Fewer bytes than `bytes.size()` are a failure. Blocks as long as `UsbInterface::ControlRequest`.
using ControlTransport = UsbResult (*)(int node, UsbControlRequest& request, std::span<std::uint8_t> bytes);
