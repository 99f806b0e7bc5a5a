#include "RequestFaults.h"

namespace {

bool matches(const RequestKind& kind, const UsbControlRequest& request) {
    return (!kind.request || *kind.request == request.bRequest)
           && (!kind.selector || *kind.selector == request.wValue >> 8);
}

} // namespace

std::optional<RequestFault> RequestFaults::meet(const UsbControlRequest& request) {
    std::optional<RequestFault> struck;
    for (Pending& pending : m_pending) {
        if (matches(pending.kind, request) && --pending.countdown == 0 && !struck)
            struck = pending.fault;
    }
    std::erase_if(m_pending, [](const Pending& pending) { return pending.countdown == 0; });
    return struck;
}
