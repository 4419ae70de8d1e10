#include "wordbridge/textencoding.h"

#include <algorithm>
#include <optional>
#include <QTextCodec>

namespace wordbridge
{

namespace
{

// A sequence that the end cuts off is dropped.
std::optional<QString> decodedUtf8(const QByteArray& bytes)
{
    QTextCodec::ConverterState state(QTextCodec::DefaultConversion);
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 ? std::make_optional(text) : std::nullopt;
}

bool isAllowedInXml(const QString& text, int i)
{
    const QChar c = text[i];
    if (c.isHighSurrogate())
        return i + 1 < text.size() && text[i + 1].isLowSurrogate();
    if (c.isLowSurrogate())
        return i > 0 && text[i - 1].isHighSurrogate();
    if (c.unicode() < 0x20)
        return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
    return c.unicode() < 0xFFFE;
}

} // namespace

QString decoded(const QByteArray& bytes)
{
    return decodedUtf8(bytes).value_or(QString::fromLatin1(bytes));
}

QString decodedTwice(const QByteArray& bytes)
{
    const QString once = decoded(bytes);
    const bool isLatin1 =
        std::all_of(once.cbegin(), once.cend(), [](QChar c) { return c.unicode() < 256; });
    return isLatin1 ? decodedUtf8(once.toLatin1()).value_or(once) : once;
}

QString allowedInXml(const QString& text)
{
    QString allowed;
    allowed.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (isAllowedInXml(text, i))
            allowed.append(text[i]);
    }
    return allowed;
}

} // namespace wordbridge
