#include "host/Log.h"

#include <cstdarg>
#include <cstdio>
#include <string>

void systemLog(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length >= 0) {
        std::string message(static_cast<std::size_t>(length), '\0');
        (void)std::vsnprintf(message.data(), message.size() + 1, format, arguments); // measured above
        deliverLogMessage(message);
    }
    va_end(arguments);
}
