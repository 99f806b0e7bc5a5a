// The real code for Linux, the real libusb and the real libudev, on the fake kernel.

#include "CaptureDescriptors.h"
#include "FakeKernel.h"
#include "UvcBaseClass.h"
#include "WireText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const FakePlug kDirect{};
const FakePlug kKernel{.interfaceProtocol = 1, .driver = "uvcvideo", .captureNode = 4};

} // namespace

/// Stands in for the C library's: the fake kernel's nodes are a terminal and files, without the numbers of real ones. A
/// character device is taken for node 4 of the video devices, or for the one set here.
dev_t fakeCaptureDevice = makedev(81, 4);
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's --wrap makes the names
extern "C" int __wrap_fstat(int descriptor, struct stat* status) {
    // Past umockdev, which makes devices of files in some versions.
    const auto result = static_cast<int>(::syscall(SYS_fstat, descriptor, status));
    if (result == 0 && S_ISCHR(status->st_mode)) status->st_rdev = fakeCaptureDevice;
    const std::string path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor));
    if (const auto found = path.find("/dev/bus/usb/"); found != std::string::npos && S_ISREG(status->st_mode)) {
        status->st_mode = S_IFCHR;
        status->st_rdev =
            makedev(189, (std::stoi(path.substr(found + 13)) - 1) * 128 + std::stoi(path.substr(found + 17)) - 1);
    }
    return result;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

class LinuxUsb : public testing::Test {
protected:
    ~LinuxUsb() override {
        EXPECT_THAT(kernel.forbidden, IsEmpty());
        fakeCaptureDevice = makedev(81, 4);
    }

    /// The first VideoControl interface of the first device, absent if there is none.
    static std::unique_ptr<UsbInterface> open() {
        auto service = usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID);
        if (!service.object) return nullptr;
        const auto device = service.object->createPlugIn().object->QueryInterface();
        return CUvcBaseControl().getControlInferaceWithDeviceInterface(*device.object);
    }

    /// Plugged in and opened.
    std::unique_ptr<UsbInterface> plugIn(const FakePlug& plug) {
        kernel.plug(plug);
        auto interface = open();
        if (!interface) throw std::runtime_error("no VideoControl interface");
        return interface;
    }

    /// One request with the bytes of `block`. GET_CUR or SET_CUR.
    UsbResult request(UsbInterface& interface, std::uint8_t code, std::uint8_t selector, std::uint8_t unit = 3) {
        UsbControlRequest request{static_cast<std::uint8_t>(0x21 | (code & 0x80)), code,
            static_cast<std::uint16_t>(selector << 8), static_cast<std::uint16_t>(unit << 8),
            static_cast<std::uint16_t>(block.size()), block.data(), 0};
        return interface.ControlRequest(request);
    }
    UsbResult get(UsbInterface& interface) { return request(interface, 0x81, 13); }
    UsbResult set(UsbInterface& interface) { return request(interface, 0x01, 13); }

    std::vector<std::string> wire() {
        std::vector<std::string> lines;
        for (const RecordedRequest& recorded : kernel.device->requests) lines.push_back(wireText(recorded));
        return lines;
    }

    FakeKernel kernel;
    std::vector<std::uint8_t> block = std::vector<std::uint8_t>(7, 0xEE);
};

const std::vector<std::uint8_t> kUntouched(7, 0xEE);

TEST_F(LinuxUsb, RequestsThroughTheDriverDoNotOpenUsbfs) {
    const auto interface = plugIn(kKernel);
    EXPECT_EQ(get(*interface), UsbCode::Success);
    block[5] = 9;
    EXPECT_EQ(set(*interface), UsbCode::Success);
    EXPECT_THAT(wire(),
        ElementsAre(
            "a1 81 00 0d 00 03 07 00 | 6d ff c8 b0 92 80 e4", "21 01 00 0d 00 03 07 00 | 6d ff c8 b0 92 09 e4"));
    EXPECT_THAT(kernel.calls, ElementsAre("query", "query"));
}

