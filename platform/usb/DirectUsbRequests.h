#pragma once

#include "LibusbObjects.h"
#include "RequestWay.h"

/// Through usbfs, where no driver holds the interface. It is claimed for the length of a request only:
/// nothing stays claimed between two of them, so that other programs can work and a driver that is loaded
/// later can bind. A driver that is bound meanwhile stays bound; requests then fail with `Busy`.
class DirectUsbRequests : public RequestWay {
public:
    [[nodiscard]] static UsbYield<RequestWay> open(const LibusbDevice& device);

    explicit DirectUsbRequests(LibusbHandle handle) : m_handle(std::move(handle)) {}
    UsbResult carry(UsbControlRequest& request, std::span<std::uint8_t> bytes) override;

private:
    LibusbHandle m_handle;
};
