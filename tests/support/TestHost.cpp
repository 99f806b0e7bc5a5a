#include "TestHost.h"

#include "Clock.h"
#include "Log.h"
#include "Uvc.h"
#include "WireText.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <tuple>
#include <utility>

#include <unistd.h>

namespace {

std::uint8_t blockSize(int selector) {
    return selector == 10 ? 4 : selector == 11 ? 13 : selector == 12 ? 26 : 7;
}

/// As it goes through without a failure.
std::string requestText(std::uint8_t requestType, UVCRequest request, int selector, const std::vector<int>& bytes) {
    const auto code = static_cast<std::uint8_t>(request);
    RecordedRequest recorded{{requestType, code, 0, static_cast<std::uint8_t>(selector), 0, 3, blockSize(selector), 0},
        {}, UsbCode::Success};
    for (const int byte : bytes) recorded.data.push_back(static_cast<std::uint8_t>(byte));
    return wireText(recorded);
}

std::vector<std::string> takeMatching(bool wantLog) {
    std::vector<std::string> taken = TestHost::take();
    std::erase_if(taken, [wantLog](const std::string& entry) {
        return entry == "release" || entry.starts_with("sleep") || entry.starts_with("log ") != wantLog;
    });
    return taken;
}

} // namespace

std::time_t hostTime() {
    return TestHost::instance().now;
}

void sleepForTimeInterval(double seconds) {
    TestHost::note("sleep " + std::to_string(seconds).substr(0, 3));
    TestHost::instance().now += static_cast<std::time_t>(seconds);
}

void deliverLogMessage(std::string_view message) {
    TestHost::note("log " + std::string(message));
}

TestHost& TestHost::instance() {
    static TestHost host;
    return host;
}

void TestHost::note(const std::string& entry) {
    TestHost& host = instance();
    host.journal.push_back(entry);
    if (host.journalCopy >= 0)
        std::ignore = ::write(host.journalCopy, entry.c_str(), entry.size() + 1); // a lost entry fails the test
}

void TestHost::setTimeZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
}

void TestHost::reset() {
    const int journalCopy = instance().journalCopy;
    instance() = TestHost();
    instance().journalCopy = journalCopy;
    setTimeZone("UTC");
    SimulatedBus::instance() = SimulatedBus();
    TestBus::instance() = TestBus();
    device().onRequest = [](const RecordedRequest& request) { note(wireText(request)); };
    device().setClock(std::array<std::uint8_t, 6>{23, 11, 14, 22, 13, 20}); // 1,700,000,000 in UTC
}

std::vector<std::string> TestHost::take() {
    return std::exchange(instance().journal, {});
}

std::vector<std::string> TestHost::takeRequests() {
    return takeMatching(false);
}

std::vector<std::string> TestHost::takeLog() {
    return takeMatching(true);
}

SimulatedDevice& device() {
    return *SimulatedBus::instance().devices.front();
}

std::string get(int selector, const std::vector<int>& bytes) {
    return requestText(Uvc::kGetFromInterface, UVCRequest::GET_CUR, selector, bytes);
}

std::string set(int selector, const std::vector<int>& bytes) {
    return requestText(Uvc::kSetToInterface, UVCRequest::SET_CUR, selector, bytes);
}
