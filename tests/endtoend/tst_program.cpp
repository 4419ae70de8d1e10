// The built program from outside: start, pages, the whole way with stand-ins, the files on disk.
#include "tests/endtoend/programrun.h"
#include "tests/support/realinput.h"

#include <QDir>
#include <QFileInfo>
#include <QRect>
#include <QTest>
#include <QUrl>

namespace
{
const QByteArray xmlOpening =
    "<vexa:publjnl xmlns:vexa=\"http//" VEXAWORD_NAMESPACE_HOST "/publjnl\"><jnlname>";
const QByteArray mmCif = "data_1ABC\n_entity.id 1\n";
} // namespace

class tst_Program : public QObject
{
    Q_OBJECT

private slots:
    void firstAndSecondStart();
    void runsFromWhereverItIsCopied();
    void thePageIsChosenByTheProgramsName_data();
    void thePageIsChosenByTheProgramsName();
    void closingTheWindowEndsIt();
    void theShippedPageConnects();
    void aCifGivenAtStartIsTaken_data();
    void aCifGivenAtStartIsTaken();
    void aManuscriptByCalls();
    void aManuscriptInAnAccentedHome();
    void aSecondStartHandsItsFileOver();
    void aReadyMadeTemplate();
    void aFetchedManuscript();
};

void tst_Program::firstAndSecondStart()
{
    ProgramRun run;
    run.setScript(QStringLiteral("report(setups.join('|')); report('done');"));
    QVERIFY(run.start());
    const int window = run.waitForWindow();
    QVERIFY(window);
    QCOMPARE(run.windowFrame(window).size(), QSize(500, 450));
    QVERIFY(run.waitForReports(1));
    QCOMPARE(run.reports().at(0),
             QStringLiteral("OK: created  local resources folder: ") + run.local() +
                 QStringLiteral("<br />OK: created local Word2016 AppleScript resources: ") +
                 run.inHome("Library/Application Scripts/com.microsoft.Word/Vexa.scpt"));
    QVERIFY(QFile::exists(run.local("webwidgets/d_researchpapers.html")));
    run.program.kill();
    QVERIFY(run.program.waitForFinished());

    run.net.heads.clear();
    // The user's copy is what is used from now on.
    const QString page = run.local("webwidgets/templates.html");
    QVERIFY(
        sandbox::writeFile(page, sandbox::readFile(page)
                                     .replace("report(setups", "report('again:' + setups")
                                     .replace("report('done');", "afterReports(Quillet.quit);")));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({QStringLiteral("again:")}));
}

void tst_Program::runsFromWhereverItIsCopied()
{
    ProgramRun run(QStringLiteral("Vexa 'W\u00f6rd' copy"), QStringLiteral("home of M\u00fcller"));
    run.setScript(QStringLiteral("report(location.pathname); afterReports(Quillet.quit);"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForReports(1));
    QCOMPARE(QUrl::fromPercentEncoding(run.reports().at(0).toLatin1()).replace("//", "/"),
             run.local("webwidgets/templates.html"));
    QVERIFY(QFile::exists(run.inHome("Library/Application Scripts/com.microsoft.Word/Vexa.scpt")));
}

void tst_Program::thePageIsChosenByTheProgramsName_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("link");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("page");
    QTest::newRow("usual name") << "app"
                                << "" << QStringList() << "templates.html";
    QTest::newRow("argument") << "app"
                              << "" << QStringList({"compat"}) << "templates.html";
    QTest::newRow("folder") << "the compat folder"
                            << "" << QStringList() << "templates_compat.html";
    QTest::newRow("link") << "app"
                          << "vexaword-compat" << QStringList() << "templates_compat.html";
    QTest::newRow("other case") << "the Compat folder"
                                << "" << QStringList() << "templates.html";
}

void tst_Program::thePageIsChosenByTheProgramsName()
{
    QFETCH(QString, folder);
    QFETCH(QString, link);
    QFETCH(QStringList, arguments);
    QFETCH(QString, page);
    ProgramRun run(folder);
    run.setScript(
        QStringLiteral("report(location.href.replace(/.*\\//, '')); afterReports(Quillet.quit);"));
    QVERIFY(QFile::remove(run.inApp("resources/webwidgets/templates_compat.html")));
    QVERIFY(QFile::copy(run.inApp("resources/webwidgets/templates.html"),
                        run.inApp("resources/webwidgets/templates_compat.html")));
    QString path;
    if (!link.isEmpty()) {
        path = run.inHome(link);
        QVERIFY(QFile::link(run.inApp("vexaword"), path));
    }
    QVERIFY(run.start(arguments, path));
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForReports(1));
    QCOMPARE(run.reports(), QStringList({page}));
}

