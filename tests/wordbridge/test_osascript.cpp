// The companion as its users run it, with the real LibreOffice.
#include "desk.h"
#include "print.h"

#include "wordbridge/docxcheck.h"
#include "wordbridge/files.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QXmlStreamReader>

namespace
{

using wordbridge::Package;
using wordbridge::writeFile;

const QByteArray article =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<title>Cu(acac)&#8322;: &#945;-phase</title>\n</head>\n<body>\n"
    "<p class=\"title\"><a name=\"vexa_title\">Structure of <i>trans</i>-[Cu(C<sub>5</sub>)] at "
    "1.54&#8201;&#197;, &#945;-phase</a></p>\n"
    "<p class=\"authors\"><a name=\"vexa_authors\">&#160;</a></p>\n"
    "<p class=\"addresses\"><a name=\"vexa_addresses\">&#160;</a></p>\n"
    "<h1>Abstract</h1>\n<p>In <i>Fd</i>3&#773;<i>m</i>, Cu<sup>2+</sup> &#8722;1.</p>\n"
    "<p class=\"guidance\">Write here what is new.</p>\n"
    "<h2>Refinement</h2>\n<p>See Table&#160;1.</p>\n"
    "<table>\n<caption>Table 1. Experimental details</caption>\n"
    "<thead><tr><th>Quantity</th><th>Value</th></tr></thead>\n<tbody>\n"
    "<tr><th colspan=\"2\">Crystal data</th></tr>\n"
    "<tr data-row=\"A1.v\"><th scope=\"row\"><i>V</i> (&#197;<sup>3</sup>)</th><td>545.6&#8201;(2)"
    "</td></tr>\n<tr><th "
    "scope=\"row\">Sequence</th><td><code>MKLV<wbr></wbr>AGHE</code></td></tr>\n"
    "</tbody>\n</table>\n<p class=\"note\">Symmetry code: (i) &#8722;<i>x</i>.</p>\n"
    "</body>\n</html>\n";

const QString journal = QStringLiteral(
    "<vexa:publjnl xmlns:vexa=\"http//www.vexa.example/publjnl\"><jnlname>Revue d'été & Söhne <B>"
    "</jnlname><jnlcategory>research papers</jnlcategory><jnlfield>sas</jnlfield></vexa:publjnl>");
const QString authors = QStringLiteral(
    "<vexa:authors xmlns:vexa=\"http://www.vexa.example/publauthors\" count=\"3\">\n"
    "<vexa:author id=\"a1\" seq=\"1\" addr=\"d1\"><vexa:given>J.</vexa:given>"
    "<vexa:family>Müller &amp; Sohn</vexa:family></vexa:author>\n"
    "<vexa:author id=\"a2\" seq=\"2\" addr=\"d1 d2\" corresponding=\"yes\" email=\"z@x.org\">"
    "<vexa:given>Łucja</vexa:given><vexa:family>Żak</vexa:family></vexa:author>\n"
    "<vexa:author id=\"a3\" seq=\"3\"><vexa:family>Plato</vexa:family>"
    "<vexa:note>Deceased &#x1D6FC;.</vexa:note></vexa:author>\n</vexa:authors>");
const QString addresses = QStringLiteral(
    "<vexa:addresses xmlns:vexa=\"http://www.vexa.example/publauthors\" count=\"2\">\n"
    "<vexa:address id=\"d1\" label=\"a\">Universität Köln, Germany</vexa:address>\n"
    "<vexa:address id=\"d2\" label=\"b\">Łódź &lt;PL&gt;</vexa:address>\n</vexa:addresses>");

// The paragraphs of a Word document: style and text, a superscript as ^{…}, a subscript as _{…}.
QStringList paragraphsOf(const Package& document)
{
    QStringList paragraphs;
    QXmlStreamReader xml(textOf(document, "word/document.xml"));
    QString style;
    QString text;
    QString mark;
    while (!xml.atEnd()) {
        xml.readNext();
        const QString name = xml.qualifiedName().toString();
        const QString value = xml.attributes().value(QStringLiteral("w:val")).toString();
        if (xml.isStartElement() && name == QLatin1String("w:p"))
            style = text = QString();
        else if (xml.isStartElement() && name == QLatin1String("w:pStyle"))
            style = value;
        else if (xml.isStartElement() && name == QLatin1String("w:r"))
            mark.clear();
        else if (xml.isStartElement() && name == QLatin1String("w:vertAlign"))
            mark = value == QLatin1String("superscript") ? QStringLiteral("^")
                   : value == QLatin1String("subscript") ? QStringLiteral("_")
                                                         : QString();
        else if (xml.isStartElement() && name == QLatin1String("w:t"))
            text += mark.isEmpty()
                        ? xml.readElementText()
                        : mark + QLatin1Char('{') + xml.readElementText() + QLatin1Char('}');
        else if (xml.isEndElement() && name == QLatin1String("w:p"))
            paragraphs.push_back(style + QStringLiteral(": ") + text);
    }
    return paragraphs;
}

QString joined(const Package& document)
{
    return paragraphsOf(document).join(QLatin1Char('\n'));
}

QString property(const Package& document, const QString& name)
{
    QXmlStreamReader xml(textOf(document, "docProps/custom.xml"));
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement &&
            xml.attributes().value(QLatin1String("name")) == name)
            return xml.readElementText(QXmlStreamReader::IncludeChildElements);
    }
    return {};
}

