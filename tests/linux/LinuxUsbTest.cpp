// Owns the transports, sysfs, rights and re-plugs: the bus for Linux, with the real libusb and
// libudev, on the fake kernel.

#include "FakeKernel.h"
#include "UvcBaseClass.h"

#include <gmock/gmock.h>

#include <chrono>

using testing::IsEmpty;

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's --wrap makes the names
extern "C" int __real_open(const char* path, int flags, ...);
extern "C" int __wrap_open(const char* path, int flags, mode_t /*mode*/) {
    constexpr int kForNode = O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const bool isNode = (flags & O_PATH) == 0;
    // Opening must not block, leave the file to child processes, or set a controlling terminal.
    if ((flags & O_CLOEXEC) == 0 || (isNode && flags != kForNode))
        ADD_FAILURE() << "opens " << path << " with flags " << flags;
    errno = isNode ? FakeKernel::running->openError : 0;
    return errno == 0 ? __real_open(path, flags) : -1;
}
extern "C" int __wrap_fstat(int file, struct stat* status) {
    const auto link = "/proc/self/fd/" + std::to_string(file);
    const std::string path = std::filesystem::read_symlink(link);
    // umockdev emulates stat.
    const int result = ::stat(path.c_str() + path.rfind("/dev/"), status);
    status->st_mode = FakeKernel::running->nodeKind;
    status->st_rdev += FakeKernel::running->numberShift;
    return result;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

constexpr Uvc::SetupPacket kGet{0xA1, 0x81, 0, 13, 0, 3, 7, 0};
constexpr Uvc::SetupPacket kSet{0x21, 0x01, 0, 13, 0, 3, 7, 0};
using Calls = std::vector<std::string>;

class LinuxUsb : public testing::Test {
protected:
    ~LinuxUsb() override {
        interface.reset();
        EXPECT_EQ(openFiles("/umockdev."), 0);
        EXPECT_LE(openFiles("[timerfd]"), 1); // libusb's, which is opened once
    }

    static auto firstService() { return usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID); }

    /// The first VideoControl interface of the first device, absent if there is none.
    static std::unique_ptr<UsbInterface> open() {
        const auto service = firstService();
        if (!service.object) return nullptr;
        const auto device = service.object->createPlugIn().object->QueryInterface();
        return CUvcBaseControl().getControlInferaceWithDeviceInterface(*device.object);
    }

    void plugIn(const FakePlug& plug) {
        kernel.plug(plug);
        interface = open();
    }

    /// Sends a request with the bytes of `block`.
    UsbResult send(const Uvc::SetupPacket& packet) {
        UsbControlRequest request = Uvc::requestOf(packet, block.data());
        return interface->ControlRequest(request);
    }
    UsbResult get() { return send(kGet); }

    void expectNotOpened(UsbResult result) {
        kernel.calls.clear();
        EXPECT_EQ(get(), result);
        EXPECT_EQ(interface->USBInterfaceClose(), result);
        EXPECT_THAT(kernel.calls, IsEmpty());
    }

    /// The number of open files with this in their path.
    static std::ptrdiff_t openFiles(const std::string& part) {
        std::ptrdiff_t count = 0;
        for (const auto& file : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code closed;
            count += read_symlink(file, closed).string().find(part) == std::string::npos ? 0 : 1;
        }
        return count;
    }
    static std::ptrdiff_t openNodes() { return openFiles("/dev/video") + openFiles("/dev/bus/usb/"); }

    FakeKernel kernel;
    std::unique_ptr<UsbInterface> interface;
    Bytes block = Bytes(65, 0xEE);
};

constexpr std::uint16_t kOtherVendor = TAVRO_USB_VENDOR_ID ^ 1;
const FakePlug kDirect{};
const FakePlug kKernel{.driver = "uvcvideo", .captureNode = 9};
constexpr auto* kDevice = "/sys/devices/1-1"; // of both
constexpr auto* kInterface = "/sys/devices/1-1/1-1:1.0";

TEST_F(LinuxUsb, MalformedDescriptorsDoNotHang) {
    // Of two configurations libusb would search the second in steps of 0 bytes, when it is opened.
    ASSERT_EQ(openFiles("[timerfd]"), 0) << "this must be the first test: libusb is open";
    kernel.descriptors.resize(18);
    kernel.descriptors.back() = 2;
    append(kernel.descriptors, Bytes{11, 2, 11, 0, 1, 1, 0, 0x80, 50, 0, 0});
    append(kernel.descriptors, Bytes{9, 2, 9, 0, 0, 2, 0, 0x80, 50});
    plugIn(kDirect);
    EXPECT_EQ(get(), UsbCode::Success);
    kernel.unplug();
    kernel.descriptors.resize(21);
    plugIn(kDirect);
    EXPECT_EQ(get(), UsbCode::InputOutput);
}

