// Finding the device and its interface, and what goes over the wire.

#include "TestHost.h"
#include "UvcBaseClass.h"
#include "VN318UvcController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint16_t kVendor = CVn318UvcController::kVendorID;
constexpr std::uint16_t kProduct = CVn318UvcController::kProductID;
const std::string kNoInterface = "log CameraControl Error: No interface to send request";

class Transport : public testing::Test {
protected:
    Transport() { TestHost::reset(); }

    bool readStatus() {
        std::array<std::uint8_t, 4> block{};
        return control.getDataFor(UVCRequest::GET_CUR, 4, 10, 3, block);
    }

    CUvcBaseControl control;
};

TEST_F(Transport, TakesTheFirstDeviceWithItsIdentifiers) {
    auto& bus = SimulatedBus::instance();
    for (const std::uint16_t product : {kProduct, kProduct}) {
        bus.devices.push_back(std::make_shared<SimulatedDevice>());
        bus.devices.back()->productID = product;
    }
    bus.devices[0]->vendorID = kVendor + 1; // another product line, first on the bus
    ASSERT_TRUE(control.initWithVendorID((std::int64_t{1} << 32) + kVendor, kProduct));
    EXPECT_TRUE(readStatus());
    EXPECT_EQ(bus.devices[1]->requests.size(), 1U);
    EXPECT_TRUE(bus.devices[2]->requests.empty());
    EXPECT_THAT(TestHost::takeLog(), IsEmpty());
}

/// Name, step, its result, whether a controller comes of it (which then has no interface), and the line after
/// "CameraControl Error: ".
using FailingStep = std::tuple<const char*, UsbStep, UsbResult, bool, const char*>;

TEST_F(Transport, EachStepFailsWithItsLine) {
    auto& bus = TestBus::instance();
    const std::vector<FailingStep> rows{// A row without a line ends the search without a word.
        {"DevicePlugIn", UsbStep::DevicePlugIn, UsbCode::Access, false,
            "IOCreatePlugInInterfaceForService returned 0xfffffffd."},
        {"DevicePlugInEmpty", UsbStep::DevicePlugIn, UsbCode::Success, false,
            "IOCreatePlugInInterfaceForService returned 0x00000000."},
        {"DeviceObject", UsbStep::DeviceObject, UsbCode::Busy, false, "QueryInterface returned -6.\n"},
        {"DeviceObjectEmpty", UsbStep::DeviceObject, UsbCode::Success, false, "QueryInterface returned 0.\n"},
        {"InterfaceIterator", UsbStep::InterfaceIterator, UsbCode::InputOutput, true, nullptr},
        {"InterfacePlugIn", UsbStep::InterfacePlugIn, UsbCode::Access, true, "Unable to create a plug-in (00000000)\n"},
        {"InterfaceServiceRelease", UsbStep::InterfaceServiceRelease, UsbCode::Stall, true,
            "Unable to create a plug-in (fffffff7)\n"},
        {"InterfaceObject", UsbStep::InterfaceObject, UsbCode::NoDevice, true,
            "Couldn’t create a device interface for the interface (fffffffc)"},
        {"InterfaceObjectEmpty", UsbStep::InterfaceObject, UsbCode::Success, true,
            "Couldn’t create a device interface for the interface (00000000)"}};
    for (const auto& [name, step, result, opens, line] : rows) {
        SCOPED_TRACE(name);
        bus.failures.clear();
        ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct)); // which the failure takes away
        bus.failures[step] = result;
        std::vector<std::string> expected{"release"};
        if (line != nullptr) expected.push_back(std::string("log CameraControl Error: ") + line);
        EXPECT_EQ(control.initWithVendorID(kVendor, kProduct), opens);
        EXPECT_EQ(TestHost::take(), expected);
        EXPECT_FALSE(readStatus());
        EXPECT_THAT(TestHost::take(), ElementsAre(kNoInterface));
        expected.erase(expected.begin());
        control.initWithLocationID(device().locationID);
        EXPECT_EQ(TestHost::take(), expected);
        EXPECT_FALSE(readStatus());
        TestHost::take();
    }
}