class Osascript : public OfficeTest
{
protected:
    Osascript()
    {
        desk.writeArticle(article);
        desk.writeMetadata(journal + authors + addresses);
    }
};

TEST_F(Osascript, MakesTheManuscript)
{
    const RunResult run = desk.run();
    EXPECT_EQ(run.errors, QString());
    ASSERT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.document(),
              desk.home() + QStringLiteral("/Documents/Manuscript – Cu(acac)₂_ α-phase.docx"));
    const Package document = Package::read(run.document());

    EXPECT_EQ(joined(document),
              QStringLiteral("Title: Structure of trans-[Cu(C_{5})] at 1.54\u2009Å, α-phase\n"
                             "Authors: J. Müller & Sohn^{a}, Łucja Żak^{a,b*} and Plato^{†}\n"
                             "Addresses: ^{a}Universität Köln, Germany\n"
                             "Addresses: ^{b}Łódź <PL>\n"
                             "Addresses: ^{*}Correspondence: Łucja Żak, z@x.org\n"
                             "Addresses: ^{†}Deceased 𝛼.\n"
                             "Heading1: Abstract\n"
                             "TextBody: In Fd3\u0305m, Cu^{2+} −1.\n"
                             "Guidance: Write here what is new.\n"
                             "Heading2: Refinement\n"
                             "TextBody: See Table\u00A01.\n"
                             "Caption: Table 1. Experimental details\n"
                             "TableHead: Quantity\n"
                             "TableHead: Value\n"
                             "TableGroup: Crystal data\n"
                             "TableText: V (Å^{3})\n"
                             "TableText: 545.6\u2009(2)\n"
                             "TableText: Sequence\n"
                             "TableText: MKLVAGHE\n"
                             "TableNote: Symmetry code: (i) −x."));
    EXPECT_EQ(property(document, QStringLiteral("Journal")),
              QStringLiteral("Revue d'été & Söhne <B>"));
    EXPECT_EQ(property(document, QStringLiteral("Category")), QStringLiteral("research papers"));
    EXPECT_EQ(property(document, QStringLiteral("Field")), QStringLiteral("sas"));
    const QString core = textOf(document, "docProps/core.xml");
    EXPECT_TRUE(core.contains(QStringLiteral(
        "<dc:title>Structure of trans-[Cu(C5)] at 1.54\u2009Å, α-phase</dc:title>")));
    EXPECT_TRUE(core.contains(
        QStringLiteral("<dc:creator>J. Müller &amp; Sohn, Łucja Żak, Plato</dc:creator>")));
    EXPECT_TRUE(textOf(document, "customXml/item1.xml").contains(authors + addresses));
}

