#pragma once

#include "LibusbObjects.h"
#include "RequestWay.h"
#include "host/OpenFile.h"

#include <string>

/// Through usbfs, where no driver holds the interface. It is claimed for the length of a request only:
/// nothing stays claimed between two of them, so that other programs can work and a driver that is loaded
/// later can bind. A driver that is bound meanwhile stays bound; requests then fail with `Busy`.
class DirectUsbRequests : public RequestWay {
public:
    /// `node` is the device's in usbfs.
    [[nodiscard]] static UsbYield<RequestWay> open(const std::string& node);

    DirectUsbRequests(OpenFile node, LibusbContext context, LibusbHandle handle)
        : m_node(std::move(node)), m_context(std::move(context)), m_handle(std::move(handle)) {}
    UsbResult carry(UsbControlRequest& request, std::span<std::uint8_t> bytes) override;

private:
    OpenFile m_node;
    LibusbContext m_context;
    LibusbHandle m_handle; ///< goes first
};
