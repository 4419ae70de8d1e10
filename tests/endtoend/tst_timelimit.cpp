// The three minutes that quillet is given, for real.
#include "tests/endtoend/programrun.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

class tst_TimeLimit : public QObject
{
    Q_OBJECT

private slots:
    void aQuilletThatNeverEnds();
};

void tst_TimeLimit::aQuilletThatNeverEnds()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("printf early; echo $$ >\"$HOME/pid\"; exec sleep 100000"));
    run.setOsascript(QString());
    run.setScript(QStringLiteral("Quillet.createWordTemplate('', 'Section D', 'x');"));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(240), 0);
    QVERIFY2(clock.elapsed() > 175000 && clock.elapsed() < 230000,
             qPrintable(QString::number(clock.elapsed())));
    QVERIFY(run.waitForOsascript());
    QCOMPARE(sandbox::readFile(run.local("webwidgets/tmptemp.html")),
             QByteArray("PROCESS TIMED OUT"));
    const int pid = sandbox::readFile(run.inHome("pid")).trimmed().toInt();
    QVERIFY(pid > 0);
    QTRY_VERIFY(::kill(pid, 0) != 0);
}

QTEST_MAIN(tst_TimeLimit)
#include "tst_timelimit.moc"
