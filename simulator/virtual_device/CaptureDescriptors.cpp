#include "CaptureDescriptors.h"

#include "CaptureFrames.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

using namespace DescriptorType;

enum Entity : std::uint8_t { CameraTerminal = 1, ProcessingUnit = 2, ExtensionUnit = 3, OutputTerminal = 4 };

constexpr std::array<std::string_view, 4> kStrings{"Tavro", "Tavro Virtual Device", "1", "Capture"};
enum StringIndex : std::uint8_t { NoString, Manufacturer, Product, SerialNumber, Collection };

constexpr std::uint16_t kBulkPacket = 512; // bytes, the only size at high speed

using Guid = std::array<std::uint8_t, 16>;
constexpr Guid kYuy2{'Y', 'U', 'Y', '2', 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
constexpr Guid kUnitGuid{
    0x54, 0x61, 0x76, 0x72, 0x6F, 0x20, 0x43, 0x40, 0x80, 0x74, 0x72, 0x6F, 0x6C, 0x73, 0x20, 0x31};

/// Its first byte is its length, which `bytes` fills in.
class Descriptor {
public:
    Descriptor(std::initializer_list<std::uint8_t> bytes) : m_bytes{0} { byte(bytes); }
    Descriptor& byte(std::initializer_list<std::uint8_t> bytes) {
        append(m_bytes, std::span(bytes.begin(), bytes.size()));
        return *this;
    }
    Descriptor& word(std::uint16_t value) {
        appendLittleEndian(m_bytes, value, 2);
        return *this;
    }
    Descriptor& number(std::uint32_t value) {
        appendLittleEndian(m_bytes, value, 4);
        return *this;
    }
    Descriptor& guid(const Guid& guid) {
        append(m_bytes, guid);
        return *this;
    }
    Bytes bytes() {
        m_bytes[0] = static_cast<std::uint8_t>(m_bytes.size());
        return m_bytes;
    }

private:
    Bytes m_bytes;
};

/// Writes the length of all of `group` into the two bytes at `offset`.
Bytes withTotalLength(Bytes group, std::size_t offset) {
    Bytes length;
    appendLittleEndian(length, static_cast<std::uint32_t>(group.size()), 2);
    std::ranges::copy(length, group.begin() + static_cast<std::ptrdiff_t>(offset));
    return group;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) append(all, part);
    return all;
}

Bytes videoControl(const CaptureIdentity& identity) {
    Bytes units = joined({
        // header: UVC 1.1, total length, clock, one streaming interface
        Descriptor{ClassInterface, 1}
            .word(0x0110)
            .word(0)
            .number(kClockFrequency)
            .byte({1, identity.streamingInterface()})
            .bytes(),
        // auto-exposure mode and absolute exposure time
        Descriptor{ClassInterface, 2, CameraTerminal}
            .word(0x0201)
            .byte({0, NoString})
            .word(0)
            .word(0)
            .word(0)
            .byte({3, 0x0A, 0, 0})
            .bytes(),
        // brightness, contrast, saturation, sharpness, white balance and its automatic mode, gain
        Descriptor{ClassInterface, 5, ProcessingUnit, CameraTerminal}
            .word(0)
            .byte({2, 0x5B, 0x12, NoString, 0})
            .bytes(),
        Descriptor{ClassInterface, 6, ExtensionUnit}
            .guid(kUnitGuid)
            .byte({4, 1, ProcessingUnit, 2, 0, 0x1E, NoString})
            .bytes(),
        Descriptor{ClassInterface, 3, OutputTerminal}.word(0x0101).byte({0, ExtensionUnit, NoString}).bytes(),
    });
    constexpr std::size_t kTotalLength = 5;
    return joined(
        {Descriptor{Interface, identity.videoControlInterface, 0, 0, Video, VideoControl, 0, Collection}.bytes(),
            withTotalLength(std::move(units), kTotalLength)});
}

