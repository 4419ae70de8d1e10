// One run of the built program from a copy of its bundle, with a home folder of its own.
#pragma once

#include "tests/support/applicationsandbox.h"
#include "tests/support/loopbackproxy.h"

#include <QProcess>
#include <QRect>

class ProgramRun : public ApplicationSandbox
{
public:
    // The bundle is copied into a folder of the one name; home is a folder of the other name.
    explicit ProgramRun(const QString& appName = QStringLiteral("Vexa Word"),
                        const QString& homeName = QStringLiteral("home"));
    ~ProgramRun() override;

    // Gives the program a page of ours whose script is run once the program's object is there. The
    // script may call report(text), and afterReports(function) for what is to happen when all have
    // arrived.
    void setScript(const QString& script) const;

    // Leaves the shipped pages as they are but for one script more, which may call the same.
    void addToShippedPages(const QString& script) const;

    // Starts the program, by its own name or by another path that leads to it.
    bool start(const QStringList& arguments = {}, const QString& programPath = QString());

    // The same for a user without privileges: root starts it as nobody, who then owns nothing here.
    // What nobody is to write must be given to him before.
    bool startUnprivileged();
    bool giveHomeToTheUnprivileged() const;

    // The same with the home folder on a file system with limits ("size=64k") that only the program
    // sees. False where the system does not let us mount one.
    bool startOnSmallHome(const QString& limits);

    // What the page has reported so far; and waiting until there is as much.
    QStringList reports() const;
    bool waitForReports(int count);

    // Waits until the program has ended; its exit code, or -1 if it crashed or goes on.
    int exitCode(int seconds = 30);
    bool isRunning() const { return program.state() != QProcess::NotRunning; }

    // The visible window with the program's title: its X window number, 0 if there is none; and
    // where it is on the screen.
    int waitForWindow() const;
    QRect windowFrame(int window) const;

    LoopbackProxy net; // http_proxy of the program
    QProcess program;

private:
    QString reportFunctions() const;
};
