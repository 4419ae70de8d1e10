// The page as a user meets it, by mouse and keyboard, in a window like the program's. Every test
// runs on both pages. A picture of each state is compared with the one that is stored for it.
#include "bundlefiles.h"
#include "pagewindow.h"
#include "pictures.h"

#include <memory>

#include <QAbstractItemView>
#include <QElapsedTimer>
#include <QThread>
#include <QtTest>
#include <QWebElement>
#include <QWebFrame>
#include <QWebView>

namespace
{

const QString path = "/home/anna/structures/5i55.cif";

// What a page function is given to quote.
QString quoted(QString text)
{
    return "\"" + text.replace("\"", "\\\"") + "\"";
}

QByteArray example(const QString& name)
{
    return fileBytes(VEXA_SOURCE_DIR "/examples/" + name);
}

} // namespace

class TestPage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();

    void nothingIsCalledBeforeTheProgramIsThere();
    void pageWithoutTheProgramSaysSo();
    void reportArrivingWithTheProgramIsShown();

    void chosenCifIsShown_data();
    void chosenCifIsShown();
    void cardTellsWhatTheCifIsAbout_data();
    void cardTellsWhatTheCifIsAbout();
    void cardMarksWhatIsMissing();
    void largeFileIsLookedAtInItsBeginning();
    void recentFilesAreOffered();
    void choicesAreRemembered();
    void damagedMemoryDoesNoHarm_data();
    void damagedMemoryDoesNoHarm();
    void droppedCifIsTaken();
    void whatIsDraggedOverIsInvited();
    void anythingElseIsRefusedWithAWord_data();
    void anythingElseIsRefusedWithAWord();
    void fileGivenAtTheStartIsTaken();
    void dropsWaitForWhatIsGoingOn();
    void aFileThatCannotBeCopiedKeepsItsPlace();
    void aChangedCopyIsNotWrittenBack_data();
    void aChangedCopyIsNotWrittenBack();
    void aCutOffFileIsNoticed();
    void closedDialogChangesNothingButTheWritingBack();
    void writingBackAsksFirst();
    void writingBackSaysWhatHappened_data();
    void writingBackSaysWhatHappened();

    void identifierIsCheckedBeforeItIsSent_data();
    void identifierIsCheckedBeforeItIsSent();
    void enterInTheFieldFetches();
    void failedFetchIsExplainedAndKeepsTheStructure();
    void waitingCanBeStopped();
    void lateAnswerIsOwnedUpTo();
    void lateAnswerCannotTurnAWritingBackElsewhere();
    void answersOfTwoFetchesAreNotMixedUp();
    void longWaitIsMentioned();
    void scatteringEntrySuggestsAScatteringArticle();

    void everyOfferDoesWhatItSays();
    void scatteringIsAskedForOnlyWhereItIsOffered();
    void manuscriptNeedsAStructure();
    void doubtfulCombinationIsMentioned_data();
    void doubtfulCombinationIsMentioned();
    void pageStaysAliveWhileTheManuscriptIsMade();
    void failedManuscriptIsExplainedUntilSomethingChanges();
    void templateOpensWithoutACif();

    void tabVisitsWhatCanActInOrder();
    void everythingWorksByKeyboardAlone();
    void listsOpenByMouse();
    void listsOpenByKey();
    void quitIsAlwaysInReach();

    void setUpReportIsShownWhereItHelps_data();
    void setUpReportIsShownWhereItHelps();
    void helpExplainsInOneScreen();
    void shortcutsDoWhatTheirButtonsDo();
    void textCanBeEnlarged();
    void textsAreEasyToRead_data();
    void textsAreEasyToRead();
    void focusIsSeen();
    void reloadIsNotOffered();
    void everyStateFits_data();
    void everyStateFits();

private:
    // A window with the page loaded and the program there.
    PageWindow& open();
    void takeCif(const QString& answer, const QByteArray& copy = QByteArray());
    void fetch(const QString& code);
    void respond(const QString& message);
    void photograph(const QString& state);

    std::unique_ptr<PageWindow> window;
};

void TestPage::initTestCase_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("page") << "templates.html";
    QTest::newRow("compat") << "templates_compat.html";
}

void TestPage::initTestCase()
{
    QApplication::setCursorFlashTime(0); // pictures of a caret that is always there
}

void TestPage::init()
{
    window = std::make_unique<PageWindow>();
}

void TestPage::cleanup()
{
    const QStringList complaints = window->page()->complaints;
    window.reset();
    QCOMPARE(complaints, QStringList());
}

PageWindow& TestPage::open()
{
    QFETCH_GLOBAL(QString, file);
    if (!window->load(file))
        qFatal("the page could not be loaded");
    return *window;
}

void TestPage::takeCif(const QString& answer, const QByteArray& copy)
{
    window->program.onSetCif = [answer, copy, this] {
        if (!copy.isEmpty())
            window->setWorkingCopy(copy);
        return answer;
    };
    window->click("choose-cif");
    if (!copy.isEmpty())
        QTRY_VERIFY(window->isEnabled("structure-details"));
}

void TestPage::fetch(const QString& code)
{
    window->focus("identifier");
    window->type(code);
    window->click("fetch-cif");
}

void TestPage::respond(const QString& message)
{
    window->evaluate("pdbResponse(" + quoted(message) + ");");
}

void TestPage::photograph(const QString& state)
{
    QFETCH_GLOBAL(QString, file);
    const QString name = (file.contains("compat") ? "compat-" : "page-") + state;
    // The other page has the same states by the same script; some of them are enough.
    static const QStringList ofCompat = {"start",         "card-small_molecule",
                                         "card-missing",  "recent",
                                         "write-back",    "making",
                                         "fetching",      "fetch-failed",
                                         "setup-failed",  "help",
                                         "details",       "full-as-opened",
                                         "full-smallest", "full-large",
                                         "text-200"};
    if (file.contains("compat") && !ofCompat.contains(state))
        return;
    // A picture of something that turns is never the same.
    window->evaluate("document.querySelector('.spinner').style.animationName = 'none';");
    const QString difference = pictures::compare(name, window->photograph());
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

// The start

void TestPage::nothingIsCalledBeforeTheProgramIsThere()
{
    QFETCH_GLOBAL(QString, file);
    QVERIFY(window->load(file, false));
    for (const char* id :
         {"choose-cif", "identifier", "fetch-cif", "make-manuscript", "open-template", "quit"})
        QVERIFY2(!window->isEnabled(id), id);
    QCOMPARE(window->text("manuscript-hint"), QString("Starting…"));
    window->click("choose-cif");
    window->choose("journal", "Journal Section D");
    QCOMPARE(window->value("journal"), QString("Journal Section D"));
    QVERIFY(!window->isEnabled("open-template"));

    window->publish();
    QTRY_VERIFY(window->isEnabled("choose-cif"));
    QVERIFY(window->isEnabled("open-template"));
    QVERIFY(window->isEnabled("quit"));
    QCOMPARE(window->program.calls, QStringList());
}

void TestPage::pageWithoutTheProgramSaysSo()
{
    QFETCH_GLOBAL(QString, file);
    window->hurryTimers(50);
    QVERIFY(window->load(file, false));
    QTRY_VERIFY(window->text("manuscript-hint").contains("works inside Vexa Word"));
    // It may still come: a slow start is no reason to give up.
    window->publish();
    QTRY_VERIFY(window->isEnabled("choose-cif"));
    QCOMPARE(window->text("manuscript-hint"), QString("Choose a journal first."));
}

// The program publishes itself and hands over the report in one go.
void TestPage::reportArrivingWithTheProgramIsShown()
{
    QFETCH_GLOBAL(QString, file);
    QVERIFY(window->load(file, false));
    window->publish();
    window->evaluate("showsetupinfo(\"ERROR: unable to create local resources folder: /x\");");
    QVERIFY(window->isVisible("setup-strip"));
    QTRY_VERIFY(window->isEnabled("choose-cif"));
    QVERIFY(window->isVisible("setup-strip"));
    QTRY_COMPARE(window->focused(), QString("choose-cif"));
}

// Structure

void TestPage::chosenCifIsShown_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kind");
    QTest::newRow("macromolecular") << "mmCIF: " + path << "5i55.cif"
                                    << "Macromolecule";
    QTest::newRow("other") << path << "5i55.cif"
                           << "";
    QTest::newRow("at the root") << "/a.cif"
                                 << "a.cif"
                                 << "";
    QTest::newRow("markup in the name") << "/home/<b>&amp;/a <i>\"b\".cif"
                                        << "a <i>\"b\".cif"
                                        << "";
    QTest::newRow("not ASCII") << QString::fromUtf8("mmCIF: /home/ä/Größe α.cif")
                               << QString::fromUtf8("Größe α.cif") << "Macromolecule";
}

