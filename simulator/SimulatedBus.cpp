#include "SimulatedBus.h"

#include "UsbChain.h"
#include "Uvc.h"

#include <algorithm>
#include <utility>

namespace {

using DevicePointer = std::shared_ptr<SimulatedDevice>;

class SimulatedInterface : public UsbInterface {
public:
    explicit SimulatedInterface(DevicePointer device)
        : m_device(std::move(device)), m_plugCount(m_device->plugCount()) {}

    UsbResult GetInterfaceNumber(std::uint8_t& number) override {
        number = m_device->videoControlInterface.value_or(0);
        return UsbCode::Success;
    }
    UsbResult ControlRequest(UsbControlRequest& request) override {
        // After a re-plug an older handle is invalid.
        return m_device->plugCount() == m_plugCount ? m_device->control(request) : UsbCode::NoDevice;
    }
    UsbResult USBInterfaceClose() override { return UsbCode::Success; }

private:
    DevicePointer m_device;
    unsigned m_plugCount;
};

class SimulatedDeviceObject : public UsbDevice {
public:
    explicit SimulatedDeviceObject(DevicePointer device) : m_device(std::move(device)) {}

    UsbResult GetLocationID(std::uint32_t& location) override {
        location = m_device->locationID;
        return UsbCode::Success;
    }
    UsbOutcome<UsbIterator<UsbInterface>> CreateInterfaceIterator(
        std::uint8_t interfaceClass, std::uint8_t interfaceSubClass) override {
        auto iterator = std::make_unique<ChainIterator<UsbInterface>>();
        if (m_device->videoControlInterface && interfaceClass == Uvc::kVideoClass
            && interfaceSubClass == Uvc::kVideoControlSubClass)
            iterator->add(std::make_unique<ChainService<UsbInterface>>(
                [device = m_device] { return std::make_unique<SimulatedInterface>(device); }));
        return {UsbCode::Success, std::move(iterator)};
    }

private:
    DevicePointer m_device;
};

std::unique_ptr<UsbService<UsbDevice>> serviceOf(const DevicePointer& device) {
    return std::make_unique<ChainService<UsbDevice>>(
        [device] { return std::make_unique<SimulatedDeviceObject>(device); });
}

} // namespace

SimulatedBus& SimulatedBus::instance() {
    static SimulatedBus bus;
    return bus;
}

UsbOutcome<UsbService<UsbDevice>> SimulatedBus::firstService(std::uint32_t vendor, std::uint32_t product) {
    const auto found = std::ranges::find_if(devices, [&](const DevicePointer& device) {
        return device->plugged() && device->vendorID == vendor && device->productID == product;
    });
    if (found == devices.end()) return {UsbCode::NoDevice, nullptr};
    return {UsbCode::Success, serviceOf(*found)};
}

UsbOutcome<UsbIterator<UsbDevice>> SimulatedBus::allServices() {
    auto iterator = std::make_unique<ChainIterator<UsbDevice>>();
    for (const DevicePointer& device : devices) {
        if (device->plugged()) iterator->add(serviceOf(device));
    }
    return {UsbCode::Success, std::move(iterator)};
}
