#include "wordbridge/customxml.h"

#include "wordbridge/error.h"

namespace wordbridge
{

namespace
{

const QByteArray xmlStart = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

// Any fixed value does: it only has to differ from those of other parts in the same document.
const QByteArray storeItemId = "{2F0C6B9E-7A41-4C55-9B7D-6E1D3C0A8F42}";

// Inserts `xml` before the end tag of the part's root element.
void appendTo(Package& document, const QString& partName, const QByteArray& endTag,
              const QByteArray& xml)
{
    const QByteArray* content = document.find(partName);
    const int end = content ? content->lastIndexOf(endTag) : -1;
    if (end < 0)
        throw Error(QStringLiteral("this is no Word document: its part %1 is missing or damaged")
                        .arg(partName));
    document.set(partName, content->left(end) + xml + content->mid(end));
}

int freeNumber(const Package& document)
{
    int number = 1;
    while (document.find(QStringLiteral("customXml/item%1.xml").arg(number)))
        ++number;
    return number;
}

} // namespace

void addCustomXml(Package& document, const QByteArray& xml)
{
    const QByteArray number = QByteArray::number(freeNumber(document));
    const QByteArray item = "item" + number + ".xml";
    const QByteArray properties = "itemProps" + number + ".xml";
    const QString folder = QStringLiteral("customXml/");

    document.set(folder + item, xml);
    document.set(
        folder + properties,
        xmlStart +
            "<ds:datastoreItem xmlns:ds=\"http://schemas.openxmlformats.org/officeDocument/"
            "2006/customXml\" ds:itemID=\"" +
            storeItemId + "\"><ds:schemaRefs/></ds:datastoreItem>");
    document.set(folder + QStringLiteral("_rels/") + item + ".rels",
                 xmlStart +
                     "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/"
                     "relationships\"><Relationship Id=\"rId1\" Type=\"http://schemas."
                     "openxmlformats.org/officeDocument/2006/relationships/customXmlProps\" "
                     "Target=\"" +
                     properties + "\"/></Relationships>");
    appendTo(document, QStringLiteral("word/_rels/document.xml.rels"), "</Relationships>",
             "<Relationship Id=\"rIdVexa" + number +
                 "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
                 "customXml\" Target=\"../customXml/" +
                 item + "\"/>");
    appendTo(document, QStringLiteral("[Content_Types].xml"), "</Types>",
             "<Override PartName=\"/customXml/" + properties +
                 "\" ContentType=\"application/vnd.openxmlformats-officedocument."
                 "customXmlProperties+xml\"/>");
}

} // namespace wordbridge
