#include "ChildProcess.h"

#include "SimulatedHost.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <cstdlib>
#include <sstream>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr auto kJournalVariable = "TAVRO_TEST_JOURNAL"; // in the child: the file descriptor for its journal

[[noreturn]] void runPart(const std::function<void()>& part, int journal) {
    SimulatedHost::instance().journalCopy = journal;
    part();
    std::_Exit(99);
}

[[noreturn]] void becomeChild(int journal, const QString& folder) {
    ::setenv("TMPDIR", folder.toLocal8Bit().constData(), 1); // it ends without tidying up
    ::setenv(kJournalVariable, std::to_string(journal).c_str(), 1);
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    const QByteArray row = QByteArray(QTest::currentTestFunction())
        + (QTest::currentDataTag() ? QByteArray(":") + QTest::currentDataTag() : QByteArray());
    const QByteArray program = QCoreApplication::applicationFilePath().toLocal8Bit();
    ::execl(program.constData(), program.constData(), "-nocrashhandler", row.constData(), nullptr);
    std::_Exit(98);
}

std::string readAll(int file) {
    std::string written;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(file, buffer.data(), buffer.size())) > 0;)
        written.append(buffer.data(), static_cast<std::size_t>(count));
    return written;
}

} // namespace

ChildEnd runInChild(const std::function<void()>& part) {
    if (const char* journal = std::getenv(kJournalVariable)) runPart(part, std::atoi(journal));
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return {};
    const QTemporaryDir folder;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        becomeChild(ends[1], folder.path());
    }
    ::close(ends[1]);
    std::istringstream entries(readAll(ends[0]));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    ChildEnd end;
    end.aborted = WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
    end.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    for (std::string entry; std::getline(entries, entry, '\0');) end.journal.push_back(entry);
    return end;
}
