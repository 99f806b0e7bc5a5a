#include "LinuxUsbInterface.h"
#include "UsbChain.h"

#include <cstdlib>
#include <utility>
#include <vector>

using namespace udevSearch;

namespace {

std::uint8_t byteIn(const Device& device, const char* attribute, int base) {
    return static_cast<std::uint8_t>(numberIn(device, attribute, base));
}

class LinuxDevice : public UsbDevice {
public:
    explicit LinuxDevice(PluggedDevice device) : m_device(std::move(device)) {}

    UsbResult GetLocationID(std::uint32_t& location) override;
    UsbOutcome<UsbIterator<UsbInterface>> CreateInterfaceIterator(
        std::uint8_t interfaceClass, std::uint8_t interfaceSubClass) override;

private:
    PluggedDevice m_device;
};

UsbResult LinuxDevice::GetLocationID(std::uint32_t& location) {
    location = std::uint32_t{m_device.bus} << 24;
    std::size_t mark = m_device.name.find('-'); // "1-2.13"; a root hub's name, "usb1", has none
    for (int shift = 20; shift >= 0 && mark != std::string::npos; shift -= 4) {
        const unsigned long port = std::strtoul(m_device.name.c_str() + mark + 1, nullptr, 10);
        location |= static_cast<std::uint32_t>(port & 0xF) << shift;
        mark = m_device.name.find('.', mark + 1);
    }
    return UsbCode::Success;
}

UsbOutcome<UsbIterator<UsbInterface>> LinuxDevice::CreateInterfaceIterator(
    std::uint8_t interfaceClass, std::uint8_t interfaceSubClass) {
    const Udev context(udev_new());
    const Device device = deviceAt(context, m_device.path);
    if (!device) return {UsbCode::NoDevice, nullptr};
    auto iterator = std::make_unique<ChainIterator<UsbInterface>>();
    for (const std::string& path : foldersWith(context, "usb", "bInterfaceNumber", device.get())) {
        const Device interface = deviceAt(context, path);
        if (!interface || path.substr(0, path.rfind('/')) != m_device.path)
            continue; // unplugged, or of a device behind this hub
        if (byteIn(interface, "bInterfaceClass", 16) != interfaceClass
            || byteIn(interface, "bInterfaceSubClass", 16) != interfaceSubClass)
            continue;
        iterator->add(std::make_unique<ChainService<UsbInterface>>(
            [plugged = m_device, path, number = byteIn(interface, "bInterfaceNumber", 16)] {
                return std::make_unique<LinuxUsbInterface>(plugged, path, number);
            }));
    }
    return {UsbCode::Success, std::move(iterator)};
}

std::unique_ptr<UsbService<UsbDevice>> serviceOf(
    const Device& device, const std::string& path, std::shared_ptr<const SysfsFolder> folder) {
    const PluggedDevice plugged{std::move(folder), path, orEmpty(udev_device_get_sysname(device.get())),
        orEmpty(udev_device_get_devnode(device.get())), udev_device_get_devnum(device.get()),
        numberIn(device, "busnum", 10)};
    return std::make_unique<ChainService<UsbDevice>>([plugged] { return std::make_unique<LinuxDevice>(plugged); });
}

/// The plugged-in devices that meet the condition.
template <class Condition>
std::vector<std::unique_ptr<UsbService<UsbDevice>>> services(Condition condition) {
    const Udev context(udev_new());
    std::vector<std::unique_ptr<UsbService<UsbDevice>>> found;
    for (const std::string& path : foldersWith(context, "usb", "devnum")) {
        auto folder = std::make_shared<const SysfsFolder>(path); // before anything is read by path
        const Device device = deviceAt(context, path);
        if (device && condition(device)) // absent if unplugged
            found.push_back(serviceOf(device, path, std::move(folder)));
    }
    return found;
}

class LinuxUsbBus : public UsbBus {
public:
    UsbOutcome<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override {
        auto found = services([&](const Device& device) {
            return numberIn(device, "idVendor", 16) == vendor && numberIn(device, "idProduct", 16) == product;
        });
        if (found.empty()) return {UsbCode::NoDevice, nullptr};
        return {UsbCode::Success, std::move(found.front())};
    }

    UsbOutcome<UsbIterator<UsbDevice>> allServices() override {
        auto iterator = std::make_unique<ChainIterator<UsbDevice>>();
        for (auto& service : services([](const Device&) { return true; })) iterator->add(std::move(service));
        return {UsbCode::Success, std::move(iterator)};
    }
};

} // namespace

UsbBus& usbBus() {
    static LinuxUsbBus bus;
    return bus;
}