Bytes frameDescriptor() {
    constexpr std::uint32_t kUnitsPerSecond = 10'000'000;
    const auto bitsPerSecond = [](std::uint32_t interval) { return kFrameSize * 8 * (kUnitsPerSecond / interval); };
    Descriptor frame{ClassInterface, 5, 1, 0};
    frame.word(kFrameWidth).word(kFrameHeight);
    frame.number(bitsPerSecond(kFrameIntervals[0])).number(bitsPerSecond(kFrameIntervals[1]));
    frame.number(kFrameSize).number(kFrameIntervals[0]);
    frame.byte({static_cast<std::uint8_t>(kFrameIntervals.size())});
    for (const std::uint32_t interval : {kFrameIntervals[1], kFrameIntervals[0]}) // shortest first
        frame.number(interval);
    return frame.bytes();
}

Bytes videoStreaming(const CaptureIdentity& identity) {
    constexpr std::uint8_t kIn = 0x80;
    constexpr std::uint8_t kBulk = 2;
    constexpr std::size_t kTotalLength = 4;
    Bytes formats = joined({
        Descriptor{ClassInterface, 1, 1}
            .word(0)
            .byte({kStreamEndpoint | kIn, 0, OutputTerminal, 0, 0, 0, 1, 0})
            .bytes(),
        Descriptor{ClassInterface, 4, 1, 1}.guid(kYuy2).byte({16, 1, 0, 0, 0, 0}).bytes(),
        frameDescriptor(),
        Descriptor{ClassInterface, 13, 1, 1, 4}.bytes(),
    });
    return joined(
        {Descriptor{Interface, identity.streamingInterface(), 0, 1, Video, VideoStreaming, 0, NoString}.bytes(),
            withTotalLength(std::move(formats), kTotalLength),
            Descriptor{Endpoint, kStreamEndpoint | kIn, kBulk}.word(kBulkPacket).byte({0}).bytes()});
}

} // namespace

Bytes deviceDescriptor(const CaptureIdentity& identity) {
    return Descriptor{Device}
        .word(0x0200)
        .byte({Miscellaneous, 2, 1, 64}) // interfaces are associated
        .word(identity.vendorID)
        .word(identity.productID)
        .word(0x0100)
        .byte({Manufacturer, Product, SerialNumber, 1})
        .bytes();
}

Bytes deviceQualifier() {
    return Descriptor{Qualifier}.word(0x0200).byte({Miscellaneous, 2, 1, 64, 1, 0}).bytes();
}

Bytes configurationDescriptor(const CaptureIdentity& identity) {
    const std::uint8_t first = identity.videoControlInterface;
    const auto interfaces = static_cast<std::uint8_t>(first + 2);
    Bytes before;
    for (std::uint8_t number = 0; number < first; ++number)
        append(before, Descriptor{Interface, number, 0, 0, VendorSpecific, 0, 0, NoString}.bytes());
    constexpr std::uint8_t kBusPowered = 0x80;
    constexpr std::uint8_t kHalfAnAmpere = 250;
    constexpr std::size_t kTotalLength = 2;
    return withTotalLength(joined({Descriptor{Configuration}
                                       .word(0)
                                       .byte({interfaces, kConfigurationValue, NoString, kBusPowered, kHalfAnAmpere})
                                       .bytes(),
                               before, Descriptor{Association, first, 2, Video, VideoCollection, 0, Collection}.bytes(),
                               videoControl(identity), videoStreaming(identity)}),
        kTotalLength);
}

Bytes stringDescriptor(std::uint8_t index) {
    constexpr std::uint16_t kEnglish = 0x0409;
    Descriptor descriptor{String};
    if (index == 0) return descriptor.word(kEnglish).bytes();
    if (index > kStrings.size()) return {};
    for (const char character : kStrings.at(index - 1U)) descriptor.word(static_cast<std::uint8_t>(character));
    return descriptor.bytes();
}
