// What a client of the virtual device may send, in pieces as a socket hands them over.

#include "UsbIpSession.h"

#include <algorithm>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    SimulatedDevice box;
    VirtualCaptureDevice device(box);
    UsbIpSession session(device);
    UsbIpSession::Clock::time_point now{};
    if ((data[0] & 0x80) != 0)
        session.importNow(now);
    const std::size_t piece = 1U + (data[0] & 0x7FU);
    for (std::span rest(data + 1, size - 1); !rest.empty() && !session.ended();) {
        const std::size_t count = std::min(piece, rest.size());
        session.receive(rest.first(count), true, now);
        rest = rest.subspan(count);
        now += std::chrono::milliseconds(7);
        session.proceed(now);
        session.output.clear();
    }
    return 0;
}
