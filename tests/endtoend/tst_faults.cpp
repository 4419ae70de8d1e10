// What may go wrong around the built program: none of it crashes the program or costs the user a
// file.
#include "tests/endtoend/programrun.h"
#include "tests/support/realinput.h"

#include <QDir>
#include <QDrag>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QTest>
#include <QUrl>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
const QByteArray cifText = "data_I\n_cell_length_a 5.0(1)\n";

// A page script that makes a manuscript, to be called when the page is ready.
const QString make = QStringLiteral("Quillet.createWordTemplate('', 'Section D', 'x');");
} // namespace

class tst_Faults : public QObject
{
    Q_OBJECT

private slots:
    void homeThatCannotBeWritten();
    void homeThatIsMissing();
    void homeThatIsFull();
    void homeThatFillsUpLater();
    void resourcesThatWereHalfCopied();
    void aFileWhereTheResourcesShouldBe();

    void aCifThatIsNone_data();
    void aCifThatIsNone();
    void anUnreadableCif();
    void anEmptyCif();
    void aCifOfOneGigabyte();
    void aCifThatVanishes();
    void aCifThatBecomesAFolder();

    void aBadQuillet_data();
    void aBadQuillet();
    void aQuilletThatIsKilled();
    void aQuilletThatFloods();
    void aQuilletThatLeavesAGrandchild();
    void aQuilletThatIsMissing();
    void anOsascriptThatIsMissing();

    void aBadPage_data();
    void aBadPage();
    void aPageThatIsMissing();
    void aPageThatReloads();
    void aDroppedFile();
};

void tst_Faults::homeThatCannotBeWritten()
{
    ProgramRun run;
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, cifText));
    run.setQuillet(QStringLiteral("printf x"));
    run.setOsascript(QStringLiteral("echo done >/dev/null"));
    run.setScript(QStringLiteral("report(setups[0]); report('[' + Quillet.setCif('%1') + ']');"
                                 "report(Quillet.saveCif()); afterReports(function () { %2 });")
                      .arg(cif, make));
    QVERIFY(QFile::setPermissions(run.home(), QFile::ReadOwner | QFile::ExeOwner |
                                                  QFile::ReadOther | QFile::ExeOther));
    QVERIFY(run.startUnprivileged());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports().size(), 3);
    QCOMPARE(run.reports().at(0).count("ERROR: unable to create"), 2);
    QCOMPARE(run.reports().mid(1),
             QStringList({"[]", "false"})); // the working copy has nowhere to go
    QCOMPARE(sandbox::readFile(cif), cifText);
    QCOMPARE(QDir(run.home()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList({"one.cif"}));
}

void tst_Faults::homeThatIsMissing()
{
    ProgramRun run;
    run.setScript(QStringLiteral("report(setups[0]); afterReports(Quillet.quit);"));
    QVERIFY(QDir(run.home()).removeRecursively());
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports().at(0).count("ERROR: unable to create"), 2);
    QVERIFY(!QFileInfo::exists(run.inHome("Library")));
}

void tst_Faults::homeThatIsFull()
{
    ProgramRun run;
    run.setScript(QStringLiteral(
        "report(setups[0]); report(location.pathname); afterReports(Quillet.quit);"));
    if (!run.startOnSmallHome(QStringLiteral("size=64k,nr_inodes=5")))
        QSKIP("skipped: this system lets nobody mount a file system of his own");
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.reports().at(0).contains("ERROR: unable to create local resources folder"));
    QVERIFY(run.reports().at(1).endsWith("/templates.html")); // there is a page all the same
}

void tst_Faults::homeThatFillsUpLater()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("printf x"));
    run.setScript(
        QStringLiteral("report(setups[0].indexOf('ERROR')); report(Quillet.setCif('%1') !== '');"
                       "report(Quillet.setCif('%2') === ''); report(Quillet.saveCif());"
                       "afterReports(Quillet.quit);")
            .arg(run.inApp("small.cif"), run.inApp("large.cif")));
    QVERIFY(sandbox::writeFile(run.inApp("small.cif"), cifText));
    QVERIFY(sandbox::writeFile(run.inApp("large.cif"), QByteArray(20000000, '#')));
    if (!run.startOnSmallHome(QStringLiteral("size=10m")))
        QSKIP("skipped: this system lets nobody mount a file system of his own");
    QCOMPARE(run.exitCode(), 0);
    // The copy was installed; the large CIF did not fit; the small one is still the working copy,
    // and is what was then written to the path of the large one.
    QCOMPARE(run.reports(), QStringList({"-1", "true", "true", "true"}));
    QCOMPARE(sandbox::readFile(run.inApp("small.cif")), cifText);
    QCOMPARE(sandbox::readFile(run.inApp("large.cif")), cifText);
}

