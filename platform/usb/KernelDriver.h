#pragma once

#include "SysfsFolder.h"

#include <string>

#include <sys/types.h>

/// The device node that the kernel's UVC driver made for the video of an interface.
struct CaptureNode {
    std::string path;   ///< empty: none
    dev_t number = 0;   ///< belongs to this node as long as its folder exists
    SysfsFolder folder; ///< goes when the device is unplugged and when the driver lets go of it
};

/// Which driver holds an interface in the kernel, as sysfs shows it now. Asking needs no rights.
struct KernelDriver {
    std::string name; ///< empty: none
    CaptureNode captureNode;
};

/// `path` is the interface's folder in sysfs. All is looked up afresh.
[[nodiscard]] KernelDriver findKernelDriver(const std::string& path);
