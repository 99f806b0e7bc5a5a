#pragma once

#include <string>

/// A device that is plugged in, as sysfs shows it.
struct PluggedDevice {
    std::string folder;   ///< in sysfs
    std::string name;     ///< bus and chain of ports: "1-2.3"; of a root hub "usb1"
    std::string node;     ///< in usbfs
    unsigned bus = 0;     ///< from 1
    unsigned address = 0; ///< on the bus, another one after each re-plug
};