TEST_F(Osascript, MakesADocumentThatWordAccepts)
{
    const Package document = Package::read(desk.run().document());
    EXPECT_EQ(wordbridge::checkWordDocument(document), QStringList());
    const QString text = textOf(document, "word/document.xml");
    EXPECT_TRUE(text.contains(QLatin1String("<w:tblHeader")));
    EXPECT_TRUE(text.contains(QLatin1String("<w:rFonts w:ascii=\"Courier New\""))); // a sequence
    EXPECT_TRUE(text.contains(QLatin1String("SEQ Table \\* ARABIC")));
    EXPECT_TRUE(text.contains(QLatin1String("<w:lnNumType")));
    EXPECT_FALSE(text.contains(QLatin1String("w:bookmarkStart"))); // the places have served
    EXPECT_FALSE(text.contains(QLatin1String("w:position")));
    for (const QString& name : document.names())
        EXPECT_FALSE(name.contains(QLatin1String("vba"), Qt::CaseInsensitive))
            << name.toStdString();
    const QString styles = textOf(document, "word/styles.xml");
    EXPECT_TRUE(styles.contains(QLatin1String("w:val=\"Guidance\"")));
}

// An author edits and saves before an editorial system reads the metadata.
TEST_F(Osascript, MakesADocumentThatKeepsItsMetadataWhenSavedAgain)
{
    const QString document = desk.run().document();
    const QString again = desk.home() + QStringLiteral("/again");
    QProcess office;
    office.setProcessEnvironment(desk.environment);
    office.start(QStringLiteral("soffice"),
                 {QStringLiteral("--headless"), QStringLiteral("--convert-to"),
                  QStringLiteral("docx"), QStringLiteral("--outdir"), again, document});
    ASSERT_TRUE(office.waitForFinished(60000));
    const Package saved = Package::read(again + QLatin1Char('/') + QFileInfo(document).fileName());
    EXPECT_EQ(property(saved, QStringLiteral("Journal")),
              QStringLiteral("Revue d'été & Söhne <B>"));
    QStringList metadataParts;
    for (const wordbridge::Part& part : saved.parts()) {
        if (part.name.startsWith(QLatin1String("customXml/item")) &&
            QString::fromUtf8(part.content).contains(QStringLiteral("Łucja")))
            metadataParts.push_back(part.name);
    }
    EXPECT_EQ(metadataParts.size(), 1);
    EXPECT_EQ(paragraphsOf(saved).size(), paragraphsOf(Package::read(document)).size());
}

// The fallback without LibreOffice is a document that LibreOffice opens as what it should be.
TEST_F(Osascript, MakesAnOpenDocumentThatLibreOfficeReads)
{
    desk.environment.insert(QStringLiteral("VEXAWORD_OFFICE"), QStringLiteral("/nosuch"));
    const QString document = desk.run().document();
    ASSERT_TRUE(document.endsWith(QLatin1String(".odt")));
    QProcess office;
    office.setProcessEnvironment(desk.environment);
    office.start(QStringLiteral("soffice"),
                 {QStringLiteral("--headless"), QStringLiteral("--convert-to"),
                  QStringLiteral("docx"), QStringLiteral("--outdir"), desk.home(), document});
    ASSERT_TRUE(office.waitForFinished(60000));
    const Package read =
        Package::read(desk.home() + QLatin1Char('/') + QFileInfo(document).completeBaseName() +
                      QStringLiteral(".docx"));
    const QString text = joined(read);
    EXPECT_TRUE(text.contains(QLatin1String("Title: Structure of trans-"))) << text.toStdString();
    EXPECT_TRUE(text.contains(
        QStringLiteral("\nAuthors: J. Müller & Sohn^{a}, Łucja Żak^{a,b*} and Plato^{†}\n")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QLatin1String("\nHeading1: Abstract\n"))) << text.toStdString();
    EXPECT_EQ(property(read, QStringLiteral("Journal")), QStringLiteral("Revue d'été & Söhne <B>"));
    EXPECT_TRUE(textOf(read, "docProps/core.xml").contains(QStringLiteral("Łucja Żak, Plato")));
    EXPECT_TRUE(text.contains(QLatin1String("\nCaption: Table 1. Experimental details\n")))
        << text.toStdString();
}

