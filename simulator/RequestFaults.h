#pragma once

#include "Uvc.h"

#include <cstdint>
#include <optional>
#include <vector>

/// The effect of a fault on a request.
enum class RequestFault : std::uint8_t {
    Stall,
    TimeOut,   ///< no answer
    ShortData, ///< half of the bytes are transferred; a SET takes effect all the same
    Garbage,   ///< a GET answers other bytes
    Unplug,    ///< the device is unplugged during the request
};

/// The requests that a fault applies to; an empty field matches every request.
struct RequestKind {
    std::optional<UVCRequest> request;
    std::optional<std::uint8_t> selector; ///< high byte of wValue
};

/// Faults that are due at later requests.
class RequestFaults {
public:
    /// The n-th request of a kind from now on (1 is the next) has the fault, once.
    void add(RequestKind kind, unsigned n, RequestFault fault) { m_pending.push_back({kind, n, fault}); }
    void clear() { m_pending.clear(); }
    /// Counts a request and returns the fault that is due for it, absent if none is.
    [[nodiscard]] std::optional<RequestFault> takeDue(const UsbControlRequest& request);

private:
    struct Pending {
        RequestKind kind;
        unsigned countdown;
        RequestFault fault;
    };
    std::vector<Pending> m_pending;
};
