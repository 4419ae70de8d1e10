// Packages, the custom XML part, and the check that stands before every document that is handed
// over.
#include "wordbridge/customxml.h"
#include "wordbridge/docxcheck.h"
#include "wordbridge/error.h"
#include "wordbridge/manuscriptfile.h"
#include "wordbridge/package.h"

#include "print.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{

using namespace wordbridge;

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

TEST(Package, KeepsPartsAndOrder)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("é ü.zip"));
    Package package;
    package.set(QStringLiteral("mimetype"), "application/vnd.oasis.opendocument.text");
    package.set(QStringLiteral("b/ä.xml"), QByteArray(100000, 'x'));
    package.set(QStringLiteral("a"), "");
    package.set(QStringLiteral("b/ä.xml"), "replaced");
    package.write(path);

    const Package read = Package::read(path);
    EXPECT_EQ(read.names(), (QStringList{"mimetype", "b/ä.xml", "a"}));
    EXPECT_EQ(*read.find(QStringLiteral("b/ä.xml")), "replaced");
    EXPECT_EQ(*read.find(QStringLiteral("a")), "");
    EXPECT_EQ(read.find(QStringLiteral("b")), nullptr);
    // OpenDocument is recognised by these bytes at this place.
    EXPECT_EQ(readAll(path).mid(30, 47), "mimetypeapplication/vnd.oasis.opendocument.text");
}

TEST(Package, DependsOnItsPartsAlone)
{
    const QTemporaryDir folder;
    Package package;
    package.set(QStringLiteral("a"), "text");
    package.write(folder.filePath(QStringLiteral("1")));
    package.write(folder.filePath(QStringLiteral("2")));
    EXPECT_EQ(readAll(folder.filePath(QStringLiteral("1"))),
              readAll(folder.filePath(QStringLiteral("2"))));
}

TEST(Package, RefusesDamagedArchives)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.docx"));
    EXPECT_THROW(Package::read(path), Error);
    writeAll(path, "no archive");
    EXPECT_THROW(Package::read(path), Error);

    Package package;
    package.set(QStringLiteral("mimetype"), QByteArray(1000, 'x'));
    package.write(path);
    QByteArray damaged = readAll(path);
    damaged[500] = 'y'; // in the content: only the checksum tells
    writeAll(path, damaged);
    EXPECT_THROW(Package::read(path), Error);
    EXPECT_THROW(package.write(folder.filePath(QStringLiteral("nosuch/a.docx"))), Error);
}

const QByteArray xmlStart = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
const QByteArray wordNamespaces =
    " xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\""
    " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"";

QByteArray relationship(const QByteArray& id, const QByteArray& type, const QByteArray& target,
                        const QByteArray& more = {})
{
    return "<Relationship Id=\"" + id +
           "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/" + type +
           "\" Target=\"" + target + "\"" + more + "/>";
}

QByteArray relationships(const QByteArray& content)
{
    return xmlStart +
           "<Relationships "
           "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">" +
           content + "</Relationships>";
}

// A sound document with that body.
Package documentWith(const QByteArray& body)
{
    const QByteArray base = "application/vnd.openxmlformats-officedocument.wordprocessingml.";
    Package document;
    document.set(
        QStringLiteral("[Content_Types].xml"),
        xmlStart +
            "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
            "<Default Extension=\"rels\" ContentType=\"application/"
            "vnd.openxmlformats-package.relationships+xml\"/>"
            "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
            "<Override PartName=\"/word/document.xml\" ContentType=\"" +
            base + "document.main+xml\"/><Override PartName=\"/word/styles.xml\" ContentType=\"" +
            base + "styles+xml\"/></Types>");
    document.set(QStringLiteral("_rels/.rels"),
                 relationships(relationship("rId1", "officeDocument", "word/document.xml")));
    document.set(QStringLiteral("word/_rels/document.xml.rels"),
                 relationships(relationship("rId1", "styles", "styles.xml")));
    document.set(QStringLiteral("word/document.xml"), xmlStart + "<w:document" + wordNamespaces +
                                                          "><w:body>" + body +
                                                          "</w:body></w:document>");
    document.set(QStringLiteral("word/styles.xml"),
                 xmlStart + "<w:styles" + wordNamespaces +
                     "><w:style w:type=\"paragraph\" w:styleId=\"Title\"/></w:styles>");
    return document;
}

QStringList findings(const QByteArray& body)
{
    return checkWordDocument(documentWith(body));
}

