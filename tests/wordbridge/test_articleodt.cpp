#include "wordbridge/articleodt.h"

#include "wordbridge/frontmatter.h"
#include "wordbridge/tablelayout.h"

#include "print.h"

#include <gtest/gtest.h>
#include <numeric>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace
{

using namespace wordbridge;

QString contentOf(const ArticleOdt& odt)
{
    const QByteArray* content = odt.package.find(QStringLiteral("content.xml"));
    QXmlStreamReader xml(*content);
    while (!xml.atEnd())
        xml.readNext();
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return QString::fromUtf8(*content);
}

QString contentOf(const QByteArray& html)
{
    return contentOf(writeArticleOdt(parseHtml(html), {}));
}

// The body without the empty paragraph that ends every article.
QString bodyOf(const QByteArray& html)
{
    QString content = contentOf(html);
    const QString end = QStringLiteral("<text:p text:style-name=\"Text_20_body\"/></office:text>");
    content = content.section(QLatin1String("<office:text>"), 1).section(end, 0, 0);
    // Names of automatic styles are not the point.
    return content.replace(QRegularExpression(QStringLiteral("\"M\\d+\"")),
                           QStringLiteral("\"M\""));
}

QString paragraph(const QString& content)
{
    return QStringLiteral("<text:p text:style-name=\"Text_20_body\">%1</text:p>").arg(content);
}

TEST(HtmlTree, RepairsWhatIsWrong)
{
    const HtmlNode root = parseHtml("<p>one<p>two <b>bold");
    EXPECT_EQ(root.plainText(), QStringLiteral("onetwo bold"));
    EXPECT_EQ(parseHtml("").plainText(), QString());
    EXPECT_EQ(parseHtml("PROCESS TIMED OUT").plainText(), QStringLiteral("PROCESS TIMED OUT"));
}

TEST(HtmlTree, DecodesReferencesAndUtf8AndLatin1)
{
    EXPECT_EQ(parseHtml("<p>&#197;&alpha;&#8722;1&#x1D6FC;").plainText(), QStringLiteral("Åα−1𝛼"));
    EXPECT_EQ(parseHtml("<p>Åα").plainText(), QStringLiteral("Åα"));
    EXPECT_EQ(parseHtml("<p>\xE9t\xE9</p>").plainText(), QStringLiteral("été"));
}

TEST(ArticleOdt, HasTheNameOfTheTitleElement)
{
    EXPECT_EQ(articleName(parseHtml("<title> 5I55\n &amp; more </title><p>x")),
              QStringLiteral("5I55 & more"));
    EXPECT_EQ(articleName(parseHtml("<p>x")), QString());
}

TEST(ArticleOdt, CollapsesWhiteSpace)
{
    EXPECT_EQ(bodyOf("<p>  a \n b<i> c</i>  </p>\n\n<p> </p>"),
              paragraph("a b<text:span text:style-name=\"M\"> c</text:span>")
                  .replace(QLatin1String("<text:span text:style-name=\"M\"> c"),
                           QLatin1String(" <text:span text:style-name=\"M\">c")));
    EXPECT_EQ(bodyOf("<p>a&nbsp; b</p>"), paragraph(QStringLiteral("a\u00A0 b")));
    EXPECT_EQ(bodyOf("<p><br>a<br>b<br></p>"), paragraph("<text:line-break/>a<text:line-break/>b"));
    EXPECT_EQ(bodyOf("loose <b></b>text"), paragraph("loose text"));
}

TEST(ArticleOdt, WritesRealSuperscriptsAndSubscripts)
{
    const QString content = contentOf("<p>H<sub>2</sub>O Cu<sup>2+</sup></p>");
    EXPECT_TRUE(content.contains(QLatin1String("style:text-position=\"sub 58%\"")));
    EXPECT_TRUE(content.contains(QLatin1String("style:text-position=\"super 58%\"")));
    EXPECT_TRUE(contentOf("<p><span style='vertical-align: super'>2</span></p>")
                    .contains(QLatin1String("super 58%")));
}

TEST(ArticleOdt, CombinesFormats)
{
    const QString content = contentOf("<p><b><i>x<sub>1</sub></i></b></p>");
    EXPECT_TRUE(content.contains(QLatin1String(
        "fo:font-weight=\"bold\" fo:font-style=\"italic\" style:text-position=\"sub 58%\"")));
    EXPECT_FALSE(contentOf("<p style='font-style:italic'><span style='font-style:normal'>x</span>")
                     .contains(QLatin1String("italic")));
}

TEST(ArticleOdt, GivesParagraphsTheStylesOfTheirClasses)
{
    const std::pair<const char*, const char*> classes[] = {
        {"title", "Title"},       {"authors", "Authors"},        {"addresses", "Addresses"},
        {"abstract", "Abstract"}, {"caption", "Caption"},        {"note", "Table_20_Note"},
        {"guidance", "Guidance"}, {"reference", "Bibliography"}, {"other", "Text_20_body"},
    };
    for (const auto& [className, style] : classes) {
        const QByteArray html = QByteArray("<p class='x ") + className + "'>t</p>";
        EXPECT_EQ(bodyOf(html),
                  QStringLiteral("<text:p text:style-name=\"%1\">t</text:p>").arg(style));
    }
    EXPECT_EQ(bodyOf("<div class='guidance'><p>t</p></div>"),
              QStringLiteral("<text:p text:style-name=\"Guidance\">t</text:p>"));
}

TEST(ArticleOdt, WritesHeadingsWithTheirLevel)
{
    EXPECT_EQ(
        bodyOf("<h2>Refinement <i>etc.</i></h2>"),
        QStringLiteral("<text:h text:style-name=\"Heading_20_2\" text:outline-level=\"2\">"
                       "Refinement <text:span text:style-name=\"M\">etc.</text:span></text:h>"));
}

TEST(ArticleOdt, WritesAnchorsAsBookmarksAroundTheirContent)
{
    EXPECT_EQ(bodyOf("<p><a name='vexa_title'>T</a></p>"),
              paragraph("<text:bookmark-start text:name=\"vexa_title\"/>T"
                        "<text:bookmark-end text:name=\"vexa_title\"/>"));
    // A name that stands twice would be an invalid document.
    EXPECT_EQ(
        bodyOf("<p><a name='a'>1</a><a name='a'>2</a></p>").count(QLatin1String("bookmark-start")),
        1);
}

TEST(ArticleOdt, KeepsLinksThatLeadSomewhere)
{
    EXPECT_TRUE(bodyOf("<p><a href='https://doi.org/10.1/x?a=1&amp;b=2'>doi</a></p>")
                    .contains(QLatin1String("xlink:href=\"https://doi.org/10.1/x?a=1&amp;b=2\"")));
    EXPECT_EQ(
        bodyOf("<p><a href='javascript:alert(1)'>x</a><a href='file:///etc/passwd'>y</a></p>"),
        paragraph("xy"));
}

TEST(ArticleOdt, LeavesOutWhatIsNoText)
{
    EXPECT_EQ(bodyOf("<head><style>p{}</style></head><p>a<script>b</script><!-- c --></p>"
                     "<vexa:authors count='1'><vexa:author>X</vexa:author></vexa:authors>"),
              paragraph("a"));
}

TEST(ArticleOdt, NestsLists)
{
    const QString body = bodyOf("<ul><li>a<ol><li>b</li></ol></li><li><p>c</p></li><li></li></ul>");
    const QString item =
        QStringLiteral("<text:p text:style-name=\"List_20_Paragraph\">%1</text:p>");
    EXPECT_EQ(body,
              QStringLiteral("<text:list text:style-name=\"M\"><text:list-item>") + item.arg("a") +
                  QStringLiteral("<text:list text:style-name=\"M\"><text:list-item>") +
                  item.arg("b") +
                  QStringLiteral("</text:list-item></text:list></text:list-item><text:list-item>") +
                  item.arg("c") + QStringLiteral("</text:list-item><text:list-item>") +
                  QStringLiteral("<text:p text:style-name=\"List_20_Paragraph\"/>") +
                  QStringLiteral("</text:list-item></text:list>"));
}

TEST(ArticleOdt, KeepsPreformattedTextAsItIs)
{
    EXPECT_EQ(bodyOf("<pre>\na  b\n c</pre>"),
              QStringLiteral("<text:p text:style-name=\"HTML_20_Preformatted\">a<text:s/><text:s/>b"
                             "<text:line-break/><text:s/>c</text:p>"));
}

TEST(ArticleOdt, NumbersCaptionsByFields)
{
    const QString body = bodyOf("<table><caption>Table 1. First</caption><tr><td>x</table>"
                                "<p class='caption'><b>Figure 1</b> Plot</p>"
                                "<table><caption>Table 2</caption><tr><td>x</table>"
                                "<p class='caption'>Fig. 2. Another plot</p>");
    EXPECT_TRUE(body.contains(QLatin1String(
        "Table <text:sequence text:ref-name=\"refTable1\" text:name=\"Table\" "
        "text:formula=\"ooow:Table+1\" style:num-format=\"1\">1</text:sequence>. First")))
        << body.toStdString();
    EXPECT_TRUE(body.contains(QLatin1String("ref-name=\"refTable2\"")));
    EXPECT_TRUE(body.contains(QLatin1String("ref-name=\"refFigure1\"")));
    EXPECT_TRUE(body.contains(QLatin1String(
        "Fig. <text:sequence text:ref-name=\"refFigure2\" text:name=\"Figure\" "
        "text:formula=\"ooow:Figure+1\" style:num-format=\"1\">2</text:sequence>. Another")))
        << body.toStdString();
    EXPECT_TRUE(body.contains(QLatin1String("<text:sequence-decl ")));
}

TEST(ArticleOdt, NumbersEachOfSeveralCaptions)
{
    const QString body = bodyOf("<div class='caption'><p>Captions</p><p>Fig. 1. First</p>"
                                "<p>Fig. 2. Second</p></div>");
    EXPECT_EQ(body.count(QLatin1String("<text:p text:style-name=\"Caption\">")), 3);
    EXPECT_TRUE(body.contains(QLatin1String("ref-name=\"refFigure1\""))) << body.toStdString();
    EXPECT_TRUE(body.contains(QLatin1String("ref-name=\"refFigure2\"")));
}

// A field counts by itself, so it must not replace a number that it would not show.
TEST(ArticleOdt, LeavesOtherNumbersInCaptionsAlone)
{
    for (const char* caption :
         {"Table 2. Late", "Table S1. Deposited", "Tables 1 and 2", "1. Table"})
        EXPECT_FALSE(bodyOf(QByteArray("<p class='caption'>") + caption + "</p>")
                         .contains(QLatin1String("text:sequence ")))
            << caption;
}

TEST(ArticleOdt, RepeatsHeaderRowsAndDrawsThreeRules)
{
    const QString content = contentOf("<table><thead><tr><th>a<th>b</thead><tbody>"
                                      "<tr><th colspan=2>group<tr><th scope=row>c<td>d</table>");
    const QString header = content.section(QLatin1String("<table:table-header-rows>"), 1)
                               .section(QLatin1String("</table:table-header-rows>"), 0, 0);
    EXPECT_EQ(header.count(QLatin1String("Table_20_Head")), 2);
    EXPECT_EQ(content.count(QLatin1String("Table_20_Head\"")), 2);
    EXPECT_EQ(content.count(QLatin1String("Table_20_Group\"")), 1);
    EXPECT_EQ(content.count(QLatin1String("Table_20_Text\"")), 2);
    EXPECT_EQ(content.count(QLatin1String("fo:border-top=\"1pt solid")), 1);
    EXPECT_EQ(content.count(QLatin1String("fo:border-bottom=\"0.5pt solid")), 1);
    EXPECT_EQ(content.count(QLatin1String("fo:border-bottom=\"1pt solid")), 1);
}

TEST(ArticleOdt, KeepsTablesApart)
{
    const QString body = bodyOf("<table><tr><td>a</table><table><tr><td>b</table>");
    EXPECT_TRUE(body.contains(QLatin1String("</table:table><text:p ")));
    EXPECT_EQ(bodyOf("<table></table><table><caption></caption></table>"), QString());
}

TEST(ArticleOdt, EmbedsImages)
{
    const QByteArray png =
        "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGA"
        "WjR9awAAAABJRU5ErkJggg==";
    const ArticleOdt odt = writeArticleOdt(
        parseHtml("<p><img width=96 src='data:image/png;base64," + png + "'></p>"), {});
    EXPECT_TRUE(odt.remarks.isEmpty());
    const QByteArray* image = odt.package.find(QStringLiteral("Pictures/1.png"));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(*image, QByteArray::fromBase64(png));
    EXPECT_TRUE(
        contentOf(odt).contains(QLatin1String("svg:width=\"2.54cm\" svg:height=\"2.54cm\"")));
    EXPECT_TRUE(
        odt.package.find(QStringLiteral("META-INF/manifest.xml"))->contains("Pictures/1.png"));

    const ArticleOdt without = writeArticleOdt(
        parseHtml("<p><img alt='plot' src='https://example.org/x.png'><img src='nosuch.png'></p>"),
        {});
    EXPECT_EQ(without.remarks.size(), 2);
    EXPECT_TRUE(contentOf(without).contains(QLatin1String(">plot</text:p>")));
}

TEST(ArticleOdt, IsAnOpenDocumentPackage)
{
    const ArticleOdt odt = writeArticleOdt(parseHtml("<p>x"), {});
    EXPECT_EQ(odt.package.names().first(), QStringLiteral("mimetype"));
    EXPECT_NE(odt.package.find(QStringLiteral("styles.xml")), nullptr);
}

TEST(ArticleOdt, SurvivesHostileHtml)
{
    QByteArray deep;
    for (int i = 0; i < 20000; ++i)
        deep += "<div><b>";
    contentOf(deep + "x");
    contentOf("<table><tr><td colspan=100000 rowspan=100000>a<td><table><tr><td>b</table></table>");
    contentOf("<p>&#1;&#0;&#xFFFE;&#xD800;</p><a name=''></a><ol start=-5><li>x</ol>");
    contentOf("<b><table><tr><td>x</td></tr></table></b><a name=n><p>y</p></a>");
}

TableLayout layoutOf(const HtmlNode& root)
{
    return layOutTable(*root.find(QStringLiteral("table")));
}

TEST(TableLayout, PlacesSpannedCells)
{
    const HtmlNode root = parseHtml("<table><tr><td rowspan=2>a<td>b<td>c<tr><td colspan=2>d"
                                    "<tr><td>e</table>");
    const TableLayout layout = layoutOf(root);
    ASSERT_EQ(layout.rows.size(), 3U);
    ASSERT_EQ(layout.columns(), 3);
    EXPECT_EQ(layout.rows[0].cells[0].rows, 2);
    EXPECT_TRUE(layout.rows[1].cells[0].isCovered);
    EXPECT_EQ(layout.rows[1].cells[1].node->plainText(), QStringLiteral("d"));
    EXPECT_EQ(layout.rows[1].cells[1].columns, 2);
    EXPECT_TRUE(layout.rows[1].cells[2].isCovered);
    // A row that is too short is filled up with cells without content.
    EXPECT_EQ(layout.rows[2].cells[1].node, nullptr);
    EXPECT_FALSE(layout.rows[2].cells[1].isCovered);
}

TEST(TableLayout, EndsSpansAtTheTablesEdges)
{
    const HtmlNode root = parseHtml("<table><tr><td colspan=9 rowspan=9>a<tr><td>b</table>");
    const TableLayout layout = layoutOf(root);
    EXPECT_EQ(layout.rows.size(), 2U);
    for (const TableRow& row : layout.rows) {
        int columns = 0;
        for (const TableCell& cell : row.cells)
            columns += cell.isCovered ? 0 : 1;
        EXPECT_LE(columns, layout.columns());
    }
}

TEST(TableLayout, KnowsHeadersAndGroups)
{
    const HtmlNode byThead = parseHtml("<table><thead><tr><td>a<td>b<tr><td>c<td>d</thead>"
                                       "<tr><th colspan=2>g<tr><td>1<td>2</table>");
    EXPECT_EQ(layoutOf(byThead).headerRows, 2);
    EXPECT_TRUE(layoutOf(byThead).rows[2].isGroupHeading);
    const HtmlNode byHeadings = parseHtml("<table><tr><th>a<th>b<tr><td>1<td>2</table>");
    EXPECT_EQ(layoutOf(byHeadings).headerRows, 1);
    const HtmlNode none = parseHtml("<table><tr><th>a<td>b<tr><td>1<td>2</table>");
    EXPECT_EQ(layoutOf(none).headerRows, 0);
    // Header rows alone would leave nothing to repeat them over.
    const HtmlNode headerOnly = parseHtml("<table><thead><tr><th>a<th>b</thead></table>");
    EXPECT_EQ(layoutOf(headerOnly).headerRows, 0);
}

TEST(TableLayout, SharesTheWidthOutByContent)
{
    const HtmlNode root = parseHtml("<table><tr><td>" + QByteArray("word ").repeated(60) +
                                    "<td>1.54178 (12), 2.0000 (3)<td>x</table>");
    const std::vector<int> widths = layoutOf(root).columnWidths;
    EXPECT_EQ(std::accumulate(widths.begin(), widths.end(), 0), 65535);
    EXPECT_GT(widths[0], widths[1] * 3 / 2);
    EXPECT_GT(widths[1], widths[2] * 3 / 2);
    EXPECT_GT(widths[2], 65535 / 10); // not squeezed to the edge

    QByteArray wide = "<table><tr>";
    for (int i = 0; i < 60; ++i)
        wide += "<td>some longer text here";
    const HtmlNode wideRoot = parseHtml(wide + "</table>");
    for (const int width : layoutOf(wideRoot).columnWidths)
        EXPECT_GT(width, 65535 / 60 / 2);
}

// What a column takes of the 16 cm between the margins, in points and without the cell's padding.
double roomIn(const TableLayout& layout, std::size_t column)
{
    return 453.5 * layout.columnWidths.at(column) / 65535 - 7.9;
}

// Widths of words in 9.5 pt, bold for headings, as the metrics of the font have them.
TEST(TableLayout, BreaksNoShortWordInANarrowColumn)
{
    const HtmlNode root = parseHtml(
        "<table><thead><tr><th>Entity<th>Type<th>Description<th>Code<th>Copies<th>Chains"
        "<th>Formula weight (Da)<th>Formula</thead>"
        "<tr><td>1<td>polymer<td>Transcriptional regulator VexR (VexR)<td>-<td>1<td>A<td>3139.639"
        "<td>-<tr><td>4<td>non-polymer<td>PENTAETHYLENE GLYCOL<td>HOH<td>31<td>D<td>18.015"
        "<td>H<sub>2</sub>O</table>");
    const TableLayout layout = layoutOf(root);
    EXPECT_GT(roomIn(layout, 1), 49); // non-polymer
    EXPECT_GT(roomIn(layout, 2), 82); // PENTAETHYLENE
    EXPECT_GT(roomIn(layout, 3), 22); // Code, HOH
    EXPECT_GT(roomIn(layout, 5), 31); // Chains
    EXPECT_GT(roomIn(layout, 7), 37); // Formula
}

TEST(TableLayout, LetsLongWordsBreakBeforeShortOnes)
{
    const QByteArray formula = "<td>C10H20O5\xC2\xB7H12NiO6\xC2\xB7"
                               "2NO3\xC2\xB7"
                               "2H2OC10H20O5\xC2\xB7H12NiO6";
    const HtmlNode root = parseHtml("<table><tr><th scope=row>Formula" + formula.repeated(4) +
                                    "<tr><th scope=row>Diffractometer<td>a<td>a<td>a<td>a</table>");
    const TableLayout layout = layoutOf(root);
    EXPECT_GT(roomIn(layout, 0), 58); // Diffractometer
    EXPECT_GT(roomIn(layout, 1), 75);
    EXPECT_NEAR(roomIn(layout, 1), roomIn(layout, 4), 0.1);
}

PublicationMetadata metadata(int authors, int addresses)
{
    PublicationMetadata metadata;
    for (int i = 0; i < addresses; ++i)
        metadata.addresses.push_back({QStringLiteral("d%1").arg(i), QString(QChar('a' + i)),
                                      QStringLiteral("Place %1").arg(i)});
    for (int i = 0; i < authors; ++i) {
        Author author;
        author.given = QStringLiteral("G%1.").arg(i);
        author.family = QStringLiteral("F%1").arg(i);
        author.addressIds = QStringList{QStringLiteral("d0"), QStringLiteral("d1")};
        metadata.authors.push_back(author);
    }
    return metadata;
}

QString frontMatter(const PublicationMetadata& metadata)
{
    HtmlNode article = parseHtml("<body><p class='title'><a name='vexa_title'>T</a></p>"
                                 "<p class='authors'><a name='vexa_authors'>&#160;</a></p>"
                                 "<p class='addresses'><a name='vexa_addresses'>&#160;</a></p>"
                                 "<h1>Abstract</h1></body>");
    fillFrontMatter(article, metadata);
    QString text;
    for (const HtmlNode& block : article.find(QStringLiteral("body"))->children)
        text += block.attributes.value(QStringLiteral("class")) + ':' + block.plainText() + '\n';
    return text;
}

TEST(FrontMatter, NamesAuthorsAndTheirAddresses)
{
    PublicationMetadata both = metadata(3, 2);
    both.authors[1].isCorresponding = true;
    both.authors[1].email = QStringLiteral("f@x.org");
    both.authors[2].note = QStringLiteral("Deceased.");
    EXPECT_EQ(frontMatter(both), QStringLiteral("title:T\n"
                                                "authors:G0. F0a,b, G1. F1a,b* and G2. F2a,b†\n"
                                                "addresses:aPlace 0\naddresses:bPlace 1\n"
                                                "addresses:*Correspondence: G1. F1, f@x.org\n"
                                                "addresses:†Deceased.\n:Abstract\n"));
}

TEST(FrontMatter, NeedsNoLabelsForOneAddress)
{
    EXPECT_EQ(frontMatter(metadata(2, 1)), QStringLiteral("title:T\nauthors:G0. F0 and G1. F1\n"
                                                          "addresses:Place 0\n:Abstract\n"));
}

TEST(FrontMatter, AsksForWhatIsNotKnown)
{
    EXPECT_EQ(frontMatter({}), QStringLiteral("title:T\n"
                                              "guidance:Type the names of the authors here.\n"
                                              "guidance:Type the addresses of the authors here.\n"
                                              ":Abstract\n"));
}

} // namespace
