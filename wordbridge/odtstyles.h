// The styles of an article as OpenDocument text: names of the manuscript's styles, and the unnamed
// ("automatic") styles that single stretches, paragraphs, tables and cells need beside them.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace wordbridge
{

// How one stretch of text differs from its paragraph.
struct TextFormat {
    bool bold = false;
    bool italic = false;
    bool underlined = false;
    bool struckOut = false;
    bool smallCapitals = false;
    bool monospaced = false;
    int script = 0; // 1: superscript, -1: subscript
};

// How one paragraph differs from its style.
struct ParagraphFormat {
    QString style;           // an encoded name, as in text:style-name
    QString alignment;       // left, right, center, justify; empty: as in the style
    int indent = 0;          // levels
    bool afterTable = false; // needs room above
};

// The rules around a cell; a table of the field has three and no vertical ones.
struct CellFormat {
    bool ruleAbove = false;
    bool ruleBelow = false;
    bool thinRuleBelow = false; // under the header
};

// Collects automatic styles and gives each a name; the same format gets the same name.
class OdtStyles
{
public:
    // The name to use for a format; empty for text that needs none, the plain style for a paragraph
    // that needs no other.
    QString text(const TextFormat& format);
    QString paragraph(const ParagraphFormat& format);
    QString cell(const CellFormat& format);
    QString table();
    QString row();
    QString column(int share); // of 65535
    QString list(bool numbered, int start);
    QString image();

    // The content of office:automatic-styles.
    QByteArray xml() const;

private:
    QString add(const QString& family, const QString& attributes, const QString& properties);

    struct Style {
        QString name;
        QString xml;
    };
    QMap<QString, Style> m_styles; // by what they say
};

} // namespace wordbridge
