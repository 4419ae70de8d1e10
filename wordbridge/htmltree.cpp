#include "wordbridge/htmltree.h"

#include "wordbridge/textencoding.h"

#include <libxml/HTMLparser.h>
#include <memory>
#include <QRegularExpression>
#include <QStringList>

namespace wordbridge
{

namespace
{

struct FreeDocument {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

QString toQString(const xmlChar* text)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(text));
}

QMap<QString, QString> attributesOf(xmlNode* element)
{
    QMap<QString, QString> attributes;
    for (xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        const std::unique_ptr<xmlChar, decltype(xmlFree)> value(
            xmlNodeGetContent(reinterpret_cast<xmlNode*>(attribute)), xmlFree);
        attributes.insert(toQString(attribute->name), allowedInXml(toQString(value.get())));
    }
    return attributes;
}

HtmlNode convert(xmlNode* element)
{
    HtmlNode node = HtmlNode::element(toQString(element->name));
    node.attributes = attributesOf(element);
    for (xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE)
            node.children.push_back(convert(child));
        else if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE)
            node.children.push_back(HtmlNode::textNode(allowedInXml(toQString(child->content))));
    }
    return node;
}

} // namespace

QStringList HtmlNode::classes() const
{
    return attributes.value(QStringLiteral("class")).simplified().split(QLatin1Char(' '));
}

QString HtmlNode::plainText() const
{
    if (isText())
        return text;
    QString all;
    for (const HtmlNode& child : children)
        all += child.plainText();
    return all;
}

const HtmlNode* HtmlNode::find(const QString& elementName) const
{
    for (const HtmlNode& child : children) {
        if (child.name == elementName)
            return &child;
        if (const HtmlNode* found = child.find(elementName))
            return found;
    }
    return nullptr;
}

HtmlNode HtmlNode::textNode(const QString& text)
{
    HtmlNode node;
    node.text = text;
    return node;
}

HtmlNode HtmlNode::element(const QString& name, std::vector<HtmlNode> children)
{
    HtmlNode node;
    node.name = name;
    node.children = std::move(children);
    return node;
}

HtmlNode parseHtml(const QByteArray& html)
{
    // The parser would drop what stands before a colon.
    static const QRegularExpression prefix(QStringLiteral("(</?[A-Za-z][A-Za-z0-9]*):"));
    const QByteArray utf8 = decoded(html).replace(prefix, QStringLiteral("\\1-")).toUtf8();
    constexpr int options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                            HTML_PARSE_NONET | HTML_PARSE_COMPACT;
    const std::unique_ptr<xmlDoc, FreeDocument> document(
        htmlReadMemory(utf8.constData(), utf8.size(), nullptr, "UTF-8", options));
    xmlNode* root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    return root ? convert(root) : HtmlNode::element(QStringLiteral("html"));
}

} // namespace wordbridge
