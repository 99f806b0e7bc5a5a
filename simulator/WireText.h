#pragma once

#include "SimulatedDevice.h"

#include <span>
#include <string>

/// Bytes in hex, for instance "6d ff c8".
[[nodiscard]] std::string hexText(std::span<const std::uint8_t> bytes);

/// A request on one line: the setup packet's 8 bytes, a bar, and the data on the wire, all in hex, for instance "a1 81
/// 00 0d 00 03 07 00 | 6d ff c8 b0 92 80 e4". A failed one ends with its code: " ! -9".
[[nodiscard]] std::string wireText(const RecordedRequest& request);

/// The settings of the device: "bit rate H.264 1 MJPEG 1, HDCP 0, microphone 176, ...".
[[nodiscard]] std::string settingsText(const SimulatedDevice& device);
