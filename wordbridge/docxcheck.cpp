#include "wordbridge/docxcheck.h"

#include <algorithm>
#include <QDir>
#include <QMap>
#include <QSet>
#include <QXmlStreamReader>
#include <vector>

namespace wordbridge
{

namespace
{

const QString contentTypesName = QStringLiteral("[Content_Types].xml");
const QString mainType = QStringLiteral(
    "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml");
const QString wordNamespace =
    QStringLiteral("http://schemas.openxmlformats.org/wordprocessingml/2006/main");
const QString relationshipNamespace =
    QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/relationships");

// Children in the order that the schema demands; each may stand once, but for those in
// `repeatable`.
const QMap<QString, QStringList>& childOrders()
{
    static const auto words = [](const char* list) {
        return QString::fromLatin1(list).split(QLatin1Char(' '));
    };
    static const QMap<QString, QStringList> orders{
        {QStringLiteral("pPr"),
         words("pStyle keepNext keepLines pageBreakBefore framePr widowControl numPr "
               "suppressLineNumbers pBdr shd tabs suppressAutoHyphens kinsoku wordWrap "
               "overflowPunct topLinePunct autoSpaceDE autoSpaceDN bidi adjustRightInd snapToGrid "
               "spacing ind contextualSpacing mirrorIndents suppressOverlap jc textDirection "
               "textAlignment textboxTightWrap outlineLvl divId cnfStyle rPr sectPr pPrChange")},
        {QStringLiteral("tblPr"),
         words("tblStyle tblpPr tblOverlap bidiVisual tblStyleRowBandSize tblStyleColBandSize tblW "
               "jc tblCellSpacing tblInd tblBorders shd tblLayout tblCellMar tblLook tblCaption "
               "tblDescription tblPrChange")},
        {QStringLiteral("tcPr"),
         words("cnfStyle tcW gridSpan hMerge vMerge tcBorders shd noWrap tcMar textDirection "
               "tcFitText vAlign hideMark headers cellIns cellDel cellMerge tcPrChange")},
        {QStringLiteral("style"),
         words("name aliases basedOn next link autoRedefine hidden uiPriority semiHidden "
               "unhideWhenUsed qFormat locked personal personalCompose personalReply rsid pPr rPr "
               "tblPr trPr tcPr tblStylePr")},
        {QStringLiteral("sectPr"),
         words("headerReference footerReference footnotePr endnotePr type pgSz pgMar paperSrc "
               "pgBorders lnNumType pgNumType cols formProt vAlign noEndnote titlePg textDirection "
               "bidi rtlGutter docGrid printerSettings sectPrChange")},
    };
    return orders;
}

bool isRepeatable(const QString& child)
{
    return child == QLatin1String("headerReference") || child == QLatin1String("footerReference") ||
           child == QLatin1String("tblStylePr");
}

struct Relationship {
    QString type;
    QString target; // name of a part; the address itself where it is external
    bool isExternal = false;
};

// The folder and file of "word/document.xml" have their relationships in
// "word/_rels/document.xml.rels".
QString relationshipsName(const QString& part)
{
    const int slash = part.lastIndexOf(QLatin1Char('/'));
    return part.left(slash + 1) + QStringLiteral("_rels/") + part.mid(slash + 1) +
           QStringLiteral(".rels");
}

QString sourceFolder(const QString& relationships)
{
    return relationships.left(relationships.lastIndexOf(QLatin1String("_rels/")));
}

// Reads one part of text (document, footer, styles, …) element by element.
class TextChecker
{
public:
    TextChecker(const QString& part, const QMap<QString, Relationship>& relationships,
                const QSet<QString>& styles, const QSet<QString>& numberings, QStringList& findings)
        : m_part(part),
          m_relationships(relationships),
          m_styles(styles),
          m_numberings(numberings),
          m_findings(findings)
    {
    }

    void check(const QByteArray& content)
    {
        QXmlStreamReader xml(content);
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isStartElement())
                enter(xml);
            else if (xml.isEndElement())
                leave(xml);
        }
        if (!m_openBookmarks.isEmpty())
            find(QStringLiteral("a bookmark does not end"));
        if (m_openFields != 0)
            find(QStringLiteral("a field does not end"));
    }

private:
    struct Element {
        QString name;
        QStringList children;
    };
    struct Table {
        int columns = 0;
        int rowColumns = 0;
        bool lastInCellIsParagraph = false;
    };

