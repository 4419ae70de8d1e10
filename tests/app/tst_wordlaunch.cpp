// openWordTemplate: which template is inserted, and what is written and started.
#include "app/application.h"
#include "tests/support/applicationsandbox.h"
#include "tests/support/eachcasealone.h"
#include "widgets/webwidget.h"

#include <QApplication>
#include <QDir>
#include <QSignalSpy>
#include <QTest>

namespace
{
const QByteArray xmlOpening =
    "<vexa:publjnl xmlns:vexa=\"http//" VEXAWORD_NAMESPACE_HOST "/publjnl\"><jnlname>";
} // namespace

class tst_WordLaunch : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theTemplateChosen_data();
    void theTemplateChosen();
    void theTemplateIsLookedForInTheUsersCopy();
    void wtemplateMakesNoDifference();
    void metadata_data();
    void metadata();
    void containerTakesTheMetadata();
    void nonAsciiArrivesEncodedTwice();
    void theScriptIsStartedAndTheWindowCloses();
    void anUnwritableScriptIsStartedAsItIs();
    void runningFromTheProgramsOwnResources();
    void severalLaunches();

private:
    void open(const QString& jnl, const QString& cat, const QString& type = QString()) const
    {
        application->openWordTemplate(QString(), jnl, cat, type);
    }
    QByteArray macstart() const
    {
        return sandbox::readFile(sandbox->local("publauthors/macstart.xml"));
    }
    QByteArray script() const { return sandbox::readFile(sandbox->local("macscrlaunch")); }
    // The file that the script inserts.
    QString inserted() const;

    std::unique_ptr<ApplicationSandbox> sandbox;
    std::unique_ptr<Application> application;
};

void tst_WordLaunch::init()
{
    sandbox = std::make_unique<ApplicationSandbox>();
    for (const char* name : {"d_researchpapers", "f_researchcommunications", "s_x", "c_x_sas"})
        QVERIFY(sandbox::writeFile(
            sandbox->inApp(QStringLiteral("resources/webwidgets/%1.html").arg(QLatin1String(name))),
            "x"));
    application = std::make_unique<Application>();
}

void tst_WordLaunch::cleanup()
{
    application.reset();
    sandbox.reset();
}

QString tst_WordLaunch::inserted() const
{
    const QString line = QString::fromUtf8(script()).split(QLatin1Char('\n')).value(8);
    const QString before =
        QStringLiteral("    insert file at text object of selection file name (POSIX file \"");
    const QString after = QStringLiteral("\") as string");
    if (!line.startsWith(before) || !line.endsWith(after))
        return QStringLiteral("another line: ") + line;
    return line.mid(before.size()).chopped(after.size());
}

void tst_WordLaunch::theTemplateChosen_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<QString>("cat");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("name");
    QTest::newRow("there") << "Section D"
                           << "Research Papers"
                           << ""
                           << "d_researchpapers.html";
    QTest::newRow("not there") << "Section D"
                               << "Letters"
                               << ""
                               << "abcdfjsm.html";
    QTest::newRow("another journal's") << "Section C"
                                       << "Research Papers"
                                       << ""
                                       << "abcdfjsm.html";
    QTest::newRow("keyword journal") << "The Zorvane Review"
                                     << "X"
                                     << ""
                                     << "s_x.html";
    QTest::newRow("scattering, plain one there") << "Section D"
                                                 << "Research Papers"
                                                 << "sas"
                                                 << "d_researchpapers_sas.html";
    QTest::newRow("scattering, nothing there") << "Section A"
                                               << "Letters"
                                               << "sas"
                                               << "a_letters_sas.html";
    QTest::newRow("scattering, only that one there") << "Section C"
                                                     << "X"
                                                     << "sas"
                                                     << "c_x_sas.html";
    QTest::newRow("SAS in capitals is a field") << "Section D"
                                                << "Research Papers"
                                                << "SAS"
                                                << "d_researchpapers.html";
    QTest::newRow("empty") << ""
                           << ""
                           << ""
                           << "abcdfjsm.html";
}

void tst_WordLaunch::theTemplateChosen()
{
    QFETCH(QString, jnl);
    QFETCH(QString, cat);
    QFETCH(QString, type);
    QFETCH(QString, name);
    open(jnl, cat, type);
    QCOMPARE(inserted(), sandbox->inApp("resources/webwidgets/") + name);
}

void tst_WordLaunch::theTemplateIsLookedForInTheUsersCopy()
{
    QVERIFY(sandbox::writeFile(sandbox->local("webwidgets/d_onlyhere.html"), "x"));
    open("Section D", "Only Here");
    QCOMPARE(inserted(), sandbox->inApp("resources/webwidgets/d_onlyhere.html"));
    QVERIFY(QFile::remove(sandbox->local("webwidgets/d_researchpapers.html")));
    open("Section D", "Research Papers");
    QCOMPARE(inserted(), sandbox->inApp("resources/webwidgets/abcdfjsm.html"));
}

