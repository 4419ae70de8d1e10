#include "tests/support/eachcasealone.h"

#include <QProcess>
#include <QStringList>
#include <QTextStream>

#include <cstdio>

namespace
{
// The cases as the program lists them: "class function" or "class function row with blanks".
QStringList casesOf(const QString& program)
{
    QProcess lister;
    lister.start(program, {QStringLiteral("-datatags")});
    lister.waitForFinished();
    QStringList cases;
    const QStringList lines = QString::fromUtf8(lister.readAllStandardOutput())
                                  .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const QString function = line.section(QLatin1Char(' '), 1, 1);
        const QString row = line.section(QLatin1Char(' '), 2);
        cases << (row.isEmpty() ? function : function + QLatin1Char(':') + row);
    }
    return cases;
}
} // namespace

int runEachCaseAlone(const QString& program)
{
    const QStringList cases = casesOf(program);
    QTextStream out(stdout);
    int failed = cases.isEmpty() ? 1 : 0;
    for (const QString& name : cases) {
        QProcess test;
        test.setProcessChannelMode(QProcess::MergedChannels);
        test.start(program, {name});
        const bool ended = test.waitForFinished(300000);
        const QString output = QString::fromUtf8(test.readAll());
        const bool passed =
            ended && test.exitStatus() == QProcess::NormalExit && test.exitCode() == 0;
        const bool skipped = output.contains(QLatin1String("\nSKIP"));
        out << (passed ? (skipped ? "skipped " : "passed  ") : "FAILED  ") << name << '\n';
        if (!passed || skipped)
            out << output;
        out.flush();
        failed += passed ? 0 : 1;
    }
    out << cases.size() << " cases, " << failed << " failed\n";
    return failed;
}
