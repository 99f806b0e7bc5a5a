// The settings that the device keeps: every byte that goes over the wire and every log line, in order. What
// happens when requests fail is in faults/.

#include "TestHost.h"
#include "VN318UvcController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

using testing::ElementsAre;

namespace {

using Bytes = std::vector<int>;

const Bytes kAudio{0x6D, 11, 22, 33, 0x92, 55, 0xE4};
const Bytes kSettings{0x00, 0x5A, 23, 11, 14, 22, 13, 20, 0x21, 0x01, 0xA7, 0x3B, 0xC9};

Bytes with(Bytes block, const std::vector<std::pair<std::size_t, int>>& changes) {
    for (const auto& [byte, value] : changes) block[byte] = value;
    return block;
}

class Controller : public testing::Test {
protected:
    Controller() {
        TestHost::reset();
        device().audio = {0x6D, 11, 22, 33, 0x92, 55, 0xE4};
        device().settings[8] = 0x21;
        device().settings[9] = 1;
        controller = CVn318UvcController::CreateInstance();
        EXPECT_THAT(TestHost::take(), ElementsAre("log call camera CreateInstance"));
    }

    std::unique_ptr<CVn318UvcController> controller;
};

TEST_F(Controller, AuxVolume) {                 // which no window reads
    EXPECT_TRUE(controller->SetAuxVolume(300)); // the low 8 bits count
    EXPECT_THAT(TestHost::take(),
        ElementsAre(get(13, kAudio), "log [Get old]AUX vol = 22,\n", set(13, with(kAudio, {{2, 44}}))));
    std::uint8_t volume = 9;
    EXPECT_TRUE(controller->GetAuxVolume(volume));
    EXPECT_EQ(volume, 44);
    device().addFault(kAnyGet, 1, RequestFault::Stall);
    TestHost::take();
    EXPECT_FALSE(controller->GetAuxVolume(volume));
    EXPECT_EQ(volume, 0);
    EXPECT_THAT(TestHost::takeLog(),
        ElementsAre("log CameraControl Error: Control request failed: 00000000", "log [Get old]AUX vol = 0,\n",
            "log getExtension_GetHdmiVolume..getData Fail! \n"));
}

TEST_F(Controller, BitRateLevelsAreFourBits) {
    EXPECT_TRUE(controller->SetBitRate(17, 34));
    EXPECT_EQ(TestHost::take().back(), set(11, with(kSettings, {{0, 4}, {8, 0x12}})));
    std::uint8_t h264 = 9;
    std::uint8_t mjpeg = 9;
    EXPECT_TRUE(controller->GetBitRate(h264, mjpeg));
    EXPECT_EQ(h264, 1);
    EXPECT_EQ(mjpeg, 2);
}

TEST_F(Controller, HdcpState) {
    const std::string old = "log [Get old]HDCP state : 1,\n";
    EXPECT_TRUE(controller->SetHdcpState(256)); // the low 8 bits count
    EXPECT_THAT(TestHost::take(),
        ElementsAre(
            get(11, kSettings), old, "log new HDCP state value : 0 \n", set(11, with(kSettings, {{0, 16}, {9, 0}}))));
    EXPECT_FALSE(controller->SetHdcpState(2)); // refused without a word
    EXPECT_THAT(TestHost::take(),
        ElementsAre(
            get(11, with(kSettings, {{9, 0}})), "log [Get old]HDCP state : 0,\n", "log new HDCP state value : 2 \n"));
}

TEST_F(Controller, AFailedReadLeavesTheVersions) {
    FirmwareVersionRecord record;
    record.fill(77);
    device().addFault(kAnyGet, 1, RequestFault::Stall);
    EXPECT_FALSE(controller->GetFwVersion(record));
    EXPECT_THAT(record, testing::Each(77));
}

// The clock.

/// Name, time zone, the host's time, the device's clock, the interval (absent: out of time), and settings bytes 2
/// to 7 as they are written if it is out of time.
using ClockCase = std::tuple<const char*, const char*, std::time_t, std::array<std::uint8_t, 6>, const char*, Bytes>;

constexpr std::time_t kYearsEnd = 1'735'689'599;     // 2024-12-31 23:59:59 UTC
constexpr std::time_t kBerlinSummer = 1'720'000'000; // 2024-07-03 11:46:40 in Berlin, daylight saving
constexpr std::time_t kBerlinWinter = 1'704'500'000; // 2024-01-06 01:13:20 in Berlin

TEST_F(Controller, ClockIsSetWhenMoreThanTwoSecondsApart) {
    const std::vector<ClockCase> rows{{"TwoAhead", "UTC", kYearsEnd, {25, 1, 1, 0, 0, 1}, "2.000000", {}},
        {"ThreeAhead", "UTC", kYearsEnd, {25, 1, 1, 0, 0, 2}, nullptr, {24, 12, 31, 23, 59, 59}},
        {"TwoBehind", "UTC", kYearsEnd + 1, {24, 12, 31, 23, 59, 58}, "-2.000000", {}},
        {"ThreeBehind", "UTC", kYearsEnd + 1, {24, 12, 31, 23, 59, 57}, nullptr, {25, 1, 1, 0, 0, 0}},
        {"Never", "UTC", kYearsEnd, {0, 1, 1, 0, 0, 0}, nullptr, {24, 12, 31, 23, 59, 59}},
        {"EastOfUtc", "Asia/Kolkata", kYearsEnd, {25, 1, 1, 5, 29, 59}, "0.000000", {}},
        {"WinterTwoBehind", "Europe/Berlin", kBerlinWinter, {24, 1, 6, 1, 13, 18}, "-2.000000", {}},
        {"WinterThreeBehind", "Europe/Berlin", kBerlinWinter, {24, 1, 6, 1, 13, 17}, nullptr, {24, 1, 6, 1, 13, 20}},
        // In daylight saving the device's calendar is taken for standard time: the right time is an hour off.
        {"SummerRight", "Europe/Berlin", kBerlinSummer, {24, 7, 3, 11, 46, 40}, nullptr, {24, 7, 3, 11, 46, 40}},
        {"SummerStandardTime", "Europe/Berlin", kBerlinSummer, {24, 7, 3, 10, 46, 42}, "2.000000", {}}};
    for (const auto& [name, zone, host, deviceClock, interval, written] : rows) {
        SCOPED_TRACE(name);
        TestHost::take();
        TestHost::setTimeZone(zone);
        TestHost::instance().now = host;
        device().setClock(deviceClock);
        EXPECT_TRUE(controller->SyncRtc());
        const auto journal = TestHost::take();
        ASSERT_EQ(journal.size(), interval != nullptr ? 3U : 6U);
        Bytes block = with(kSettings, {{0, 2}});
        std::ranges::copy(written, block.begin() + 2);
        EXPECT_EQ(
            journal[2], interval != nullptr ? "log TimeInterval = " + std::string(interval) + "\n" : set(11, block));
    }
}

} // namespace
