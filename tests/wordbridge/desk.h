// A home folder with what the program leaves in it when it starts osascript, and the run itself.
#pragma once

#include "wordbridge/package.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

// What osascript says when LibreOffice takes its time. Whether it does is the machine's affair.
extern const char* const announcement;

struct RunResult {
    int exitCode = -1;
    QString output; // standard output
    QString errors; // standard error, but for the announcement
    bool wasAnnounced = false;

    // The one line of standard output: the path of the manuscript.
    QString document() const { return output.trimmed(); }
};

class Desk
{
public:
    Desk();

    // The home folder. Its name holds a blank and letters beyond ASCII.
    QString home() const { return m_folder.path() + QStringLiteral("/Ana Łoś é"); }
    QString resources() const;
    QString scriptPath() const { return resources() + QStringLiteral("/macscrlaunch"); }
    QString metadataPath() const
    {
        return resources() + QStringLiteral("/publauthors/macstart.xml");
    }

    // Write the three files as the program does.
    void writeArticle(const QByteArray& html);
    void writeMetadata(const QString& xml);
    void writeScript(const QString& templatePath, const QString& articlePath);

    // Runs the bundle's osascript on the script; without a display unless the environment names
    // one.
    RunResult run();
    RunResult run(const QStringList& arguments);

    // The same without waiting for the end.
    std::unique_ptr<QProcess> start(const QStringList& arguments) const;

    // Of the runs. A profile of LibreOffice in the cache is shared by all desks of a test program.
    QProcessEnvironment environment;

    QString articlePath() const { return resources() + QStringLiteral("/webwidgets/tmptemp.html"); }

private:
    QTemporaryDir m_folder;
};

// A test that needs LibreOffice; skipped where it is not installed.
class OfficeTest : public testing::Test
{
protected:
    void SetUp() override;

    Desk desk;
};

// Waits until a condition holds, letting events pass. False if it does not hold within a minute.
bool isWaitedFor(const std::function<bool()>& condition);

// Text encoded as the program encodes the files for Word: twice.
QByteArray encodedTwice(const QString& text);

// A part of a Word document as text.
QString textOf(const wordbridge::Package& package, const char* part);
