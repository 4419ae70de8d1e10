#include "wordbridge/docxcheck.h"
#include "wordbridge/error.h"
#include "wordtemplate/templatepackage.h"
#include "wordtemplate/vbacompression.h"
#include "wordtemplate/vbaproject.h"

#include "compoundreader.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace
{

using wordbridge::Package;
using namespace wordtemplate;

const QString sources = QStringLiteral(VEXA_SOURCE_DIR "/wordtemplate/");
const QString built = QStringLiteral(VEXA_BUNDLE_DIR "/vexainkworks_wm.dotm");

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray vbaProject(const Package& package)
{
    const QByteArray* part = package.find(QStringLiteral("word/vbaProject.bin"));
    return part ? *part : QByteArray();
}

TEST(Template, IsBuiltTheSameEveryTime)
{
    const QTemporaryDir folder;
    const QString again = folder.filePath(QStringLiteral("again.dotm"));
    buildTemplate(sources + "package", sources + "macros").write(again);
    EXPECT_FALSE(readAll(again).isEmpty());
    EXPECT_EQ(readAll(again), readAll(built));
}

TEST(Template, ConsistsOfWellFormedParts)
{
    const Package package = Package::read(built);
    EXPECT_EQ(package.names().first(), QStringLiteral("[Content_Types].xml"));
    for (const wordbridge::Part& part : package.parts()) {
        if (part.name.endsWith(QLatin1String(".bin")))
            continue;
        QXmlStreamReader xml(part.content);
        while (!xml.atEnd())
            xml.readNext();
        EXPECT_FALSE(xml.hasError()) << part.name.toStdString() << xml.errorString().toStdString();
    }
}

// Judged like a document, it has no other fault than being a template with macros.
TEST(Template, ConsistsOfPartsThatWordAccepts)
{
    EXPECT_EQ(wordbridge::checkWordDocument(Package::read(built)).join('\n').toStdString(),
              "word/document.xml holds macros\nword/vbaProject.bin holds macros\n"
              "word/document.xml is not of the type of a Word document");
}

TEST(Template, HasTheStylesOfAManuscript)
{
    const Package package = Package::read(built);
    const QByteArray* styles = package.find(QStringLiteral("word/styles.xml"));
    ASSERT_NE(styles, nullptr);
    for (const char* name :
         {"Title", "Authors", "Addresses", "Abstract", "heading 1", "heading 2", "heading 3",
          "Body Text", "Guidance", "Caption", "Table Head", "Table Group", "Table Text",
          "Table Note", "Bibliography", "footer", "Line Number"})
        EXPECT_TRUE(styles->contains(QByteArray("<w:name w:val=\"") + name + '"')) << name;
}

TEST(Template, HoldsTheMacroAsSource)
{
    const auto streams = CompoundReader(vbaProject(Package::read(built))).streams();
    QByteArray source = readAll(sources + "macros/Vexa_authors.bas");
    source.replace("\n", "\r\n");
    ASSERT_TRUE(source.contains("Public Sub VexaM_setInitialXmlData()"));
    EXPECT_EQ(decompressVba(streams.at("VBA/Vexa_authors")), source);

    const QByteArray project = streams.at("PROJECT");
    EXPECT_TRUE(project.contains("\r\nModule=Vexa_authors\r\n"));
    EXPECT_TRUE(project.contains("\r\nDocument=ThisDocument/&H00000000\r\n"));
    const QByteArray directory = decompressVba(streams.at("VBA/dir"));
    EXPECT_TRUE(directory.contains("Vexa_authors"));
    EXPECT_EQ(streams.at("VBA/_VBA_PROJECT"), QByteArray::fromHex("CC61FFFF000000"));
    EXPECT_EQ(streams.count("PROJECTwm"), 1U);
}

// Undoes [MS-OVBA] 2.4.3: Word shows the project as locked if these three do not come out right.
QByteArray revealed(const QByteArray& project, const QByteArray& name)
{
    const auto valueOf = [&](const QByteArray& key) {
        const int start = project.indexOf(key + "=\"") + key.size() + 2;
        return project.mid(start, project.indexOf('"', start) - start);
    };
    const QByteArray bytes = QByteArray::fromHex(valueOf(name));
    quint8 key = 0;
    for (const char letter : valueOf("ID"))
        key = static_cast<quint8>(key + static_cast<quint8>(letter));
    const auto byte = [&bytes](int i) { return static_cast<quint8>(bytes[i]); };
    EXPECT_EQ(byte(1) ^ byte(0), 2) << "version";
    EXPECT_EQ(byte(2) ^ byte(0), key) << "project key";
    QByteArray plain;
    quint8 last = key;
    for (int i = 3; i < bytes.size(); ++i) {
        last = static_cast<quint8>(byte(i) ^ static_cast<quint8>(byte(i - 2) + last));
        plain.append(static_cast<char>(last));
    }
    return plain.mid((byte(0) & 6) / 2);
}

TEST(Template, IsNeitherLockedNorHidden)
{
    const QByteArray project =
        CompoundReader(vbaProject(Package::read(built))).streams().at("PROJECT");
    EXPECT_EQ(revealed(project, "CMG").toHex(), "0400000000000000");
    EXPECT_EQ(revealed(project, "DPB").toHex(), "0100000000");
    EXPECT_EQ(revealed(project, "GC").toHex(), "01000000ff");
}

TEST(VbaModule, HasToBeAsciiAndToNameItself)
{
    EXPECT_EQ(readVbaModule("Attribute VB_Name = \"Name\"\nSub A\nEnd Sub\n", false).name,
              QStringLiteral("Name"));
    EXPECT_EQ(readVbaModule("Attribute VB_Name = \"N\"\nA\r\nB\n", false).source,
              "Attribute VB_Name = \"N\"\r\nA\r\nB\r\n");
    EXPECT_THROW(readVbaModule("Sub A\nEnd Sub\n", false), wordbridge::Error);
    EXPECT_THROW(readVbaModule("Attribute VB_Name = \"N\"\n' \xC3\xA9\n", false),
                 wordbridge::Error);
}

TEST(TemplateSources, AreReportedWithTheirLineWhenDamaged)
{
    const QTemporaryDir folder;
    QFile part(folder.filePath(QStringLiteral("[Content_Types].xml")));
    ASSERT_TRUE(part.open(QIODevice::WriteOnly));
    part.write("<Types>\n<Default>\n</Types>\n");
    part.close();
    try {
        buildTemplate(folder.path(), sources + "macros");
        FAIL();
    } catch (const wordbridge::Error& error) {
        EXPECT_TRUE(error.message().contains(QLatin1String("[Content_Types].xml:3:")))
            << error.what();
    }
    EXPECT_THROW(buildTemplate(folder.filePath(QStringLiteral("nosuch")), sources + "macros"),
                 wordbridge::Error);
}

} // namespace
