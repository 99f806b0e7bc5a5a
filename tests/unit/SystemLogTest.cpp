// Owns lines on standard error: one for each message, none if they reach the journal anyway.

#include "Log.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

static int resultOfConnect = 0; // to the system log

// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's --wrap makes the name
extern "C" int __wrap_connect(int /*file*/, const sockaddr* /*address*/, socklen_t /*length*/) {
    return resultOfConnect;
}

TEST(Log, OneLinePerMessageAndNoneIntoTheJournal) {
    testing::internal::CaptureStderr();
    systemLog("%d\nlines\n\n\n", 2);
    struct stat file {};
    ASSERT_EQ(::fstat(STDERR_FILENO, &file), 0);
    const std::string journal = std::to_string(file.st_dev) + ':' + std::to_string(file.st_ino);
    ::setenv("JOURNAL_STREAM", journal.c_str(), 1); // standard error is the journal
    systemLog("in the journal");
    resultOfConnect = -1;
    systemLog("no system log");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "2 lines\nno system log\n");
}
