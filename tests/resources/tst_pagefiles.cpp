// What can be told of the page from its files alone: they are complete, they ask for nothing from
// the network, and they keep to what the web engine understands.
#include "bundlefiles.h"

#include <QDir>
#include <QtTest>

namespace
{

const QDir webwidgets(VEXA_BUNDLE_DIR "/resources/webwidgets");

QString content(const QString& name)
{
    return QString::fromUtf8(fileBytes(webwidgets.filePath(name)));
}

QString withoutComments(QString script)
{
    return script.remove(QRegularExpression("(?m)^\\s*//.*$|/\\*.*?\\*/",
                                            QRegularExpression::DotMatchesEverythingOption));
}

QStringList pageFiles()
{
    return webwidgets.entryList({"templates*.html", "*.js", "*.css"});
}

} // namespace

class TestPageFiles : public QObject
{
    Q_OBJECT

private slots:
    void referencesLeadSomewhere_data();
    void referencesLeadSomewhere();
    void pagesDifferInTheirLooksOnly();
    void scriptsNameElementsOfThePage();
    void scriptsAreEcmaScript5_data();
    void scriptsAreEcmaScript5();
    void stylesAreWithinTheEngine_data();
    void stylesAreWithinTheEngine();
    void nothingComesFromTheNetwork_data();
    void nothingComesFromTheNetwork();
    void handlersStandInScripts();
};

void TestPageFiles::referencesLeadSomewhere_data()
{
    QTest::addColumn<QString>("file");
    for (const QString& file : pageFiles())
        QTest::newRow(qPrintable(file)) << file;
}

void TestPageFiles::referencesLeadSomewhere()
{
    QFETCH(QString, file);
    const QString text = content(file);
    QVERIFY(!text.isEmpty());
    QStringList names = captures(text, "url\\(([^)]+)\\)");
    names += captures(text, "(?:src|href)=\"([^\"]+)\"");
    for (const QString& name : names)
        QVERIFY2(webwidgets.exists(name), qPrintable(name));
    if (file.endsWith(".html"))
        QVERIFY(names.size() > 8);
}

void TestPageFiles::pagesDifferInTheirLooksOnly()
{
    const QStringList page = content("templates.html").split('\n');
    const QStringList compat = content("templates_compat.html").split('\n');
    QCOMPARE(page.size(), compat.size());
    QStringList differences;
    for (int i = 0; i < page.size(); ++i) {
        if (page[i] != compat[i])
            differences << page[i] << compat[i];
    }
    QCOMPARE(differences, QStringList({"<link rel=\"stylesheet\" href=\"page.css\">",
                                       "<link rel=\"stylesheet\" href=\"plain.css\">"}));
    // The compatibility page has neither.
    const QString plain = content("layout.css") + content("plain.css");
    for (const char* word : {"gradient", "animation", "transition", "transform", "shadow"})
        QVERIFY2(!plain.contains(QRegularExpression(QString("\\b%1\\s*[:(]").arg(word))), word);
}

void TestPageFiles::scriptsNameElementsOfThePage()
{
    const QStringList ids = captures(content("templates.html"), "\\bid=\"([^\"]+)\"");
    QCOMPARE(QSet<QString>(ids.begin(), ids.end()).size(), ids.size());
    QStringList named;
    for (const QString& script : webwidgets.entryList({"*.js"}))
        named += captures(content(script), "\\bview\\.(?!make\\b)\\w+\\('([a-z-]+)'");
    QVERIFY(named.size() > 40);
    for (const QString& name : named)
        QVERIFY2(ids.contains(name), qPrintable(name));
}

void TestPageFiles::scriptsAreEcmaScript5_data()
{
    QTest::addColumn<QString>("file");
    for (const QString& file : webwidgets.entryList({"*.js"}))
        QTest::newRow(qPrintable(file)) << file;
}

void TestPageFiles::scriptsAreEcmaScript5()
{
    QFETCH(QString, file);
    const QString script = withoutComments(content(file));
    const QRegularExpression later("=>|`|\\b(let|const|class|async|await|import|export)\\s|"
                                   "\\?\\?|\\?\\.[a-zA-Z(\\[]|\\.\\.\\.[a-zA-Z\\[]|\\*\\*|"
                                   "\\bfetch\\(|\\.key\\b|\\.code\\s*===|localStorage");
    const QRegularExpressionMatch match = later.match(script);
    QVERIFY2(!match.hasMatch(), qPrintable(match.captured()));
}

void TestPageFiles::stylesAreWithinTheEngine_data()
{
    QTest::addColumn<QString>("file");
    for (const QString& file : webwidgets.entryList({"*.css"}))
        QTest::newRow(qPrintable(file)) << file;
}

void TestPageFiles::stylesAreWithinTheEngine()
{
    QFETCH(QString, file);
    const QString style = withoutComments(content(file));
    const QRegularExpression unknown("display:\\s*grid|\\bgap:|\\bsticky\\b|:focus-visible|"
                                     ":focus-within|:is\\(|:where\\(|:has\\(|prefers-|inset:");
    const QRegularExpressionMatch match = unknown.match(style);
    QVERIFY2(!match.hasMatch(), qPrintable(match.captured()));
    QCOMPARE(style.count('{'), style.count('}'));
}

void TestPageFiles::nothingComesFromTheNetwork_data()
{
    referencesLeadSomewhere_data();
}

void TestPageFiles::nothingComesFromTheNetwork()
{
    QFETCH(QString, file);
    QVERIFY(!content(file).contains(QRegularExpression("https?:|(?<!:)//[a-z0-9-]+\\.[a-z]")));
}

void TestPageFiles::handlersStandInScripts()
{
    const QString page = content("templates.html");
    QVERIFY(!page.contains(QRegularExpression("\\son[a-z]+\\s*=")));
    QVERIFY(!page.contains("javascript:"));
    QVERIFY(!page.contains(QRegularExpression("<script(?![^>]*\\ssrc=)")));
    QVERIFY(!page.contains(QRegularExpression("\\sstyle\\s*=")));
}

QTEST_GUILESS_MAIN(TestPageFiles)
#include "tst_pagefiles.moc"
