// The page as a user meets it, by mouse and keyboard, in a window like the program's. Every test
// runs on both pages. A picture of each state is left in the build's screenshots folder.
#include "pagewindow.h"

#include <memory>

#include <QAbstractItemView>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
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

} // namespace

class TestPage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void init();
    void cleanup();

    void nothingIsCalledBeforeTheProgramIsThere();
    void pageWithoutTheProgramSaysSo();
    void reportArrivingWithTheProgramIsShown();

    void chosenCifIsShown_data();
    void chosenCifIsShown();
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
    void quitIsAlwaysInReach();

    void setUpReportIsSummedUp_data();
    void setUpReportIsSummedUp();
    void droppedFileIsRefusedWithAWord();
    void reloadIsNotOffered();
    void everyStateFits_data();
    void everyStateFits();

private:
    // A window with the page loaded and the program there.
    PageWindow& open();
    void takeCif(const QString& answer);
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

void TestPage::takeCif(const QString& answer)
{
    window->program.onSetCif = [answer] { return answer; };
    window->click("choose-cif");
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
    window->photograph((file.contains("compat") ? "compat-" : "page-") + state);
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
    window->evaluate("showsetupinfo(\"OK: created  local resources folder: /home/anna/x\");");
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
    QTest::addColumn<QString>("facts");
    QTest::newRow("macromolecular") << "mmCIF: " + path << "5i55.cif"
                                    << "Macromolecular CIF, in structures";
    QTest::newRow("other") << path << "5i55.cif"
                           << "Small-molecule or other CIF, in structures";
    QTest::newRow("at the root") << "/a.cif"
                                 << "a.cif"
                                 << "Small-molecule or other CIF, in /";
    QTest::newRow("markup in the name") << "/home/<b>&amp;/a <i>\"b\".cif"
                                        << "a <i>\"b\".cif"
                                        << "Small-molecule or other CIF, in <b>&amp;";
    QTest::newRow("not ASCII") << QString::fromUtf8("mmCIF: /home/ä/Größe α.cif")
                               << QString::fromUtf8("Größe α.cif")
                               << QString::fromUtf8("Macromolecular CIF, in ä");
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
    QTEST(page.text("structure-facts"), "facts");
    QVERIFY(page.isEnabled("save-cif"));
    photograph("structure-" + QString(QTest::currentDataTag()).section(' ', 0, 0));
}

void TestPage::closedDialogChangesNothingButTheWritingBack()
{
    PageWindow& page = open();
    takeCif("");
    QVERIFY(!page.isVisible("structure-card"));
    QVERIFY(page.text("structure-hint").startsWith("No CIF was taken"));

    takeCif("mmCIF: " + path);
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
    takeCif("mmCIF: " + path);
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
    QCOMPARE(page.text("structure-facts"), QString("Macromolecular CIF, fetched"));
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
}

void TestPage::longWaitIsMentioned()
{
    window->hurryTimers(50);
    PageWindow& page = open();
    fetch("5i55");
    QTRY_VERIFY(page.text("fetch-text").contains("no answer yet"));
    photograph("fetching-long");
    respond("OK");
    fetch("1abc");
    QVERIFY(!page.text("fetch-text").contains("no answer yet"));
}

void TestPage::scatteringEntrySuggestsAScatteringArticle()
{
    PageWindow& page = open();
    fetch("SASDA52");
    respond("OK");
    QCOMPARE(page.text("structure-facts"), QString("Small-angle scattering CIF, fetched"));
    page.choose("journal", "Journal Section D");
    QVERIFY(page.element("sas").evaluateJavaScript("this.checked").toBool());
    page.click("make-manuscript");
    QVERIFY(page.program.calls.contains(
        "createWordTemplate(, Journal Section D, research papers, sas)"));

    page.click("sas");
    QVERIFY(page.text("manuscript-hint").contains("no SAS article"));
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
    QTest::newRow("D, mmCIF") << "mmCIF: " + path << "Journal Section D" << QString();
    QTest::newRow("D, other") << path << "Journal Section D"
                              << "expects a macromolecular CIF";
    QTest::newRow("C, other") << path << "Journal Section C" << QString();
    QTest::newRow("C, mmCIF") << "mmCIF: " + path << "Journal Section C"
                              << "expects a small-molecule CIF";
}

