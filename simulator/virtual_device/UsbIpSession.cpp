#include "UsbIpSession.h"

#include <QIODevice>

#include <algorithm>
#include <cerrno>

namespace {

// Far above the needs of any kernel.
constexpr std::size_t kMaxWaiting = 256;       // transfers
constexpr qint64 kMaxOutput = qint64{4} << 20; // bytes that the client has not fetched

} // namespace

void UsbIpSession::importNow(Clock::time_point now) {
    m_imported = true;
    m_device.reset(now);
}

void UsbIpSession::receive(bool attachable, Clock::time_point now) {
    while (!m_ended) {
        const auto message = m_imported ? UsbIp::readTransfer(m_input) : UsbIp::readOperation(m_input);
        if (!message) return;
        handle(*message, attachable, now);
        if (m_fetches.size() + m_neverAnswered.size() > kMaxWaiting || m_client.bytesToWrite() > kMaxOutput)
            m_ended = true;
    }
    (void)m_client.readAll(); // discards the rest
}

void UsbIpSession::handle(const UsbIp::Message& message, bool attachable, Clock::time_point now) {
    if (const auto* submit = std::get_if<UsbIp::Submit>(&message)) {
        handleSubmit(*submit, now);
    } else if (const auto* unlink = std::get_if<UsbIp::Unlink>(&message)) {
        handleUnlink(*unlink);
    } else if (const auto* import = std::get_if<UsbIp::ImportRequest>(&message)) {
        handleImport(*import, attachable, now);
    } else if (std::holds_alternative<UsbIp::DeviceListRequest>(message)) {
        UsbIp::writeDeviceList(m_output, m_device.identity(), attachable);
        m_ended = true;
    } else {
        m_ended = true;
    }
}

void UsbIpSession::handleImport(const UsbIp::ImportRequest& request, bool attachable, Clock::time_point now) {
    if (!attachable || request.busID != UsbIp::kBusID) {
        UsbIp::writeImportRefusal(m_output);
        m_ended = true;
        return;
    }
    UsbIp::writeImport(m_output, m_device.identity());
    importNow(now);
}

void UsbIpSession::handleSubmit(const UsbIp::Submit& submit, Clock::time_point now) {
    if (submit.endpoint != 0) {
        handleStream(submit);
        return;
    }
    const auto end = m_device.control(submit, now);
    if (end)
        UsbIp::writeSubmitReply(m_output, submit.sequence, *end);
    else if (m_device.device().plugged())
        m_neverAnswered.push_back(submit.sequence);
    else
        m_ended = true; // it was unplugged during the request
}

void UsbIpSession::handleStream(const UsbIp::Submit& submit) {
    if (submit.endpoint == kStreamEndpoint && submit.toHost)
        m_fetches.push_back({submit.sequence, submit.length});
    else
        UsbIp::writeSubmitReply(m_output, submit.sequence, {.status = -EPIPE, .length = 0, .data = {}});
}

void UsbIpSession::handleUnlink(const UsbIp::Unlink& unlink) {
    const auto fetches = std::erase_if(m_fetches, [&](const Fetch& fetch) { return fetch.sequence == unlink.victim; });
    const auto others = std::erase(m_neverAnswered, unlink.victim);
    UsbIp::writeUnlinkReply(m_output, unlink.sequence, fetches + others > 0);
}

void UsbIpSession::sendFrames(Clock::time_point now) {
    while (!m_fetches.empty() && m_device.frames().due() <= now && !m_ended) {
        const Fetch fetch = m_fetches.front();
        m_fetches.pop_front();
        Bytes payload = m_device.frames().nextPayload(fetch.room, now);
        const auto length = static_cast<std::uint32_t>(payload.size());
        UsbIp::writeSubmitReply(m_output, fetch.sequence, {.status = 0, .length = length, .data = std::move(payload)});
    }
}

std::optional<UsbIpSession::Clock::time_point> UsbIpSession::due() const {
    return m_ended || m_fetches.empty() ? std::nullopt : std::optional(m_device.frames().due());
}
