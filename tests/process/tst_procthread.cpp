// procThread with real child processes.
#include "process/procthread.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

namespace
{
const QString stillRunning = QStringLiteral("STILL_RUNNING");
const QString failedToStart = QStringLiteral("FAILED_TO_START");

// Polls as the application does, but without an event loop.
QString finalOutput(procThread& runner, int seconds = 20)
{
    for (int pass = 0; pass < seconds; ++pass) {
        const QString output = runner.getOutput();
        if (output != stillRunning)
            return output;
    }
    return QStringLiteral("the child did not end");
}

void runShell(procThread& runner, const QString& script, const QString& tag = QString())
{
    runner.startrun(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), script}, QStringLiteral("/"),
                    tag);
}

bool processLives(const QString& pidText)
{
    return ::kill(static_cast<pid_t>(pidText.trimmed().toInt()), 0) == 0;
}
} // namespace

class tst_ProcThread : public QObject
{
    Q_OBJECT

private slots:
    void init() { procThread::limits = procThread::Limits(); }

    void limitsAreThirtySecondsThreeMinutesAndOneSecond();
    void enumerationsAreRegisteredAsInt();
    void metaObjectDeclaresOneSignalAndTwoSlotsInOrder();
    void standardErrorComesBeforeStandardOutput();
    void repeatedCallsGiveTheSameText();
    void outputIsCutAtTheFirstZeroByte();
    void bytesBecomeLatin1Characters();
    void missingProgramFailsToStart();
    void emptyCommandLineFailsToStart();
    void emptyFirstArgumentMakesTheProgramACommandLine_data();
    void emptyFirstArgumentMakesTheProgramACommandLine();
    void nonEmptyArgumentsArePassedAsTheyAre();
    void workingDirectoryIsTheChilds();
    void outputBeforeTheStartDoesNotCrash();
    void stopBeforeTheStartDoesNotCrash();
    void aRunningChildIsStillRunningForOnePoll();
    void childOutlivingTheFinishLimitIsStillSeenToEnd();
    void childOutlivingTheFinishLimitCanBeKilled();
    void stopWhileTheThreadWaits();
    void stopAfterTheEndIsHarmless();
    void aKilledChildLeavesItsText();
    void aFloodOfOutputArrivesWhole();
    void aGrandchildHoldingThePipesDoesNotDelayTheEnd();
    void noSignalWithoutATag();
    void oneResultAfterANormalEndWithATag();
    void failedStartWithATagReportsTheError();
    void taggedRunGivesStandardErrorToThePoller();
};

void tst_ProcThread::limitsAreThirtySecondsThreeMinutesAndOneSecond()
{
    QCOMPARE(procThread::limits.start, 30000);
    QCOMPARE(procThread::limits.finish, 180000);
    QCOMPARE(procThread::limits.poll, 1000);
}

void tst_ProcThread::enumerationsAreRegisteredAsInt()
{
    procThread first(nullptr);
    procThread second(nullptr); // a repeated registration is harmless
    QCOMPARE(QMetaType::type("QProcess::ExitStatus"), int(QMetaType::Int));
    QCOMPARE(QMetaType::type("QProcess::ProcessError"), int(QMetaType::Int));
}

void tst_ProcThread::metaObjectDeclaresOneSignalAndTwoSlotsInOrder()
{
    const QMetaObject& meta = procThread::staticMetaObject;
    QStringList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        own << QString::fromLatin1(meta.method(i).methodSignature());
    QCOMPARE(own, QStringList({QStringLiteral("procResult(QString,QString)"),
                               QStringLiteral("newProcFinished(int,QProcess::ExitStatus)"),
                               QStringLiteral("newProcError(QProcess::ProcessError)")}));
}

void tst_ProcThread::standardErrorComesBeforeStandardOutput()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("printf done; printf warning >&2"));
    QCOMPARE(finalOutput(runner), QStringLiteral("warningdone"));
}

void tst_ProcThread::repeatedCallsGiveTheSameText()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("printf done; printf warning >&2"));
    QCOMPARE(finalOutput(runner), QStringLiteral("warningdone"));
    QCOMPARE(runner.getOutput(), QStringLiteral("warningdone"));
    QCOMPARE(runner.getOutput(), QStringLiteral("warningdone"));
}

void tst_ProcThread::outputIsCutAtTheFirstZeroByte()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("printf 'err\\0gone' >&2; printf 'out\\0gone'"));
    QCOMPARE(finalOutput(runner), QStringLiteral("errout"));
}

void tst_ProcThread::bytesBecomeLatin1Characters()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("printf '\\303\\251 \\200\\377'"));
    const QString expected =
        QString(QChar(0xC3)) + QChar(0xA9) + QLatin1Char(' ') + QChar(0x80) + QChar(0xFF);
    QCOMPARE(finalOutput(runner), expected);
}

