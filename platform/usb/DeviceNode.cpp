#include "DeviceNode.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

UsbResult resultOfOpen(int error) {
    switch (error) {
    case EACCES:
    case EPERM:
        return UsbCode::Access;
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return UsbCode::NoDevice;
    case EBUSY:
        return UsbCode::Busy;
    default:
        return UsbCode::InputOutput;
    }
}

} // namespace

DeviceNode openDeviceNode(const std::string& path, dev_t number) {
    OpenFile file(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file)
        return {resultOfOpen(errno), OpenFile()};
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISCHR(status.st_mode) || status.st_rdev != number)
        return {UsbCode::NoDevice, OpenFile()};
    return {UsbCode::Success, std::move(file)};
}
