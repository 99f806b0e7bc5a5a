#include "TestHost.h"

#include "Clock.h"
#include "FatalStop.h"
#include "Log.h"
#include "UsbChain.h"
#include "WireText.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

std::time_t hostTime() {
    return std::exchange(TestHost::now, TestHost::now + TestHost::tick);
}

void sleepForTimeInterval(double seconds) {
    TestHost::note("sleep " + std::to_string(seconds).substr(0, 3));
    TestHost::now += static_cast<std::time_t>(seconds);
}

void deliverLogMessage(std::string_view message) {
    TestHost::note("log " + std::string(message));
}

[[noreturn]] static void end(const std::string& how) {
    TestHost::note(how);
    throw ProgramEnd(how);
}

void fatalStop(const char* format, ...) {
    std::array<char, 200> reason{};
    std::va_list arguments;
    va_start(arguments, format);
    (void)std::vsnprintf(reason.data(), reason.size(), format, arguments);
    va_end(arguments);
    end(std::string("fatal ") + reason.data());
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's --wrap makes the names
extern "C" void __wrap_exit(int status) {
    end("exit " + std::to_string(status));
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

void TestHost::reset() {
    now = 1'700'000'000;
    tick = 0;
    failing.clear();
    journal.clear();
    ::setenv("TZ", "UTC", 1);
    SimulatedBus::instance() = SimulatedBus();
    device().onRequest = [](const RecordedRequest& request) { note(wireText(request)); };
    device().setClock(std::array<std::uint8_t, 6>{23, 11, 14, 22, 13, 20}); // `now` in UTC
}

std::vector<std::string> TestHost::takeRequests() {
    std::vector<std::string> taken = take();
    std::erase_if(taken, [](const std::string& entry) { return !entry.starts_with("a1") && !entry.starts_with("21"); });
    return taken;
}

// The simulated bus with steps that fail.

namespace {

UsbResult resultOf(const std::string& step, UsbResult simulated = UsbCode::Success) {
    const auto failure = TestHost::failing.extract(step);
    return failure ? failure.mapped() : simulated;
}

template <class Object>
UsbOutcome<Object> outcomeOf(const std::string& step, std::unique_ptr<Object> object) {
    if (const auto failure = TestHost::failing.extract(step)) return {failure.mapped(), nullptr};
    return {UsbCode::Success, std::move(object)};
}

/// Service and plug-in: creates a `Wrapper` of the simulated object.
template <class Object, class Wrapper>
struct TestService : UsbService<Object>, UsbPlugIn<Object> {
    explicit TestService(std::shared_ptr<UsbService<Object>> behind) : simulated(std::move(behind)) {}
    UsbOutcome<UsbPlugIn<Object>> createPlugIn() override {
        return outcomeOf<UsbPlugIn<Object>>(Wrapper::kName + " plug-in", std::make_unique<TestService>(simulated));
    }
    UsbResult release() override { return resultOf("release"); }
    UsbOutcome<Object> QueryInterface() override {
        auto object = std::make_unique<Wrapper>(simulated->createPlugIn().object->QueryInterface().object);
        return outcomeOf<Object>(Wrapper::kName + " object", std::move(object));
    }
    std::shared_ptr<UsbService<Object>> simulated;
};

template <class Wrapper, class Object>
UsbOutcome<UsbIterator<Object>> listOf(UsbIterator<Object>& simulated) {
    auto list = std::make_unique<ChainIterator<Object>>();
    while (auto each = simulated.next()) list->add(std::make_unique<TestService<Object, Wrapper>>(std::move(each)));
    return outcomeOf<UsbIterator<Object>>(Wrapper::kName + "s", std::move(list));
}

struct TestInterface : UsbInterface {
    inline static const std::string kName = "interface";
    explicit TestInterface(std::unique_ptr<UsbInterface> behind) : simulated(std::move(behind)) {}
    UsbResult GetInterfaceNumber(std::uint8_t& number) override {
        return resultOf("number", simulated->GetInterfaceNumber(number));
    }
    UsbResult ControlRequest(UsbControlRequest& request) override { return simulated->ControlRequest(request); }
    UsbResult USBInterfaceClose() override {
        TestHost::note("close");
        return resultOf("close");
    }
    std::unique_ptr<UsbInterface> simulated;
};

struct TestDevice : UsbDevice {
    inline static const std::string kName = "device";
    explicit TestDevice(std::unique_ptr<UsbDevice> behind) : simulated(std::move(behind)) {}
    UsbResult GetLocationID(std::uint32_t& location) override {
        return resultOf("location", simulated->GetLocationID(location));
    }
    UsbOutcome<UsbIterator<UsbInterface>> CreateInterfaceIterator(std::uint8_t type, std::uint8_t subType) override {
        return listOf<TestInterface>(*simulated->CreateInterfaceIterator(type, subType).object);
    }
    std::unique_ptr<UsbDevice> simulated;
};

struct TestBus : UsbBus {
    UsbOutcome<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override {
        auto [result, service] = SimulatedBus::instance().firstService(vendor, product);
        return {result, service ? std::make_unique<TestService<UsbDevice, TestDevice>>(std::move(service)) : nullptr};
    }
    UsbOutcome<UsbIterator<UsbDevice>> allServices() override {
        return listOf<TestDevice>(*SimulatedBus::instance().allServices().object);
    }
};

} // namespace

UsbBus& usbBus() {
    static TestBus bus;
    return bus;
}
