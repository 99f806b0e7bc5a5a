#pragma once

#include "RequestWay.h"

#include "KernelDriver.h"
#include "host/OpenFile.h"

#include <utility>

/// Through the kernel's UVC driver, while it streams pictures to whoever records. Extension units only: for
/// any other request that the driver would not put on the wire exactly as it stands, `NotSendable`.
class KernelUvcRequests : public RequestWay {
public:
    /// Opens the capture node, without waiting, whatever stands under its name.
    [[nodiscard]] static UsbYield<RequestWay> open(const KernelDriver& driver);

    explicit KernelUvcRequests(OpenFile node) : m_node(std::move(node)) {}
    UsbResult carry(UsbControlRequest& request, std::span<std::uint8_t> bytes) override;

private:
    OpenFile m_node;
};
