#include "UVCControl.h"

#include "Log.h"

#include <array>
#include <cstddef>
#include <limits>
#include <utility>

namespace {

/// The low byte of wIndex, the interface's number, is always 0, even if the VideoControl interface has another number.
UsbControlRequest controlRequest(
    std::uint8_t requestType, UVCRequest request, int length, int selector, int unit, std::uint8_t* data) {
    return {.bmRequestType = requestType,
        .bRequest = static_cast<std::uint8_t>(request),
        .wValue = static_cast<std::uint16_t>(selector << 8),
        .wIndex = static_cast<std::uint16_t>(unit << 8),
        .wLength = static_cast<std::uint16_t>(length),
        .pData = data,
        .wLenDone = 0};
}

bool fits(int length, std::span<const std::uint8_t> buffer) {
    return length >= 0 && static_cast<std::size_t>(length) <= buffer.size()
        && length <= std::numeric_limits<std::uint16_t>::max();
}

std::unique_ptr<UsbDevice> deviceForService(UsbOutcome<UsbService<UsbDevice>> service) {
    // Without a device the line is that of a plug-in that can't be created.
    UsbOutcome<UsbPlugIn<UsbDevice>> plugIn{service.result, nullptr};
    if (service.object) plugIn = service.object->createPlugIn();
    if (plugIn.result != UsbCode::Success || !plugIn.object) {
        systemLog("CameraControl Error: IOCreatePlugInInterfaceForService returned 0x%08x.",
            static_cast<unsigned>(plugIn.result));
        return nullptr;
    }
    auto device = plugIn.object->QueryInterface();
    if (device.result != UsbCode::Success || !device.object) {
        systemLog("CameraControl Error: QueryInterface returned %d.\n", device.result);
        return nullptr;
    }
    return std::move(device.object);
}

} // namespace

UVCCameraControl::~UVCCameraControl() {
    closeInterface();
}

void UVCCameraControl::closeInterface() {
    if (interface) (void)interface->USBInterfaceClose(); // nothing depends on it any more
    interface.reset();
}

bool UVCCameraControl::initWithVendorID(std::int64_t vendorID, std::int64_t productID) {
    closeInterface();
    const auto device = deviceForService(
        usbBus().firstService(static_cast<std::uint32_t>(vendorID), static_cast<std::uint32_t>(productID)));
    if (!device) return false;
    interface = getControlInferaceWithDeviceInterface(*device);
    return true;
}

void UVCCameraControl::initWithLocationID(std::uint32_t locationID) {
    closeInterface();
    const auto services = usbBus().allServices();
    if (services.result != UsbCode::Success || !services.object) return;
    while (auto service = services.object->next()) {
        const auto device = deviceForService({UsbCode::Success, std::move(service)});
        if (!device) continue;
        std::uint32_t location = 0;
        if (device->GetLocationID(location) == UsbCode::Success && location == locationID) {
            interface = getControlInferaceWithDeviceInterface(*device);
            return;
        }
    }
}

std::unique_ptr<UsbInterface> UVCCameraControl::getControlInferaceWithDeviceInterface(UsbDevice& device) {
    const auto interfaces = device.CreateInterfaceIterator(Uvc::kVideoClass, Uvc::kVideoControlSubClass);
    if (interfaces.result != UsbCode::Success || !interfaces.object) return nullptr;
    const auto service = interfaces.object->next();
    if (!service) return nullptr;
    auto plugIn = service->createPlugIn();
    // The result of the release decides and is logged, not that of the plug-in: people's saved logs are read by it.
    const UsbResult released = service->release();
    if (released != UsbCode::Success || !plugIn.object) {
        systemLog("CameraControl Error: Unable to create a plug-in (%08x)\n", static_cast<unsigned>(released));
        return nullptr;
    }
    auto found = plugIn.object->QueryInterface();
    if (found.result != UsbCode::Success || !found.object) {
        systemLog("CameraControl Error: Couldn’t create a device interface for the interface (%08x)",
            static_cast<unsigned>(found.result));
        return nullptr;
    }
    return std::move(found.object);
}

std::uint8_t UVCCameraControl::getInterfaceNumberFromInterface(UsbInterface& asked) {
    std::uint8_t number = 0;
    const UsbResult result = asked.GetInterfaceNumber(number);
    if (result != UsbCode::Success)
        systemLog("Unable to get interface number (0x%08x)\n", static_cast<unsigned>(result));
    return 0;
}

bool UVCCameraControl::sendControlRequest(UsbControlRequest request) {
    if (!interface) {
        systemLog("CameraControl Error: No interface to send request");
        return false;
    }
    if (interface->ControlRequest(request) == UsbCode::Success) return true;
    // The result of the close is logged, not that of the request: people's saved logs are read by it.
    const UsbResult closed = interface->USBInterfaceClose();
    systemLog("CameraControl Error: Control request failed: %08x", static_cast<unsigned>(closed));
    return false;
}

bool UVCCameraControl::setData(std::int64_t data, int length, int selector, int unit) {
    std::array<std::uint8_t, sizeof data> bytes{};
    Uvc::storeLittleEndian(static_cast<std::uint64_t>(data), bytes);
    return setCurrent(bytes, length, selector, unit);
}

bool UVCCameraControl::getDataFor(UVCRequest request, int length, int selector, int unit, std::span<std::uint8_t> ret) {
    return fits(length, ret)
        && sendControlRequest(controlRequest(Uvc::kGetFromInterface, request, length, selector, unit, ret.data()));
}

bool UVCCameraControl::setCurrent(std::span<std::uint8_t> data, int length, int selector, int unit) {
    return fits(length, data)
        && sendControlRequest(
            controlRequest(Uvc::kSetToInterface, UVCRequest::SET_CUR, length, selector, unit, data.data()));
}
