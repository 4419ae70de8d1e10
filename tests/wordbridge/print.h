// Makes GoogleTest print Qt's texts as text.
#pragma once

#include <ostream>
#include <QString>

inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << text.toStdString();
}
