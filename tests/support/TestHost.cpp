#include "TestHost.h"

#include "Clock.h"
#include "Log.h"
#include "UsbChain.h"
#include "WireText.h"

#include <array>
#include <cstdlib>

std::time_t hostTime() {
    return TestHost::now;
}

void sleepForTimeInterval(double seconds) {
    TestHost::note("sleep " + std::to_string(seconds).substr(0, 3));
    TestHost::now += static_cast<std::time_t>(seconds);
}

[[noreturn]] static void end(const std::string& how) {
    TestHost::note(how);
    throw ProgramEnd(how);
}

void deliverLogMessage(std::string_view message) {
    const std::string line(message);
    if (line.starts_with("Fatal: ")) end("fatal " + line.substr(7)); // `fatalStop` would abort
    TestHost::note("log " + line);
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

// The simulated bus, with steps that fail and closes that are recorded.

namespace {

bool fails(const char* step) {
    return TestHost::failing.erase(step) > 0;
}

struct TestInterface : UsbInterface {
    explicit TestInterface(std::unique_ptr<UsbInterface> behind) : simulated(std::move(behind)) {}
    UsbResult GetInterfaceNumber(std::uint8_t& number) override { return simulated->GetInterfaceNumber(number); }
    UsbResult ControlRequest(UsbControlRequest& request) override { return simulated->ControlRequest(request); }
    UsbResult USBInterfaceClose() override {
        TestHost::note("close");
        return fails("close") ? UsbCode::NotFound : UsbCode::Success;
    }
    std::unique_ptr<UsbInterface> simulated;
};

/// Leads to a `Wrapper` of the simulated service's object, or to none if that step fails.
template <class Object, class Wrapper>
struct TestService : ChainService<Object> {
    TestService(UsbService<Object>& simulated, const char* step)
        : ChainService<Object>([plugIn = std::shared_ptr(simulated.createPlugIn().object), step] {
              return fails(step) ? nullptr : std::make_unique<Wrapper>(plugIn->QueryInterface().object);
          }) {}
    UsbResult release() override { return fails("release") ? UsbCode::NotFound : UsbCode::Success; }
};

struct TestDevice : UsbDevice {
    explicit TestDevice(std::unique_ptr<UsbDevice> behind) : simulated(std::move(behind)) {}
    UsbResult GetLocationID(std::uint32_t& location) override { return simulated->GetLocationID(location); }
    UsbOutcome<UsbIterator<UsbInterface>> CreateInterfaceIterator(std::uint8_t type, std::uint8_t subType) override {
        using Service = TestService<UsbInterface, TestInterface>;
        const auto found = simulated->CreateInterfaceIterator(type, subType).object;
        auto list = std::make_unique<ChainIterator<UsbInterface>>();
        while (const auto each = found->next()) list->add(std::make_unique<Service>(*each, "interface object"));
        return {UsbCode::Success, std::move(list)};
    }
    std::unique_ptr<UsbDevice> simulated;
};

struct TestBus : UsbBus {
    using Service = TestService<UsbDevice, TestDevice>;
    UsbOutcome<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override {
        const auto [result, found] = SimulatedBus::instance().firstService(vendor, product);
        return {result, found ? std::make_unique<Service>(*found, "device object") : nullptr};
    }
    UsbOutcome<UsbIterator<UsbDevice>> allServices() override {
        const auto found = SimulatedBus::instance().allServices().object;
        auto list = std::make_unique<ChainIterator<UsbDevice>>();
        while (const auto each = found->next()) list->add(std::make_unique<Service>(*each, "device object"));
        return {UsbCode::Success, std::move(list)};
    }
};

} // namespace

UsbBus& usbBus() {
    static TestBus bus;
    return bus;
}
