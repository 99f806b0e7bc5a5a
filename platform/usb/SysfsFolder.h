#pragma once

#include "host/OpenFile.h"

#include <string>

#include <fcntl.h>
#include <sys/stat.h>

/// The folder of one device in sysfs, kept by descriptor: its path leads to another device after a re-plug,
/// the descriptor never does. It holds neither the device nor its driver.
class SysfsFolder {
public:
    SysfsFolder() = default;
    explicit SysfsFolder(const std::string& path)
        : m_folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}
    /// Whether the device is still there. One that could not be opened is not.
    [[nodiscard]] bool exists() const {
        struct stat status {};
        return m_folder && ::fstatat(m_folder.get(), "uevent", &status, 0) == 0; // every device has the file
    }

private:
    OpenFile m_folder;
};
