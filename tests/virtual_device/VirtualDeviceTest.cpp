// The virtual device as a client of USB/IP and whoever commands it see it.

#include "DeviceCommands.h"
#include "TestHost.h"
#include "UsbIpSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <random>
#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::size_t kHeader = 48;
using Setup = std::array<std::uint8_t, 8>;
constexpr Setup kGetAudio{0xA1, 0x81, 0, 13, 0, 3, 7, 0};
constexpr Setup kSetAudio{0x21, 0x01, 0, 13, 0, 3, 7, 0};

Bytes listRequest() { return {1, 0x11, 0x80, 5, 0, 0, 0, 0}; }

Bytes importRequest(std::string busID) {
    Bytes bytes{1, 0x11, 0x80, 3, 0, 0, 0, 0};
    busID.resize(32);
    bytes.insert(bytes.end(), busID.begin(), busID.end());
    return bytes;
}

Bytes submit(std::uint32_t sequence, std::uint32_t endpoint, bool toHost, std::uint32_t length, const Setup& setup = {},
             const Bytes& data = {}) {
    Bytes bytes;
    for (const std::uint32_t number : {1U, sequence, 0x10002U, toHost ? 1U : 0U, endpoint, 0U, length, 0U, 0U, 0U})
        appendBigEndian(bytes, number, 4);
    append(bytes, setup);
    append(bytes, data);
    return bytes;
}

Bytes unlink(std::uint32_t sequence, std::uint32_t victim) {
    Bytes bytes;
    for (const std::uint32_t number : {2U, sequence, 0x10002U, 0U, 0U, victim}) appendBigEndian(bytes, number, 4);
    bytes.resize(kHeader);
    return bytes;
}

std::int32_t numberAt(const Bytes& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) value = value << 8 | bytes.at(i);
    return static_cast<std::int32_t>(value);
}

class VirtualDevice : public testing::Test {
protected:
    VirtualDevice() { TestHost::reset(); }

    Bytes exchange(const Bytes& bytes, bool attachable = true) {
        session.receive(bytes, attachable, now);
        return std::exchange(session.output, {});
    }
    /// How a transfer ended: its status and what came back.
    std::pair<int, Bytes> transfer(const Bytes& request) {
        const Bytes reply = exchange(request);
        if (reply.size() < kHeader) return {1, {}};
        EXPECT_EQ(numberAt(reply, 0), 3);
        return {numberAt(reply, 20), Bytes(reply.begin() + kHeader, reply.end())};
    }

    SimulatedDevice device;
    VirtualCaptureDevice capture{device};
    UsbIpSession session{capture};
    UsbIpSession::Clock::time_point now{};
};

TEST_F(VirtualDevice, IsListedAndHandedOutOnce) {
    UsbIpSession list(capture);
    list.receive(listRequest(), true, now);
    EXPECT_EQ(list.output.size(), 8U + 4 + 312 + 2 * 4);
    EXPECT_TRUE(list.ended());
    EXPECT_THAT(exchange(importRequest("1-1"), false), ElementsAre(1, 0x11, 0, 3, 0, 0, 0, 1));
    EXPECT_TRUE(session.ended());
    UsbIpSession second(capture);
    for (const std::uint8_t byte : importRequest("1-1")) // in as many pieces as there are bytes
        second.receive(Bytes{byte}, true, now);
    EXPECT_EQ(second.output.size(), 8U + 312);
    EXPECT_TRUE(second.imported());
}

TEST_F(VirtualDevice, CarriesRequestsToTheUnits) {
    session.importNow(now);
    const Bytes audio{0x6D, 255, 200, 176, 0x92, 128, 0xE4};
    EXPECT_EQ(transfer(submit(1, 0, true, 7, kGetAudio)), std::pair(0, audio));
    Bytes quiet = audio;
    quiet[5] = 1;
    const Bytes reply = exchange(submit(2, 0, false, 7, kSetAudio, quiet));
    EXPECT_EQ(numberAt(reply, 24), 7); // bytes carried
    EXPECT_EQ(device.audio[5], 1);
    EXPECT_EQ(transfer(submit(3, 0, true, 8, {0xA1, 0x81, 0, 13, 0, 3, 8, 0})).first, -EPIPE);
    EXPECT_EQ(transfer(submit(4, 0, true, 1, {0xA1, 0x81, 0, 2, 0, 0, 1, 0})), std::pair(0, Bytes{7}));
    EXPECT_EQ(transfer(submit(5, 0, true, 2, {0xA1, 0x85, 0, 12, 0, 3, 2, 0})), std::pair(0, Bytes{26, 0}));
    EXPECT_EQ(transfer(submit(6, 0, true, 1, {0xA1, 0x86, 0, 12, 0, 3, 1, 0})), std::pair(0, Bytes{1}));
    EXPECT_EQ(transfer(submit(7, 0, true, 2, {0xA1, 0x87, 0, 10, 0, 2, 2, 0})), std::pair(0, Bytes{0xF8, 0x11}));
    device.addFault({}, 1, RequestFault::ShortData);
    EXPECT_EQ(transfer(submit(8, 0, true, 7, kGetAudio)).second.size(), 3U);
}