void TestPage::chosenCifIsShown()
{
    QFETCH(QString, answer);
    PageWindow& page = open();
    QVERIFY(!page.isVisible("structure-card"));
    takeCif(answer);
    QCOMPARE(page.program.calls, QStringList("setCif()"));
    QVERIFY(page.isVisible("structure-card"));
    QTEST(page.text("structure-name"), "name");
    QTEST(page.text("structure-kind"), "kind");
    QVERIFY(page.isEnabled("save-cif"));
    // There is no working copy behind this one.
    QTRY_VERIFY(page.text("structure-note").contains("cannot be looked at"));
    QVERIFY(!page.isEnabled("structure-details"));
}

void TestPage::cardTellsWhatTheCifIsAbout_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("identity");
    QTest::addColumn<QString>("quality");
    QTest::newRow("small molecule")
        << "small_molecule.cif"
        << "Small molecule"
        << "Hydrogen-bonded chains" << QString::fromUtf8("P 2₁/c") << "R 0.0389";
    QTest::newRow("macromolecule")
        << "macromolecule.cif"
        << "Macromolecule"
        << "zipper domain" << QString::fromUtf8("24.61, 27.08, 39.37 Å") << "Okonjo";
    QTest::newRow("scattering") << "scattering.cif"
                                << "Scattering"
                                << "bends its operator"
                                << "SASDVX1"
                                << "Rg 2.578 nm";
}

void TestPage::cardTellsWhatTheCifIsAbout()
{
    QFETCH(QString, file);
    QFETCH(QString, title);
    QFETCH(QString, identity);
    QFETCH(QString, quality);
    PageWindow& page = open();
    takeCif("/home/anna/" + file, example(file));
    QTEST(page.text("structure-kind"), "kind");
    QVERIFY(page.text("structure-title").contains(title));
    QVERIFY(page.text("structure-identity").contains(identity));
    QVERIFY(page.text("structure-quality").contains(quality));
    QVERIFY(!page.isVisible("structure-note"));
    QVERIFY(page.isVisible("structure-sketch"));
    // Something is drawn: the canvas is not of one colour.
    QVERIFY(page.element("structure-sketch")
                .evaluateJavaScript("var d = this.getContext('2d').getImageData(0, 0, this.width,"
                                    " this.height).data, n = 0;"
                                    "for (var i = 3; i < d.length; i += 4) n += d[i] > 0; n > 50")
                .toBool());
    photograph("card-" + file.section('.', 0, 0));

    page.click("structure-details");
    const QString text = page.text("dialog-text");
    for (const QString& part : {title, identity.section(',', 0, 0), "/home/anna/" + file})
        QVERIFY2(text.contains(part), qPrintable(part));
    if (file == "macromolecule.cif")
        photograph("details");
    page.press(Qt::Key_Escape);
    QCOMPARE(page.focused(), QString("structure-details"));
}

void TestPage::cardMarksWhatIsMissing()
{
    PageWindow& page = open();
    takeCif(path, "data_x\n_cell_length_a 5\n_cell_length_b 6\n_cell_length_c 7\n");
    QCOMPARE(page.text("structure-note"),
             QString("Missing: title, formula, space group, R factors, authors."));
    QCOMPARE(page.element("structure-note").attribute("data-kind"), QString("doubt"));
    QVERIFY(!page.isVisible("structure-sketch"));
    photograph("card-missing");
    page.click("structure-details");
    QCOMPARE(page.element("dialog-text").findAll("dd.missing").count(), 5);
    photograph("details-missing");
    page.press(Qt::Key_Escape);

    takeCif(path, "nothing of the kind");
    QVERIFY(page.text("structure-note").startsWith("This does not look like a CIF"));
    // The next structure's card says nothing of the one before.
    takeCif(path, example("small_molecule.cif"));
    QVERIFY(!page.isVisible("structure-note"));
}

// Far more than the page looks at, and it goes on working meanwhile.
void TestPage::largeFileIsLookedAtInItsBeginning()
{
    PageWindow& page = open();
    QByteArray text = example("macromolecule.cif");
    const QByteArray atoms("ATOM 1 CA ? 12.345 23.456 34.567 1.00 20.00\n");
    text += "loop_\n_x.a\n_x.b\n_x.c\n_x.d\n_x.e\n_x.f\n_x.g\n_x.h\n_x.i\n";
    text += atoms.repeated(40000000 / atoms.size());
    page.evaluate("longest = 0; (function () { var last = Date.now(); setInterval(function () {"
                  " longest = Math.max(longest, Date.now() - last); last = Date.now(); }, 10);"
                  "}());");
    window->setWorkingCopy(text);
    window->program.onSetCif = [] { return "mmCIF: " + path; };
    page.click("choose-cif");
    page.evaluate("longest = 0;");
    QTRY_VERIFY_WITH_TIMEOUT(page.isEnabled("structure-details"), 20000);
    const int longest = page.evaluate("longest").toInt();
    qInfo("stood still for %d ms at most", longest);
    QVERIFY(longest < 1500); // many times what it takes, for machines that are busy
    QVERIFY(page.text("structure-note").startsWith("A large file: only its beginning"));
    QVERIFY(page.text("structure-title").contains("zipper"));
    photograph("card-large");
}

// Files used before

