#include "quillet/article_template.h"

#include "quillet/built_in_templates.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <kainjow/mustache.hpp>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace quillet
{

namespace mustache = kainjow::mustache;

struct Fields::Data {
    mustache::data data;
};

Fields::Fields() : m_data(std::make_unique<Data>()) {}
Fields::Fields(const Fields& other) : m_data(std::make_unique<Data>(*other.m_data)) {}
Fields::Fields(Fields&& other) noexcept = default;
Fields::~Fields() = default;

Fields& Fields::operator=(Fields other) noexcept
{
    m_data = std::move(other.m_data);
    return *this;
}

void Fields::set(const std::string& name, const Html& value)
{
    if (value.empty())
        m_data->data.set(name, mustache::data(false));
    else
        m_data->data.set(name, mustache::data(value.str()));
}

void Fields::set(const std::string& name, const Fields& value)
{
    m_data->data.set(name, value.m_data->data);
}

void Fields::set(const std::string& name, const std::vector<Fields>& values)
{
    mustache::data list(mustache::data::type::list);
    for (const Fields& value : values)
        list.push_back(value.m_data->data);
    m_data->data.set(name, list);
}

void Fields::set(const std::string& name, std::function<Html(const Html&)> function)
{
    m_data->data.set(
        name, mustache::lambda2([function = std::move(function)](const std::string& content,
                                                                 const mustache::renderer& render) {
            return function(html_of_template(render(content, false))).str();
        }));
}

void Fields::set(const std::string& name, std::function<int()> function)
{
    m_data->data.set(name, mustache::lambda([function = std::move(function)](const std::string&) {
                         return std::to_string(function());
                     }));
}

namespace
{

Position position_in(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, offset);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto line_start = before.rfind('\n') + 1; // npos + 1 is 0
    return {static_cast<std::uint32_t>(line), static_cast<std::uint32_t>(offset - line_start + 1)};
}

std::string line_at(std::string_view text, std::size_t offset)
{
    const auto start = text.substr(0, offset).rfind('\n') + 1;
    const auto end = std::min(text.find('\n', offset), text.size());
    return std::string(text.substr(start, end - start));
}

// The key in the content of a {{#row}} section: what stands before the first colon.
std::string_view row_key(std::string_view content)
{
    return trimmed(content.substr(0, std::min(content.find(':'), content.size())));
}

// The engine prints nothing for names it does not know and tells offsets instead of lines, so
// templates are looked through before they reach it.
class TemplateChecker
{
public:
    TemplateChecker(const std::string& name, std::string_view text, const Vocabulary& vocabulary)
        : m_name(name),
          m_text(text),
          m_vocabulary(vocabulary)
    {
    }

    void check()
    {
        std::size_t at = 0;
        while ((at = m_text.find("{{", at)) != std::string_view::npos)
            at = check_tag(at);
        if (!m_open.empty())
            fail(m_open.back().offset,
                 "section {{#" + std::string(m_open.back().name) + "}} is not closed");
    }

private:
    struct Section {
        std::string_view name;
        std::size_t offset;
    };

    InputError located_error(std::size_t offset, const std::string& message) const
    {
        InputError error(m_name, position_in(m_text, offset), message);
        error.set_source_line(line_at(m_text, offset));
        return error;
    }

    [[noreturn]] void fail(std::size_t offset, const std::string& message) const
    {
        throw located_error(offset, message);
    }

    // Returns where the tag ends.
    std::size_t check_tag(std::size_t at)
    {
        const bool is_triple = m_text.substr(at, 3) == "{{{";
        const std::string_view closing = is_triple ? "}}}" : "}}";
        const std::size_t start = at + closing.size();
        const std::size_t end = m_text.find(closing, start);
        if (end == std::string_view::npos)
            fail(at, "tag is not closed");
        const std::string_view content = trimmed(m_text.substr(start, end - start));
        if (content.empty())
            fail(at, "tag is empty");
        check_content(content, at, end + closing.size());
        return end + closing.size();
    }

    void check_content(std::string_view content, std::size_t at, std::size_t end)
    {
        const std::string_view name = trimmed(content.substr(1));
        switch (content.front()) {
        case '!':
            return;
        case '=':
            fail(at, "the delimiters of tags cannot be changed");
        case '>':
            check_partial(name, at);
            return;
        case '#':
        case '^':
            check_name(name, at);
            m_open.push_back({name, at});
            if (name == "row")
                check_row(at, end);
            return;
        case '/':
            close_section(name, at);
            return;
        case '&':
            check_name(name, at);
            return;
        default:
            check_name(content, at);
        }
    }

    void check_partial(std::string_view name, std::size_t at) const
    {
        const std::string_view* text = find_built_in_partial(name);
        if (!text)
            fail(at, "there is no part of the name \u201c" + std::string(name) + "\u201d");
        TemplateChecker(std::string(name), *text, m_vocabulary).check();
    }

    void check_name(std::string_view name, std::size_t at) const
    {
        if (m_vocabulary.names.count(name) == 0)
            fail(at, "there is no field of the name \u201c" + std::string(name) + "\u201d");
    }

    void check_row(std::size_t at, std::size_t content_start) const
    {
        const std::size_t content_end = std::min(m_text.find("{{", content_start), m_text.size());
        const std::string_view content = m_text.substr(content_start, content_end - content_start);
        if (content.find(':') == std::string_view::npos)
            fail(at, "a row is written {{#row}}KEY: label{{/row}}");
        if (m_vocabulary.row_keys.count(row_key(content)) == 0)
            fail(content_start,
                 "there is no row of the key \u201c" + std::string(row_key(content)) + "\u201d");
    }

    void close_section(std::string_view name, std::size_t at)
    {
        if (m_open.empty())
            fail(at, "section \u201c" + std::string(name) + "\u201d is closed but not open");
        if (m_open.back().name != name)
            fail(at, "{{/" + std::string(name) + "}} closes the section {{#" +
                         std::string(m_open.back().name) + "}} of line " +
                         std::to_string(position_in(m_text, m_open.back().offset).line));
        m_open.pop_back();
    }

    std::string m_name;
    std::string_view m_text;
    const Vocabulary& m_vocabulary;
    std::vector<Section> m_open;
};

// Thrown where a template asks a table for a row that belongs to another.
struct MisplacedRow : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Tags that print nothing leave empty lines behind.
std::string without_empty_lines(const std::string& html)
{
    std::string result;
    bool is_preformatted = false;
    std::size_t start = 0;
    while (start < html.size()) {
        const std::size_t end = std::min(html.find('\n', start), html.size());
        const std::string line = html.substr(start, end - start);
        start = end + 1;
        if (is_preformatted || !trimmed(line).empty())
            result += line + "\n";
        if (line.find("<pre>") != std::string::npos)
            is_preformatted = true;
        if (line.find("</pre>") != std::string::npos)
            is_preformatted = false;
    }
    return result;
}

std::string insert_before_body_end(std::string html, const std::string& closing)
{
    const auto end = html.rfind("</body>");
    return end == std::string::npos ? html : html.insert(end, closing);
}

} // namespace

