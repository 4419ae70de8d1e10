#include "app/quilletcommand.h"

#include <QDir>

GenerationRoute generationRoute(const QString& jnl)
{
    const QString name = jnl.toLower();
    const auto names = [&name](const char* section) {
        return name.contains(QLatin1String(section));
    };
    if (names("section f") || names("section d"))
        return GenerationRoute::Macromolecular;
    if (names("section b") || names("section c"))
        return GenerationRoute::SmallMolecule;
    return GenerationRoute::None;
}

namespace
{
// The article's flavour: the crystallization communication exists in section F only.
QString articleOption(const QString& jnl, const QString& cat)
{
    const bool isCommunication = !jnl.toLower().contains(QLatin1String("section d")) &&
                                 cat.contains(QLatin1String("crystallization"));
    return isCommunication ? QStringLiteral("-htmmo5") : QStringLiteral("-htmmo6");
}

QString quoted(const QString& path)
{
    return QLatin1Char('"') + path + QLatin1Char('"');
}
} // namespace

QString quilletCommandLine(const QString& applicationFolder, const QString& cifPath,
                           const QString& jnl, const QString& cat, const QString& type)
{
    const QString program = quoted(applicationFolder + QStringLiteral("/quillet"));
    const QString cif = quoted(QDir::toNativeSeparators(cifPath));
    const QLatin1Char blank(' ');
    switch (generationRoute(jnl)) {
    case GenerationRoute::Macromolecular:
        return program + blank + articleOption(jnl, cat) + blank + cif +
               (type == QLatin1String("sas") ? QStringLiteral(" -sas") : QString());
    case GenerationRoute::SmallMolecule:
        return program + QStringLiteral(" -htmPX ") + cif +
               QStringLiteral(" C qlettemplate_word.html");
    case GenerationRoute::None:
        break;
    }
    return QString();
}
