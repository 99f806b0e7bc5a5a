#pragma once

#include "SimulatedDevice.h"
#include "usb/Usb.h"

#include <map>
#include <memory>
#include <vector>

/// The steps of USB access that can be made to fail.
enum class UsbStep : std::uint8_t {
    AllServices,
    DevicePlugIn,
    DeviceObject,
    DeviceLocation,
    InterfaceIterator,
    InterfacePlugIn,
    InterfaceServiceRelease,
    InterfaceObject,
    InterfaceNumber,
    InterfaceClose,
};

/// A bus of simulated devices. A program that is linked with it finds it where the computer's bus would be.
class SimulatedBus : public UsbBus {
public:
    /// The bus of this program, with one device on it.
    [[nodiscard]] static SimulatedBus& instance();
    SimulatedBus() { devices.push_back(std::make_shared<SimulatedDevice>()); }

    UsbYield<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override;
    UsbYield<UsbIterator<UsbDevice>> allServices() override;

    /// From now on a step reports `result`. With `Success` it reports success and gives nothing, if it is one
    /// that gives something.
    void failStep(UsbStep step, UsbResult result) { m_failures[step] = result; }
    void clearFailures() { m_failures.clear(); }

    /// Outcome forced on a step, absent if it shall do its work.
    [[nodiscard]] std::optional<UsbResult> failure(UsbStep step) const;

    std::vector<std::shared_ptr<SimulatedDevice>> devices; ///< in the order in which the bus meets them
    unsigned closeCount = 0;                               ///< how often an interface was closed
    std::function<void()> onRelease;                       ///< told when an interface is released

private:
    std::map<UsbStep, UsbResult> m_failures;
};
