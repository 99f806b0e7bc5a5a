#include "UsbIpMessages.h"

#include <QByteArray>

#include <cerrno>
#include <span>

#include <linux/usb/ch9.h>
#include <linux/usb/video.h>

namespace {

constexpr std::uint16_t kVersion = 0x0111;

// Operations before the import of a device. A reply has the request's code without the highest bit.
constexpr std::uint16_t kRequest = 0x8000;
constexpr std::uint16_t kDeviceList = 0x0005;
constexpr std::uint16_t kImport = 0x0003;
constexpr std::size_t kBusIDField = 32;

// Transfers after the import.
constexpr std::uint32_t kSubmit = 1;
constexpr std::uint32_t kUnlink = 2;
constexpr std::uint32_t kSubmitReply = 3;
constexpr std::uint32_t kUnlinkReply = 4;
constexpr std::uint32_t kNoPackets = 0xFFFFFFFF; // not isochronous; 0 means the same

struct TransferHeader {
    std::uint32_t command = 0;
    std::uint32_t sequence = 0;
    std::uint32_t device = 0;
    std::uint32_t direction = 0;
    std::uint32_t endpoint = 0;
    std::uint32_t flags = 0; ///< of an Unlink: the sequence number of the transfer
    std::uint32_t length = 0;
    std::uint32_t startFrame = 0;
    std::uint32_t packets = 0;
    std::uint32_t interval = 0;
    Uvc::SetupPacket setup{};

    [[nodiscard]] bool isAcceptable() const {
        return command == kUnlink
            || (command == kSubmit && direction <= 1 && length <= UsbIp::kMaxTransfer
                && (packets == 0 || packets == kNoPackets));
    }
    [[nodiscard]] bool hasData() const { return command == kSubmit && direction == 0; }
};

void readRaw(QDataStream& stream, std::span<std::uint8_t> bytes) {
    const auto size = static_cast<int>(bytes.size());
    if (stream.readRawData(reinterpret_cast<char*>(bytes.data()), size) != size)
        stream.setStatus(QDataStream::ReadPastEnd);
}

void writeRaw(QDataStream& stream, std::span<const std::uint8_t> bytes) {
    stream.writeRawData(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
}

QDataStream& operator>>(QDataStream& stream, TransferHeader& header) {
    stream >> header.command >> header.sequence >> header.device >> header.direction >> header.endpoint >> header.flags
        >> header.length >> header.startFrame >> header.packets >> header.interval;
    readRaw(stream, header.setup);
    return stream;
}

UsbIp::Message malformed(QDataStream& client) {
    client.abortTransaction();
    return UsbIp::Malformed{};
}

void writeOperationHeader(QDataStream& client, std::uint16_t code, std::uint32_t status) {
    client << kVersion << code << status;
}

void writeText(QDataStream& client, const char* text, qsizetype field) {
    const QByteArray bytes = QByteArray(text).leftJustified(field, '\0');
    client.writeRawData(bytes.constData(), static_cast<int>(bytes.size()));
}

void writeDevice(QDataStream& client, const CaptureIdentity& identity) {
    constexpr qsizetype kPathField = 256;
    constexpr std::uint16_t kRelease = 0x0100;
    constexpr std::uint8_t kConfigurations = 1;
    const Bytes device = deviceDescriptor(identity);
    const auto interfaces = static_cast<std::uint8_t>(identity.streamingInterface() + 1);
    writeText(client, "/sys/devices/virtual/tavro/1-1", kPathField);
    writeText(client, UsbIp::kBusID, kBusIDField);
    client << UsbIp::kBusNumber << UsbIp::kDeviceAddress << UsbIp::kHighSpeed << identity.vendorID << identity.productID
           << kRelease << device[4] << device[5] << device[6] << kConfigurationValue << kConfigurations << interfaces;
}

/// Fields that only a client sets are 0.
void writeTransferHeader(
    QDataStream& client, std::uint32_t command, std::uint32_t sequence, std::int32_t status, std::uint32_t length) {
    constexpr std::array<std::uint8_t, 12> kNotIn{}; // device, direction, endpoint
    constexpr std::array<std::uint8_t, 20> kNotInReply{};
    client << command << sequence;
    writeRaw(client, kNotIn);
    client << status << length;
    writeRaw(client, kNotInReply);
}

} // namespace

std::optional<UsbIp::Message> UsbIp::readOperation(QDataStream& client) {
    std::uint16_t version = 0;
    std::uint16_t code = 0;
    std::uint32_t status = 0;
    client.startTransaction();
    client >> version >> code >> status;
    const bool isList = code == (kRequest | kDeviceList);
    const bool isImport = code == (kRequest | kImport);
    if (client.status() == QDataStream::Ok && (version != kVersion || !(isList || isImport))) return malformed(client);
    std::array<std::uint8_t, kBusIDField + 1> busID{}; // one byte longer, so that it always ends with 0
    if (isImport) readRaw(client, std::span(busID).first<kBusIDField>());
    if (!client.commitTransaction()) return std::nullopt;
    if (isList) return DeviceListRequest{};
    return ImportRequest{reinterpret_cast<const char*>(busID.data())};
}

std::optional<UsbIp::Message> UsbIp::readTransfer(QDataStream& client) {
    TransferHeader header;
    client.startTransaction();
    client >> header;
    Bytes data;
    if (client.status() == QDataStream::Ok) {
        if (!header.isAcceptable()) return malformed(client);
        data.resize(header.hasData() ? header.length : 0);
        readRaw(client, data);
    }
    if (!client.commitTransaction()) return std::nullopt;
    if (header.command == kUnlink) return Unlink{header.sequence, header.flags};
    return Submit{.sequence = header.sequence,
        .endpoint = header.endpoint,
        .toHost = header.direction == 1,
        .length = header.length,
        .setup = header.setup,
        .data = std::move(data)};
}

void UsbIp::writeDeviceList(QDataStream& client, const CaptureIdentity& identity, bool attachable) {
    writeOperationHeader(client, kDeviceList, 0);
    client << std::uint32_t{attachable ? 1U : 0U};
    if (!attachable) return;
    writeDevice(client, identity);
    for (std::uint8_t number = 0; number < identity.videoControlInterface; ++number)
        writeRaw(client, std::array<std::uint8_t, 4>{USB_CLASS_VENDOR_SPEC});
    writeRaw(client,
        std::array<std::uint8_t, 8>{
            USB_CLASS_VIDEO, UVC_SC_VIDEOCONTROL, 0, 0, USB_CLASS_VIDEO, UVC_SC_VIDEOSTREAMING, 0, 0});
}

void UsbIp::writeImport(QDataStream& client, const CaptureIdentity& identity) {
    writeOperationHeader(client, kImport, 0);
    writeDevice(client, identity);
}

void UsbIp::writeImportRefusal(QDataStream& client) {
    writeOperationHeader(client, kImport, 1);
}

void UsbIp::writeSubmitReply(QDataStream& client, std::uint32_t sequence, const TransferEnd& end) {
    writeTransferHeader(client, kSubmitReply, sequence, end.status, end.length);
    writeRaw(client, end.data);
}

void UsbIp::writeUnlinkReply(QDataStream& client, std::uint32_t sequence, bool isCancelled) {
    writeTransferHeader(client, kUnlinkReply, sequence, isCancelled ? -ECONNRESET : 0, 0);
}