TEST_F(Transport, OpensByLocation) {
    auto& bus = SimulatedBus::instance();
    bus.devices.push_back(std::make_shared<SimulatedDevice>());
    bus.devices.push_back(std::make_shared<SimulatedDevice>());
    bus.devices[1]->locationID = 0x02130000;
    control.initWithLocationID(0x02130000);
    EXPECT_TRUE(readStatus());
    EXPECT_EQ(bus.devices[1]->requests.size(), 1U);

    for (const auto& [step, result] : {std::pair<UsbStep, UsbResult>(UsbStep::DeviceLocation, UsbCode::InputOutput),
             {UsbStep::AllServices, UsbCode::InputOutput}, {UsbStep::AllServices, UsbCode::Success}}) {
        TestBus::instance().failures[step] = result; // success that gives nothing
        control.initWithLocationID(0x02130000);
        EXPECT_FALSE(readStatus());
        TestBus::instance().failures.clear();
    }
    control.initWithLocationID(0x02140000); // nothing there
    EXPECT_FALSE(readStatus());
}

TEST_F(Transport, InterfaceNumberNeverReachesTheWire) {
    device().videoControlInterface = 2;
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    EXPECT_FALSE(readStatus()); // the device listens on 2, the request says 0
    EXPECT_THAT(TestHost::takeRequests(), ElementsAre("a1 81 00 0a 00 03 04 00 | ! -9"));

    device().videoControlInterface.reset();
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    EXPECT_FALSE(readStatus());
    EXPECT_THAT(TestHost::take(), ElementsAre("release", kNoInterface));
}

TEST_F(Transport, InterfaceNumberIsAskedForAndDropped) {
    auto& bus = TestBus::instance();
    device().videoControlInterface = 2;
    const auto service = bus.firstService(kVendor, kProduct);
    const auto object = service.object->createPlugIn().object->QueryInterface().object;
    const auto interface = control.getControlInferaceWithDeviceInterface(*object);
    ASSERT_TRUE(interface);
    EXPECT_EQ(control.getInterfaceNumberFromInterface(*interface), 0);
    EXPECT_THAT(TestHost::take(), IsEmpty());
    bus.failures[UsbStep::InterfaceNumber] = UsbCode::NoDevice;
    EXPECT_EQ(control.getInterfaceNumberFromInterface(*interface), 0);
    EXPECT_THAT(TestHost::take(), ElementsAre("log Unable to get interface number (0xfffffffc)\n"));
}

TEST_F(Transport, AFailedRequestClosesTheInterfaceAndKeepsIt) {
    auto& bus = TestBus::instance();
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    bus.failures[UsbStep::InterfaceClose] = UsbCode::NotFound;
    device().addFault(kAnyGet, 1, RequestFault::TimeOut);
    std::array<std::uint8_t, 4> block{9, 9, 9, 9};
    EXPECT_FALSE(control.getDataFor(UVCRequest::GET_CUR, 4, 10, 3, block));
    EXPECT_THAT(block, ElementsAre(9, 9, 9, 9));
    EXPECT_THAT(TestHost::takeLog(), ElementsAre("log CameraControl Error: Control request failed: fffffffb"));
    EXPECT_EQ(bus.closeCount, 1U);
    EXPECT_TRUE(control.getDataFor(UVCRequest::GET_CUR, 4, 10, 3, block));
    EXPECT_THAT(block, ElementsAre(0x51, 0x02, 0x83, 0x1C));
}

TEST_F(Transport, ClosesAndReleasesItsInterface) {
    EXPECT_TRUE(CUvcBaseControl().initWithVendorID(kVendor, kProduct));
    EXPECT_EQ(TestBus::instance().closeCount, 1U);
    EXPECT_THAT(TestHost::take(), ElementsAre("release"));
}

