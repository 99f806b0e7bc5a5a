#include "Clock.h"

#include <chrono>
#include <thread>

std::time_t hostTime() {
    return std::time(nullptr);
}

void sleepForTimeInterval(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}