void TestPage::recentFilesAreOffered()
{
    PageWindow& page = open();
    QTemporaryDir folder;
    page.rememberIn(folder.filePath("memory"));
    QVERIFY(!page.isVisible("recent"));
    for (const char* name : {"1", "2", "3", "4", "5", "6", "7", "3"})
        takeCif(QString("/home/anna/cifs/%1.cif").arg(name));
    const auto offered = [&page] {
        QStringList names;
        for (QWebElement item : page.element("recent-menu").findAll(".item-name"))
            names << item.toPlainText();
        return names;
    };
    page.click("recent");
    QVERIFY(page.isVisible("recent-menu"));
    QCOMPARE(offered(), QStringList({"3.cif", "7.cif", "6.cif", "5.cif", "4.cif", "2.cif"}));
    photograph("recent");
    QTest::mouseClick(page.view(), Qt::LeftButton, Qt::NoModifier,
                      page.box("step-manuscript").topLeft() + QPoint(12, 12));
    QVERIFY(!page.isVisible("recent-menu"));

    // By mouse.
    page.program.calls.clear();
    page.program.onSetCif = [] { return QString("/home/anna/cifs/6.cif"); };
    page.click("recent");
    page.evaluate("document.querySelectorAll('.item')[2].id = 'third'");
    page.click("third");
    QCOMPARE(page.program.calls, QStringList("setCif(/home/anna/cifs/6.cif)"));
    QCOMPARE(page.text("structure-name"), QString("6.cif"));
    QVERIFY(!page.isVisible("recent-menu"));
    QCOMPARE(page.focused(), QString("recent"));

    // By keyboard; a file that is gone leaves the list.
    page.program.calls.clear();
    page.program.onSetCif = [] { return QString(); };
    page.press(Qt::Key_Down);
    page.press(Qt::Key_Down);
    page.press(Qt::Key_Return);
    QCOMPARE(page.program.calls, QStringList("setCif(/home/anna/cifs/3.cif)"));
    QTRY_VERIFY(page.text("structure-hint").startsWith("3.cif cannot be read any more"));
    QCOMPARE(page.text("structure-name"), QString("6.cif"));
    QVERIFY(!page.isEnabled("save-cif"));
    page.press(Qt::Key_Space);
    QVERIFY(!offered().contains("3.cif"));
    page.press(Qt::Key_Up);
    page.press(Qt::Key_Escape);
    QVERIFY(!page.isVisible("recent-menu"));
    QCOMPARE(page.focused(), QString("recent"));
}

void TestPage::choicesAreRemembered()
{
    QTemporaryDir folder;
    QFETCH_GLOBAL(QString, file);
    window->rememberIn(folder.filePath("memory"));
    {
        PageWindow& page = open();
        takeCif("/home/anna/a \"b\"; c=ä.cif");
        page.choose("journal", "Journal Section D");
        page.choose("category", "Short communications");
        page.click("sas");
        page.press(Qt::Key_Plus, Qt::ControlModifier);
    }
    window = std::make_unique<PageWindow>();
    window->rememberIn(folder.filePath("memory"));
    {
        PageWindow& page = open();
        QCOMPARE(page.value("journal"), QString("Journal Section D"));
        QCOMPARE(page.value("category"), QString("short communications"));
        QVERIFY(page.element("sas").evaluateJavaScript("this.checked").toBool());
        QVERIFY(page.isEnabled("open-template"));
        QVERIFY(page.evaluate("parseFloat(document.documentElement.style.fontSize) > 13").toBool());
        page.click("recent");
        QCOMPARE(page.element("recent-menu").findFirst(".item-name").toPlainText(),
                 QString::fromUtf8("a \"b\"; c=ä.cif"));
        page.press(Qt::Key_Escape);
        page.focus("journal");
        page.press(Qt::Key_Home);
    }
    window = std::make_unique<PageWindow>();
    window->rememberIn(folder.filePath("memory"));
    QCOMPARE(open().value("journal"), QString());
}

void TestPage::damagedMemoryDoesNoHarm_data()
{
    QTest::addColumn<QByteArray>("memory");
    QTest::newRow("no JSON") << QByteArray("destination=%7Bjournal\nrecent=x\ntext=%\n");
    QTest::newRow("other types") << QByteArray(
        "destination=%5B1%5D\nrecent=%7B%7D\ntext=%22x%22\n");
    QTest::newRow("other journals") << QByteArray(
        "destination=%7B%22journal%22%3A%22None%22%7D\nrecent=%5B1%2Cnull%5D\ntext=99\n");
    QTest::newRow("null") << QByteArray("destination=null\nrecent=null\ntext=null\n");
}

