#include "wordbridge/articleodt.h"

#include "wordbridge/articleimages.h"
#include "wordbridge/htmlformats.h"
#include "wordbridge/odtpackage.h"
#include "wordbridge/odtstyles.h"
#include "wordbridge/tablelayout.h"

#include <algorithm>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamWriter>

namespace wordbridge
{

namespace
{

// Writes the body of the document and collects what it refers to.
class Writer
{
public:
    explicit Writer(const QString& folder) : m_xml(&m_body), m_images(folder) {}

    void write(const HtmlNode& article)
    {
        writeNode(article, {});
        closeParagraph();
        // Inserting a document loses the style of its last paragraph; this one takes the loss.
        m_xml.writeStartElement(QStringLiteral("text:p"));
        m_xml.writeAttribute(QStringLiteral("text:style-name"), bodyStyle);
        m_xml.writeEndElement();
    }

    ArticleOdt odt(const QByteArray& metaXml) const
    {
        OdtContent content;
        content.body = m_body;
        content.automaticStyles = m_styles.xml();
        content.sequences = m_captionCounts.keys();
        content.images = m_images.parts();
        content.metaXml = metaXml;
        return {packOdt(content), m_images.remarks()};
    }

private:
    // --- Elements

    void writeNode(const HtmlNode& node, const Surroundings& around)
    {
        if (node.isText())
            writeText(node.text, around);
        else if (isLeftOut(node.name))
            return;
        else if (isBlock(node.name))
            writeBlock(node, around);
        else
            writeInline(node, around);
    }

    void writeChildren(const HtmlNode& node, const Surroundings& around)
    {
        for (const HtmlNode& child : node.children)
            writeNode(child, around);
    }

    void writeBlock(const HtmlNode& node, const Surroundings& around)
    {
        closeParagraph();
        const Surroundings inside = insideBlock(node, around);
        if (node.name == QLatin1String("table"))
            writeTable(node, inside);
        else if (isOneOf(node.name, {"ul", "ol"}))
            writeList(node, inside);
        else if (inside.paragraph.style == captionStyle)
            writeCaption(node, inside);
        else
            writeChildren(node, inside);
        closeParagraph();
    }

    void writeInline(const HtmlNode& node, const Surroundings& around)
    {
        const Surroundings inside = insideInline(node, around);
        if (node.name == QLatin1String("br"))
            ++m_pendingBreaks;
        else if (node.name == QLatin1String("img"))
            writeImage(node, inside);
        else if (node.name == QLatin1String("a"))
            writeAnchor(node, inside);
        else
            writeChildren(node, inside);
    }

    void writeAnchor(const HtmlNode& node, const Surroundings& around)
    {
        const bool plain = containsBlock(node);
        QString name = node.attributes.value(QStringLiteral("name"),
                                             node.attributes.value(QStringLiteral("id")));
        if (plain || m_bookmarks.contains(name))
            name.clear();
        const QString target = plain ? QString() : linkTarget(node);
        if (!name.isEmpty()) {
            m_bookmarks.insert(name);
            const bool wasEmpty = m_isEmpty;
            beginContent(around);
            m_isEmpty = wasEmpty;
            writeBookmark("text:bookmark-start", name);
        }
        if (!target.isEmpty()) {
            beginContent(around);
            m_xml.writeStartElement(QStringLiteral("text:a"));
            m_xml.writeAttribute(QStringLiteral("xlink:type"), QStringLiteral("simple"));
            m_xml.writeAttribute(QStringLiteral("xlink:href"), target);
        }
        writeChildren(node, around);
        if (!target.isEmpty())
            m_xml.writeEndElement();
        if (!name.isEmpty())
            writeBookmark("text:bookmark-end", name);
    }

    void writeBookmark(const char* element, const QString& name)
    {
        m_xml.writeEmptyElement(QLatin1String(element));
        m_xml.writeAttribute(QStringLiteral("text:name"), name);
    }

    static QString linkTarget(const HtmlNode& anchor)
    {
        const QString target = anchor.attributes.value(QStringLiteral("href")).trimmed();
        const bool usable = target.startsWith(QLatin1String("http://")) ||
                            target.startsWith(QLatin1String("https://")) ||
                            target.startsWith(QLatin1String("mailto:")) ||
                            target.startsWith(QLatin1Char('#'));
        return usable ? target : QString();
    }