TEST_F(Transport, SendsLittleEndianValuesAndBlocks) {
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    EXPECT_TRUE(control.setData(8, 1, 2, 1));
    EXPECT_TRUE(control.setData(0x1234, 2, 3, 2));
    EXPECT_FALSE(control.setData(-2, 8, 4, 1)); // a length that the device does not know
    std::array<std::uint8_t, 7> block{1, 2, 3, 4, 5, 6, 7};
    EXPECT_TRUE(control.SetData2(block, 7, 13, 3));
    EXPECT_THAT(TestHost::takeRequests(),
        ElementsAre("21 01 00 02 00 01 01 00 | 08", "21 01 00 03 00 02 02 00 | 34 12",
            "21 01 00 04 00 01 08 00 | fe ff ff ff ff ff ff ff ! -9",
            "21 01 00 0d 00 03 07 00 | 01 02 03 04 05 06 07"));
}

TEST_F(Transport, LengthsThatDoNotFitAreRefusedSilently) {
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    TestHost::take();
    std::vector<std::uint8_t> block(0x20000);
    for (const auto& [length, size] : {std::pair(-1, 7U), {8, 7U}, {0x10007, 0x20000U}}) {
        EXPECT_FALSE(control.getDataFor(UVCRequest::GET_CUR, length, 13, 3, std::span(block).first(size))) << length;
        EXPECT_FALSE(control.SetData2(std::span(block).first(size), length, 13, 3)) << length;
        EXPECT_FALSE(control.setData(1, length == 8 ? 9 : length, 13, 3)) << length;
    }
    EXPECT_EQ(control.getRangeForControl({3, 13, 0x10007}).max, 0);
    EXPECT_THAT(TestHost::take(), IsEmpty());
    EXPECT_TRUE(std::isinf(control.getValueForControl({3, 12, 26}))); // the longest block is read without its limits
}

struct CameraControl {
    const char* name;
    const char* address; ///< wValue, wIndex and wLength as on the wire
    const char* one;     ///< the value 1 in the control's size
    bool (UVCCameraControl::*set)(float);
    float (UVCCameraControl::*get)();
    bool inverted;
};

using U = UVCCameraControl;

// A responding device has the range 1 to 1, so that whatever is set is a 1 and what is read is no number.
TEST_F(Transport, StandardControlsTakeSuccessFlagsForValues) {
    const std::vector<CameraControl> rows{
        {"Exposure", "00 04 00 01 04 00", "01 00 00 00", &U::setExposure, &U::getExposure, true},
        {"Brightness", "00 02 00 02 02 00", "01 00", &U::setBrightness, &U::getBrightness, false},
        {"Contrast", "00 03 00 02 02 00", "01 00", &U::setContrast, &U::getContrast, false},
        {"Gain", "00 04 00 02 02 00", "01 00", &U::setGain, &U::getGain, false},
        {"Saturation", "00 07 00 02 02 00", "01 00", &U::setSaturation, &U::getSaturation, false},
        {"Sharpness", "00 08 00 02 02 00", "01 00", &U::setSharpness, &U::getSharpness, false},
        {"WhiteBalance", "00 0a 00 02 02 00", "01 00", &U::setWhiteBalance, &U::getWhiteBalance, false}};
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    for (const CameraControl& row : rows) {
        SCOPED_TRACE(row.name);
        const auto request = [&row](const char* start) { return std::string(start) + " " + row.address + " |"; };
        EXPECT_TRUE((control.*row.set)(0.25F));
        auto requests = TestHost::takeRequests();
        ASSERT_EQ(requests.size(), 3U);
        EXPECT_THAT(requests[0], testing::StartsWith(request("a1 82")));
        EXPECT_THAT(requests[1], testing::StartsWith(request("a1 83")));
        EXPECT_EQ(requests[2], request("21 01") + " " + row.one);
        EXPECT_TRUE(std::isnan((control.*row.get)()));
        EXPECT_THAT(
            TestHost::takeRequests(), ElementsAre(testing::_, testing::_, testing::StartsWith(request("a1 81"))));
        // With the minimum refused the range is 0 to 1 and shows the scale's direction.
        device().addFault({.request = UVCRequest::GET_MIN, .selector = {}}, 1, RequestFault::Stall);
        EXPECT_TRUE((control.*row.set)(row.inverted ? 0.0F : 1.0F));
        EXPECT_EQ(TestHost::takeRequests().back(), request("21 01") + " " + row.one);
        device().addFault({.request = UVCRequest::GET_MIN, .selector = {}}, 1, RequestFault::Stall);
        EXPECT_TRUE((control.*row.set)(row.inverted ? 1.0F : 0.0F));
        EXPECT_THAT(TestHost::takeRequests().back(), testing::HasSubstr("| 00"));
        device().addFault({.request = UVCRequest::GET_MIN, .selector = {}}, 1, RequestFault::Stall);
        EXPECT_EQ((control.*row.get)(), row.inverted ? 0.0F : 1.0F);
        device().addFault({.request = UVCRequest::GET_MIN, .selector = {}}, 1, RequestFault::Stall);
        device().addFault({.request = UVCRequest::GET_CUR, .selector = {}}, 1, RequestFault::Stall);
        EXPECT_EQ((control.*row.get)(), row.inverted ? 1.0F : 0.0F);
        TestHost::take();
    }
}

