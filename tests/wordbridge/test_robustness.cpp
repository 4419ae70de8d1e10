// What becomes of a manuscript when LibreOffice, its profile or the file system do not play along.
#include "desk.h"
#include "print.h"

#include "wordbridge/docxcheck.h"
#include "wordbridge/files.h"

#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>

namespace
{

using wordbridge::Package;
using wordbridge::writeFile;

const QByteArray article = "<title>T</title><body><p class='title'><a name='vexa_title'>T</a></p>"
                           "<p class='authors'><a name='vexa_authors'>&#160;</a></p>"
                           "<p class='addresses'><a name='vexa_addresses'>&#160;</a></p>"
                           "<h1>Abstract</h1><p>H<sub>2</sub>O</p></body>";
const QString metadata = QStringLiteral(
    "<vexa:publjnl xmlns:vexa=\"http//www.vexa.example/publjnl\"><jnlname>J</jnlname><jnlcategory>c"
    "</jnlcategory></vexa:publjnl><vexa:authors xmlns:vexa=\"n\" count=\"1\"><vexa:author "
    "id=\"a1\">"
    "<vexa:family>Müller</vexa:family></vexa:author></vexa:authors>");

class Robustness : public OfficeTest
{
protected:
    Robustness()
    {
        desk.environment.insert(QStringLiteral("XDG_CACHE_HOME"), cache());
        desk.writeArticle(article);
        desk.writeMetadata(metadata);
    }

    // A cache of this test's own: it gets damaged.
    QString cache() const { return desk.home() + QStringLiteral("/.cache"); }
    QString profile() const { return cache() + QStringLiteral("/vexaword/libreoffice"); }

    // A program in the place of LibreOffice.
    void replaceOffice(const QByteArray& shellScript)
    {
        const QString path = desk.home() + QStringLiteral("/office");
        writeFile(path, "#!/bin/sh\n" + shellScript);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        desk.environment.insert(QStringLiteral("VEXAWORD_OFFICE"), path);
    }

    static void expectWordDocument(const RunResult& run)
    {
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.errors, QString());
        ASSERT_TRUE(run.document().endsWith(QLatin1String(".docx"))) << run.output.toStdString();
        EXPECT_TRUE(textOf(Package::read(run.document()), "word/document.xml")
                        .contains(QStringLiteral("Müller")));
    }

    // The plainer manuscript, with a remark that says why.
    static void expectOpenDocument(const RunResult& run, const char* reason)
    {
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_TRUE(run.errors.contains(QLatin1String(reason))) << run.errors.toStdString();
        ASSERT_TRUE(run.document().endsWith(QStringLiteral("/Manuscript – T.odt")))
            << run.output.toStdString();
        EXPECT_TRUE(textOf(Package::read(run.document()), "content.xml")
                        .contains(QStringLiteral("Müller")));
    }
};

TEST_F(Robustness, ManyAtOnceMakeADocumentEach)
{
    constexpr int count = 4;
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int i = 0; i < count; ++i)
        runs.push_back(desk.start({desk.scriptPath()}));
    QStringList documents;
    for (const auto& run : runs) {
        ASSERT_TRUE(run->waitForFinished(100000));
        EXPECT_EQ(run->exitCode(), 0) << run->readAllStandardError().toStdString();
        const QString document = QString::fromUtf8(run->readAllStandardOutput()).trimmed();
        EXPECT_TRUE(textOf(Package::read(document), "word/document.xml")
                        .contains(QStringLiteral("Müller")));
        documents.push_back(document);
    }
    EXPECT_EQ(documents.removeDuplicates(), 0);
}

TEST_F(Robustness, AnOpenLibreOfficeIsNoHindrance)
{
    QProcess users;
    users.setProcessEnvironment(desk.environment);
    users.start(QStringLiteral("soffice"),
                {QStringLiteral("--headless"), QStringLiteral("--norestore"),
                 QStringLiteral("--accept=pipe,name=vexaword-test-%1;urp")
                     .arg(QCoreApplication::applicationPid())});
    ASSERT_TRUE(users.waitForStarted());
    ASSERT_TRUE(isWaitedFor([&] {
        return QFile::exists(
            desk.home() + QStringLiteral("/.config/libreoffice/4/user/registrymodifications.xcu"));
    }));
    expectWordDocument(desk.run());
    EXPECT_FALSE(users.waitForFinished(0)) << "the open LibreOffice has ended";
    users.terminate();
    EXPECT_TRUE(users.waitForFinished());
}

