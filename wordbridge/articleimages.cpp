#include "wordbridge/articleimages.h"

#include <algorithm>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QUrl>

namespace wordbridge
{

namespace
{

constexpr double textWidthCm = 16;
constexpr double textHeightCm = 22;
constexpr double cmPerDot = 2.54 / 96;

QByteArray bytesOfDataUri(const QString& uri)
{
    const int comma = uri.indexOf(QLatin1Char(','));
    const QByteArray data = QByteArray::fromPercentEncoding(uri.mid(comma + 1).toLatin1());
    return uri.leftRef(comma).endsWith(QLatin1String(";base64")) ? QByteArray::fromBase64(data)
                                                                 : data;
}

QByteArray imageBytes(const QString& source, const QString& folder)
{
    if (source.startsWith(QLatin1String("data:")))
        return bytesOfDataUri(source);
    const QUrl url(source);
    QString path;
    if (url.scheme().isEmpty())
        path = QDir(folder).filePath(url.path());
    else if (url.isLocalFile())
        path = url.toLocalFile();
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

double dots(const HtmlNode& img, const char* attribute)
{
    QString value = img.attributes.value(QLatin1String(attribute)).trimmed();
    if (value.endsWith(QLatin1String("px")))
        value.chop(2);
    return value.toDouble();
}

QSizeF sizeCm(const HtmlNode& img, const QSizeF& natural)
{
    QSizeF size(dots(img, "width"), dots(img, "height"));
    if (size.width() <= 0 && size.height() <= 0)
        size = natural;
    else if (size.width() <= 0)
        size.setWidth(natural.width() * size.height() / natural.height());
    else if (size.height() <= 0)
        size.setHeight(natural.height() * size.width() / natural.width());
    size *= cmPerDot;
    const double shrink = std::min({1.0, textWidthCm / size.width(), textHeightCm / size.height()});
    return size * shrink;
}

} // namespace

std::optional<ArticleImage> ArticleImages::add(const HtmlNode& img)
{
    const QString source = img.attributes.value(QStringLiteral("src"));
    QByteArray bytes = imageBytes(source, m_folder);
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QByteArray format = reader.format();
    const QSizeF natural = reader.size();
    const bool usable = format == "png" || format == "jpeg" || format == "gif";
    if (!usable || natural.isEmpty()) {
        m_remarks.push_back(
            QStringLiteral(
                "an image was left out, since it is not a local PNG, JPEG or GIF file: %1")
                .arg(source.left(100)));
        return std::nullopt;
    }
    const QString name = QStringLiteral("Pictures/%1.%2")
                             .arg(QString::number(m_parts.size() + 1), QLatin1String(format));
    m_parts.push_back({name, bytes});
    const QSizeF size = sizeCm(img, natural);
    return ArticleImage{name, size.width(), size.height()};
}

} // namespace wordbridge
