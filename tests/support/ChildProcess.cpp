#include "ChildProcess.h"

#include "TestHost.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

#include <csignal>

namespace {

constexpr auto kJournalVariable = "TAVRO_TEST_JOURNAL"; // in the child: the file for its journal

[[noreturn]] void runPart(const std::function<void()>& part) {
    QFile journal(qEnvironmentVariable(kJournalVariable));
    TestHost::instance().journalCopy = journal.open(QIODevice::WriteOnly) ? journal.handle() : -1;
    part();
    std::_Exit(99);
}

} // namespace

ChildEnd runInChild(const std::function<void()>& part) {
    if (qEnvironmentVariableIsSet(kJournalVariable)) runPart(part);
    const QTemporaryDir folder;
    QFile journal(folder.filePath("journal"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(kJournalVariable, journal.fileName());
    environment.insert("TMPDIR", folder.path()); // it ends without tidying up
    QString row = QString::fromUtf8(QTest::currentTestFunction());
    if (QTest::currentDataTag() != nullptr) row += ':' + QString::fromUtf8(QTest::currentDataTag());
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setStandardOutputFile(QProcess::nullDevice());
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {"-nocrashhandler", row});
    child.waitForFinished(-1);
    ChildEnd end;
    end.aborted = child.exitStatus() == QProcess::CrashExit && child.exitCode() == SIGABRT;
    end.status = child.exitStatus() == QProcess::NormalExit ? child.exitCode() : -1;
    if (journal.open(QIODevice::ReadOnly)) {
        const QByteArrayList entries = journal.readAll().split('\0');
        for (const QByteArray& entry : entries.first(entries.size() - 1)) end.journal.push_back(entry.toStdString());
    }
    return end;
}
