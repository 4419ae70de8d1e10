#include "wordtemplate/templatepackage.h"

#include "wordbridge/error.h"
#include "wordbridge/files.h"
#include "wordtemplate/vbaproject.h"

#include <QDir>
#include <QDirIterator>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace wordtemplate
{

namespace
{

const QString contentTypes = QStringLiteral("[Content_Types].xml");

// Word reads an indented part as well, but white space between runs would become text in some
// places.
QByteArray compactXml(const QByteArray& xml, const QString& path)
{
    QByteArray compact;
    QXmlStreamWriter writer(&compact);
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false); // prefixes pass as they are
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isComment() || reader.isWhitespace())
            continue;
        switch (reader.tokenType()) {
        case QXmlStreamReader::StartDocument:
            writer.writeStartDocument(QStringLiteral("1.0"), true);
            break;
        case QXmlStreamReader::StartElement:
            writer.writeStartElement(reader.qualifiedName().toString());
            writer.writeAttributes(reader.attributes());
            break;
        case QXmlStreamReader::EndElement:
            writer.writeEndElement();
            break;
        case QXmlStreamReader::Characters:
            writer.writeCharacters(reader.text().toString());
            break;
        default:
            break;
        }
    }
    if (reader.hasError())
        throw wordbridge::Error(
            QStringLiteral("%1:%2: %3")
                .arg(path, QString::number(reader.lineNumber()), reader.errorString()));
    return compact;
}

QStringList filesBelow(const QString& folder)
{
    QStringList names;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        names.push_back(QDir(folder).relativeFilePath(files.next()));
    names.sort();
    return names;
}

QByteArray buildVbaProject(const QString& macrosFolder)
{
    const QDir folder(macrosFolder);
    std::vector<VbaModule> modules;
    modules.push_back(readVbaModule(
        wordbridge::readFile(folder.filePath(QStringLiteral("ThisDocument.cls"))), true));
    const QStringList sources =
        folder.entryList({QStringLiteral("*.bas")}, QDir::Files, QDir::Name);
    for (const QString& name : sources)
        modules.push_back(readVbaModule(wordbridge::readFile(folder.filePath(name)), false));
    return writeVbaProject(QStringLiteral("VexaWord"), modules);
}

} // namespace

wordbridge::Package buildTemplate(const QString& partsFolder, const QString& macrosFolder)
{
    QStringList names = filesBelow(partsFolder);
    if (!names.removeOne(contentTypes))
        throw wordbridge::Error(QStringLiteral("%1 holds no %2").arg(partsFolder, contentTypes));
    names.prepend(contentTypes); // readers that do not seek want it first

    wordbridge::Package package;
    for (const QString& name : names) {
        const QString path = QDir(partsFolder).filePath(name);
        package.set(name, compactXml(wordbridge::readFile(path), path));
    }
    package.set(QStringLiteral("word/vbaProject.bin"), buildVbaProject(macrosFolder));
    return package;
}

} // namespace wordtemplate