    void writeImage(const HtmlNode& node, const Surroundings& around)
    {
        const std::optional<ArticleImage> image = m_images.add(node);
        if (!image) {
            writeText(node.attributes.value(QStringLiteral("alt")), around);
            return;
        }
        beginContent(around);
        m_xml.writeStartElement(QStringLiteral("draw:frame"));
        m_xml.writeAttribute(QStringLiteral("draw:style-name"), m_styles.image());
        m_xml.writeAttribute(QStringLiteral("text:anchor-type"), QStringLiteral("as-char"));
        m_xml.writeAttribute(QStringLiteral("svg:width"),
                             QStringLiteral("%1cm").arg(image->widthCm));
        m_xml.writeAttribute(QStringLiteral("svg:height"),
                             QStringLiteral("%1cm").arg(image->heightCm));
        m_xml.writeEmptyElement(QStringLiteral("draw:image"));
        m_xml.writeAttribute(QStringLiteral("xlink:type"), QStringLiteral("simple"));
        m_xml.writeAttribute(QStringLiteral("xlink:href"), image->partName);
        m_xml.writeTextElement(QStringLiteral("svg:desc"),
                               node.attributes.value(QStringLiteral("alt")));
        m_xml.writeEndElement();
    }

    // --- Lists

    void writeList(const HtmlNode& list, const Surroundings& around)
    {
        Surroundings inside = around;
        if (inside.paragraph.style == bodyStyle)
            inside.paragraph.style = QStringLiteral("List_20_Paragraph");
        const bool numbered = list.name == QLatin1String("ol");
        const int start =
            list.attributes.value(QStringLiteral("start"), QStringLiteral("1")).toInt();

        m_xml.writeStartElement(QStringLiteral("text:list"));
        if (m_listDepth == 0 || numbered != m_numberedList)
            m_xml.writeAttribute(QStringLiteral("text:style-name"),
                                 m_styles.list(numbered, std::max(1, start)));
        const bool outer = m_numberedList;
        m_numberedList = numbered;
        ++m_listDepth;
        for (const HtmlNode& child : list.children) {
            if (child.name == QLatin1String("li"))
                writeContainer("text:list-item", child, inside);
            else if (isOneOf(child.name, {"ul", "ol"})) // misplaced, but common
                writeMisplacedList(child, inside);
        }
        --m_listDepth;
        m_numberedList = outer;
        m_xml.writeEndElement();
    }

    void writeMisplacedList(const HtmlNode& list, const Surroundings& around)
    {
        m_xml.writeStartElement(QStringLiteral("text:list-item"));
        writeList(list, around);
        m_xml.writeEndElement();
    }

    // An element that has to hold at least one paragraph.
    void writeContainer(const char* element, const HtmlNode& node, const Surroundings& around)
    {
        m_xml.writeStartElement(QLatin1String(element));
        writeContainerContent(node, around);
        m_xml.writeEndElement();
    }

    void writeContainerContent(const HtmlNode& node, const Surroundings& around)
    {
        const int before = m_blocks;
        writeChildren(node, around);
        closeParagraph();
        if (m_blocks == before) {
            openParagraph(around);
            closeParagraph();
        }
    }

    // --- Tables

    void writeTable(const HtmlNode& table, const Surroundings& around)
    {
        for (const HtmlNode& child : table.children) {
            if (child.name == QLatin1String("caption"))
                writeNode(child, {});
        }
        const TableLayout layout = layOutTable(table);
        if (layout.rows.empty())
            return;
        if (m_afterTable) // two tables in a row would become one
            writeSeparator();

        m_xml.writeStartElement(QStringLiteral("table:table"));
        m_xml.writeAttribute(QStringLiteral("table:name"),
                             QStringLiteral("Table%1").arg(++m_tables));
        m_xml.writeAttribute(QStringLiteral("table:style-name"), m_styles.table());
        for (const int share : layout.columnWidths) {
            m_xml.writeEmptyElement(QStringLiteral("table:table-column"));
            m_xml.writeAttribute(QStringLiteral("table:style-name"), m_styles.column(share));
        }
        if (layout.headerRows > 0)
            m_xml.writeStartElement(QStringLiteral("table:table-header-rows"));
        for (int r = 0; r < static_cast<int>(layout.rows.size()); ++r) {
            writeRow(layout, r, around);
            if (r == layout.headerRows - 1)
                m_xml.writeEndElement();
        }
        m_xml.writeEndElement();
        m_afterTable = true;
        ++m_blocks;
    }

    void writeSeparator()
    {
        m_xml.writeEmptyElement(QStringLiteral("text:p"));
        m_xml.writeAttribute(QStringLiteral("text:style-name"), QStringLiteral("Table_20_Note"));
    }