void tst_WordLaunch::wtemplateMakesNoDifference()
{
    open("Section D", "Research Papers");
    const QByteArray first = script() + macstart();
    application->openWordTemplate("/any/thing.html", "Section D", "Research Papers", QString());
    QCOMPARE(script() + macstart(), first);
}

void tst_WordLaunch::metadata_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<QString>("cat");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("xml");
    QTest::newRow("sas empties the field")
        << "Section D"
        << "Research Papers"
        << "sas"
        << QByteArray("Section D</jnlname><jnlcategory>Research Papers</jnlcategory>"
                      "<jnlfield></jnlfield></vexa:publjnl>");
    QTest::newRow("SAS is kept")
        << "Section D"
        << "Research Papers"
        << "SAS"
        << QByteArray("Section D</jnlname><jnlcategory>Research Papers</jnlcategory>"
                      "<jnlfield>SAS</jnlfield></vexa:publjnl>");
    QTest::newRow("communications")
        << " Section F "
        << "research communications"
        << ""
        << QByteArray(" Section F </jnlname><jnlcategory>research communications</jnlcategory>"
                      "<jnlfield></jnlfield></vexa:publjnl>");
    QTest::newRow("with capitals")
        << "Section F"
        << "Research Communications"
        << "x"
        << QByteArray("Section F</jnlname><jnlcategory>Research Communications</jnlcategory>"
                      "<jnlfield>x</jnlfield></vexa:publjnl>");
    QTest::newRow("unescaped") << "A & <B"
                               << "x & <y"
                               << ""
                               << QByteArray("A & <B</jnlname><jnlcategory>x & <y</jnlcategory>"
                                             "<jnlfield></jnlfield></vexa:publjnl>");
}

void tst_WordLaunch::metadata()
{
    QFETCH(QString, jnl);
    QFETCH(QString, cat);
    QFETCH(QString, type);
    QFETCH(QByteArray, xml);
    open(jnl, cat, type);
    QCOMPARE(macstart(), xmlOpening + xml);
}

void tst_WordLaunch::containerTakesTheMetadata()
{
    const QString container = sandbox->makeWordContainer();
    open("Section D", "x");
    QVERIFY(sandbox::readFile(container + "/macstart.xml").startsWith(xmlOpening));
    QCOMPARE(macstart(), QByteArray("as installed\n"));
    QVERIFY(!script().isEmpty()); // the script has one place only
    QVERIFY(!QFile::exists(container + "/macscrlaunch"));
}

void tst_WordLaunch::nonAsciiArrivesEncodedTwice()
{
    open(QString::fromUtf8("Review \xC5\x82 D"), QString::fromUtf8("caf\xC3\xA9"));
    QCOMPARE(macstart(), xmlOpening +
                             "Review \xC3\x85\xC2\x82 D</jnlname><jnlcategory>caf\xC3\x83\xC2\xA9"
                             "</jnlcategory><jnlfield></jnlfield></vexa:publjnl>");
}

void tst_WordLaunch::theScriptIsStartedAndTheWindowCloses()
{
    QSignalSpy closed(application->mainWindow, SIGNAL(closed()));
    open("Section D", "x");
    QCOMPARE(closed.count(), 1);
    QVERIFY(!application->mainWindow->isVisible());
    QVERIFY(sandbox->waitForOsascript());
    QCOMPARE(sandbox->osascriptCalls().at(0).section(QLatin1Char(' '), 1),
             QStringLiteral("<%1>").arg(sandbox->local("macscrlaunch")));
}

void tst_WordLaunch::anUnwritableScriptIsStartedAsItIs()
{
    QVERIFY(QFile::remove(sandbox->local("macscrlaunch")));
    QVERIFY(QDir().mkpath(sandbox->local("macscrlaunch"))); // a folder in its place
    open("Section D", "x");
    QVERIFY(sandbox->waitForOsascript());
    QVERIFY(!application->mainWindow->isVisible());
}

void tst_WordLaunch::runningFromTheProgramsOwnResources()
{
    application->resourcesPath = sandbox->inApp("resources");
    open("Section D", "Research Papers");
    QVERIFY(sandbox::readFile(sandbox->inApp("resources/publauthors/macstart.xml"))
                .startsWith(xmlOpening));
    QVERIFY(sandbox->waitForOsascript());
    QVERIFY(sandbox->osascriptCalls().at(0).endsWith(
        QStringLiteral(" <%1>").arg(sandbox->inApp("resources/macscrlaunch"))));
}

void tst_WordLaunch::severalLaunches()
{
    open("Section D", "first");
    open("Section D", "second");
    QVERIFY(sandbox->waitForOsascript(2));
    QVERIFY(macstart().contains("<jnlcategory>second<"));
}

VEXA_TEST_MAIN_EACH_CASE_ALONE(tst_WordLaunch)
#include "tst_wordlaunch.moc"
