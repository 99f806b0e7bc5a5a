#include "ChildProcess.h"

#include "TestHost.h"

#include <QFile>
#include <QThreadPool>

#include <array>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Newer Qt then paints without threads, which a fork does not copy.
static const bool kPaintsWithoutThreads = qputenv("QT_NO_GUI_THREADPOOL", "1");

ChildEnd runInChild(const std::function<void()>& part) {
    QThreadPool::globalInstance()->waitForDone(); // older Qt's threads
    std::array<int, 2> pipe{};
    const pid_t child = ::pipe(pipe.data()) == 0 ? ::fork() : -1;
    if (child == 0) {
        (void)std::signal(SIGABRT, SIG_DFL); // Qt Test's handler would report a crash
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::alarm(60);
        ::on_exit([](int status, void*) { ::_exit(status); }, nullptr); // without a search for leaks
        TestHost::instance().journalCopy = pipe[1];
        part();
        ::_exit(99);
    }
    ::close(pipe[1]);
    QFile journal;
    (void)journal.open(pipe[0], QIODevice::ReadOnly, QFile::AutoCloseHandle);
    QByteArrayList entries = journal.readAll().split('\0'); // until the child ends
    entries.removeLast();
    int status = 0;
    const bool ended = ::waitpid(child, &status, 0) == child;
    return {ended && WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT,
        ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1, {entries.begin(), entries.end()}};
}
