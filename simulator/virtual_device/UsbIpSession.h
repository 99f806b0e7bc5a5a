#pragma once

#include "UsbIpMessages.h"
#include "VirtualCaptureDevice.h"

#include <deque>
#include <optional>
#include <vector>

class QIODevice;

/// One client's connection, independent of the socket. Robust against any client: what the session stores for
/// it is limited, and anything but USB/IP ends it.
class UsbIpSession {
public:
    using Clock = CaptureFrames::Clock;

    UsbIpSession(QIODevice& client, VirtualCaptureDevice& device)
        : m_client(client), m_input(&client), m_output(&client), m_device(device) {}

    /// Gives the client the device without a request: for the kernel, to which the connection was handed.
    void importNow(Clock::time_point now);
    [[nodiscard]] bool imported() const { return m_imported; }
    /// Handles what the client has sent. `attachable`: the device is plugged in and nobody else's.
    void receive(bool attachable, Clock::time_point now);
    /// Sends what is due of the stream.
    void sendFrames(Clock::time_point now);
    /// When to call `sendFrames`, absent if no transfer waits for a frame.
    [[nodiscard]] std::optional<Clock::time_point> due() const;

    /// No more messages are handled: close when all output is sent.
    [[nodiscard]] bool ended() const { return m_ended; }

private:
    struct Fetch {
        std::uint32_t sequence;
        std::uint32_t room;
    };

    void handle(const UsbIp::Message& message, bool attachable, Clock::time_point now);
    void handleImport(const UsbIp::ImportRequest& request, bool attachable, Clock::time_point now);
    void handleSubmit(const UsbIp::Submit& submit, Clock::time_point now);
    void handleUnlink(const UsbIp::Unlink& unlink);
    void handleStream(const UsbIp::Submit& submit);

    QIODevice& m_client;
    QDataStream m_input; // of its own, because an incomplete message leaves it in an error state
    QDataStream m_output;
    VirtualCaptureDevice& m_device;
    std::deque<Fetch> m_fetches;                ///< transfers that wait for a frame
    std::vector<std::uint32_t> m_neverAnswered; ///< transfers that the client will take back
    bool m_imported = false;
    bool m_ended = false;
};
