#pragma once

#include "UsbIpMessages.h"
#include "VirtualCaptureDevice.h"

#include <deque>
#include <optional>
#include <vector>

class QIODevice;

/// One client's connection, independent of the socket. Its memory is limited, and anything but USB/IP ends it.
class UsbIpSession {
public:
    using Clock = CaptureFrames::Clock;

    UsbIpSession(QIODevice& client, VirtualCaptureDevice& device)
        : m_client(client), m_input(&client), m_output(&client), m_device(device) {}

    /// Gives the client the device without a request: for a connection that was handed to the kernel.
    void importNow(Clock::time_point now);
    [[nodiscard]] bool imported() const { return m_imported; }
    /// Handles the received messages. `attachable`: the device is plugged in, and no client has it.
    void receive(bool attachable, Clock::time_point now);
    /// Sends the frames that are due.
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
    QDataStream m_input; // separate, as an incomplete message leaves it in an error state
    QDataStream m_output;
    VirtualCaptureDevice& m_device;
    std::deque<Fetch> m_fetches;                ///< transfers that wait for a frame
    std::vector<std::uint32_t> m_neverAnswered; ///< transfers that the client will unlink
    bool m_imported = false;
    bool m_ended = false;
};
