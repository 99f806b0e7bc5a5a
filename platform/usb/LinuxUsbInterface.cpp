#include "LinuxUsbInterface.h"

#include "DeviceNode.h"
#include "DirectUsbTransport.h"
#include "KernelUvcTransport.h"
#include "LibusbObjects.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

static_assert(UsbCode::Success == LIBUSB_SUCCESS && UsbCode::InputOutput == LIBUSB_ERROR_IO
              && UsbCode::Access == LIBUSB_ERROR_ACCESS && UsbCode::NoDevice == LIBUSB_ERROR_NO_DEVICE
              && UsbCode::NotFound == LIBUSB_ERROR_NOT_FOUND && UsbCode::Busy == LIBUSB_ERROR_BUSY
              && UsbCode::TimeOut == LIBUSB_ERROR_TIMEOUT && UsbCode::Stall == LIBUSB_ERROR_PIPE
              && UsbCode::NotSupported == LIBUSB_ERROR_NOT_SUPPORTED
              && UsbCode::NotSendable < LIBUSB_ERROR_OTHER);

namespace {

constexpr std::size_t kMaxData = 64; // bytes; the device's longest block has 26
constexpr std::string_view kKernelUvcDriver = "uvcvideo";
constexpr std::string_view kClaimedByProgram = "usbfs"; // another program's request: over in a moment

} // namespace

UsbResult LinuxUsbInterface::GetInterfaceNumber(std::uint8_t& number) {
    number = m_number;
    return UsbCode::Success;
}

UsbResult LinuxUsbInterface::openCaptureNode() {
    m_transport = transferThroughDriver;
    DeviceNode opened = openDeviceNode(m_captureNode.path, m_captureNode.number);
    if (!m_captureNode.folder.exists()) // it went before the node was opened, and the number may be another's
        return UsbCode::NoDevice;
    m_node = std::move(opened.file);
    return opened.result;
}

UsbResult LinuxUsbInterface::openUsbNode() {
    m_transport = transferDirectly;
    DeviceNode opened = openDeviceNode(m_device.node, m_device.number);
    if (!m_device.folder->exists()) // likewise
        return UsbCode::NoDevice;
    m_node = std::move(opened.file);
    return opened.result;
}

UsbResult LinuxUsbInterface::selectTransport() {
    // What an earlier request found nearly always holds, and a search costs many times what a request does.
    if (!m_captureNode.path.empty() && openCaptureNode() == UsbCode::Success)
        return UsbCode::Success;
    m_captureNode = {};
    KernelDriver driver = findKernelDriver(m_path);
    if (!m_device.folder->exists()) // another device may have been found on the port
        return UsbCode::NoDevice;
    if (driver.name.empty() || driver.name == kClaimedByProgram)
        return openUsbNode();
    // The driver fills in the interface's real number, and all our requests carry 0.
    if (driver.name != kKernelUvcDriver || m_number != 0 || driver.captureNode.path.empty())
        return UsbCode::NotSendable;
    m_captureNode = std::move(driver.captureNode);
    return openCaptureNode();
}

UsbResult LinuxUsbInterface::ControlRequest(std::uint8_t pipe, UsbControlRequest& request) {
    if (pipe != 0)
        return UsbCode::NotFound; // only the control pipe carries class requests
    if (request.wLength > kMaxData)
        return UsbCode::NotSupported;
    m_node = OpenFile(); // which a failed request has left open
    m_notOpen = selectTransport();
    if (m_notOpen != UsbCode::Success)
        return m_notOpen;
    // The answer of a failed request must not reach the caller: a block that is half zeros and then written
    // back would wipe settings.
    std::array<std::uint8_t, kMaxData> data{};
    const std::span bytes = std::span(data).first(request.wLength);
    const std::span caller(request.pData, request.wLength);
    const bool isGet = (request.bmRequestType & kUsbDeviceToHost) != 0;
    if (!isGet)
        std::ranges::copy(caller, bytes.begin());
    const UsbResult result = m_transport(m_node.get(), request, bytes);
    if (result != UsbCode::Success)
        return result;
    if (isGet)
        std::ranges::copy(bytes, caller.begin());
    (void)USBInterfaceClose();
    return UsbCode::Success;
}

UsbResult LinuxUsbInterface::USBInterfaceClose() {
    if (!m_node)
        return m_notOpen;
    m_node = OpenFile();
    m_notOpen = UsbCode::NotFound;
    return UsbCode::Success;
}
