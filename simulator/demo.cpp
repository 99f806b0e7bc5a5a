// The program on a simulated device. Prints every request, and at the end the device's settings.

#include "ApplicationMain.h"
#include "SimulatedBus.h"
#include "WireText.h"

#include <cstdio>
#include <cstdlib>

namespace {

void printRequest(const RecordedRequest& request) {
    std::puts(wireText(request).c_str());
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
