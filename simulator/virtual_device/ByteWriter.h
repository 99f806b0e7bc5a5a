#pragma once

#include "Uvc.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

inline void append(Bytes& bytes, std::span<const std::uint8_t> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}
/// The byte order of USB descriptors.
inline void appendLittleEndian(Bytes& bytes, std::uint32_t value, unsigned size) {
    bytes.resize(bytes.size() + size);
    Uvc::storeLittleEndian(value, std::span(bytes).last(size));
}
