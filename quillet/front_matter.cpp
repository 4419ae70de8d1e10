#include "quillet/front_matter.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

namespace quillet
{

namespace
{

struct TextSection {
    std::string_view field;
    std::string_view item;    // as in the core dictionary
    std::string_view mm_item; // as it would be in mmCIF
};

constexpr TextSection text_sections[] = {
    {"synopsis", "_publ_section_synopsis", "_publ_section.synopsis"},
    {"abstract", "_publ_section_abstract", "_publ_section.abstract"},
    {"related_literature", "_publ_section_related_literature", "_publ_section.related_literature"},
    {"introduction", "_publ_section_introduction", "_publ_section.introduction"},
    {"comment", "_publ_section_comment", "_publ_section.comment"},
    {"discussion", "_publ_section_discussion", "_publ_section.discussion"},
    {"experimental", "_publ_section_experimental", "_publ_section.experimental"},
    {"synthesis", "_publ_section_exptl_prep", "_publ_section.exptl_prep"},
    {"structure_solution", "_publ_section_exptl_solution", "_publ_section.exptl_solution"},
    {"refinement", "_publ_section_exptl_refinement", "_publ_section.exptl_refinement"},
    {"acknowledgements", "_publ_section_acknowledgements", "_publ_section.acknowledgements"},
    {"references", "_publ_section_references", "_publ_section.references"},
    {"figure_captions", "_publ_section_figure_captions", "_publ_section.figure_captions"},
};

Html paragraph(const Html& text)
{
    return "<p>"_html + text + "</p>\n"_html;
}

// Of a word of _publ_body_element; 0 for a footnote, -1 for what is none of them.
int heading_level(std::string_view element)
{
    const std::string word = ascii_lower(element);
    if (word == "section" || word == "appendix")
        return 1;
    if (word == "subsection")
        return 2;
    if (word == "subsubsection")
        return 3;
    return word == "footnote" ? 0 : -1;
}

Html heading(int level, const Html& text)
{
    if (level == 1)
        return "<h1>"_html + text + "</h1>\n"_html;
    if (level == 2)
        return "<h2>"_html + text + "</h2>\n"_html;
    return "<h3>"_html + text + "</h3>\n"_html;
}

// The text of one row of the loop of body parts, by the format that the row states.
Html body_contents(const Item& contents, const Item& format, Notes& notes)
{
    const std::string word = format.is_given() ? ascii_lower(format.text) : "cif";
    if (word == "cif")
        return paragraphs_of(contents);
    if (word == "ascii") {
        Html result;
        for (const std::string& part : split_paragraphs(contents.text))
            result += paragraph(escape(collapse_blanks(part)));
        return result;
    }
    notes.add_once(contents.where(), "Text in the format \u201c" + word +
                                         "\u201d cannot be converted and is shown as it is.");
    return "<pre>"_html + escape(contents.text) + "</pre>\n"_html;
}

Html body_part(const Rows& rows, std::size_t row, Notes& notes)
{
    const Item element = rows.item(row, {"_publ_body_element", "_publ_body.element"});
    const Item title = rows.item(row, {"_publ_body_title", "_publ_body.title"});
    const Item label = rows.item(row, {"_publ_body_label", "_publ_body.label"});
    const Item contents = rows.item(row, {"_publ_body_contents", "_publ_body.contents"});
    const Item format = rows.item(row, {"_publ_body_format", "_publ_body.format"});
    const int level = heading_level(element.text);
    if (level < 0 && element.is_given())
        notes.add_once(element.where(), "\u201c" + std::string(element.text) +
                                            "\u201d is no known part of an article; it is printed "
                                            "without a heading.");
    Html result;
    const Html number = label.is_given() ? text_to_html(label.text) + " "_html : Html();
    const Html name = number + text_to_html(title.text);
    if (level > 0 && !name.empty())
        result += heading(level, name);
    else if (level < 0 && !name.empty())
        result += paragraph("<b>"_html + name + "</b>"_html);
    if (!contents.is_given())
        return result;
    if (level == 0)
        return "<p class=\"note\">"_html + superscript(text_to_html(label.text)) +
               text_to_html(contents.text) + "</p>\n"_html;
    return result + body_contents(contents, format, notes);
}

// For an HTML comment, in which two hyphens must not meet.
Html comment_text(std::string_view text)
{
    std::string result;
    for (const char c : text_to_plain(text)) {
        if (c == '-' && !result.empty() && result.back() == '-')
            result += ' ';
        result += c;
    }
    return escape(result);
}

Html body_of(const Document& document, Notes& notes)
{
    Html result;
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows(
            {"_publ_body_contents", "_publ_body.contents", "_publ_body_title", "_publ_body.title"});
        for (std::size_t row = 0; row < rows.size(); ++row)
            result += body_part(rows, row, notes);
    }
    return result;
}

} // namespace