TEST_F(LinuxUsb, DirectRequestsClaimForTheirLengthOnly) {
    const auto interface = plugIn(kDirect);
    EXPECT_EQ(get(*interface), UsbCode::Success);
    EXPECT_EQ(set(*interface), UsbCode::Success);
    EXPECT_THAT(wire(),
        ElementsAre(
            "a1 81 00 0d 00 03 07 00 | 6d ff c8 b0 92 80 e4", "21 01 00 0d 00 03 07 00 | 6d ff c8 b0 92 80 e4"));
    EXPECT_THAT(kernel.calls, ElementsAre("claim 0", "transfer", "release 0", "claim 0", "transfer", "release 0"));
    // Standard controls, and more than any of its blocks has
    block.resize(2);
    EXPECT_EQ(request(*interface, 0x81, 2, 2), UsbCode::Success);
    EXPECT_THAT(block, ElementsAre(128, 0));
    block.resize(200);
    EXPECT_EQ(get(*interface), UsbCode::NotSupported);
}

struct Unsendable {
    const char* name;
    FakePlug plug;
    std::uint8_t unit = 3;
    UsbResult close = UsbCode::NotSendable;
};

const FakePlug kOtherInterface{.videoControlInterface = 1, .driver = "uvcvideo", .captureNode = 4};

TEST_F(LinuxUsb, RequestsThatTheDriverCannotSendFail) {
    const std::vector<Unsendable> rows{
        {"VideoControl is interface 1", kOtherInterface},
        {"no capture node", {.driver = "uvcvideo"}},
        {"another driver", {.driver = "vendor"}},
        {"camera terminal", kKernel, 1, UsbCode::Success},
        {"processing unit", kKernel, 2, UsbCode::Success},
    };
    for (const Unsendable& row : rows) {
        SCOPED_TRACE(row.name);
        const auto interface = plugIn(row.plug);
        EXPECT_NE(request(*interface, 0x81, 2, row.unit), UsbCode::Success);
        EXPECT_EQ(interface->USBInterfaceClose(), row.close);
        EXPECT_THAT(wire(), IsEmpty());
        EXPECT_EQ(block, kUntouched);
        kernel.unplug();
    }
}

TEST_F(LinuxUsb, PacketsThatTheDriverWouldAlterAreNotSent) {
    const auto interface = plugIn(kKernel);
    const UsbControlRequest exact{0xA1, 0x81, 13 << 8, 3 << 8, 7, block.data(), 0};
    for (const auto& [type, value, index] : {std::tuple(0xC1, 0, 0), {0xA0, 0, 0}, {0xA1, 1, 0}, {0xA1, 0, 1}}) {
        UsbControlRequest other = exact;
        other.bmRequestType = static_cast<std::uint8_t>(type);
        other.wValue = static_cast<std::uint16_t>(other.wValue + value);
        other.wIndex = static_cast<std::uint16_t>(other.wIndex + index);
        EXPECT_EQ(interface->ControlRequest(other), UsbCode::NotSendable);
    }
    EXPECT_THAT(wire(), IsEmpty());
}

std::ptrdiff_t openFiles() {
    using std::filesystem::directory_iterator;
    return std::distance(directory_iterator("/proc/self/fd"), directory_iterator());
}

/// Counts open capture nodes, which are terminals here, and open nodes of usbfs.
std::ptrdiff_t openNodes() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::count_if(begin(files), end(files), [](const auto& file) {
        std::error_code closed;
        const std::string path = std::filesystem::read_symlink(file, closed);
        return path == "/dev/null" || path.find("/dev/bus/usb/") != std::string::npos;
    });
}

TEST_F(LinuxUsb, OnlyAFailedRequestLeavesTheNodeOpenAndTheBufferUntouched) {
    const auto idle = openNodes();
    for (const FakePlug& plug : {kKernel, kDirect}) {
        for (const RequestFault fault : {RequestFault::Stall, RequestFault::ShortData}) {
            SCOPED_TRACE(plug.driver + ' ' + std::to_string(static_cast<int>(fault)));
            const auto interface = plugIn(plug);
            kernel.device->addFault({}, 1, fault);
            block = kUntouched;
            EXPECT_NE(get(*interface), UsbCode::Success);
            EXPECT_EQ(block, kUntouched);
            EXPECT_EQ(openNodes(), idle + 1);
            EXPECT_EQ(get(*interface), UsbCode::Success);
            EXPECT_EQ(openNodes(), idle);
            kernel.device->addFault({}, 1, fault);
            EXPECT_NE(set(*interface), UsbCode::Success);
            EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::Success);
            EXPECT_EQ(openNodes(), idle);
            EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NotFound);
            EXPECT_EQ(set(*interface), UsbCode::Success);
            EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NotFound);
            kernel.unplug();
            EXPECT_EQ(get(*interface), UsbCode::NoDevice);
            EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NoDevice);
        }
    }
}

