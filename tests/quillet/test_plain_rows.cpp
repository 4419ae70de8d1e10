#include "quillet/plain_rows.h"

#include "quillet/unicode.h"
#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::document_of;
using testing::ElementsAre;

// The values of one row and what is left of the text; no values if there is no plain row.
struct Result {
    std::vector<std::string_view> values;
    std::string_view rest;
};

Result read_row(std::string_view text, std::size_t size)
{
    const char* at = text.data();
    std::vector<std::string_view> row(size);
    const bool is_plain = read_plain_row(at, text.data() + text.size(), row);
    if (!is_plain)
        row.clear();
    return {row, text.substr(static_cast<std::size_t>(at - text.data()))};
}

TEST(PlainRows, ValuesBetweenBlanksAndLineEnds)
{
    const Result result = read_row(" ATOM 1\tC\n -1.5(2) ? . next\n", 6);
    EXPECT_THAT(result.values, ElementsAre("ATOM", "1", "C", "-1.5(2)", "?", "."));
    EXPECT_EQ(result.rest, " next\n");
}

TEST(PlainRows, QuotedValuesOfOneLine)
{
    EXPECT_THAT(read_row("\"O5'\" 'a b' 'it's' ''\n", 4).values,
                ElementsAre("O5'", "a b", "it's", ""));
    EXPECT_THAT(read_row("'not\nclosed' ", 1).values, ElementsAre());
    EXPECT_THAT(read_row("'not closed", 1).values, ElementsAre());
    EXPECT_THAT(read_row("'closed'", 1).values, ElementsAre());
    EXPECT_THAT(read_row("'closed'#", 1).values, ElementsAre());
}

TEST(PlainRows, WhatTheGrammarMustDecideIsNotPlain)
{
    for (const char* text :
         {"_tag x", "loop_ x", "data_a x", "stop_ x", "save_ x", "#c\nx", "$f x", ";\ntext\n;\n",
          "[a] x", "{a} x", "a_b x", "a\"b x", "a#b x", "", " ", "cut", "\xC3\xA9 x", "\x01 x"}) {
        const Result result = read_row(text, 1);
        EXPECT_THAT(result.values, ElementsAre()) << text;
        EXPECT_EQ(result.rest, text);
    }
}

// Whether a loop is plain must make no difference to anything but the time.
TEST(PlainRows, AreReadAsTheGrammarReads)
{
    const std::string head = "data_x\nloop_\n_atom_site.id\n_atom_site.type_symbol\n"
                             "_atom_site.label_atom_id\n_atom_site.label_entity_id\n"
                             "_atom_site.B_iso_or_equiv\n_atom_site.Cartn_x\n";
    std::string plain;
    std::string marked; // each row with something that is not plain
    for (int i = 1; i <= 20000; ++i) {
        const std::string number = std::to_string(i);
        const std::string b = std::to_string(i % 90) + ".25";
        const std::string element = i % 7 == 0 ? "H" : "C";
        const std::string entity = std::to_string(1 + i / 8000);
        plain += number + " " + element + " \"C5'\" " + entity + (i % 3 == 0 ? "\n" : " ") + b +
                 " 1.5\n";
        marked +=
            number + " '" + element + "'# comment\n\"C5'\" " + entity + "\n;" + b + "\n;\n1.5\n";
    }
    const Document a = document_of(head + plain + "_cell.length_a 5\n");
    const Document b = document_of(head + marked + "_cell.length_a 5\n");
    for (const Document* document : {&a, &b}) {
        const Block& block = document->blocks.front();
        EXPECT_EQ(block.count("_atom_site.id"), 20000U);
        EXPECT_EQ(block.count("_atom_site.Cartn_x"), 20000U);
        EXPECT_TRUE(block.find("_atom_site.id")->values.empty());
        EXPECT_EQ(block.item("_cell.length_a").text, "5");
        EXPECT_EQ(block.atom_totals().of_all().atoms, 20000U - 20000U / 7);
    }
    for (const char* entity : {"1", "2", "3"}) {
        const AtomTotal of_a = a.blocks.front().atom_totals().of_entity(entity);
        const AtomTotal of_b = b.blocks.front().atom_totals().of_entity(entity);
        EXPECT_GT(of_a.atoms, 0U);
        EXPECT_EQ(of_a.atoms, of_b.atoms);
        EXPECT_EQ(of_a.b_sum, of_b.b_sum);
    }
    EXPECT_EQ(a.blocks.front().find("_cell.length_a")->where.line, 9U + 20000U + 20000U / 3);
}

std::string error_of(const std::string& text)
{
    try {
        document_of(text);
    } catch (const InputError& error) {
        return format_position(error.where()) + ": " + error.what();
    }
    return "";
}

TEST(PlainRows, ErrorsBehindThemHaveTheirPlace)
{
    std::string text = "data_x\nloop_\n_refln.index_h\n_refln.index_k\n";
    for (int i = 0; i < 50000; ++i)
        text += "1 " + std::to_string(i) + "\n";
    EXPECT_EQ(error_of(text), "");
    EXPECT_EQ(error_of(text + "7\n_cell.length_a 5\n"),
              "line 2, column 1: this loop_ has 2 data names and 100001 values: its last row is "
              "incomplete");
    EXPECT_EQ(error_of(text + "8 'open\n"),
              "line 50005, column 3: this quotation mark is not closed in its line");
    EXPECT_EQ(error_of(text + "8 9\n global_\n"),
              "line 50006, column 2: global_ is not allowed in a CIF");
}

} // namespace
} // namespace quillet
