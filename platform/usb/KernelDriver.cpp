#include "KernelDriver.h"

#include "UdevSearch.h"

using namespace udevSearch;

KernelDriver findKernelDriver(unsigned bus, unsigned address, unsigned interface) {
    const Udev context(udev_new());
    if (!context)
        return {};
    const Device device =
        Search(context.get(), "usb").with("busnum", "%u", bus).with("devnum", "%u", address).first();
    if (!device)
        return {};
    const Device part =
        Search(context.get(), "usb", device.get()).with("bInterfaceNumber", "%02x", interface).first();
    if (!part)
        return {};
    KernelDriver driver{orEmpty(udev_device_get_driver(part.get())), {}, 0};
    // Index 0 takes pictures; the node with index 1 carries metadata and answers no control request.
    if (const Device node = Search(context.get(), "video4linux", part.get()).with("index", "%u", 0).first()) {
        driver.captureNode = orEmpty(udev_device_get_devnode(node.get()));
        driver.captureDevice = udev_device_get_devnum(node.get());
    }
    return driver;
}
