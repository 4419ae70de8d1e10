// The ready-made articles and the list of journals that the page offers, as they lie in the bundle.
#include "bundlefiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>
#include <QXmlStreamReader>

namespace
{

const QString resources = QStringLiteral(VEXA_BUNDLE_DIR "/resources");
const QString webwidgets = resources + "/webwidgets";

// The value of the one variable in journals.js.
QJsonArray journals()
{
    const QByteArray script = fileBytes(webwidgets + "/journals.js");
    const int from = script.indexOf('['), to = script.lastIndexOf(']');
    return QJsonDocument::fromJson(script.mid(from, to - from + 1)).array();
}

// The program's own rules, by which the files are found.
QString journalCode(const QString& journal)
{
    const QString name = journal.toLower().trimmed();
    if (name.contains("zorvane"))
        return "s";
    if (name.contains("quembly"))
        return "j";
    if (name.contains("vexaj"))
        return "m";
    return name.right(1);
}

QString articleFile(const QString& journal, const QString& category, bool scattering)
{
    QString normalised = category.toLower();
    normalised.remove(QRegularExpression("\\s+"));
    return journalCode(journal) + "_" + normalised + (scattering ? "_sas.html" : ".html");
}

QString generatedKind(const QString& journal)
{
    const QString name = journal.toLower();
    if (name.contains("section d") || name.contains("section f"))
        return "macromolecule";
    if (name.contains("section b") || name.contains("section c"))
        return "small-molecule";
    return "nothing";
}

// One row for each article: its file, whether it is for scattering, its category's JSON.
void articleRows()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("title");
    QTest::newRow("fallback") << "abcdfjsm.html"
                              << "Article";
    for (const QJsonValue& journal : journals()) {
        const QString name = journal["name"].toString();
        for (const QJsonValue& category : journal["categories"].toArray()) {
            const QString title = name + " - " + category["label"].toString();
            const QString file = articleFile(name, category["name"].toString(), false);
            QTest::newRow(qPrintable(file)) << file << title;
            if (category["scattering"].toBool()) {
                const QString sas = articleFile(name, category["name"].toString(), true);
                QTest::newRow(qPrintable(sas)) << sas << title + " (small-angle scattering)";
            }
        }
    }
}

QString article(const QString& file)
{
    return fileBytes(webwidgets + "/" + file);
}

// The groups of the row keys in order: "B1", "B2" …
QStringList tablesOf(const QString& file)
{
    QStringList groups = captures(article(file), "data-row=\"([A-Z][0-9]?)\\.");
    groups.removeDuplicates();
    return groups;
}

} // namespace

class TestArticleTemplates : public QObject
{
    Q_OBJECT

private slots:
    void pageOffersEightJournals();
    void namesLeadWhereTheListSays();
    void sectionFCategoriesSelectTheirForms();
    void everyOfferHasItsFileAndNoFileIsLeftOver();
    void articleHasTheSharedForm_data() { articleRows(); }
    void articleHasTheSharedForm();
    void articleAdvisesTheAuthor_data() { articleRows(); }
    void articleAdvisesTheAuthor();
    void tablesAreNumberedShells_data() { articleRows(); }
    void tablesAreNumberedShells();
    void tablesSuitTheKindOfArticle();
    void limitsOfTheCategoryArePrinted();
    void resourcesAreComplete();
    void noNameBeginsWithADot();
};

void TestArticleTemplates::pageOffersEightJournals()
{
    QStringList codes;
    for (const QJsonValue& journal : journals())
        codes << journal["code"].toString();
    codes.sort();
    // The letters of the fallback's name, abcdfjsm.
    QCOMPARE(codes.join(""), QString("abcdfjms"));
}

void TestArticleTemplates::namesLeadWhereTheListSays()
{
    for (const QJsonValue& journal : journals()) {
        const QString name = journal["name"].toString();
        QCOMPARE(journal["code"].toString(), journalCode(name));
        QCOMPARE(journal["generates"].toString(), generatedKind(name));
        QVERIFY(!journal["about"].toString().isEmpty());
        QVERIFY(!journal["categories"].toArray().isEmpty());
        for (const QJsonValue& category : journal["categories"].toArray()) {
            QVERIFY(!category["label"].toString().isEmpty());
            if (generatedKind(name) == "nothing")
                QVERIFY2(!category["fromCif"].toBool(), qPrintable(name));
        }
    }
}