void TestPage::damagedMemoryDoesNoHarm()
{
    QFETCH(QByteArray, memory);
    QTemporaryDir folder;
    QFile file(folder.filePath("memory"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(memory) == memory.size());
    file.close();
    window->rememberIn(file.fileName());
    PageWindow& page = open();
    QCOMPARE(page.value("journal"), QString());
    QVERIFY(!page.isVisible("recent"));
    QCOMPARE(page.evaluate("document.documentElement.style.fontSize").toString(), QString("13px"));
}

// Drops

void TestPage::droppedCifIsTaken()
{
    PageWindow& page = open();
    QTemporaryDir folder;
    const QString name = folder.filePath(QString::fromUtf8("Größe 100% #1?.cif"));
    QVERIFY(QFile::copy(VEXA_SOURCE_DIR "/examples/small_molecule.cif", name));
    page.setWorkingCopy(example("small_molecule.cif"));
    page.program.onSetCif = [&name] { return name; };
    page.drop(name);
    QTRY_COMPARE(page.program.calls, QStringList("setCif(" + name + ")"));
    QCOMPARE(page.element("structure-name").attribute("title"), name);
    QVERIFY(page.isEnabled("save-cif"));
    page.click("recent");
    QVERIFY(page.isVisible("recent-menu"));
}

void TestPage::whatIsDraggedOverIsInvited()
{
    PageWindow& page = open();
    page.evaluate("fileOver(true)");
    photograph("drag-over");
    page.evaluate("fileOver(false)");
    photograph("start");
}

void TestPage::anythingElseIsRefusedWithAWord_data()
{
    QTest::addColumn<QString>("dropped");
    QTest::addColumn<QString>("words");
    QTest::newRow("no local file") << ""
                                   << "Only a CIF can be dropped here, one at a time.";
    QTest::newRow("text") << VEXA_SOURCE_DIR "/LICENSE"
                          << "LICENSE is not a CIF";
    QTest::newRow("picture") << VEXA_SOURCE_DIR "/docs/pictures/manuscript-1.png"
                             << "manuscript-1.png is not a CIF";
    QTest::newRow("folder") << VEXA_SOURCE_DIR "/docs"
                            << "docs ";
    QTest::newRow("missing") << "/nowhere/x.cif"
                             << "x.cif cannot be read";
}

void TestPage::anythingElseIsRefusedWithAWord()
{
    QFETCH(QString, dropped);
    QFETCH(QString, words);
    PageWindow& page = open();
    page.drop(dropped);
    QTRY_COMPARE(page.element("structure-hint").attribute("data-kind"), QString("doubt"));
    QVERIFY2(page.text("structure-hint").startsWith(words),
             qPrintable(page.text("structure-hint")));
    QCOMPARE(page.program.calls, QStringList());
    if (dropped.endsWith("LICENSE"))
        photograph("drop-refused");
}

// The program hands a file over as soon as the page is loaded.
void TestPage::fileGivenAtTheStartIsTaken()
{
    QFETCH_GLOBAL(QString, file);
    QVERIFY(window->load(file, false));
    window->setWorkingCopy(example("macromolecule.cif"));
    window->program.onSetCif = [] { return "mmCIF: " + path; };
    window->drop(VEXA_SOURCE_DIR "/examples/macromolecule.cif");
    window->publish();
    QTRY_COMPARE(window->text("structure-name"), QString("5i55.cif"));
    QCOMPARE(window->program.calls,
             QStringList("setCif(" VEXA_SOURCE_DIR "/examples/macromolecule.cif)"));
}

void TestPage::dropsWaitForWhatIsGoingOn()
{
    PageWindow& page = open();
    const QString cif = VEXA_SOURCE_DIR "/examples/macromolecule.cif";
    fetch("5i55");
    page.program.calls.clear();
    page.drop(cif);
    QCOMPARE(page.text("structure-hint"), QString("Not taken: Waiting for 5i55."));
    page.evaluate("fileOver(true)");
    QCOMPARE(page.element("page").attribute("data-drag"), QString());
    page.click("stop-waiting");
    page.press(Qt::Key_F1);
    page.drop(cif);
    QCOMPARE(page.text("structure-hint"), QString("Not taken: Close this first."));
    page.drop(QString());
    QCOMPARE(page.program.calls, QStringList());
}

// A file that can be read, and a program that could not copy it.
void TestPage::aFileThatCannotBeCopiedKeepsItsPlace()
{
    PageWindow& page = open();
    QTemporaryDir folder;
    page.rememberIn(folder.filePath("memory"));
    const QString cif = VEXA_SOURCE_DIR "/examples/macromolecule.cif";
    takeCif(cif);
    takeCif("/home/anna/other.cif");
    page.program.onSetCif = [] { return QString(); };
    page.drop(cif);
    QTRY_VERIFY(page.text("structure-hint").startsWith("macromolecule.cif could not be copied."));
    page.click("recent");
    page.press(Qt::Key_Down);
    page.press(Qt::Key_Return);
    QVERIFY(page.text("structure-hint").startsWith("macromolecule.cif could not be copied."));
    page.drop("/nowhere/x.cif"); // read later than the other
    QTRY_VERIFY(page.text("structure-hint").startsWith("x.cif cannot be read"));
    page.click("recent");
    QCOMPARE(page.element("recent-menu").findAll(".item").count(), 2);
}

void TestPage::aChangedCopyIsNotWrittenBack_data()
{
    QTest::addColumn<QByteArray>("copy");
    QTest::newRow("letters of another encoding")
        << QByteArray("data_x\n_cell_length_a 1\n# Carb\xEF\xBF\xBD\n");
    QTest::newRow("no line ends") << QByteArray("data_x_cell_length_a 1_cell_length_b 2");
}

void TestPage::aChangedCopyIsNotWrittenBack()
{
    QFETCH(QByteArray, copy);
    PageWindow& page = open();
    takeCif(path, copy);
    QTRY_VERIFY(!page.isEnabled("save-cif"));
    QVERIFY(page.element("save-cif").attribute("title").contains("lost in the copy"));
    takeCif(path, "data_x\n_cell_length_a 1\n# Carb\xC3\xB3\n");
    QTRY_VERIFY(page.isEnabled("structure-details"));
    QVERIFY(page.isEnabled("save-cif"));
}

void TestPage::aCutOffFileIsNoticed()
{
    PageWindow& page = open();
    takeCif(path, "data_x\n_cell_length_a 1\n_publ_section_title\n;\nA title\n");
    QTRY_VERIFY(page.text("structure-note").startsWith("The file ends inside a text"));
}

void TestPage::closedDialogChangesNothingButTheWritingBack()
{
    PageWindow& page = open();
    takeCif("");
    QVERIFY(!page.isVisible("structure-card"));
    QVERIFY(page.text("structure-hint").startsWith("No CIF was taken"));

    takeCif("mmCIF: " + path, example("macromolecule.cif"));
    QVERIFY(!page.isVisible("structure-hint"));
    takeCif("");
    QCOMPARE(page.text("structure-name"), QString("5i55.cif"));
    QCOMPARE(page.text("structure-hint"),
             QString("No other CIF taken. To write back, choose the file again."));
    // The program would now write nowhere, or to a file that it could not read.
    QVERIFY(!page.isEnabled("save-cif"));
    QCOMPARE(page.element("save-cif").attribute("title"),
             QString("To write back, choose the file again."));
    photograph("dialog-closed");

    takeCif(path);
    QVERIFY(page.isEnabled("save-cif"));
}

void TestPage::writingBackAsksFirst()
{
    PageWindow& page = open();
    takeCif("mmCIF: " + path, example("macromolecule.cif"));
    page.program.calls.clear();

    page.click("save-cif");
    QVERIFY(page.isVisible("dialog"));
    QCOMPARE(page.text("dialog-title"), QString("Write back to 5i55.cif?"));
    QVERIFY(page.text("dialog-text").contains(path));
    QCOMPARE(page.focused(), QString("dialog-cancel"));
    photograph("write-back");
    page.click("dialog-cancel");
    QVERIFY(!page.isVisible("dialog"));
    QCOMPARE(page.focused(), QString("save-cif"));

    page.click("save-cif");
    page.press(Qt::Key_Escape);
    QVERIFY(!page.isVisible("dialog"));
    QCOMPARE(page.program.calls, QStringList());

    page.click("save-cif");
    page.click("dialog-accept");
    QVERIFY(!page.isVisible("dialog"));
    QCOMPARE(page.program.calls, QStringList("saveCif()"));
}

void TestPage::writingBackSaysWhatHappened_data()
{
    QTest::addColumn<bool>("written");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("words");
    QTest::newRow("written") << true << "good"
                             << "Written back to 5i55.cif.";
    QTest::newRow("not-written") << false << "error"
                                 << "5i55.cif could not be written.";
}

void TestPage::writingBackSaysWhatHappened()
{
    QFETCH(bool, written);
    QFETCH(QString, words);
    PageWindow& page = open();
    takeCif(path);
    page.program.onSaveCif = [written] { return written; };
    page.click("save-cif");
    page.click("dialog-accept");
    QVERIFY2(page.text("structure-hint").startsWith(words),
             qPrintable(page.text("structure-hint")));
    QTEST(page.element("structure-hint").attribute("data-kind"), "kind");
    photograph(QString("write-back-") + QTest::currentDataTag());
}

// Retrieval

void TestPage::identifierIsCheckedBeforeItIsSent_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("sent"); // empty: refused
    QTest::newRow("PDB code") << "5I55"
                              << "5I55";
    QTest::newRow("lower case stays") << "1abc"
                                      << "1abc";
    QTest::newRow("blanks around") << "  5I55 "
                                   << "5I55";
    QTest::newRow("extended PDB code") << "pdb_00005i55"
                                       << "pdb_00005i55";
    QTest::newRow("SAS code") << "SASDA52"
                              << "SASDA52";
    QTest::newRow("SAS code in lower case") << "sasda52"
                                            << "SASDA52";
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("blanks") << "   "
                            << "";
    QTest::newRow("too short") << "5I5"
                               << "";
    QTest::newRow("too long") << "5I555"
                              << "";
    QTest::newRow("letter first") << "I555"
                                  << "";
    QTest::newRow("SAS too short") << "SASDA5"
                                   << "";
    QTest::newRow("SAS too long") << "SASDA523"
                                  << "";
    QTest::newRow("path") << "../5I55"
                          << "";
    QTest::newRow("blank inside") << "5I 55"
                                  << "";
}

void TestPage::identifierIsCheckedBeforeItIsSent()
{
    QFETCH(QString, typed);
    QFETCH(QString, sent);
    PageWindow& page = open();
    fetch(typed);
    if (sent.isEmpty()) {
        QCOMPARE(page.program.calls, QStringList());
        QVERIFY(page.text("structure-hint").contains("5I55"));
        QCOMPARE(page.element("structure-hint").attribute("data-kind"), QString("doubt"));
        QCOMPARE(page.focused(), QString("identifier"));
        QVERIFY(!page.isVisible("fetch-progress"));
        if (typed == "5I 55")
            photograph("identifier-refused");
    } else {
        QCOMPARE(page.program.calls, QStringList("getPdbCif(" + sent + ")"));
        QVERIFY(page.isVisible("fetch-progress"));
    }
}

