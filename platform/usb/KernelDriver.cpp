#include "KernelDriver.h"

#include "UdevSearch.h"

using namespace udevSearch;

KernelDriver findKernelDriver(const std::string& path) {
    const Udev context(udev_new());
    const Device interface = deviceAt(context, path);
    if (!interface)
        return {};
    KernelDriver driver{orEmpty(udev_device_get_driver(interface.get())), {}};
    for (const std::string& folder : foldersWith(context, "video4linux", "index", interface.get())) {
        const Device node = deviceAt(context, folder);
        // Index 0 captures; the node with index 1 carries metadata and answers no control request.
        if (!node || numberIn(node, "index", 10) != 0)
            continue;
        driver.captureNode = {orEmpty(udev_device_get_devnode(node.get())),
                              udev_device_get_devnum(node.get()), SysfsFolder(folder)};
        break;
    }
    return driver;
}
