// The text of the small-molecule article: its sections, special details and programs.

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace quillet
{
namespace
{

using test::article_of;
using test::readable;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

struct Section {
    const char* item;
    const char* heading;
};

// In the order of the article.
constexpr Section sections[] = {{"_publ_section_synopsis", "Synopsis"},
                                {"_publ_section_abstract", "Abstract"},
                                {"_publ_section_related_literature", "Related literature"},
                                {"_publ_section_introduction", "Introduction"},
                                {"_publ_section_comment", "Comment"},
                                {"_publ_section_discussion", "Discussion"},
                                {"_publ_section_experimental", "Experimental"},
                                {"_publ_section_exptl_prep", "Synthesis and crystallization"},
                                {"_publ_section_exptl_solution", "Structure solution"},
                                {"_publ_section_exptl_refinement", "Refinement"},
                                {"_publ_section_acknowledgements", "Acknowledgements"},
                                {"_publ_section_references", "References"},
                                {"_publ_section_figure_captions", "Figure captions"}};

constexpr Section special_details[] = {
    {"_exptl_special_details", "Experimental"}, {"_geom_special_details", "Geometry"},
    {"_refine_special_details", "Refinement"},  {"_atom_sites_special_details", "Atom sites"},
    {"_diffrn_special_details", "Diffraction"}, {"_reflns_special_details", "Reflections"},
    {"_cell_special_details", "Cell"}};

// Without the elements that only give a section its style.
std::string without_styles(const std::string& html)
{
    return std::regex_replace(html, std::regex("<div class=\"[a-z]+\">\n|</div>\n"), "");
}

// Items in the reverse of the article's order, each with its own name as text.
template<std::size_t Size>
std::string items_of(const Section (&list)[Size])
{
    std::string items;
    for (std::size_t i = Size; i-- > 0;)
        items += std::string(list[i].item) + " '" + list[i].item + "'\n";
    return items;
}

// "heading: text" of the headings with that tag, each up to the end of its first paragraph.
std::vector<std::string> sections_in(const std::string& html, const std::string& tag)
{
    std::vector<std::string> found;
    const std::string start = "<" + tag + ">";
    const std::string end = "</" + tag + ">\n<p>";
    for (auto at = html.find(start); at != std::string::npos; at = html.find(start, at + 1)) {
        const auto heading_end = html.find(end, at);
        const auto text = heading_end + end.size();
        found.push_back(html.substr(at + start.size(), heading_end - at - start.size()) + ": " +
                        html.substr(text, html.find("</p>", text) - text));
    }
    return found;
}

template<std::size_t Size>
std::vector<std::string> expected_of(const Section (&list)[Size])
{
    std::vector<std::string> expected;
    for (const Section& section : list)
        expected.push_back(std::string(section.heading) + ": " + section.item);
    return expected;
}

TEST(SmallMoleculeText, SectionsStandInTheOrderOfAnArticle)
{
    const std::string html = without_styles(
        readable(article_of("data_I\n_cell_length_a 1\n" + items_of(sections), "-htmPX")));
    auto found = sections_in(html, "h1");
    found.resize(std::min(found.size(), std::size(sections)));
    EXPECT_THAT(found, ElementsAreArray(expected_of(sections)));
}

TEST(SmallMoleculeText, SectionsThatAnArticleMustHaveAreAskedFor)
{
    const std::string html = without_styles(article_of("data_I\n_cell_length_a 1\n", "-htmPX"));
    for (const char* heading :
         {"Abstract", "Comment", "Synthesis and crystallization", "Refinement"})
        EXPECT_THAT(html, HasSubstr("<h1>" + std::string(heading) + "</h1>\n<p>?</p>"));
    for (const char* heading : {"Synopsis", "Introduction", "Experimental", "References"})
        EXPECT_THAT(html, Not(HasSubstr("<h1>" + std::string(heading) + "</h1>")));
}

TEST(SmallMoleculeText, OtherSectionsMakeSomeOfThemNeedless)
{
    const std::string head = "data_I\n_cell_length_a 1\n";
    EXPECT_THAT(article_of(head + "_publ_section_discussion x\n", "-htmPX"),
                Not(HasSubstr("<h1>Comment</h1>")));
    EXPECT_THAT(article_of(head + "_publ_section_introduction x\n", "-htmPX"),
                Not(HasSubstr("<h1>Comment</h1>")));
    const std::string html = article_of(head + "_publ_section_experimental x\n", "-htmPX");
    EXPECT_THAT(html, Not(HasSubstr("<h1>Synthesis and crystallization</h1>")));
    EXPECT_THAT(html, Not(HasSubstr("<h1>Refinement</h1>")));
}

TEST(SmallMoleculeText, SameTroubleInManyPartsIsToldOnce)
{
    const std::string html = readable(
        article_of("data_I\n_cell_length_a 1\nloop_\n_publ_body_element\n_publ_body_format\n"
                   "_publ_body_contents\nsection tex A\nsection tex B\npoem latex C\npoem tex D\n",
                   "-htmPX"));
    const auto count = [&](const std::string& text) {
        std::size_t times = 0;
        for (auto at = html.find(text); at != std::string::npos; at = html.find(text, at + 1))
            ++times;
        return times;
    };
    EXPECT_EQ(count("<pre>"), 4U);
    EXPECT_EQ(count("format \u201Ctex\u201D cannot be converted"), 1U);
    EXPECT_EQ(count("format \u201Clatex\u201D cannot be converted"), 1U);
    EXPECT_EQ(count("\u201Cpoem\u201D is no known part"), 1U);
}

TEST(SmallMoleculeText, SpecialDetailsHaveHeadings)
{
    const std::string html =
        readable(article_of("data_I\n_cell_length_a 1\n" + items_of(special_details), "-htmPX"));
    EXPECT_THAT(sections_in(html, "h2"), ElementsAreArray(expected_of(special_details)));
}

TEST(SmallMoleculeText, CorrespondenceWithTheJournalIsNotPrinted)
{
    const std::string html =
        article_of("data_I\n_cell_length_a 1\n_publ_requested_category FM\n"
                   "_publ_requested_coeditor_name 'Secret One'\n_publ_contact_letter 'Secret two'\n"
                   "_publ_author_name 'Known, A.'\n_publ_author_phone 'Secret three'\n"
                   "_publ_manuscript_text 'Secret four'\n_journal_techeditor_notes 'Secret five'\n",
                   "-htmPX");
    EXPECT_THAT(html, HasSubstr("Known"));
    EXPECT_THAT(html, Not(HasSubstr("Secret")));
}

TEST(SmallMoleculeText, ProgramsOfBothDictionariesInOrder)
{
    const std::string expected =
        "Computer programs: data collection: A; cell refinement: B; data reduction: C; program(s) "
        "used to solve structure: D; program(s) used to refine structure: E; molecular graphics: "
        "F; software used to prepare material for publication: G.<";
    const std::string head = "data_I\n_cell_length_a 1\n";
    EXPECT_THAT(article_of(head + "_computing_publication_material G.\n"
                                  "_computing_molecular_graphics F\n"
                                  "_computing_structure_refinement E\n"
                                  "_computing_structure_solution D\n_computing_data_reduction C\n"
                                  "_computing_cell_refinement B\n_computing_data_collection A\n",
                           "-htmPX"),
                HasSubstr(expected));
    EXPECT_THAT(article_of(head + "_computing.publication_material G.\n"
                                  "_computing.molecular_graphics F\n"
                                  "_computing.structure_refinement E\n"
                                  "_computing.structure_solution D\n_computing.diffrn_reduction C\n"
                                  "_computing.cell_refinement B\n_computing.diffrn_collection A\n",
                           "-htmPX"),
                HasSubstr(expected));
}

} // namespace
} // namespace quillet