void TestPage::enterInTheFieldFetches()
{
    PageWindow& page = open();
    page.focus("identifier");
    page.type("5i55");
    page.press(Qt::Key_Return);
    QCOMPARE(page.program.calls, QStringList("getPdbCif(5i55)"));
    QVERIFY(page.text("fetch-text").startsWith("Fetching 5i55"));
    QVERIFY(!page.isVisible("structure-hint"));
    for (const char* id : {"choose-cif", "identifier", "fetch-cif", "make-manuscript"})
        QVERIFY2(!page.isEnabled(id), id);
    QCOMPARE(page.focused(), QString("stop-waiting"));
    photograph("fetching");

    respond("OK");
    QVERIFY(!page.isVisible("fetch-progress"));
    QCOMPARE(page.text("structure-name"), QString("5i55"));
    QCOMPARE(page.text("structure-kind"), QString("Macromolecule"));
    QCOMPARE(page.value("identifier"), QString());
    // There is no file of the user's behind it.
    QVERIFY(!page.isEnabled("save-cif"));
    QVERIFY(page.text("structure-hint").contains("no file of your own"));
    QCOMPARE(page.focused(), QString("journal"));
    photograph("fetched");
}

void TestPage::failedFetchIsExplainedAndKeepsTheStructure()
{
    PageWindow& page = open();
    takeCif(path);
    fetch("5i55");
    respond("Failed to retrieve mmCIF from PDB");
    QVERIFY(page.text("structure-hint").startsWith("No usable CIF came back for 5i55."));
    QCOMPARE(page.element("structure-hint").attribute("data-kind"), QString("error"));
    QCOMPARE(page.text("structure-name"), QString("5i55.cif"));
    QVERIFY(page.isEnabled("save-cif"));
    QCOMPARE(page.focused(), QString("identifier"));
    QCOMPARE(page.value("identifier"), QString("5i55"));
    photograph("fetch-failed");

    // The next action starts afresh.
    takeCif(path);
    QVERIFY(!page.isVisible("structure-hint"));
}

void TestPage::waitingCanBeStopped()
{
    PageWindow& page = open();
    fetch("5i55");
    page.click("stop-waiting");
    QVERIFY(!page.isVisible("fetch-progress"));
    QVERIFY(page.isEnabled("choose-cif"));
    QVERIFY(page.text("structure-hint").startsWith("No longer waiting for 5i55."));
    QCOMPARE(page.focused(), QString("identifier"));

    // Its failure is of no interest any more.
    takeCif(path);
    respond("Failed to retrieve mmCIF from PDB");
    QVERIFY(!page.isVisible("structure-hint"));
    QCOMPARE(page.text("structure-name"), QString("5i55.cif"));
}

void TestPage::lateAnswerIsOwnedUpTo()
{
    PageWindow& page = open();
    fetch("5i55");
    page.click("stop-waiting");
    takeCif(path);
    // By now the program works on the entry, whatever the page says.
    respond("OK");
    QCOMPARE(page.text("structure-name"), QString("5i55"));
    QVERIFY(page.text("structure-hint").contains("arrived after all"));
    QVERIFY(!page.isEnabled("save-cif"));
}

void TestPage::lateAnswerCannotTurnAWritingBackElsewhere()
{
    PageWindow& page = open();
    fetch("5i55");
    page.click("stop-waiting");
    takeCif(path);
    page.click("save-cif");
    respond("OK");
    page.program.calls.clear();
    page.click("dialog-accept");
    QCOMPARE(page.program.calls, QStringList());
    QVERIFY(page.text("structure-hint").startsWith("Nothing was written back: 5i55"));
}

void TestPage::answersOfTwoFetchesAreNotMixedUp()
{
    PageWindow& page = open();
    fetch("1abc");
    page.click("stop-waiting");
    page.element("identifier").evaluateJavaScript("this.value = ''");
    fetch("2xyz");
    // The answer does not tell which of the two it is.
    respond("OK");
    QCOMPARE(page.text("structure-name"), QString("1abc or 2xyz"));
    respond("OK");
    QCOMPARE(page.text("structure-name"), QString("1abc or 2xyz"));
    fetch("3uvw");
    respond("OK");
    QCOMPARE(page.text("structure-name"), QString("3uvw"));

    // Asked for twice, and with another: the entry says which it is.
    for (const char* code : {"1abc", "0vex", "0vex"}) {
        fetch(code);
        page.click("stop-waiting");
        page.element("identifier").evaluateJavaScript("this.value = ''");
    }
    page.setWorkingCopy(example("macromolecule.cif"));
    respond("OK");
    QTRY_COMPARE(page.text("structure-name"), QString("0vex"));
    fetch("2xyz");
    respond("Failed to retrieve mmCIF from PDB");
    QVERIFY(page.text("structure-hint").contains("came back for 1abc or 0vex or 2xyz."));
}

void TestPage::longWaitIsMentioned()
{
    window->hurryTimers(50);
    PageWindow& page = open();
    fetch("5i55");
    QTRY_VERIFY(page.text("fetch-text").contains("no answer yet"));
    respond("OK");
    fetch("1abc");
    QVERIFY(!page.text("fetch-text").contains("no answer yet"));
}

void TestPage::scatteringEntrySuggestsAScatteringArticle()
{
    PageWindow& page = open();
    fetch("SASDA52");
    respond("OK");
    page.choose("journal", "Journal Section D");
    QVERIFY(page.element("sas").evaluateJavaScript("this.checked").toBool());
    page.click("make-manuscript");
    QVERIFY(page.program.calls.contains(
        "createWordTemplate(, Journal Section D, research papers, sas)"));

    page.click("sas");
    QVERIFY(page.text("manuscript-hint").contains("no SAS article"));
    takeCif("mmCIF: " + path);
    fetch("SASDA52");
    respond("OK");
    QVERIFY(page.element("sas").evaluateJavaScript("this.checked").toBool());
    takeCif("mmCIF: " + path); // what was suggested is not wanted for everything
    QVERIFY(!page.element("sas").evaluateJavaScript("this.checked").toBool());
    fetch("SASDA52");
    respond("OK");
    page.choose("journal", "Journal Section C");
    QCOMPARE(page.element("manuscript-hint").attribute("data-kind"), QString("doubt"));
}

// Destination and manuscript

void TestPage::everyOfferDoesWhatItSays()
{
    PageWindow& page = open();
    takeCif("mmCIF: " + path);
    const QVariantList journals = page.evaluate("VexaJournals").toList();
    QCOMPARE(journals.size(), 8);
    for (const QVariant& journalValue : journals) {
        const QVariantMap journal = journalValue.toMap();
        const QString name = journal["name"].toString();
        page.choose("journal", name);
        QCOMPARE(page.value("journal"), name);
        for (const QVariant& categoryValue : journal["categories"].toList()) {
            const QVariantMap category = categoryValue.toMap();
            const QString cat = category["name"].toString();
            page.choose("category", category["label"].toString());
            QCOMPARE(page.value("category"), cat);
            QCOMPARE(page.isVisible("sas"), category["scattering"].toBool());
            QVERIFY(page.isEnabled("open-template"));

            page.program.calls.clear();
            page.click("open-template");
            QCOMPARE(page.program.calls,
                     QStringList(QString("openWordTemplate(, %1, %2, )").arg(name, cat)));

            page.program.calls.clear();
            QCOMPARE(page.isEnabled("make-manuscript"), category["fromCif"].toBool());
            page.click("make-manuscript");
            QCOMPARE(page.program.calls,
                     category["fromCif"].toBool()
                         ? QStringList(QString("createWordTemplate(, %1, %2, )").arg(name, cat))
                         : QStringList());
        }
    }
}

