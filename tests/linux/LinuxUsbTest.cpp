// The bus for Linux, with the real libusb and libudev, on the fake kernel.

#include "FakeKernel.h"
#include "UvcBaseClass.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdexcept>

using testing::Contains;
using testing::IsEmpty;

namespace {

using Calls = std::vector<std::string>;

class LinuxUsb : public testing::Test {
protected:
    ~LinuxUsb() override {
        interface.reset();
        EXPECT_THAT(kernel.forbidden, IsEmpty());
        EXPECT_EQ(openFiles("/umockdev."), 0);
        EXPECT_LE(openFiles("[timerfd]"), 1); // libusb's, which is opened once
    }

    /// The first VideoControl interface of the first device, absent if there is none.
    static std::unique_ptr<UsbInterface> open() {
        auto service = usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID);
        if (!service.object) return nullptr;
        const auto device = service.object->createPlugIn().object->QueryInterface();
        return CUvcBaseControl().getControlInferaceWithDeviceInterface(*device.object);
    }

    void plugIn(const FakePlug& plug) {
        kernel.plug(plug);
        interface = open();
        if (!interface) throw std::runtime_error("no VideoControl interface");
    }

    /// One request with the bytes of `block`. GET_CUR or SET_CUR.
    UsbResult request(std::uint8_t code, std::uint8_t selector, std::uint8_t unit = 3) {
        UsbControlRequest request{static_cast<std::uint8_t>(0x21 | (code & 0x80)), code,
            static_cast<std::uint16_t>(selector << 8), static_cast<std::uint16_t>(unit << 8),
            static_cast<std::uint16_t>(block.size()), block.data(), 0};
        return interface->ControlRequest(request);
    }
    UsbResult get() { return request(0x81, 13); }
    UsbResult set() { return request(0x01, 13); }

    void expectNotOpened(UsbResult result) {
        kernel.calls.clear();
        EXPECT_EQ(get(), result);
        EXPECT_EQ(interface->USBInterfaceClose(), result);
        EXPECT_THAT(kernel.calls, IsEmpty());
    }

    /// The number of open files with this in their path.
    static std::ptrdiff_t openFiles(const std::string& part) {
        using std::filesystem::directory_iterator;
        return std::count_if(directory_iterator("/proc/self/fd"), directory_iterator(), [&](const auto& file) {
            std::error_code closed;
            return read_symlink(file, closed).string().find(part) != std::string::npos;
        });
    }
    static std::ptrdiff_t openNodes() { return openFiles("/dev/video") + openFiles("/dev/bus/usb/"); }

    FakeKernel kernel;
    std::unique_ptr<UsbInterface> interface;
    Bytes block = Bytes(7, 0xEE);
};

const FakePlug kDirect{};
const FakePlug kKernel{.driver = "uvcvideo", .captureNode = 9};

/// Rules of both transports.
class BothTransports : public LinuxUsb, public testing::WithParamInterface<const char*> {
protected:
    const bool isDirect = GetParam() == std::string("direct");
    const FakePlug plug = isDirect ? kDirect : kKernel;
};
INSTANTIATE_TEST_SUITE_P(, BothTransports, testing::Values("direct", "kernel"));

TEST_P(BothTransports, RequestsReachTheDeviceByteForByte) {
    plugIn(plug);
    EXPECT_EQ(get(), UsbCode::Success);
    block[5] = 9;
    EXPECT_EQ(set(), UsbCode::Success);
    constexpr auto* kRead = "a1 81 00 0d 00 03 07 00 | 6d ff c8 b0 92 80 e4";
    constexpr auto* kWritten = "21 01 00 0d 00 03 07 00 | 6d ff c8 b0 92 09 e4";
    constexpr auto* kQuery = "query /dev/video9";
    EXPECT_EQ(kernel.calls,
        isDirect ? Calls({"claim 0", kRead, "release 0", "claim 0", kWritten, "release 0"})
                 : Calls({kQuery, kRead, kQuery, kWritten}));
    block.resize(kernel.device->versions.size()); // the longest block
    EXPECT_EQ(request(0x81, 12), UsbCode::Success);
    block.resize(2); // a standard control
    EXPECT_EQ(request(0x81, 2, 2), isDirect ? UsbCode::Success : UsbCode::InputOutput);
    block.resize(65);
    expectNotOpened(UsbCode::NotSupported);
}

