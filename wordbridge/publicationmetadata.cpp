#include "wordbridge/publicationmetadata.h"

#include "wordbridge/textencoding.h"

#include <QXmlStreamReader>

namespace wordbridge
{

namespace
{

const QString manuscriptNamespace = QStringLiteral("http://" VEXAWORD_NAMESPACE_HOST "/manuscript");

QString between(const QString& text, const QString& opening, const QString& closing)
{
    const int start = text.indexOf(opening);
    const int end = start < 0 ? -1 : text.indexOf(closing, start + opening.size());
    return end < 0 ? QString() : text.mid(start + opening.size(), end - start - opening.size());
}

QString contentOf(const QString& text, const QString& name)
{
    return between(text, '<' + name + '>', "</" + name + '>');
}

// An element as XML; nothing if it would be empty.
QByteArray element(const char* name, const QByteArray& attributes, const QString& content)
{
    if (content.isEmpty())
        return {};
    return QByteArray("<") + name + attributes + '>' +
           allowedInXml(content).toHtmlEscaped().toUtf8() + "</" + name + '>';
}

// The whole block, from its opening tag to its end tag.
QString block(const QString& text, const QString& name, PublicationMetadata& metadata)
{
    const int start = text.indexOf(QStringLiteral("<%1 ").arg(name));
    if (start < 0)
        return {};
    const QString endTag = QStringLiteral("</%1>").arg(name);
    const int end = text.lastIndexOf(endTag);
    if (end < start) {
        metadata.remarks.push_back(QStringLiteral("the element %1 does not end").arg(name));
        return {};
    }
    return text.mid(start, end + endTag.size() - start);
}

Author readAuthor(QXmlStreamReader& xml)
{
    const QXmlStreamAttributes attributes = xml.attributes();
    Author author;
    author.addressIds = attributes.value(QLatin1String("addr"))
                            .toString()
                            .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    author.isCorresponding =
        attributes.value(QLatin1String("corresponding")) == QLatin1String("yes");
    author.email = attributes.value(QLatin1String("email")).toString();
    while (xml.readNextStartElement()) {
        const QString name = xml.name().toString();
        const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        if (name == QLatin1String("given"))
            author.given = text;
        else if (name == QLatin1String("family"))
            author.family = text;
        else if (name == QLatin1String("note"))
            author.note = text;
    }
    return author;
}

Address readAddress(QXmlStreamReader& xml)
{
    Address address;
    address.id = xml.attributes().value(QLatin1String("id")).toString();
    address.label = xml.attributes().value(QLatin1String("label")).toString();
    address.text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
    return address;
}

// Reads the children of a block. A block that is not well-formed is cleared.
template<typename Item, typename ReadItem>
QVector<Item> readItems(QString& blockXml, const QString& itemName, ReadItem readItem,
                        PublicationMetadata& metadata)
{
    QVector<Item> items;
    if (blockXml.isEmpty())
        return items;
    QXmlStreamReader xml(blockXml);
    xml.readNextStartElement();
    const int count = xml.attributes().value(QLatin1String("count")).toInt();
    while (xml.readNextStartElement()) {
        if (xml.name() == itemName)
            items.push_back(readItem(xml));
        else
            xml.skipCurrentElement();
    }
    if (xml.hasError()) {
        metadata.remarks.push_back(QStringLiteral("the list of elements vexa:%1 is damaged: %2")
                                       .arg(itemName, xml.errorString()));
        blockXml.clear();
        items.clear();
    } else if (items.size() < count) {
        metadata.remarks.push_back(
            QStringLiteral("there are %1 elements vexa:%2 instead of %3")
                .arg(QString::number(items.size()), itemName, QString::number(count)));
    }
    return items;
}

} // namespace

PublicationMetadata readPublicationMetadata(const QByteArray& bytes)
{
    PublicationMetadata metadata;
    const QString text = decodedTwice(bytes);
    const QString journalEnd = QStringLiteral("</vexa:publjnl>");
    const int journalLength = text.indexOf(journalEnd);
    if (journalLength < 0)
        metadata.remarks.push_back(QStringLiteral("the element vexa:publjnl does not end"));
    const QString journal = text.left(journalLength);
    metadata.journal = contentOf(journal, QStringLiteral("jnlname"));
    metadata.category = contentOf(journal, QStringLiteral("jnlcategory"));
    metadata.field = contentOf(journal, QStringLiteral("jnlfield"));

    const QString blocks = text.mid(journalLength < 0 ? 0 : journalLength + journalEnd.size());
    metadata.authorsXml = block(blocks, QStringLiteral("vexa:authors"), metadata);
    metadata.addressesXml = block(blocks, QStringLiteral("vexa:addresses"), metadata);
    metadata.authors =
        readItems<Author>(metadata.authorsXml, QStringLiteral("author"), readAuthor, metadata);
    metadata.addresses =
        readItems<Address>(metadata.addressesXml, QStringLiteral("address"), readAddress, metadata);
    return metadata;
}

QByteArray manuscriptXml(const PublicationMetadata& metadata)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<manuscript xmlns=\"" +
                     manuscriptNamespace.toUtf8() + "\">";
    for (const auto& [name, value] :
         {std::pair{"journal", metadata.journal}, std::pair{"category", metadata.category},
          std::pair{"field", metadata.field}})
        xml += element(name, {}, value);
    xml += metadata.authorsXml.toUtf8() + metadata.addressesXml.toUtf8() + "</manuscript>";
    return xml;
}

QByteArray openDocumentMeta(const PublicationMetadata& metadata, const QString& title)
{
    QStringList authors;
    for (const Author& author : metadata.authors)
        authors.push_back(author.name());
    QByteArray xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<office:document-meta "
        "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
        "xmlns:meta=\"urn:oasis:names:tc:opendocument:xmlns:meta:1.0\" "
        "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" office:version=\"1.3\"><office:meta>";
    xml += element("dc:title", {}, title);
    xml += element("meta:initial-creator", {}, authors.join(QStringLiteral(", ")));
    xml += element("dc:creator", {}, authors.join(QStringLiteral(", ")));
    for (const auto& [name, value] :
         {std::pair{"Journal", metadata.journal}, std::pair{"Category", metadata.category},
          std::pair{"Field", metadata.field}})
        xml += element("meta:user-defined", QByteArray(" meta:name=\"") + name + '"', value);
    return xml + "</office:meta></office:document-meta>";
}

} // namespace wordbridge
