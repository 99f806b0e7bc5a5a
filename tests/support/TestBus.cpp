// The simulated bus with steps that fail (`TestHost::failing`).

#include "SimulatedBus.h"
#include "TestHost.h"
#include "UsbChain.h"

namespace {

UsbResult resultOf(const std::string& step, UsbResult simulated = UsbCode::Success) {
    const auto failure = TestHost::instance().failing.extract(step);
    return failure ? failure.mapped() : simulated;
}

template <class Object>
UsbYield<Object> yieldOf(const std::string& step, std::unique_ptr<Object> object) {
    if (const auto failure = TestHost::instance().failing.extract(step)) return {failure.mapped(), nullptr};
    return {UsbCode::Success, std::move(object)};
}

/// Service and plug-in: creates a `Wrapper` of the simulated object.
template <class Object, class Wrapper>
struct TestService : UsbService<Object>, UsbPlugIn<Object> {
    explicit TestService(std::shared_ptr<UsbService<Object>> behind) : simulated(std::move(behind)) {}
    UsbYield<UsbPlugIn<Object>> createPlugIn() override {
        return yieldOf<UsbPlugIn<Object>>(Wrapper::kName + " plug-in", std::make_unique<TestService>(simulated));
    }
    UsbResult release() override { return resultOf("release"); }
    UsbYield<Object> QueryInterface() override {
        auto object = std::make_unique<Wrapper>(simulated->createPlugIn().object->QueryInterface().object);
        return yieldOf<Object>(Wrapper::kName + " object", std::move(object));
    }
    std::shared_ptr<UsbService<Object>> simulated;
};

template <class Wrapper, class Object>
UsbYield<UsbIterator<Object>> listOf(UsbIterator<Object>& simulated) {
    auto list = std::make_unique<ChainIterator<Object>>();
    while (auto each = simulated.next()) list->add(std::make_unique<TestService<Object, Wrapper>>(std::move(each)));
    return yieldOf<UsbIterator<Object>>(Wrapper::kName + "s", std::move(list));
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
    UsbYield<UsbIterator<UsbInterface>> CreateInterfaceIterator(std::uint8_t type, std::uint8_t subType) override {
        return listOf<TestInterface>(*simulated->CreateInterfaceIterator(type, subType).object);
    }
    std::unique_ptr<UsbDevice> simulated;
};

struct TestBus : UsbBus {
    UsbYield<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override {
        auto [result, service] = SimulatedBus::instance().firstService(vendor, product);
        return {result, service ? std::make_unique<TestService<UsbDevice, TestDevice>>(std::move(service)) : nullptr};
    }
    UsbYield<UsbIterator<UsbDevice>> allServices() override {
        return listOf<TestDevice>(*SimulatedBus::instance().allServices().object);
    }
};

} // namespace

UsbBus& usbBus() {
    static TestBus bus;
    return bus;
}
