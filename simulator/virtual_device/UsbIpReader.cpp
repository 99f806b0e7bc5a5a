#include "UsbIpReader.h"

#include <algorithm>

namespace {

// Operations before a device is handed out.
constexpr std::uint32_t kVersion = 0x0111;
constexpr std::uint32_t kDeviceList = 0x8005;
constexpr std::uint32_t kImport = 0x8003;
constexpr std::size_t kOperationHeader = 8;
constexpr std::size_t kBusIDField = 32;

// Transfers after it, with their fields' places.
constexpr std::uint32_t kSubmit = 1;
constexpr std::uint32_t kUnlink = 2;
constexpr std::size_t kTransferHeader = 48;
constexpr std::size_t kSequence = 4;
constexpr std::size_t kDirection = 12;
constexpr std::size_t kEndpoint = 16;
constexpr std::size_t kVictim = 20;
constexpr std::size_t kLength = 24;
constexpr std::size_t kPackets = 32;
constexpr std::size_t kSetup = 40;

constexpr std::uint32_t kNoPackets = 0xFFFFFFFF; // with 0 the other way to say: not isochronous

} // namespace

void UsbIp::Reader::append(std::span<const std::uint8_t> bytes) {
    ::append(m_bytes, bytes);
}

std::uint32_t UsbIp::Reader::number(std::size_t offset, unsigned size) const {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < size; ++i)
        value = value << 8 | m_bytes[offset + i];
    return value;
}

void UsbIp::Reader::drop(std::size_t count) {
    m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(count));
}

std::optional<UsbIp::Message> UsbIp::Reader::next() {
    return m_imported ? nextTransfer() : nextOperation();
}

std::optional<UsbIp::Message> UsbIp::Reader::nextOperation() {
    if (m_bytes.size() < kOperationHeader)
        return std::nullopt;
    const std::uint32_t code = number(2, 2);
    if (number(0, 2) != kVersion || (code != kDeviceList && code != kImport))
        return Malformed{};
    if (code == kDeviceList) {
        drop(kOperationHeader);
        return DeviceListRequest{};
    }
    if (m_bytes.size() < kOperationHeader + kBusIDField)
        return std::nullopt;
    const auto field = std::span(m_bytes).subspan(kOperationHeader, kBusIDField);
    ImportRequest request{std::string(field.begin(), std::ranges::find(field, 0))};
    drop(kOperationHeader + kBusIDField);
    return request;
}

std::optional<UsbIp::Message> UsbIp::Reader::nextTransfer() {
    if (m_bytes.size() < kTransferHeader)
        return std::nullopt;
    const std::uint32_t command = number(0, 4);
    if (command == kSubmit)
        return nextSubmit();
    if (command != kUnlink)
        return Malformed{};
    const Unlink unlink{number(kSequence, 4), number(kVictim, 4)};
    drop(kTransferHeader);
    return unlink;
}

std::optional<UsbIp::Message> UsbIp::Reader::nextSubmit() {
    const std::uint32_t packets = number(kPackets, 4);
    const std::uint32_t direction = number(kDirection, 4);
    Submit submit{.sequence = number(kSequence, 4),
                  .endpoint = number(kEndpoint, 4),
                  .toHost = direction == 1,
                  .length = number(kLength, 4),
                  .setup = {},
                  .data = {}};
    if (direction > 1 || submit.length > kLongestTransfer || (packets != 0 && packets != kNoPackets))
        return Malformed{};
    const std::size_t dataLength = submit.toHost ? 0 : submit.length;
    if (m_bytes.size() < kTransferHeader + dataLength)
        return std::nullopt;
    std::ranges::copy(std::span(m_bytes).subspan(kSetup, submit.setup.size()), submit.setup.begin());
    const auto data = std::span(m_bytes).subspan(kTransferHeader, dataLength);
    submit.data.assign(data.begin(), data.end());
    drop(kTransferHeader + dataLength);
    return submit;
}