TEST_F(LinuxUsb, PacketsThatTheDriverWouldAlterAreNotSent) {
    plugIn(kKernel);
    // The bits of the type and of the bytes beside selector and unit. The driver takes the direction from bRequest.
    for (std::size_t bit = 0; bit < 24; ++bit) {
        Uvc::SetupPacket packet{0xA1, 0x81, 0, 13, 0, 3, 7, 0};
        packet[bit / 8 * 2] ^= static_cast<std::uint8_t>(1U << bit % 8);
        UsbControlRequest other = Uvc::requestOf(packet, block.data());
        EXPECT_EQ(interface->ControlRequest(other), UsbCode::NotSendable) << bit;
    }
    EXPECT_THAT(kernel.calls, IsEmpty());
    kernel.unplug();
    plugIn({.videoControlInterface = 1, .driver = "uvcvideo", .captureNode = 9}); // which the driver fills in
    expectNotOpened(UsbCode::NotSendable);
}

TEST_P(BothTransports, OnlyAFailedRequestLeavesTheNodeOpenAndTheBufferUntouched) {
    for (const RequestFault fault : {RequestFault::Stall, RequestFault::ShortData}) {
        SCOPED_TRACE(static_cast<int>(fault));
        plugIn(plug);
        const auto fail = [&](std::uint8_t code) {
            kernel.device->addFault({}, 1, fault);
            const bool isStall = isDirect && fault == RequestFault::Stall; // the driver does not report the reason
            EXPECT_EQ(request(code, 13), isStall ? UsbCode::Stall : UsbCode::InputOutput);
            EXPECT_EQ(openNodes(), 1);
        };
        block = Bytes(7, 0xEE);
        fail(0x81);
        EXPECT_EQ(block, Bytes(7, 0xEE));
        EXPECT_EQ(get(), UsbCode::Success);
        EXPECT_EQ(openNodes(), 0);
        fail(0x01);
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::Success);
        EXPECT_EQ(openNodes(), 0);
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NotFound);
        EXPECT_EQ(set(), UsbCode::Success);
        EXPECT_EQ(interface->USBInterfaceClose(), UsbCode::NotFound);
        fail(0x81);
        kernel.unplug();
        expectNotOpened(UsbCode::NoDevice);
    }
}

TEST_P(BothTransports, AfterARePlugNoDeviceOnThePortIsUsed) {
    for (unsigned row = 0; row < 8; ++row) {
        SCOPED_TRACE(row);
        plugIn(plug);
        EXPECT_EQ(row % 2 == 0 ? get() : UsbCode::Success, UsbCode::Success);
        FakePlug next = plug; // the same device with its old address, or another address, or another device
        if (row / 2 == 1) next.address = 3;
        if (row / 2 == 2) next.vendor = 0x1D6B;
        if (row / 2 < 3) kernel.unplug();
        row / 2 < 3 ? kernel.plug(next) : kernel.configure(next); // the last: the same device, another interface
        expectNotOpened(UsbCode::NoDevice);
        kernel.unplug();
    }
}

TEST_P(BothTransports, ARePlugBetweenTwoStepsGivesNoDevice) {
    kernel.plug(plug);
    const auto service = usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID).object;
    const auto interfaces = [&] {
        const auto device = service->createPlugIn().object->QueryInterface().object;
        return device->CreateInterfaceIterator(Uvc::kVideoClass, Uvc::kVideoControlSubClass);
    };
    const auto found = interfaces();
    kernel.unplug();
    EXPECT_EQ(interfaces().result, UsbCode::NoDevice);
    kernel.plug(plug);
    interface = found.object->next()->createPlugIn().object->QueryInterface().object;
    expectNotOpened(UsbCode::NoDevice);
}

TEST_F(LinuxUsb, RequestsTimeOutAfterFiveSeconds) {
    plugIn(kDirect);
    kernel.device->addFault({}, 1, RequestFault::TimeOut);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(get(), UsbCode::TimeOut);
    EXPECT_EQ(std::chrono::round<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count(), 5);
    EXPECT_THAT(kernel.calls, Contains("release 0"));
    EXPECT_EQ(get(), UsbCode::Success);
}

