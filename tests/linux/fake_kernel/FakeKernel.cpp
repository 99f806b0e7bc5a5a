#include "FakeKernel.h"

#include "WireText.h"

#include <QString>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <utility>

#include <fcntl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

FakeKernel* running = nullptr;

template <class... Values>
std::string text(const char* format, Values... values) {
    return QString::asprintf(format, values...).toStdString();
}

/// The real path of a file of the fake kernel.
std::string pathOf(const std::string& file) {
    return std::getenv("UMOCKDEV_DIR") + file;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's --wrap makes the names
extern "C" int __real_open(const char* path, int flags, ...);
extern "C" int __wrap_open(const char* path, int flags, mode_t mode) {
    if (!running) return __real_open(path, flags, mode);
    const bool isNode = (flags & O_PATH) == 0;
    // Opening must not block, leave the file to child processes, or set a controlling terminal.
    if ((flags & O_CLOEXEC) == 0 || (isNode && flags != (O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)))
        running->forbidden.push_back(text("flags %x of %s", static_cast<unsigned>(flags), path));
    errno = isNode ? running->openError : 0;
    return errno == 0 ? __real_open(path, flags) : -1;
}
extern "C" int __wrap_fstat(int file, struct stat* status) {
    if (!running) return ::fstatat(file, "", status, AT_EMPTY_PATH);
    *status = {};
    const std::string path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file));
    status->st_mode = running->nodeKind;
    status->st_rdev = running->nodes.at(path.substr(path.rfind("/dev/"))) + running->numberShift;
    return 0;
}
// NOLINTEND(bugprone-reserved-identifier)

FakeKernel::FakeKernel() {
    running = this;
    device->onRequest = [this](const RecordedRequest& request) { calls.push_back(wireText(request)); };
    // Called in the testbed's thread while this process waits in ioctl, so that the arguments' pointers are valid.
    const auto handle = [](UMockdevIoctlBase* /*base*/, UMockdevIoctlClient* client, FakeKernel* self) -> gboolean {
        void* const argument = *reinterpret_cast<void**>(umockdev_ioctl_client_get_arg(client)->data);
        const long result =
            self->call(umockdev_ioctl_client_get_devnode(client), umockdev_ioctl_client_get_request(client), argument);
        umockdev_ioctl_client_complete(client, std::max(result, -1L), static_cast<int>(-std::min(result, 0L)));
        return TRUE;
    };
    g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(+handle), this);
}

FakeKernel::~FakeKernel() {
    unplug();
    running = nullptr;
    g_object_unref(m_handler);
    g_object_unref(m_testbed);
}

void FakeKernel::plug(const FakePlug& plug) {
    const auto bus = static_cast<unsigned>(std::stoi(plug.name));
    const unsigned minor = (bus - 1) * 128 + plug.address - 1;
    const std::string node = text("bus/usb/%03u/%03u", bus, plug.address);
    add(text("P: /devices/%s\nN: %s=00\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\nE: DEVNAME=/dev/%s\nE: MAJOR=189\n"
             "E: MINOR=%u\nA: busnum=%u\nA: devnum=%u\nA: idVendor=%04x\nA: idProduct=%04x\n",
        plug.name.c_str(), node.c_str(), node.c_str(), minor, bus, plug.address, plug.vendor, device->productID));
    const CaptureIdentity identity{device->vendorID, device->productID, plug.videoControlInterface};
    Bytes descriptors = deviceDescriptor(identity);
    append(descriptors, configurationDescriptor(identity));
    if (plug.descriptors) descriptors = *plug.descriptors;
    g_file_set_contents(pathOf("/dev/" + node).c_str(), reinterpret_cast<const char*>(descriptors.data()),
        std::ssize(descriptors), nullptr); // usbfs shows them in the node
    addNode("/dev/" + node, makedev(189, minor));
    if (!device->plugged()) device->plugIn();
    m_interface.clear();
    m_videos.clear();
    configure(plug);
}

void FakeKernel::configure(const FakePlug& plug) {
    if (!m_interface.empty()) {
        bind({});
        umockdev_testbed_remove_device(m_testbed, m_interface.c_str());
    }
    m_interface = text("/sys/devices/%s/%s:1.%u", plug.name.c_str(), plug.name.substr(plug.name.rfind('/') + 1).c_str(),
        plug.videoControlInterface);
    add(text("P: %s\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\n"
             "A: bInterfaceNumber=%02x\nA: bInterfaceClass=%02x\nA: bInterfaceSubClass=%02x\n",
        m_interface.c_str() + 4, plug.videoControlInterface, plug.interfaceClass, plug.interfaceSubClass));
    device->videoControlInterface = plug.videoControlInterface;
    bind(plug);
}

