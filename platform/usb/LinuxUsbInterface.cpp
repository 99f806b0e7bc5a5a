#include "LinuxUsbInterface.h"

#include "DirectUsbRequests.h"
#include "KernelUvcRequests.h"

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

constexpr std::size_t kLongestData = 64; // bytes; the device's longest block has 26
constexpr std::string_view kKernelUvcDriver = "uvcvideo";
constexpr std::string_view kClaimedByProgram = "usbfs"; // another program's request: over in a moment

} // namespace

UsbResult LinuxUsbInterface::GetInterfaceNumber(std::uint8_t& number) {
    number = m_number;
    return UsbCode::Success;
}

UsbYield<RequestWay> LinuxUsbInterface::chooseWay() const {
    const KernelDriver driver = findKernelDriver(m_device.bus, m_device.address, m_number);
    if (driver.name.empty() || driver.name == kClaimedByProgram)
        return DirectUsbRequests::open(m_device.node);
    // The driver fills in the interface's real number, and all our requests carry 0.
    if (driver.name != kKernelUvcDriver || m_number != 0 || driver.captureNode.empty())
        return {UsbCode::NotSendable, nullptr};
    return KernelUvcRequests::open(driver);
}

UsbResult LinuxUsbInterface::ControlRequest(std::uint8_t pipe, UsbControlRequest& request) {
    if (pipe != 0)
        return UsbCode::NotFound; // only the control pipe carries class requests
    if (request.wLength > kLongestData)
        return UsbCode::NotSupported;
    if (!m_way) {
        auto chosen = chooseWay();
        m_notOpen = chosen.result;
        m_way = std::move(chosen.object);
        if (!m_way)
            return m_notOpen;
    }
    // The answer of a failed request must not reach the caller: a block that is half zeros and then written
    // back would wipe settings.
    std::array<std::uint8_t, kLongestData> data{};
    const std::span bytes = std::span(data).first(request.wLength);
    const std::span caller(request.pData, request.wLength);
    const bool isGet = (request.bmRequestType & kUsbDeviceToHost) != 0;
    if (!isGet)
        std::ranges::copy(caller, bytes.begin());
    const UsbResult result = m_way->carry(request, bytes);
    if (isGet && result == UsbCode::Success)
        std::ranges::copy(bytes, caller.begin());
    return result;
}

UsbResult LinuxUsbInterface::USBInterfaceClose() {
    if (!m_way)
        return m_notOpen;
    m_way.reset();
    m_notOpen = UsbCode::NotFound;
    return UsbCode::Success;
}
