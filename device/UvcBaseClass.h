#pragma once

#include "UVCControl.h"

/// A UVC device whose units accept blocks of bytes.
class CUvcBaseControl : public UVCCameraControl {
public:
    /// SET_CUR of the first `length` bytes of `data`. A length that does not fit: false, and nothing is sent.
    [[nodiscard]] bool SetData2(std::span<std::uint8_t> data, int length, int selector, int unit) {
        return setCurrent(data, length, selector, unit);
    }
};
