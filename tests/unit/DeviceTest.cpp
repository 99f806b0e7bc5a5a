// Owns the search for the device, the standard controls, and numbers that the window never sends:
// too long, too large, and clocks that are off by seconds.

#include "TestHost.h"
#include "VN318UvcController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

namespace {

constexpr std::uint16_t kVendor = CVn318UvcController::kVendorID;
constexpr std::uint16_t kProduct = CVn318UvcController::kProductID;
const std::string kError = "log CameraControl Error: ";

class Device : public testing::Test {
protected:
    Device() {
        TestHost::reset();
        EXPECT_TRUE(controller.initWithVendorID(kVendor, kProduct));
    }

    /// The device refuses the next request of this code.
    static void refuse(UVCRequest request) {
        device().addFault({.request = request, .selector = {}}, 1, RequestFault::Stall);
    }

    CVn318UvcController controller;
};

TEST_F(Device, IsFoundAmongOthers) {
    auto& devices = SimulatedBus::instance().devices;
    while (devices.size() < 4) devices.push_back(std::make_shared<SimulatedDevice>());
    devices[0]->vendorID = kVendor + 1; // another product line, first on the bus
    devices[2]->locationID = devices[3]->locationID = 0x02130000;
    for (std::uint8_t i = 0; i < 4; ++i) devices[i]->status[0] = i;
    EXPECT_TRUE(controller.initWithVendorID((std::int64_t{1} << 32) + kVendor, kProduct));
    EXPECT_EQ(controller.getExtension(), 1);
    TestHost::failing = {{"device object", UsbCode::Success}}; // of the first; the search goes on
    controller.initWithLocationID(0x02130000);
    EXPECT_EQ(controller.getExtension(), 2);
    const std::string line = kError + "QueryInterface returned 0.\n";
    EXPECT_THAT(TestHost::take(), ElementsAre("close", "close", line));
}

TEST_F(Device, EachStepFailsWithItsLine) {
    const std::string plugIn = "IOCreatePlugInInterfaceForService returned ";
    const std::string unable = "Unable to create a plug-in ";
    const std::string couldNot = "Couldn’t create a device interface for the interface ";
    const std::string silent = "No interface to send request"; // the line of the next request
    const std::vector<std::tuple<const char*, UsbResult, std::string>> rows{
        {"devices", UsbCode::InputOutput, silent},
        {"devices", UsbCode::Success, silent},
        {"device plug-in", UsbCode::Access, plugIn + "0xfffffffd."},
        {"device plug-in", UsbCode::Success, plugIn + "0x00000000."},
        {"device object", UsbCode::Busy, "QueryInterface returned -6.\n"},
        {"location", UsbCode::InputOutput, silent},
        {"interfaces", UsbCode::InputOutput, silent},
        {"interfaces", UsbCode::Success, silent},
        {"interface plug-in", UsbCode::Access, unable + "(00000000)\n"},
        {"release", UsbCode::Stall, unable + "(fffffff7)\n"},
        {"interface object", UsbCode::NoDevice, couldNot + "(fffffffc)"},
        {"interface object", UsbCode::Success, couldNot + "(00000000)"},
    };
    for (const auto& [step, result, line] : rows) {
        SCOPED_TRACE(step);
        controller.initWithLocationID(device().locationID);
        EXPECT_EQ(controller.getExtension(), 0x51);
        TestHost::take();
        TestHost::failing = {{step, result}};
        controller.initWithLocationID(device().locationID);
        EXPECT_EQ(controller.getExtension(), 0);
        const std::vector<std::string> journal = TestHost::take();
        EXPECT_EQ(journal.at(0), "close");
        EXPECT_EQ(journal.at(1), kError + line);
    }
}

TEST_F(Device, InterfaceNumberNeverReachesTheWire) {
    device().videoControlInterface = 2;
    TestHost::failing = {{"close", UsbCode::NotFound}};
    EXPECT_EQ(controller.getExtension(), 0); // the device listens on 2, the request says 0
    const auto service = usbBus().firstService(kVendor, kProduct).object;
    const auto object = service->createPlugIn().object->QueryInterface().object;
    const auto interface = controller.getControlInferaceWithDeviceInterface(*object);
    EXPECT_EQ(controller.getInterfaceNumberFromInterface(*interface), 0);
    TestHost::failing = {{"number", UsbCode::NoDevice}};
    EXPECT_EQ(controller.getInterfaceNumberFromInterface(*interface), 0);
    EXPECT_THAT(TestHost::take(),
        ElementsAre("a1 81 00 0a 00 03 04 00 | ! -9", "close",
            kError + "Control request failed: fffffffb", // the result of the close
            "log Unable to get interface number (0xfffffffc)\n"));
}

TEST_F(Device, LengthsThatDoNotFitAreRefusedSilently) {
    std::vector<std::uint8_t> block(0x20000);
    for (const auto& [length, size] : {std::pair(-1, 7U), {8, 7U}, {0x10007, 0x20000U}}) {
        const auto data = std::span(block).first(size);
        EXPECT_FALSE(controller.getDataFor(UVCRequest::GET_CUR, length, 13, 3, data)) << length;
        EXPECT_FALSE(controller.SetData2(data, length, 13, 3)) << length;
        EXPECT_FALSE(controller.setData(1, length == 8 ? 9 : length, 13, 3)) << length;
    }
    EXPECT_EQ(controller.getRangeForControl({3, 13, 0x10007}).max, 0);
    EXPECT_THAT(TestHost::take(), testing::IsEmpty());
}

TEST_F(Device, StandardControlsHaveTheirAddressesAndScales) {
    using C = UVCCameraControl;
    /// wValue, wIndex and wLength as on the wire, the operations, and the device's 1.0
    const std::vector<std::tuple<std::string, bool (C::*)(float), float (C::*)(), int>> rows{
        {" 00 04 00 01 04 00 |", &C::setExposure, &C::getExposure, 0}, // inverted
        {" 00 02 00 02 02 00 |", &C::setBrightness, &C::getBrightness, 1},
        {" 00 03 00 02 02 00 |", &C::setContrast, &C::getContrast, 1},
        {" 00 04 00 02 02 00 |", &C::setGain, &C::getGain, 1},
        {" 00 07 00 02 02 00 |", &C::setSaturation, &C::getSaturation, 1},
        {" 00 08 00 02 02 00 |", &C::setSharpness, &C::getSharpness, 1},
        {" 00 0a 00 02 02 00 |", &C::setWhiteBalance, &C::getWhiteBalance, 1},
    };
    for (const auto& [address, set, get, one] : rows) {
        const auto minimum = "a1 82" + address + " ! -9"; // so that the range is 0 to 1
        const auto maximum = StartsWith("a1 83" + address);
        const auto written = StartsWith("21 01" + address + (one == 1 ? " 01 00" : " 00 00"));
        refuse(UVCRequest::GET_MIN);
        EXPECT_TRUE((controller.*set)(1));
        EXPECT_THAT(TestHost::takeRequests(), ElementsAre(minimum, maximum, written));
        refuse(UVCRequest::GET_MIN);
        EXPECT_EQ((controller.*get)(), one);
        const auto read = StartsWith("a1 81" + address);
        EXPECT_THAT(TestHost::takeRequests(), ElementsAre(minimum, maximum, read));
    }
}

TEST_F(Device, ModesAndLongNumbersOnTheWire) {
    EXPECT_FALSE(controller.setData(-2, 8, 4, 1)); // a length that the device refuses
    EXPECT_TRUE(controller.setAutoExposure(true));
    EXPECT_TRUE(controller.setAutoExposure(false));
    EXPECT_TRUE(controller.setAutoWhiteBalance(true));
    EXPECT_TRUE(controller.setAutoWhiteBalance(false));
    EXPECT_FALSE(controller.getAutoExposure());
    EXPECT_TRUE(controller.getAutoWhiteBalance()); // the device's setting is 0 now
    const std::vector<std::string> requests{
        "21 01 00 04 00 01 08 00 | fe ff ff ff ff ff ff ff ! -9",
        "21 01 00 02 00 01 01 00 | 08",
        "21 01 00 02 00 01 01 00 | 01",
        "21 01 00 0b 00 02 01 00 | 01",
        "21 01 00 0b 00 02 01 00 | 00",
        "a1 81 00 02 00 01 01 00 | 01",
        "a1 81 00 0b 00 02 01 00 | 00",
    };
    EXPECT_EQ(TestHost::takeRequests(), requests);
    device().unplug();
    EXPECT_FALSE(controller.getAutoWhiteBalance());
}

TEST_F(Device, ScalesInSinglePrecisionAndTruncates) {
    EXPECT_EQ(controller.mapValue(3, 1, 5, 0, 1), 0.5F);
    EXPECT_EQ(controller.mapValue(1, 0, 3, 3, 8), 4.66666698F); // else ...51
    const UVCControlInfo exposure{1, 4, 4};
    for (const auto& [value, bytes] : {
             std::pair(0x1p31F, "| ff ff ff 7f"),
             {-0x1p32F, "| 00 00 00 80"},
             {-2.9F, "| fe ff ff ff"},
             {NAN, "| 00 00 00 00"},
         }) {
        refuse(UVCRequest::GET_MIN);
        EXPECT_TRUE(controller.setValue(value, exposure));
        EXPECT_THAT(TestHost::takeRequests().back(), EndsWith(bytes));
    }
    // The range of a device that answers is 1 to 1.
    EXPECT_TRUE(controller.setValue(0, exposure));
    EXPECT_THAT(TestHost::takeRequests().back(), EndsWith("| 01 00 00 00"));
    EXPECT_TRUE(std::isnan(controller.getValueForControl(exposure)));
    EXPECT_TRUE(std::isinf(controller.getValueForControl({3, 12, 26}))); // without a range
    refuse(UVCRequest::GET_MIN);
    refuse(UVCRequest::GET_CUR);
    EXPECT_EQ(controller.getValueForControl(exposure), 0);
}

TEST_F(Device, OnlyTheLowBitsOfANumberAreStored) {
    EXPECT_TRUE(controller.SetAuxVolume(300));
    EXPECT_EQ(device().audio[2], 44);
    EXPECT_TRUE(controller.SetBitRate(17, 34));
    EXPECT_EQ(device().settings[8], 0x12);
    EXPECT_TRUE(controller.SetHdcpState(257));
    EXPECT_EQ(device().settings[9], 1);
    EXPECT_FALSE(controller.SetHdcpState(2)); // refused without a log line
    EXPECT_EQ(TestHost::take().back(), "log new HDCP state value : 2 \n");
}

TEST_F(Device, FailuresClearNumbersAndKeepTheRecord) {
    std::uint8_t number = 9;
    refuse(UVCRequest::GET_CUR);
    EXPECT_FALSE(controller.GetAuxVolume(number));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(TestHost::take().back(), "log getExtension_GetHdmiVolume..getData Fail! \n"); // sic
    EXPECT_TRUE(controller.GetAuxVolume(number));
    EXPECT_EQ(number, 200);
    FirmwareVersionRecord record{77};
    refuse(UVCRequest::GET_CUR);
    EXPECT_FALSE(controller.GetFwVersion(record));
    EXPECT_EQ(record[0], 77);
}

constexpr std::time_t kYearsEnd = 1'735'689'599;     // 2024-12-31 23:59:59 UTC
constexpr std::time_t kBerlinSummer = 1'720'000'000; // 2024-07-03 11:46:40, daylight saving
constexpr std::time_t kBerlinWinter = 1'704'500'000; // 2024-01-06 01:13:20

TEST_F(Device, ClockIsSetWhenMoreThanTwoSecondsApart) {
    /// Time zone, the host's time, the device's clock, and the last line: the difference in
    /// seconds, or the device's clock a second after it was set
    const std::string isSet = "[Get NEW time]Time : ";
    using Calendar = std::array<std::uint8_t, 6>;
    const std::vector<std::tuple<const char*, std::time_t, Calendar, std::string>> rows{
        {"UTC", kYearsEnd, {25, 1, 1, 0, 0, 1}, "TimeInterval = 2.000000\n"},
        {"UTC", kYearsEnd, {25, 1, 1, 0, 0, 2}, isSet + "25-01-01 00:00:00 \n"},
        {"UTC", kYearsEnd + 1, {24, 12, 31, 23, 59, 58}, "TimeInterval = -2.000000\n"},
        {"UTC", kYearsEnd - 1, {24, 12, 31, 23, 59, 55}, isSet + "24-12-31 23:59:59 \n"},
        {"Europe/Berlin", kBerlinWinter, {24, 1, 6, 1, 13, 18}, "TimeInterval = -2.000000\n"},
        // In daylight saving the device's calendar is taken for standard time.
        {"Europe/Berlin", kBerlinSummer, {24, 7, 3, 10, 46, 42}, "TimeInterval = 2.000000\n"},
        {"Europe/Berlin", kBerlinSummer, {24, 7, 3, 11, 46, 40}, isSet + "24-07-03 11:46:41 \n"},
    };
    for (const auto& [zone, host, deviceClock, last] : rows) {
        SCOPED_TRACE(testing::PrintToString(deviceClock));
        ::setenv("TZ", zone, 1);
        TestHost::now = host;
        device().setClock(deviceClock);
        EXPECT_TRUE(controller.SyncRtc());
        EXPECT_EQ(TestHost::take().back(), "log " + last);
    }
    // The host's time is read three times: for the device's answer, to compare, and to write.
    TestHost::tick = 1;
    EXPECT_TRUE(controller.SyncRtc());
    EXPECT_THAT(TestHost::takeRequests()[1], testing::HasSubstr(" | 02 5a 18 07 03 0b 2e 2b "));
}

} // namespace
