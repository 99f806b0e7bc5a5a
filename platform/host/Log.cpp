#include "Log.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

void systemLog(const char* format, ...) {
    // On the stack and not cleared, to save time.
    std::array<char, 1024> message;
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(message.data(), message.size(), format, arguments);
    va_end(arguments);
    if (length >= 0)
        deliverLogMessage({message.data(), std::min(static_cast<std::size_t>(length), message.size() - 1)});
}
