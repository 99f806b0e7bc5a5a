// The simulated bus with one step that fails (`TestHost::failing`). In every list of services each one is followed by
// another without an object.

#include "SimulatedBus.h"
#include "TestHost.h"
#include "UsbChain.h"

#include <optional>
#include <utility>

namespace {

/// The result of the step that fails, absent for any other step.
std::optional<UsbResult> failure(const std::string& step) {
    auto& [failingStep, result] = TestHost::instance().failing;
    if (step != failingStep) return std::nullopt;
    failingStep.clear();
    return result;
}

/// Service and plug-in: creates a `Wrapper` of the simulated object.
template <class Object, class Wrapper>
struct TestService : UsbService<Object>, UsbPlugIn<Object> {
    const std::string name = std::is_same_v<Object, UsbDevice> ? "device" : "interface";
    explicit TestService(std::unique_ptr<UsbService<Object>> behind) : simulated(std::move(behind)) {}
    UsbYield<UsbPlugIn<Object>> createPlugIn() override {
        if (const auto failed = failure(name + " plug-in")) return {*failed, nullptr};
        return {UsbCode::Success, std::make_unique<TestService>(std::move(simulated))};
    }
    UsbResult release() override { return failure("release").value_or(UsbCode::Success); }
    UsbYield<Object> QueryInterface() override {
        if (const auto failed = failure(name + " object")) return {*failed, nullptr};
        return {UsbCode::Success, std::make_unique<Wrapper>(simulated->createPlugIn().object->QueryInterface().object)};
    }
    std::unique_ptr<UsbService<Object>> simulated;
};

template <class Wrapper, class Object>
UsbYield<UsbIterator<Object>> listOf(const char* step, const UsbYield<UsbIterator<Object>>& simulated) {
    if (const auto failed = failure(step)) return {*failed, nullptr};
    auto list = std::make_unique<ChainIterator<Object>>();
    while (auto service = simulated.object->next()) {
        list->add(std::make_unique<TestService<Object, Wrapper>>(std::move(service)));
        list->add(std::make_unique<ChainService<Object>>([] { return nullptr; }));
    }
    return {UsbCode::Success, std::move(list)};
}

struct TestInterface : UsbInterface {
    explicit TestInterface(std::unique_ptr<UsbInterface> behind) : simulated(std::move(behind)) {}
    ~TestInterface() override { TestHost::note("release"); }
    UsbResult GetInterfaceNumber(std::uint8_t& number) override {
        return failure("number").value_or(simulated->GetInterfaceNumber(number));
    }
    UsbResult ControlRequest(UsbControlRequest& request) override { return simulated->ControlRequest(request); }
    UsbResult USBInterfaceClose() override { return failure("close").value_or(simulated->USBInterfaceClose()); }
    std::unique_ptr<UsbInterface> simulated;
};

struct TestDevice : UsbDevice {
    explicit TestDevice(std::unique_ptr<UsbDevice> behind) : simulated(std::move(behind)) {}
    UsbResult GetLocationID(std::uint32_t& location) override {
        return failure("location").value_or(simulated->GetLocationID(location));
    }
    UsbYield<UsbIterator<UsbInterface>> CreateInterfaceIterator(std::uint8_t type, std::uint8_t subType) override {
        return listOf<TestInterface>("interfaces", simulated->CreateInterfaceIterator(type, subType));
    }
    std::unique_ptr<UsbDevice> simulated;
};

struct TestBus : UsbBus {
    UsbYield<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override {
        auto [result, service] = SimulatedBus::instance().firstService(vendor, product);
        return {result, service ? std::make_unique<TestService<UsbDevice, TestDevice>>(std::move(service)) : nullptr};
    }
    UsbYield<UsbIterator<UsbDevice>> allServices() override {
        return listOf<TestDevice>("devices", SimulatedBus::instance().allServices());
    }
};

} // namespace

UsbBus& usbBus() {
    static TestBus bus;
    return bus;
}