ArticleTemplate::ArticleTemplate(std::string name, std::string text)
    : m_name(std::move(name)),
      m_text(std::move(text))
{
}

ArticleTemplate ArticleTemplate::built_in(std::string_view file_name)
{
    const std::string_view* text = find_built_in_template(file_name);
    if (!text)
        throw std::logic_error("no built-in template of the name " + std::string(file_name));
    return {std::string(file_name), std::string(*text)};
}

std::string ArticleTemplate::render(const Fields& fields, const Vocabulary& vocabulary,
                                    const Html& closing) const
{
    TemplateChecker(m_name, m_text, vocabulary).check();
    mustache::data data = fields.m_data->data;
    for (const auto& [name, text] : built_in_partials())
        data.set(std::string(name), mustache::partial([text = std::string(text)] { return text; }));
    mustache::mustache engine(m_text);
    engine.set_custom_escape([](const std::string& html) { return html; });
    std::string html;
    try {
        html = engine.render(data);
    } catch (const MisplacedRow& error) {
        throw InputError(m_name, {}, error.what());
    }
    if (!engine.is_valid())
        throw InputError(m_name, {}, engine.error_message());
    check_article(html);
    return insert_before_body_end(without_empty_lines(html), closing.str());
}

void ArticleTemplate::check_article(const std::string& html) const
{
    std::size_t last = 0;
    const std::string anchors[] = {"vexa_title", "vexa_authors", "vexa_addresses"};
    for (const std::string& anchor : anchors) {
        const std::string attribute = "name=\"" + anchor + "\"";
        const auto at = html.find(attribute);
        if (at == std::string::npos)
            throw InputError(m_name, {}, "the article lacks the anchor " + anchor);
        if (html.find(attribute, at + 1) != std::string::npos)
            throw InputError(m_name, {}, "the article has the anchor " + anchor + " twice");
        if (at < last)
            throw InputError(m_name, {}, "the anchor " + anchor + " stands too early");
        last = at;
    }
    if (html.find("</body>") == std::string::npos)
        throw InputError(m_name, {}, "the article lacks </body>");
}

