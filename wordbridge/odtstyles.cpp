#include "wordbridge/odtstyles.h"

#include <QStringList>

namespace wordbridge
{

namespace
{

QString attribute(const char* name, const QString& value)
{
    return QStringLiteral(" %1=\"%2\"").arg(QLatin1String(name), value);
}

QString element(const char* name, const QString& attributes)
{
    return QStringLiteral("<%1%2/>").arg(QLatin1String(name), attributes);
}

QString textProperties(const TextFormat& format)
{
    QString attributes;
    if (format.bold)
        attributes += attribute("fo:font-weight", QStringLiteral("bold"));
    if (format.italic)
        attributes += attribute("fo:font-style", QStringLiteral("italic"));
    if (format.underlined)
        attributes += attribute("style:text-underline-style", QStringLiteral("solid"));
    if (format.struckOut)
        attributes += attribute("style:text-line-through-style", QStringLiteral("solid"));
    if (format.smallCapitals)
        attributes += attribute("fo:font-variant", QStringLiteral("small-caps"));
    if (format.monospaced)
        attributes += attribute("fo:font-family", QStringLiteral("Courier New")) +
                      attribute("style:font-pitch", QStringLiteral("fixed"));
    // These very values become real superscripts and subscripts in Word, others only shifted text.
    if (format.script > 0)
        attributes += attribute("style:text-position", QStringLiteral("super 58%"));
    if (format.script < 0)
        attributes += attribute("style:text-position", QStringLiteral("sub 58%"));
    return attributes;
}

// One level of a list, `level` from 1 on.
QString listLevel(bool numbered, int level, int start)
{
    const QString common = attribute("text:level", QString::number(level));
    const QString place =
        QStringLiteral("<style:list-level-properties text:list-level-position-and-space-mode="
                       "\"label-alignment\"><style:list-level-label-alignment "
                       "text:label-followed-by=\"listtab\" fo:text-indent=\"-0.6cm\" "
                       "fo:margin-left=\"%1cm\"/></style:list-level-properties>")
            .arg(level * 0.6 + 0.4);
    if (numbered) {
        const int first = level == 1 ? start : 1;
        return QStringLiteral("<text:list-level-style-number%1 style:num-format=\"1\" "
                              "style:num-suffix=\".\" text:start-value=\"%2\">%3"
                              "</text:list-level-style-number>")
            .arg(common, QString::number(first), place);
    }
    const QChar bullet(level % 2 == 1 ? 0x2022 : 0x2013);
    return QStringLiteral("<text:list-level-style-bullet%1 text:bullet-char=\"%2\">%3"
                          "</text:list-level-style-bullet>")
        .arg(common, QString(bullet), place);
}

} // namespace

QString OdtStyles::add(const QString& family, const QString& attributes, const QString& properties)
{
    const QString key = family + attributes + properties;
    const auto known = m_styles.constFind(key);
    if (known != m_styles.constEnd())
        return known->name;
    const QString name = QStringLiteral("M%1").arg(m_styles.size() + 1);
    m_styles.insert(key,
                    {name, QStringLiteral("<style:style style:name=\"%1\" style:family=\"%2\"%3>"
                                          "%4</style:style>")
                               .arg(name, family, attributes, properties)});
    return name;
}

QString OdtStyles::text(const TextFormat& format)
{
    const QString properties = textProperties(format);
    if (properties.isEmpty())
        return {};
    return add(QStringLiteral("text"), {}, element("style:text-properties", properties));
}

QString OdtStyles::paragraph(const ParagraphFormat& format)
{
    QString properties;
    if (!format.alignment.isEmpty())
        properties += attribute("fo:text-align", format.alignment);
    if (format.indent > 0)
        properties += attribute("fo:margin-left", QStringLiteral("%1cm").arg(format.indent));
    if (format.afterTable)
        properties += attribute("fo:margin-top", QStringLiteral("0.4cm"));
    if (properties.isEmpty())
        return format.style;
    return add(QStringLiteral("paragraph"), attribute("style:parent-style-name", format.style),
               element("style:paragraph-properties", properties));
}

QString OdtStyles::cell(const CellFormat& format)
{
    const QString none = QStringLiteral("none");
    const QString thick = QStringLiteral("1pt solid #000000");
    const QString thin = QStringLiteral("0.5pt solid #000000");
    const QString below = format.ruleBelow ? thick : format.thinRuleBelow ? thin : none;
    const QString properties = attribute("fo:padding-left", QStringLiteral("0.08cm")) +
                               attribute("fo:padding-right", QStringLiteral("0.2cm")) +
                               attribute("fo:padding-top", QStringLiteral("0cm")) +
                               attribute("fo:padding-bottom", QStringLiteral("0cm")) +
                               attribute("fo:border-left", none) +
                               attribute("fo:border-right", none) +
                               attribute("fo:border-top", format.ruleAbove ? thick : none) +
                               attribute("fo:border-bottom", below);
    return add(QStringLiteral("table-cell"), {},
               element("style:table-cell-properties", properties));
}

QString OdtStyles::table()
{
    const QString properties = attribute("style:rel-width", QStringLiteral("100%")) +
                               attribute("style:width", QStringLiteral("16cm")) +
                               attribute("table:align", QStringLiteral("margins")) +
                               attribute("style:may-break-between-rows", QStringLiteral("true"));
    return add(QStringLiteral("table"), {}, element("style:table-properties", properties));
}

QString OdtStyles::row()
{
    return add(QStringLiteral("table-row"), {},
               element("style:table-row-properties",
                       attribute("fo:keep-together", QStringLiteral("always"))));
}

QString OdtStyles::column(int share)
{
    return add(QStringLiteral("table-column"), {},
               element("style:table-column-properties",
                       attribute("style:rel-column-width", QString::number(share) + '*')));
}

QString OdtStyles::list(bool numbered, int start)
{
    const QString key = QStringLiteral("list %1 %2").arg(numbered).arg(start);
    const auto known = m_styles.constFind(key);
    if (known != m_styles.constEnd())
        return known->name;
    const QString name = QStringLiteral("M%1").arg(m_styles.size() + 1);
    QString xml = QStringLiteral("<text:list-style style:name=\"%1\">").arg(name);
    for (int level = 1; level <= 10; ++level)
        xml += listLevel(numbered, level, start);
    m_styles.insert(key, {name, xml + QStringLiteral("</text:list-style>")});
    return name;
}

QString OdtStyles::image()
{
    const QString properties = attribute("style:vertical-pos", QStringLiteral("top")) +
                               attribute("style:vertical-rel", QStringLiteral("baseline"));
    return add(QStringLiteral("graphic"), {}, element("style:graphic-properties", properties));
}

QByteArray OdtStyles::xml() const
{
    QByteArray xml;
    for (const Style& style : m_styles)
        xml += style.xml.toUtf8();
    return xml;
}

} // namespace wordbridge
