#include "SimulatedHost.h"

#include "WireText.h"
#include "host/Clock.h"
#include "host/Log.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <tuple>
#include <utility>

#include <unistd.h>

namespace {

void note(const std::string& entry) {
    SimulatedHost& host = SimulatedHost::instance();
    host.journal.push_back(entry);
    if (host.journalCopy >= 0)
        std::ignore =
            ::write(host.journalCopy, entry.c_str(), entry.size() + 1); // a lost entry fails the test
}

std::uint8_t blockSize(int selector) {
    return selector == 10 ? 4 : selector == 11 ? 13 : selector == 12 ? 26 : 7;
}

/// As it goes through without a failure.
std::string requestText(std::uint8_t requestType, std::uint8_t request, int selector,
                        const std::vector<int>& bytes) {
    RecordedRequest recorded{
        {requestType, request, 0, static_cast<std::uint8_t>(selector), 0, 3, blockSize(selector), 0},
        {},
        UsbCode::Success};
    for (const int byte : bytes)
        recorded.data.push_back(static_cast<std::uint8_t>(byte));
    return wireText(recorded);
}

std::vector<std::string> takeMatching(bool wantLog) {
    std::vector<std::string> taken = SimulatedHost::take();
    std::erase_if(taken, [wantLog](const std::string& entry) {
        return entry == "release" || entry.starts_with("sleep") || entry.starts_with("log ") != wantLog;
    });
    return taken;
}

} // namespace

std::time_t hostTime() {
    return SimulatedHost::instance().now;
}

void sleepForTimeInterval(double seconds) {
    note("sleep " + std::to_string(seconds).substr(0, 3));
    SimulatedHost::instance().now += static_cast<std::time_t>(seconds);
}

void deliverLogMessage(std::string_view message) {
    note("log " + std::string(message));
}

SimulatedHost& SimulatedHost::instance() {
    static SimulatedHost host;
    return host;
}

void SimulatedHost::setTimeZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
}

void SimulatedHost::reset() {
    const int journalCopy = instance().journalCopy;
    instance() = SimulatedHost();
    instance().journalCopy = journalCopy;
    setTimeZone("UTC");
    SimulatedBus::instance() = SimulatedBus();
    device().onRequest = [](const RecordedRequest& request) { note(wireText(request)); };
    SimulatedBus::instance().onRelease = [] { note("release"); };
    device().setClock(std::array<std::uint8_t, 6>{23, 11, 14, 22, 13, 20}); // 1,700,000,000 in UTC
}

std::vector<std::string> SimulatedHost::take() {
    return std::exchange(instance().journal, {});
}

std::vector<std::string> SimulatedHost::takeRequests() {
    return takeMatching(false);
}

std::vector<std::string> SimulatedHost::takeLog() {
    return takeMatching(true);
}

SimulatedDevice& device() {
    return *SimulatedBus::instance().devices.front();
}

std::string get(int selector, const std::vector<int>& bytes) {
    return requestText(0xA1, 0x81, selector, bytes);
}

std::string set(int selector, const std::vector<int>& bytes) {
    return requestText(0x21, 0x01, selector, bytes);
}
