// The program on a simulated device. Every request is printed as it crosses the wire, and at the end what the
// device then holds.

#include "ApplicationMain.h"
#include "SimulatedBus.h"
#include "WireText.h"

#include <cstdio>
#include <cstdlib>

namespace {

const char* requestName(std::uint8_t request) {
    switch (request) {
    case 0x01:
        return "SET_CUR";
    case 0x81:
        return "GET_CUR";
    case 0x82:
        return "GET_MIN";
    case 0x83:
        return "GET_MAX";
    default:
        return "unknown";
    }
}

void printRequest(const RecordedRequest& request) {
    std::printf("%s unit %d selector %2d  setup %s  data %s", requestName(request.setup[1]), request.unit(),
                request.selector(), hexText(request.setup).c_str(), hexText(request.data).c_str());
    std::printf(request.result == UsbCode::Success ? "\n" : "  failed: %d\n", request.result);
    (void)std::fflush(stdout); // whoever watches through a pipe sees it at once
}

void printDevice() {
    const SimulatedDevice& device = *SimulatedBus::instance().devices.front();
    std::printf(
        "device holds: bit rate H.264 %d MJPEG %d, HDCP %d, microphone %d, headphone %d, HDMI %d, AUX %d\n",
        device.settings[8] >> 4, device.settings[8] & 15, device.settings[9], device.audio[3],
        device.audio[5], device.audio[1], device.audio[2]);
}

} // namespace

int main(int argc, char** argv) {
    SimulatedBus::instance().devices.front()->onRequest = printRequest;
    (void)std::atexit(printDevice); // the program ends by exit; only an exhausted table refuses
    return applicationMain(argc, argv);
}
