// Surroundings for tests of the application: a home folder, and what lies in the program's own
// folder.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// While it lives, HOME is a new folder. The program's folder holds what a test puts there:
// stand-ins for quillet and osascript write down how they were called.
class ApplicationSandbox
{
public:
    // For tests that run the controller in their own process: the program's folder is the test
    // program's, which must be its alone. It gets resources with a bare page, the set-up marker and
    // two stand-ins, and is cleared again at the end.
    ApplicationSandbox();
    virtual ~ApplicationSandbox();

    QString home() const { return homePath; }
    QString inHome(const QString& path) const { return homePath + QLatin1Char('/') + path; }
    QString inApp(const QString& path) const { return appPath + QLatin1Char('/') + path; }

    // Where the application keeps its copy of the resources, with a path in it.
    QString local(const QString& path = QString()) const;

    // The main page: body is HTML; the functions that the application calls collect their arguments
    // in setups and responses.
    void setPage(const QString& body) const;

    // What the stand-in does after having written down its call; shell text.
    void setQuillet(const QString& script) const;
    void setOsascript(const QString& script) const;

    // The stand-in's calls so far, each as "FOLDER <ARG> <ARG> …"; empty without any.
    QStringList quilletCalls() const { return calls(QStringLiteral("quillet.calls")); }
    QStringList osascriptCalls() const { return calls(QStringLiteral("osascript.calls")); }

    // Waits until osascript has been called that often, and returns whether it has.
    bool waitForOsascript(int count = 1) const;

    // Makes Word's container folder and returns its path.
    QString makeWordContainer() const;

protected:
    // Program and home folder are new folders of these names; nothing is in them.
    ApplicationSandbox(const QString& appName, const QString& homeName);

private:
    void enterHome(const QString& name);
    QStringList calls(const QString& record) const;

    QTemporaryDir scratch;
    QString appPath;
    QString homePath;
    QByteArray previousHome;
};

namespace sandbox
{
bool writeFile(const QString& path, const QByteArray& content); // makes missing folders
QByteArray readFile(const QString& path);                       // empty when it is missing

// The launch script that the program in appFolder writes for an HTML file, as it is stored.
QByteArray launchScript(const QString& appFolder, const QString& htmlPath);
} // namespace sandbox
