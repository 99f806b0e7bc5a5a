#pragma once

#include "ByteWriter.h"
#include "CaptureDescriptors.h"

#include <array>
#include <cstdint>
#include <string>
#include <variant>

// USB/IP 1.1.1, as the Linux kernel documents it (Documentation/usb/usbip_protocol.rst).

namespace UsbIp {

/// "Which devices do you have?"
struct DeviceListRequest {};

/// "Give me this one." From then on the connection carries transfers only.
struct ImportRequest {
    std::string busID;
};

struct Submit {
    std::uint32_t sequence = 0;
    std::uint32_t endpoint = 0;
    bool toHost = false;
    std::uint32_t length = 0; ///< bytes to send, or room for as many
    std::array<std::uint8_t, 8> setup{};
    Bytes data; ///< `length` bytes when it is not `toHost`
};

/// Takes back a transfer that was submitted.
struct Unlink {
    std::uint32_t sequence = 0;
    std::uint32_t victim = 0; ///< sequence number of the transfer
};

/// Not USB/IP, or more than this device can be asked for. The connection is of no more use.
struct Malformed {};

using Message = std::variant<DeviceListRequest, ImportRequest, Submit, Unlink, Malformed>;

/// How a transfer ended. Status 0 is success, everything else a negative errno of the kernel.
struct TransferEnd {
    std::int32_t status = 0;
    std::uint32_t length = 0; ///< bytes carried
    Bytes data;               ///< `length` bytes when they go to the host
};

inline constexpr const char* kBusID = "1-1";
inline constexpr std::uint32_t kBusNumber = 1;
inline constexpr std::uint32_t kDeviceNumber = 2;
inline constexpr std::uint32_t kDeviceID = kBusNumber << 16 | kDeviceNumber;
inline constexpr std::uint32_t kHighSpeed = 3; // as the kernel numbers speeds

[[nodiscard]] Bytes deviceListReply(const CaptureIdentity& identity, bool attachable);
[[nodiscard]] Bytes importReply(const CaptureIdentity& identity);
[[nodiscard]] Bytes importRefusal();
[[nodiscard]] Bytes submitReply(std::uint32_t sequence, const TransferEnd& end);
/// `takenBack`: it was still waiting, and no reply to it will follow.
[[nodiscard]] Bytes unlinkReply(std::uint32_t sequence, bool takenBack);

} // namespace UsbIp
