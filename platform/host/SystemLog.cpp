#include "host/Log.h"

#include <array>
#include <cstdio>

#include <syslog.h>

void deliverLogMessage(std::string_view message) {
    while (message.ends_with('\n'))
        message.remove_suffix(1);
    std::array<char, 1024> line{};
    message = message.substr(0, line.size() - 1);
    for (std::size_t i = 0; i < message.size(); ++i)
        line[i] = message[i] == '\n' ? ' ' : message[i]; // one message stays one line in the journal
    ::syslog(LOG_NOTICE, "%s", line.data());
    (void)std::fprintf(stderr, "%s\n", line.data()); // nothing is left to tell it to when this fails
}
