// What users do with the program, from the first click or key to the files on disk: the built
// program, its own page, input from the X server, stand-ins for quillet and the word processor.
#include "tests/endtoend/pageuser.h"
#include "tests/support/realinput.h"

#include <QDrag>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMimeData>
#include <QMouseEvent>
#include <QTest>
#include <QUrl>
#include <QWidget>

namespace
{
const QByteArray molecule = "data_I\n_chemical_formula_sum 'C2 H6 O'\n_cell_length_a "
                            "5\n_cell_length_b 6\n_cell_length_c 7\n";
const QByteArray macromolecule =
    "data_1ABC\n_entry.id 1ABC\n_entity.id 1\n_struct.title 'A small fold'\n";

// Something on the desktop that can be dragged from.
class DragSource : public QWidget
{
public:
    explicit DragSource(const QList<QUrl>& urls) : dragged(urls) { setGeometry(700, 700, 80, 80); }

protected:
    void mouseMoveEvent(QMouseEvent*) override
    {
        auto* content = new QMimeData;
        content->setUrls(dragged);
        auto* drag = new QDrag(this);
        drag->setMimeData(content);
        drag->exec(Qt::CopyAction);
    }

private:
    QList<QUrl> dragged;
};
} // namespace

class tst_PageFlows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void aManuscriptOfOnesOwnCif();
    void aManuscriptOfAnEntry();
    void aScatteringEntry();
    void anEntryThatDoesNotExist();
    void aWaitThatIsGivenUp();
    void aDroppedCif();
    void aDroppedPicture();
    void aFileUsedBefore();
    void writingBack();
    void aTemplateForTheJournalOfLastTime();
    void quilletThatDoesNotStart();
    void quilletThatTakesItsTime();
    void aHugeFile();
    void helpAndLargerText();
    void leaving();

private:
    // The same by mouse or by keyboard.
    bool use(PageUser& user, const QString& button);
    bool choose(PageUser& user, const QString& list, const QString& words, const QString& value);
    bool takeCif(PageUser& user, const QString& path);
    bool isMouse() const;
};

void tst_PageFlows::initTestCase_data()
{
    QTest::addColumn<bool>("byMouse");
    QTest::newRow("mouse") << true;
    QTest::newRow("keyboard") << false;
}

bool tst_PageFlows::isMouse() const
{
    QFETCH_GLOBAL(bool, byMouse);
    return byMouse;
}

bool tst_PageFlows::use(PageUser& user, const QString& button)
{
    return isMouse() ? user.click(button) : user.tabTo(button) && user.press("Return");
}

bool tst_PageFlows::choose(PageUser& user, const QString& list, const QString& words,
                           const QString& value)
{
    if (isMouse())
        return user.click(list) && user.type(words) && user.press("Return") &&
               user.sees(list, value);
    return user.tabTo(list) && user.type(words) && user.sees(list, value);
}

bool tst_PageFlows::takeCif(PageUser& user, const QString& path)
{
    return use(user, "choose-cif") && user.nameFile(path) &&
           user.sees("structure-name", QFileInfo(path).fileName());
}

void tst_PageFlows::aManuscriptOfOnesOwnCif()
{
    ProgramRun run;
    run.setQuillet("printf '<p>x</p>'");
    run.setOsascript(QString());
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, molecule));
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(takeCif(user, cif));
    QVERIFY(user.sees("structure-identity", QString::fromUtf8("C₂H₆O")));
    QVERIFY(user.sees("structure-note", "Missing: title"));
    QVERIFY(choose(user, "journal", "Journal Section C", "Journal Section C"));
    QVERIFY(choose(user, "category", "Research", "research papers"));
    QVERIFY(user.sees("manuscript-hint", "made from one.cif"));
    QVERIFY(use(user, "make-manuscript"));

    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    QCOMPARE(run.quilletCalls().size(), 1);
    QVERIFY(sandbox::readFile(run.local("publauthors/macstart.xml"))
                .contains("<jnlname>Journal Section C</jnlname>"
                          "<jnlcategory>research papers</jnlcategory>"));
}