TEST_F(LinuxUsb, AfterARePlugWhateverIsOnThePortIsNotTheDevice) {
    for (const FakePlug& plug : {kKernel, kDirect}) {
        for (int row = 0; row < 6; ++row) {
            SCOPED_TRACE(plug.driver + ' ' + std::to_string(row));
            const auto interface = plugIn(plug);
            EXPECT_EQ(row % 2 == 0 ? get(*interface) : UsbCode::Success, UsbCode::Success);
            kernel.unplug();
            FakePlug next = plug; // the same under its old number, or under another one, or a device of another kind
            if (row / 2 == 1) next.address = 3;
            if (row / 2 == 2) next.vendor = 0x1D6B;
            kernel.plug(next);
            kernel.calls.clear();
            EXPECT_EQ(get(*interface), UsbCode::NoDevice);
            EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NoDevice);
            EXPECT_THAT(kernel.calls, IsEmpty());
            kernel.unplug();
        }
    }
}

TEST_F(LinuxUsb, RequestsTimeOutAfterFiveSeconds) {
    const auto interface = plugIn(kDirect);
    kernel.device->addFault({}, 1, RequestFault::TimeOut);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(get(*interface), UsbCode::TimeOut);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(5500));
    EXPECT_EQ(kernel.calls.back(), "release 0");
    EXPECT_EQ(get(*interface), UsbCode::Success);
}

/// Takes root's privilege away.
class AsNobody {
public:
    AsNobody() {
        constexpr uid_t kNobody = 65534;
        EXPECT_EQ(::seteuid(::getuid() == 0 ? kNobody : ::getuid()), 0);
    }
    ~AsNobody() { EXPECT_EQ(::seteuid(::getuid()), 0); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
};

TEST_F(LinuxUsb, CloseReportsMissingRights) {
    for (const auto& [plug, node] : {std::pair(kKernel, "/dev/video4"), std::pair(kDirect, "/dev/bus/usb/001/002")}) {
        SCOPED_TRACE(node);
        const auto interface = plugIn(plug);
        {
            kernel.forbid(node);
            const AsNobody nobody;
            EXPECT_EQ(get(*interface), UsbCode::Access);
            EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::Access);
        }
        kernel.unplug();
    }
}

TEST_F(LinuxUsb, OpensOnlyTheDevicesOwnNode) {
    for (const auto& [plug, node] : {std::pair(kKernel, "/dev/video4"), std::pair(kDirect, "/dev/bus/usb/001/002")}) {
        SCOPED_TRACE(node);
        const auto interface = plugIn(plug);
        const std::string path = kernel.pathOf(node);
        fakeCaptureDevice = makedev(81, 5); // the name has gone to another device
        std::filesystem::remove(path);
        ASSERT_EQ(::symlink("/dev/null", path.c_str()), 0);
        EXPECT_EQ(get(*interface), UsbCode::NoDevice);
        std::filesystem::remove(path);
        ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); // and opening must not wait for a writer
        EXPECT_EQ(get(*interface), UsbCode::NoDevice);
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NoDevice);
        EXPECT_THAT(kernel.calls, IsEmpty());
        kernel.unplug();
    }
}

TEST_F(LinuxUsb, TheTransportIsSelectedAtEachRequest) {
    const auto interface = plugIn(kDirect);
    FakePlug renumbered = kKernel;
    renumbered.captureNode = 3; // the known name is the metadata node's now
    for (const FakePlug& driver : {kDirect, kKernel, kDirect, renumbered, kDirect, kKernel}) {
        SCOPED_TRACE(driver.captureNode);
        kernel.unbind();
        kernel.bind(driver);
        fakeCaptureDevice = makedev(81, static_cast<unsigned>(driver.captureNode));
        kernel.calls.clear();
        EXPECT_EQ(get(*interface), UsbCode::Success);
        EXPECT_EQ(kernel.calls.front(), driver.driver.empty() ? "claim 0" : "query");
    }
}

