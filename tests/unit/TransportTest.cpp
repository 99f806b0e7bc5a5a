// The search for the device and its interface, and the requests on the wire.

#include "TestHost.h"
#include "UvcBaseClass.h"
#include "VN318UvcController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>

using testing::ElementsAre;
using testing::StartsWith;

namespace {

constexpr std::uint16_t kVendor = CVn318UvcController::kVendorID;
constexpr std::uint16_t kProduct = CVn318UvcController::kProductID;
const std::string kError = "log CameraControl Error: ";
const std::string kUnreachable = kError + "QueryInterface returned 0.\n"; // the service without an object (TestBus.cpp)

class Transport : public testing::Test {
protected:
    Transport() { TestHost::reset(); }

    bool open() { return control.initWithVendorID(kVendor, kProduct); }
    bool readStatus() { return control.getDataFor(UVCRequest::GET_CUR, 4, 10, 3, status); }
    /// The device refuses the next request of this code.
    static void refuse(UVCRequest request) {
        device().addFault({.request = request, .selector = {}}, 1, RequestFault::Stall);
    }

    std::array<std::uint8_t, 4> status{9, 9, 9, 9};
    CUvcBaseControl control;
};

TEST_F(Transport, FindsItsDeviceAmongOthers) {
    auto& devices = SimulatedBus::instance().devices;
    while (devices.size() < 3) devices.push_back(std::make_shared<SimulatedDevice>());
    devices[0]->vendorID = kVendor + 1; // another product line, first on the bus
    devices[2]->locationID = 0x02130000;
    for (std::uint8_t i = 0; i < 3; ++i) devices[i]->status[0] = i;
    ASSERT_TRUE(control.initWithVendorID((std::int64_t{1} << 32) + kVendor, kProduct));
    EXPECT_EQ(control.getExtension(), 1);
    control.initWithLocationID(0x02130000);
    EXPECT_EQ(control.getExtension(), 2);
    EXPECT_THAT(TestHost::take(), ElementsAre("release", kUnreachable, kUnreachable));
}

TEST_F(Transport, EachStepFailsWithItsLine) {
    /// The step, its result, whether the object is usable (but without an interface), and the line.
    const std::vector<std::tuple<const char*, UsbResult, bool, const char*>> rows{
        {"device plug-in", UsbCode::Access, false, "IOCreatePlugInInterfaceForService returned 0xfffffffd."},
        {"device plug-in", UsbCode::Success, false, "IOCreatePlugInInterfaceForService returned 0x00000000."},
        {"device object", UsbCode::Busy, false, "QueryInterface returned -6.\n"},
        {"interface plug-in", UsbCode::Access, true, "Unable to create a plug-in (00000000)\n"},
        {"release", UsbCode::Stall, true, "Unable to create a plug-in (fffffff7)\n"},
        {"interface object", UsbCode::NoDevice, true,
            "Couldn’t create a device interface for the interface (fffffffc)"},
        {"interface object", UsbCode::Success, true,
            "Couldn’t create a device interface for the interface (00000000)"}};
    for (const auto& [step, result, opens, line] : rows) {
        SCOPED_TRACE(line);
        ASSERT_TRUE(open()); // then the failure closes it
        TestHost::instance().failing = {step, result};
        EXPECT_EQ(open(), opens);
        EXPECT_FALSE(readStatus());
        EXPECT_THAT(TestHost::take(), ElementsAre("release", kError + line, kError + "No interface to send request"));
    }
    // These end the search by location without a log line.
    for (const auto& [step, result] :
        {std::pair("devices", UsbCode::InputOutput), {"devices", UsbCode::Success}, {"location", UsbCode::InputOutput},
            {"interfaces", UsbCode::InputOutput}, {"interfaces", UsbCode::Success}}) {
        ASSERT_TRUE(open());
        TestHost::instance().failing = {step, result};
        control.initWithLocationID(device().locationID);
        EXPECT_FALSE(readStatus()) << step;
    }
}

TEST_F(Transport, InterfaceNumberNeverReachesTheWire) {
    device().videoControlInterface = 2;
    ASSERT_TRUE(open());
    EXPECT_FALSE(readStatus()); // the device listens on 2, the request says 0
    const auto object = usbBus().firstService(kVendor, kProduct).object->createPlugIn().object->QueryInterface().object;
    const auto interface = control.getControlInferaceWithDeviceInterface(*object);
    EXPECT_EQ(control.getInterfaceNumberFromInterface(*interface), 0);
    TestHost::instance().failing = {"number", UsbCode::NoDevice};
    EXPECT_EQ(control.getInterfaceNumberFromInterface(*interface), 0);
    EXPECT_THAT(TestHost::take(),
        ElementsAre(get(10, {}) + " ! -9", kError + "Control request failed: 00000000",
            "log Unable to get interface number (0xfffffffc)\n"));
}

TEST_F(Transport, AFailedRequestClosesTheInterfaceAndKeepsIt) {
    ASSERT_TRUE(open());
    auto& failing = TestHost::instance().failing = {"close", UsbCode::NotFound};
    device().addFault({}, 1, RequestFault::TimeOut);
    EXPECT_FALSE(readStatus());
    EXPECT_THAT(status, testing::Each(9));
    EXPECT_TRUE(readStatus());
    EXPECT_THAT(status, ElementsAre(0x51, 0x02, 0x83, 0x1C));
    EXPECT_THAT(TestHost::take(),
        ElementsAre(
            get(10, {}) + " ! -7", kError + "Control request failed: fffffffb", get(10, {0x51, 0x02, 0x83, 0x1C})));
    const std::vector<std::function<void()>> ends{[this] { EXPECT_TRUE(open()); },
        [this] { control.initWithLocationID(device().locationID); },
        [] { EXPECT_TRUE(CUvcBaseControl().initWithVendorID(kVendor, kProduct)); }};
    for (const auto& end : ends) {
        failing.first = "close";
        end();
        EXPECT_EQ(failing.first, ""); // it was closed
        EXPECT_THAT(TestHost::take(), ElementsAre("release"));
    }
}

TEST_F(Transport, LengthsThatDoNotFitAreRefusedSilently) {
    ASSERT_TRUE(open());
    std::vector<std::uint8_t> block(0x20000);
    for (const auto& [length, size] : {std::pair(-1, 7U), {8, 7U}, {0x10007, 0x20000U}}) {
        EXPECT_FALSE(control.getDataFor(UVCRequest::GET_CUR, length, 13, 3, std::span(block).first(size))) << length;
        EXPECT_FALSE(control.SetData2(std::span(block).first(size), length, 13, 3)) << length;
        EXPECT_FALSE(control.setData(1, length == 8 ? 9 : length, 13, 3)) << length;
    }
    EXPECT_EQ(control.getRangeForControl({3, 13, 0x10007}).max, 0);
    EXPECT_THAT(TestHost::take(), testing::IsEmpty());
    EXPECT_TRUE(std::isinf(control.getValueForControl({3, 12, 26}))); // the longest block is read without its limits
}

// A responding device has the range 1 to 1: every written value is 1, and every read value is not a number.
TEST_F(Transport, StandardControlsTakeSuccessFlagsForValues) {
    using U = UVCCameraControl;
    /// wValue, wIndex and wLength as on the wire, the operations, and whether 0.0 is the device's 1.
    const std::vector<std::tuple<const char*, bool (U::*)(float), float (U::*)(), bool>> rows{
        {" 00 04 00 01 04 00 |", &U::setExposure, &U::getExposure, true},
        {" 00 02 00 02 02 00 |", &U::setBrightness, &U::getBrightness, false},
        {" 00 03 00 02 02 00 |", &U::setContrast, &U::getContrast, false},
        {" 00 04 00 02 02 00 |", &U::setGain, &U::getGain, false},
        {" 00 07 00 02 02 00 |", &U::setSaturation, &U::getSaturation, false},
        {" 00 08 00 02 02 00 |", &U::setSharpness, &U::getSharpness, false},
        {" 00 0a 00 02 02 00 |", &U::setWhiteBalance, &U::getWhiteBalance, false}};
    ASSERT_TRUE(open());
    for (const auto& [address, set, get, inverted] : rows) {
        SCOPED_TRACE(address);
        EXPECT_TRUE((control.*set)(0.25F));
        EXPECT_TRUE(std::isnan((control.*get)()));
        const auto minimum = StartsWith(std::string("a1 82") + address);
        const auto maximum = StartsWith(std::string("a1 83") + address);
        const std::string written = std::string("21 01") + address;
        EXPECT_THAT(TestHost::takeRequests(),
            ElementsAre(minimum, maximum, StartsWith(written + " 01 00"), minimum, maximum,
                StartsWith(std::string("a1 81") + address)));
        // With the minimum refused the range is 0 to 1 and shows the scale's direction.
        for (const bool one : {false, true}) {
            refuse(UVCRequest::GET_MIN);
            EXPECT_TRUE((control.*set)(one == inverted ? 0.0F : 1.0F));
            EXPECT_THAT(TestHost::takeRequests().back(), StartsWith(written + (one ? " 01 00" : " 00 00")));
            refuse(UVCRequest::GET_MIN);
            if (!one) refuse(UVCRequest::GET_CUR);
            EXPECT_EQ((control.*get)(), one == inverted ? 0.0F : 1.0F);
        }
        TestHost::take();
    }
}

TEST_F(Transport, NumbersAndModes) {
    ASSERT_TRUE(open());
    EXPECT_TRUE(control.setData(0x1234, 2, 3, 2));
    EXPECT_FALSE(control.setData(-2, 8, 4, 1)); // a length that the device refuses
    EXPECT_TRUE(control.setAutoExposure(true));
    EXPECT_TRUE(control.setAutoExposure(false));
    EXPECT_TRUE(control.setAutoWhiteBalance(true));
    EXPECT_TRUE(control.setAutoWhiteBalance(false));
    EXPECT_FALSE(control.getAutoExposure());
    EXPECT_TRUE(control.getAutoWhiteBalance()); // the device's setting is 0 now
    EXPECT_EQ(control.getExtension(), 0x51);
    EXPECT_THAT(TestHost::takeRequests(),
        ElementsAre("21 01 00 03 00 02 02 00 | 34 12", "21 01 00 04 00 01 08 00 | fe ff ff ff ff ff ff ff ! -9",
            "21 01 00 02 00 01 01 00 | 08", "21 01 00 02 00 01 01 00 | 01", "21 01 00 0b 00 02 01 00 | 01",
            "21 01 00 0b 00 02 01 00 | 00", "a1 81 00 02 00 01 01 00 | 01", "a1 81 00 0b 00 02 01 00 | 00",
            "a1 81 00 0a 00 03 04 00 | 51 02 83 1c"));
    device().unplug();
    EXPECT_FALSE(control.getAutoWhiteBalance());
}

TEST_F(Transport, ScalesInSinglePrecisionAndSendsTheNearest) {
    EXPECT_EQ(control.mapValue(3, 1, 5, 0, 1), 0.5F);
    EXPECT_EQ(control.mapValue(1, 0, 3, 3, 8), 4.66666698F); // ...51 if multiplied first or in double
    ASSERT_TRUE(open());
    for (const auto& [value, bytes] : {std::pair(0x1p31F, "| ff ff ff 7f"), {-0x1p32F, "| 00 00 00 80"},
             {-2.9F, "| fe ff ff ff"}, {NAN, "| 00 00 00 00"}}) {
        refuse(UVCRequest::GET_MIN);
        EXPECT_TRUE(control.setValue(value, {1, 4, 4}));
        EXPECT_THAT(TestHost::takeRequests().back(), testing::EndsWith(bytes));
    }
}

} // namespace
