// Owns the search for the device, standard controls, numbers that no window sends.

#include "TestHost.h"
#include "VN318UvcController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

using testing::Contains;
using testing::ElementsAre;
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
    devices.push_back(std::make_shared<SimulatedDevice>());
    devices[0]->vendorID = kVendor + 1; // another product line, first on the bus
    devices[1]->status[0] = 1;
    devices[1]->locationID = 0x02130000;
    EXPECT_TRUE(controller.initWithVendorID(kVendor, kProduct));
    EXPECT_EQ(controller.getExtension(), 1);
    controller.initWithLocationID(0x02130000);
    EXPECT_EQ(controller.getExtension(), 1);
}

TEST_F(Device, FailedStepsOfTheSearchAreLogged) {
    for (const auto& [step, line] : {
             std::pair("device object", "QueryInterface returned 0.\n"),
             {"release", "Unable to create a plug-in (fffffffb)\n"},
             {"interface object", "Couldn’t create a device interface for the interface (00000000)"},
         }) {
        TestHost::failing = {step};
        controller.initWithLocationID(device().locationID);
        EXPECT_EQ(controller.getExtension(), 0);
        EXPECT_THAT(TestHost::take(), Contains(kError + line));
    }
}

TEST_F(Device, InterfaceNumberNeverReachesTheWire) {
    device().videoControlInterface = 2;
    TestHost::failing = {"close"};
    EXPECT_EQ(controller.getExtension(), 0); // the device listens on 2, the request says 0
    // The result of the close is logged.
    const auto line = kError + "Control request failed: fffffffb";
    EXPECT_THAT(TestHost::take(), ElementsAre("a1 81 00 0a 00 03 04 00 | ! -9", "close", line));
}

TEST_F(Device, LengthsThatDoNotFitAreRefusedSilently) {
    std::array<std::uint8_t, 7> block{};
    EXPECT_FALSE(controller.getDataFor(UVCRequest::GET_CUR, 8, 13, 3, block));
    EXPECT_FALSE(controller.SetData2(block, -1, 13, 3));
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
        refuse(UVCRequest::GET_MIN); // so that the range is 0 to 1
        EXPECT_TRUE((controller.*set)(1));
        refuse(UVCRequest::GET_MIN);
        EXPECT_EQ((controller.*get)(), one);
        const auto minimum = "a1 82" + address + " ! -9";
        const auto maximum = StartsWith("a1 83" + address);
        const auto written = StartsWith("21 01" + address + (one == 1 ? " 01 00" : " 00 00"));
        const auto read = StartsWith("a1 81" + address);
        const auto requests = TestHost::takeRequests();
        EXPECT_THAT(requests, ElementsAre(minimum, maximum, written, minimum, maximum, read));
    }
}

TEST_F(Device, AutomaticModesOnTheWire) {
    EXPECT_TRUE(controller.setAutoExposure(true));
    EXPECT_TRUE(controller.setAutoExposure(false));
    EXPECT_TRUE(controller.setAutoWhiteBalance(true));
    EXPECT_TRUE(controller.setAutoWhiteBalance(false));
    const std::vector<std::string> requests{
        "21 01 00 02 00 01 01 00 | 08",
        "21 01 00 02 00 01 01 00 | 01",
        "21 01 00 0b 00 02 01 00 | 01",
        "21 01 00 0b 00 02 01 00 | 00",
    };
    EXPECT_EQ(TestHost::takeRequests(), requests);
}

TEST_F(Device, ScalesInSinglePrecisionAndTruncates) {
    EXPECT_EQ(controller.mapValue(1, 0, 3, 3, 8), 4.66666698F); // else ...51
    refuse(UVCRequest::GET_MIN);
    EXPECT_TRUE(controller.setValue(-2.9F, uvc_controls.exposure));
    EXPECT_THAT(TestHost::takeRequests().back(), testing::EndsWith("| fe ff ff ff"));
}

TEST_F(Device, OnlyTheLowBitsOfANumberAreStored) {
    std::uint8_t volume = 0;
    EXPECT_TRUE(controller.SetAuxVolume(300));
    EXPECT_TRUE(controller.GetAuxVolume(volume));
    EXPECT_EQ(volume, 44);
    EXPECT_TRUE(controller.SetBitRate(17, 34));
    EXPECT_EQ(device().settings[8], 0x12);
    EXPECT_FALSE(controller.SetHdcpState(2)); // refused without a log line
    EXPECT_EQ(TestHost::take().back(), "log new HDCP state value : 2 \n");
}

TEST_F(Device, ClockIsSetWhenMoreThanTwoSecondsApart) {
    constexpr std::time_t kNewYear = 1'735'689'600; // 2025-01-01 00:00:00 UTC
    constexpr std::time_t kSummer = 1'720'000'000;  // 2024-07-03 11:46:40 in Berlin
    const std::string isSet = "log [Get NEW time]Time : ";
    using Calendar = std::array<std::uint8_t, 6>;
    /// Time zone, the host's time, the device's clock, and the last line: the difference in
    /// seconds, or the device's clock a second after it was set
    const std::vector<std::tuple<const char*, std::time_t, Calendar, std::string>> rows{
        {"UTC", kNewYear, {25, 1, 1, 0, 0, 2}, "log TimeInterval = 2.000000\n"},
        {"UTC", kNewYear, {25, 1, 1, 0, 0, 3}, isSet + "25-01-01 00:00:01 \n"},
        {"UTC", kNewYear, {24, 12, 31, 23, 59, 57}, isSet + "25-01-01 00:00:01 \n"},
        // In daylight saving the device's calendar is taken for standard time.
        {"Europe/Berlin", kSummer, {24, 7, 3, 10, 46, 38}, "log TimeInterval = -2.000000\n"},
        {"Europe/Berlin", kSummer, {24, 7, 3, 11, 46, 40}, isSet + "24-07-03 11:46:41 \n"},
    };
    for (const auto& [zone, host, deviceClock, last] : rows) {
        SCOPED_TRACE(testing::PrintToString(deviceClock));
        ::setenv("TZ", zone, 1);
        TestHost::now = host;
        device().setClock(deviceClock);
        EXPECT_TRUE(controller.SyncRtc());
        EXPECT_EQ(TestHost::take().back(), last);
    }
}

} // namespace
