#include "FakeKernel.h"

#include "CaptureDescriptors.h"
#include "Uvc.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <span>

#include <linux/usb/ch9.h>

namespace {

template <class... Numbers>
std::string text(const char* format, Numbers... numbers) {
    std::array<char, 64> bytes{};
    (void)std::snprintf(bytes.data(), bytes.size(), format, numbers...);
    return bytes.data();
}

/// Takes over what GLib handed out.
std::string taken(gchar* string) {
    std::string copy = string ? string : "";
    g_free(string);
    return copy;
}

} // namespace

FakeKernel::FakeKernel() : m_testbed(umockdev_testbed_new()), m_handler(umockdev_ioctl_base_new()) {
    g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(&FakeKernel::handle), this);
}

FakeKernel::~FakeKernel() {
    unplug();
    g_object_unref(m_handler);
    g_object_unref(m_testbed);
}

std::string FakeKernel::pathOf(const std::string& node) const {
    return taken(umockdev_testbed_get_root_dir(m_testbed)) + node;
}

std::string FakeKernel::addNode(const std::string& node) {
    std::string path = pathOf(node);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    umockdev_testbed_attach_ioctl(m_testbed, node.c_str(), m_handler, nullptr);
    m_nodes.push_back(node);
    return path;
}

void FakeKernel::forbid(const std::string& node) {
    const std::string path = pathOf(node);
    std::filesystem::remove(path);
    std::ofstream file(path);
    std::filesystem::permissions(path, std::filesystem::perms::none);
    // What only the emulation needs must not be what is in the way.
    std::filesystem::permissions(pathOf(""), std::filesystem::perms(0755));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(pathOf("/ioctl")))
        std::filesystem::permissions(entry, std::filesystem::perms::all);
}

void FakeKernel::plug(const FakePlug& plug) {
    const std::string node = text("/dev/bus/usb/%03u/%03u", plug.bus, plug.address);
    const std::string path = taken(umockdev_testbed_add_device(m_testbed, "usb", plug.name.c_str(), nullptr, "busnum",
        text("%u", plug.bus).c_str(), "devnum", text("%u", plug.address).c_str(), "idVendor",
        text("%04x", plug.vendor).c_str(), "idProduct", text("%04x", device->productID).c_str(), nullptr, "DEVTYPE",
        "usb_device", "DEVNAME", node.c_str(), "MAJOR", "189", "MINOR",
        text("%u", (plug.bus - 1) * 128 + plug.address - 1).c_str(), nullptr));
    m_devices.push_back(path);
    const CaptureIdentity identity{device->vendorID, device->productID, plug.videoControlInterface};
    std::vector<std::uint8_t> descriptors = deviceDescriptor(identity);
    append(descriptors, configurationDescriptor(identity));
    std::ofstream(addNode(node), std::ios::binary) // which usbfs gives to who reads the node
        .write(reinterpret_cast<const char*>(plug.descriptors.value_or(descriptors).data()),
            static_cast<std::streamsize>(plug.descriptors.value_or(descriptors).size()));
    m_devices.push_back(taken(umockdev_testbed_add_device(m_testbed, "usb",
        (plug.name + ":1." + std::to_string(plug.videoControlInterface)).c_str(), path.c_str(), "bInterfaceNumber",
        text("%02x", plug.videoControlInterface).c_str(), "bInterfaceClass", text("%02x", plug.interfaceClass).c_str(),
        "bInterfaceSubClass", "01", "bInterfaceProtocol", text("%02x", plug.interfaceProtocol).c_str(),
        "bAlternateSetting", " 0", nullptr, "DEVTYPE", "usb_interface", nullptr)));
    m_interface = m_devices.back();
    device->videoControlInterface = plug.videoControlInterface;
    if (!device->plugged()) device->plugIn();
    bind(plug);
}