void TestPage::scatteringIsAskedForOnlyWhereItIsOffered()
{
    PageWindow& page = open();
    page.choose("journal", "Journal Section D");
    page.click("sas");
    page.click("open-template");
    // Reviews are not offered for scattering; the tick is out of sight and must not count.
    page.choose("category", "Reviews");
    QVERIFY(!page.isVisible("sas"));
    page.click("open-template");
    page.choose("category", "Research papers");
    page.click("open-template");
    QCOMPARE(page.program.calls,
             QStringList({"openWordTemplate(, Journal Section D, research papers, sas)",
                          "openWordTemplate(, Journal Section D, reviews, )",
                          "openWordTemplate(, Journal Section D, research papers, sas)"}));
}

void TestPage::manuscriptNeedsAStructure()
{
    PageWindow& page = open();
    QVERIFY(!page.isEnabled("make-manuscript"));
    QVERIFY(!page.isEnabled("category"));
    QCOMPARE(page.text("manuscript-hint"), QString("Choose a journal first."));
    photograph("start");

    page.choose("journal", "Journal Section C");
    QVERIFY(!page.isEnabled("make-manuscript"));
    QVERIFY(page.isEnabled("open-template"));
    QVERIFY(page.text("manuscript-hint").startsWith("Choose or fetch a CIF"));
    QCOMPARE(page.element("step-manuscript").attribute("data-state"), QString("later"));
    page.choose("journal", "VexaJ");
    QVERIFY(page.text("manuscript-hint").contains("only the ready-made template"));
    page.choose("journal", "Journal Section D");
    page.choose("category", "Reviews");
    QVERIFY(page.text("manuscript-hint").startsWith("Reviews are not made from a CIF"));

    page.choose("category", "Research papers");
    takeCif("mmCIF: " + path);
    QVERIFY(page.isEnabled("make-manuscript"));
    QVERIFY(page.text("manuscript-hint").contains("made from 5i55.cif"));
    // Back to no journal.
    page.focus("journal");
    page.press(Qt::Key_Home);
    QVERIFY(!page.isEnabled("make-manuscript"));
    QVERIFY(!page.isEnabled("open-template"));
}

void TestPage::doubtfulCombinationIsMentioned_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("journal");
    QTest::addColumn<QString>("words"); // empty: no doubt
    QTest::addColumn<QString>("copy");
    QTest::newRow("D, mmCIF") << "mmCIF: " + path << "Journal Section D" << QString()
                              << "macromolecule.cif";
    QTest::newRow("D, small") << path << "Journal Section D"
                              << "expects a macromolecular CIF"
                              << "small_molecule.cif";
    QTest::newRow("C, small") << path << "Journal Section C" << QString() << "small_molecule.cif";
    QTest::newRow("C, mmCIF") << "mmCIF: " + path << "Journal Section C"
                              << "expects a small-molecule CIF"
                              << "macromolecule.cif";
    QTest::newRow("C, scattering") << path << "Journal Section C"
                                   << "this one is of scattering"
                                   << "scattering.cif";
    // The box is ticked by itself.
    QTest::newRow("D, scattering") << path << "Journal Section D" << QString() << "scattering.cif";
}

void TestPage::doubtfulCombinationIsMentioned()
{
    QFETCH(QString, answer);
    QFETCH(QString, journal);
    QFETCH(QString, words);
    QFETCH(QString, copy);
    PageWindow& page = open();
    takeCif(answer, example(copy));
    page.choose("journal", journal);
    QVERIFY(page.isEnabled("make-manuscript"));
    QCOMPARE(page.element("manuscript-hint").attribute("data-kind"),
             QString(words.isEmpty() ? "good" : "doubt"));
    QVERIFY(page.text("manuscript-hint").contains(words));
    photograph((words.isEmpty() ? "ready-" : "doubt-") + copy.section('.', 0, 0));
}

// The program's own wait: the thread sleeps up to a second at a time, and events are served
// between.
void TestPage::pageStaysAliveWhileTheManuscriptIsMade()
{
    PageWindow& page = open();
    takeCif("mmCIF: " + path);
    page.choose("journal", "Journal Section D");
    page.program.calls.clear();

    bool veiled = false, quitWorks = false, othersRest = true;
    QStringList texts;
    page.program.onCreateWordTemplate = [&] {
        QElapsedTimer time;
        time.start();
        while (time.elapsed() < 3200) {
            QThread::msleep(100);
            QCoreApplication::processEvents();
            texts << page.text("making-text");
        }
        veiled = page.isVisible("making");
        quitWorks = page.isEnabled("quit");
        for (const char* id : {"choose-cif", "fetch-cif", "save-cif", "journal", "category", "sas",
                               "make-manuscript", "open-template"})
            othersRest = othersRest && !page.isEnabled(id);
        photograph("making");
        // Clicks during the wait reach nothing but the way out.
        page.click("make-manuscript");
        page.click("quit");
    };
    page.click("make-manuscript");

    QVERIFY(veiled);
    QVERIFY(quitWorks);
    QVERIFY(othersRest);
    QVERIFY(texts.first().startsWith(QString::fromUtf8("Reading 5i55.cif…")));
    QVERIFY(!texts.first().contains("so far"));
    QVERIFY2(texts.last().contains("3 s."), qPrintable(texts.last()));
    QCOMPARE(page.program.calls,
             QStringList({"createWordTemplate(, Journal Section D, research papers, )", "quit()"}));
    QVERIFY(!page.isVisible("making"));
}

void TestPage::failedManuscriptIsExplainedUntilSomethingChanges()
{
    PageWindow& page = open();
    takeCif("mmCIF: " + path);
    page.choose("journal", "Journal Section D");
    page.click("make-manuscript");
    QVERIFY(page.text("manuscript-hint").contains("could not be started"));
    QCOMPARE(page.element("manuscript-hint").attribute("data-kind"), QString("error"));
    QVERIFY(page.isEnabled("make-manuscript"));
    QCOMPARE(page.focused(), QString("make-manuscript"));
    photograph("not-made");
    page.choose("category", "Short communications");
    QCOMPARE(page.element("manuscript-hint").attribute("data-kind"), QString("good"));
}

void TestPage::templateOpensWithoutACif()
{
    PageWindow& page = open();
    page.choose("journal", "VexaJ");
    page.choose("category", "Topical reviews");
    QCOMPARE(page.element("step-manuscript").attribute("data-state"), QString("now"));
    photograph("template-only");
    page.click("open-template");
    QCOMPARE(page.program.calls, QStringList("openWordTemplate(, VexaJ, topical reviews, )"));
}

// Keyboard and mouse

void TestPage::tabVisitsWhatCanActInOrder()
{
    PageWindow& page = open();
    QCOMPARE(page.focused(), QString("choose-cif"));
    QCOMPARE(page.tabOrder(),
             QStringList({"choose-cif", "identifier", "fetch-cif", "journal", "help", "quit"}));
    takeCif("mmCIF: " + path, example("macromolecule.cif"));
    page.choose("journal", "Journal Section D");
    page.focus("choose-cif");
    QCOMPARE(page.tabOrder(),
             QStringList({"choose-cif", "recent", "identifier", "fetch-cif", "structure-details",
                          "save-cif", "journal", "category", "sas", "make-manuscript",
                          "open-template", "help", "quit"}));

    page.click("save-cif");
    QCOMPARE(page.tabOrder(), QStringList({"dialog-cancel", "dialog-accept"}));
    page.press(Qt::Key_Tab, Qt::ShiftModifier);
    QCOMPARE(page.focused(), QString("dialog-accept"));
}