/// Rules of both transports.
class BothTransports : public LinuxUsb, public testing::WithParamInterface<bool> {
protected:
    const bool isDirect = GetParam();
    const FakePlug plug = isDirect ? kDirect : kKernel;
};
INSTANTIATE_TEST_SUITE_P(, BothTransports, testing::Bool(),
    [](const auto& isDirect) { return isDirect.param ? "Directly" : "ThroughTheDriver"; });

TEST_P(BothTransports, RequestsReachTheDeviceByteForByte) {
    plugIn(plug);
    EXPECT_EQ(get(), UsbCode::Success);
    block[5] = 9;
    EXPECT_EQ(send(kSet), UsbCode::Success);
    constexpr auto* kRead = "a1 81 00 0d 00 03 07 00 | 6d ff c8 b0 92 80 e4";
    constexpr auto* kWritten = "21 01 00 0d 00 03 07 00 | 6d ff c8 b0 92 09 e4";
    constexpr auto* kQuery = "query /dev/video9";
    EXPECT_EQ(kernel.calls,
        isDirect ? Calls({"claim 0", kRead, "release 0", "claim 0", kWritten, "release 0"})
                 : Calls({kQuery, kRead, kQuery, kWritten}));
    const Uvc::SetupPacket longest{0xA1, 0x81, 0, 12, 0, 3, 26, 0};
    EXPECT_EQ(send(longest), UsbCode::Success);
    const Uvc::SetupPacket standard{0xA1, 0x81, 0, 2, 0, 2, 2, 0};
    EXPECT_EQ(send(standard), isDirect ? UsbCode::Success : UsbCode::InputOutput);
    kernel.calls.clear();
    EXPECT_EQ(send({0xA1, 0x81, 0, 13, 0, 3, 65, 0}), UsbCode::NotSupported);
    EXPECT_THAT(kernel.calls, IsEmpty());
}

TEST_F(LinuxUsb, PacketsThatTheDriverWouldAlterAreNotSent) {
    plugIn(kKernel);
    // Each bit of the type and of the low bytes of wValue and wIndex
    for (std::size_t bit = 0; bit < 24; ++bit) {
        Uvc::SetupPacket packet = kGet;
        packet[bit / 8 * 2] ^= static_cast<std::uint8_t>(1U << bit % 8);
        EXPECT_EQ(send(packet), UsbCode::NotSendable) << bit;
    }
    EXPECT_THAT(kernel.calls, IsEmpty());
    // The driver would insert the interface's number.
    umockdev_testbed_set_attribute(kernel.testbed, kInterface, "bInterfaceNumber", "01");
    interface = open();
    expectNotOpened(UsbCode::NotSendable);
}

TEST_P(BothTransports, OnlyAFailedRequestLeavesTheNodeOpenAndTheBufferUntouched) {
    plugIn(plug);
    const auto fail = [&](const Uvc::SetupPacket& packet, RequestFault fault) {
        kernel.device.addFault({}, 1, fault);
        // The driver gives no reason.
        const bool isStall = isDirect && fault == RequestFault::Stall;
        EXPECT_EQ(send(packet), isStall ? UsbCode::Stall : UsbCode::InputOutput);
        EXPECT_EQ(openNodes(), 1);
    };
    for (const RequestFault fault : {RequestFault::Stall, RequestFault::ShortData}) {
        SCOPED_TRACE(static_cast<int>(fault));
        block = Bytes(65, 0xEE);
        fail(kGet, fault);
        EXPECT_EQ(block, Bytes(65, 0xEE));
        EXPECT_EQ(get(), UsbCode::Success);
        EXPECT_EQ(openNodes(), 0);
        fail(kSet, fault);
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::Success);
        EXPECT_EQ(openNodes(), 0);
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NotFound);
    }
    const Uvc::SetupPacket oneByte{0xA1, 0x86, 0, 13, 0, 3, 1, 0}; // half of it is none
    if (isDirect) fail(oneByte, RequestFault::ShortData);
    fail(kGet, RequestFault::Stall);
    kernel.unplug();
    expectNotOpened(UsbCode::NoDevice);
}

TEST_P(BothTransports, AfterARePlugNoDeviceOnThePortIsUsed) {
    plugIn(plug);
    EXPECT_EQ(get(), UsbCode::Success);
    umockdev_testbed_remove_device(kernel.testbed, kInterface); // for another configuration
    expectNotOpened(UsbCode::NoDevice);
    for (const bool isUsed : {false, true}) {
        kernel.unplug();
        plugIn(plug);
        EXPECT_TRUE(!isUsed || get() == UsbCode::Success);
        kernel.unplug();
        kernel.plug(plug);
        expectNotOpened(UsbCode::NoDevice);
    }
}