void tst_Program::closingTheWindowEndsIt()
{
    ProgramRun run;
    QVERIFY(run.start());
    const int window = run.waitForWindow();
    QVERIFY(window);
    const QRect frame = run.windowFrame(window);
    // The close button: at the right end of the title row.
    QVERIFY(realinput::click(frame.topRight() + QPoint(-20, 20)));
    QCOMPARE(run.exitCode(), 0);
}

void tst_Program::theShippedPageConnects()
{
    ProgramRun run;
    run.addToShippedPages(
        QStringLiteral("setInterval(function () { if (!Vexa.state.connected) return;"
                       " report(document.getElementById('choose-cif').disabled); "
                       "afterReports(Quillet.quit); }, 50);"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.reports().contains("false"));
}

void tst_Program::aCifGivenAtStartIsTaken_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("isTaken");
    const QStringList none;
    QTest::newRow("path") << QStringList{"HOME/my 100% \"odd\" näme#1.cif"} << true;
    QTest::newRow("path in the working folder")
        << QStringList{"my 100% \"odd\" näme#1.cif"} << true;
    QTest::newRow("URL") << QStringList{"file://HOME/my%20100%25%20%22odd%22%20n%C3%A4me%231.cif"}
                         << true;
    QTest::newRow("after what looks like an option")
        << QStringList{"--compat", "my 100% \"odd\" näme#1.cif"} << true;
    QTest::newRow("two: the first")
        << QStringList{"my 100% \"odd\" näme#1.cif", "other.cif"} << true;
    QTest::newRow("none") << none << false;
    QTest::newRow("empty") << QStringList{""} << false;
    QTest::newRow("options only") << QStringList{"--sas", "-x"} << false;
}

void tst_Program::aCifGivenAtStartIsTaken()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, isTaken);
    ProgramRun run;
    const QString cif = run.inHome("my 100% \"odd\" näme#1.cif");
    QVERIFY(sandbox::writeFile(cif, mmCif));
    QVERIFY(sandbox::writeFile(run.inHome("other.cif"), "data_other\n_cell_length_a 5\n"));
    // The page shows what it has taken, or that it waits for the user.
    run.addToShippedPages(QStringLiteral(
        "var turns = 0; var poll = setInterval(function () { var structure = Vexa.state.structure;"
        " if (!Vexa.state.connected || (!structure && ++turns < 20)) return;"
        " clearInterval(poll);"
        " report(location.href.split('/').pop()); report(structure ? structure.path : 'nothing');"
        " afterReports(Quillet.quit); }, 50);"));
    run.program.setWorkingDirectory(run.home());
    QVERIFY(run.start(arguments.replaceInStrings(QStringLiteral("HOME"), run.home())));
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports().value(0), QStringLiteral("templates.html"));
    QCOMPARE(run.reports().value(1), isTaken ? cif : QStringLiteral("nothing"));
    QCOMPARE(sandbox::readFile(run.local("tmpcif.cif")), isTaken ? mmCif : QByteArray());
}

void tst_Program::aManuscriptByCalls()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("printf '<h1>A</h1>\\n<vexa:authors a=\"1\">\\nx</vexa:authors>"
                                  "<p>b</p><vexa:addresses b=\"2\">y</vexa:addresses>\\n'"));
    run.setOsascript(QString());
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, mmCif));
    run.setScript(
        QStringLiteral(
            "report(Quillet.setCif('%1')); report(Quillet.saveCif()); afterReports(function () {"
            " Quillet.createWordTemplate('', 'Journal Section F', 'research communications'); });")
            .arg(cif));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    QCOMPARE(run.reports(), QStringList({QStringLiteral("mmCIF: ") + cif, QStringLiteral("true")}));
    QCOMPARE(run.quilletCalls(),
             QStringList({QStringLiteral("%1 <-htmmo6> <%2>")
                              .arg(run.inApp(QString()).chopped(1), run.local("tmpcif.cif"))}));
    QCOMPARE(run.osascriptCalls().at(0).section(QStringLiteral(" <"), -1),
             run.local("macscrlaunch") + QLatin1Char('>'));
    QCOMPARE(sandbox::readFile(run.local("tmpcif.cif")), mmCif);
    QCOMPARE(sandbox::readFile(run.local("webwidgets/tmptemp.html")),
             QByteArray("<h1>A</h1>\n<p>b</p>"));
    QCOMPARE(sandbox::readFile(run.local("publauthors/macstart.xml")),
             xmlOpening +
                 "Journal Section F</jnlname><jnlcategory>research communications</jnlcategory>"
                 "<jnlfield></jnlfield></vexa:publjnl><vexa:authors a=\"1\">\nx</vexa:authors>"
                 "<vexa:addresses b=\"2\">y</vexa:addresses>");
    QCOMPARE(sandbox::readFile(run.local("macscrlaunch")),
             sandbox::launchScript(run.inApp(QString()).chopped(1),
                                   run.local("webwidgets/tmptemp.html")));
}

