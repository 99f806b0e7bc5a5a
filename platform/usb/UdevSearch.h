#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <libudev.h>

/// Looking for devices in sysfs. An object that could not be made is empty, and finds nothing.
namespace udevSearch {

template <class Object, Object* (*kUnref)(Object*)>
struct Unref {
    void operator()(Object* object) const { (void)kUnref(object); }
};
using Udev = std::unique_ptr<udev, Unref<udev, udev_unref>>;
using Enumerate = std::unique_ptr<udev_enumerate, Unref<udev_enumerate, udev_enumerate_unref>>;
using Device = std::unique_ptr<udev_device, Unref<udev_device, udev_device_unref>>;

/// What libudev does not know is a null pointer.
inline std::string orEmpty(const char* text) {
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
    /// That have the attribute.
    Search& with(const char* attribute) {
        (void)udev_enumerate_add_match_sysattr(m_enumerate.get(), attribute, nullptr);
        return *this;
    }
    /// Whose attribute is this number in this format.
    Search& with(const char* attribute, const char* format, unsigned value) {
        std::array<char, 16> text{};
        (void)std::snprintf(text.data(), text.size(), format, value); // numbers of at most 10 digits
        (void)udev_enumerate_add_match_sysattr(m_enumerate.get(), attribute, text.data());
        return *this;
    }
    /// The first that was found, absent if none was.
    Device first() {
        udev_list_entry* entry = scan();
        return Device(entry ? udev_device_new_from_syspath(m_context, udev_list_entry_get_name(entry))
                            : nullptr);
    }
    /// The folders in sysfs of all that were found.
    std::vector<std::string> folders() {
        std::vector<std::string> found;
        for (udev_list_entry* entry = scan(); entry; entry = udev_list_entry_get_next(entry))
            found.emplace_back(udev_list_entry_get_name(entry));
        return found;
    }

private:
    udev_list_entry* scan() {
        (void)udev_enumerate_scan_devices(m_enumerate.get());
        return udev_enumerate_get_list_entry(m_enumerate.get());
    }

    udev* m_context;
    Enumerate m_enumerate;
};

} // namespace udevSearch