    void writeRow(const TableLayout& layout, int index, const Surroundings& around)
    {
        const TableRow& row = layout.rows[static_cast<std::size_t>(index)];
        m_xml.writeStartElement(QStringLiteral("table:table-row"));
        m_xml.writeAttribute(QStringLiteral("table:style-name"), m_styles.row());
        for (const TableCell& cell : row.cells) {
            if (cell.isCovered)
                m_xml.writeEmptyElement(QStringLiteral("table:covered-table-cell"));
            else
                writeCell(cell, layout, index, around);
        }
        m_xml.writeEndElement();
    }

    void writeCell(const TableCell& cell, const TableLayout& layout, int rowIndex,
                   const Surroundings& around)
    {
        const int last = rowIndex + cell.rows - 1;
        CellFormat format;
        format.ruleAbove = rowIndex == 0;
        format.ruleBelow = last == static_cast<int>(layout.rows.size()) - 1;
        format.thinRuleBelow = last == layout.headerRows - 1;

        m_xml.writeStartElement(QStringLiteral("table:table-cell"));
        m_xml.writeAttribute(QStringLiteral("table:style-name"), m_styles.cell(format));
        writeSpan("table:number-columns-spanned", cell.columns);
        writeSpan("table:number-rows-spanned", cell.rows);

        const bool isHeader = rowIndex < layout.headerRows;
        const bool isGroup = layout.rows[static_cast<std::size_t>(rowIndex)].isGroupHeading;
        Surroundings inside;
        inside.text = around.text;
        inside.paragraph.style = isHeader  ? QStringLiteral("Table_20_Head")
                                 : isGroup ? QStringLiteral("Table_20_Group")
                                           : QStringLiteral("Table_20_Text");
        const HtmlNode nothing = HtmlNode::element(QStringLiteral("td"));
        const HtmlNode& node = cell.node ? *cell.node : nothing;
        writeContainerContent(node, insideBlock(node, inside));
        m_xml.writeEndElement();
    }

    void writeSpan(const char* attribute, int count)
    {
        if (count > 1)
            m_xml.writeAttribute(QLatin1String(attribute), QString::number(count));
    }

    // --- Captions

    // "Table 3" becomes "Table " and a number field, if 3 is what the field counts to. "Fig. 3" and
    // "Figure 3" count together.
    void writeCaption(const HtmlNode& node, const Surroundings& around)
    {
        static const QRegularExpression counted(
            QStringLiteral("^(Table|Fig(?:ure|\\.)|Scheme)\\s(\\d+)\\b"));
        const QRegularExpressionMatch match = counted.match(node.plainText().simplified());
        if (match.hasMatch()) {
            const QString label = match.captured(1);
            const QString kind = label == QLatin1String("Fig.") ? QStringLiteral("Figure") : label;
            const int number = match.captured(2).toInt();
            if (number == m_captionCounts.value(kind) + 1) {
                m_captionCounts[kind] = number;
                m_pendingNumber = kind;
            }
        }
        writeChildren(node, around);
        closeParagraph();
        m_pendingNumber.clear();
    }

    // Writes the first number of the caption as a field and returns what comes behind it.
    QString writeNumberField(const QString& text, const Surroundings& around)
    {
        static const QRegularExpression number(QStringLiteral("\\d+"));
        const QRegularExpressionMatch match = number.match(text);
        if (!match.hasMatch())
            return text;
        const QString kind = m_pendingNumber;
        m_pendingNumber.clear();
        writeText(text.left(match.capturedStart()), around);
        beginContent(around);
        m_xml.writeStartElement(QStringLiteral("text:sequence"));
        m_xml.writeAttribute(QStringLiteral("text:ref-name"),
                             QStringLiteral("ref%1%2").arg(kind, match.captured()));
        m_xml.writeAttribute(QStringLiteral("text:name"), kind);
        m_xml.writeAttribute(QStringLiteral("text:formula"), QStringLiteral("ooow:%1+1").arg(kind));
        m_xml.writeAttribute(QStringLiteral("style:num-format"), QStringLiteral("1"));
        m_xml.writeCharacters(match.captured());
        m_xml.writeEndElement();
        return text.mid(match.capturedEnd());
    }

    // --- Paragraphs and text

    void openParagraph(const Surroundings& around)
    {
        ParagraphFormat format = around.paragraph;
        format.afterTable = m_afterTable && format.style == bodyStyle;
        const bool isHeading = around.headingLevel > 0;
        m_xml.writeStartElement(isHeading ? QStringLiteral("text:h") : QStringLiteral("text:p"));
        m_xml.writeAttribute(QStringLiteral("text:style-name"), m_styles.paragraph(format));
        if (isHeading)
            m_xml.writeAttribute(QStringLiteral("text:outline-level"),
                                 QString::number(around.headingLevel));
        m_isOpen = true;
        m_isEmpty = true;
        m_afterTable = false;
        ++m_blocks;
    }

