// launchScript
#include "app/launchscript.h"

#include <QTest>

class tst_LaunchScript : public QObject
{
    Q_OBJECT

private slots:
    void text();
    void pathsAreNotQuoted();
};

void tst_LaunchScript::text()
{
    const QStringList lines = {
        QStringLiteral("tell application \"System Events\""),
        QStringLiteral("activate"),
        QStringLiteral("if not (UI elements enabled) then set (UI elements enabled) to true"),
        QStringLiteral("\tend tell"),
        QStringLiteral("tell application \"Microsoft Word\""),
        QStringLiteral("    activate"),
        QStringLiteral("    create new document attached template (POSIX file \"/app dir/"
                       "vexainkworks_wm.dotm\") as string"),
        QStringLiteral("    delay 1"),
        QStringLiteral("    insert file at text object of selection file name (POSIX file "
                       "\"/res/tmp.html\") as string"),
        QStringLiteral("    run VB macro macro name \"Vexa_authors.VexaM_setInitialXmlData\""),
        QStringLiteral("end tell"),
        QString()};
    QCOMPARE(launchScript(QStringLiteral("/app dir"), QStringLiteral("/res/tmp.html"))
                 .split(QLatin1Char('\n')),
             lines);
}

void tst_LaunchScript::pathsAreNotQuoted()
{
    const QString script = launchScript(QStringLiteral("/a\"b"), QStringLiteral("/c\\d"));
    QVERIFY(script.contains(QStringLiteral("(POSIX file \"/a\"b/vexainkworks_wm.dotm\")")));
    QVERIFY(script.contains(QStringLiteral("(POSIX file \"/c\\d\")")));
}

QTEST_GUILESS_MAIN(tst_LaunchScript)
#include "tst_launchscript.moc"
