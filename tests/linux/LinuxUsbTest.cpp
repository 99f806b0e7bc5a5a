// Owns transports, sysfs, rights, re-plugs on the fake kernel: the bus for Linux, with the real
// libusb and libudev.

#include "FakeKernel.h"
#include "UvcBaseClass.h"

#include <gmock/gmock.h>

using testing::IsEmpty;

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's --wrap makes the names
extern "C" int __real_open(const char* path, int flags, ...);
extern "C" int __wrap_open(const char* path, int flags, mode_t /*mode*/) {
    errno = (flags & O_PATH) == 0 ? FakeKernel::running->openError : 0; // O_PATH: a folder in sysfs
    return errno == 0 ? __real_open(path, flags) : -1;
}
extern "C" int __wrap_fstat(int file, struct stat* status) {
    const std::string path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file));
    // umockdev emulates stat.
    const int result = ::stat(path.c_str() + path.rfind("/dev/"), status);
    status->st_mode = S_IFCHR;
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
    /// The first device with the product's numbers, absent if there is none.
    static std::unique_ptr<UsbDevice> findDevice() {
        const auto found = usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID).object;
        return found ? found->createPlugIn().object->QueryInterface().object : nullptr;
    }

    void plugIn(const FakePlug& plug) {
        kernel.plug(plug);
        interface = CUvcBaseControl().getControlInferaceWithDeviceInterface(*findDevice());
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

    FakeKernel kernel;
    std::unique_ptr<UsbInterface> interface;
    Bytes block = Bytes(7, 0xEE);
};

constexpr std::uint16_t kOtherVendor = TAVRO_USB_VENDOR_ID ^ 1;
const FakePlug kDirect{};
const FakePlug kKernel{.driver = "uvcvideo", .captureNode = 9};

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
    const Calls direct{"claim 0", kRead, "release 0", "claim 0", kWritten, "release 0"};
    EXPECT_EQ(kernel.calls, isDirect ? direct : Calls({kQuery, kRead, kQuery, kWritten}));
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
}

TEST_P(BothTransports, AFailedRequestLeavesTheNodeOpenAndTheBufferAsItWas) {
    plugIn(plug);
    for (const RequestFault fault : {RequestFault::Stall, RequestFault::ShortData}) {
        kernel.device.addFault({}, 1, fault);
        const bool isStall = isDirect && fault == RequestFault::Stall; // the driver gives no reason
        EXPECT_EQ(get(), isStall ? UsbCode::Stall : UsbCode::InputOutput);
        EXPECT_EQ(block, Bytes(7, 0xEE));
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::Success);
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NotFound);
    }
}

TEST_F(LinuxUsb, AnEmptyAnswerIsAFailure) {
    plugIn(kDirect);
    kernel.device.addFault({}, 1, RequestFault::ShortData); // half of one byte
    EXPECT_EQ(send({0xA1, 0x86, 0, 13, 0, 3, 1, 0}), UsbCode::InputOutput);
}

TEST_P(BothTransports, AfterARePlugNoDeviceOnThePortIsUsed) {
    plugIn(plug);
    EXPECT_EQ(get(), UsbCode::Success);
    kernel.unplug();
    kernel.plug(plug);
    expectNotOpened(UsbCode::NoDevice);
}

TEST_P(BothTransports, NoRightsAndForeignNodesAreReported) {
    plugIn(plug);
    kernel.openError = EACCES;
    expectNotOpened(UsbCode::Access);
    kernel.openError = 0;
    kernel.numberShift = 1;
    expectNotOpened(UsbCode::NoDevice);
}

TEST_F(LinuxUsb, TheTransportIsSelectedAtEachRequest) {
    kernel.plug({.address = 9, .vendor = kOtherVendor, .driver = "uvcvideo", .captureNode = 2});
    plugIn({.name = "1-2"});
    const std::vector<std::tuple<FakePlug, UsbResult, std::string>> rows{
        {kKernel, UsbCode::Success, "query /dev/video9"},
        {kDirect, UsbCode::Success, "claim 0"},
        {{.driver = "usbfs"}, UsbCode::Busy, "claim 0"}, // another program's claim
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

TEST_F(LinuxUsb, OtherDevicesAndInterfacesAreIgnored) {
    EXPECT_FALSE(findDevice());
    kernel.plug({.vendor = kOtherVendor});
    EXPECT_FALSE(findDevice());
    kernel.plug({.name = "1-2", .address = 3});
    umockdev_testbed_set_attribute(kernel.testbed, "/sys/devices/1-2/1-2:1.0", "bInterfaceClass", "02");
    EXPECT_FALSE(CUvcBaseControl().getControlInferaceWithDeviceInterface(*findDevice()));
}

} // namespace
