#include "ApplicationMain.h"
#include "Clock.h"

std::time_t hostTime() {
    return std::time(nullptr);
}

void sleepForTimeInterval(double /*seconds*/) {
}

int main(int argc, char** argv) {
    return applicationMain(argc, argv);
}