TEST_F(Osascript, NeverReplacesADocument)
{
    const QString first = desk.run().document();
    const QString second = desk.run().document();
    EXPECT_NE(first, second);
    EXPECT_TRUE(second.endsWith(QLatin1String("phase (2).docx"))) << second.toStdString();
    EXPECT_TRUE(QFile::exists(first));
    EXPECT_TRUE(QFile::exists(second));
}

TEST_F(Osascript, KeepsToTheUsersDocumentsFolder)
{
    writeFile(desk.home() + QStringLiteral("/.config/user-dirs.dirs"),
              "XDG_DOCUMENTS_DIR=\"$HOME/Dokumenty\"\n");
    EXPECT_EQ(QFileInfo(desk.run().document()).path(), desk.home() + QStringLiteral("/Dokumenty"));
}

TEST_F(Osascript, ReadsTheMetadataFromWordsContainerWhereThereIsOne)
{
    QString other = journal;
    other.replace(QLatin1String("research papers"), QLatin1String("letters"));
    writeFile(desk.home() +
                  QStringLiteral("/Library/Containers/com.microsoft.Word/Data/macstart.xml"),
              encodedTwice(other));
    const Package document = Package::read(desk.run().document());
    EXPECT_EQ(property(document, QStringLiteral("Category")), QStringLiteral("letters"));
}

TEST_F(Osascript, MakesTheManuscriptWithoutMetadataAndSaysSo)
{
    QFile::remove(desk.metadataPath());
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.errors.contains(desk.metadataPath())) << run.errors.toStdString();
    const QString text = joined(Package::read(run.document()));
    EXPECT_TRUE(
        text.contains(QLatin1String("Guidance: The file macstart.xml was not found. Type the "
                                    "names of the authors here.\n"
                                    "Guidance: Type the addresses of the authors here.\n")))
        << text.toStdString();
}

TEST_F(Osascript, MakesTheManuscriptFromHalfWrittenMetadataAndSaysSo)
{
    desk.writeMetadata(journal + authors.left(300));
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.errors.contains(QLatin1String("vexa:authors does not end")));
    const Package document = Package::read(run.document());
    EXPECT_EQ(property(document, QStringLiteral("Category")), QStringLiteral("research papers"));
    EXPECT_TRUE(
        joined(document).contains(QLatin1String("Guidance: The file macstart.xml is incomplete.")));
    EXPECT_EQ(wordbridge::checkWordDocument(document), QStringList());
}

TEST_F(Osascript, MakesTheManuscriptFromMalformedMetadataAndSaysSo)
{
    QString malformed = authors;
    malformed.replace(QLatin1String("Plato</vexa:family>"), QLatin1String("Plato"));
    desk.writeMetadata(journal + malformed + addresses);
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.errors.contains(QLatin1String("vexa:author is damaged")))
        << run.errors.toStdString();
    const Package document = Package::read(run.document());
    EXPECT_TRUE(joined(document).contains(
        QLatin1String("Guidance: The file macstart.xml holds an author without a name.")))
        << joined(document).toStdString();
    EXPECT_EQ(wordbridge::checkWordDocument(document), QStringList());
}

TEST_F(Osascript, ReadsMetadataThatIsEncodedOnce)
{
    writeFile(desk.metadataPath(), (journal + authors + addresses).toUtf8());
    const RunResult run = desk.run();
    EXPECT_EQ(run.errors, QString());
    EXPECT_TRUE(joined(Package::read(run.document()))
                    .contains(QStringLiteral("Müller & Sohn^{a}, Łucja Żak")));
}

