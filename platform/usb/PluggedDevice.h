#pragma once

#include "SysfsFolder.h"

#include <memory>
#include <string>

#include <sys/types.h>

/// A device that is plugged in, as sysfs shows it.
struct PluggedDevice {
    std::shared_ptr<const SysfsFolder> folder; ///< tells whether it is still plugged in
    std::string path;                          ///< of the folder
    std::string name;                          ///< bus and chain of ports: "1-2.3"; of a root hub "usb1"
    std::string node;                          ///< in usbfs
    dev_t number = 0;                          ///< of the node
    unsigned bus = 0;                          ///< from 1
};