void tst_Faults::resourcesThatWereHalfCopied()
{
    ProgramRun run;
    run.setScript(QStringLiteral(
        "report(setups[0]); report(location.pathname); afterReports(Quillet.quit);"));
    QVERIFY(sandbox::writeFile(run.local("webwidgets/x.html"), "x"));
    for (int start = 0; start < 2; ++start) {
        run.net.heads.clear();
        QVERIFY(run.start());
        QCOMPARE(run.exitCode(), 0);
        QVERIFY(run.reports().at(0).startsWith("ERROR: unable to create local resources folder: " +
                                               run.local()));
        QVERIFY(run.reports().at(1).contains("/Vexa%20Word/resources/webwidgets/"));
        QCOMPARE(QDir(run.local()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({"webwidgets"}));
    }
}

void tst_Faults::aFileWhereTheResourcesShouldBe()
{
    ProgramRun run;
    run.setScript(
        QStringLiteral("report(setups[0].split('ERROR').length - 1); afterReports(Quillet.quit);"));
    QVERIFY(sandbox::writeFile(run.local(), "precious"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({"2"}));
    QCOMPARE(sandbox::readFile(run.local()), QByteArray("precious"));
}

void tst_Faults::aCifThatIsNone_data()
{
    QTest::addColumn<QString>("path"); // HOME stands for the home folder
    QTest::newRow("folder") << "HOME";
    QTest::newRow("pipe") << "HOME/pipe";
    QTest::newRow("device") << "/dev/null";
    QTest::newRow("endless device") << "/dev/zero";
    QTest::newRow("missing") << "HOME/none.cif";
    QTest::newRow("a path that is too long") << "HOME/" + QString(5000, 'x');
    QTest::newRow("zero character") << "HOME/one\\0.cif";
}

void tst_Faults::aCifThatIsNone()
{
    QFETCH(QString, path);
    ProgramRun run;
    const QString good = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(good, cifText));
    QCOMPARE(::mkfifo(QFile::encodeName(run.inHome("pipe")).constData(), 0600), 0);
    run.setScript(QStringLiteral("Quillet.setCif('%1'); report('[' + Quillet.setCif('%2') + ']');"
                                 "afterReports(Quillet.quit);")
                      .arg(good, path.replace("HOME", run.home())));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({"[]"}));
    QCOMPARE(sandbox::readFile(run.local("tmpcif.cif")), cifText);
    QCOMPARE(sandbox::readFile(good), cifText);
}

void tst_Faults::anUnreadableCif()
{
    ProgramRun run;
    const QString cif = run.inHome("secret.cif");
    QVERIFY(sandbox::writeFile(cif, cifText));
    run.setScript(
        QStringLiteral("report('[' + Quillet.setCif('%1') + ']'); report(Quillet.saveCif());"
                       "afterReports(Quillet.quit);")
            .arg(cif));
    QVERIFY(run.giveHomeToTheUnprivileged());
    QVERIFY(QFile::setPermissions(cif, QFile::WriteOwner));
    QVERIFY(run.startUnprivileged());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({"[]", "false"}));
    QVERIFY(QFile::setPermissions(cif, QFile::ReadOwner));
    QCOMPARE(sandbox::readFile(cif), cifText);
}

void tst_Faults::anEmptyCif()
{
    ProgramRun run;
    const QString cif = run.inHome("empty.cif");
    QVERIFY(sandbox::writeFile(cif, ""));
    run.setScript(QStringLiteral("report(Quillet.setCif('%1')); report(Quillet.saveCif());"
                                 "afterReports(Quillet.quit);")
                      .arg(cif));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({cif, "true"}));
    QVERIFY(QFile::exists(run.local("tmpcif.cif")));
    QCOMPARE(QFileInfo(cif).size(), 0);
}

void tst_Faults::aCifOfOneGigabyte()
{
    ProgramRun run;
    const QString cif = run.inHome("huge.cif");
    const qint64 size = 1ll << 30;
    QFile file(cif);
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray line = "ATOM 1 C CA . ALA A 1 1 ? 1.000 2.000 3.000 1.00 10.00\n";
    const QByteArray block = line.repeated(20000);
    for (qint64 written = 0; written + block.size() < size; written += block.size())
        QCOMPARE(file.write(block), block.size());
    QVERIFY(file.seek(size - 10));
    QCOMPARE(file.write("\n_entity.\n"), 10);
    file.close();

    run.setScript(
        QStringLiteral("report(Quillet.setCif('%1')); afterReports(Quillet.quit);").arg(cif));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(120), 0);
    QCOMPARE(run.reports(), QStringList({"mmCIF: " + cif}));
    QCOMPARE(QFileInfo(run.local("tmpcif.cif")).size(), size);
}

