#include "FatalStop.h"

#include "Log.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void fatalStop(const char* format, ...) {
    std::array<char, 512> reason{}; // a truncated reason is better than an allocation before an abort
    std::va_list arguments;
    va_start(arguments, format);
    (void)std::vsnprintf(reason.data(), reason.size(), format, arguments);
    va_end(arguments);
    systemLog("Fatal: %s", reason.data());
    std::abort();
}
