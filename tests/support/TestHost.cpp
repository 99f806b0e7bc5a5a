#include "TestHost.h"

#include "Clock.h"
#include "FatalStop.h"
#include "Log.h"
#include "WireText.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

std::time_t hostTime() {
    TestHost& host = TestHost::instance();
    return std::exchange(host.now, host.now + host.tick);
}

void sleepForTimeInterval(double seconds) {
    TestHost::note("sleep " + std::to_string(seconds).substr(0, 3));
    TestHost::instance().now += static_cast<std::time_t>(seconds);
}

void deliverLogMessage(std::string_view message) {
    TestHost::note("log " + std::string(message));
}

void fatalStop(const char* format, ...) {
    std::array<char, 200> reason{};
    std::va_list arguments;
    va_start(arguments, format);
    (void)std::vsnprintf(reason.data(), reason.size(), format, arguments);
    va_end(arguments);
    throw ProgramEnd(std::string("fatal ") + reason.data());
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's --wrap makes the names
extern "C" void __wrap_exit(int status) {
    const std::string end = "exit " + std::to_string(status);
    TestHost::note(end);
    throw ProgramEnd(end);
}
extern "C" void __wrap__exit(int status) {
    __wrap_exit(status);
}
// NOLINTEND(bugprone-reserved-identifier)

std::string endOf(const std::function<void()>& part) {
    try {
        part();
    } catch (const ProgramEnd& end) {
        return end.what();
    }
    return {};
}

TestHost& TestHost::instance() {
    static TestHost host;
    return host;
}

void TestHost::note(const std::string& entry) {
    instance().journal.push_back(entry);
}

void TestHost::reset() {
    instance() = TestHost();
    ::setenv("TZ", "UTC", 1);
    SimulatedBus::instance() = SimulatedBus();
    device().onRequest = [](const RecordedRequest& request) { note(wireText(request)); };
    device().setClock(std::array<std::uint8_t, 6>{23, 11, 14, 22, 13, 20}); // 1,700,000,000 in UTC
}

std::vector<std::string> TestHost::take() {
    return std::exchange(instance().journal, {});
}

std::vector<std::string> TestHost::takeRequests() {
    std::vector<std::string> taken = take();
    std::erase_if(taken, [](const std::string& entry) { return !entry.starts_with("a1") && !entry.starts_with("21"); });
    return taken;
}

SimulatedDevice& device() {
    return *SimulatedBus::instance().devices.front();
}
