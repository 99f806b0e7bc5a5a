#include "KernelDriver.h"

#include <array>
#include <cstdio>
#include <memory>

#include <libudev.h>

namespace {

template <class Object, Object* (*kUnref)(Object*)>
struct Unref {
    void operator()(Object* object) const { (void)kUnref(object); }
};
using Udev = std::unique_ptr<udev, Unref<udev, udev_unref>>;
using Enumerate = std::unique_ptr<udev_enumerate, Unref<udev_enumerate, udev_enumerate_unref>>;
using Device = std::unique_ptr<udev_device, Unref<udev_device, udev_device_unref>>;

std::string orEmpty(const char* text) {
    return text ? text : "";
}

/// A search in one subsystem, below `parent` if that is given.
class Search {
public:
    Search(udev* context, const char* subsystem, udev_device* parent = nullptr)
        : m_context(context), m_enumerate(udev_enumerate_new(context)) {
        (void)udev_enumerate_add_match_subsystem(m_enumerate.get(), subsystem);
        if (parent)
            (void)udev_enumerate_add_match_parent(m_enumerate.get(), parent);
    }
    Search& with(const char* attribute, const char* format, unsigned value) {
        std::array<char, 16> text{};
        (void)std::snprintf(text.data(), text.size(), format, value); // numbers of at most 10 digits
        (void)udev_enumerate_add_match_sysattr(m_enumerate.get(), attribute, text.data());
        return *this;
    }
    /// The first that was found, absent if none was.
    Device first() {
        (void)udev_enumerate_scan_devices(m_enumerate.get());
        udev_list_entry* entry = udev_enumerate_get_list_entry(m_enumerate.get());
        return Device(entry ? udev_device_new_from_syspath(m_context, udev_list_entry_get_name(entry))
                            : nullptr);
    }

private:
    udev* m_context;
    Enumerate m_enumerate;
};

} // namespace

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
