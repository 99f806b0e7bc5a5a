#pragma once

#include "SimulatedDevice.h"
#include "Usb.h"

#include <memory>
#include <vector>

/// A bus of simulated devices, in place of the computer's bus.
class SimulatedBus : public UsbBus {
public:
    /// The bus of this program, with one device on it.
    [[nodiscard]] static SimulatedBus& instance();
    SimulatedBus() { devices.push_back(std::make_shared<SimulatedDevice>()); }

    UsbOutcome<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override;
    UsbOutcome<UsbIterator<UsbDevice>> allServices() override;

    std::vector<std::shared_ptr<SimulatedDevice>> devices; ///< in the order of the bus
};
