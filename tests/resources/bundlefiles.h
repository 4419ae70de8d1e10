// Reading of the staged files, for tests that look at their text.
#pragma once

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

// Empty when the file cannot be read.
inline QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// What the pattern's first group holds at each match, in order.
inline QStringList captures(const QString& text, const QString& pattern)
{
    QStringList found;
    QRegularExpressionMatchIterator matches = QRegularExpression(pattern).globalMatch(text);
    while (matches.hasNext())
        found << matches.next().captured(1);
    return found;
}