void TestPage::everythingWorksByKeyboardAlone()
{
    PageWindow& page = open();
    page.program.onSetCif = [] { return "mmCIF: " + path; };
    page.program.onSaveCif = [] { return true; };
    page.press(Qt::Key_Return); // choose-cif has the focus from the start
    QCOMPARE(page.text("structure-name"), QString("5i55.cif"));
    QTRY_VERIFY(page.text("structure-note").startsWith("Nothing can be told"));
    for (int i = 0; i < 4; ++i)
        page.press(Qt::Key_Tab);
    page.press(Qt::Key_Space); // save-cif
    page.press(Qt::Key_Tab);
    page.press(Qt::Key_Return); // dialog-accept
    QVERIFY(page.text("structure-hint").startsWith("Written back"));
    page.press(Qt::Key_Tab);
    page.type("Journal Section F"); // journal, by its first letters
    QCOMPARE(page.value("journal"), QString("Journal Section F"));
    page.press(Qt::Key_Tab);
    page.press(Qt::Key_Tab);
    page.press(Qt::Key_Space); // sas
    page.press(Qt::Key_Tab);
    page.press(Qt::Key_Return); // make-manuscript
    page.press(Qt::Key_Tab);
    page.press(Qt::Key_Return); // open-template
    page.press(Qt::Key_Tab);
    page.press(Qt::Key_Tab);
    page.press(Qt::Key_Return); // quit
    QCOMPARE(page.program.calls,
             QStringList({"setCif()", "saveCif()",
                          "createWordTemplate(, Journal Section F, research communications, sas)",
                          "openWordTemplate(, Journal Section F, research communications, sas)",
                          "quit()"}));
}

void TestPage::listsOpenByMouse()
{
    PageWindow& page = open();
    page.click("journal");
    QTRY_VERIFY(QApplication::activePopupWidget());
    QWidget* popup = QApplication::activePopupWidget();
    auto* list = popup->findChild<QAbstractItemView*>();
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    QTRY_VERIFY(!QApplication::activePopupWidget());
    QTRY_COMPARE(page.value("journal"), QString("Journal Section B"));
    QVERIFY(page.isEnabled("category"));
}

void TestPage::listsOpenByKey()
{
    PageWindow& page = open();
    page.focus("journal");
    page.press(Qt::Key_Return);
    QTRY_VERIFY(QApplication::activePopupWidget());
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    QTRY_VERIFY(!QApplication::activePopupWidget());
    page.press(Qt::Key_Down, Qt::AltModifier);
    QTRY_VERIFY(QApplication::activePopupWidget());
    QApplication::activePopupWidget()->close();
}

