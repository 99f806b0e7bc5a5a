#pragma once

#include "UsbIpReader.h"
#include "VirtualCaptureDevice.h"

#include <deque>
#include <optional>
#include <vector>

/// One client's connection, whatever carries its bytes. Robust against any client: what it may make the
/// session keep is bounded, and what is no USB/IP ends it.
class UsbIpSession {
public:
    using Clock = CapturePicture::Clock;

    explicit UsbIpSession(VirtualCaptureDevice& device) : m_device(device) {}

    /// The device is the client's without its asking: the kernel was handed the connection.
    void importNow(Clock::time_point now);
    [[nodiscard]] bool imported() const { return m_imported; }
    /// `attachable`: the device is plugged in and nobody else's.
    void receive(std::span<const std::uint8_t> bytes, bool attachable, Clock::time_point now);
    /// Lets the picture go on.
    void proceed(Clock::time_point now);
    /// When to call `proceed`, absent if nothing waits for time to pass.
    [[nodiscard]] std::optional<Clock::time_point> due() const;

    /// Nothing more can come of it: send the output and close.
    [[nodiscard]] bool ended() const { return m_ended; }
    /// What the client has to be sent; whoever sends some of it takes it off the front.
    Bytes output;

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

    VirtualCaptureDevice& m_device;
    UsbIp::Reader m_reader;
    std::deque<Fetch> m_fetches;                ///< transfers that wait for the picture
    std::vector<std::uint32_t> m_neverAnswered; ///< transfers that the client will take back
    bool m_imported = false;
    bool m_ended = false;
};
