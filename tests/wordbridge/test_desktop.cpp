// What the user sees of a run: the document in a window, notifications.
#include "desk.h"
#include "print.h"

#include "wordbridge/files.h"

#include <csignal>
#include <gtest/gtest.h>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QFile>
#include <QProcess>

namespace
{

using wordbridge::readFile;
using wordbridge::writeFile;

const QByteArray article = "<title>T</title><body><h1>Abstract</h1><p>x</body>";
const QString metadata =
    QStringLiteral("<vexa:publjnl xmlns:vexa=\"n\"><jnlname>J</jnlname></vexa:publjnl>");

QString outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

class Desktop : public OfficeTest
{
protected:
    Desktop()
    {
        desk.writeArticle(article);
        desk.writeMetadata(metadata);
    }

    // LibreOffice for the work; for the user's window a program that keeps its arguments and where
    // its standard output goes (not to ours: whoever reads that would wait for the user).
    void replaceUsersOffice()
    {
        const QString path = desk.home() + QStringLiteral("/office");
        writeFile(path,
                  "#!/bin/sh\ncase \"$*\" in\n*--headless*) exec soffice \"$@\" ;;\nesac\n"
                  "printf '%s\\n' \"$@\" \"$(readlink /proc/$$/fd/1)\" >\"$HOME/opened.new\"\n"
                  "mv \"$HOME/opened.new\" \"$HOME/opened\"\nexec sleep 2\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        desk.environment.insert(QStringLiteral("VEXAWORD_OFFICE"), path);
    }

    QString opened() const { return desk.home() + QStringLiteral("/opened"); }
};

TEST_F(Desktop, ShowsTheManuscriptInTheUsersLibreOffice)
{
    ASSERT_TRUE(qEnvironmentVariableIsSet("DISPLAY")) << "this test is run by tools/with-display";
    desk.environment.insert(QStringLiteral("DISPLAY"), qEnvironmentVariable("DISPLAY"));
    const RunResult run = desk.run();
    EXPECT_EQ(run.errors, QString());
    QString window;
    ASSERT_TRUE(isWaitedFor([&] {
        window =
            outputOf(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--name"),
                                                 QStringLiteral("^Manuscript – T.docx - ")});
        return !window.isEmpty();
    }));
    const int process =
        outputOf(QStringLiteral("xdotool"),
                 {QStringLiteral("getwindowpid"), window.section(QLatin1Char('\n'), 0, 0)})
            .toInt();
    ASSERT_GT(process, 0);
    EXPECT_EQ(::kill(process, SIGTERM), 0);
    EXPECT_TRUE(isWaitedFor([&] { return ::kill(process, 0) != 0; }));
}

TEST_F(Desktop, IsGivenTheManuscriptByName)
{
    replaceUsersOffice();
    desk.environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":9999"));
    const RunResult run = desk.run();
    ASSERT_TRUE(isWaitedFor([&] { return QFile::exists(opened()); }));
    EXPECT_EQ(QString::fromUtf8(readFile(opened())),
              QStringLiteral("--nologo\n--writer\n%1\n/dev/null\n").arg(run.document()));
}

TEST_F(Desktop, IsLeftAloneWithoutADisplayAndOnRequest)
{
    replaceUsersOffice();
    EXPECT_EQ(desk.run().exitCode, 0);
    desk.environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":9999"));
    desk.environment.insert(QStringLiteral("VEXAWORD_OPEN_DOCUMENT"), QStringLiteral("no"));
    EXPECT_EQ(desk.run().exitCode, 0);
    EXPECT_FALSE(QFile::exists(opened()));
}

TEST_F(Desktop, OpensTheManuscriptWithoutLibreOffice)
{
    writeFile(desk.home() + QStringLiteral("/bin/xdg-open"),
              "#!/bin/sh\nprintf '%s\\n' \"$@\" >\"$HOME/opened\"\n");
    QFile::setPermissions(desk.home() + QStringLiteral("/bin/xdg-open"),
                          QFile::ReadOwner | QFile::ExeOwner);
    desk.environment.insert(QStringLiteral("PATH"),
                            desk.home() + QStringLiteral("/bin:/usr/bin:/bin"));
    desk.environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":9999"));
    desk.environment.insert(QStringLiteral("VEXAWORD_OFFICE"), QStringLiteral("/nosuch"));
    const RunResult run = desk.run();
    ASSERT_TRUE(
        isWaitedFor([&] { return QFile::exists(opened()) && !readFile(opened()).isEmpty(); }));
    EXPECT_EQ(QString::fromUtf8(readFile(opened())), run.document() + QLatin1Char('\n'));

    desk.environment.insert(QStringLiteral("PATH"), QStringLiteral("/nosuch"));
    EXPECT_TRUE(desk.run().errors.contains(QLatin1String("no program was found to open")));
}

// A session bus of this test's own with a notification service on it.
class NotificationService : public QDBusVirtualObject
{
public:
    NotificationService()
    {
        m_bus.start(QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--session"), QStringLiteral("--nofork"),
                     QStringLiteral("--print-address=1")});
        m_bus.waitForReadyRead();
        address = QString::fromUtf8(m_bus.readLine()).trimmed();
        QDBusConnection connection = QDBusConnection::connectToBus(address, name());
        connection.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), this);
        isThere = connection.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }

    ~NotificationService() override
    {
        QDBusConnection::disconnectFromBus(name());
        m_bus.terminate();
        m_bus.waitForFinished();
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() != QLatin1String("Notify"))
            return false;
        const QVariantList arguments = message.arguments();
        shown.push_back(arguments.value(3).toString() + QStringLiteral(": ") +
                        arguments.value(4).toString());
        return connection.send(message.createReply(1U));
    }

    QString address;
    bool isThere = false;
    QStringList shown;

private:
    static QString name() { return QStringLiteral("vexaword-test"); }

    QProcess m_bus;
};

class Notifications : public Desktop
{
protected:
    // The service answers in this process, so the run must not block it.
    QStringList shownBy(const QStringList& arguments)
    {
        NotificationService service;
        EXPECT_TRUE(service.isThere);
        desk.environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), service.address);
        const auto run = desk.start(arguments);
        EXPECT_TRUE(isWaitedFor(
            [&] { return run->waitForFinished(0) || run->state() == QProcess::NotRunning; }));
        service.shown.removeAll(QStringLiteral("Vexa Word: ") + QString::fromUtf8(announcement));
        return service.shown;
    }
};

TEST_F(Notifications, TellOfErrorsAndRemarks)
{
    EXPECT_EQ(shownBy({QStringLiteral("/nosuch")}),
              QStringList{QStringLiteral("The manuscript could not be made: "
                                         "cannot read /nosuch: No such file or directory")});

    desk.environment.insert(QStringLiteral("VEXAWORD_OFFICE"), QStringLiteral("/nosuch"));
    const QStringList remarks = shownBy({desk.scriptPath()});
    ASSERT_EQ(remarks.size(), 1);
    EXPECT_TRUE(remarks.first().contains(QLatin1String("LibreOffice was not found")))
        << remarks.first().toStdString();
    EXPECT_TRUE(remarks.first().contains(QStringLiteral("Manuscript – T.odt")));
}

TEST_F(Notifications, AreNotNeededWhenAllIsWell)
{
    EXPECT_EQ(shownBy({desk.scriptPath()}), QStringList());
}

TEST_F(Notifications, AreNotMissedWhereThereIsNoService)
{
    desk.environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                            QStringLiteral("unix:path=/nosuch"));
    EXPECT_EQ(desk.run({QStringLiteral("/nosuch")}).exitCode, 1);
}

} // namespace
