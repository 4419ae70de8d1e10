#include "app/articleblocks.h"

namespace
{
// The place behind the first "<name" + at least one character other than ">" + ">"; -1 without one.
// start gets the place of its "<".
int endOfOpeningTag(const QString& text, const QString& name, int* start)
{
    const QString opening = QLatin1Char('<') + name;
    for (*start = text.indexOf(opening); *start >= 0; *start = text.indexOf(opening, *start + 1)) {
        const int behindName = *start + opening.size();
        const int end = text.indexOf(QLatin1Char('>'), behindName);
        if (end < 0)
            return -1;
        if (end > behindName)
            return end + 1;
    }
    return -1;
}

// Moves the element out of the text.
QString takeElement(QString* text, const QString& name)
{
    int start = 0;
    const int contentStart = endOfOpeningTag(*text, name, &start);
    if (contentStart < 0)
        return QString();
    const QString closing = QStringLiteral("</") + name + QLatin1Char('>');
    const int contentEnd = text->lastIndexOf(closing);
    if (contentEnd < contentStart)
        return QString();
    const int length = contentEnd + closing.size() - start;
    const QString element = text->mid(start, length);
    text->remove(start, length);
    return element;
}
} // namespace

Article splitArticle(const QString& output)
{
    Article article;
    article.html = output;
    article.authors = takeElement(&article.html, QStringLiteral("vexa:authors"));
    article.addresses = takeElement(&article.html, QStringLiteral("vexa:addresses"));
    return article;
}
