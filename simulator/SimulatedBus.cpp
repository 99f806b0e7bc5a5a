#include "SimulatedBus.h"

#include "usb/UsbChain.h"

#include <algorithm>
#include <utility>

namespace {

using DevicePointer = std::shared_ptr<SimulatedDevice>;

class SimulatedInterface : public UsbInterface {
public:
    SimulatedInterface(SimulatedBus& bus, DevicePointer device)
        : m_bus(bus), m_device(std::move(device)), m_plugCount(m_device->plugCount()) {}
    ~SimulatedInterface() override {
        if (m_bus.onRelease)
            m_bus.onRelease();
    }

    UsbResult GetInterfaceNumber(std::uint8_t& number) override {
        if (const auto forced = m_bus.failure(UsbStep::InterfaceNumber))
            return *forced;
        number = m_device->videoControlInterface.value_or(0);
        return UsbCode::Success;
    }
    UsbResult ControlRequest(std::uint8_t pipe, UsbControlRequest& request) override {
        if (pipe != 0)
            return UsbCode::NotFound;
        // A handle from before a re-plug stays dead.
        return m_device->plugCount() == m_plugCount ? m_device->control(request) : UsbCode::NoDevice;
    }
    UsbResult USBInterfaceClose() override {
        ++m_bus.closeCount;
        return m_bus.failure(UsbStep::InterfaceClose).value_or(UsbCode::Success);
    }

private:
    SimulatedBus& m_bus;
    DevicePointer m_device;
    unsigned m_plugCount;
};

/// The way to an object, each of whose steps can be made to fail.
template <class Object, class Make>
std::unique_ptr<UsbService<Object>> makeService(const SimulatedBus& bus, UsbStep plugIn, UsbStep object,
                                                Make make, ForcedResult release = nothingForced) {
    return std::make_unique<ChainService<Object>>(
        [&bus, object, make = std::move(make)]() -> UsbYield<Object> {
            if (const auto forced = bus.failure(object))
                return {*forced, nullptr};
            return {UsbCode::Success, make()};
        },
        [&bus, plugIn] { return bus.failure(plugIn); }, std::move(release));
}

class SimulatedDeviceObject : public UsbDevice {
public:
    SimulatedDeviceObject(SimulatedBus& bus, DevicePointer device)
        : m_bus(bus), m_device(std::move(device)) {}

    UsbResult GetLocationID(std::uint32_t& location) override {
        if (const auto forced = m_bus.failure(UsbStep::DeviceLocation))
            return *forced;
        location = m_device->locationID;
        return UsbCode::Success;
    }

    UsbYield<UsbIterator<UsbInterface>>
    CreateInterfaceIterator(const UsbFindInterfaceRequest& request) override {
        if (const auto forced = m_bus.failure(UsbStep::InterfaceIterator))
            return {*forced, nullptr};
        auto iterator = std::make_unique<ChainIterator<UsbInterface>>();
        if (m_device->videoControlInterface && admits(request.bInterfaceClass, kVideoClass)
            && admits(request.bInterfaceSubClass, kVideoControlSubClass)) {
            iterator->add(makeService<UsbInterface>(
                m_bus, UsbStep::InterfacePlugIn, UsbStep::InterfaceObject,
                [&bus = m_bus, device = m_device] {
                    return std::make_unique<SimulatedInterface>(bus, device);
                },
                [&bus = m_bus] { return bus.failure(UsbStep::InterfaceServiceRelease); }));
        }
        return {UsbCode::Success, std::move(iterator)};
    }

private:
    static constexpr std::uint8_t kVideoClass = 14;
    static constexpr std::uint8_t kVideoControlSubClass = 1;

    SimulatedBus& m_bus;
    DevicePointer m_device;
};

std::unique_ptr<UsbService<UsbDevice>> deviceService(SimulatedBus& bus, const DevicePointer& device) {
    return makeService<UsbDevice>(bus, UsbStep::DevicePlugIn, UsbStep::DeviceObject, [&bus, device] {
        return std::make_unique<SimulatedDeviceObject>(bus, device);
    });
}

} // namespace

UsbBus& usbBus() {
    return SimulatedBus::instance();
}

SimulatedBus& SimulatedBus::instance() {
    static SimulatedBus bus;
    return bus;
}

std::optional<UsbResult> SimulatedBus::failure(UsbStep step) const {
    const auto found = m_failures.find(step);
    return found == m_failures.end() ? std::nullopt : std::optional(found->second);
}

UsbYield<UsbService<UsbDevice>> SimulatedBus::firstService(std::uint32_t vendor, std::uint32_t product) {
    const auto found = std::ranges::find_if(devices, [&](const DevicePointer& device) {
        return device->plugged() && device->vendorID == vendor && device->productID == product;
    });
    if (found == devices.end())
        return {UsbCode::NoDevice, nullptr};
    return {UsbCode::Success, deviceService(*this, *found)};
}

UsbYield<UsbIterator<UsbDevice>> SimulatedBus::allServices() {
    if (const auto forced = failure(UsbStep::AllServices))
        return {*forced, nullptr};
    auto iterator = std::make_unique<ChainIterator<UsbDevice>>();
    for (const DevicePointer& device : devices) {
        if (device->plugged())
            iterator->add(deviceService(*this, device));
    }
    return {UsbCode::Success, std::move(iterator)};
}
