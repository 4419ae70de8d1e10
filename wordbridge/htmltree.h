// HTML as a tree of plain values.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <vector>

namespace wordbridge
{

// An element (`name` in lower case, with attributes and children) or, where `name` is empty, text.
struct HtmlNode {
    QString name;
    QString text;
    QMap<QString, QString> attributes;
    std::vector<HtmlNode> children;

    bool isText() const { return name.isEmpty(); }

    // The classes of an element, in order.
    QStringList classes() const;

    // All text below, as it stands.
    QString plainText() const;

    // The first element below (not this one) with that name, in reading order; null if there is
    // none.
    const HtmlNode* find(const QString& elementName) const;

    static HtmlNode textNode(const QString& text);
    static HtmlNode element(const QString& name, std::vector<HtmlNode> children = {});
};

// Parses any text as HTML, repairing what is wrong as browsers do; never fails. The bytes are UTF-8
// (ASCII with character references included), or else Latin-1. Comments and characters that XML
// does not allow are left out; a colon in an element's name becomes a hyphen. Returns the <html>
// element, or an empty one for an empty text.
HtmlNode parseHtml(const QByteArray& html);

} // namespace wordbridge