void FakeKernel::bind(const FakePlug& plug) {
    const std::filesystem::path driver = pathOf(m_interface + "/driver");
    std::filesystem::remove(driver);
    for (const std::string& video : std::exchange(m_videos, {}))
        umockdev_testbed_remove_device(m_testbed, video.c_str());
    m_driver = plug.driver;
    if (!m_driver.empty()) std::filesystem::create_symlink("../../../../bus/usb/drivers/" + m_driver, driver);
    for (int index = 0; plug.captureNode >= 0 && index < 2; ++index) { // the second one has metadata
        const int number = plug.captureNode + index;
        m_videos.push_back(m_interface + text("/video%d", number));
        add(text("P: %s\nN: video%d=00\nE: SUBSYSTEM=video4linux\nE: DEVNAME=/dev/video%d\nE: MAJOR=81\nE: MINOR=%d\n"
                 "A: index=%d\n",
            m_videos.back().c_str() + 4, number, number, number, index));
        addNode(text("/dev/video%d", number), makedev(81, static_cast<unsigned>(number)));
    }
}

void FakeKernel::add(const std::string& folder) {
    umockdev_testbed_add_from_string(m_testbed, folder.c_str(), nullptr);
}

void FakeKernel::addNode(const std::string& node, dev_t number) {
    if (nodes.emplace(node, number).second) umockdev_testbed_attach_ioctl(m_testbed, node.c_str(), m_handler, nullptr);
}

void FakeKernel::unplug() {
    for (const auto& [node, number] : std::exchange(nodes, {}))
        umockdev_testbed_detach_ioctl(m_testbed, node.c_str(), nullptr);
    umockdev_testbed_clear(m_testbed);
    device->unplug();
}

long FakeKernel::call(const std::string& node, unsigned long request, void* argument) {
    if (!device->plugged()) return -ENODEV;
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES:
    case USBDEVFS_CONNECTINFO:
    case USBDEVFS_GET_SPEED: return 0; // nothing depends on it
    case USBDEVFS_CONTROL:             // only for the active configuration
        if (static_cast<usbdevfs_ctrltransfer*>(argument)->bRequest != 8) break;
        *static_cast<std::uint8_t*>(static_cast<usbdevfs_ctrltransfer*>(argument)->data) = kConfigurationValue;
        return 1;
    case USBDEVFS_CLAIMINTERFACE:
        calls.push_back(text("claim %u", *static_cast<unsigned*>(argument)));
        if (m_claimed || !m_driver.empty()) return -EBUSY;
        m_claimed = *static_cast<unsigned*>(argument);
        return 0;
    case USBDEVFS_RELEASEINTERFACE:
        calls.push_back(text("release %u", *static_cast<unsigned*>(argument)));
        return std::exchange(m_claimed, std::nullopt) == *static_cast<unsigned*>(argument) ? 0 : -EINVAL;
    case USBDEVFS_SUBMITURB: return submit(*static_cast<usbdevfs_urb*>(argument));
    case USBDEVFS_REAPURBNDELAY:
        *static_cast<usbdevfs_urb**>(argument) = m_done;
        return std::exchange(m_done, nullptr) ? 0 : -EAGAIN;
    case USBDEVFS_DISCARDURB:
        m_done = static_cast<usbdevfs_urb*>(argument);
        m_done->status = -ENOENT;
        return 0;
    case UVCIOC_CTRL_QUERY: return query(node, *static_cast<uvc_xu_control_query*>(argument));
    default: break;
    }
    // A synchronous transfer, detaching a driver, resetting the device, and all others
    forbidden.push_back(text("ioctl %08lx", request));
    return -ENOTTY;
}

long FakeKernel::submit(usbdevfs_urb& urb) {
    const std::span bytes(static_cast<std::uint8_t*>(urb.buffer), static_cast<std::size_t>(urb.buffer_length));
    if (urb.type != USBDEVFS_URB_TYPE_CONTROL || bytes.size() < 8 || m_claimed != bytes[4])
        forbidden.emplace_back("a transfer without a claim");
    UsbControlRequest request = Uvc::requestOf(bytes.first<8>(), bytes.data() + 8);
    const UsbResult result = device->control(request);
    if (result == UsbCode::NoDevice) return -ENODEV;
    urb.status = result == UsbCode::Stall ? -EPIPE : 0;
    urb.actual_length = static_cast<int>(request.wLenDone);
    if (result != UsbCode::TimeOut) m_done = &urb;
    return 0;
}

long FakeKernel::query(const std::string& node, uvc_xu_control_query& query) {
    calls.push_back("query " + node);
    if (query.unit != 3 || query.selector < 10 || query.selector > 13) return -ENOENT;
    const bool isGet = (query.query & kUsbDeviceToHost) != 0;
    const Uvc::SetupPacket packet{isGet ? Uvc::kGetFromInterface : Uvc::kSetToInterface, query.query, 0, query.selector,
        *device->videoControlInterface, query.unit, static_cast<std::uint8_t>(query.size), 0};
    UsbControlRequest request = Uvc::requestOf(packet, query.data);
    const UsbResult result = device->control(request);
    if (result == UsbCode::Success) return 0;
    if (result != UsbCode::InputOutput) return -EPIPE;               // the reason depends on the kernel
    if (isGet) std::fill_n(query.data, query.size, std::uint8_t{0}); // a short answer, with zeros for the rest
    return request.wLenDone;
}
