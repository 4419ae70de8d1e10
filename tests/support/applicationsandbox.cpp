#include "tests/support/applicationsandbox.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace
{
const QStringList ownEntries = {QStringLiteral("resources"), QStringLiteral("setup.txt"),
                                QStringLiteral("quillet"), QStringLiteral("osascript"),
                                QStringLiteral("VexaSetup.app")};

void remove(const QString& path)
{
    if (QFileInfo(path).isDir())
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
}

// The call is written in one piece, so that calls at the same time do not mix.
void writeStandIn(const QString& path, const QString& record, const QString& script)
{
    const QString text = QStringLiteral("#!/bin/sh\n"
                                        "call=$PWD; for word; do call=\"$call <$word>\"; done\n"
                                        "printf '%s\\n' \"$call\" >>\"$HOME/") +
                         record + QStringLiteral("\"\n") + script + QLatin1Char('\n');
    QFile::remove(path);
    sandbox::writeFile(path, text.toUtf8());
    QFile::setPermissions(path, QFile::Permissions(0x7755)); // anybody may run it
}

// Written as UTF-8 bytes that are characters, which are written in UTF-8 again.
QByteArray encodedTwice(const QString& text)
{
    return QString::fromLatin1(text.toUtf8()).toUtf8();
}
} // namespace

namespace sandbox
{
bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(content) == content.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray launchScript(const QString& appFolder, const QString& htmlPath)
{
    return "tell application \"System Events\"\nactivate\n"
           "if not (UI elements enabled) then set (UI elements enabled) to true\n\tend tell\n"
           "tell application \"Microsoft Word\"\n    activate\n"
           "    create new document attached template (POSIX file \"" +
           encodedTwice(appFolder) +
           "/vexainkworks_wm.dotm\") as string\n    delay 1\n"
           "    insert file at text object of selection file name (POSIX file \"" +
           encodedTwice(htmlPath) +
           "\") as string\n"
           "    run VB macro macro name \"Vexa_authors.VexaM_setInitialXmlData\"\nend tell\n";
}
} // namespace sandbox

ApplicationSandbox::ApplicationSandbox() : appPath(QCoreApplication::applicationDirPath())
{
    enterHome(QStringLiteral("home"));
    for (const QString& entry : ownEntries)
        remove(inApp(entry));
    sandbox::writeFile(inApp(QStringLiteral("setup.txt")), "done\n");
    sandbox::writeFile(inApp(QStringLiteral("resources/macscrlaunch")), "as installed\n");
    sandbox::writeFile(inApp(QStringLiteral("resources/Vexa.scpt")), "script\n");
    sandbox::writeFile(inApp(QStringLiteral("resources/publauthors/macstart.xml")),
                       "as installed\n");
    setPage(QStringLiteral("<p>page</p>"));
    setQuillet(QStringLiteral("printf '<p>article</p>'"));
    setOsascript(QString());
}

ApplicationSandbox::ApplicationSandbox(const QString& appName, const QString& homeName)
    : appPath(scratch.filePath(appName))
{
    QDir().mkpath(appPath);
    enterHome(homeName);
}

ApplicationSandbox::~ApplicationSandbox()
{
    for (const QString& entry : ownEntries)
        remove(inApp(entry));
    qputenv("HOME", previousHome);
}

void ApplicationSandbox::enterHome(const QString& name)
{
    homePath = scratch.filePath(name);
    QDir().mkpath(homePath);
    previousHome = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(homePath));
}

QString ApplicationSandbox::local(const QString& path) const
{
    return home() + QStringLiteral("/Library/Application Support/VexaWord/resources201") +
           (path.isEmpty() ? path : QLatin1Char('/') + path);
}

void ApplicationSandbox::setPage(const QString& body) const
{
    const QString html = QStringLiteral("<!DOCTYPE html><html><head><meta charset='utf-8'><script>"
                                        "var setups = [], responses = [];"
                                        "function showsetupinfo(text) { setups.push(text); }"
                                        "function pdbResponse(text) { responses.push(text); }"
                                        "</script></head><body>") +
                         body + QStringLiteral("</body></html>");
    sandbox::writeFile(inApp(QStringLiteral("resources/webwidgets/templates.html")), html.toUtf8());
}

void ApplicationSandbox::setQuillet(const QString& script) const
{
    writeStandIn(inApp(QStringLiteral("quillet")), QStringLiteral("quillet.calls"), script);
}

void ApplicationSandbox::setOsascript(const QString& script) const
{
    writeStandIn(inApp(QStringLiteral("osascript")), QStringLiteral("osascript.calls"), script);
}

QStringList ApplicationSandbox::calls(const QString& record) const
{
    return QString::fromUtf8(sandbox::readFile(inHome(record)))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

bool ApplicationSandbox::waitForOsascript(int count) const
{
    return QTest::qWaitFor([&] { return osascriptCalls().size() >= count; }, 10000);
}

QString ApplicationSandbox::makeWordContainer() const
{
    const QString container = inHome(QStringLiteral("Library/Containers/com.microsoft.Word/Data"));
    QDir().mkpath(container);
    return container;
}
