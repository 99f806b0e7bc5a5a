#pragma once

#include "CaptureDescriptors.h"
#include "CaptureFrames.h"
#include "SimulatedDevice.h"
#include "UsbIpMessages.h"

#include <optional>

/// Puts the simulated device behind a whole USB device: descriptors, standard requests, and a video
/// stream. Requests to the units go to the simulated device.
class VirtualCaptureDevice {
public:
    explicit VirtualCaptureDevice(SimulatedDevice& device) : m_device(device) {}

    [[nodiscard]] CaptureIdentity identity() const {
        return {m_device.vendorID, m_device.productID, m_device.videoControlInterface.value_or(0)};
    }
    [[nodiscard]] SimulatedDevice& device() { return m_device; }
    [[nodiscard]] CaptureFrames& frames() { return m_frames; }

    /// Plugged in: the host knows nothing of it yet.
    void reset(CaptureFrames::Clock::time_point now);
    /// How a transfer on the control pipe ends, absent if the device never answers it.
    [[nodiscard]] std::optional<UsbIp::TransferEnd> control(
        const UsbIp::Submit& submit, CaptureFrames::Clock::time_point now);

private:
    struct Setup;

    [[nodiscard]] std::optional<UsbIp::TransferEnd> unitRequest(const Setup& setup, const Bytes& data);
    [[nodiscard]] UsbIp::TransferEnd standardRequest(const Setup& setup) const;
    [[nodiscard]] UsbIp::TransferEnd descriptor(const Setup& setup) const;
    [[nodiscard]] UsbIp::TransferEnd streamRequest(
        const Setup& setup, const Bytes& data, CaptureFrames::Clock::time_point now);
    [[nodiscard]] Bytes streamParameters() const;

    SimulatedDevice& m_device;
    CaptureFrames m_frames;
    std::uint32_t m_frameInterval = kFrameIntervals[0];
};