TEST_F(Transport, AutomaticModes) {
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    EXPECT_TRUE(control.setAutoExposure(true));
    EXPECT_TRUE(control.setAutoExposure(false));
    EXPECT_TRUE(control.setAutoWhiteBalance(true));
    EXPECT_TRUE(control.setAutoWhiteBalance(false));
    EXPECT_FALSE(control.getAutoExposure());
    EXPECT_TRUE(control.getAutoWhiteBalance()); // the device's setting is 0 now
    EXPECT_EQ(control.getExtension(), 0x51);
    EXPECT_THAT(TestHost::takeRequests(),
        ElementsAre("21 01 00 02 00 01 01 00 | 08", "21 01 00 02 00 01 01 00 | 01", "21 01 00 0b 00 02 01 00 | 01",
            "21 01 00 0b 00 02 01 00 | 00", "a1 81 00 02 00 01 01 00 | 01", "a1 81 00 0b 00 02 01 00 | 00",
            "a1 81 00 0a 00 03 04 00 | 51 02 83 1c"));
    device().unplug();
    EXPECT_FALSE(control.getAutoWhiteBalance());
    EXPECT_FALSE(control.getAutoExposure());
}

TEST_F(Transport, ScalesInSinglePrecision) {
    EXPECT_EQ(control.mapValue(0.5F, 0, 1, 10, 20), 15.0F);
    EXPECT_EQ(control.mapValue(3, 1, 5, 0, 1), 0.5F);
    EXPECT_EQ(control.mapValue(1, 0, 3, 0, 5), 1.66666675F); // divided before it is multiplied
    EXPECT_EQ(control.mapValue(1, 0, 3, 3, 8), 4.66666698F); // with more digits on the way 4.66666651
    EXPECT_TRUE(std::isinf(control.mapValue(3, 1, 1, 0, 1)));
    const auto [min, max] = control.getRangeForControl({2, 4, 2}); // no interface
    EXPECT_EQ(min, 0);
    EXPECT_EQ(max, 0);
}

TEST_F(Transport, ValuesThatNoIntegerHoldsAreSentAsTheNearest) {
    ASSERT_TRUE(control.initWithVendorID(kVendor, kProduct));
    const auto sent = [this](float value) {
        device().addFault({.request = UVCRequest::GET_MIN, .selector = {}}, 1, RequestFault::Stall);
        EXPECT_TRUE(control.setValue(value, {1, 4, 4}));
        return TestHost::takeRequests().back();
    };
    EXPECT_THAT(sent(0x1p31F), testing::EndsWith("| ff ff ff 7f"));
    EXPECT_THAT(sent(-2.9F), testing::EndsWith("| fe ff ff ff"));
    EXPECT_THAT(sent(NAN), testing::EndsWith("| 00 00 00 00"));
}

} // namespace
