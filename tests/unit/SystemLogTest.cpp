// Owns lines on standard error, and programs without one.

#include "FatalStop.h"
#include "Log.h"
#include "StandardStreams.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

static int resultOfConnect = 0; // to the system log

// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's --wrap makes the name
extern "C" int __wrap_connect(int /*file*/, const sockaddr* /*address*/, socklen_t /*length*/) {
    return resultOfConnect;
}

TEST(Log, OneLinePerMessageAndNoneIntoTheJournal) {
    const std::string longest(1023, 'x');
    testing::internal::CaptureStderr();
    deliverLogMessage(longest + '\n');
    systemLog("two\nlines\n\n");
    systemLog("%syz", longest.c_str());
    systemLog("%ls", L"\u5668"); // no text in the locale C
    struct stat file {};
    ASSERT_EQ(::fstat(STDERR_FILENO, &file), 0);
    const std::string journal = std::to_string(file.st_dev) + ':' + std::to_string(file.st_ino);
    ::setenv("JOURNAL_STREAM", journal.c_str(), 1); // standard error is the journal
    deliverLogMessage("in the journal");
    resultOfConnect = -1;
    deliverLogMessage("no system log");
    resultOfConnect = 0;
    ::setenv("JOURNAL_STREAM", (journal + '0').c_str(), 1); // it was, before a redirection
    deliverLogMessage("elsewhere");
    const std::string expected = longest + "\ntwo lines\n" + longest + "\nno system log\nelsewhere\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
}

TEST(Log, AFatalStopGivesItsReason) {
    EXPECT_DEATH(fatalStop("%d does not fit", 256), "^Fatal: 256 does not fit\n$");
}

TEST(StandardStreams, NoFileTakesThePlaceOfAClosedStandardStream) {
    const auto firstFile = [] {
        for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) (void)::close(stream);
        openStandardStreams();
        std::_Exit(::open("/dev/zero", O_RDONLY) > STDERR_FILENO ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    EXPECT_EXIT(firstFile(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}
