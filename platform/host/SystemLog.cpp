#include "Log.h"
#include "UniqueFd.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
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

/// `syslog` does not report a failure. In a sandbox there may be no system log.
bool systemLogCanBeReached() {
    const UniqueFd probe(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address{AF_UNIX, _PATH_LOG};
    return ::connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

} // namespace

void deliverLogMessage(std::string_view message) {
    while (message.ends_with('\n')) message.remove_suffix(1);
    std::string line(message);
    std::ranges::replace(line, '\n', ' '); // one message stays one line in the journal
    ::syslog(LOG_NOTICE, "%s", line.c_str());
    // Of two entries in the journal, only that of syslog has the program's name and the priority.
    if (!standardErrorIsJournal() || !systemLogCanBeReached())
        (void)std::fprintf(stderr, "%s\n", line.c_str()); // a failure can't be reported anywhere
}
