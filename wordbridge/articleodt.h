// The article as an OpenDocument text: what LibreOffice inserts into the manuscript, and the
// manuscript itself where there is no LibreOffice.
//
// LibreOffice can insert HTML by itself, but then subscripts become small shifted text, classes and
// captions lose their meaning, images stay links, and a hundred tables take a minute. The same
// article as OpenDocument keeps all of it and is inserted in a fraction of the time.
#pragma once

#include "wordbridge/htmltree.h"
#include "wordbridge/package.h"

#include <QStringList>

namespace wordbridge
{

struct ArticleOdt {
    Package package;
    QStringList remarks; // what could not be taken over, a sentence each
};

// Writes `article` (an <html> element as parseHtml() returns it) as OpenDocument text.
//
// Elements become paragraphs and tables in the styles of the manuscript template. Anchors become
// bookmarks around their content; captions "Table 1 …" count by a number field where their number
// is the next one; header rows repeat on every page; tables fill the text width, their columns
// shared out by content. Local images (relative to `folder`) and data: images are embedded; other
// images, scripts and the program's own metadata elements are left out. `metaXml` is the document's
// meta.xml, if it is to have one.
ArticleOdt writeArticleOdt(const HtmlNode& article, const QString& folder,
                           const QByteArray& metaXml = {});

// The article's short name, from <title>; empty if it has none.
QString articleName(const HtmlNode& article);

// Whether there is nothing in the article that a reader would see.
bool isEmptyArticle(const HtmlNode& article);

} // namespace wordbridge
