#pragma once

#include "ByteWriter.h"

#include <cstdint>

/// The properties that can differ between virtual devices.
struct CaptureIdentity {
    std::uint16_t vendorID;
    std::uint16_t productID;
    /// Number of the VideoControl interface. Interfaces with lower numbers have no driver.
    std::uint8_t videoControlInterface;

    [[nodiscard]] std::uint8_t streamingInterface() const {
        return static_cast<std::uint8_t>(videoControlInterface + 1);
    }
};

inline constexpr std::uint32_t kClockFrequency = 48'000'000; // Hz, of the VideoControl interface
inline constexpr std::uint8_t kStreamEndpoint = 1;           // IN
inline constexpr std::uint8_t kConfigurationValue = 1;

[[nodiscard]] Bytes deviceDescriptor(const CaptureIdentity& identity);
[[nodiscard]] Bytes deviceQualifier();
/// The configuration with all its interfaces (camera terminal 1, processing unit 2, extension unit 3 with selectors 10
/// to 13, and the stream).
[[nodiscard]] Bytes configurationDescriptor(const CaptureIdentity& identity);
/// Empty if there is no such string.
[[nodiscard]] Bytes stringDescriptor(std::uint8_t index);