TEST(DocumentCheck, PassesASoundDocument)
{
    EXPECT_EQ(findings("<w:p><w:pPr><w:pStyle w:val=\"Title\"/><w:jc w:val=\"left\"/></w:pPr>"
                       "<w:bookmarkStart w:id=\"0\" w:name=\"a\"/><w:r><w:t>x</w:t></w:r>"
                       "<w:bookmarkEnd w:id=\"0\"/></w:p>"
                       "<w:tbl><w:tblGrid><w:gridCol/><w:gridCol/></w:tblGrid><w:tr><w:tc><w:tcPr>"
                       "<w:gridSpan w:val=\"2\"/></w:tcPr><w:p/></w:tc></w:tr></w:tbl><w:p/>"),
              QStringList());
}

class Defect : public testing::TestWithParam<std::pair<const char*, const char*>>
{
};

TEST_P(Defect, IsFound)
{
    const auto& [body, finding] = GetParam();
    EXPECT_EQ(findings(body), QStringList(QStringLiteral("word/document.xml: ") + finding));
}

INSTANTIATE_TEST_SUITE_P(
    InTheText, Defect,
    testing::Values(
        std::pair{"<w:p><w:pPr><w:pStyle w:val=\"Nosuch\"/></w:pPr></w:p>",
                  "there is no style Nosuch"},
        std::pair{"<w:p><w:pPr><w:numPr><w:numId w:val=\"3\"/></w:numPr></w:pPr></w:p>",
                  "there is no numbering 3"},
        std::pair{"<w:p><w:pPr><w:jc/><w:spacing/></w:pPr></w:p>",
                  "spacing stands in the wrong place in pPr"},
        std::pair{"<w:p><w:pPr><w:colour/></w:pPr></w:p>", "colour does not belong in pPr"},
        std::pair{"<w:p><w:r><w:rPr><w:sz/><w:i/><w:sz/></w:rPr></w:r></w:p>",
                  "a property stands twice in rPr"},
        std::pair{"<w:p><w:hyperlink r:id=\"rId9\"/></w:p>", "there is no relationship rId9"},
        std::pair{"<w:p><w:bookmarkStart w:id=\"0\" w:name=\"a\"/></w:p>",
                  "a bookmark does not end"},
        std::pair{"<w:p><w:bookmarkEnd w:id=\"0\"/></w:p>", "a bookmark ends that did not begin"},
        std::pair{"<w:p><w:r><w:fldChar w:fldCharType=\"begin\"/></w:r></w:p>",
                  "a field does not end"},
        std::pair{"<w:tbl><w:tblGrid><w:gridCol/></w:tblGrid><w:tr><w:tc/></w:tr></w:tbl>",
                  "a table cell does not end with a paragraph"},
        std::pair{"<w:tbl><w:tblGrid><w:gridCol/><w:gridCol/></w:tblGrid><w:tr><w:tc><w:p/></w:tc>"
                  "</w:tr></w:tbl>",
                  "a table row has 1 columns where its table has 2"}));

TEST(DocumentCheck, FindsDefectsOfThePackage)
{
    Package document = documentWith("<w:p>");
    EXPECT_FALSE(checkWordDocument(document).filter(QStringLiteral("not well-formed")).isEmpty());

    document = documentWith("<w:p/>");
    document.set(QStringLiteral("word/vbaProject.bin"), "x");
    EXPECT_EQ(checkWordDocument(document),
              QStringList(QStringLiteral("word/vbaProject.bin has no content type")));

    document = documentWith("<w:p/>");
    document.set(
        QStringLiteral("word/_rels/document.xml.rels"),
        relationships(
            relationship("rId1", "styles", "styles.xml") +
            relationship("rId1", "image", "media/1.png") +
            relationship("rId2", "image", "file:///a.png", " TargetMode=\"External\"") +
            relationship("rId3", "hyperlink", "https://doi.org/", " TargetMode=\"External\"")));
    EXPECT_EQ(checkWordDocument(document).size(), 3);

    document = documentWith("<w:p/>");
    QByteArray types = *document.find(QStringLiteral("[Content_Types].xml"));
    document.set(QStringLiteral("[Content_Types].xml"),
                 types.replace("wordprocessingml.document.main", "wordprocessingml.template.main"));
    EXPECT_EQ(
        checkWordDocument(document),
        QStringList(QStringLiteral("word/document.xml is not of the type of a Word document")));

    EXPECT_FALSE(checkWordDocument({}).isEmpty());
}