TEST_F(Robustness, ALockOfALibreOfficeThatDiedIsNoHindrance)
{
    writeFile(profile() + QStringLiteral("/.lock"),
              "[Lockdata]\nIPCServer=true\nHost=elsewhere\nUser=somebody\nStamp=0\nTime=Mon\n");
    expectWordDocument(desk.run());
}

TEST_F(Robustness, ABrokenProfileIsReplaced)
{
    expectWordDocument(desk.run());
    writeFile(profile() + QStringLiteral("/user/registrymodifications.xcu"), "garbage");
    expectWordDocument(desk.run());
    writeFile(profile() + QStringLiteral("/user/basic/script.xlc"), "garbage");
    expectWordDocument(desk.run());
    ASSERT_TRUE(QDir(profile()).removeRecursively());
    writeFile(profile(), "a file where the folder should be");
    expectWordDocument(desk.run());
}

TEST_F(Robustness, NoPlaceForTheProfileIsNoHindrance)
{
    desk.environment.insert(QStringLiteral("XDG_CACHE_HOME"), QStringLiteral("/proc/nosuch"));
    expectWordDocument(desk.run());
}

// A run that is killed leaves its LibreOffice behind, which goes on working in the profile.
TEST_F(Robustness, AKilledRunIsNoHindrance)
{
    const QString pidFile = desk.home() + QStringLiteral("/pid");
    replaceOffice(
        "echo $$ >\"$HOME/pid.new\"; mv \"$HOME/pid.new\" \"$HOME/pid\"\nexec sleep 100\n");
    const auto killed = desk.start({desk.scriptPath()});
    ASSERT_TRUE(isWaitedFor([&] { return QFile::exists(pidFile); }));
    killed->kill();
    ASSERT_TRUE(killed->waitForFinished());

    desk.environment.remove(QStringLiteral("VEXAWORD_OFFICE"));
    expectWordDocument(desk.run());

    QFile pid(pidFile);
    ASSERT_TRUE(pid.open(QIODevice::ReadOnly));
    EXPECT_EQ(::kill(pid.readAll().trimmed().toInt(), SIGKILL), 0);
}

TEST_F(Robustness, WithoutLibreOfficeAnOpenDocumentIsMade)
{
    desk.environment.insert(QStringLiteral("VEXAWORD_OFFICE"), QStringLiteral("/nosuch"));
    expectOpenDocument(desk.run(), "LibreOffice was not found");
}

TEST_F(Robustness, AHangingLibreOfficeIsEndedWithAllThatItStarted)
{
    replaceOffice("sleep 100 &\necho $! >\"$HOME/pid\"\nsleep 100\n");
    desk.environment.insert(QStringLiteral("VEXAWORD_OFFICE_PATIENCE"), QStringLiteral("1"));
    expectOpenDocument(desk.run(), "LibreOffice did not answer for 1 seconds");
    QFile pid(desk.home() + QStringLiteral("/pid"));
    ASSERT_TRUE(pid.open(QIODevice::ReadOnly));
    const pid_t child = pid.readAll().trimmed().toInt();
    ASSERT_GT(child, 0);
    EXPECT_TRUE(isWaitedFor([&] { return ::kill(child, 0) != 0; }));
}

TEST_F(Robustness, ASlowLibreOfficeIsAnnouncedAndWaitedFor)
{
    replaceOffice("sleep 3.5\nexec soffice \"$@\"\n");
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.wasAnnounced);
    EXPECT_EQ(run.errors, QString());
    EXPECT_TRUE(run.document().endsWith(QLatin1String(".docx")));
}

