// Surroundings for tests of the application: a home folder, and what lies in the program's own
// folder.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// Points HOME at a new folder and puts into the test program's own folder (which must be its alone)
// what the application expects beside itself: resources with a bare page, the set-up marker, and
// stand-ins for quillet and osascript that write down how they were called. Everything is removed
// again at the end.
class ApplicationSandbox
{
public:
    ApplicationSandbox();
    ~ApplicationSandbox();

    QString home() const { return homeFolder.path(); }
    QString inHome(const QString& path) const { return homeFolder.filePath(path); }
    static QString inApp(const QString& path); // in the program's own folder

    // Where the application keeps its copy of the resources, with a path in it.
    QString local(const QString& path = QString()) const;

    // The main page: body is HTML; the functions that the application calls count their calls in
    // setups and responses.
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

private:
    QStringList calls(const QString& record) const;

    QTemporaryDir homeFolder;
    QByteArray previousHome;
};

namespace sandbox
{
bool writeFile(const QString& path, const QByteArray& content); // makes missing folders
QByteArray readFile(const QString& path);                       // empty when it is missing
} // namespace sandbox