TEST_F(VirtualDevice, DoesNotAnswerUntilTheClientTakesItBack) {
    session.importNow(now);
    device.addFault({}, 1, RequestFault::TimeOut);
    EXPECT_THAT(exchange(submit(1, 0, true, 7, kGetAudio)), IsEmpty());
    EXPECT_EQ(numberAt(exchange(unlink(2, 1)), 20), -ECONNRESET);
    EXPECT_EQ(numberAt(exchange(unlink(3, 1)), 20), 0);
    device.addFault({}, 1, RequestFault::Unplug);
    EXPECT_THAT(exchange(submit(4, 0, true, 7, kGetAudio)), IsEmpty());
    EXPECT_TRUE(session.ended());
}

TEST_F(VirtualDevice, StreamsPicturesAtTheirPace) {
    session.importNow(now);
    Bytes commit(34);
    commit[4] = 0x15; // 333333: 30 pictures a second
    EXPECT_EQ(transfer(submit(1, 0, false, 34, {0x21, 1, 0, 2, 1, 0, 34, 0}, commit)).first, 0);
    std::size_t size = 0;
    for (std::uint32_t i = 2; i < 5; ++i) size += transfer(submit(i, 1, true, 16384)).second.size() - 2;
    EXPECT_EQ(size, kPictureSize);
    EXPECT_THAT(exchange(submit(5, 1, true, 16384)), IsEmpty());
    now = session.due().value();
    EXPECT_EQ(now.time_since_epoch(), std::chrono::nanoseconds(33333300));
    session.proceed(now);
    EXPECT_EQ(session.output.size(), kHeader + 16384);
}

TEST_F(VirtualDevice, EndsWhatIsNoUsbIp) {
    Bytes isochronous = submit(1, 1, true, 100);
    isochronous[35] = 4;
    const std::vector<Bytes> rows{submit(1, 0, false, 0xFFFFFFFF), submit(1, 1, true, 1 << 20), isochronous,
                                  Bytes(kHeader, 0xFF)};
    for (const Bytes& bytes : rows) {
        UsbIpSession other(capture);
        other.importNow(now);
        other.receive(bytes, true, now);
        EXPECT_TRUE(other.ended());
        EXPECT_THAT(other.output, IsEmpty());
    }
    Bytes flood;
    for (std::uint32_t i = 0; i < 1000; ++i) append(flood, submit(i, 1, true, 2));
    now += std::chrono::seconds(-1); // no picture is due
    session.importNow(now + std::chrono::hours(1));
    session.receive(flood, true, now);
    EXPECT_TRUE(session.ended());
}

TEST_F(VirtualDevice, SurvivesBytesThatMeanNothing) {
    std::minstd_rand random(1);
    for (int round = 0; round < 3000; ++round) {
        UsbIpSession other(capture);
        if (round % 4 != 0) other.importNow(now);
        Bytes bytes = round % 4 == 0 ? importRequest("1-1") : submit(1, round % 8 == 1 ? 1 : 0, round % 2 == 0, 8);
        append(bytes, submit(2, 0, true, 64, kGetAudio));
        for (int i = 0; i < 3; ++i) bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        other.receive(bytes, true, now);
        EXPECT_LT(other.output.size(), 100000U);
    }
}

TEST_F(VirtualDevice, TakesCommands) {
    EXPECT_EQ(carryOutCommand("fault stall get 13 2", device), "ok");
    session.importNow(now);
    EXPECT_EQ(transfer(submit(1, 0, true, 7, kGetAudio)).first, 0);
    EXPECT_EQ(transfer(submit(2, 0, true, 7, kGetAudio)).first, -EPIPE);
    EXPECT_EQ(carryOutCommand(" fault  short any any\r", device), "ok");
    EXPECT_EQ(carryOutCommand("clear", device), "ok");
    EXPECT_EQ(transfer(submit(3, 0, true, 7, kGetAudio)).first, 0);
    EXPECT_EQ(carryOutCommand("unplug", device), "ok");
    EXPECT_FALSE(device.plugged());
    EXPECT_EQ(carryOutCommand("show", device),
              "unplugged: bit rate H.264 1 MJPEG 1, HDCP 0, microphone 176, headphone 128, HDMI 255, AUX 200");
    EXPECT_EQ(carryOutCommand("plug", device), "ok");
    EXPECT_TRUE(device.plugged());
    for (const char* line : {"", "fault", "fault stall get 256", "fault stall get 13 0", "fault fire get 13", "plug in",
                             "fault stall get 13 1 1", "fault stall look 13", "explode"})
        EXPECT_THAT(carryOutCommand(line, device), testing::StartsWith("error: ")) << line;
}

} // namespace