    void find(const QString& finding)
    {
        const QString sentence = QStringLiteral("%1: %2").arg(m_part, finding);
        if (!m_findings.contains(sentence))
            m_findings.push_back(sentence);
    }

    static QString value(const QXmlStreamReader& xml, const char* name = "val")
    {
        return xml.attributes().value(wordNamespace, QLatin1String(name)).toString();
    }

    void enter(const QXmlStreamReader& xml)
    {
        const QString name = xml.name().toString();
        checkRelationshipAttributes(xml);
        if (xml.namespaceUri() == wordNamespace) {
            if (!m_stack.empty())
                m_stack.back().children.push_back(name);
            checkReference(name, value(xml));
            checkMarks(name, xml);
            enterTable(name, xml);
        } else if (name == QLatin1String("docPr")) {
            const QString id = xml.attributes().value(QLatin1String("id")).toString();
            if (m_drawings.contains(id))
                find(QStringLiteral("two drawings have the number %1").arg(id));
            m_drawings.insert(id);
        }
        m_stack.push_back({name, {}});
    }

    void leave(const QXmlStreamReader& xml)
    {
        const Element element = m_stack.back();
        m_stack.pop_back();
        if (xml.namespaceUri() != wordNamespace)
            return;
        checkChildren(element);
        leaveTable(element.name);
    }

    void checkRelationshipAttributes(const QXmlStreamReader& xml)
    {
        const QXmlStreamAttributes attributes = xml.attributes();
        for (const QXmlStreamAttribute& attribute : attributes) {
            if (attribute.namespaceUri() == relationshipNamespace &&
                !m_relationships.contains(attribute.value().toString()))
                find(QStringLiteral("there is no relationship %1")
                         .arg(attribute.value().toString()));
        }
    }

    void checkReference(const QString& name, const QString& id)
    {
        const bool isStyle = name == QLatin1String("pStyle") || name == QLatin1String("rStyle") ||
                             name == QLatin1String("tblStyle") || name == QLatin1String("basedOn");
        if (isStyle && !m_styles.contains(id))
            find(QStringLiteral("there is no style %1").arg(id));
        if (name == QLatin1String("numId") && id != QLatin1String("0") &&
            !m_numberings.contains(id))
            find(QStringLiteral("there is no numbering %1").arg(id));
    }

    void checkMarks(const QString& name, const QXmlStreamReader& xml)
    {
        const QString id = value(xml, "id");
        if (name == QLatin1String("bookmarkStart")) {
            if (m_bookmarks.contains(id))
                find(QStringLiteral("two bookmarks have the number %1").arg(id));
            m_bookmarks.insert(id);
            m_openBookmarks.insert(id);
            if (value(xml, "name").size() > 40)
                find(QStringLiteral("a bookmark's name is longer than 40 letters"));
        } else if (name == QLatin1String("bookmarkEnd")) {
            if (!m_openBookmarks.remove(id))
                find(QStringLiteral("a bookmark ends that did not begin"));
        } else if (name == QLatin1String("fldChar")) {
            const QString type = value(xml, "fldCharType");
            m_openFields += type == QLatin1String("begin") ? 1
                            : type == QLatin1String("end") ? -1
                                                           : 0;
            if (m_openFields < 0)
                find(QStringLiteral("a field ends that did not begin"));
        }
    }

    void checkChildren(const Element& element)
    {
        QStringList single = element.children;
        single.erase(std::remove_if(single.begin(), single.end(), isRepeatable), single.end());
        const auto order = childOrders().constFind(element.name);
        const bool isOrdered = order != childOrders().constEnd();
        if (isOrdered || element.name == QLatin1String("rPr")) {
            if (single.removeDuplicates() > 0)
                find(QStringLiteral("a property stands twice in %1").arg(element.name));
        }
        if (!isOrdered)
            return;
        int last = -1;
        for (const QString& child : element.children) {
            const int place = order->indexOf(child);
            if (place < last)
                find(QStringLiteral("%1 stands in the wrong place in %2").arg(child, element.name));
            if (place < 0)
                find(QStringLiteral("%1 does not belong in %2").arg(child, element.name));
            last = place;
        }
    }

    void enterTable(const QString& name, const QXmlStreamReader& xml)
    {
        if (name == QLatin1String("tbl")) {
            m_tables.push_back({});
            return;
        }
        if (m_tables.empty())
            return;
        Table& table = m_tables.back();
        if (name == QLatin1String("gridCol"))
            ++table.columns;
        else if (name == QLatin1String("tr"))
            table.rowColumns = 0;
        else if (name == QLatin1String("tc"))
            ++table.rowColumns;
        else if (name == QLatin1String("gridSpan"))
            table.rowColumns += value(xml).toInt() - 1;
    }

