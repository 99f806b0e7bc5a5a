#pragma once

#include <cstdint>
#include <memory>

/// Result of a step of USB access: 0 is success, every other number a failure.
using UsbResult = std::int32_t;

/// The failures of all implementations. The numbers are libusb's, so that a code in a saved log has the same meaning
/// with every transport.
namespace UsbCode {
inline constexpr UsbResult Success = 0;
inline constexpr UsbResult InputOutput = -1; ///< also: the answer was short
inline constexpr UsbResult Access = -3;      ///< the user has no rights on the device
inline constexpr UsbResult NoDevice = -4;    ///< not attached, or unplugged
inline constexpr UsbResult NotFound = -5;
inline constexpr UsbResult Busy = -6;
inline constexpr UsbResult TimeOut = -7;
inline constexpr UsbResult Stall = -9; ///< the device refused the request
inline constexpr UsbResult NotSupported = -12;
/// Not libusb's: a driver is bound to the interface and would not send exactly this request.
inline constexpr UsbResult NotSendable = -100;
} // namespace UsbCode

/// Result of a step that makes an object. Check both: a step can report success and give no object.
template <class Object>
struct UsbOutcome {
    UsbResult result = UsbCode::NoDevice;
    std::unique_ptr<Object> object;
};

/// One request on the control pipe (USB 2.0, 9.3: the first five fields are the setup packet).
struct UsbControlRequest {
    std::uint8_t bmRequestType; ///< direction, type and recipient
    std::uint8_t bRequest;
    std::uint16_t wValue;
    std::uint16_t wIndex;
    std::uint16_t wLength;  ///< bytes of the data stage
    std::uint8_t* pData;    ///< wLength bytes to send, or room for as many; untouched by a failed GET
    std::uint32_t wLenDone; ///< bytes transferred
};

/// Bit 7 of bmRequestType: the device sends the data stage.
inline constexpr std::uint8_t kUsbDeviceToHost = 0x80;

// Devices and interfaces are accessed in the same steps: the bus lists services, a service creates a plug-in, and the
// plug-in returns the object. No node is opened before the first request. To release an object, destroy it.

/// Creates the object of a service.
template <class Object>
class UsbPlugIn {
public:
    virtual ~UsbPlugIn() = default;
    [[nodiscard]] virtual UsbOutcome<Object> QueryInterface() = 0;
};

/// An entry of the bus.
template <class Object>
class UsbService {
public:
    virtual ~UsbService() = default;
    [[nodiscard]] virtual UsbOutcome<UsbPlugIn<Object>> createPlugIn() = 0;
    /// Releases the service; its plug-in remains usable.
    [[nodiscard]] virtual UsbResult release() = 0;
};

template <class Object>
class UsbIterator {
public:
    virtual ~UsbIterator() = default;
    /// The next service, absent at the end.
    [[nodiscard]] virtual std::unique_ptr<UsbService<Object>> next() = 0;
};

/// One interface of a device, for requests on the control pipe only. Not opened exclusively.
class UsbInterface {
public:
    virtual ~UsbInterface() = default;
    [[nodiscard]] virtual UsbResult GetInterfaceNumber(std::uint8_t& number) = 0;
    /// Sends one request on the control pipe. Blocks for at most 5 seconds, and 5 more for each request of the kernel's
    /// driver: two before the first use of a control since the device was plugged in (GET_LEN and GET_INFO), one after
    /// a refusal (its reason). Can be called after `USBInterfaceClose`.
    [[nodiscard]] virtual UsbResult ControlRequest(UsbControlRequest& request) = 0;
    /// Closes the node that a failed request has left open. If none was open, the result is the reason.
    virtual UsbResult USBInterfaceClose() = 0;
};

class UsbDevice {
public:
    virtual ~UsbDevice() = default;
    /// The location of the device: bus number in bits 31-24, then one port number per 4 bits along the chain of hubs,
    /// the root hub's first; the rest is 0. Of a port number only the low 4 bits count, so that ports 1 and 17 of one
    /// hub have the same location.
    [[nodiscard]] virtual UsbResult GetLocationID(std::uint32_t& location) = 0;
    /// Its interfaces of a class and subclass (USB 2.0, 9.6.5), with any protocol.
    [[nodiscard]] virtual UsbOutcome<UsbIterator<UsbInterface>> CreateInterfaceIterator(
        std::uint8_t interfaceClass, std::uint8_t interfaceSubClass) = 0;
};

/// The devices that are plugged in, searched again at every call.
class UsbBus {
public:
    virtual ~UsbBus() = default;
    /// The first device with these identifiers. If there is none: `NoDevice`, and no object.
    [[nodiscard]] virtual UsbOutcome<UsbService<UsbDevice>> firstService(
        std::uint32_t vendor, std::uint32_t product) = 0;
    [[nodiscard]] virtual UsbOutcome<UsbIterator<UsbDevice>> allServices() = 0;
};

/// The bus that the program was linked with: the computer's, or the simulated one.
[[nodiscard]] UsbBus& usbBus();
