#include "LinuxUsbInterface.h"
#include "UdevSearch.h"
#include "usb/UsbChain.h"

#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

using namespace udevSearch;

namespace {

unsigned numberIn(udev_device* device, const char* attribute, int base) {
    return static_cast<unsigned>(
        std::strtoul(orEmpty(udev_device_get_sysattr_value(device, attribute)).c_str(), nullptr, base));
}

class LinuxDevice : public UsbDevice {
public:
    explicit LinuxDevice(PluggedDevice device) : m_device(std::move(device)) {}

    UsbResult GetLocationID(std::uint32_t& location) override;
    UsbYield<UsbIterator<UsbInterface>>
    CreateInterfaceIterator(const UsbFindInterfaceRequest& request) override;

private:
    PluggedDevice m_device;
};

UsbResult LinuxDevice::GetLocationID(std::uint32_t& location) {
    location = std::uint32_t{m_device.bus} << 24;
    const std::size_t dash = m_device.name.find('-'); // a root hub's name has none
    std::string_view chain = m_device.name;
    chain.remove_prefix(dash == std::string::npos ? chain.size() : dash + 1);
    for (int shift = 20; shift >= 0 && !chain.empty(); shift -= 4) {
        char* end = nullptr;
        location |= (static_cast<unsigned>(std::strtoul(chain.data(), &end, 10)) & 0xFU) << shift;
        chain.remove_prefix(static_cast<std::size_t>(end - chain.data()));
        chain.remove_prefix(chain.starts_with('.') ? 1 : chain.size());
    }
    return UsbCode::Success;
}

UsbYield<UsbIterator<UsbInterface>>
LinuxDevice::CreateInterfaceIterator(const UsbFindInterfaceRequest& request) {
    const Udev context(udev_new());
    const Device device(context ? udev_device_new_from_syspath(context.get(), m_device.folder.c_str())
                                : nullptr);
    if (!device)
        return {UsbCode::NoDevice, nullptr};
    Search search(context.get(), "usb", device.get());
    for (const auto& [attribute, format, wanted] :
         {std::tuple("bInterfaceClass", "%02x", request.bInterfaceClass),
          {"bInterfaceSubClass", "%02x", request.bInterfaceSubClass},
          {"bInterfaceProtocol", "%02x", request.bInterfaceProtocol},
          {"bAlternateSetting", "%2u", request.bAlternateSetting}}) {
        if (wanted != UsbFindInterfaceRequest::kMatchAny)
            search.with(attribute, format, wanted);
    }
    auto iterator = std::make_unique<ChainIterator<UsbInterface>>();
    for (const std::string& folder : search.with("bInterfaceNumber").folders()) {
        if (folder.substr(0, folder.rfind('/')) != m_device.folder)
            continue; // of a device behind this hub
        const Device interface(udev_device_new_from_syspath(context.get(), folder.c_str()));
        if (!interface)
            continue; // gone meanwhile
        const auto number = static_cast<std::uint8_t>(numberIn(interface.get(), "bInterfaceNumber", 16));
        iterator->add(std::make_unique<ChainService<UsbInterface>>(
            [plugged = m_device, number]() -> UsbYield<UsbInterface> {
                return {UsbCode::Success, std::make_unique<LinuxUsbInterface>(plugged, number)};
            }));
    }
    return {UsbCode::Success, std::move(iterator)};
}

std::vector<std::unique_ptr<UsbService<UsbDevice>>> services(udev* context, Search& search) {
    std::vector<std::unique_ptr<UsbService<UsbDevice>>> found;
    for (const std::string& folder : search.with("devnum").folders()) {
        const Device device(udev_device_new_from_syspath(context, folder.c_str()));
        if (!device)
            continue; // gone meanwhile
        const PluggedDevice plugged{folder, orEmpty(udev_device_get_sysname(device.get())),
                                    orEmpty(udev_device_get_devnode(device.get())),
                                    numberIn(device.get(), "busnum", 10),
                                    numberIn(device.get(), "devnum", 10)};
        found.push_back(std::make_unique<ChainService<UsbDevice>>([plugged]() -> UsbYield<UsbDevice> {
            return {UsbCode::Success, std::make_unique<LinuxDevice>(plugged)};
        }));
    }
    return found;
}

class LinuxUsbBus : public UsbBus {
public:
    UsbYield<UsbService<UsbDevice>> firstService(std::uint32_t vendor, std::uint32_t product) override {
        const Udev context(udev_new());
        if (!context)
            return {UsbCode::NoDevice, nullptr};
        Search search(context.get(), "usb");
        auto found = services(context.get(),
                              search.with("idVendor", "%04x", vendor).with("idProduct", "%04x", product));
        if (found.empty())
            return {UsbCode::NoDevice, nullptr};
        return {UsbCode::Success, std::move(found.front())};
    }

    UsbYield<UsbIterator<UsbDevice>> allServices() override {
        const Udev context(udev_new());
        if (!context)
            return {UsbCode::NoDevice, nullptr};
        Search search(context.get(), "usb");
        auto iterator = std::make_unique<ChainIterator<UsbDevice>>();
        for (auto& service : services(context.get(), search))
            iterator->add(std::move(service));
        return {UsbCode::Success, std::move(iterator)};
    }
};

} // namespace

UsbBus& usbBus() {
    static LinuxUsbBus bus;
    return bus;
}