void tst_Program::aManuscriptInAnAccentedHome()
{
    ProgramRun run(QStringLiteral("Vexa W\u00f6rd"), QStringLiteral("\u0141\u00f3d\u017a \u03b1"));
    run.setQuillet(QStringLiteral(
        "printf '<vexa:authors a=\"1\">M\\303\\274ller</vexa:authors>\\316\\261\\000cut'"));
    run.setOsascript(QString());
    const QString cif = run.inHome(QStringLiteral("Carb\u00f3 (1).cif"));
    QVERIFY(sandbox::writeFile(cif, "data_x\n# \xC3\xA9\n"));
    run.setScript(QStringLiteral("report(Quillet.setCif('%1')); afterReports(function () {"
                                 " Quillet.createWordTemplate('', 'Section C', '\u00e9', 'x'); });")
                      .arg(cif));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    QCOMPARE(run.reports(), QStringList({cif}));
    QCOMPARE(sandbox::readFile(run.local("webwidgets/tmptemp.html")),
             QByteArray("\xC3\x8E\xC2\xB1"));
    QCOMPARE(sandbox::readFile(run.local("publauthors/macstart.xml")),
             xmlOpening +
                 "Section C</jnlname><jnlcategory>\xC3\x83\xC2\xA9</jnlcategory></vexa:publjnl>"
                 "<vexa:authors a=\"1\">M\xC3\x83\xC2\x83\xC3\x82\xC2\xBCller</vexa:authors>");
    const QByteArray script = sandbox::readFile(run.local("macscrlaunch"));
    QCOMPARE(script, sandbox::launchScript(run.inApp(QString()).chopped(1),
                                           run.local("webwidgets/tmptemp.html")));
    QVERIFY(script.contains("/Vexa W\xC3\x83\xC2\xB6rd/vexainkworks_wm.dotm\""));
}

void tst_Program::aSecondStartHandsItsFileOver()
{
    ProgramRun run;
    run.setScript(QStringLiteral("fileDropped = function (path) { report(path); };"
                                 " report('ready');"));
    QVERIFY(run.start());
    QVERIFY(run.waitForReports(1));

    const auto startAgain = [&run](const QStringList& arguments) {
        QProcess again;
        again.setProcessEnvironment(run.program.processEnvironment());
        again.start(run.inApp(QStringLiteral("vexaword")), arguments);
        return QTest::qWaitFor([&] { return again.waitForFinished(0); }, 20000) &&
               again.exitCode() == 0;
    };
    const QString odd = QStringLiteral("/a b/\u00e9\n%20.cif");
    QVERIFY(startAgain({odd}));
    QVERIFY(run.waitForReports(2));
    QVERIFY(startAgain({})); // only brings the window to the front
    QCOMPARE(run.reports(), QStringList({QStringLiteral("ready"), odd}));

    // A program that was ended by force leaves its socket behind.
    run.program.kill();
    QVERIFY(run.program.waitForFinished());
    QVERIFY(run.start());
    QVERIFY(run.waitForReports(3));
    QVERIFY(startAgain({odd}));
    QVERIFY(run.waitForReports(4));
}

void tst_Program::aReadyMadeTemplate()
{
    ProgramRun run;
    run.setOsascript(QString());
    run.setScript(QStringLiteral(
        "Quillet.openWordTemplate('', 'Journal Section D', 'Research Papers', 'sas');"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    const QString html = run.inApp("resources/webwidgets/d_researchpapers_sas.html");
    QVERIFY(QFile::exists(html));
    QCOMPARE(sandbox::readFile(run.local("macscrlaunch")),
             sandbox::launchScript(run.inApp(QString()).chopped(1), html));
}

void tst_Program::aFetchedManuscript()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("printf '<p>x</p>'"));
    run.setOsascript(QString());
    run.net.answer("http://" VEXAWORD_PDB_HOST "/view/1abc.cif", LoopbackProxy::page(mmCif));
    run.setScript(QStringLiteral("pdbResponse = function (text) { report(text);"
                                 " afterReports(function () { Quillet.createWordTemplate('', "
                                 "'Section D', 'x'); }); }; Quillet.getPdbCif('1abc');"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    QCOMPARE(run.reports(), QStringList({QStringLiteral("OK")}));
    QCOMPARE(sandbox::readFile(run.local("tmpcif.cif")), mmCif);
    QCOMPARE(run.quilletCalls().size(), 1);
}

QTEST_MAIN(tst_Program)
#include "tst_program.moc"
