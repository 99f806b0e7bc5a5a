#include "TestBus.h"

#include "TestHost.h"

#include <utility>

namespace {

std::optional<UsbResult> failure(UsbStep step) {
    const auto found = TestBus::instance().failures.find(step);
    return found == TestBus::instance().failures.end() ? std::nullopt : std::optional(found->second);
}

class TestInterface : public UsbInterface {
public:
    explicit TestInterface(std::unique_ptr<UsbInterface> simulated) : m_simulated(std::move(simulated)) {}
    ~TestInterface() override { TestHost::note("release"); }
    UsbResult GetInterfaceNumber(std::uint8_t& number) override {
        const auto failed = failure(UsbStep::InterfaceNumber);
        return failed ? *failed : m_simulated->GetInterfaceNumber(number);
    }
    UsbResult ControlRequest(UsbControlRequest& request) override { return m_simulated->ControlRequest(request); }
    UsbResult USBInterfaceClose() override {
        ++TestBus::instance().closeCount;
        return failure(UsbStep::InterfaceClose).value_or(m_simulated->USBInterfaceClose());
    }

private:
    std::unique_ptr<UsbInterface> m_simulated;
};

/// Service and plug-in at once: makes a `Wrapper` of the simulated object.
template <class Object, class Wrapper, UsbStep kPlugIn, UsbStep kObject, UsbStep kRelease>
class TestService : public UsbService<Object>, public UsbPlugIn<Object> {
public:
    explicit TestService(std::unique_ptr<UsbService<Object>> simulated) : m_simulated(std::move(simulated)) {}
    UsbYield<UsbPlugIn<Object>> createPlugIn() override {
        if (const auto failed = failure(kPlugIn)) return {*failed, nullptr};
        return {UsbCode::Success, std::make_unique<TestService>(std::exchange(m_simulated, nullptr))};
    }
    UsbResult release() override { return failure(kRelease).value_or(UsbCode::Success); }
    UsbYield<Object> QueryInterface() override {
        if (const auto failed = failure(kObject)) return {*failed, nullptr};
        auto object = m_simulated->createPlugIn().object->QueryInterface().object;
        return {UsbCode::Success, std::make_unique<Wrapper>(std::move(object))};
    }

private:
    std::unique_ptr<UsbService<Object>> m_simulated;
};

template <class Object, class Service>
class TestIterator : public UsbIterator<Object> {
public:
    explicit TestIterator(std::unique_ptr<UsbIterator<Object>> simulated) : m_simulated(std::move(simulated)) {}
    std::unique_ptr<UsbService<Object>> next() override {
        auto service = m_simulated->next();
        return service ? std::make_unique<Service>(std::move(service)) : nullptr;
    }

private:
    std::unique_ptr<UsbIterator<Object>> m_simulated;
};

using InterfaceService = TestService<UsbInterface, TestInterface, UsbStep::InterfacePlugIn, UsbStep::InterfaceObject,
    UsbStep::InterfaceServiceRelease>;

class TestDevice : public UsbDevice {
public:
    explicit TestDevice(std::unique_ptr<UsbDevice> simulated) : m_simulated(std::move(simulated)) {}
    UsbResult GetLocationID(std::uint32_t& location) override {
        const auto failed = failure(UsbStep::DeviceLocation);
        return failed ? *failed : m_simulated->GetLocationID(location);
    }
    UsbYield<UsbIterator<UsbInterface>> CreateInterfaceIterator(std::uint8_t type, std::uint8_t subType) override {
        if (const auto failed = failure(UsbStep::InterfaceIterator)) return {*failed, nullptr};
        return {UsbCode::Success,
            std::make_unique<TestIterator<UsbInterface, InterfaceService>>(
                m_simulated->CreateInterfaceIterator(type, subType).object)};
    }

private:
    std::unique_ptr<UsbDevice> m_simulated;
};

/// A device's service is released by its destruction.
using DeviceService =
    TestService<UsbDevice, TestDevice, UsbStep::DevicePlugIn, UsbStep::DeviceObject, UsbStep::InterfaceServiceRelease>;

} // namespace

UsbBus& usbBus() {
    return TestBus::instance();
}

TestBus& TestBus::instance() {
    static TestBus bus;
    return bus;
}

UsbYield<UsbService<UsbDevice>> TestBus::firstService(std::uint32_t vendor, std::uint32_t product) {
    auto [result, service] = SimulatedBus::instance().firstService(vendor, product);
    return {result, service ? std::make_unique<DeviceService>(std::move(service)) : nullptr};
}

UsbYield<UsbIterator<UsbDevice>> TestBus::allServices() {
    if (const auto failed = failure(UsbStep::AllServices)) return {*failed, nullptr};
    return {UsbCode::Success,
        std::make_unique<TestIterator<UsbDevice, DeviceService>>(SimulatedBus::instance().allServices().object)};
}
