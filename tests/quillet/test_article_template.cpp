#include "quillet/article_template.h"

#include "quillet/built_in_templates.h"
#include "quillet/macromolecule.h"
#include "quillet/scattering.h"
#include "quillet/small_molecule.h"
#include "quillet/text_source.h"
#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using testing::HasSubstr;
using testing::Not;

const std::string anchors = "<a name=\"vexa_title\"></a><a name=\"vexa_authors\"></a>"
                            "<a name=\"vexa_addresses\"></a>";

const Vocabulary& words()
{
    static const Vocabulary vocabulary = {
        {"title", "abstract", "text", "row", "group", "table", "number", "head", "continued"},
        {"A.Mr", "A.Z"}};
    return vocabulary;
}

std::string render(const std::string& text, const Fields& fields = {})
{
    return ArticleTemplate("t.html", anchors + text + "</body>")
        .render(fields, words(), "<end>"_html);
}

// "line:column: message" of the error that the template makes.
std::string error_of(const std::string& text, const Fields& fields = {})
{
    try {
        ArticleTemplate("t.html", text).render(fields, words(), {});
    } catch (const InputError& error) {
        return format_message(error.file(), error.where(), "error", error.what());
    }
    return "none";
}

TEST(Template, FieldsAreInserted)
{
    Fields fields;
    fields.set("title", escape("a < b {{abstract}}"));
    EXPECT_THAT(render("<p>{{title}}</p>", fields), HasSubstr("<p>a &lt; b {{abstract}}</p>"));
}

TEST(Template, EmptyFieldsLeaveTheirSectionsOut)
{
    Fields fields;
    fields.set("title", Html());
    const std::string html = render("{{#title}}shown{{/title}}{{^title}}else{{/title}}", fields);
    EXPECT_THAT(html, HasSubstr("else"));
    EXPECT_THAT(html, Not(HasSubstr("shown")));
}

TEST(Template, ClosingStandsBeforeTheEndOfTheBody)
{
    EXPECT_THAT(render("x"), HasSubstr("x<end></body>"));
}

TEST(Template, EmptyLinesAreDroppedButNotInPreformattedText)
{
    EXPECT_THAT(render("\na\n\n \nb\n<pre>c\n\nd</pre>\n"),
                HasSubstr("\na\nb\n<pre>c\n\nd</pre>\n"));
}

TEST(Template, MistakesAreReportedWithLineAndColumn)
{
    EXPECT_EQ(error_of("a\n  {{titel}}"),
              "t.html:2:3: error: there is no field of the name \u201ctitel\u201d");
    EXPECT_EQ(error_of("{{#abstract}}\nx"),
              "t.html:1:1: error: section {{#abstract}} is not closed");
    EXPECT_EQ(error_of("x{{/abstract}}"),
              "t.html:1:2: error: section \u201cabstract\u201d is closed but not open");
    EXPECT_EQ(error_of("{{#abstract}}\n{{#title}}{{/abstract}}"),
              "t.html:2:11: error: {{/abstract}} closes the section {{#title}} of line 2");
    EXPECT_EQ(error_of("\n{{title"), "t.html:2:1: error: tag is not closed");
    EXPECT_EQ(error_of("{{ }}"), "t.html:1:1: error: tag is empty");
    EXPECT_EQ(error_of("{{>nowhere}}"),
              "t.html:1:1: error: there is no part of the name \u201cnowhere\u201d");
    EXPECT_EQ(error_of("{{=<% %>=}}"),
              "t.html:1:1: error: the delimiters of tags cannot be changed");
    EXPECT_EQ(error_of("{{#row}}A.Mr{{/row}}"),
              "t.html:1:1: error: a row is written {{#row}}KEY: label{{/row}}");
    EXPECT_EQ(error_of("{{#row}}A.XX: label{{/row}}"),
              "t.html:1:9: error: there is no row of the key \u201cA.XX\u201d");
}

TEST(Template, CommentsMayHoldAnything)
{
    EXPECT_THAT(render("{{! {#titel} }}ok"), HasSubstr("ok"));
}

TEST(Template, AnchorsMustStandOnceAndInOrder)
{
    EXPECT_EQ(error_of("</body>"), "t.html: error: the article lacks the anchor vexa_title");
    EXPECT_EQ(error_of(anchors + anchors + "</body>"),
              "t.html: error: the article has the anchor vexa_title twice");
    EXPECT_EQ(error_of("<a name=\"vexa_authors\"></a><a name=\"vexa_title\"></a>"
                       "<a name=\"vexa_addresses\"></a></body>"),
              "t.html: error: the anchor vexa_authors stands too early");
    EXPECT_EQ(error_of(anchors), "t.html: error: the article lacks </body>");
}