namespace
{

// One printed table: some columns of it, so that it fits the width of a page.
class TablePart
{
public:
    TablePart(std::shared_ptr<const Table> table, std::size_t first, std::size_t end)
        : m_table(std::move(table)),
          m_first(first),
          m_end(end)
    {
    }

    Html head() const
    {
        if (m_table->heads.empty())
            return {};
        Html cells;
        for (std::size_t i = m_first; i < m_end; ++i)
            cells += "<th scope=\"col\">"_html + m_table->heads[i] + "</th>"_html;
        return "<thead><tr><th></th>"_html + cells + "</tr></thead>"_html;
    }

    // Group headings wait for a row, so that none stands without.
    Html group(const Html& label)
    {
        m_waiting_group = "<tr><th colspan=\""_html + escape(std::to_string(m_end - m_first + 1)) +
                          "\">"_html + label + "</th></tr>\n"_html;
        return {};
    }

    Html row(const Html& content)
    {
        const std::string_view key = row_key(content.str());
        const TableRow* row = m_table->find(key);
        if (!row)
            throw MisplacedRow("this table has no row of the key \u201c" + std::string(key) +
                               "\u201d");
        if (!row->is_printed)
            return {};
        const std::string label = content.str().substr(content.str().find(':') + 1);
        Html html = std::exchange(m_waiting_group, {}) + "<tr data-row=\""_html + escape(key) +
                    "\"><th scope=\"row\">"_html + html_of_template(std::string(trimmed(label))) +
                    "</th>"_html;
        for (std::size_t i = m_first; i < m_end; ++i)
            html += "<td>"_html + row->cells[i].shown() + "</td>"_html;
        return html + "</tr>"_html;
    }

private:
    std::shared_ptr<const Table> m_table;
    std::size_t m_first;
    std::size_t m_end;
    Html m_waiting_group;
};

} // namespace

const std::set<std::string_view> table_field_names = {"head", "continued", "number", "row",
                                                      "group"};

std::vector<Fields> table_fields(const Table& table, TableCounter& counter)
{
    constexpr std::size_t columns_on_page = 4;
    const auto shared_table = std::make_shared<const Table>(table);
    const std::size_t columns = table.rows.empty() ? 0 : table.rows.front().cells.size();
    const auto number = std::make_shared<int>(0);
    std::vector<Fields> parts;
    for (std::size_t first = 0; first < columns; first += columns_on_page) {
        const auto part = std::make_shared<TablePart>(shared_table, first,
                                                      std::min(first + columns_on_page, columns));
        Fields fields;
        fields.set("head", part->head());
        fields.set("continued", first > 0 ? "true"_html : Html());
        fields.set("number", [counter, number]() mutable {
            if (*number == 0)
                *number = counter.next();
            return *number;
        });
        fields.set("row", [part](const Html& content) { return part->row(content); });
        fields.set("group", [part](const Html& content) { return part->group(content); });
        parts.push_back(std::move(fields));
    }
    return parts;
}

} // namespace quillet