void tst_Faults::aCifThatVanishes()
{
    ProgramRun run;
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, cifText));
    run.setScript(QStringLiteral("report(Quillet.setCif('%1')); afterReports(function () {"
                                 " setTimeout(function () { report(Quillet.saveCif()); "
                                 "afterReports(Quillet.quit); }, 500); });")
                      .arg(cif));
    QVERIFY(run.start());
    QVERIFY(run.waitForReports(1));
    QVERIFY(QFile::remove(cif));
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({cif, "true"}));
    QCOMPARE(sandbox::readFile(cif), cifText);
}

void tst_Faults::aCifThatBecomesAFolder()
{
    ProgramRun run;
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, cifText));
    run.setScript(QStringLiteral("report(Quillet.setCif('%1')); afterReports(function () {"
                                 " setTimeout(function () { report(Quillet.saveCif()); "
                                 "afterReports(Quillet.quit); }, 500); });")
                      .arg(cif));
    QVERIFY(run.start());
    QVERIFY(run.waitForReports(1));
    QVERIFY(QFile::remove(cif) && QDir().mkpath(cif + "/inside"));
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({cif, "false"}));
    QVERIFY(QFileInfo(cif + "/inside").isDir());
    QCOMPARE(sandbox::readFile(run.local("tmpcif.cif")), cifText);
}

void tst_Faults::aBadQuillet_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QByteArray>("html");
    QTest::newRow("crashes") << "printf half; kill -SEGV $$" << QByteArray("half");
    QTest::newRow("kills itself") << "kill -KILL $$" << QByteArray("");
    QTest::newRow("prints nothing") << "exit 3" << QByteArray("");
    QTest::newRow("prints to standard error only")
        << "echo 'no good' >&2; exit 1" << QByteArray("no good");
    QTest::newRow("closes its output and goes on")
        << "printf early; exec >&- 2>&-; sleep 1" << QByteArray("early");
    QTest::newRow("removes its folder") << "printf x; rm -rf \"$HOME/x\"" << QByteArray("x");
    QTest::newRow("prints bytes of all kinds")
        << "printf '\\200\\377\\303(\\001'" << QByteArray("\xC2\x80\xC3\xBF\xC3\x83(\x01");
}

void tst_Faults::aBadQuillet()
{
    QFETCH(QString, script);
    QFETCH(QByteArray, html);
    ProgramRun run;
    run.setQuillet(script);
    run.setOsascript(QString());
    run.setScript(make);
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    QCOMPARE(sandbox::readFile(run.local("webwidgets/tmptemp.html")), html);
}

void tst_Faults::aQuilletThatIsKilled()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("printf half; echo $$ >\"$HOME/pid\"; exec sleep 600"));
    run.setOsascript(QString());
    run.setScript(make);
    QVERIFY(run.start());
    QTRY_VERIFY(sandbox::readFile(run.inHome("pid")).endsWith('\n'));
    QCOMPARE(::kill(sandbox::readFile(run.inHome("pid")).trimmed().toInt(), SIGKILL), 0);
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    QCOMPARE(sandbox::readFile(run.local("webwidgets/tmptemp.html")), QByteArray("half"));
}

void tst_Faults::aQuilletThatFloods()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("head -c 200000000 /dev/zero | tr '\\0' x"));
    run.setOsascript(QString());
    run.setScript(make);
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(120), 0);
    QVERIFY(run.waitForOsascript());
    QCOMPARE(QFileInfo(run.local("webwidgets/tmptemp.html")).size(), 200000000);
}

void tst_Faults::aQuilletThatLeavesAGrandchild()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("sleep 600 & echo $! >\"$HOME/pid\"; printf done"));
    run.setOsascript(QString());
    run.setScript(make);
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0); // although the grandchild holds the pipe open
    QVERIFY(run.waitForOsascript());
    QCOMPARE(sandbox::readFile(run.local("webwidgets/tmptemp.html")), QByteArray("done"));
    ::kill(sandbox::readFile(run.inHome("pid")).trimmed().toInt(), SIGKILL);
}

