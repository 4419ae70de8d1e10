// splitArticle, by example and against the regular expressions that define a block.
#include "app/articleblocks.h"

#include <QRandomGenerator>
#include <QRegExp>
#include <QTest>

namespace
{
const QString authors = QStringLiteral("<vexa:authors xmlns:vexa=\"u\" count=\"1\">\n<vexa:author "
                                       "id=\"a1\">M\u00fcller</vexa:author>\n</vexa:authors>");
const QString addresses = QStringLiteral("<vexa:addresses count=\"0\">\r\n\r\n</vexa:addresses>");

QString takeByExpression(QString* text, const QString& pattern)
{
    const QRegExp expression(pattern, Qt::CaseSensitive, QRegExp::RegExp);
    if (expression.indexIn(*text, 0, QRegExp::CaretAtZero) < 0)
        return QString();
    const QString block = expression.cap(1);
    text->replace(expression, QString());
    return block;
}
} // namespace

class tst_ArticleBlocks : public QObject
{
    Q_OBJECT

private slots:
    void splitting_data();
    void splitting();
    void agreesWithTheExpressions();
    void aLongArticleIsSplitInOneGo();
};

void tst_ArticleBlocks::splitting_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("authorsBlock");
    QTest::addColumn<QString>("addressesBlock");
    const QString none;

    QTest::newRow("both") << "<p>a</p>" + authors + "\n" + addresses + "<p>b</p>"
                          << "<p>a</p>\n<p>b</p>" << authors << addresses;
    QTest::newRow("addresses first") << addresses + "x" + authors << "x" << authors << addresses;
    QTest::newRow("neither") << "PROCESS TIMED OUT"
                             << "PROCESS TIMED OUT" << none << none;
    QTest::newRow("empty") << ""
                           << "" << none << none;
    QTest::newRow("two blocks with text between them")
        << "1" + authors + "<p>lost</p>" + authors + "2"
        << "12" << authors + "<p>lost</p>" + authors << none;
    QTest::newRow("bare opening tag") << "<vexa:authors>x</vexa:authors>"
                                      << "<vexa:authors>x</vexa:authors>" << none << none;
    QTest::newRow("bare opening tag, then a full one")
        << "<vexa:authors>x</vexa:authors>" + authors << "<vexa:authors>x</vexa:authors>" << authors
        << none;
    QTest::newRow("full opening tag, then a bare element")
        << authors + "<vexa:authors>x</vexa:authors>2"
        << "2" << authors + "<vexa:authors>x</vexa:authors>" << none;
    QTest::newRow("one blank is enough") << "<vexa:authors >x</vexa:authors>"
                                         << ""
                                         << "<vexa:authors >x</vexa:authors>" << none;
    QTest::newRow("another letter case")
        << "<vexa:Authors a=\"1\">x</vexa:Authors>"
        << "<vexa:Authors a=\"1\">x</vexa:Authors>" << none << none;
    QTest::newRow("not closed") << "<vexa:authors a=\"1\">x"
                                << "<vexa:authors a=\"1\">x" << none << none;
    QTest::newRow("closed before it opens")
        << "</vexa:authors><vexa:authors a=\"1\">x"
        << "</vexa:authors><vexa:authors a=\"1\">x" << none << none;
    QTest::newRow("opening tag never ends") << "<vexa:authors a </vexa:authors"
                                            << "<vexa:authors a </vexa:authors" << none << none;
    QTest::newRow("no content") << "<vexa:authors a=\"1\"></vexa:authors>"
                                << ""
                                << "<vexa:authors a=\"1\"></vexa:authors>" << none;
    QTest::newRow("a longer name counts as attributes")
        << "<vexa:authorship>x</vexa:authors>"
        << ""
        << "<vexa:authorship>x</vexa:authors>" << none;
    QTest::newRow("line break inside the opening tag")
        << "<vexa:addresses\na=\"1\">x</vexa:addresses>"
        << "" << none << "<vexa:addresses\na=\"1\">x</vexa:addresses>";
    QTest::newRow("addresses inside authors go with them")
        << "<vexa:authors a=\"1\">" + addresses + "</vexa:authors>"
        << ""
        << "<vexa:authors a=\"1\">" + addresses + "</vexa:authors>" << none;
}

void tst_ArticleBlocks::splitting()
{
    QFETCH(QString, output);
    const Article article = splitArticle(output);
    QTEST(article.html, "html");
    QTEST(article.authors, "authorsBlock");
    QTEST(article.addresses, "addressesBlock");
}

void tst_ArticleBlocks::agreesWithTheExpressions()
{
    const QStringList pieces = {QStringLiteral("<vexa:authors"),
                                QStringLiteral("</vexa:authors>"),
                                QStringLiteral("<vexa:addresses"),
                                QStringLiteral("</vexa:addresses>"),
                                QStringLiteral(">"),
                                QStringLiteral(" a"),
                                QStringLiteral("\n"),
                                QStringLiteral("<"),
                                QStringLiteral("vexa:authors"),
                                QStringLiteral("/")};
    QRandomGenerator random(20260101);
    for (int round = 0; round < 20000; ++round) {
        QString output;
        for (int length = random.bounded(14); length > 0; --length)
            output += pieces.at(random.bounded(pieces.size()));
        QString html = output;
        const QString authorsBlock =
            takeByExpression(&html, QStringLiteral("(<vexa:authors[^>]+>.*</vexa:authors>)"));
        const QString addressesBlock =
            takeByExpression(&html, QStringLiteral("(<vexa:addresses[^>]+>.*</vexa:addresses>)"));
        const Article article = splitArticle(output);
        QVERIFY2(article.html == html && article.authors == authorsBlock &&
                     article.addresses == addressesBlock,
                 qPrintable(output));
    }
}

void tst_ArticleBlocks::aLongArticleIsSplitInOneGo()
{
    const QString filler = QStringLiteral("<p>x < y</p>\n").repeated(400000);
    const Article article = splitArticle(filler + authors + filler + addresses + filler);
    QCOMPARE(article.html.size(), 3 * filler.size());
    QCOMPARE(article.authors, authors);
    QCOMPARE(article.addresses, addresses);
}

QTEST_GUILESS_MAIN(tst_ArticleBlocks)
#include "tst_articleblocks.moc"
