#pragma once

#include "Release.h"
#include "UniqueFd.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <libudev.h>
#include <sys/stat.h>
#include <unistd.h>

/// The folder of one device in sysfs, by descriptor: its path can lead to another device after a re-plug, a descriptor
/// can't. It blocks neither the device nor its driver.
class SysfsFolder {
public:
    SysfsFolder() = default;
    explicit SysfsFolder(const std::string& path) : m_folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}
    /// Whether the device still exists. False for a folder that could not be opened.
    [[nodiscard]] bool exists() const {
        struct stat status {};
        return m_folder && ::fstatat(m_folder.get(), "uevent", &status, 0) == 0; // every device has the file
    }
    /// The driver that is bound to the device now, empty if there is none.
    [[nodiscard]] std::string driver() const {
        std::array<char, 256> target{}; // "../../../bus/usb/drivers/uvcvideo"
        const ssize_t length = ::readlinkat(m_folder.get(), "driver", target.data(), target.size());
        const std::string_view path(target.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
        return std::string(path.substr(path.rfind('/') + 1));
    }

private:
    UniqueFd m_folder;
};

/// Searches in sysfs. An object that could not be created is empty and finds nothing.
namespace udevSearch {

using Udev = std::unique_ptr<udev, Release<udev_unref>>;
using Enumerate = std::unique_ptr<udev_enumerate, Release<udev_enumerate_unref>>;
using Device = std::unique_ptr<udev_device, Release<udev_device_unref>>;

/// libudev returns a null pointer for a missing value.
inline std::string orEmpty(const char* text) {
    return text ? text : "";
}

/// The device of a folder, absent if it was unplugged.
inline Device deviceAt(const Udev& context, const std::string& folder) {
    return Device(context ? udev_device_new_from_syspath(context.get(), folder.c_str()) : nullptr);
}

/// An attribute's number, 0 if there is none.
inline unsigned numberIn(const Device& device, const char* attribute, int base) {
    return static_cast<unsigned>(
        std::strtoul(orEmpty(udev_device_get_sysattr_value(device.get(), attribute)).c_str(), nullptr, base));
}

/// The folders of all devices of a subsystem that have the attribute, below `parent` if that is given.
inline std::vector<std::string> foldersWith(
    const Udev& context, const char* subsystem, const char* attribute, udev_device* parent = nullptr) {
    const Enumerate enumerate(context ? udev_enumerate_new(context.get()) : nullptr);
    std::vector<std::string> found;
    if (!enumerate) return found;
    (void)udev_enumerate_add_match_subsystem(enumerate.get(), subsystem);
    (void)udev_enumerate_add_match_sysattr(enumerate.get(), attribute, nullptr);
    if (parent) (void)udev_enumerate_add_match_parent(enumerate.get(), parent);
    (void)udev_enumerate_scan_devices(enumerate.get());
    for (auto* entry = udev_enumerate_get_list_entry(enumerate.get()); entry != nullptr;
         entry = udev_list_entry_get_next(entry))
        found.emplace_back(udev_list_entry_get_name(entry));
    return found;
}

} // namespace udevSearch
