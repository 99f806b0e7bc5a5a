#include "Log.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

namespace {

/// Whether standard error is the journal: systemd.exec(5), JOURNAL_STREAM.
bool standardErrorIsJournal() {
    const char* journal = std::getenv("JOURNAL_STREAM");
    struct stat file {};
    return journal != nullptr && ::fstat(STDERR_FILENO, &file) == 0
        && std::to_string(file.st_dev) + ':' + std::to_string(file.st_ino) == journal;
}

} // namespace

void deliverLogMessage(std::string_view message) {
    while (message.ends_with('\n')) message.remove_suffix(1);
    std::array<char, 1024> line; // not cleared, as in systemLog
    message = message.substr(0, line.size() - 1);
    // One message stays one line in the journal.
    *std::ranges::replace_copy(message, line.begin(), '\n', ' ').out = '\0';
    ::syslog(LOG_NOTICE, "%s", line.data());
    // Of two entries in the journal, only that of syslog has the program's name and the priority.
    if (!standardErrorIsJournal())
        (void)std::fprintf(stderr, "%s\n", line.data()); // a failure can't be reported anywhere
}
