#include "wordbridge/launchscript.h"

#include "wordbridge/error.h"

#include <gtest/gtest.h>

namespace
{

using wordbridge::LaunchScript;
using wordbridge::readLaunchScript;

const QString script =
    QStringLiteral("tell application \"System Events\"\n"
                   "activate\n"
                   "if not (UI elements enabled) then set (UI elements enabled) to true\n"
                   "\tend tell\n"
                   "tell application \"Microsoft Word\"\n"
                   "    activate\n"
                   "    create new document attached template (POSIX file "
                   "\"/opt/vexa/vexainkworks_wm.dotm\") as string\n"
                   "    delay 1\n"
                   "    insert file at text object of selection file name (POSIX "
                   "file \"/home/ana/tmptemp.html\") as string\n"
                   "    run VB macro macro name "
                   "\"Vexa_authors.VexaM_setInitialXmlData\"\n"
                   "end tell\n");

LaunchScript scriptOf(const QString& text)
{
    return readLaunchScript(text.toUtf8(), QStringLiteral("script"));
}

std::string errorOf(const QString& text)
{
    try {
        scriptOf(text);
    } catch (const wordbridge::Error& error) {
        return error.what();
    }
    return "no error";
}

QString with(const char* from, const char* to)
{
    QString changed = script;
    return changed.replace(QLatin1String(from), QString::fromUtf8(to));
}

TEST(LaunchScript, GivesTheThreeActionsAndTheirLines)
{
    const LaunchScript read = scriptOf(script);
    EXPECT_EQ(read.templatePath.text, QStringLiteral("/opt/vexa/vexainkworks_wm.dotm"));
    EXPECT_EQ(read.templatePath.line, 7);
    ASSERT_TRUE(read.articlePath);
    EXPECT_EQ(read.articlePath->text, QStringLiteral("/home/ana/tmptemp.html"));
    EXPECT_EQ(read.articlePath->line, 9);
    ASSERT_TRUE(read.macro);
    EXPECT_EQ(read.macro->text, QStringLiteral("Vexa_authors.VexaM_setInitialXmlData"));
}

TEST(LaunchScript, IsEncodedTwice)
{
    const QString path = QStringLiteral("/home/José Łoś/a.html");
    QString text = script;
    text.replace(QLatin1String("/home/ana/tmptemp.html"), path);
    const QByteArray twice = QString::fromLatin1(text.toUtf8()).toUtf8();
    EXPECT_EQ(readLaunchScript(twice, {}).articlePath->text, path);
    EXPECT_EQ(readLaunchScript(text.toUtf8(), {}).articlePath->text, path);
}

TEST(LaunchScript, TakesPathsAsTheyStand)
{
    const QString text = with("/home/ana/tmptemp.html", "/home/a\"b\\c (d)/x.html");
    EXPECT_EQ(scriptOf(text).articlePath->text, QStringLiteral("/home/a\"b\\c (d)/x.html"));
}

TEST(LaunchScript, MayLeaveOutArticleAndMacro)
{
    const LaunchScript read =
        scriptOf(QStringLiteral("tell application \"Microsoft Word\"\r\n"
                                "create new document attached template (POSIX file \"/t.dotm\") as "
                                "string\r\n\r\nend tell"));
    EXPECT_EQ(read.templatePath.text, QStringLiteral("/t.dotm"));
    EXPECT_FALSE(read.articlePath);
    EXPECT_FALSE(read.macro);
}

TEST(LaunchScript, RefusesWhatItDoesNotKnowWithTheLine)
{
    EXPECT_EQ(errorOf(with("    delay 1", "    beep 3")), "script:8: unknown statement: beep 3");
    EXPECT_EQ(errorOf(with("delay 1", "delay a")), "script:8: unknown statement: delay a");
    EXPECT_EQ(errorOf(with("\"System Events\"", "\"Finder\"")),
              "script:1: unknown statement: tell application \"Finder\"");
    EXPECT_EQ(errorOf(with("if not", "if  not")).substr(0, 28), "script:3: unknown statement:");
    EXPECT_EQ(errorOf(with(") as string\n    delay", ")\n    delay")).substr(0, 28),
              "script:7: unknown statement:");
    EXPECT_EQ(errorOf(QStringLiteral("activate\n")), "script:1: unknown statement: activate");
    EXPECT_EQ(errorOf(script + QStringLiteral("do shell script \"rm\"\n")),
              "script:12: unknown statement: do shell script \"rm\"");
}

TEST(LaunchScript, RefusesActionsInTheWrongPlace)
{
    EXPECT_EQ(errorOf(QString()), "script:1: the script does not create a document");
    EXPECT_EQ(errorOf(script.left(script.size() - 9)),
              "script:11: the block for \"Microsoft Word\" does not end");
    EXPECT_EQ(errorOf(with("    activate\n", "    run VB macro macro name \"A.b\"\n")),
              "script:6: there is no document yet to do this in");
    EXPECT_EQ(errorOf(with("    delay 1\n", "    run VB macro macro name \"A.b\"\n")),
              "script:9: the article has to be inserted before the macro runs");
    EXPECT_EQ(
        errorOf(with("    delay 1\n",
                     "    create new document attached template (POSIX file \"/t\") as string\n")),
        "script:8: the script creates a second document");
    EXPECT_EQ(errorOf(with("/home/ana/tmptemp.html", "")), "script:9: the name is empty");
}

} // namespace
