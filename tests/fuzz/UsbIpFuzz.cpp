// Messages of a client of the virtual device, in pieces as from a socket.

#include "UsbIpSession.h"

#include <QIODevice>

#include <string_view>

namespace {

/// Passes the given bytes on and discards the answers.
class Client : public QIODevice {
public:
    Client() { open(QIODevice::ReadWrite); }
    [[nodiscard]] bool isSequential() const override { return true; }

    std::string_view given; ///< and not yet passed on

protected:
    qint64 readData(char* data, qint64 maxSize) override {
        const std::size_t passed = given.copy(data, static_cast<std::size_t>(maxSize));
        given.remove_prefix(passed);
        return static_cast<qint64>(passed);
    }
    qint64 writeData(const char* /*data*/, qint64 size) override { return size; }
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
    const std::string_view messages(reinterpret_cast<const char*>(data), size);
    const std::size_t piece = 1U + (data[0] & 0x7FU);
    for (std::size_t start = 1; start < size && !session.ended(); start += piece) {
        client.given = messages.substr(start, piece);
        session.receive(true, now);
        now += std::chrono::milliseconds(7);
        session.sendFrames(now);
    }
    return 0;
}
