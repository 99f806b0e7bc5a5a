#include "UsbIpSession.h"

#include <algorithm>
#include <cerrno>

namespace {

// No kernel comes near these; a client that does is not one.
constexpr std::size_t kMostWaiting = 256;                 // transfers
constexpr std::size_t kMostOutput = std::size_t{4} << 20; // bytes that the client has not fetched

} // namespace

void UsbIpSession::importNow(Clock::time_point now) {
    m_imported = true;
    m_reader.imported();
    m_device.reset(now);
}

void UsbIpSession::receive(std::span<const std::uint8_t> bytes, bool attachable, Clock::time_point now) {
    if (m_ended)
        return;
    m_reader.append(bytes);
    while (!m_ended) {
        const auto message = m_reader.next();
        if (!message)
            break;
        handle(*message, attachable, now);
        if (m_fetches.size() + m_neverAnswered.size() > kMostWaiting || output.size() > kMostOutput)
            m_ended = true;
    }
    proceed(now);
}

void UsbIpSession::handle(const UsbIp::Message& message, bool attachable, Clock::time_point now) {
    if (const auto* submit = std::get_if<UsbIp::Submit>(&message)) {
        handleSubmit(*submit, now);
    } else if (const auto* unlink = std::get_if<UsbIp::Unlink>(&message)) {
        handleUnlink(*unlink);
    } else if (const auto* import = std::get_if<UsbIp::ImportRequest>(&message)) {
        handleImport(*import, attachable, now);
    } else if (std::holds_alternative<UsbIp::DeviceListRequest>(message)) {
        append(output, UsbIp::deviceListReply(m_device.identity(), attachable));
        m_ended = true;
    } else {
        m_ended = true;
    }
}

void UsbIpSession::handleImport(const UsbIp::ImportRequest& request, bool attachable, Clock::time_point now) {
    if (!attachable || request.busID != UsbIp::kBusID) {
        append(output, UsbIp::importRefusal());
        m_ended = true;
        return;
    }
    append(output, UsbIp::importReply(m_device.identity()));
    importNow(now);
}

void UsbIpSession::handleSubmit(const UsbIp::Submit& submit, Clock::time_point now) {
    if (submit.endpoint != 0) {
        handleStream(submit);
        return;
    }
    const auto end = m_device.control(submit, now);
    if (end)
        append(output, UsbIp::submitReply(submit.sequence, *end));
    else if (m_device.device().plugged())
        m_neverAnswered.push_back(submit.sequence);
    else
        m_ended = true; // it went away during the request
}

void UsbIpSession::handleStream(const UsbIp::Submit& submit) {
    if (submit.endpoint == kStreamEndpoint && submit.toHost)
        m_fetches.push_back({submit.sequence, submit.length});
    else
        append(output, UsbIp::submitReply(submit.sequence, {.status = -EPIPE, .length = 0, .data = {}}));
}

void UsbIpSession::handleUnlink(const UsbIp::Unlink& unlink) {
    const auto fetches =
        std::erase_if(m_fetches, [&](const Fetch& fetch) { return fetch.sequence == unlink.victim; });
    const auto others = std::erase(m_neverAnswered, unlink.victim);
    append(output, UsbIp::unlinkReply(unlink.sequence, fetches + others > 0));
}

void UsbIpSession::proceed(Clock::time_point now) {
    while (!m_fetches.empty() && m_device.picture().due() <= now && !m_ended) {
        const Fetch fetch = m_fetches.front();
        m_fetches.pop_front();
        Bytes payload = m_device.picture().nextPayload(fetch.room, now);
        const auto length = static_cast<std::uint32_t>(payload.size());
        append(output, UsbIp::submitReply(fetch.sequence,
                                          {.status = 0, .length = length, .data = std::move(payload)}));
    }
}

std::optional<UsbIpSession::Clock::time_point> UsbIpSession::due() const {
    return m_fetches.empty() ? std::nullopt : std::optional(m_device.picture().due());
}
