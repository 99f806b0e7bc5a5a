#pragma once

#include "host/OpenFile.h"
#include "usb/Usb.h"

#include <string>

#include <sys/types.h>

/// A device node that was to be opened.
struct DeviceNode {
    UsbResult result = UsbCode::NoDevice;
    OpenFile file; ///< empty unless the result is success
};

/// Opens the node without waiting, whatever its name leads to. `NoDevice`: the name leads to something else
/// than the character device with this number.
[[nodiscard]] DeviceNode openDeviceNode(const std::string& path, dev_t number);
