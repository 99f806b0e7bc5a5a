#include "UsbIpMessages.h"

#include <cerrno>
#include <string_view>

namespace {

constexpr std::uint16_t kVersion = 0x0111;
constexpr std::uint16_t kDeviceList = 0x0005;
constexpr std::uint16_t kImport = 0x0003;
constexpr std::uint32_t kSubmitReply = 3;
constexpr std::uint32_t kUnlinkReply = 4;
constexpr std::size_t kHeaderLength = 48;

Bytes commonHeader(std::uint16_t code, std::uint32_t status) {
    Bytes bytes;
    appendBigEndian(bytes, kVersion, 2);
    appendBigEndian(bytes, code, 2);
    appendBigEndian(bytes, status, 4);
    return bytes;
}

void appendText(Bytes& bytes, std::string_view text, std::size_t field) {
    const std::size_t end = bytes.size() + field;
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.resize(end);
}

void appendDevice(Bytes& bytes, const CaptureIdentity& identity) {
    constexpr std::size_t kPathField = 256;
    constexpr std::size_t kBusIDField = 32;
    appendText(bytes, "/sys/devices/virtual/tavro/1-1", kPathField);
    appendText(bytes, UsbIp::kBusID, kBusIDField);
    for (const std::uint32_t number : {UsbIp::kBusNumber, UsbIp::kDeviceNumber, UsbIp::kHighSpeed})
        appendBigEndian(bytes, number, 4);
    const Bytes device = deviceDescriptor(identity);
    for (const std::uint32_t id :
         {std::uint32_t{identity.vendorID}, std::uint32_t{identity.productID}, 0x0100U})
        appendBigEndian(bytes, id, 2);
    const auto interfaces = static_cast<std::uint8_t>(identity.streamingInterface() + 1);
    append(bytes,
           std::array<std::uint8_t, 6>{device[4], device[5], device[6], kConfigurationValue, 1, interfaces});
}

/// Fields that only a client fills in stay 0.
Bytes transferHeader(std::uint32_t command, std::uint32_t sequence, std::int32_t status,
                     std::uint32_t length) {
    Bytes bytes;
    for (const std::uint32_t number :
         {command, sequence, 0U, 0U, 0U, static_cast<std::uint32_t>(status), length})
        appendBigEndian(bytes, number, 4);
    bytes.resize(kHeaderLength);
    return bytes;
}

} // namespace

Bytes UsbIp::deviceListReply(const CaptureIdentity& identity, bool attachable) {
    Bytes bytes = commonHeader(kDeviceList, 0);
    appendBigEndian(bytes, attachable ? 1 : 0, 4);
    if (!attachable)
        return bytes;
    appendDevice(bytes, identity);
    constexpr std::uint8_t kVideo = 14;
    constexpr std::uint8_t kVendorSpecific = 0xFF;
    for (std::uint8_t number = 0; number < identity.videoControlInterface; ++number)
        append(bytes, std::array<std::uint8_t, 4>{kVendorSpecific, 0, 0, 0});
    append(bytes, std::array<std::uint8_t, 8>{kVideo, 1, 0, 0, kVideo, 2, 0, 0});
    return bytes;
}

Bytes UsbIp::importReply(const CaptureIdentity& identity) {
    Bytes bytes = commonHeader(kImport, 0);
    appendDevice(bytes, identity);
    return bytes;
}

Bytes UsbIp::importRefusal() {
    return commonHeader(kImport, 1);
}

Bytes UsbIp::submitReply(std::uint32_t sequence, const TransferEnd& end) {
    Bytes bytes = transferHeader(kSubmitReply, sequence, end.status, end.length);
    append(bytes, end.data);
    return bytes;
}

Bytes UsbIp::unlinkReply(std::uint32_t sequence, bool takenBack) {
    return transferHeader(kUnlinkReply, sequence, takenBack ? -ECONNRESET : 0, 0);
}
