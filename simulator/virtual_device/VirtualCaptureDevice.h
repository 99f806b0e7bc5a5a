#pragma once

#include "CaptureDescriptors.h"
#include "CaptureFrames.h"
#include "SimulatedDevice.h"
#include "UsbIpMessages.h"

#include <optional>

/// A whole USB device: descriptors, standard requests and a video stream. It passes requests to the units to the
/// simulated device.
class VirtualCaptureDevice {
public:
    explicit VirtualCaptureDevice(SimulatedDevice& device) : m_device(device) {}

    [[nodiscard]] CaptureIdentity identity() const {
        return {m_device.vendorID, m_device.productID, m_device.videoControlInterface.value_or(0)};
    }
    [[nodiscard]] SimulatedDevice& device() { return m_device; }
    [[nodiscard]] CaptureFrames& frames() { return m_frames; }

    /// Resets the stream, as after plugging in.
    void reset(CaptureFrames::Clock::time_point now);
    /// The result of a transfer on the control pipe, absent if the device never answers it.
    [[nodiscard]] std::optional<UsbIp::TransferEnd> control(
        const UsbIp::Submit& submit, CaptureFrames::Clock::time_point now);

private:
    [[nodiscard]] std::optional<UsbIp::TransferEnd> unitRequest(const UsbControlRequest& setup, const Bytes& data);
    [[nodiscard]] UsbIp::TransferEnd standardRequest(const UsbControlRequest& setup) const;
    [[nodiscard]] UsbIp::TransferEnd descriptor(const UsbControlRequest& setup) const;
    [[nodiscard]] UsbIp::TransferEnd streamRequest(
        const UsbControlRequest& setup, const Bytes& data, CaptureFrames::Clock::time_point now);
    [[nodiscard]] Bytes streamParameters() const;

    SimulatedDevice& m_device;
    CaptureFrames m_frames;
    std::uint32_t m_frameInterval = kFrameIntervals[0];
};
