// The program on a simulated device. Prints every request, and at the end the device's settings.

#include "ApplicationMain.h"
#include "SimulatedBus.h"
#include "Uvc.h"
#include "WireText.h"

#include <cstdio>
#include <cstdlib>

namespace {

const char* requestName(std::uint8_t request) {
    switch (static_cast<UVCRequest>(request)) {
    case UVCRequest::SET_CUR: return "SET_CUR";
    case UVCRequest::GET_CUR: return "GET_CUR";
    case UVCRequest::GET_MIN: return "GET_MIN";
    case UVCRequest::GET_MAX: return "GET_MAX";
    default: return "unknown";
    }
}

void printRequest(const RecordedRequest& request) {
    std::printf("%s unit %d selector %2d  setup %s  data %s", requestName(request.setup[1]), request.unit(),
        request.selector(), hexText(request.setup).c_str(), hexText(request.data).c_str());
    std::printf(request.result == UsbCode::Success ? "\n" : "  failed: %d\n", request.result);
    (void)std::fflush(stdout); // for a reader of a pipe
}

void printDevice() {
    std::printf("device holds: %s\n", settingsText(*SimulatedBus::instance().devices.front()).c_str());
}

} // namespace

int main(int argc, char** argv) {
    SimulatedBus::instance().devices.front()->onRequest = printRequest;
    (void)std::atexit(printDevice); // fails only if its table is full
    return applicationMain(argc, argv);
}