TEST_F(LinuxUsb, RePlugsLeaveNoFileOpen) {
    std::ptrdiff_t before = 0;
    for (unsigned i = 0; i < 60; ++i) {
        FakePlug plug = i % 2 == 0 ? kDirect : kKernel;
        plug.address = 2 + i;
        if (plug.captureNode >= 0) plug.captureNode = static_cast<int>(i); // the node has another number each time
        fakeCaptureDevice = makedev(81, i);
        const auto interface = plugIn(plug);
        ASSERT_EQ(get(*interface), UsbCode::Success) << i;
        kernel.unplug();
        if (i == 9) before = openFiles();
    }
    EXPECT_LE(openFiles(), before);
}

TEST_F(LinuxUsb, TheFirstOfEqualDevicesAndLocations) {
    kernel.plug({.bus = 1, .address = 6, .name = "1-2", .vendor = 0x1D6B}); // some other device
    kernel.plug({.bus = 1, .address = 7, .name = "1-2.3"});
    kernel.plug({.bus = 3, .address = 5, .name = "3-4"});
    const auto services = usbBus().allServices();
    std::vector<std::uint32_t> locations;
    std::uint32_t location = 0;
    while (const auto service = services.object->next()) {
        const auto device = service->createPlugIn().object->QueryInterface();
        EXPECT_EQ(device.object->GetLocationID(location), UsbCode::Success);
        locations.push_back(location);
    }
    EXPECT_THAT(locations, testing::UnorderedElementsAre(0x01200000U, 0x01230000U, 0x03400000U));
    CUvcBaseControl control;
    control.initWithLocationID(0x03400000);
    EXPECT_TRUE(control.getDataFor(UVCRequest::GET_CUR, 7, 13, 3, block));
    auto first = usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID);
    EXPECT_EQ(first.object->createPlugIn().object->QueryInterface().object->GetLocationID(location), UsbCode::Success);
    std::erase(locations, 0x01200000U);
    EXPECT_EQ(location, locations.front());
}

TEST_F(LinuxUsb, WithoutAVideoControlInterfaceThereIsNone) {
    kernel.plug({.interfaceClass = 0xFF});
    EXPECT_FALSE(open());
    kernel.unplug();
    EXPECT_FALSE(open()); // nothing is plugged in
}

TEST_F(LinuxUsb, UnplugBetweenTwoStepsGivesNoDevice) {
    for (int turn = 0; turn < 12; ++turn) {
        SCOPED_TRACE(turn);
        kernel.plug(turn % 2 == 0 ? kDirect : kKernel);
        int stepsLeft = turn / 2;
        const auto then = [&](auto made) {
            if (stepsLeft-- == 0) kernel.unplug();
            return made;
        };
        const auto service = then(usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID).object);
        const auto plugIn = then(service->createPlugIn().object);
        const auto device = then(plugIn->QueryInterface().object);
        std::uint32_t location = 0;
        EXPECT_EQ(device->GetLocationID(location), UsbCode::Success); // which it was found by
        const auto found = then(device->CreateInterfaceIterator(Uvc::kVideoClass, Uvc::kVideoControlSubClass));
        EXPECT_EQ(found.result, turn < 6 ? UsbCode::NoDevice : UsbCode::Success);
        if (!found.object) continue;
        const auto interfaceService = then(found.object->next());
        const auto interface = then(interfaceService->createPlugIn().object->QueryInterface().object);
        EXPECT_EQ(get(*interface), UsbCode::NoDevice);
    }
}

TEST_F(LinuxUsb, MalformedDescriptorsDoNotHang) {
    const CaptureIdentity identity{TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID, 0};
    const Bytes device = deviceDescriptor(identity);
    // Two configurations, where libusb would look for the second in steps of 0
    Bytes endless = device;
    endless.back() = 2;
    append(endless, Bytes{11, 2, 11, 0, 1, 1, 0, 0x80, 50, 0, 0, 9, 2, 9, 0, 0, 2, 0, 0x80, 50});
    Bytes cut = device;
    append(cut, Bytes{9, 2, 0xCA});
    for (const auto& [descriptors, result] : {std::pair<Bytes, UsbResult>({}, UsbCode::InputOutput),
             {cut, UsbCode::InputOutput}, {endless, UsbCode::Success}, {Bytes(200, 0), UsbCode::InputOutput}}) {
        SCOPED_TRACE(descriptors.size());
        const auto interface = plugIn({.descriptors = descriptors});
        EXPECT_EQ(get(*interface), result);
        kernel.unplug();
    }
}

} // namespace