void FakeKernel::bind(const FakePlug& plug) {
    m_driver = plug.driver;
    if (!plug.driver.empty())
        umockdev_testbed_set_attribute_link(
            m_testbed, m_interface.c_str(), "driver", ("../../../../bus/usb/drivers/" + plug.driver).c_str());
    if (plug.captureNode < 0) return;
    // The metadata node comes first, so that whoever takes the first one finds the wrong one.
    for (const int index : {1, 0}) {
        const auto number = static_cast<unsigned>(plug.captureNode + index);
        m_devices.push_back(taken(umockdev_testbed_add_device(m_testbed, "video4linux", text("video%u", number).c_str(),
            m_interface.c_str(), "index", text("%u", static_cast<unsigned>(index)).c_str(), nullptr, "DEVNAME",
            text("/dev/video%u", number).c_str(), "MAJOR", "81", "MINOR", text("%u", number).c_str(), nullptr)));
    }
    // A character device for which no rights are needed.
    std::filesystem::create_symlink(
        "/dev/null", addNode(text("/dev/video%u", static_cast<unsigned>(plug.captureNode))));
}

void FakeKernel::unbind() {
    std::filesystem::remove(pathOf(m_interface + "/driver"));
    m_driver.clear();
    if (m_devices.back() == m_interface) return;
    removeNode();
    removeDevice();
    removeDevice();
}

void FakeKernel::removeNode() {
    umockdev_testbed_detach_ioctl(m_testbed, m_nodes.back().c_str(), nullptr);
    std::filesystem::remove(pathOf(m_nodes.back()));
    m_nodes.pop_back();
}

void FakeKernel::removeDevice() {
    umockdev_testbed_uevent(m_testbed, m_devices.back().c_str(), "remove");
    umockdev_testbed_remove_device(m_testbed, m_devices.back().c_str());
    m_devices.pop_back();
}

void FakeKernel::unplug() {
    while (!m_nodes.empty()) removeNode();
    while (!m_devices.empty()) removeDevice();
    m_claimed.reset();
    m_urbs.clear();
    device->unplug();
}

/// Runs in the testbed's own thread while the caller waits in its ioctl. The caller is this same process: its
/// pointers can be followed.
gboolean FakeKernel::handle(UMockdevIoctlBase* /*base*/, UMockdevIoctlClient* client, gpointer self) {
    UMockdevIoctlData* data = umockdev_ioctl_client_get_arg(client);
    void* argument = nullptr;
    std::memcpy(&argument, data->data, sizeof argument);
    const Answer answer = static_cast<FakeKernel*>(self)->call(umockdev_ioctl_client_get_request(client), argument);
    umockdev_ioctl_client_complete(client, answer.error == 0 ? answer.result : -1, answer.error);
    return TRUE;
}

FakeKernel::Answer FakeKernel::call(unsigned long request, void* argument) {
    if (!device->plugged()) return {-1, ENODEV};
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES:
        *static_cast<std::uint32_t*>(argument) = USBDEVFS_CAP_ZERO_PACKET | USBDEVFS_CAP_BULK_CONTINUATION;
        return {0, 0};
    case USBDEVFS_CONNECTINFO: static_cast<usbdevfs_connectinfo*>(argument)->devnum = 2; return {0, 0};
    case USBDEVFS_GET_SPEED: return {USB_SPEED_HIGH, 0};
    case USBDEVFS_CONTROL: return control(*static_cast<usbdevfs_ctrltransfer*>(argument));
    case USBDEVFS_CLAIMINTERFACE: return claim(*static_cast<unsigned*>(argument));
    case USBDEVFS_RELEASEINTERFACE: return release(*static_cast<unsigned*>(argument));
    case USBDEVFS_SUBMITURB: return submit(*static_cast<usbdevfs_urb*>(argument));
    case USBDEVFS_REAPURBNDELAY: return reap(static_cast<void**>(argument));
    case USBDEVFS_DISCARDURB: return discard(static_cast<usbdevfs_urb*>(argument));
    case UVCIOC_CTRL_QUERY: return query(*static_cast<uvc_xu_control_query*>(argument));
    default: // detaching a driver, resetting the device, and whatever else
        forbidden.push_back(text("ioctl %08x", static_cast<unsigned>(request)));
        return {-1, ENOTTY};
    }
}

