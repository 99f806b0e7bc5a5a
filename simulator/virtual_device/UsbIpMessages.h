#pragma once

#include "CaptureDescriptors.h"

#include <QDataStream>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

// USB/IP 1.1.1, as the Linux kernel documents it (Documentation/usb/usbip_protocol.rst).

namespace UsbIp {

/// Asks for the list of devices.
struct DeviceListRequest {};

/// Asks for one device. Afterwards the connection has transfers only.
struct ImportRequest {
    std::string busID;
};

struct Submit {
    std::uint32_t sequence = 0;
    std::uint32_t endpoint = 0;
    bool toHost = false;
    std::uint32_t length = 0; ///< bytes to send, or room for as many
    Uvc::SetupPacket setup{};
    Bytes data; ///< `length` bytes, unless `toHost`
};

/// Cancels a submitted transfer.
struct Unlink {
    std::uint32_t sequence = 0;
    std::uint32_t victim = 0; ///< sequence number of the transfer
};

/// Not USB/IP, or beyond the limits of this device. The connection can't be used any more.
struct Malformed {};

using Message = std::variant<DeviceListRequest, ImportRequest, Submit, Unlink, Malformed>;

/// Result of a transfer. Status 0 is success, everything else a negative errno of the kernel.
struct TransferEnd {
    std::int32_t status = 0;
    std::uint32_t length = 0; ///< bytes transferred
    Bytes data;               ///< `length` bytes, if `toHost`
};

inline constexpr const char* kBusID = "1-1";
inline constexpr std::uint32_t kBusNumber = 1;
inline constexpr std::uint32_t kDeviceAddress = 2;
inline constexpr std::uint32_t kDeviceID = kBusNumber << 16 | kDeviceAddress;
inline constexpr std::uint32_t kHighSpeed = 3; // as the kernel numbers speeds

/// In bytes: a control transfer can't be longer, and the stream's are shorter.
inline constexpr std::uint32_t kMaxTransfer = 65536;
/// In bytes: a transfer and its header.
inline constexpr std::uint32_t kMaxMessage = 48 + kMaxTransfer;

/// The next message of a client without the device; absent, with nothing read, if it is incomplete. `Malformed` is the
/// last one. Streams are big-endian, the default of `QDataStream`.
[[nodiscard]] std::optional<Message> readOperation(QDataStream& client);
/// The same for the client with the device.
[[nodiscard]] std::optional<Message> readTransfer(QDataStream& client);

void writeDeviceList(QDataStream& client, const CaptureIdentity& identity, bool attachable);
void writeImport(QDataStream& client, const CaptureIdentity& identity);
void writeImportRefusal(QDataStream& client);
void writeSubmitReply(QDataStream& client, std::uint32_t sequence, const TransferEnd& end);
/// `isCancelled`: the transfer was pending and gets no reply.
void writeUnlinkReply(QDataStream& client, std::uint32_t sequence, bool isCancelled);

} // namespace UsbIp
