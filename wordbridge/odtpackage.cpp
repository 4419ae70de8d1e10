#include "wordbridge/odtpackage.h"

#include "wordbridge/resources.h"

#include <QXmlStreamWriter>

namespace wordbridge
{

namespace
{

const QString documentType = QStringLiteral("application/vnd.oasis.opendocument.text");

QByteArray contentXml(const OdtContent& content)
{
    QByteArray sequences;
    for (const QString& name : content.sequences)
        sequences += "<text:sequence-decl text:display-outline-level=\"0\" text:name=\"" +
                     name.toUtf8() + "\"/>";
    if (!sequences.isEmpty())
        sequences = "<text:sequence-decls>" + sequences + "</text:sequence-decls>";

    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<office:document-content";
    for (const auto& [prefix, name] : {
             std::pair{"office", "urn:oasis:names:tc:opendocument:xmlns:office:1.0"},
             std::pair{"style", "urn:oasis:names:tc:opendocument:xmlns:style:1.0"},
             std::pair{"text", "urn:oasis:names:tc:opendocument:xmlns:text:1.0"},
             std::pair{"table", "urn:oasis:names:tc:opendocument:xmlns:table:1.0"},
             std::pair{"draw", "urn:oasis:names:tc:opendocument:xmlns:drawing:1.0"},
             std::pair{"fo", "urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"},
             std::pair{"svg", "urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"},
             std::pair{"xlink", "http://www.w3.org/1999/xlink"},
         })
        xml += QByteArray(" xmlns:") + prefix + "=\"" + name + '"';
    xml += " office:version=\"1.3\"><office:automatic-styles>" + content.automaticStyles +
           "</office:automatic-styles><office:body><office:text>" + sequences + content.body +
           "</office:text></office:body></office:document-content>";
    return xml;
}

QString typeOf(const QString& partName)
{
    const QString suffix = partName.section(QLatin1Char('.'), -1);
    return suffix == QLatin1String("xml") ? QStringLiteral("text/xml")
                                          : QStringLiteral("image/") + suffix;
}

QByteArray manifestXml(const QStringList& parts)
{
    QByteArray manifest;
    QXmlStreamWriter xml(&manifest);
    const auto entry = [&xml](const QString& path, const QString& type) {
        xml.writeEmptyElement(QStringLiteral("manifest:file-entry"));
        xml.writeAttribute(QStringLiteral("manifest:full-path"), path);
        xml.writeAttribute(QStringLiteral("manifest:media-type"), type);
    };
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("manifest:manifest"));
    xml.writeAttribute(QStringLiteral("xmlns:manifest"),
                       QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:manifest:1.0"));
    xml.writeAttribute(QStringLiteral("manifest:version"), QStringLiteral("1.3"));
    entry(QStringLiteral("/"), documentType);
    for (const QString& part : parts)
        entry(part, typeOf(part));
    xml.writeEndDocument();
    return manifest;
}

} // namespace

Package packOdt(const OdtContent& content)
{
    Package package;
    package.set(QStringLiteral("content.xml"), contentXml(content));
    package.set(QStringLiteral("styles.xml"), resource("manuscript-styles.xml"));
    if (!content.metaXml.isEmpty())
        package.set(QStringLiteral("meta.xml"), content.metaXml);
    for (const Part& image : content.images)
        package.set(image.name, image.content);

    Package whole;
    whole.set(QStringLiteral("mimetype"), documentType.toLatin1()); // has to be the first
    for (const Part& part : package.parts())
        whole.set(part.name, part.content);
    whole.set(QStringLiteral("META-INF/manifest.xml"), manifestXml(package.names()));
    return whole;
}

} // namespace wordbridge