    void leaveTable(const QString& name)
    {
        if (m_tables.empty())
            return;
        Table& table = m_tables.back();
        if (name == QLatin1String("tc") && !table.lastInCellIsParagraph)
            find(QStringLiteral("a table cell does not end with a paragraph"));
        if (name == QLatin1String("tr") && table.rowColumns != table.columns)
            find(QStringLiteral("a table row has %1 columns where its table has %2")
                     .arg(table.rowColumns)
                     .arg(table.columns));
        if (name == QLatin1String("tbl"))
            m_tables.pop_back();
        const bool inCell = !m_stack.empty() && m_stack.back().name == QLatin1String("tc");
        if (inCell && !m_tables.empty())
            m_tables.back().lastInCellIsParagraph = name == QLatin1String("p");
    }

    QString m_part;
    const QMap<QString, Relationship>& m_relationships;
    const QSet<QString>& m_styles;
    const QSet<QString>& m_numberings;
    QStringList& m_findings;
    std::vector<Element> m_stack;
    std::vector<Table> m_tables;
    QSet<QString> m_bookmarks;
    QSet<QString> m_openBookmarks;
    QSet<QString> m_drawings;
    int m_openFields = 0;
};

class DocumentChecker
{
public:
    explicit DocumentChecker(const Package& document) : m_document(document) {}

    QStringList check()
    {
        readContentTypes();
        for (const Part& part : m_document.parts())
            checkPart(part);
        checkMainPart();
        m_styles = idsOf(QStringLiteral("word/styles.xml"), "style", "styleId");
        m_numberings = idsOf(QStringLiteral("word/numbering.xml"), "num", "numId");
        for (const Part& part : m_document.parts()) {
            if (isWordText(part.name))
                TextChecker(part.name, m_relationships.value(relationshipsName(part.name)),
                            m_styles, m_numberings, m_findings)
                    .check(part.content);
        }
        checkStyleNames();
        checkCustomProperties();
        return m_findings;
    }

private:
    void find(const QString& finding) { m_findings.push_back(finding); }

