// Rules of the settings beyond those in the fault cells (faults/), which compare every byte and log line of start-up
// and of all handlers.

#include "TestHost.h"
#include "VN318UvcController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

using testing::Contains;
using testing::ElementsAre;

namespace {

class Controller : public testing::Test {
protected:
    Controller() {
        TestHost::reset();
        controller = CVn318UvcController::CreateInstance();
        TestHost::take();
    }

    std::unique_ptr<CVn318UvcController> controller;
};

TEST_F(Controller, NumbersThatAFieldDoesNotHold) {
    EXPECT_TRUE(controller->SetAuxVolume(300)); // the low 8 bits count
    EXPECT_EQ(device().audio[2], 44);
    EXPECT_TRUE(controller->SetBitRate(17, 34)); // the low 4
    EXPECT_EQ(device().settings[8], 0x12);
    EXPECT_THAT(TestHost::take(), Contains("log new video bit rate index : 18 \n"));
    EXPECT_TRUE(controller->SetHdcpState(257));
    EXPECT_EQ(device().settings[9], 1);
    EXPECT_FALSE(controller->SetHdcpState(2)); // refused without a log line
    EXPECT_EQ(TestHost::take().back(), "log new HDCP state value : 2 \n");
}

TEST_F(Controller, WhatNoWindowReads) {
    std::uint8_t number = 9;
    EXPECT_TRUE(controller->GetAuxVolume(number));
    EXPECT_EQ(number, 200);
    device().settings[9] = 2;
    EXPECT_TRUE(controller->GetHdcpState(number));
    EXPECT_EQ(number, 2);
    TestHost::take();
    device().addFault({}, 1, RequestFault::Stall);
    EXPECT_FALSE(controller->GetAuxVolume(number));
    EXPECT_EQ(number, 0);
    EXPECT_THAT(TestHost::take(),
        ElementsAre(get(13, {}) + " ! -9", "log CameraControl Error: Control request failed: 00000000",
            "log [Get old]AUX vol = 0,\n", "log getExtension_GetHdmiVolume..getData Fail! \n"));
    FirmwareVersionRecord record;
    record.fill(77);
    device().addFault({}, 1, RequestFault::Stall);
    EXPECT_FALSE(controller->GetFwVersion(record));
    EXPECT_THAT(record, testing::Each(77));
    const UVCControlInfo& status = UvcControls2.status;
    EXPECT_TRUE(controller->getDataFor(UVCRequest::GET_CUR, status.size, status.selector, status.unit, record));
    EXPECT_EQ(TestHost::takeRequests().back(), get(10, {0x51, 0x02, 0x83, 0x1C}));
}

constexpr std::time_t kYearsEnd = 1'735'689'599;     // 2024-12-31 23:59:59 UTC
constexpr std::time_t kBerlinSummer = 1'720'000'000; // 2024-07-03 11:46:40 in Berlin, daylight saving
constexpr std::time_t kBerlinWinter = 1'704'500'000; // 2024-01-06 01:13:20 in Berlin

/// Time zone, the host's time, the device's clock, and the last line: the difference in seconds, or the device's clock
/// a second after it was set.
using ClockCase = std::tuple<const char*, std::time_t, std::array<std::uint8_t, 6>, const char*>;

TEST_F(Controller, ClockIsSetWhenMoreThanTwoSecondsApart) {
    const std::vector<ClockCase> rows{{"UTC", kYearsEnd, {25, 1, 1, 0, 0, 1}, "TimeInterval = 2.000000"},
        {"UTC", kYearsEnd, {25, 1, 1, 0, 0, 2}, "[Get NEW time]Time : 25-01-01 00:00:00 "},
        {"UTC", kYearsEnd + 1, {24, 12, 31, 23, 59, 58}, "TimeInterval = -2.000000"},
        {"UTC", kYearsEnd - 1, {24, 12, 31, 23, 59, 55}, "[Get NEW time]Time : 24-12-31 23:59:59 "},
        {"UTC", kYearsEnd, {0, 1, 1, 0, 0, 0}, "[Get NEW time]Time : 25-01-01 00:00:00 "}, // after power-on
        {"Asia/Kolkata", kYearsEnd, {25, 1, 1, 5, 29, 59}, "TimeInterval = 0.000000"},
        {"Europe/Berlin", kBerlinWinter, {24, 1, 6, 1, 13, 18}, "TimeInterval = -2.000000"},
        {"Europe/Berlin", kBerlinWinter, {24, 1, 6, 1, 13, 17}, "[Get NEW time]Time : 24-01-06 01:13:21 "},
        // In daylight saving the device's calendar is taken for standard time: the right time is an hour off.
        {"Europe/Berlin", kBerlinSummer, {24, 7, 3, 10, 46, 42}, "TimeInterval = 2.000000"},
        {"Europe/Berlin", kBerlinSummer, {24, 7, 3, 11, 46, 40}, "[Get NEW time]Time : 24-07-03 11:46:41 "}};
    for (const auto& [zone, host, deviceClock, last] : rows) {
        SCOPED_TRACE(testing::PrintToString(deviceClock));
        ::setenv("TZ", zone, 1);
        TestHost::instance().now = host;
        device().setClock(deviceClock);
        EXPECT_TRUE(controller->SyncRtc());
        EXPECT_EQ(TestHost::take().back(), std::string("log ") + last + '\n');
    }
    // The host's time is read three times: for the device's answer, to compare, and for the clock that is written.
    TestHost::instance().tick = 1;
    EXPECT_TRUE(controller->SyncRtc());
    EXPECT_THAT(TestHost::takeRequests()[1], testing::HasSubstr(" | 02 5a 18 07 03 0b 2e 2b "));
}

} // namespace
