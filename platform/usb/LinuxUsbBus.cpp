#include "LinuxUsbInterface.h"
#include "ListedDescriptors.h"
#include "usb/UsbChain.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

namespace {

bool admits(const UsbFindInterfaceRequest& request, const libusb_interface_descriptor& interface) {
    return ::admits(request.bInterfaceClass, interface.bInterfaceClass)
           && ::admits(request.bInterfaceSubClass, interface.bInterfaceSubClass)
           && ::admits(request.bInterfaceProtocol, interface.bInterfaceProtocol)
           && ::admits(request.bAlternateSetting, interface.bAlternateSetting);
}

/// Numbers of the interfaces with a wanted alternate setting, in the order of the configuration.
std::vector<std::uint8_t> interfaceNumbers(const libusb_config_descriptor& configuration,
                                           const UsbFindInterfaceRequest& request) {
    std::vector<std::uint8_t> numbers;
    for (const auto& interface : std::span(configuration.interface, configuration.bNumInterfaces)) {
        const std::span settings(interface.altsetting, static_cast<std::size_t>(interface.num_altsetting));
        const auto found = std::ranges::find_if(
            settings, [&](const libusb_interface_descriptor& setting) { return admits(request, setting); });
        if (found != settings.end())
            numbers.push_back(found->bInterfaceNumber);
    }
    return numbers;
}

class LinuxDevice : public UsbDevice {
public:
    LinuxDevice(LibusbContext context, LibusbDevice device)
        : m_context(std::move(context)), m_device(std::move(device)) {}

    UsbResult GetLocationID(std::uint32_t& location) override;
    UsbYield<UsbIterator<UsbInterface>>
    CreateInterfaceIterator(const UsbFindInterfaceRequest& request) override;

private:
    LibusbContext m_context;
    LibusbDevice m_device;
};

UsbResult LinuxDevice::GetLocationID(std::uint32_t& location) {
    constexpr std::size_t kDeepest = 7; // tiers below the root hub (USB 2.0, 4.1.1)
    std::array<std::uint8_t, kDeepest> ports{};
    const int depth = libusb_get_port_numbers(m_device.get(), ports.data(), ports.size());
    if (depth < 0)
        return depth;
    location = std::uint32_t{libusb_get_bus_number(m_device.get())} << 24;
    for (int tier = 0, shift = 20; tier < depth && shift >= 0; ++tier, shift -= 4)
        location |= (ports[static_cast<std::size_t>(tier)] & 0xFU) << shift;
    return UsbCode::Success;
}

UsbYield<UsbIterator<UsbInterface>>
LinuxDevice::CreateInterfaceIterator(const UsbFindInterfaceRequest& request) {
    libusb_config_descriptor* configuration = nullptr;
    const UsbResult result = libusb_get_active_config_descriptor(m_device.get(), &configuration);
    if (result != UsbCode::Success)
        return {result, nullptr};
    auto iterator = std::make_unique<ChainIterator<UsbInterface>>();
    for (const std::uint8_t number : interfaceNumbers(*configuration, request)) {
        const auto make = [context = m_context, device = m_device, number]() -> UsbYield<UsbInterface> {
            return {UsbCode::Success, std::make_unique<LinuxUsbInterface>(context, device, number)};
        };
        iterator->add(std::make_unique<ChainService<UsbInterface>>(make));
    }
    libusb_free_config_descriptor(configuration);
    return {UsbCode::Success, std::move(iterator)};
}

/// What is plugged in now.
struct DeviceList {
    UsbResult result = UsbCode::Success;
    LibusbContext context;
    std::vector<LibusbDevice> devices;
};

DeviceList listDevices() {
    DeviceList list;
    if (!listedDescriptorsCanBeRead()) {
        list.result = UsbCode::InputOutput;
        return list;
    }
    libusb_context* context = nullptr;
    list.result = libusb_init(&context);
    if (list.result != UsbCode::Success)
        return list;
    list.context = LibusbContext(context, libusb_exit);
    libusb_device** devices = nullptr;
    const auto count = libusb_get_device_list(context, &devices);
    if (count < 0) {
        list.result = static_cast<UsbResult>(count);
        return list;
    }
    for (libusb_device* device : std::span(devices, static_cast<std::size_t>(count)))
        list.devices.emplace_back(libusb_ref_device(device), libusb_unref_device);
    libusb_free_device_list(devices, 1);
    return list;
}

std::unique_ptr<UsbService<UsbDevice>> serviceFor(const LibusbContext& context, const LibusbDevice& device) {
    return std::make_unique<ChainService<UsbDevice>>([context, device]() -> UsbYield<UsbDevice> {
        return {UsbCode::Success, std::make_unique<LinuxDevice>(context, device)};
    });
}

class LinuxUsbBus : public UsbBus {
public:
    UsbYield<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override {
        const DeviceList list = listDevices();
        if (list.result != UsbCode::Success)
            return {list.result, nullptr};
        for (const LibusbDevice& device : list.devices) {
            libusb_device_descriptor descriptor{};
            if (libusb_get_device_descriptor(device.get(), &descriptor) == UsbCode::Success
                && descriptor.idVendor == vendor && descriptor.idProduct == product)
                return {UsbCode::Success, serviceFor(list.context, device)};
        }
        return {UsbCode::NoDevice, nullptr};
    }

    UsbYield<UsbIterator<UsbDevice>> allServices() override {
        const DeviceList list = listDevices();
        if (list.result != UsbCode::Success)
            return {list.result, nullptr};
        auto iterator = std::make_unique<ChainIterator<UsbDevice>>();
        for (const LibusbDevice& device : list.devices)
            iterator->add(serviceFor(list.context, device));
        return {UsbCode::Success, std::move(iterator)};
    }
};

} // namespace

UsbBus& usbBus() {
    static LinuxUsbBus bus;
    return bus;
}