void tst_PageFlows::aManuscriptOfAnEntry()
{
    ProgramRun run;
    run.setQuillet("printf '<p>x</p>'");
    run.setOsascript(QString());
    run.net.answer("http://" VEXAWORD_PDB_HOST "/view/1abc.cif",
                   LoopbackProxy::page(macromolecule));
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(isMouse() ? user.click("identifier") : user.tabTo("identifier"));
    QVERIFY(user.type(" 1abc "));
    QVERIFY(isMouse() ? user.click("fetch-cif") : user.press("Return"));
    QVERIFY(user.sees("structure-title", "A small fold"));
    QVERIFY(choose(user, "journal", "Journal Section F", "Journal Section F"));
    QVERIFY(use(user, "make-manuscript"));
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.quilletCalls().value(0).contains("<-htmmo6>"));
}

void tst_PageFlows::aScatteringEntry()
{
    ProgramRun run;
    run.setQuillet("printf '<p>x</p>'");
    run.setOsascript(QString());
    run.net.answer(
        "http://" VEXAWORD_WIDGET_HOST "/widgets/cifmol/getcif.php?type=sascif&artid=SASDVX1",
        LoopbackProxy::page(sandbox::readFile(VEXA_SOURCE_DIR "/examples/scattering.cif")));
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(isMouse() ? user.click("identifier") : user.tabTo("identifier"));
    QVERIFY(user.type("sasdvx1"));
    QVERIFY(isMouse() ? user.click("fetch-cif") : user.press("Return"));
    QVERIFY(user.sees("structure-kind", "Scattering"));
    QVERIFY(use(user, "structure-details"));
    QVERIFY(user.sees("dialog-text", "fetched as SASDVX1"));
    QVERIFY(use(user, "dialog-accept"));
    QVERIFY(choose(user, "journal", "Journal Section D", "Journal Section D"));
    QVERIFY(use(user, "make-manuscript"));
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.quilletCalls().value(0).contains("<-sas>"));
}

void tst_PageFlows::anEntryThatDoesNotExist()
{
    ProgramRun run;
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(isMouse() ? user.click("identifier") : user.tabTo("identifier"));
    QVERIFY(user.type("none"));
    QVERIFY(isMouse() ? user.click("fetch-cif") : user.press("Return"));
    QVERIFY(user.sees("structure-hint", "is not an identifier"));
    QVERIFY(user.hasFocus("identifier"));
    QVERIFY(user.press("ctrl+a"));
    QVERIFY(user.type("9zzz"));
    QVERIFY(isMouse() ? user.click("fetch-cif") : user.press("Return"));
    QVERIFY(user.sees("structure-hint", "No usable CIF came back for 9zzz"));
    QCOMPARE(user.text("identifier"), QString("9zzz"));
}

void tst_PageFlows::aWaitThatIsGivenUp()
{
    ProgramRun run;
    LoopbackProxy::Answer held = LoopbackProxy::page(macromolecule);
    held.held = true;
    const QByteArray url = "http://" VEXAWORD_PDB_HOST "/view/1abc.cif";
    run.net.answer(url, held);
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(isMouse() ? user.click("identifier") : user.tabTo("identifier"));
    QVERIFY(user.type("1abc"));
    QVERIFY(isMouse() ? user.click("fetch-cif") : user.press("Return"));
    QVERIFY(user.sees("fetch-text", "Fetching 1abc"));
    QVERIFY(use(user, "stop-waiting"));
    QVERIFY(user.sees("structure-hint", "No longer waiting for 1abc"));
    run.net.release(url);
    QVERIFY(user.sees("structure-hint", "arrived after all"));
}

