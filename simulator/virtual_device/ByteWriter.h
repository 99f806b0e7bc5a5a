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
/// As USB's descriptors have their numbers.
inline void appendLittleEndian(Bytes& bytes, std::uint32_t value, unsigned size) {
    bytes.resize(bytes.size() + size);
    Uvc::storeLittleEndian(value, std::span(bytes).last(size));
}
/// As USB/IP has its numbers.
inline void appendBigEndian(Bytes& bytes, std::uint32_t value, unsigned size) {
    for (unsigned i = size; i-- > 0;)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}