Table table_of(std::size_t columns)
{
    Table table;
    table.rows.resize(2);
    table.rows[0].key = "A.Mr";
    table.rows[1].key = "A.Z";
    table.rows[1].is_printed = false;
    for (std::size_t i = 0; i < columns; ++i) {
        table.heads.push_back(escape("H" + std::to_string(i + 1)));
        table.rows[0].cells.push_back(given_cell(escape(std::to_string(i + 1))));
        table.rows[1].cells.push_back(unknown_cell("_x"));
    }
    return table;
}

TEST(TemplateTable, RowsCarryTheirKeysAndLabels)
{
    TableCounter counter;
    Fields fields;
    fields.set("table", table_fields(table_of(1), counter));
    fields.set("title", "T"_html);
    EXPECT_THAT(
        render("{{#table}}{{number}}{{#row}}A.Mr: <i>M</i>{{title}}{{/row}}{{/table}}", fields),
        HasSubstr("1<tr data-row=\"A.Mr\"><th scope=\"row\"><i>M</i>T</th>"
                  "<td>1</td></tr>"));
}

TEST(TemplateTable, GroupsWithoutRowsAreLeftOut)
{
    TableCounter counter;
    Fields fields;
    fields.set("table", table_fields(table_of(1), counter));
    const std::string html = render("{{#table}}{{#group}}One{{/group}}{{#row}}A.Z: z{{/row}}"
                                    "{{#group}}Two{{/group}}{{#row}}A.Mr: m{{/row}}{{/table}}",
                                    fields);
    EXPECT_THAT(html, Not(HasSubstr("One")));
    EXPECT_THAT(html, HasSubstr("<th colspan=\"2\">Two</th>"));
    EXPECT_THAT(html, Not(HasSubstr("A.Z")));
}

TEST(TemplateTable, WideTablesAreSplitUnderOneNumber)
{
    TableCounter counter;
    Fields fields;
    fields.set("table", table_fields(table_of(6), counter));
    const std::string html = render("{{#table}}[{{number}}{{#continued}}c{{/continued}}{{head}}"
                                    "{{#row}}A.Mr: m{{/row}}]{{/table}}",
                                    fields);
    EXPECT_THAT(html, HasSubstr("[1<thead><tr><th></th><th scope=\"col\">H1</th>"));
    EXPECT_THAT(html, HasSubstr("<td>3</td><td>4</td></tr>]"));
    EXPECT_THAT(html, HasSubstr("[1c<thead><tr><th></th><th scope=\"col\">H5</th>"));
    EXPECT_EQ(counter.next(), 2);
}

TEST(TemplateTable, RowOfAnotherTableIsAnError)
{
    Table table = table_of(1);
    table.rows.pop_back();
    TableCounter counter;
    Fields fields;
    fields.set("table", table_fields(table, counter));
    EXPECT_EQ(error_of(anchors + "{{#table}}{{#row}}A.Z: z{{/row}}{{/table}}</body>", fields),
              "t.html: error: this table has no row of the key \u201cA.Z\u201d");
}

// What templates may use is documented.
TEST(TemplateReadme, TellsAllFieldsAndTables)
{
    const std::string readme =
        read_text(std::string(VEXA_SOURCE_DIR) + "/quillet/templates/README.md");
    for (const Vocabulary* vocabulary :
         {&small_molecule_vocabulary(), &macromolecule_vocabulary(), &scattering_vocabulary()}) {
        for (const std::string_view name : vocabulary->names) {
            const bool is_told =
                readme.find("`" + std::string(name) + "`") != std::string::npos ||
                readme.find("{{" + std::string(name) + "}}") != std::string::npos ||
                readme.find("{{#" + std::string(name) + "}}") != std::string::npos;
            EXPECT_TRUE(is_told) << name;
        }
    }
}

// All templates that are part of the program keep to the words that the program knows.
TEST(BuiltInTemplates, AreWithoutMistakes)
{
    const auto check = [](std::string_view text, const Vocabulary& vocabulary) {
        try {
            ArticleTemplate("built-in", std::string(text)).render({}, vocabulary, {});
        } catch (const InputError& error) {
            ADD_FAILURE() << format_message(error.file(), error.where(), "error", error.what());
        }
    };
    check(*find_built_in_template("qlettemplate_word.html"), small_molecule_vocabulary());
    check(*find_built_in_template("macromolecule.html"), macromolecule_vocabulary());
    check(*find_built_in_template("communication.html"), macromolecule_vocabulary());
    check(*find_built_in_template("scattering.html"), scattering_vocabulary());
}

} // namespace
} // namespace quillet
