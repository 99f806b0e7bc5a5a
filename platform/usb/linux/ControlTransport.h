#pragma once

#include "Uvc.h"

/// Transfers one request through `node`, the open device node. A failed GET leaves any bytes in its buffer. Returns the
/// number of bytes transferred, or the negative code of a failure. Blocks as long as `UsbInterface::ControlRequest`.
using ControlTransport = int (*)(int node, const UsbControlRequest& request);

/// Through the kernel's UVC driver, also while another program streams video. `node` is the device's capture node.
/// Extension units only: the driver would alter or refuse any other request, so the result is `NotSendable`. After any
/// refusal by the driver it is `InputOutput`. Since Linux 6.12 the driver fills a short answer up with zeros and
/// reports success, so that all bytes count as transferred.
[[nodiscard]] int transferThroughDriver(int node, const UsbControlRequest& request);

/// Through usbfs, where no driver is bound to the interface; `node` is the device's in usbfs. The interface is claimed
/// during the request only. `Busy`: a driver or another program has claimed it.
[[nodiscard]] int transferDirectly(int node, const UsbControlRequest& request);
