#include "ChildProcess.h"

#include "TestHost.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QTemporaryFile>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <cstdlib>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Newer Qt then paints without threads: a fork does not copy them.
static const bool kPaintsWithoutThreads = qputenv("QT_NO_GUI_THREADPOOL", "1");

/// A test fails if the program ends outside of a child.
static const int kEndsAreFailures = std::atexit([] {
    if (QTest::currentTestFunction()) ::_exit(EXIT_FAILURE);
});

ChildEnd runInChild(const std::function<void()>& part) {
    QThreadPool::globalInstance()->waitForDone(); // older Qt's threads
    // A finished thread can still hold a lock for a moment, on which the child would block forever. This thread and Qt
    // Test's watchdog remain.
    const QDir threads("/proc/self/task");
    const QDeadlineTimer limit(1000);
    while (!limit.hasExpired() && threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() > 2) QThread::msleep(1);
    QTemporaryFile journal;
    (void)journal.open();
    const pid_t child = ::fork();
    if (child == 0) {
        (void)std::signal(SIGABRT, SIG_DFL); // Qt Test's handler would report a crash
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::alarm(60);
        ::on_exit([](int status, void*) { ::_exit(status); }, nullptr); // without a search for leaks
        TestHost::instance().journalCopy = journal.handle();
        part();
        ::_exit(99);
    }
    int status = 0;
    const bool ended = ::waitpid(child, &status, 0) > 0;
    (void)journal.seek(0);
    QByteArrayList entries = journal.readAll().split('\0');
    entries.removeLast();
    return {ended && WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT,
        ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1, {entries.begin(), entries.end()}};
}
