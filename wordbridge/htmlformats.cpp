#include "wordbridge/htmlformats.h"

#include <algorithm>
#include <QStringList>

namespace wordbridge
{

const QString bodyStyle = QStringLiteral("Text_20_body");
const QString captionStyle = QStringLiteral("Caption");

bool isOneOf(const QString& name, std::initializer_list<const char*> names)
{
    return std::any_of(names.begin(), names.end(),
                       [&](const char* other) { return name == QLatin1String(other); });
}

namespace
{

QString styleOfClass(const QString& name)
{
    static const QMap<QString, QString> styles{
        {QStringLiteral("title"), QStringLiteral("Title")},
        {QStringLiteral("authors"), QStringLiteral("Authors")},
        {QStringLiteral("addresses"), QStringLiteral("Addresses")},
        {QStringLiteral("abstract"), QStringLiteral("Abstract")},
        {QStringLiteral("caption"), captionStyle},
        {QStringLiteral("note"), QStringLiteral("Table_20_Note")},
        {QStringLiteral("guidance"), QStringLiteral("Guidance")},
        {QStringLiteral("reference"), QStringLiteral("Bibliography")},
    };
    return styles.value(name);
}

QMap<QString, QString> inlineCss(const HtmlNode& element)
{
    QMap<QString, QString> css;
    const QStringList declarations =
        element.attributes.value(QStringLiteral("style")).split(QLatin1Char(';'));
    for (const QString& declaration : declarations) {
        const int colon = declaration.indexOf(QLatin1Char(':'));
        if (colon > 0)
            css.insert(declaration.left(colon).trimmed().toLower(),
                       declaration.mid(colon + 1).trimmed().toLower());
    }
    return css;
}

void applyElement(TextFormat& format, const QString& name)
{
    if (isOneOf(name, {"b", "strong"}))
        format.bold = true;
    else if (isOneOf(name, {"i", "em", "cite", "var", "dfn"}))
        format.italic = true;
    else if (isOneOf(name, {"u", "ins"}))
        format.underlined = true;
    else if (isOneOf(name, {"s", "strike", "del"}))
        format.struckOut = true;
    else if (isOneOf(name, {"code", "tt", "kbd", "samp"}))
        format.monospaced = true;
    else if (name == QLatin1String("sup"))
        format.script = 1;
    else if (name == QLatin1String("sub"))
        format.script = -1;
}

void applyCss(TextFormat& format, const QMap<QString, QString>& css)
{
    const QString weight = css.value(QStringLiteral("font-weight"));
    if (!weight.isEmpty())
        format.bold = weight == QLatin1String("bold") || weight.toInt() >= 600;
    const QString style = css.value(QStringLiteral("font-style"));
    if (!style.isEmpty())
        format.italic = style == QLatin1String("italic") || style == QLatin1String("oblique");
    const QString decoration = css.value(QStringLiteral("text-decoration"));
    format.underlined |= decoration.contains(QLatin1String("underline"));
    format.struckOut |= decoration.contains(QLatin1String("line-through"));
    if (css.value(QStringLiteral("font-variant")) == QLatin1String("small-caps"))
        format.smallCapitals = true;
    const QString place = css.value(QStringLiteral("vertical-align"));
    if (place == QLatin1String("super"))
        format.script = 1;
    else if (place == QLatin1String("sub"))
        format.script = -1;
}

QString alignmentOf(const HtmlNode& element, const QMap<QString, QString>& css)
{
    const QString alignment = css.value(
        QStringLiteral("text-align"), element.attributes.value(QStringLiteral("align")).toLower());
    return isOneOf(alignment, {"left", "right", "center", "justify"}) ? alignment : QString();
}

} // namespace

bool isLeftOut(const QString& name)
{
    return name.startsWith(QLatin1String("vexa-")) ||
           isOneOf(name, {"head", "script", "style", "template", "noscript", "object", "iframe",
                          "embed", "select", "textarea", "button", "input", "svg", "math"});
}

bool isBlock(const QString& name)
{
    return isOneOf(name,
                   {"html",    "body",       "p",       "div",     "h1",         "h2",      "h3",
                    "h4",      "h5",         "h6",      "ul",      "ol",         "li",      "dl",
                    "dt",      "dd",         "table",   "caption", "blockquote", "pre",     "hr",
                    "section", "article",    "header",  "footer",  "main",       "nav",     "aside",
                    "figure",  "figcaption", "address", "center",  "form",       "fieldset"});
}

bool containsBlock(const HtmlNode& element)
{
    return std::any_of(
        element.children.cbegin(), element.children.cend(),
        [](const HtmlNode& child) { return isBlock(child.name) || containsBlock(child); });
}

Surroundings insideBlock(const HtmlNode& block, const Surroundings& around)
{
    Surroundings inside = around;
    ParagraphFormat& paragraph = inside.paragraph;
    const QString& name = block.name;
    if (name.size() == 2 && name[0] == QLatin1Char('h') && name[1].isDigit()) {
        inside.headingLevel = name[1].digitValue();
        paragraph.style = QStringLiteral("Heading_20_%1").arg(inside.headingLevel);
    } else if (name == QLatin1String("pre")) {
        inside.preformatted = true;
        paragraph.style = QStringLiteral("HTML_20_Preformatted");
    } else if (isOneOf(name, {"caption", "figcaption"})) {
        paragraph.style = captionStyle;
    } else if (isOneOf(name, {"blockquote", "dd"})) {
        ++paragraph.indent;
    } else if (name == QLatin1String("center")) {
        paragraph.alignment = QStringLiteral("center");
    }
    const QStringList classes = block.classes();
    for (const QString& className : classes) {
        const QString style = styleOfClass(className);
        if (!style.isEmpty())
            paragraph.style = style;
    }
    const QMap<QString, QString> css = inlineCss(block);
    applyCss(inside.text, css);
    const QString alignment = alignmentOf(block, css);
    if (!alignment.isEmpty() && name != QLatin1String("table"))
        paragraph.alignment = alignment;
    return inside;
}

Surroundings insideInline(const HtmlNode& element, const Surroundings& around)
{
    Surroundings inside = around;
    applyElement(inside.text, element.name);
    applyCss(inside.text, inlineCss(element));
    return inside;
}

} // namespace wordbridge
