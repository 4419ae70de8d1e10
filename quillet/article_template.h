// Article templates: HTML files with mustache tags, which a journal's editor can change. What the
// tags mean is described in templates/README.md.
#pragma once

#include "quillet/cells.h"
#include "quillet/html.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// The named values that a template can print. Values are HTML already, so a template cannot print
// anything unescaped by mistake.
class Fields
{
public:
    Fields();
    Fields(const Fields& other);
    Fields(Fields&& other) noexcept;
    Fields& operator=(Fields other) noexcept;
    ~Fields();

    // An empty value counts as absent: {{#name}}...{{/name}} is left out, {{^name}} is shown.
    void set(const std::string& name, const Html& value);
    void set(const std::string& name, const Fields& value);
    // The section is repeated for each.
    void set(const std::string& name, const std::vector<Fields>& values);
    // A section whose content, its own tags replaced already, goes through `function`.
    void set(const std::string& name, std::function<Html(const Html&)> function);
    // A number that is worked out each time it is printed.
    void set(const std::string& name, std::function<int()> function);

private:
    friend class ArticleTemplate;
    struct Data;
    std::unique_ptr<Data> m_data;
};

// The words that templates of one kind of article may use.
struct Vocabulary {
    std::set<std::string_view> names;    // of fields
    std::set<std::string_view> row_keys; // in {{#row}}KEY: label{{/row}}
};

class ArticleTemplate
{
public:
    // `name` is for messages: the path of the file.
    ArticleTemplate(std::string name, std::string text);

    // One of those that are part of the program: "macromolecule.html", ... Must exist.
    static ArticleTemplate built_in(std::string_view file_name);

    // The finished HTML in UTF-8, with `closing` directly before </body>. Throws InputError, with
    // its place in the template, on tags that do not match and on names or row keys that are not
    // in the vocabulary; and if the article would lack what every article must have: the anchors
    // that the word processor looks for and </body>.
    std::string render(const Fields& fields, const Vocabulary& vocabulary,
                       const Html& closing) const;

private:
    void check_article(const std::string& html) const;

    std::string m_name;
    std::string m_text;
};

// Numbers the tables of one article in the order in which they are printed. Copies count together.
class TableCounter
{
public:
    int next() { return ++*m_last; }

private:
    std::shared_ptr<int> m_last = std::make_shared<int>(0);
};

// What a template needs to print `table`, in as many parts as fit the width of a page: for each
// the fields head, continued and number, and the sections {{#row}} and {{#group}}.
std::vector<Fields> table_fields(const Table& table, TableCounter& counter);

// The names that table_fields() sets.
extern const std::set<std::string_view> table_field_names;

} // namespace quillet