TEST_P(BothTransports, AfterARePlugBetweenTwoStepsNoDeviceIsUsed) {
    kernel.plug(plug);
    const auto device = firstService().object->createPlugIn().object->QueryInterface().object;
    const auto interfaces = [&] {
        return device->CreateInterfaceIterator(Uvc::kVideoClass, Uvc::kVideoControlSubClass);
    };
    const auto found = interfaces().object;
    kernel.unplug();
    EXPECT_EQ(interfaces().result, UsbCode::NoDevice);
    kernel.plug(plug);
    interface = found->next()->createPlugIn().object->QueryInterface().object;
    expectNotOpened(UsbCode::NoDevice);
}

TEST_F(LinuxUsb, RequestsTimeOutAfterFiveSeconds) {
    plugIn(kDirect);
    kernel.device.addFault({}, 1, RequestFault::TimeOut);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(get(), UsbCode::TimeOut); // with a limit of 0 it would never end
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(4900));
    EXPECT_EQ(get(), UsbCode::Success); // the interface was released
}

TEST_P(BothTransports, OpensOnlyTheDevicesOwnNode) {
    plugIn(plug);
    for (const auto& [error, result] : {
             std::pair(EACCES, UsbCode::Access),
             {ENOENT, UsbCode::NoDevice},
             {ENODEV, UsbCode::NoDevice},
             {EBUSY, UsbCode::Busy},
             {EMFILE, UsbCode::InputOutput},
         }) {
        kernel.openError = error;
        expectNotOpened(result);
    }
    kernel.openError = 0;
    kernel.nodeKind = S_IFBLK;
    expectNotOpened(UsbCode::NoDevice);
    kernel.nodeKind = S_IFCHR;
    kernel.numberShift = 1;
    expectNotOpened(UsbCode::NoDevice);
}

TEST_F(LinuxUsb, TheTransportIsSelectedAtEachRequest) {
    FakePlug otherCamera{.address = 9, .vendor = kOtherVendor, .driver = "uvcvideo"};
    otherCamera.captureNode = 2;
    kernel.plug(otherCamera);
    plugIn({.name = "1-2"});
    const std::vector<std::tuple<FakePlug, UsbResult, std::string>> rows{
        {kKernel, UsbCode::Success, "query /dev/video9"},
        // The known name is now that of the metadata node.
        {{.driver = "uvcvideo", .captureNode = 8}, UsbCode::Success, "query /dev/video8"},
        {kDirect, UsbCode::Success, "claim 0"},
        {{.driver = "usbfs"}, UsbCode::Busy, "claim 0"}, // another program's claim
        {{.driver = "uvcvideo"}, UsbCode::NotSendable, ""},
        {{.driver = "vendor", .captureNode = 9}, UsbCode::NotSendable, ""},
    };
    for (const auto& [driver, result, firstCall] : rows) {
        SCOPED_TRACE(driver.driver);
        kernel.bind(driver);
        kernel.calls.clear();
        EXPECT_EQ(get(), result);
        EXPECT_EQ(kernel.calls.empty() ? "" : kernel.calls.front(), firstCall);
    }
}

TEST_F(LinuxUsb, FindsLocationsAndTheFirstOfEqualDevices) {
    kernel.plug({.name = "1-2", .address = 6, .vendor = kOtherVendor}); // some hub
    kernel.plug({.name = "1-2/1-2.13", .address = 7});
    kernel.plug({.name = "12-4", .address = 5});
    std::vector<std::uint32_t> locations;
    const auto addLocation = [&](UsbService<UsbDevice>& service) {
        const auto device = service.createPlugIn().object->QueryInterface().object;
        EXPECT_EQ(device->GetLocationID(locations.emplace_back()), UsbCode::Success);
    };
    const auto services = usbBus().allServices();
    while (const auto service = services.object->next()) addLocation(*service);
    addLocation(*firstService().object);
    EXPECT_EQ(locations, (std::vector{0x01200000U, 0x012D0000U, 0x0C400000U, 0x012D0000U}));
}

TEST_F(LinuxUsb, OtherDevicesAndInterfacesAreIgnored) {
    EXPECT_EQ(firstService().result, UsbCode::NoDevice);
    for (const auto& [folder, attribute, other] : {
             std::tuple(kDevice, "idVendor", QString::number(kOtherVendor, 16)),
             {kDevice, "idProduct", QString::number(TAVRO_USB_PRODUCT_ID ^ 1, 16)},
             {kInterface, "bInterfaceClass", QString("02")},
             {kInterface, "bInterfaceSubClass", QString("02")},
         }) {
        SCOPED_TRACE(attribute);
        kernel.plug({});
        kernel.plug({.name = "1-1/1-1.2", .address = 3, .vendor = kOtherVendor}); // a camera behind it
        umockdev_testbed_set_attribute(kernel.testbed, folder, attribute, qPrintable(other));
        EXPECT_FALSE(open());
        kernel.unplug();
    }
}

} // namespace
