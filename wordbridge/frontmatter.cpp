#include "wordbridge/frontmatter.h"

#include <algorithm>

namespace wordbridge
{

namespace
{

HtmlNode paragraph(const QString& className, std::vector<HtmlNode> children)
{
    HtmlNode node = HtmlNode::element(QStringLiteral("p"), std::move(children));
    node.attributes.insert(QStringLiteral("class"), className);
    return node;
}

HtmlNode advice(const QString& text)
{
    return paragraph(QStringLiteral("guidance"), {HtmlNode::textNode(text)});
}

HtmlNode superscript(const QString& text)
{
    return HtmlNode::element(QStringLiteral("sup"), {HtmlNode::textNode(text)});
}

bool isAnchor(const HtmlNode& node, const QString& name)
{
    return node.name == QLatin1String("a") && node.attributes.value(QStringLiteral("name")) == name;
}

bool holdsAnchor(const HtmlNode& node, const QString& name)
{
    return isAnchor(node, name) ||
           std::any_of(node.children.cbegin(), node.children.cend(),
                       [&](const HtmlNode& child) { return holdsAnchor(child, name); });
}

// Puts `paragraphs` in the place of the paragraph that holds the anchor.
void replaceParagraph(HtmlNode& parent, const QString& anchor,
                      const std::vector<HtmlNode>& paragraphs)
{
    auto& children = parent.children;
    const auto child = std::find_if(children.begin(), children.end(), [&](const HtmlNode& node) {
        return holdsAnchor(node, anchor);
    });
    if (child == children.end())
        return;
    if (child->name != QLatin1String("p")) {
        replaceParagraph(*child, anchor, paragraphs);
        return;
    }
    children.insert(children.erase(child), paragraphs.cbegin(), paragraphs.cend());
}

// One dagger for the first author with a note, then other signs, then the same doubled.
QString noteSign(int earlierNotes)
{
    static const QChar signs[] = {QChar(0x2020), QChar(0x2021), QChar(0xA7), QChar(0xB6)};
    return QString(earlierNotes / 4 + 1, signs[earlierNotes % 4]);
}

QString addressLabels(const Author& author, const QVector<Address>& addresses)
{
    QStringList labels;
    for (const QString& id : author.addressIds) {
        for (const Address& address : addresses) {
            if (address.id == id)
                labels.push_back(address.label);
        }
    }
    return addresses.size() > 1 ? labels.join(QLatin1Char(',')) : QString();
}

std::vector<HtmlNode> authorLine(const PublicationMetadata& metadata)
{
    if (metadata.authors.isEmpty())
        return {advice(QStringLiteral("Type the names of the authors here."))};
    std::vector<HtmlNode> line;
    int notes = 0;
    for (int i = 0; i < metadata.authors.size(); ++i) {
        const Author& author = metadata.authors[i];
        const bool isLast = i == metadata.authors.size() - 1;
        if (i > 0)
            line.push_back(
                HtmlNode::textNode(isLast ? QStringLiteral(" and ") : QStringLiteral(", ")));
        line.push_back(HtmlNode::textNode(author.name()));
        QString marks = addressLabels(author, metadata.addresses);
        if (author.isCorresponding)
            marks += QLatin1Char('*');
        if (!author.note.isEmpty())
            marks += noteSign(notes++);
        if (!marks.isEmpty())
            line.push_back(superscript(marks));
    }
    return {paragraph(QStringLiteral("authors"), std::move(line))};
}

QString correspondence(const QVector<Author>& authors)
{
    QStringList all;
    for (const Author& author : authors) {
        if (author.isCorresponding)
            all.push_back(author.email.isEmpty()
                              ? author.name()
                              : author.name() + QStringLiteral(", ") + author.email);
    }
    return all.join(QStringLiteral("; "));
}

std::vector<HtmlNode> addressLines(const PublicationMetadata& metadata)
{
    const QString style = QStringLiteral("addresses");
    std::vector<HtmlNode> lines;
    for (const Address& address : metadata.addresses) {
        std::vector<HtmlNode> line;
        if (metadata.addresses.size() > 1)
            line.push_back(superscript(address.label));
        line.push_back(HtmlNode::textNode(address.text));
        lines.push_back(paragraph(style, std::move(line)));
    }
    if (lines.empty())
        lines.push_back(advice(QStringLiteral("Type the addresses of the authors here.")));

    const QString whom = correspondence(metadata.authors);
    if (!whom.isEmpty())
        lines.push_back(
            paragraph(style, {superscript(QStringLiteral("*")),
                              HtmlNode::textNode(QStringLiteral("Correspondence: ") + whom)}));
    int notes = 0;
    for (const Author& author : metadata.authors) {
        if (!author.note.isEmpty())
            lines.push_back(paragraph(
                style, {superscript(noteSign(notes++)), HtmlNode::textNode(author.note)}));
    }
    return lines;
}

} // namespace

void fillFrontMatter(HtmlNode& article, const PublicationMetadata& metadata)
{
    replaceParagraph(article, QStringLiteral("vexa_authors"), authorLine(metadata));
    replaceParagraph(article, QStringLiteral("vexa_addresses"), addressLines(metadata));
}

QString articleTitle(const HtmlNode& article)
{
    if (isAnchor(article, QStringLiteral("vexa_title")))
        return article.plainText().simplified();
    for (const HtmlNode& child : article.children) {
        const QString title = articleTitle(child);
        if (!title.isEmpty())
            return title;
    }
    return {};
}

} // namespace wordbridge