TEST(DocumentCheck, FindsStylesOfTheSameName)
{
    Package document = documentWith("<w:p/>");
    document.set(QStringLiteral("word/styles.xml"),
                 xmlStart + "<w:styles" + wordNamespaces +
                     "><w:style w:styleId=\"Caption\"><w:name w:val=\"Caption\"/></w:style>"
                     "<w:style w:styleId=\"Caption1\"><w:name w:val=\"caption\"/></w:style>"
                     "</w:styles>");
    EXPECT_EQ(checkWordDocument(document),
              QStringList(QStringLiteral("two styles are called caption")));
}

TEST(DocumentCheck, FindsWrongCustomProperties)
{
    Package document = documentWith("<w:p/>");
    document.set(QStringLiteral("docProps/custom.xml"),
                 xmlStart +
                     "<Properties><property pid=\"1\" name=\"a\"><s>x</s></property>"
                     "<property pid=\"2\" name=\"b\"><s>" +
                     QByteArray(256, 'x') + "</s></property></Properties>");
    EXPECT_EQ(checkWordDocument(document).size(), 2);
}

TEST(CustomXml, IsAddedBesideWhatIsThere)
{
    Package document = documentWith("<w:p/>");
    addCustomXml(document, "<a/>");
    addCustomXml(document, "<b/>");
    EXPECT_EQ(*document.find(QStringLiteral("customXml/item1.xml")), "<a/>");
    EXPECT_EQ(*document.find(QStringLiteral("customXml/item2.xml")), "<b/>");
    EXPECT_EQ(checkWordDocument(document), QStringList());
    Package nothing;
    EXPECT_THROW(addCustomXml(nothing, "<a/>"), Error);
}

TEST(ManuscriptFile, HasANameThatFileSystemsTake)
{
    EXPECT_EQ(manuscriptBaseName(QString()), QStringLiteral("Manuscript"));
    EXPECT_EQ(manuscriptBaseName(QStringLiteral(" 5I55 \n")), QStringLiteral("Manuscript – 5I55"));
    EXPECT_EQ(manuscriptBaseName(QStringLiteral("a/b:c\\d\x01*?\"<>|")),
              QStringLiteral("Manuscript – a_b_c_d_______"));
    const QString longName = manuscriptBaseName(QString(500, QChar(0x3B1)));
    EXPECT_LE(longName.toUtf8().size(), 180);
    EXPECT_GT(longName.toUtf8().size(), 170);
    const QString pairs = manuscriptBaseName(QStringLiteral("\U0001D6FC").repeated(100));
    EXPECT_FALSE(pairs.at(pairs.size() - 1).isHighSurrogate());
}

class KeptManuscript : public testing::Test
{
protected:
    KeptManuscript()
    {
        qputenv("HOME", m_home.path().toUtf8());
        qunsetenv("XDG_CONFIG_HOME");
        source = m_home.filePath(QStringLiteral("made.docx"));
        writeAll(source, "content");
    }

    QString inDocuments(const QString& name) const
    {
        return m_home.path() + QStringLiteral("/Documents/") + name;
    }

    QTemporaryDir m_home;
    QString source;
};

TEST_F(KeptManuscript, GetsANumberWhereTheNameIsTaken)
{
    EXPECT_EQ(keepManuscript(source, QStringLiteral("M")), inDocuments(QStringLiteral("M.docx")));
    EXPECT_EQ(keepManuscript(source, QStringLiteral("M")),
              inDocuments(QStringLiteral("M (2).docx")));
    // A dangling link is a name that is taken, too.
    QFile::link(QStringLiteral("/nosuch"), inDocuments(QStringLiteral("M (3).docx")));
    EXPECT_EQ(keepManuscript(source, QStringLiteral("M")),
              inDocuments(QStringLiteral("M (4).docx")));
    EXPECT_EQ(readAll(inDocuments(QStringLiteral("M (4).docx"))), "content");
}

TEST_F(KeptManuscript, GoesToTheHomeFolderWhereThereCanBeNoDocumentsFolder)
{
    writeAll(m_home.filePath(QStringLiteral("Documents")), "a file");
    EXPECT_EQ(keepManuscript(source, QStringLiteral("M")),
              m_home.filePath(QStringLiteral("M.docx")));
}

TEST_F(KeptManuscript, IsReportedWhereItCannotBeKept)
{
    qputenv("HOME", "/proc/nosuch");
    EXPECT_THROW(keepManuscript(source, QStringLiteral("M")), Error);
    EXPECT_THROW(keepManuscript(QStringLiteral("/nosuch"), QStringLiteral("M")), Error);
}

} // namespace
