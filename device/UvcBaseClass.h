#pragma once

#include "UVCControl.h"

/// A UVC device with units that take blocks of bytes.
class CUvcBaseControl : public UVCCameraControl {
public:
    /// SET_CUR of the first `length` bytes of `data`.
    [[nodiscard]] bool SetData2(std::span<std::uint8_t> data, int length, int selector, int unit);
};
