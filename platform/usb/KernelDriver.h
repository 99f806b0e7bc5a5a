#pragma once

#include <cstdint>
#include <string>

#include <sys/types.h>

/// Who holds an interface of a device in the kernel, as sysfs shows it now. Asking needs no rights.
struct KernelDriver {
    std::string name;        ///< empty: none
    std::string captureNode; ///< device node that the driver made for the picture; empty: none
    dev_t captureDevice = 0; ///< its number
};

/// `bus` and `address` are where the device stands on the USB, `interface` the number in its descriptor. All
/// is looked up afresh: after a re-plug the node has another name.
[[nodiscard]] KernelDriver findKernelDriver(unsigned bus, unsigned address, unsigned interface);