Item manuscript_item(const Document& document, Tags tags, Notes& notes)
{
    Item best;
    for (const Block& block : document.blocks) {
        const Item item = block.item(tags);
        if (!best.is_given()) {
            if (best.tag.empty() || item.state != State::unknown)
                best = item;
        } else if (item.is_given() && collapse_blanks(item.text) != collapse_blanks(best.text)) {
            notes.add(item.where(), std::string(item.tag) + " of data_" + block.name() +
                                        " differs from that of an earlier block and is not used.");
        }
    }
    return best;
}

Html paragraphs_of(const Item& item)
{
    if (!item.is_given())
        return paragraph("?"_html);
    Html result;
    for (const Html& text : text_to_paragraphs(item.text))
        result += paragraph(text);
    return result;
}

Fields text_section(const Html& text)
{
    Fields fields;
    fields.set("text", text);
    return fields;
}

void set_text_sections(Fields& fields, const Document& document,
                       const std::set<std::string_view>& skeleton, Notes& notes)
{
    for (const TextSection& section : text_sections) {
        const Item item = manuscript_item(document, {section.item, section.mm_item}, notes);
        const std::string name(section.field);
        if (item.is_given() || skeleton.count(section.field) > 0)
            fields.set(name, text_section(paragraphs_of(item)));
        else
            fields.set(name, Html());
    }
    fields.set("body", body_of(document, notes));
    fields.set("table_legends",
               comment_text(first_item(document, {"_publ_section_table_legends"}).text));
}

bool has_figure_captions(const Document& document)
{
    return first_item(document, {"_publ_section_figure_captions", "_publ_section.figure_captions"})
        .is_given();
}

void set_front_matter(Fields& fields, const Html& title, const std::string& short_name,
                      const AuthorList& authors, const std::vector<Html>& keywords)
{
    fields.set("title", title.empty() ? "?"_html : title);
    fields.set("short_name", escape(short_name));
    fields.set("authors", authors.authors.empty() ? Html() : "true"_html);
    Html correspondence = escape(authors.contact_name);
    if (!authors.contact_name.empty() && !authors.contact_email.empty())
        correspondence += ", "_html + escape(authors.contact_email);
    fields.set("correspondence", correspondence);
    Html joined_keywords;
    for (const Html& keyword : keywords)
        joined_keywords += (joined_keywords.empty() ? Html() : "; "_html) + keyword;
    fields.set("keywords", joined_keywords);
}

std::vector<Html> split_keywords(std::string_view text)
{
    return split_keywords(text, text.find(';') != std::string_view::npos ? ';' : ',');
}

std::vector<Html> split_keywords(std::string_view text, char separator)
{
    std::vector<Html> keywords;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        const std::string_view keyword = trimmed(text.substr(0, end));
        if (!keyword.empty())
            keywords.push_back(text_to_html(keyword));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return keywords;
}

void set_notes(Fields& fields, const Notes& notes)
{
    std::vector<Fields> list;
    for (const Note& note : notes.all()) {
        Fields entry;
        entry.set("place", escape(format_position(note.where)));
        entry.set("message", escape(note.text));
        list.push_back(std::move(entry));
    }
    Fields section;
    section.set("items", list);
    if (notes.empty())
        fields.set("notes", Html());
    else
        fields.set("notes", section);
}

const std::set<std::string_view> front_matter_field_names = {"authors",
                                                             "title",
                                                             "short_name",
                                                             "correspondence",
                                                             "keywords",
                                                             "title_footnote",
                                                             "synopsis",
                                                             "abstract",
                                                             "introduction",
                                                             "comment",
                                                             "discussion",
                                                             "body",
                                                             "experimental",
                                                             "synthesis",
                                                             "structure_solution",
                                                             "refinement",
                                                             "references",
                                                             "related_literature",
                                                             "text",
                                                             "acknowledgements",
                                                             "figure_captions",
                                                             "notes",
                                                             "items",
                                                             "place",
                                                             "message",
                                                             "table_legends"};

} // namespace quillet