    void readContentTypes()
    {
        const QByteArray* content = m_document.find(contentTypesName);
        if (content == nullptr) {
            find(QStringLiteral("there is no %1").arg(contentTypesName));
            return;
        }
        QXmlStreamReader xml(*content);
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            const QXmlStreamAttributes attributes = xml.attributes();
            const QString type = attributes.value(QLatin1String("ContentType")).toString();
            if (xml.name() == QLatin1String("Default"))
                m_defaultTypes.insert(
                    attributes.value(QLatin1String("Extension")).toString().toLower(), type);
            else if (xml.name() == QLatin1String("Override"))
                addOverride(attributes.value(QLatin1String("PartName")).toString(), type);
        }
    }

    void addOverride(const QString& partName, const QString& type)
    {
        const QString name = partName.mid(1); // without the slash in front
        if (m_types.contains(name))
            find(QStringLiteral("%1 has two content types").arg(name));
        if (m_document.find(name) == nullptr)
            find(QStringLiteral("there is a content type for %1, which is missing").arg(name));
        m_types.insert(name, type);
    }

    QString typeOf(const QString& name) const
    {
        return m_types.value(name,
                             m_defaultTypes.value(name.section(QLatin1Char('.'), -1).toLower()));
    }

    void checkPart(const Part& part)
    {
        const QString type = typeOf(part.name);
        if (type.isEmpty() && part.name != contentTypesName)
            find(QStringLiteral("%1 has no content type").arg(part.name));
        if (type.contains(QLatin1String("vbaProject")) ||
            type.contains(QLatin1String("macroEnabled")))
            find(QStringLiteral("%1 holds macros").arg(part.name));
        const bool isXml = part.name == contentTypesName || type.endsWith(QLatin1String("xml"));
        if (isXml)
            checkWellFormed(part);
        if (part.name.endsWith(QLatin1String(".rels")))
            readRelationships(part);
    }

    void checkWellFormed(const Part& part)
    {
        QXmlStreamReader xml(part.content);
        while (!xml.atEnd())
            xml.readNext();
        if (xml.hasError())
            find(QStringLiteral("%1 is not well-formed: %2").arg(part.name, xml.errorString()));
    }

    void readRelationships(const Part& part)
    {
        QMap<QString, Relationship>& known = m_relationships[part.name];
        QXmlStreamReader xml(part.content);
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement ||
                xml.name() != QLatin1String("Relationship"))
                continue;
            const QXmlStreamAttributes attributes = xml.attributes();
            const QString id = attributes.value(QLatin1String("Id")).toString();
            Relationship relationship;
            relationship.type =
                attributes.value(QLatin1String("Type")).toString().section(QLatin1Char('/'), -1);
            relationship.target = attributes.value(QLatin1String("Target")).toString();
            relationship.isExternal =
                attributes.value(QLatin1String("TargetMode")) == QLatin1String("External");
            if (known.contains(id))
                find(QStringLiteral("%1: two relationships are called %2").arg(part.name, id));
            checkTarget(part.name, relationship);
            known.insert(id, relationship);
        }
    }

    void checkTarget(const QString& part, Relationship& relationship)
    {
        if (relationship.isExternal) {
            if (relationship.type != QLatin1String("hyperlink"))
                find(QStringLiteral("%1: the %2 is only a link to %3")
                         .arg(part, relationship.type, relationship.target));
            return;
        }
        const QString target = relationship.target.startsWith(QLatin1Char('/'))
                                   ? relationship.target.mid(1)
                                   : QDir::cleanPath(sourceFolder(part) + relationship.target);
        if (m_document.find(target) == nullptr)
            find(QStringLiteral("%1: %2 is missing").arg(part, target));
        relationship.target = target;
    }

    void checkMainPart()
    {
        for (const Relationship& relationship :
             m_relationships.value(QStringLiteral("_rels/.rels"))) {
            if (relationship.type != QLatin1String("officeDocument"))
                continue;
            if (typeOf(relationship.target) != mainType)
                find(QStringLiteral("%1 is not of the type of a Word document")
                         .arg(relationship.target));
            return;
        }
        find(QStringLiteral("there is no main document"));
    }

    bool isWordText(const QString& name) const
    {
        return name.startsWith(QLatin1String("word/")) && name.endsWith(QLatin1String(".xml")) &&
               typeOf(name).contains(QLatin1String("wordprocessingml"));
    }

    QSet<QString> idsOf(const QString& part, const char* element, const char* attribute) const
    {
        QSet<QString> ids;
        const QByteArray* content = m_document.find(part);
        QXmlStreamReader xml(content ? *content : QByteArray());
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::StartElement &&
                xml.name() == QLatin1String(element))
                ids.insert(
                    xml.attributes().value(wordNamespace, QLatin1String(attribute)).toString());
        }
        return ids;
    }

    // Word compares the names without regard to case.
    void checkStyleNames()
    {
        const QByteArray* content = m_document.find(QStringLiteral("word/styles.xml"));
        QXmlStreamReader xml(content ? *content : QByteArray());
        QSet<QString> names;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement ||
                xml.qualifiedName() != QLatin1String("w:name"))
                continue;
            const QString name =
                xml.attributes().value(wordNamespace, QLatin1String("val")).toString();
            if (names.contains(name.toLower()))
                find(QStringLiteral("two styles are called %1").arg(name));
            names.insert(name.toLower());
        }
    }

    void checkCustomProperties()
    {
        const QByteArray* content = m_document.find(QStringLiteral("docProps/custom.xml"));
        QXmlStreamReader xml(content ? *content : QByteArray());
        QSet<QString> numbers;
        QSet<QString> names;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement ||
                xml.name() != QLatin1String("property"))
                continue;
            const QString number = xml.attributes().value(QLatin1String("pid")).toString();
            const QString name = xml.attributes().value(QLatin1String("name")).toString();
            if (number.toInt() < 2 || numbers.contains(number) || names.contains(name.toLower()))
                find(QStringLiteral("the custom property %1 is numbered or named wrongly")
                         .arg(name));
            numbers.insert(number);
            names.insert(name.toLower());
            if (xml.readElementText(QXmlStreamReader::IncludeChildElements).size() > 255)
                find(QStringLiteral("the custom property %1 is too long").arg(name));
        }
    }

    const Package& m_document;
    QStringList m_findings;
    QMap<QString, QString> m_defaultTypes;                      // by suffix
    QMap<QString, QString> m_types;                             // by name of the part
    QMap<QString, QMap<QString, Relationship>> m_relationships; // by name of the .rels part
    QSet<QString> m_styles;
    QSet<QString> m_numberings;
};

} // namespace

QStringList checkWordDocument(const Package& document)
{
    return DocumentChecker(document).check();
}

} // namespace wordbridge