void tst_Faults::aQuilletThatIsMissing()
{
    ProgramRun run;
    QVERIFY(QFile::remove(run.inApp("quillet")));
    run.setOsascript(QString());
    run.setScript(make + QStringLiteral("report('still here'); afterReports(Quillet.quit);"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({"still here"}));
    QVERIFY(run.osascriptCalls().isEmpty());
}

void tst_Faults::anOsascriptThatIsMissing()
{
    ProgramRun run;
    run.setQuillet(QStringLiteral("printf x"));
    QVERIFY(QFile::remove(run.inApp("osascript")));
    run.setScript(make);
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(sandbox::readFile(run.local("macscrlaunch")).startsWith("tell application"));
}

void tst_Faults::aBadPage_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("throws in the functions that are called")
        << "showsetupinfo = pdbResponse = function () { throw new Error('no'); };"
           "Quillet.getPdbCif('1abc'); location.hash = '#x';";
    QTest::newRow("has not the functions that are called")
        << "showsetupinfo = pdbResponse = undefined; Quillet.getPdbCif('1abc');";
    QTest::newRow("too few arguments")
        << "['setCif', 'getPdbCif', 'openWordTemplate', 'createWordTemplate'].forEach(function "
           "(name) {"
           " [[], [''], ['', '']].forEach(function (words) { if (name !== 'setCif' && name !== "
           "'getPdbCif' || !words.length)"
           " try { Quillet[name].apply(Quillet, words); report('no error in ' + name); } catch (e) "
           "{} }); });";
    QTest::newRow("arguments of other types")
        << "[undefined, null, 1e300, NaN, true, {}, [], function () {}, document, Quillet, "
           "QuilLet, new Date()]"
           ".forEach(function (thing) { try { Quillet.createWordTemplate(thing, thing, thing, "
           "thing);"
           " Quillet.getPdbCif(thing); if (thing) Quillet.setCif('/none' + thing); } catch (e) {} "
           "});";
    QTest::newRow("the window's slots with nonsense")
        << "try { QuilLet.pageLoaded('x'); QuilLet.winResize(); QuilLet.winResize(); "
           "QuilLet.setStyleSheet('}{');"
           " QuilLet.deleteLater(); Quillet.deleteLater(); } catch (e) {}";
    QTest::newRow("overwrites the objects")
        << "var mine = Quillet; Quillet = QuilLet = null; Quillet = mine;";
    QTest::newRow("opens windows")
        << "window.open('other.html'); window.open('http://127.0.0.1:1/'); window.close();";
    QTest::newRow("goes to the network") << "location.href = 'http://127.0.0.1:1/';";
    QTest::newRow("recursion") << "function deep() { deep(); } try { deep(); } catch (e) {}";
    QTest::newRow("huge argument") << "Quillet.setCif(new Array(5000000).join('x'));";
}

// Whatever the page does, the program goes on, and the page can still end it.
void tst_Faults::aBadPage()
{
    QFETCH(QString, script);
    ProgramRun run;
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, cifText));
    run.setScript(
        QStringLiteral("Quillet.setCif('%1');").arg(cif) + script +
        QStringLiteral("setTimeout(function () { report('alive'); afterReports(function () {"
                       " Quillet.quit(); }); }, 300);"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({"alive"}));
    QCOMPARE(sandbox::readFile(cif), cifText);
}

void tst_Faults::aPageThatIsMissing()
{
    ProgramRun run;
    QVERIFY(QFile::remove(run.inApp("resources/webwidgets/templates.html")));
    QVERIFY(run.start());
    const int window = run.waitForWindow();
    QVERIFY(window);
    QVERIFY(realinput::click(run.windowFrame(window).topRight() + QPoint(-20, 20)));
    QCOMPARE(run.exitCode(), 0);
}

void tst_Faults::aPageThatReloads()
{
    ProgramRun run;
    run.setScript(QStringLiteral(
        "window.name += 'x'; if (window.name.length < 6) { location.reload(); }"
        " else { report(window.name + setups.length); afterReports(Quillet.quit); }"));
    QVERIFY(run.start());
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.reports(), QStringList({"xxxxxx1"}));
}

namespace
{
// Something to drag a file from.
struct DragSource : QLabel {
    QString path;
    void mousePressEvent(QMouseEvent*) override
    {
        auto* drag = new QDrag(this);
        auto* dragged = new QMimeData;
        dragged->setUrls({QUrl::fromLocalFile(path)});
        drag->setMimeData(dragged);
        drag->exec(Qt::CopyAction);
    }
};
} // namespace

void tst_Faults::aDroppedFile()
{
    ProgramRun run;
    DragSource source;
    source.path = run.inHome("one.html");
    QVERIFY(sandbox::writeFile(source.path, "<p>another page"));
    run.setScript(QStringLiteral("setInterval(function () { report('here'); }, 200);"));
    QVERIFY(run.start());
    const int window = run.waitForWindow();
    QVERIFY(window && run.waitForReports(1));
    source.setGeometry(20, 20, 100, 60);
    QVERIFY(realinput::showAndActivate(source));
    QVERIFY(realinput::drag(source.mapToGlobal(QPoint(50, 30)), run.windowFrame(window).center()));
    const int before = run.reports().size();
    QVERIFY(run.waitForReports(before + 5)); // the page is still there
    QVERIFY(run.isRunning());
}

QTEST_MAIN(tst_Faults)
#include "tst_faults.moc"