void TestPage::quitIsAlwaysInReach()
{
    PageWindow& page = open();
    page.press(Qt::Key_F1);
    page.press(Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(page.program.calls, QStringList("quit()"));
    page.press(Qt::Key_Escape);
    page.program.calls.clear();
    fetch("5i55");
    page.click("quit");
    page.click("stop-waiting");
    takeCif(path);
    page.click("save-cif");
    page.click("quit");
    QCOMPARE(page.program.calls.count("quit()"), 2);
}

// Set-up report and the rest

void TestPage::setUpReportIsShownWhereItHelps_data()
{
    const QString folder = "/home/anna/Library/Application Support/VexaWord/resources201";
    const QString script = "/home/anna/Library/Application Scripts/com.microsoft.Word/Vexa.scpt";
    QTest::addColumn<QString>("report");
    QTest::addColumn<QString>("summary"); // empty: all is well
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("first-start")
        << "OK: created  local resources folder: " + folder +
               "<br />OK: created local Word2016 AppleScript resources: " + script
        << ""
        << QStringList({"OK: created  local resources folder: " + folder,
                        "OK: created local Word2016 AppleScript resources: " + script});
    QTest::newRow("script-only")
        << "<br />OK: created local Word2016 AppleScript resources: " + script << ""
        << QStringList("OK: created local Word2016 AppleScript resources: " + script);
    QTest::newRow("failed") << "ERROR: unable to create local resources folder: " + folder +
                                   "<br />ERROR: unable to create local Word2016 AppleScript "
                                   "resources: " +
                                   script
                            << "Your own folder of templates could not be made."
                            << QStringList(
                                   {"ERROR: unable to create local resources folder: " + folder,
                                    "ERROR: unable to create local Word2016 AppleScript "
                                    "resources: " +
                                        script});
    QTest::newRow("script-failed")
        << "ERROR: unable to create local Word2016 AppleScript: " + script
        << "Set-up could not be completed."
        << QStringList("ERROR: unable to create local Word2016 "
                       "AppleScript: " +
                       script);
    QTest::newRow("markup in a folder's name")
        << "OK: created  local resources folder: /home/a<b>c&amp;d/x"
        << "" << QStringList("OK: created  local resources folder: /home/a<b>c&amp;d/x");
}

void TestPage::setUpReportIsShownWhereItHelps()
{
    QFETCH(QString, report);
    QFETCH(QString, summary);
    QFETCH(QStringList, lines);
    PageWindow& page = open();
    QVERIFY(!page.isVisible("setup-strip"));
    page.evaluate("showsetupinfo(\"" + report + "\");");
    QCOMPARE(page.isVisible("setup-strip"), !summary.isEmpty());
    if (summary.isEmpty()) {
        page.click("help");
        page.click("dialog-other");
    } else {
        QCOMPARE(page.text("setup-summary"), summary);
        photograph(QString("setup-") + QTest::currentDataTag());
        page.click("setup-details");
    }
    QStringList shown;
    for (QWebElement line : page.element("dialog-text").findAll("p"))
        shown << line.evaluateJavaScript("this.textContent").toString();
    QCOMPARE(shown.mid(summary.isEmpty() ? 0 : 1), lines);
    QVERIFY(!page.isVisible("dialog-cancel"));
    page.click("dialog-accept");
    QVERIFY(!page.isVisible("dialog"));
    if (!summary.isEmpty())
        page.click("setup-dismiss");
    QVERIFY(!page.isVisible("setup-strip"));
    QCOMPARE(page.program.calls, QStringList());
}

void TestPage::helpExplainsInOneScreen()
{
    PageWindow& page = open();
    page.press(Qt::Key_F1);
    QVERIFY(page.isVisible("dialog"));
    QVERIFY(page.text("dialog-text").contains("Make manuscript"));
    QVERIFY(!page.isVisible("dialog-other")); // no report: nothing to show
    QVERIFY(page.element("dialog-text")
                .evaluateJavaScript("this.scrollHeight <= this.clientHeight")
                .toBool());
    QCOMPARE(page.focused(), QString("dialog-accept"));
    photograph("help");
    page.press(Qt::Key_Escape);
    QVERIFY(!page.isVisible("dialog"));
    QCOMPARE(page.focused(), QString("choose-cif"));
    page.click("help");
    QVERIFY(page.isVisible("dialog"));
    page.press(Qt::Key_Return);
    QVERIFY(!page.isVisible("dialog"));
    QCOMPARE(page.focused(), QString("help"));
}

void TestPage::shortcutsDoWhatTheirButtonsDo()
{
    PageWindow& page = open();
    page.press(Qt::Key_O, Qt::ControlModifier);
    page.press(Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(page.program.calls, QStringList({"setCif()", "quit()"}));
    page.press(Qt::Key_F1);
    page.press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(page.program.calls.size(), 2);
}

// Larger text

void TestPage::textCanBeEnlarged()
{
    PageWindow& page = open();
    takeCif("/home/anna/small_molecule.cif", example("small_molecule.cif"));
    page.choose("journal", "Journal Section D");
    const auto size = [&page] {
        return page.evaluate("parseFloat(getComputedStyle(document.body).fontSize)").toDouble();
    };
    for (int i = 0; i < 9; ++i)
        page.press(Qt::Key_Plus, Qt::ControlModifier);
    QCOMPARE(size(), 26.0);
    photograph("text-200");
    page.scrollTo("sas");
    photograph("text-200-below");
    // Nothing is cut off at the side, and everything can be scrolled to.
    for (const char* id : {"choose-cif", "recent", "identifier", "fetch-cif", "structure-details",
                           "save-cif", "journal", "category", "sas", "make-manuscript",
                           "open-template", "manuscript-hint", "help", "quit"}) {
        page.scrollTo(id);
        QVERIFY2(page.view()->rect().contains(page.box(id)), id);
    }
    QCOMPARE(
        page.evaluate("var s = document.getElementById('steps'); s.scrollWidth - s.clientWidth")
            .toInt(),
        0);
    page.press(Qt::Key_F1);
    photograph("text-200-help");
    QVERIFY(page.view()->rect().contains(page.box("dialog-accept")));
    page.press(Qt::Key_Down);
    QVERIFY(page.element("dialog-text").evaluateJavaScript("this.scrollTop > 0").toBool());
    page.press(Qt::Key_Escape);
    page.press(Qt::Key_Minus, Qt::ControlModifier);
    QVERIFY(size() < 26);
    page.press(Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(size(), 13.0);
    for (int i = 0; i < 3; ++i)
        page.press(Qt::Key_Minus, Qt::ControlModifier);
    QCOMPARE(size(), 13.0);
}

void TestPage::textsAreEasyToRead_data()
{
    QTest::addColumn<QStringList>("clicks"); // before which the page is looked at
    QTest::addColumn<QByteArray>("copy");
    const QByteArray molecule = example("small_molecule.cif");
    QTest::newRow("start") << QStringList() << QByteArray();
    QTest::newRow("ready") << QStringList({"choose-cif"}) << molecule;
    QTest::newRow("failed") << QStringList({"choose-cif", "make-manuscript"}) << molecule;
    QTest::newRow("missing") << QStringList({"choose-cif"})
                             << QByteArray("data_x\n_cell_length_a 5\n");
    QTest::newRow("recent") << QStringList({"choose-cif", "recent"}) << molecule;
    QTest::newRow("details") << QStringList({"choose-cif", "structure-details"})
                             << QByteArray("data_x\n_cell_length_a 5\n");
    QTest::newRow("question") << QStringList({"choose-cif", "save-cif"}) << molecule;
    QTest::newRow("refused") << QStringList({"fetch-cif"}) << QByteArray();
    QTest::newRow("help") << QStringList({"help"}) << QByteArray();
}

void TestPage::textsAreEasyToRead()
{
    QFETCH(QStringList, clicks);
    QFETCH(QByteArray, copy);
    PageWindow& page = open();
    QTemporaryDir folder;
    page.rememberIn(folder.filePath("memory"));
    page.evaluate("showsetupinfo(\"ERROR: unable to create\");");
    page.choose("journal", "Journal Section C");
    page.setWorkingCopy(copy);
    page.program.onSetCif = [] { return path; };
    for (const QString& id : clicks) {
        page.click(id);
        if (id == "choose-cif")
            QTRY_VERIFY(page.isEnabled("structure-details"));
    }
    QCOMPARE(page.evaluate(fileBytes(VEXA_SOURCE_DIR "/tests/resources/contrast.js")).toString(),
             QString());
}

// Every control looks otherwise while it has the focus.
void TestPage::focusIsSeen()
{
    PageWindow& page = open();
    takeCif("/home/anna/small_molecule.cif", example("small_molecule.cif"));
    page.choose("journal", "Journal Section D");
    for (const char* id :
         {"choose-cif", "recent", "identifier", "fetch-cif", "structure-details", "save-cif",
          "journal", "category", "sas", "make-manuscript", "open-template", "help", "quit"}) {
        page.scrollTo(id);
        const QRect around = page.box(id).adjusted(-3, -3, 3, 3);
        const auto look = [&] { return page.view()->grab(around).toImage(); };
        page.evaluate("document.activeElement.blur()");
        QTest::qWait(20);
        const QImage before = look();
        page.focus(id);
        QTest::qWait(20);
        const QImage after = look();
        int changed = 0;
        for (int x = 0; x < after.width(); ++x) {
            for (int y = 0; y < after.height(); ++y)
                changed += before.pixel(x, y) != after.pixel(x, y) ? 1 : 0;
        }
        QVERIFY2(changed > around.width() + around.height(), id); // a line around it
    }
}

void TestPage::reloadIsNotOffered()
{
    PageWindow& page = open();
    const QString menu = "this.dispatchEvent(new Event('contextmenu', "
                         "{bubbles: true, cancelable: true}))";
    QCOMPARE(page.element("steps").evaluateJavaScript(menu), QVariant(false));
    // Pasting a code with the mouse must stay possible.
    QCOMPARE(page.element("identifier").evaluateJavaScript(menu), QVariant(true));
}

void TestPage::everyStateFits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("withoutScrolling");
    QTest::newRow("as-opened") << QSize(500, 450) << true;
    QTest::newRow("large") << QSize(900, 700) << true;
    QTest::newRow("smallest") << QSize(420, 360) << false;
}

void TestPage::everyStateFits()
{
    QFETCH(QSize, size);
    QFETCH(bool, withoutScrolling);
    PageWindow& page = open();
    page.resize(size);
    QTRY_COMPARE(page.size(), size);
    // As much as ever stands on the page at one time.
    page.evaluate("showsetupinfo(\"ERROR: unable to create\");");
    takeCif("mmCIF: /home/anna/a folder with a rather long name/"
            "a_file_with_a_rather_long_name_for_a_structure_of_its_kind.cif",
            example("macromolecule.cif").replace("author.name", "author.other"));
    takeCif("");
    page.choose("journal", "Journal Section F");
    page.click("make-manuscript");

    photograph(QString("full-") + QTest::currentDataTag());

    const QSize view = page.page()->viewportSize();
    QCOMPARE(page.page()->mainFrame()->contentsSize(), view);
    const QVariantMap steps = page.evaluate("var s = document.getElementById('steps');"
                                            "({wide: s.scrollWidth - s.clientWidth,"
                                            "  high: s.scrollHeight - s.clientHeight})")
                                  .toMap();
    QCOMPARE(steps["wide"].toInt(), 0);
    if (withoutScrolling)
        QCOMPARE(steps["high"].toInt(), 0);
    for (const char* id :
         {"setup-details", "choose-cif", "identifier", "fetch-cif", "recent", "structure-card",
          "structure-details", "save-cif", "structure-hint", "structure-note", "journal",
          "category", "sas", "make-manuscript", "open-template", "manuscript-hint", "quit"}) {
        page.element(id).evaluateJavaScript("this.scrollIntoViewIfNeeded()");
        const QRect box = page.box(id);
        QVERIFY2(!box.isEmpty() && QRect(QPoint(), view).contains(box), id);
        QVERIFY2(page.element(id)
                     .evaluateJavaScript("this.scrollWidth <= this.clientWidth + 1 || "
                                         "this.tagName === 'SELECT'")
                     .toBool(),
                 id);
    }
}

QTEST_MAIN(TestPage)
#include "tst_page.moc"
