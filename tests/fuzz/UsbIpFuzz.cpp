// What a client of the virtual device may send, in pieces as a socket hands them over.

#include "UsbIpSession.h"

#include <QIODevice>

#include <algorithm>
#include <span>

namespace {

/// Passes on the bytes it is given, and discards the answers.
class Client : public QIODevice {
public:
    Client() { open(QIODevice::ReadWrite); }
    void give(std::span<const std::uint8_t> bytes) { ::append(m_bytes, bytes); }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override {
        const auto count = std::min<std::ptrdiff_t>(maxSize, std::ssize(m_bytes));
        std::copy_n(m_bytes.begin(), count, data);
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + count);
        return count;
    }
    qint64 writeData(const char* /*data*/, qint64 size) override { return size; }

private:
    Bytes m_bytes;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    SimulatedDevice box;
    VirtualCaptureDevice device(box);
    Client client;
    UsbIpSession session(client, device);
    UsbIpSession::Clock::time_point now{};
    if ((data[0] & 0x80) != 0) session.importNow(now);
    const std::size_t piece = 1U + (data[0] & 0x7FU);
    for (std::span rest(data + 1, size - 1); !rest.empty() && !session.ended();) {
        const std::size_t count = std::min(piece, rest.size());
        client.give(rest.first(count));
        session.receive(true, now);
        rest = rest.subspan(count);
        now += std::chrono::milliseconds(7);
        session.sendFrames(now);
    }
    return 0;
}
