#pragma once

#include "Usb.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <span>

// The numbers of USB Video Class requests, from UVC 1.5 and USB 2.0.

/// Request codes (UVC 1.5, A.8).
enum class UVCRequest : std::uint8_t {
    SET_CUR = 0x01,
    GET_CUR = 0x81,
    GET_MIN = 0x82,
    GET_MAX = 0x83,
    GET_RES = 0x84,
    GET_LEN = 0x85,
    GET_INFO = 0x86,
    GET_DEF = 0x87,
};

namespace Uvc {

// UVC 1.5, A.1 and A.2
inline constexpr std::uint8_t kVideoClass = 14;
inline constexpr std::uint8_t kVideoControlSubClass = 1;

// bmRequestType of class requests to an interface (USB 2.0, 9.3)
inline constexpr std::uint8_t kSetToInterface = 0x21;
inline constexpr std::uint8_t kGetFromInterface = kSetToInterface | kUsbDeviceToHost;

/// Selectors of a camera terminal (UVC 1.5, A.9.4).
enum CameraTerminal : std::uint8_t { CT_AE_MODE_CONTROL = 2, CT_EXPOSURE_TIME_ABSOLUTE_CONTROL = 4 };

/// Selectors of a processing unit (UVC 1.5, A.9.5).
enum ProcessingUnit : std::uint8_t {
    PU_BRIGHTNESS_CONTROL = 2,
    PU_CONTRAST_CONTROL = 3,
    PU_GAIN_CONTROL = 4,
    PU_SATURATION_CONTROL = 7,
    PU_SHARPNESS_CONTROL = 8,
    PU_WHITE_BALANCE_TEMPERATURE_CONTROL = 10,
    PU_WHITE_BALANCE_TEMPERATURE_AUTO_CONTROL = 11,
};

constexpr bool isGet(const UsbControlRequest& request) {
    return (request.bmRequestType & kUsbDeviceToHost) != 0;
}

// wValue has the selector and wIndex the unit (UVC 1.5, 4.2), each in its high byte; wIndex has the interface too.
constexpr std::uint8_t selectorOf(const UsbControlRequest& request) {
    return static_cast<std::uint8_t>(request.wValue >> 8);
}
constexpr std::uint8_t valueLowOf(const UsbControlRequest& request) {
    return static_cast<std::uint8_t>(request.wValue);
}
constexpr std::uint8_t unitOf(const UsbControlRequest& request) {
    return static_cast<std::uint8_t>(request.wIndex >> 8);
}
constexpr std::uint8_t interfaceOf(const UsbControlRequest& request) {
    return static_cast<std::uint8_t>(request.wIndex);
}

/// Encodes a number, least significant byte first as in all of USB. Zero-fills the rest.
constexpr void storeLittleEndian(std::uint64_t value, std::span<std::uint8_t> bytes) {
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(value);
        value >>= 8;
    }
}

/// Decodes little-endian bytes, at most sizeof(Number).
template <std::unsigned_integral Number>
constexpr Number littleEndian(std::span<const std::uint8_t> bytes) {
    Number value = 0;
    for (std::size_t i = bytes.size(); i > 0; --i) value = static_cast<Number>(value << 8 | bytes[i - 1]);
    return value;
}

using SetupPacket = std::array<std::uint8_t, 8>;

constexpr SetupPacket setupPacket(const UsbControlRequest& request) {
    SetupPacket packet{request.bmRequestType, request.bRequest};
    storeLittleEndian(request.wValue, std::span(packet).subspan<2, 2>());
    storeLittleEndian(request.wIndex, std::span(packet).subspan<4, 2>());
    storeLittleEndian(request.wLength, std::span(packet).subspan<6, 2>());
    return packet;
}

/// The request of a setup packet, with `data` as its data stage: room for wLength bytes.
constexpr UsbControlRequest requestOf(std::span<const std::uint8_t, 8> packet, std::uint8_t* data) {
    return {packet[0], packet[1], littleEndian<std::uint16_t>(packet.subspan<2, 2>()),
        littleEndian<std::uint16_t>(packet.subspan<4, 2>()), littleEndian<std::uint16_t>(packet.subspan<6, 2>()), data,
        0};
}

} // namespace Uvc