TEST_F(Robustness, ALibreOfficeThatDiesIsReplaced)
{
    replaceOffice("exit 1\n");
    expectOpenDocument(desk.run(), "LibreOffice did not start");
    QFile::remove(desk.home() + QStringLiteral("/Documents/Manuscript – T.odt"));
    replaceOffice("echo step started >\"$VEXAWORD_REPORT\"\nkill -SEGV $$\n");
    expectOpenDocument(desk.run(),
                       "LibreOffice ended before the document was complete (last step: started)");
    QFile::remove(desk.home() + QStringLiteral("/Documents/Manuscript – T.odt"));
    writeFile(desk.home() + QStringLiteral("/office"), "no program");
    expectOpenDocument(desk.run(), "cannot be started");
}

// It says that all is well, but the document is not there, or not whole, or without the article.
TEST_F(Robustness, ALibreOfficeThatClaimsToBeDoneIsNotBelieved)
{
    replaceOffice("echo done >\"$VEXAWORD_REPORT\"\n");
    expectOpenDocument(desk.run(), "manuscript.docx is not a readable document");
    QFile::remove(desk.home() + QStringLiteral("/Documents/Manuscript – T.odt"));
    const QByteArray empty = desk.home().toUtf8() + "/empty.docx";
    Package package;
    package.set(QStringLiteral("word/document.xml"), "<w:document/>");
    package.write(QString::fromUtf8(empty));
    replaceOffice("cp '" + empty +
                  "' \"$(dirname \"$VEXAWORD_REPORT\")/manuscript.docx\"\n"
                  "echo done >\"$VEXAWORD_REPORT\"\n");
    expectOpenDocument(desk.run(), "LibreOffice did not take the article over");
}

TEST_F(Robustness, ADamagedTemplateIsReported)
{
    const QString path = desk.home() + QStringLiteral("/broken.dotm");
    writeFile(path, "no template");
    desk.writeScript(path, desk.articlePath());
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains(path)) << run.errors.toStdString();
}

TEST_F(Robustness, AFailingMacroLeavesTheManuscript)
{
    QFile script(desk.scriptPath());
    ASSERT_TRUE(script.open(QIODevice::ReadOnly));
    writeFile(desk.scriptPath(), script.readAll().replace("VexaM_setInitialXmlData", "Nosuch"));
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.errors.contains(QLatin1String("Vexa_authors.Nosuch")))
        << run.errors.toStdString();
    const Package document = Package::read(run.document());
    EXPECT_TRUE(textOf(document, "word/document.xml").contains(QLatin1String("Abstract")));
    EXPECT_EQ(wordbridge::checkWordDocument(document), QStringList());
}

TEST_F(Robustness, NoPlaceForTheWorkIsReported)
{
    desk.environment.insert(QStringLiteral("TMPDIR"), QStringLiteral("/proc/nosuch"));
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.output, QString());
    EXPECT_TRUE(run.errors.contains(QLatin1String("/proc/nosuch"))) << run.errors.toStdString();
}

// Three hundred tables and thousands of subscripts; LibreOffice's own import takes a minute.
TEST_F(Robustness, ALargeArticleIsFinished)
{
    QByteArray html = "<title>T</title><body>";
    for (int t = 1; t <= 300; ++t) {
        html += "<table><caption>Table " + QByteArray::number(t) +
                ". X</caption><thead><tr><th>a<th>b<th>c</thead><tbody>";
        for (int r = 0; r < 10; ++r)
            html += "<tr><th scope=row><i>R</i><sub>int</sub><td>1.234 (5)<td>10<sup>-3</sup>";
        html += "</tbody></table>";
    }
    desk.writeArticle(html + "<p>Müller</body>");
    const RunResult run = desk.run();
    expectWordDocument(RunResult{run.exitCode, run.output, QString()});
    const QString text = textOf(Package::read(run.document()), "word/document.xml");
    EXPECT_EQ(text.count(QLatin1String("<w:tbl>")), 300);
    EXPECT_EQ(text.count(QLatin1String("<w:tblHeader")), 300);
    EXPECT_EQ(text.count(QLatin1String("SEQ Table")), 300);
    EXPECT_EQ(text.count(QLatin1String("w:val=\"subscript\"")), 3000);
}

} // namespace