void tst_PageFlows::aDroppedCif()
{
    if (!isMouse())
        QSKIP("skipped: nothing is dropped by keyboard");
    ProgramRun run;
    const QString cif = run.inHome(QString::fromUtf8("a Größe #1.cif"));
    QVERIFY(sandbox::writeFile(cif, molecule));
    PageUser user(run);
    QVERIFY(user.start());
    DragSource source({QUrl::fromLocalFile(cif)});
    source.show();
    QVERIFY(QTest::qWaitForWindowExposed(&source));
    QVERIFY(realinput::drag(source.mapToGlobal(QPoint(40, 40)), user.place("step-manuscript")));
    QVERIFY(user.sees("structure-name", QString::fromUtf8("a Größe #1.cif")));
    QCOMPARE(sandbox::readFile(run.local("tmpcif.cif")), molecule);
    QVERIFY(user.isEnabled("save-cif"));
}

void tst_PageFlows::aDroppedPicture()
{
    if (!isMouse())
        QSKIP("skipped: nothing is dropped by keyboard");
    ProgramRun run;
    PageUser user(run);
    QVERIFY(user.start());
    DragSource source({QUrl::fromLocalFile(VEXA_SOURCE_DIR "/docs/pictures/manuscript-1.png")});
    source.show();
    QVERIFY(QTest::qWaitForWindowExposed(&source));
    QVERIFY(realinput::drag(source.mapToGlobal(QPoint(40, 40)), user.place("step-structure")));
    QVERIFY(user.sees("structure-hint", "manuscript-1.png is not a CIF"));
}

void tst_PageFlows::aFileUsedBefore()
{
    ProgramRun run;
    const QString first = run.inHome("first.cif"), second = run.inHome("second.cif");
    QVERIFY(sandbox::writeFile(first, molecule));
    QVERIFY(sandbox::writeFile(second, macromolecule));
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(takeCif(user, first));
    QVERIFY(takeCif(user, second));
    run.program.kill();
    QVERIFY(run.program.waitForFinished());

    QVERIFY(user.start());
    QVERIFY(use(user, "recent"));
    QVERIFY(user.hasFocus("item " + second));
    if (isMouse()) {
        QVERIFY(user.click("item " + first));
    } else {
        QVERIFY(user.press("Down"));
        QVERIFY(user.hasFocus("item " + first));
        QVERIFY(user.press("Return"));
    }
    QVERIFY(user.sees("structure-name", "first.cif"));
    QCOMPARE(sandbox::readFile(run.local("tmpcif.cif")), molecule);
}

void tst_PageFlows::writingBack()
{
    ProgramRun run;
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, molecule));
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(takeCif(user, cif));
    QVERIFY(sandbox::writeFile(cif, "changed meanwhile"));
    QVERIFY(use(user, "save-cif"));
    QVERIFY(user.sees("dialog-text", cif));
    QVERIFY(isMouse() ? user.click("dialog-cancel") : user.press("Escape"));
    QVERIFY(user.hasFocus("save-cif"));
    QCOMPARE(sandbox::readFile(cif), QByteArray("changed meanwhile"));
    QVERIFY(use(user, "save-cif"));
    QVERIFY(use(user, "dialog-accept"));
    QVERIFY(user.sees("structure-hint", "Written back to one.cif."));
    QCOMPARE(sandbox::readFile(cif), molecule);
}

void tst_PageFlows::aTemplateForTheJournalOfLastTime()
{
    ProgramRun run;
    run.setOsascript(QString());
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(choose(user, "journal", "Quembly", "Quembly Review"));
    QVERIFY(choose(user, "category", "Short", "short communications"));
    QVERIFY(isMouse() ? user.click("sas") : user.tabTo("sas") && user.press("space"));
    QVERIFY(user.sees("manuscript-hint", "only the ready-made template"));
    QVERIFY(!user.isEnabled("make-manuscript"));
    QVERIFY(use(user, "quit"));
    QCOMPARE(run.exitCode(), 0);

    QVERIFY(user.start());
    QCOMPARE(user.text("journal"), QString("Quembly Review"));
    QCOMPARE(user.text("category"), QString("short communications"));
    QVERIFY(use(user, "open-template"));
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.waitForOsascript());
    QVERIFY(
        sandbox::readFile(run.local("macscrlaunch")).contains("/j_shortcommunications_sas.html"));
}

