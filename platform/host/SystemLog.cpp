#include "host/Log.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include <syslog.h>

void deliverLogMessage(std::string_view message) {
    while (message.ends_with('\n'))
        message.remove_suffix(1);
    std::string line(message);
    std::ranges::replace(line, '\n', ' '); // one message stays one line in the journal
    ::syslog(LOG_NOTICE, "%s", line.c_str());
    (void)std::fprintf(stderr, "%s\n", line.c_str()); // nothing is left to tell it to when this fails
}