TEST_P(BothTransports, OpensOnlyTheDevicesOwnNode) {
    plugIn(plug);
    for (const auto& [error, result] : {std::pair(EACCES, UsbCode::Access), {EPERM, UsbCode::Access},
             {ENOENT, UsbCode::NoDevice}, {ENODEV, UsbCode::NoDevice}, {ENXIO, UsbCode::NoDevice},
             {EBUSY, UsbCode::Busy}, {EMFILE, UsbCode::InputOutput}}) {
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
    kernel.plug({.address = 9, .vendor = 0x1D6B, .driver = "uvcvideo", .captureNode = 2}); // some other camera
    plugIn({.name = "1-2"});
    const std::vector<std::tuple<FakePlug, UsbResult, const char*>> rows{
        {kKernel, UsbCode::Success, "query /dev/video9"},
        // The known name is now that of the metadata node.
        {{.driver = "uvcvideo", .captureNode = 8}, UsbCode::Success, "query /dev/video8"},
        {kDirect, UsbCode::Success, "claim 0"},
        {{.driver = "usbfs"}, UsbCode::Busy, "claim 0"}, // another program's claim
    };
    for (const auto& [driver, result, call] : rows) {
        SCOPED_TRACE(call);
        kernel.bind(driver);
        kernel.calls.clear();
        EXPECT_EQ(get(), result);
        EXPECT_THAT(kernel.calls, Contains(call));
    }
    for (const FakePlug& driver : {FakePlug{.driver = "uvcvideo"}, {.driver = "vendor", .captureNode = 9}}) {
        kernel.bind(driver);
        expectNotOpened(UsbCode::NotSendable);
    }
}

TEST_F(LinuxUsb, TheFirstOfEqualDevicesAndLocations) {
    kernel.plug({.name = "1-2", .address = 6, .vendor = 0x1D6B}); // some hub
    kernel.plug({.name = "1-2/1-2.13", .address = 7});
    kernel.plug({.name = "3-4", .address = 5});
    std::vector<std::uint32_t> locations;
    const auto addLocation = [&](UsbService<UsbDevice>& service) {
        const auto device = service.createPlugIn().object->QueryInterface().object;
        EXPECT_EQ(device->GetLocationID(locations.emplace_back()), UsbCode::Success);
    };
    const auto services = usbBus().allServices();
    while (const auto service = services.object->next()) addLocation(*service);
    addLocation(*usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID).object);
    EXPECT_THAT(locations, testing::ElementsAre(0x01200000U, 0x012D0000U, 0x03400000U, 0x012D0000U));
}

TEST_F(LinuxUsb, WithoutAVideoControlInterfaceThereIsNone) {
    EXPECT_EQ(usbBus().firstService(TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID).result, UsbCode::NoDevice);
    for (const FakePlug& plug : {FakePlug{.interfaceClass = 9}, {.interfaceSubClass = 2}}) {
        kernel.plug(plug);
        kernel.plug({.name = "1-1/1-1.2", .address = 3, .vendor = 0x1D6B}); // a camera behind it
        EXPECT_FALSE(open());
        kernel.unplug();
    }
    kernel.device->productID = TAVRO_USB_PRODUCT_ID + 1;
    kernel.plug({});
    EXPECT_FALSE(open());
}

TEST_F(LinuxUsb, MalformedDescriptorsDoNotHang) {
    // Of two configurations libusb would search the second in steps of 0 bytes.
    Bytes endless = deviceDescriptor({TAVRO_USB_VENDOR_ID, TAVRO_USB_PRODUCT_ID, 0});
    endless.back() = 2;
    append(endless, Bytes{11, 2, 11, 0, 1, 1, 0, 0x80, 50, 0, 0, 9, 2, 9, 0, 0, 2, 0, 0x80, 50});
    for (const auto& [descriptors, result] : {std::pair<Bytes, UsbResult>({}, UsbCode::InputOutput),
             {Bytes(endless.begin(), endless.begin() + 21), UsbCode::InputOutput}, {endless, UsbCode::Success},
             {Bytes(200, 0), UsbCode::InputOutput}}) {
        SCOPED_TRACE(descriptors.size());
        plugIn({.descriptors = descriptors});
        EXPECT_EQ(get(), result);
        kernel.unplug();
    }
}

} // namespace