void TestArticleTemplates::sectionFCategoriesSelectTheirForms()
{
    QStringList communications, crystallization;
    for (const QJsonValue& journal : journals()) {
        if (journal["code"].toString() != "f")
            continue;
        for (const QJsonValue& value : journal["categories"].toArray()) {
            const QString category = value["name"].toString();
            if (category.contains("commun", Qt::CaseSensitive))
                communications << category;
            if (category.contains("crystallization", Qt::CaseSensitive))
                crystallization << category;
        }
    }
    QVERIFY(communications.contains("research communications"));
    QCOMPARE(crystallization, QStringList("crystallization communications"));
}

void TestArticleTemplates::everyOfferHasItsFileAndNoFileIsLeftOver()
{
    QStringList expected{"abcdfjsm.html"};
    for (const QJsonValue& journal : journals()) {
        for (const QJsonValue& category : journal["categories"].toArray()) {
            const QString name = journal["name"].toString(), cat = category["name"].toString();
            expected << articleFile(name, cat, false);
            if (category["scattering"].toBool())
                expected << articleFile(name, cat, true);
        }
    }
    QStringList found = QDir(webwidgets).entryList({"*.html"});
    for (const char* page : {"templates.html", "templates_compat.html", "tmptemp.html"})
        found.removeAll(page);
    expected.sort();
    found.sort();
    QCOMPARE(found, expected);
    QVERIFY(expected.contains("d_researchpapers_sas.html"));
}

void TestArticleTemplates::articleHasTheSharedForm()
{
    QFETCH(QString, file);
    QFETCH(QString, title);
    const QByteArray bytes = fileBytes(webwidgets + "/" + file);
    QVERIFY(bytes.startsWith("<!DOCTYPE html>\n<html lang=\"en\">"));
    for (const char byte : bytes)
        QVERIFY2(byte == '\n' || (byte >= ' ' && byte <= '~'), "not ASCII");

    QXmlStreamReader reader(bytes);
    while (!reader.atEnd())
        reader.readNext();
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));

    const QString text = bytes;
    QCOMPARE(captures(text, "<title>([^<]*)</title>"), QStringList(title));
    QCOMPARE(captures(text, "<p class=\"[a-z]+\"><a name=\"([a-z_]+)\">[^<]+</a></p>"),
             QStringList({"vexa_title", "vexa_authors", "vexa_addresses"}));
    QCOMPARE(text.count("name=\"vexa_"), 3);
    QVERIFY(text.contains("<a name=\"vexa_authors\">&#160;</a>"));
    QVERIFY(text.contains("<a name=\"vexa_addresses\">&#160;</a>"));
    // Decimal references only, but for the two that XML cannot do without.
    QVERIFY(captures(text, "&(?!#[0-9]+;|lt;|gt;|amp;)(.)").isEmpty());
    for (const char* unwanted : {"<style", "<script", "<img", "<link", "vexa:", " style="})
        QVERIFY2(!text.contains(unwanted), unwanted);
    // An importer that reads HTML takes <p/> for an opening tag.
    for (const QString& element : captures(text, "<([a-z0-9]+)[^>]*/>"))
        QCOMPARE(element, QString("meta"));
}

void TestArticleTemplates::articleAdvisesTheAuthor()
{
    QFETCH(QString, file);
    const QString text = article(file);
    const QStringList headings = captures(text, "<h[123]>([^<]*)</h[123]>");
    QCOMPARE(headings.count("Abstract"), 1);
    QCOMPARE(headings.last(), QString("Figure captions"));
    QVERIFY(headings.indexOf("References") > headings.indexOf("Acknowledgements"));
    QCOMPARE(QSet<QString>(headings.begin(), headings.end()).size(), headings.size());
    // Every heading is followed by advice, a place for text or a heading one level down.
    QVERIFY(captures(text, "</h[123]>\\s*(<table|</body|<h1)").isEmpty());
    for (const QString& advice : captures(text, "<p class=\"guidance\">(.*?)</p>")) {
        QVERIFY(advice.startsWith("[") && advice.endsWith("]"));
        QVERIFY2(!advice.contains("  ") && !advice.contains("At most ,") &&
                     !advice.contains("At most ."),
                 qPrintable(advice));
    }
}

