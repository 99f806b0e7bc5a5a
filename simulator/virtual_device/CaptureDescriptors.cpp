#include "CaptureDescriptors.h"

#include "CaptureFrames.h"

#include <string_view>
#include <utility>

#include <linux/usb/ch9.h>
#include <linux/usb/video.h>

namespace {

enum Entity : std::uint8_t { CameraTerminal = 1, ProcessingUnit = 2, ExtensionUnit = 3, OutputTerminal = 4 };

constexpr std::array<std::string_view, 4> kStrings{"Tavro", "Tavro Virtual Device", "1", "Capture"};
enum StringIndex : std::uint8_t { NoString, Manufacturer, Product, SerialNumber, Collection };

constexpr std::uint16_t kBulkPacket = 512; // bytes, the only size at high speed

using Guid = std::array<std::uint8_t, 16>;
constexpr Guid kYuy2{'Y', 'U', 'Y', '2', 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
constexpr Guid kUnitGuid{
    0x54, 0x61, 0x76, 0x72, 0x6F, 0x20, 0x43, 0x40, 0x80, 0x74, 0x72, 0x6F, 0x6C, 0x73, 0x20, 0x31};

/// Its first byte is its length, which the conversion fills in.
class Descriptor {
public:
    Descriptor(std::initializer_list<std::uint8_t> values) : m_bytes{0} { bytes(values); }
    Descriptor& bytes(std::initializer_list<std::uint8_t> values) {
        append(m_bytes, std::span(values.begin(), values.size()));
        return *this;
    }
    Descriptor& le16(std::uint16_t value) {
        appendLittleEndian(m_bytes, value, 2);
        return *this;
    }
    Descriptor& le32(std::uint32_t value) {
        appendLittleEndian(m_bytes, value, 4);
        return *this;
    }
    Descriptor& guid(const Guid& guid) {
        append(m_bytes, guid);
        return *this;
    }
    operator Bytes() const {
        Bytes whole = m_bytes;
        whole[0] = static_cast<std::uint8_t>(whole.size());
        return whole;
    }

private:
    Bytes m_bytes;
};

/// Writes the length of all of `group` into the two bytes at `offset`.
Bytes withTotalLength(Bytes group, std::size_t offset) {
    Uvc::storeLittleEndian(group.size(), std::span(group).subspan(offset, 2));
    return group;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) append(all, part);
    return all;
}

Bytes videoControl(const CaptureIdentity& identity) {
    constexpr std::size_t kTotalLength = 5;
    const Descriptor control{
        USB_DT_INTERFACE, identity.videoControlInterface, 0, 0, USB_CLASS_VIDEO, UVC_SC_VIDEOCONTROL, 0, Collection};
    Descriptor header{USB_DT_CS_INTERFACE, UVC_VC_HEADER};
    header.le16(0x0110).le16(0).le32(kClockFrequency).bytes({1, identity.streamingInterface()});
    // auto-exposure mode and absolute exposure time
    Descriptor camera{USB_DT_CS_INTERFACE, UVC_VC_INPUT_TERMINAL, CameraTerminal};
    camera.le16(UVC_ITT_CAMERA).bytes({0, NoString}).le16(0).le16(0).le16(0).bytes({3, 0x0A, 0, 0});
    // brightness, contrast, saturation, sharpness, white balance and its automatic mode, gain
    Descriptor processing{USB_DT_CS_INTERFACE, UVC_VC_PROCESSING_UNIT, ProcessingUnit, CameraTerminal};
    processing.le16(0).bytes({2, 0x5B, 0x12, NoString, 0});
    Descriptor extension{USB_DT_CS_INTERFACE, UVC_VC_EXTENSION_UNIT, ExtensionUnit};
    extension.guid(kUnitGuid).bytes({4, 1, ProcessingUnit, 2, 0, 0x1E, NoString});
    Descriptor output{USB_DT_CS_INTERFACE, UVC_VC_OUTPUT_TERMINAL, OutputTerminal};
    output.le16(UVC_TT_STREAMING).bytes({0, ExtensionUnit, NoString});
    return joined({control, withTotalLength(joined({header, camera, processing, extension, output}), kTotalLength)});
}

Bytes frameDescriptor() {
    constexpr std::uint32_t kUnitsPerSecond = 10'000'000;
    const auto bitsPerSecond = [](std::uint32_t interval) { return kFrameSize * 8 * (kUnitsPerSecond / interval); };
    Descriptor frame{USB_DT_CS_INTERFACE, UVC_VS_FRAME_UNCOMPRESSED, 1, 0};
    frame.le16(kFrameWidth).le16(kFrameHeight);
    frame.le32(bitsPerSecond(kFrameIntervals[0])).le32(bitsPerSecond(kFrameIntervals[1]));
    frame.le32(kFrameSize).le32(kFrameIntervals[0]);
    frame.bytes({static_cast<std::uint8_t>(kFrameIntervals.size())});
    for (const std::uint32_t interval : {kFrameIntervals[1], kFrameIntervals[0]}) // shortest first
        frame.le32(interval);
    return frame;
}

Bytes videoStreaming(const CaptureIdentity& identity) {
    constexpr std::size_t kTotalLength = 4;
    const Descriptor streaming{
        USB_DT_INTERFACE, identity.streamingInterface(), 0, 1, USB_CLASS_VIDEO, UVC_SC_VIDEOSTREAMING, 0, NoString};
    Descriptor input{USB_DT_CS_INTERFACE, UVC_VS_INPUT_HEADER, 1};
    input.le16(0).bytes({kStreamEndpoint | USB_DIR_IN, 0, OutputTerminal, 0, 0, 0, 1, 0});
    Descriptor format{USB_DT_CS_INTERFACE, UVC_VS_FORMAT_UNCOMPRESSED, 1, 1};
    format.guid(kYuy2).bytes({16, 1, 0, 0, 0, 0});
    const Descriptor color{USB_DT_CS_INTERFACE, UVC_VS_COLORFORMAT, 1, 1, 4};
    Descriptor endpoint{USB_DT_ENDPOINT, kStreamEndpoint | USB_DIR_IN, USB_ENDPOINT_XFER_BULK};
    endpoint.le16(kBulkPacket).bytes({0});
    return joined(
        {streaming, withTotalLength(joined({input, format, frameDescriptor(), color}), kTotalLength), endpoint});
}

} // namespace