    void closeParagraph()
    {
        if (m_isOpen)
            m_xml.writeEndElement();
        m_isOpen = false;
        m_isEmpty = true;
        m_pendingSpace = false;
        m_pendingBreaks = 0;
    }

    // Called before anything visible: opens the paragraph and writes the white space that led here.
    void beginContent(const Surroundings& around)
    {
        if (!m_isOpen)
            openParagraph(around);
        for (; m_pendingBreaks > 0; --m_pendingBreaks) {
            m_xml.writeEmptyElement(QStringLiteral("text:line-break"));
            m_pendingSpace = false;
        }
        if (m_pendingSpace && !m_isEmpty)
            m_xml.writeCharacters(QStringLiteral(" "));
        m_pendingSpace = false;
        m_isEmpty = false;
    }

    static bool isWhiteSpace(QChar c) { return c.unicode() <= 0x20; }

    void writeText(const QString& given, const Surroundings& around)
    {
        const QString text = m_pendingNumber.isEmpty() ? given : writeNumberField(given, around);
        if (around.preformatted)
            return writePreformatted(text, around);
        for (int start = 0; start < text.size();) {
            if (isWhiteSpace(text[start])) {
                m_pendingSpace = true;
                ++start;
                continue;
            }
            int end = start;
            while (end < text.size() && !isWhiteSpace(text[end]))
                ++end;
            // Words with single blanks between them go together.
            while (end + 1 < text.size() && text[end] == QLatin1Char(' ') &&
                   !isWhiteSpace(text[end + 1])) {
                ++end;
                while (end < text.size() && !isWhiteSpace(text[end]))
                    ++end;
            }
            beginContent(around);
            writeStretch(text.mid(start, end - start), around.text);
            start = end;
        }
    }

    void writePreformatted(const QString& text, const Surroundings& around)
    {
        QString rest = text;
        if (m_isEmpty && rest.startsWith(QLatin1Char('\n')))
            rest.remove(0, 1);
        for (const QChar c : rest) {
            if (c == QLatin1Char('\r'))
                continue;
            if (c == QLatin1Char('\n')) {
                ++m_pendingBreaks;
                continue;
            }
            beginContent(around);
            if (c == QLatin1Char(' '))
                m_xml.writeEmptyElement(QStringLiteral("text:s"));
            else if (c == QLatin1Char('\t'))
                m_xml.writeEmptyElement(QStringLiteral("text:tab"));
            else
                m_xml.writeCharacters(c);
        }
    }

    void writeStretch(const QString& text, const TextFormat& format)
    {
        const QString style = m_styles.text(format);
        if (style.isEmpty()) {
            m_xml.writeCharacters(text);
            return;
        }
        m_xml.writeStartElement(QStringLiteral("text:span"));
        m_xml.writeAttribute(QStringLiteral("text:style-name"), style);
        m_xml.writeCharacters(text);
        m_xml.writeEndElement();
    }

    QByteArray m_body;
    QXmlStreamWriter m_xml;
    OdtStyles m_styles;
    ArticleImages m_images;
    QSet<QString> m_bookmarks;
    QMap<QString, int> m_captionCounts; // Table, Figure, Scheme
    QString m_pendingNumber;            // of a caption whose number has yet to come
    int m_tables = 0;
    int m_blocks = 0; // paragraphs and tables written
    int m_listDepth = 0;
    bool m_numberedList = false;
    bool m_afterTable = false;
    bool m_isOpen = false; // a paragraph
    bool m_isEmpty = true; // that paragraph
    bool m_pendingSpace = false;
    int m_pendingBreaks = 0;
};

} // namespace

ArticleOdt writeArticleOdt(const HtmlNode& article, const QString& folder,
                           const QByteArray& metaXml)
{
    Writer writer(folder);
    writer.write(article);
    return writer.odt(metaXml);
}

QString articleName(const HtmlNode& article)
{
    const HtmlNode* title = article.find(QStringLiteral("title"));
    return title ? title->plainText().simplified() : QString();
}

bool isEmptyArticle(const HtmlNode& article)
{
    if (article.isText())
        return article.text.trimmed().isEmpty();
    if (article.name == QLatin1String("img"))
        return false;
    return isLeftOut(article.name) ||
           std::all_of(article.children.cbegin(), article.children.cend(), isEmptyArticle);
}

} // namespace wordbridge
