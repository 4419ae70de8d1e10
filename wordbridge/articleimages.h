// The images of an article, taken into the document.
#pragma once

#include "wordbridge/htmltree.h"
#include "wordbridge/package.h"

#include <optional>
#include <QStringList>

namespace wordbridge
{

struct ArticleImage {
    QString partName;
    double widthCm = 0;
    double heightCm = 0;
};

class ArticleImages
{
public:
    // `folder` is where relative paths start.
    explicit ArticleImages(const QString& folder) : m_folder(folder) {}

    // Reads the image that an <img> names: a data: URI or a local file, PNG or JPEG or GIF. Its
    // size is that of the attributes, or else of the image at 96 dots per inch, shrunk to the text
    // width. Returns nothing, and keeps a remark, where there is no such image or it stands on the
    // network.
    std::optional<ArticleImage> add(const HtmlNode& img);

    const QVector<Part>& parts() const { return m_parts; }
    const QStringList& remarks() const { return m_remarks; }

private:
    QString m_folder;
    QVector<Part> m_parts;
    QStringList m_remarks;
};

} // namespace wordbridge
