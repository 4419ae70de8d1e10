#include "app/journalmetadata.h"

#include <QRegExp>

namespace
{
QString journalCode(const QString& jnl)
{
    const QString name = jnl.toLower().trimmed();
    if (name.contains(QLatin1String("zorvane")))
        return QStringLiteral("s");
    if (name.contains(QLatin1String("quembly")))
        return QStringLiteral("j");
    if (name.contains(QLatin1String("vexaj")))
        return QStringLiteral("m");
    return name.right(1);
}

QString element(const QString& name, const QString& value)
{
    return QLatin1Char('<') + name + QLatin1Char('>') + value + QStringLiteral("</") + name +
           QLatin1Char('>');
}
} // namespace

JournalMetadata makeJournalMetadata(const QString& jnl, const QString& cat, const QString& field,
                                    MetadataShape shape)
{
    JournalMetadata metadata;
    metadata.code = journalCode(jnl);
    metadata.category = cat.toLower().remove(QRegExp(QStringLiteral("\\s+")));

    const bool hasField = shape == MetadataShape::WithField;
    const bool isCommunication =
        hasField && metadata.code == QLatin1String("f") && cat.contains(QLatin1String("commun"));

    // The namespace name has no colon after "http": documents made so far carry it like this, and
    // names are compared letter by letter.
    metadata.xml =
        QStringLiteral("<vexa:publjnl xmlns:vexa=\"http//" VEXAWORD_NAMESPACE_HOST "/publjnl\">") +
        element(QStringLiteral("jnlname"), jnl) +
        element(QStringLiteral("jnlcategory"),
                isCommunication ? QStringLiteral("research communications") : cat);
    if (hasField)
        metadata.xml += element(QStringLiteral("jnlfield"), field);
    metadata.xml += QStringLiteral("</vexa:publjnl>");
    return metadata;
}
