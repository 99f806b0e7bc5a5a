#pragma once

#include "RequestFaults.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

/// One request as it crossed the wire.
struct RecordedRequest {
    Uvc::SetupPacket setup;
    std::vector<std::uint8_t> data; ///< sent or received
    UsbResult result;

    [[nodiscard]] bool isGet() const { return (setup[0] & kUsbDeviceToHost) != 0; }
};

/// A control of one of the device's units. Values are little-endian, `size` bytes long.
struct SimulatedControl {
    std::uint8_t unit;
    std::uint8_t selector;
    std::uint8_t size;
    std::uint32_t current;
    std::uint32_t minimum;
    std::uint32_t maximum;
    std::uint32_t resolution; ///< of the auto-exposure mode: one bit per available mode
    std::uint32_t atPowerOn;
};

/// Answers control requests like the real device, with any transport. While it is unplugged it keeps its settings and
/// loses its clock, as it has no battery.
class SimulatedDevice {
public:
    SimulatedDevice();

    // Its properties on the bus
    std::uint16_t vendorID = TAVRO_USB_VENDOR_ID;
    std::uint16_t productID = TAVRO_USB_PRODUCT_ID;
    std::uint32_t locationID = 0x01100000;                 ///< bus 1, port 1
    std::optional<std::uint8_t> videoControlInterface = 0; ///< absent: the device is no camera

    // The blocks of the extension unit. The clock in the settings block is updated when it is read.
    std::array<std::uint8_t, 4> status{0x51, 0x02, 0x83, 0x1C};
    std::array<std::uint8_t, 13> settings{0x00, 0x5A, 0, 0, 0, 0, 0, 0, 0x11, 0x00, 0xA7, 0x3B, 0xC9};
    std::array<std::uint8_t, 26> versions{0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C, 0x1D,
        0x1E, 5, 6, 7, 8, 9, 10, 11, 12, 1, 2, 3, 4};
    std::array<std::uint8_t, 7> audio{0x6D, 255, 200, 176, 0x92, 128, 0xE4};
    std::vector<SimulatedControl> controls; ///< the standard ones of units 1 and 2

    /// Answers one request. A failed GET does not change its buffer.
    UsbResult control(UsbControlRequest& request);
    /// The n-th request of a kind from now on (1 is the next) has the fault, once.
    void addFault(RequestKind kind, unsigned n, RequestFault fault) { m_faults.add(kind, n, fault); }
    void clearFaults() { m_faults.clear(); }

    void unplug() { m_plugged = false; }
    /// The clock starts at 2000-01-01 00:00:00.
    void plugIn();
    [[nodiscard]] bool plugged() const { return m_plugged; }
    /// Counts how often it was plugged in: older handles are invalid.
    [[nodiscard]] unsigned plugCount() const { return m_plugCount; }

    /// Sets the clock, in the form of settings bytes 2 to 7 (year minus 2000, month, day, h, min, s).
    void setClock(std::span<const std::uint8_t, 6> calendar);

    /// Called for every request that reached the device, also for one that it refused.
    std::function<void(const RecordedRequest&)> onRequest;

private:
    [[nodiscard]] UsbResult resultOf(UsbControlRequest& request, std::optional<RequestFault> fault);
    [[nodiscard]] bool isForUnits(const UsbControlRequest& request) const;
    [[nodiscard]] std::vector<std::uint8_t> answer(const UsbControlRequest& request);
    [[nodiscard]] std::vector<std::uint8_t> answerAbout(const UsbControlRequest& request) const;
    [[nodiscard]] std::span<const std::uint8_t> block(std::uint8_t selector) const;
    [[nodiscard]] bool accept(const UsbControlRequest& request);
    [[nodiscard]] SimulatedControl* findControl(const UsbControlRequest& request);
    void acceptSettings(std::span<const std::uint8_t> block);
    void fillInClock();

    bool m_plugged = true;
    unsigned m_plugCount = 1;
    std::uint8_t m_errorCode = 0;   ///< reason of the last refusal (UVC 1.5, 4.2.1.2)
    std::int64_t m_clockOffset = 0; ///< seconds that the device's calendar is ahead of the host's time
    RequestFaults m_faults;
};