void TestPage::doubtfulCombinationIsMentioned()
{
    QFETCH(QString, answer);
    QFETCH(QString, journal);
    QFETCH(QString, words);
    PageWindow& page = open();
    takeCif(answer);
    page.choose("journal", journal);
    QVERIFY(page.isEnabled("make-manuscript"));
    QCOMPARE(page.element("manuscript-hint").attribute("data-kind"),
             QString(words.isEmpty() ? "good" : "doubt"));
    QVERIFY(page.text("manuscript-hint").contains(words));
    photograph(words.isEmpty() ? "ready" : "doubt");
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
    QVERIFY(texts.first().startsWith("quillet is reading 5i55.cif."));
    QVERIFY(!texts.first().contains("so far"));
    QVERIFY2(texts.last().contains("3 s so far"), qPrintable(texts.last()));
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
             QStringList({"choose-cif", "identifier", "fetch-cif", "journal", "quit"}));
    takeCif("mmCIF: " + path);
    page.choose("journal", "Journal Section D");
    page.focus("choose-cif");
    QCOMPARE(page.tabOrder(),
             QStringList({"choose-cif", "identifier", "fetch-cif", "save-cif", "journal",
                          "category", "sas", "make-manuscript", "open-template", "quit"}));

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
    for (int i = 0; i < 3; ++i)
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
    QTRY_COMPARE(page.value("journal"), QString("Journal Section A"));
    QVERIFY(page.isEnabled("category"));
}

void TestPage::quitIsAlwaysInReach()
{
    PageWindow& page = open();
    fetch("5i55");
    page.click("quit");
    page.click("stop-waiting");
    takeCif(path);
    page.click("save-cif");
    page.click("quit");
    QCOMPARE(page.program.calls.count("quit()"), 2);
}

// Set-up report and the rest

void TestPage::setUpReportIsSummedUp_data()
{
    const QString folder = "/home/anna/Library/Application Support/VexaWord/resources201";
    const QString script = "/home/anna/Library/Application Scripts/com.microsoft.Word/Vexa.scpt";
    QTest::addColumn<QString>("report");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("first-start")
        << "OK: created  local resources folder: " + folder +
               "<br />OK: created local Word2016 AppleScript resources: " + script
        << "good"
        << QStringList({"OK: created  local resources folder: " + folder,
                        "OK: created local Word2016 AppleScript resources: " + script});
    QTest::newRow("script-only")
        << "<br />OK: created local Word2016 AppleScript resources: " + script << "good"
        << QStringList("OK: created local Word2016 AppleScript resources: " + script);
    QTest::newRow("failed") << "ERROR: unable to create local resources folder: " + folder +
                                   "<br />ERROR: unable to create local Word2016 AppleScript "
                                   "resources: " +
                                   script
                            << "error"
                            << QStringList(
                                   {"ERROR: unable to create local resources folder: " + folder,
                                    "ERROR: unable to create local Word2016 AppleScript "
                                    "resources: " +
                                        script});
    QTest::newRow("markup in a folder's name")
        << "OK: created  local resources folder: /home/a<b>c&amp;d/x"
        << "good" << QStringList("OK: created  local resources folder: /home/a<b>c&amp;d/x");
}

void TestPage::setUpReportIsSummedUp()
{
    QFETCH(QString, report);
    QFETCH(QStringList, lines);
    PageWindow& page = open();
    QVERIFY(!page.isVisible("setup-strip"));
    page.evaluate("showsetupinfo(\"" + report + "\");");
    QVERIFY(page.isVisible("setup-strip"));
    QTEST(page.element("setup-strip").attribute("data-kind"), "kind");
    photograph(QString("setup-") + QTest::currentDataTag());

    page.click("setup-details");
    QStringList shown;
    for (QWebElement line : page.element("dialog-text").findAll("p"))
        shown << line.evaluateJavaScript("this.textContent").toString();
    QCOMPARE(shown, lines);
    QVERIFY(!page.isVisible("dialog-cancel"));
    page.click("dialog-accept");
    page.click("setup-dismiss");
    QVERIFY(!page.isVisible("setup-strip"));
    QCOMPARE(page.program.calls, QStringList());
}

void TestPage::droppedFileIsRefusedWithAWord()
{
    PageWindow& page = open();
    const QUrl before = page.page()->mainFrame()->url();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(VEXA_SOURCE_DIR "/LICENSE")});
    const QPoint position = page.view()->rect().center();
    QDragEnterEvent enter(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page.view(), &enter);
    QDragMoveEvent move(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page.view(), &move);
    QDropEvent drop(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page.view(), &drop);
    QVERIFY(page.text("structure-hint").contains("cannot be dropped"));
    QCOMPARE(page.page()->mainFrame()->url(), before);
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
            "a_file_with_a_rather_long_name_for_a_structure_of_its_kind.cif");
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
    for (const char* id : {"setup-details", "choose-cif", "identifier", "fetch-cif",
                           "structure-card", "save-cif", "structure-hint", "journal", "category",
                           "sas", "make-manuscript", "open-template", "manuscript-hint", "quit"}) {
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
