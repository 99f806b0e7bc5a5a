#pragma once

#include "SimulatedBus.h"
#include "Usb.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

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

/// The simulated bus, each of whose steps can be made to fail. A step that fails with `Success` reports success
/// and gives nothing, if it is one that gives something.
struct TestBus : UsbBus {
    [[nodiscard]] static TestBus& instance();

    UsbYield<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override;
    UsbYield<UsbIterator<UsbDevice>> allServices() override;

    std::map<UsbStep, UsbResult> failures;
    unsigned closeCount = 0; ///< how often an interface was closed
};
