#include "tests/support/applicationsandbox.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace
{
const QStringList appEntries = {QStringLiteral("resources"), QStringLiteral("setup.txt"),
                                QStringLiteral("quillet"), QStringLiteral("osascript"),
                                QStringLiteral("VexaSetup.app")};

void clearApp()
{
    for (const QString& entry : appEntries) {
        const QString path = ApplicationSandbox::inApp(entry);
        if (QFileInfo(path).isDir())
            QDir(path).removeRecursively();
        else
            QFile::remove(path);
    }
}

void writeStandIn(const QString& name, const QString& record, const QString& script)
{
    const QString path = ApplicationSandbox::inApp(name);
    QFile::remove(path);
    // The call is written in one piece, so that calls at the same time do not mix.
    const QString text = QStringLiteral("#!/bin/sh\n"
                                        "call=$PWD; for word; do call=\"$call <$word>\"; done\n"
                                        "printf '%s\\n' \"$call\" >>\"$HOME/") +
                         record + QStringLiteral("\"\n") + script + QLatin1Char('\n');
    sandbox::writeFile(path, text.toUtf8());
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
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
} // namespace sandbox

ApplicationSandbox::ApplicationSandbox() : previousHome(qgetenv("HOME"))
{
    qputenv("HOME", QFile::encodeName(homeFolder.path()));
    clearApp();
    sandbox::writeFile(inApp(QStringLiteral("setup.txt")), "done\n");
    sandbox::writeFile(inApp(QStringLiteral("resources/macscrlaunch")), "as installed\n");
    sandbox::writeFile(inApp(QStringLiteral("resources/Vexa.scpt")), "script\n");
    sandbox::writeFile(inApp(QStringLiteral("resources/publauthors/macstart.xml")),
                       "as installed\n");
    setPage(QStringLiteral("<p>page</p>"));
    setQuillet(QStringLiteral("printf '<p>article</p>'"));
    setOsascript(QString());
}

ApplicationSandbox::~ApplicationSandbox()
{
    clearApp();
    qputenv("HOME", previousHome);
}

QString ApplicationSandbox::inApp(const QString& path)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + path;
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
    writeStandIn(QStringLiteral("quillet"), QStringLiteral("quillet.calls"), script);
}

void ApplicationSandbox::setOsascript(const QString& script) const
{
    writeStandIn(QStringLiteral("osascript"), QStringLiteral("osascript.calls"), script);
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