void tst_ProcThread::missingProgramFailsToStart()
{
    procThread byPath(nullptr);
    byPath.startrun(QStringLiteral("/no/such/program"), {QStringLiteral("x")}, QStringLiteral("/"),
                    QString());
    QCOMPARE(finalOutput(byPath), failedToStart);

    procThread byCommandLine(nullptr);
    byCommandLine.startrun(QStringLiteral("\"/no/such/program\" -x"), {QString()},
                           QStringLiteral("/"), QString());
    QCOMPARE(finalOutput(byCommandLine), failedToStart);
    QCOMPARE(byCommandLine.getOutput(), failedToStart);
}

void tst_ProcThread::emptyCommandLineFailsToStart()
{
    procThread runner(nullptr);
    runner.startrun(QString(), {QString()}, QStringLiteral("/"), QString());
    QCOMPARE(finalOutput(runner), failedToStart);
}

void tst_ProcThread::emptyFirstArgumentMakesTheProgramACommandLine_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("seen");
    QTest::newRow("two words, one quoted") << "-x \"a b\""
                                           << "<-x><a b>";
    QTest::newRow("an empty quoted word vanishes") << "-x \"\""
                                                   << "<-x>";
    QTest::newRow("a tripled quote is a quote") << "\"\"\"a\"\"\" b"
                                                << "<\"a\"><b>";
    QTest::newRow("single quotes mean nothing") << "'a b'"
                                                << "<'a><b'>";
    QTest::newRow("a dollar sign means nothing") << "$HOME;ls"
                                                 << "<$HOME;ls>";
}

void tst_ProcThread::emptyFirstArgumentMakesTheProgramACommandLine()
{
    QFETCH(QString, words);
    QFETCH(QString, seen);
    QTemporaryDir folder;
    QFile tool(folder.filePath(QStringLiteral("a tool")));
    QVERIFY(tool.open(QIODevice::WriteOnly));
    tool.write("#!/bin/sh\nfor word; do printf '<%s>' \"$word\"; done\n");
    tool.close();
    QVERIFY(tool.setPermissions(QFile::ReadOwner | QFile::ExeOwner));

    procThread runner(nullptr);
    runner.startrun(QLatin1Char('"') + tool.fileName() + QStringLiteral("\" ") + words, {QString()},
                    folder.path(), QString());
    QCOMPARE(finalOutput(runner), seen);
}

void tst_ProcThread::nonEmptyArgumentsArePassedAsTheyAre()
{
    procThread runner(nullptr);
    runner.startrun(QStringLiteral("/bin/echo"), {QStringLiteral("a  \"b\""), QString()},
                    QStringLiteral("/"), QString());
    QCOMPARE(finalOutput(runner), QStringLiteral("a  \"b\" \n"));
}

void tst_ProcThread::workingDirectoryIsTheChilds()
{
    QTemporaryDir folder;
    procThread runner(nullptr);
    runner.startrun(QStringLiteral("/bin/pwd"), {QStringLiteral("-P")}, folder.path(), QString());
    QCOMPARE(finalOutput(runner).trimmed(), QFileInfo(folder.path()).canonicalFilePath());
}

void tst_ProcThread::outputBeforeTheStartDoesNotCrash()
{
    procThread runner(nullptr);
    QCOMPARE(runner.getOutput(), stillRunning);
    runShell(runner, QStringLiteral("printf done"));
    QCOMPARE(finalOutput(runner), QStringLiteral("done"));
}

void tst_ProcThread::stopBeforeTheStartDoesNotCrash()
{
    procThread runner(nullptr);
    runner.stoprun();
    runShell(runner, QStringLiteral("printf done"));
    QCOMPARE(finalOutput(runner), QStringLiteral("done"));
}

void tst_ProcThread::aRunningChildIsStillRunningForOnePoll()
{
    procThread::limits.poll = 50;
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("exec sleep 60"));
    QCOMPARE(runner.getOutput(), stillRunning);
    QCOMPARE(runner.getOutput(), stillRunning);
    runner.stoprun();
    QVERIFY(runner.wait(10000));
    QCOMPARE(runner.getOutput(), QString());
}

void tst_ProcThread::childOutlivingTheFinishLimitIsStillSeenToEnd()
{
    procThread::limits.finish = 100;
    QTemporaryDir folder;
    const QString release = folder.filePath(QStringLiteral("release"));
    procThread runner(nullptr);
    runShell(runner,
             QStringLiteral("printf early; while [ ! -e '%1' ]; do sleep 0.05; done; printf late")
                 .arg(release));
    QVERIFY(runner.wait(10000)); // the thread has given up
    QCOMPARE(runner.getOutput(), stillRunning);
    QFile releaseFile(release);
    QVERIFY(releaseFile.open(QIODevice::WriteOnly));
    QString output;
    QTRY_VERIFY_WITH_TIMEOUT((output = runner.getOutput()) != stillRunning, 10000);
    QCOMPARE(output, QStringLiteral("earlylate"));
}