Bytes deviceDescriptor(const CaptureIdentity& identity) {
    Descriptor device{USB_DT_DEVICE};
    device.le16(0x0200).bytes({USB_CLASS_MISC, 2, 1, 64}); // interfaces are associated
    device.le16(identity.vendorID).le16(identity.productID).le16(0x0100);
    return device.bytes({Manufacturer, Product, SerialNumber, 1});
}

Bytes deviceQualifier() {
    return Descriptor{USB_DT_DEVICE_QUALIFIER}.le16(0x0200).bytes({USB_CLASS_MISC, 2, 1, 64, 1, 0});
}

Bytes configurationDescriptor(const CaptureIdentity& identity) {
    const std::uint8_t first = identity.videoControlInterface;
    const auto interfaces = static_cast<std::uint8_t>(first + 2);
    Bytes before;
    for (std::uint8_t number = 0; number < first; ++number)
        append(before, Bytes(Descriptor{USB_DT_INTERFACE, number, 0, 0, USB_CLASS_VENDOR_SPEC, 0, 0, NoString}));
    constexpr std::uint8_t kHalfAnAmpere = 250;
    constexpr std::size_t kTotalLength = 2;
    Descriptor configuration{USB_DT_CONFIG};
    configuration.le16(0).bytes({interfaces, kConfigurationValue, NoString, USB_CONFIG_ATT_ONE, kHalfAnAmpere});
    const Descriptor association{
        USB_DT_INTERFACE_ASSOCIATION, first, 2, USB_CLASS_VIDEO, UVC_SC_VIDEO_INTERFACE_COLLECTION, 0, Collection};
    return withTotalLength(
        joined({configuration, before, association, videoControl(identity), videoStreaming(identity)}), kTotalLength);
}

Bytes stringDescriptor(std::uint8_t index) {
    constexpr std::uint16_t kEnglish = 0x0409;
    Descriptor descriptor{USB_DT_STRING};
    if (index == 0) return descriptor.le16(kEnglish);
    if (index > kStrings.size()) return {};
    for (const char character : kStrings.at(index - 1U)) descriptor.le16(static_cast<std::uint8_t>(character));
    return descriptor;
}