/// What libusb asks when it opens the device: which configuration is active.
FakeKernel::Answer FakeKernel::control(const usbdevfs_ctrltransfer& transfer) {
    constexpr std::uint8_t kGetConfiguration = 8;
    if (transfer.bRequestType != kUsbDeviceToHost || transfer.bRequest != kGetConfiguration || transfer.wLength != 1) {
        forbidden.emplace_back("a transfer of its own");
        return {-1, EPIPE};
    }
    *static_cast<std::uint8_t*>(transfer.data) = 1;
    return {1, 0};
}

FakeKernel::Answer FakeKernel::claim(unsigned interface) {
    calls.push_back(text("claim %u", interface));
    if (m_claimed || !m_driver.empty()) return {-1, EBUSY};
    m_claimed = interface;
    return {0, 0};
}

FakeKernel::Answer FakeKernel::release(unsigned interface) {
    calls.push_back(text("release %u", interface));
    if (m_claimed != interface) return {-1, EINVAL};
    m_claimed.reset();
    return {0, 0};
}

FakeKernel::Answer FakeKernel::submit(usbdevfs_urb& urb) {
    calls.emplace_back("transfer");
    const std::span bytes(static_cast<std::uint8_t*>(urb.buffer), static_cast<std::size_t>(urb.buffer_length));
    if (urb.type != USBDEVFS_URB_TYPE_CONTROL || bytes.size() < 8 || m_claimed != bytes[4])
        forbidden.emplace_back("a transfer without a claim");
    UsbControlRequest request = Uvc::requestOf(bytes.first<8>(), bytes.data() + 8);
    const UsbResult result = device->control(request);
    if (result == UsbCode::NoDevice) return {-1, ENODEV};
    urb.status = result == UsbCode::Stall ? -EPIPE : 0;
    urb.actual_length = static_cast<int>(request.wLenDone);
    m_urbs.push_back({&urb, result != UsbCode::TimeOut});
    return {0, 0};
}

FakeKernel::Answer FakeKernel::reap(void** argument) {
    const auto done = std::ranges::find_if(m_urbs, &Urb::done);
    if (done == m_urbs.end()) return {-1, EAGAIN};
    *argument = done->urb;
    m_urbs.erase(done);
    return {0, 0};
}

FakeKernel::Answer FakeKernel::discard(const usbdevfs_urb* urb) {
    const auto found = std::ranges::find(m_urbs, urb, &Urb::urb);
    if (found == m_urbs.end()) return {-1, EINVAL};
    found->urb->status = -ENOENT;
    found->done = true;
    return {0, 0};
}

FakeKernel::Answer FakeKernel::query(uvc_xu_control_query& query) {
    calls.emplace_back("query");
    if (query.unit != 3 || query.selector < 10 || query.selector > 13) return {-1, ENOENT};
    const bool isGet = (query.query & kUsbDeviceToHost) != 0;
    UsbControlRequest request{isGet ? Uvc::kGetFromInterface : Uvc::kSetToInterface, query.query,
        static_cast<std::uint16_t>(query.selector << 8),
        static_cast<std::uint16_t>(query.unit << 8 | *device->videoControlInterface), query.size, query.data, 0};
    switch (device->control(request)) {
    case UsbCode::Success: return {0, 0};
    case UsbCode::Stall: return {-1, EPIPE};
    case UsbCode::TimeOut: return {-1, ETIMEDOUT};
    case UsbCode::NoDevice: return {-1, ESHUTDOWN};
    default: // a short answer: so many bytes came, and zeros stand for the rest
        if (isGet) std::fill_n(query.data, query.size, std::uint8_t{0});
        return {static_cast<long>(request.wLenDone), 0};
    }
}
