#pragma once

#include "usb/Usb.h"

#include <cstdint>
#include <span>

/// A way on which requests reach one interface of a device. Destroying it closes what it opened.
class RequestWay {
public:
    virtual ~RequestWay() = default;
    /// Carries one request. Its data stage is `bytes`, not `request.pData`: they are sent, or hold the answer
    /// after success and anything after a failure. Fewer bytes than `bytes.size()` are a failure. Blocks,
    /// 5 seconds at most.
    [[nodiscard]] virtual UsbResult carry(UsbControlRequest& request, std::span<std::uint8_t> bytes) = 0;
};
