#include "LinuxUsbInterface.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr std::size_t kMaxData = 64; // bytes; the device's longest block has 26
constexpr std::string_view kKernelUvcDriver = "uvcvideo";
constexpr std::string_view kClaimedByProgram = "usbfs"; // by another program

UsbResult resultOfOpen(int error) {
    switch (error) {
    case EACCES:
    case EPERM: return UsbCode::Access;
    case ENOENT:
    case ENODEV:
    case ENXIO: return UsbCode::NoDevice;
    case EBUSY: return UsbCode::Busy;
    default: return UsbCode::InputOutput;
    }
}

/// Opens without blocking. `NoDevice` if it isn't the character device with this number.
UsbResult openDeviceNode(const std::string& path, dev_t number, UniqueFd& node) {
    UniqueFd file(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) return resultOfOpen(errno);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISCHR(status.st_mode) || status.st_rdev != number)
        return UsbCode::NoDevice;
    node = std::move(file);
    return UsbCode::Success;
}

} // namespace

UsbResult LinuxUsbInterface::GetInterfaceNumber(std::uint8_t& number) {
    number = m_number;
    return UsbCode::Success;
}

UsbResult LinuxUsbInterface::openNode(const std::string& path, dev_t number, const SysfsFolder& owner) {
    UniqueFd opened;
    const UsbResult result = openDeviceNode(path, number, opened);
    if (!owner.exists()) // unplugged before the node was opened: the number may be another device's
        return UsbCode::NoDevice;
    m_node = std::move(opened);
    return result;
}

UsbResult LinuxUsbInterface::openCaptureNode() {
    m_transport = transferThroughDriver;
    return openNode(m_captureNode.path, m_captureNode.number, m_captureNode.folder);
}

UsbResult LinuxUsbInterface::openUsbNode() {
    m_transport = transferDirectly;
    return openNode(m_device.node, m_device.number, m_folder);
}

bool LinuxUsbInterface::exists() const {
    // The device's folder was opened first: while it exists, the other one is not of a device plugged in later.
    return m_folder.exists() && m_device.folder->exists();
}

LinuxUsbInterface::CaptureNode LinuxUsbInterface::findCaptureNode() const {
    using namespace udevSearch;
    const Udev context(udev_new());
    const Device interface = deviceAt(context, m_path);
    if (!interface) return {};
    for (const std::string& folder : foldersWith(context, "video4linux", "index", interface.get())) {
        const Device node = deviceAt(context, folder);
        // The node with index 1 has metadata and answers no control request.
        if (node && numberIn(node, "index", 10) == 0)
            return {
                orEmpty(udev_device_get_devnode(node.get())), udev_device_get_devnum(node.get()), SysfsFolder(folder)};
    }
    return {};
}

UsbResult LinuxUsbInterface::selectTransport() {
    // The node of an earlier request is nearly always valid. A search costs many times as much as a request.
    if (!m_captureNode.path.empty() && openCaptureNode() == UsbCode::Success) return UsbCode::Success;
    m_captureNode = {};
    const std::string driver = m_folder.driver();
    if (!exists()) return UsbCode::NoDevice; // a vanished folder shows no driver
    if (driver.empty() || driver == kClaimedByProgram) return openUsbNode();
    // The driver inserts the interface's real number; all our requests have 0.
    if (driver != kKernelUvcDriver || m_number != 0) return UsbCode::NotSendable;
    CaptureNode found = findCaptureNode();
    if (!exists()) return UsbCode::NoDevice; // the node may be another device's
    if (found.path.empty()) return UsbCode::NotSendable;
    m_captureNode = std::move(found);
    return openCaptureNode();
}

UsbResult LinuxUsbInterface::ControlRequest(UsbControlRequest& request) {
    m_node = UniqueFd(); // closes the node that a failed request has left open
    m_notOpen = request.wLength > kMaxData ? UsbCode::NotSupported : selectTransport();
    if (m_notOpen != UsbCode::Success) return m_notOpen;
    // The answer of a failed request must not reach the caller: a block that is half zeros and then written back would
    // wipe settings.
    std::array<std::uint8_t, kMaxData> data{};
    UsbControlRequest sent = request;
    sent.pData = data.data();
    if (!Uvc::isGet(request)) std::copy_n(request.pData, request.wLength, data.begin());
    const int done = m_transport(m_node.get(), sent);
    if (done < 0) return done;
    request.wLenDone = static_cast<std::uint32_t>(done);
    if (request.wLenDone != request.wLength) return UsbCode::InputOutput;
    if (Uvc::isGet(request)) std::copy_n(data.begin(), request.wLength, request.pData);
    (void)USBInterfaceClose();
    return UsbCode::Success;
}

UsbResult LinuxUsbInterface::USBInterfaceClose() {
    if (!m_node) return m_notOpen;
    m_node = UniqueFd();
    m_notOpen = UsbCode::NotFound;
    return UsbCode::Success;
}