TEST_F(Osascript, AsksForAuthorsWhereAReadyMadeTemplateHasNone)
{
    desk.writeMetadata(journal);
    const RunResult run = desk.run();
    EXPECT_EQ(run.errors, QString());
    EXPECT_TRUE(joined(Package::read(run.document()))
                    .contains(QLatin1String("Guidance: Type the names of the authors here.\n")));
}

TEST_F(Osascript, InsertsTextThatIsNoArticle)
{
    desk.writeArticle("PROCESS TIMED OUT");
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.document().endsWith(
        QStringLiteral("Manuscript – Revue d'été & Söhne _B_ research papers.docx")));
    EXPECT_EQ(joined(Package::read(run.document())), QStringLiteral("TextBody: PROCESS TIMED OUT"));
}

TEST_F(Osascript, EmbedsImages)
{
    desk.writeArticle(
        "<title>T</title><p><img alt=\"plot\" src=\"data:image/png;base64,"
        "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJ"
        "RU5ErkJggg==\">");
    const RunResult run = desk.run();
    EXPECT_EQ(run.errors, QString());
    const Package document = Package::read(run.document());
    EXPECT_EQ(document.names().filter(QStringLiteral("word/media/")).size(), 1);
    EXPECT_TRUE(textOf(document, "word/document.xml").contains(QLatin1String("<w:drawing")));
}

TEST_F(Osascript, SaysThatTheArticleIsEmpty)
{
    desk.writeArticle("<html><head><title>T</title></head><body> </body></html>");
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.errors.contains(QLatin1String("the article is empty")))
        << run.errors.toStdString();
    EXPECT_TRUE(run.document().endsWith(QStringLiteral("/Manuscript – T.docx")));
}

TEST_F(Osascript, ReportsAStatementThatItDoesNotKnow)
{
    QFile script(desk.scriptPath());
    ASSERT_TRUE(script.open(QIODevice::ReadOnly));
    writeFile(desk.scriptPath(), script.readAll().replace("delay 1", "beep"));
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, QString());
    EXPECT_EQ(
        run.errors,
        QStringLiteral("osascript: error: %1:8: unknown statement: beep\n").arg(desk.scriptPath()));
    EXPECT_FALSE(QDir(desk.home() + QStringLiteral("/Documents")).exists());
}

TEST_F(Osascript, ReportsMissingFilesWithTheirLine)
{
    desk.writeScript(QStringLiteral("/nosuch.dotm"), desk.articlePath());
    EXPECT_TRUE(desk.run().errors.contains(
        QLatin1String(":7: the Word template is missing or cannot be read: /nosuch.dotm")));
    desk.writeScript(QStringLiteral(VEXA_BUNDLE_DIR "/vexainkworks_wm.dotm"),
                     QStringLiteral("/nosuch.html"));
    const RunResult run = desk.run();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains(
        QLatin1String(":9: the article is missing or cannot be read: /nosuch.html")));
    EXPECT_EQ(desk.run({QStringLiteral("/nosuch")}).exitCode, 1);
}

TEST_F(Osascript, ExplainsItself)
{
    EXPECT_EQ(desk.run({}).exitCode, 2);
    EXPECT_EQ(desk.run({QStringLiteral("a"), QStringLiteral("b")}).exitCode, 2);
    EXPECT_EQ(desk.run({QStringLiteral("-x")}).exitCode, 2);
    const RunResult help = desk.run({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.output.startsWith(QLatin1String("Usage: osascript SCRIPT\n")));
    EXPECT_TRUE(
        desk.run({QStringLiteral("--version")}).output.contains(QLatin1String("Vexa Word")));
}

TEST_F(Osascript, KeepsALog)
{
    const QString document = desk.run().document();
    desk.run({QStringLiteral("/nosuch")});
    QFile log(desk.home() + QStringLiteral("/.local/state/vexaword/manuscripts.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].endsWith(desk.scriptPath() + QStringLiteral(": ") + document));
    EXPECT_TRUE(lines[1].contains(QLatin1String("/nosuch: error: cannot read /nosuch")));
}

} // namespace
