#include "wordbridge/publicationmetadata.h"

#include "wordbridge/textencoding.h"

#include <gtest/gtest.h>
#include <QXmlStreamReader>

namespace
{

using namespace wordbridge;

const QString journal = QStringLiteral(
    "<vexa:publjnl xmlns:vexa=\"http//www.vexa.example/publjnl\"><jnlname>Crystals &amp; Co & "
    "<Sons>"
    "</jnlname><jnlcategory>research papers</jnlcategory><jnlfield>sas</jnlfield></vexa:publjnl>");
const QString authors =
    QStringLiteral(
        "<vexa:authors xmlns:vexa=\"http://www.vexa.example/publauthors\" count=\"2\">\n"
        "<vexa:author id=\"a1\" seq=\"1\" addr=\"d1\"><vexa:given>J.</vexa:given>"
        "<vexa:family>Müller &amp; Łoś</vexa:family></vexa:author>\n"
        "<vexa:author id=\"a2\" seq=\"2\" addr=\"d1 d2\" corresponding=\"yes\" email=\"p@x.org\">"
        "<vexa:family>Plato</vexa:family><vexa:note>At <b> rest.</vexa:note></vexa:author>\n"
        "</vexa:authors>")
        .replace(QLatin1String("<b>"), QLatin1String("&lt;b&gt;"));
const QString addresses =
    QStringLiteral("<vexa:addresses xmlns:vexa=\"http://www.vexa.example/publauthors\" count=\"2\">"
                   "<vexa:address id=\"d1\" label=\"a\">Łódź, Poland</vexa:address>"
                   "<vexa:address id=\"d2\" label=\"b\">Athens</vexa:address></vexa:addresses>");

QByteArray twice(const QString& text)
{
    return QString::fromLatin1(text.toUtf8()).toUtf8();
}

TEST(TextEncoding, IsUndone)
{
    const QString text = QStringLiteral("Müller, Łódź, α, 𝛼");
    EXPECT_EQ(decodedTwice(twice(text)), text);
    EXPECT_EQ(decodedTwice(text.toUtf8()), text);
    EXPECT_EQ(decodedTwice("plain"), QStringLiteral("plain"));
    EXPECT_EQ(decodedTwice(QStringLiteral("Müller").toUtf8()), QStringLiteral("Müller"));
    EXPECT_EQ(decodedTwice(QStringLiteral("Müller").toLatin1()), QStringLiteral("Müller"));
    EXPECT_EQ(decodedTwice(""), QString());
    const QByteArray cut = twice(text);
    EXPECT_EQ(decodedTwice(cut.left(cut.size() - 1)), QStringLiteral("Müller, Łódź, α, "));
}

TEST(PublicationMetadata, IsReadFromTheThreePieces)
{
    const PublicationMetadata metadata =
        readPublicationMetadata(twice(journal + authors + addresses));
    EXPECT_TRUE(metadata.remarks.isEmpty()) << metadata.remarks.join('|').toStdString();
    // The journal's values are not escaped by the program.
    EXPECT_EQ(metadata.journal, QStringLiteral("Crystals &amp; Co & <Sons>"));
    EXPECT_EQ(metadata.category, QStringLiteral("research papers"));
    EXPECT_EQ(metadata.field, QStringLiteral("sas"));
    ASSERT_EQ(metadata.authors.size(), 2);
    EXPECT_EQ(metadata.authors[0].name(), QStringLiteral("J. Müller & Łoś"));
    EXPECT_FALSE(metadata.authors[0].isCorresponding);
    EXPECT_EQ(metadata.authors[1].name(), QStringLiteral("Plato"));
    EXPECT_EQ(metadata.authors[1].addressIds, (QStringList{"d1", "d2"}));
    EXPECT_TRUE(metadata.authors[1].isCorresponding);
    EXPECT_EQ(metadata.authors[1].email, QStringLiteral("p@x.org"));
    EXPECT_EQ(metadata.authors[1].note, QStringLiteral("At <b> rest."));
    ASSERT_EQ(metadata.addresses.size(), 2);
    EXPECT_EQ(metadata.addresses[0].text, QStringLiteral("Łódź, Poland"));
    EXPECT_EQ(metadata.addresses[1].label, QStringLiteral("b"));
}

TEST(PublicationMetadata, MayLackTheBlocks)
{
    const PublicationMetadata metadata = readPublicationMetadata(journal.toUtf8());
    EXPECT_TRUE(metadata.remarks.isEmpty());
    EXPECT_TRUE(metadata.authors.isEmpty());
    EXPECT_TRUE(metadata.addresses.isEmpty());
}

TEST(PublicationMetadata, OfADamagedFileIsRemarkedOn)
{
    const auto remarks = [](const QString& text) {
        return readPublicationMetadata(twice(text)).remarks.size();
    };
    EXPECT_EQ(remarks(QString()), 1);
    EXPECT_EQ(remarks(journal.left(60)), 1);
    EXPECT_EQ(remarks(journal + authors.left(100)), 1);
    QString wrongEnd = authors;
    wrongEnd.replace(QLatin1String("</vexa:family>"), QLatin1String("</vexa:fam>"));
    EXPECT_EQ(remarks(journal + wrongEnd), 1);
    QString fewer = authors;
    fewer.replace(QLatin1String("count=\"2\""), QLatin1String("count=\"3\""));
    EXPECT_EQ(remarks(journal + fewer), 1);

    // What is sound is still read.
    const PublicationMetadata metadata =
        readPublicationMetadata(twice(journal + wrongEnd + addresses));
    EXPECT_TRUE(metadata.authors.isEmpty());
    EXPECT_TRUE(metadata.authorsXml.isEmpty());
    EXPECT_EQ(metadata.addresses.size(), 2);
    EXPECT_EQ(metadata.category, QStringLiteral("research papers"));
}

TEST(ManuscriptXml, IsWellFormedWhateverTheJournalIsCalled)
{
    PublicationMetadata metadata = readPublicationMetadata(twice(journal + authors + addresses));
    metadata.category += QChar(1); // not allowed in XML
    QXmlStreamReader xml(manuscriptXml(metadata));
    ASSERT_TRUE(xml.readNextStartElement());
    EXPECT_EQ(xml.name(), QStringLiteral("manuscript"));
    EXPECT_EQ(xml.namespaceUri(), QStringLiteral("http://www.vexa.example/manuscript"));
    ASSERT_TRUE(xml.readNextStartElement());
    EXPECT_EQ(xml.readElementText(), metadata.journal);
    int authorElements = 0;
    while (!xml.atEnd()) {
        xml.readNext();
        authorElements += xml.isStartElement() && xml.name() == QLatin1String("author") ? 1 : 0;
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(authorElements, 2);
}

} // namespace