void tst_ProcThread::childOutlivingTheFinishLimitCanBeKilled()
{
    procThread::limits.finish = 100;
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("printf \"$$\"; exec sleep 60"));
    QVERIFY(runner.wait(10000));
    QCOMPARE(runner.getOutput(), stillRunning);
    runner.stoprun();
    QString pid;
    QTRY_VERIFY_WITH_TIMEOUT((pid = runner.getOutput()) != stillRunning, 10000);
    QVERIFY(!pid.isEmpty());
    QVERIFY(!processLives(pid));
}

void tst_ProcThread::stopWhileTheThreadWaits()
{
    procThread::limits.poll = 50;
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("exec sleep 60"));
    QCOMPARE(runner.getOutput(), stillRunning);
    runner.stoprun();
    QTRY_VERIFY_WITH_TIMEOUT(runner.getOutput() != stillRunning, 10000);
}

void tst_ProcThread::stopAfterTheEndIsHarmless()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("printf done"));
    QCOMPARE(finalOutput(runner), QStringLiteral("done"));
    runner.stoprun();
    QCOMPARE(runner.getOutput(), QStringLiteral("done"));
}

void tst_ProcThread::aKilledChildLeavesItsText()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("printf half; kill -KILL $$"));
    QCOMPARE(finalOutput(runner), QStringLiteral("half"));
}

void tst_ProcThread::aFloodOfOutputArrivesWhole()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("head -c 20000000 /dev/zero | tr '\\0' x; "
                                    "head -c 3000000 /dev/zero | tr '\\0' e >&2"));
    const QString output = finalOutput(runner);
    QCOMPARE(output.size(), 23000000);
    QCOMPARE(output.count(QLatin1Char('e')), 3000000);
    QVERIFY(output.endsWith(QLatin1Char('x')));
}

void tst_ProcThread::aGrandchildHoldingThePipesDoesNotDelayTheEnd()
{
    procThread runner(nullptr);
    runShell(runner, QStringLiteral("sleep 60 & printf \"$!\""));
    const QString pid = finalOutput(runner, 10);
    QVERIFY(processLives(pid));
    ::kill(static_cast<pid_t>(pid.toInt()), SIGKILL);
}

void tst_ProcThread::noSignalWithoutATag()
{
    procThread runner(nullptr);
    QSignalSpy results(&runner, SIGNAL(procResult(QString, QString)));
    runShell(runner, QStringLiteral("printf done"));
    QCOMPARE(finalOutput(runner), QStringLiteral("done"));
    QCoreApplication::processEvents();
    QCOMPARE(results.count(), 0);
}

void tst_ProcThread::oneResultAfterANormalEndWithATag()
{
    procThread runner(nullptr);
    QSignalSpy results(&runner, SIGNAL(procResult(QString, QString)));
    runShell(runner, QStringLiteral("printf done; printf warning >&2"), QStringLiteral("tag 1"));
    QVERIFY(results.wait(10000));
    QCOMPARE(results.at(0), QVariantList({QStringLiteral("done"), QStringLiteral("tag 1")}));
    QVERIFY(!results.wait(200));
    QCOMPARE(results.count(), 1);
}

void tst_ProcThread::failedStartWithATagReportsTheError()
{
    procThread runner(nullptr);
    QSignalSpy results(&runner, SIGNAL(procResult(QString, QString)));
    runner.startrun(QStringLiteral("/no/such/program"), {QStringLiteral("x")}, QStringLiteral("/"),
                    QStringLiteral("tag 2"));
    QVERIFY(results.wait(10000));
    QCOMPARE(results.count(), 1);
    QCOMPARE(results.at(0), QVariantList({QString(), QStringLiteral("tag 2")}));
    QCOMPARE(runner.getOutput(), failedToStart);
}

void tst_ProcThread::taggedRunGivesStandardErrorToThePoller()
{
    procThread runner(nullptr);
    QSignalSpy results(&runner, SIGNAL(procResult(QString, QString)));
    runShell(runner, QStringLiteral("printf done; printf warning >&2"), QStringLiteral("tag 3"));
    QVERIFY(results.wait(10000));
    // procResult has taken the standard output.
    QCOMPARE(runner.getOutput(), QStringLiteral("warning"));
}

QTEST_GUILESS_MAIN(tst_ProcThread)
#include "tst_procthread.moc"
