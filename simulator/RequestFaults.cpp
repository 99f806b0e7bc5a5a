#include "RequestFaults.h"

namespace {

bool matches(const RequestKind& kind, const UsbControlRequest& request) {
    return (!kind.request || *kind.request == static_cast<UVCRequest>(request.bRequest))
        && (!kind.selector || *kind.selector == Uvc::selectorOf(request));
}

} // namespace

std::optional<RequestFault> RequestFaults::takeDue(const UsbControlRequest& request) {
    std::optional<RequestFault> due;
    for (Pending& pending : m_pending) {
        if (matches(pending.kind, request) && --pending.countdown == 0 && !due) due = pending.fault;
    }
    std::erase_if(m_pending, [](const Pending& pending) { return pending.countdown == 0; });
    return due;
}