void tst_PageFlows::quilletThatDoesNotStart()
{
    ProgramRun run;
    run.setOsascript(QString());
    QVERIFY(QFile::remove(run.inApp("quillet")));
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, molecule));
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(takeCif(user, cif));
    QVERIFY(choose(user, "journal", "Journal Section C", "Journal Section C"));
    QVERIFY(use(user, "make-manuscript"));
    QVERIFY(user.sees("manuscript-hint", "quillet could not be started"));
    QVERIFY(user.hasFocus("make-manuscript"));
    QVERIFY(run.isRunning());
}

void tst_PageFlows::quilletThatTakesItsTime()
{
    ProgramRun run;
    run.setQuillet("sleep 5; printf '<p>x</p>'");
    run.setOsascript(QString());
    const QString cif = run.inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, molecule));
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(takeCif(user, cif));
    QVERIFY(choose(user, "journal", "Journal Section C", "Journal Section C"));
    QVERIFY(use(user, "make-manuscript"));
    QVERIFY(user.sees("making-text", " s. "));
    QVERIFY(!user.isEnabled("make-manuscript"));
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(run.quilletCalls().size(), 1);
}

// 300 million characters, most of them not even looked at; the page goes on meanwhile.
void tst_PageFlows::aHugeFile()
{
    if (!isMouse())
        QSKIP("skipped: the same as by mouse");
    ProgramRun run;
    const QString cif = run.inHome("huge.cif");
    QFile file(cif);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(macromolecule + "loop_\n_atom_site.id\n_atom_site.Cartn_x\n");
    const QByteArray atoms = QByteArray("1 2.3456\n").repeated(1000000);
    for (int i = 0; i < 33; ++i)
        QVERIFY(file.write(atoms) == atoms.size());
    file.close();
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(use(user, "choose-cif"));
    QVERIFY(user.nameFile(cif));
    QVERIFY(user.sees("structure-name", "huge.cif"));
    QElapsedTimer time;
    time.start();
    QVERIFY(user.sees("structure-note", "A large file: only its beginning was looked at."));
    qInfo("told after %lld ms", time.elapsed());
    QVERIFY(time.elapsed() < 10000);
    QVERIFY(user.sees("structure-title", "A small fold"));
}

void tst_PageFlows::helpAndLargerText()
{
    ProgramRun run;
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(isMouse() ? user.click("help") : user.press("F1"));
    QVERIFY(user.sees("dialog-text", "Make manuscript"));
    // What the set-up did at this first start is told here only.
    QVERIFY(!user.isShown("setup-strip"));
    QVERIFY(use(user, "dialog-other"));
    QVERIFY(user.sees("dialog-text", "OK: created  local resources folder"));
    QVERIFY(use(user, "dialog-accept"));
    QVERIFY(user.hasFocus(isMouse() ? "help" : "choose-cif"));

    if (isMouse()) {
        for (int i = 0; i < 2; ++i)
            QVERIFY(realinput::run({"keydown", "ctrl", "click", "4", "keyup", "ctrl"}));
    } else {
        QVERIFY(user.press("ctrl+plus"));
        QVERIFY(user.press("ctrl+plus"));
    }
    QTRY_VERIFY(user.textSize() > 16);
    QVERIFY(user.press("ctrl+minus"));
    QTRY_VERIFY(user.textSize() < 16);
    QVERIFY(user.press("ctrl+0"));
    QTRY_COMPARE(user.textSize(), 13.0);
}

void tst_PageFlows::leaving()
{
    ProgramRun run;
    PageUser user(run);
    QVERIFY(user.start());
    QVERIFY(use(user, "quit"));
    QCOMPARE(run.exitCode(), 0);
}

QTEST_MAIN(tst_PageFlows)
#include "tst_pageflows.moc"