void TestArticleTemplates::tablesAreNumberedShells()
{
    QFETCH(QString, file);
    const QString text = article(file);
    const QStringList captions = captures(text, "<caption>([^<]*)</caption>");
    QCOMPARE(captions.size(), text.count("<table "));
    for (int i = 0; i < captions.size(); ++i)
        QVERIFY2(captions[i].startsWith(QString("Table %1. ").arg(i + 1)), qPrintable(captions[i]));

    const QStringList keys = captures(text, "<tr data-row=\"([^\"]+)\"");
    QCOMPARE(QSet<QString>(keys.begin(), keys.end()).size(), keys.size());
    QCOMPARE(captures(text, "<tr data-row=\"[^\"]+\"><th scope=\"row\">.+?</th><td>(\\?)</td></tr>")
                 .size(),
             keys.size());
}

void TestArticleTemplates::tablesSuitTheKindOfArticle()
{
    QCOMPARE(tablesOf("c_researchpapers.html"), QStringList("A"));
    QCOMPARE(tablesOf("c_datareports.html"), QStringList("A"));
    QCOMPARE(tablesOf("d_researchpapers.html"), QStringList({"B1", "B2", "B3", "B4"}));
    QCOMPARE(tablesOf("f_researchcommunications.html"), QStringList({"B1", "B2", "B3", "B4"}));
    // No refined structure in an article about crystals.
    QCOMPARE(tablesOf("f_crystallizationcommunications.html"), QStringList({"B1", "B2", "B3"}));
    for (const char* file : {"d_researchpapers_sas.html", "f_researchcommunications_sas.html",
                             "j_researchpapers_sas.html", "s_shortcommunications_sas.html"})
        QCOMPARE(tablesOf(file), QStringList({"C1", "C2", "C3", "C4", "C5"}));
    QCOMPARE(tablesOf("abcdfjsm.html"), QStringList());
}

void TestArticleTemplates::limitsOfTheCategoryArePrinted()
{
    const QString report = article("c_datareports.html");
    QVERIFY(report.contains("Data reports, up to 2 pages."));
    QVERIFY(report.contains("[At most 100 words, in one paragraph"));
    QVERIFY(report.contains("[At most 700 words with all"));
    QVERIFY(report.contains("[At most 15 references.]"));
    // No limit known, so the sentence about it is not there, and the rest of the advice is.
    const QString fallback = article("abcdfjsm.html");
    QVERIFY(!fallback.contains("At most"));
    QVERIFY(fallback.contains("[In alphabetical order"));
}

void TestArticleTemplates::resourcesAreComplete()
{
    for (const char* name :
         {"macscrlaunch", "Vexa.scpt", "publauthors/macstart.xml", "webwidgets/abcdfjsm.html"})
        QVERIFY2(QFileInfo(resources + "/" + name).size() > 0, name);
    QXmlStreamReader reader(fileBytes(resources + "/publauthors/macstart.xml"));
    while (!reader.atEnd())
        reader.readNext();
    QVERIFY(!reader.hasError());
#ifdef Q_OS_MACOS
    // There the set-up applet writes the marker.
    QVERIFY(!QFileInfo::exists(VEXA_BUNDLE_DIR "/setup.txt"));
#else
    QVERIFY(QFileInfo::exists(VEXA_BUNDLE_DIR "/setup.txt"));
#endif
}

// Hidden entries are left out when the folder is installed for a user.
void TestArticleTemplates::noNameBeginsWithADot()
{
    QDirIterator entries(resources, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    int seen = 0;
    while (entries.hasNext()) {
        entries.next();
        QVERIFY2(!entries.fileName().startsWith('.'), qPrintable(entries.filePath()));
        ++seen;
    }
    QVERIFY(seen > 30);
}

QTEST_GUILESS_MAIN(TestArticleTemplates)
#include "tst_articletemplates.moc"
