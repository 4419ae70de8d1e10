#include "quillet/read_cif.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::document_of;
using test::TemporaryFile;
using test::texts_of;
using testing::Contains;
using testing::HasSubstr;

struct Refusal {
    std::string message;
    Position where;
};

Refusal refusal_of(std::string_view text)
{
    try {
        document_of(text);
    } catch (const InputError& error) {
        return {error.what(), error.where()};
    }
    return {"accepted", {}};
}

void expect_refused(std::string_view text, std::uint32_t line, std::uint32_t column,
                    const std::string& part_of_message)
{
    const Refusal refusal = refusal_of(text);
    EXPECT_THAT(refusal.message, HasSubstr(part_of_message));
    EXPECT_EQ(refusal.where.line, line) << refusal.message;
    EXPECT_EQ(refusal.where.column, column) << refusal.message;
}

TEST(ReadCif, ValuesKnowTheirPlace)
{
    const Document document = document_of("data_I\n_cell_length_a 7.1\nloop_\n_atom_site_label\n"
                                          "_atom_site_fract_x\nC1 0.1\n O2 'a b'\n");
    ASSERT_EQ(document.blocks.size(), 1U);
    const Block& block = document.blocks.front();
    EXPECT_EQ(block.name(), "I");
    EXPECT_EQ(block.item("_cell_length_a").where().line, 2U);
    EXPECT_EQ(block.item("_cell_length_a").where().column, 16U);
    const Rows rows = block.rows("_atom_site_label");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows.item(1, "_atom_site_fract_x").text, "a b");
    EXPECT_EQ(rows.item(1, "_atom_site_label").where().line, 7U);
    EXPECT_EQ(rows.item(1, "_atom_site_label").where().column, 2U);
}

TEST(ReadCif, TextFieldsAreDecoded)
{
    const Document document =
        document_of("data_I\n_publ_section_title\n;\\\nA folded \\\ntitle\n;\n");
    EXPECT_EQ(document.blocks.front().item("_publ_section_title").text, "A folded title");
}

TEST(ReadCif, ReflectionsAreCountedNotKept)
{
    const Document document = document_of("data_I\n_cell_length_a 7\nloop_\n_refln_index_h\n"
                                          "_refln_index_k\n1 2\n3 4\n5 6\n_shelx_hkl_file\n;\n"
                                          " 1 2 3 <x>\n;\n");
    const Block& block = document.blocks.front();
    EXPECT_EQ(block.count("_refln_index_h"), 3U);
    EXPECT_FALSE(block.item("_refln_index_h").is_given());
    EXPECT_EQ(block.count("_shelx_hkl_file"), 1U);
    EXPECT_FALSE(block.item("_shelx_hkl_file").is_given());
}

TEST(ReadCif, CoordinatesOfMacromoleculesAreCountedNotKept)
{
    const Document document = document_of("data_x\nloop_\n_atom_site.id\n_atom_site.Cartn_x\n"
                                          "1 0.5\n2 0.6\n");
    EXPECT_EQ(document.blocks.front().count("_atom_site.id"), 2U);
    EXPECT_FALSE(document.blocks.front().item("_atom_site.id").is_given());
}

TEST(ReadCif, SaveFramesAreReportedAndSkipped)
{
    Notes notes;
    const Document document = document_of(
        "data_x\nsave_f\n_cell_length_a 1\nloop_\n_cell_length_b 1 2\nsave_\n_cell_length_a 2\n",
        &notes);
    EXPECT_EQ(document.blocks.front().item("_cell_length_a").text, "2");
    EXPECT_EQ(document.blocks.front().columns().size(), 1U);
    EXPECT_THAT(texts_of(notes), Contains(HasSubstr("save frame")));
}

TEST(ReadCif, DuplicateNamesAreReportedAndTheUsableValueIsTaken)
{
    Notes notes;
    const Document document = document_of(
        "data_x\n_cell_length_a ?\n_cell.length_a 5\n_cell_length_b 1\n_cell_length_b 2\n", &notes);
    EXPECT_EQ(document.blocks.front().item("_cell_length_a").text, "5");
    EXPECT_EQ(document.blocks.front().item("_cell_length_b").text, "1");
    EXPECT_EQ(notes.all().size(), 2U);
    EXPECT_EQ(notes.all().back().where.line, 5U);
}

TEST(ReadCif, ManyDuplicateNamesAreReportedTogether)
{
    const std::string form =
        "_cell_length_a ?\n_cell_length_b ?\n_cell_length_c ?\n_cell_volume ?\n";
    const std::string values =
        "_cell_volume 4\n_cell_length_a 1\n_cell_length_b 2\n_cell_length_c 3\n";
    Notes notes;
    const Document document = document_of("data_x\n" + form + values, &notes);
    EXPECT_EQ(document.blocks.front().item("_cell_volume").text, "4");
    ASSERT_EQ(notes.all().size(), 1U);
    EXPECT_EQ(notes.all().front().where.line, 6U);
    EXPECT_THAT(notes.all().front().text,
                HasSubstr("4 data names stand twice in data_x; of each the first value that is not "
                          "\u201c?\u201d is used: _cell_volume (lines 5 and 6), _cell_length_a "
                          "(lines 2 and 7), "));
}

TEST(ReadCif, BlocksOfTheSameNameAreReported)
{
    Notes notes;
    document_of("data_x\n_a 1\ndata_X\n_a 2\n", &notes);
    EXPECT_THAT(texts_of(notes), Contains(HasSubstr("another block")));
}

TEST(ReadCif, LoopWithoutValuesIsReported)
{
    Notes notes;
    document_of("data_x\nloop_\n_a\n_b\ndata_y\n_a 1\n", &notes);
    EXPECT_THAT(texts_of(notes), Contains(HasSubstr("no values")));
}

TEST(ReadCif, BrokenSyntaxIsRefusedWithItsPlace)
{
    expect_refused("", 0, 0, "holds no data");
    expect_refused("# nothing\n\n", 0, 0, "holds no data");
    expect_refused("_cell_length_a 1\n", 1, 1, "block header");
    expect_refused("data_x\n_cell_length_a\n_b 1\n", 2, 1, "_cell_length_a has no value");
    expect_refused("data_x\n_a 'R 3' ccc\n", 2, 10, "ccc");
    expect_refused("data_x\n_a 'not closed\n_b 1\n", 2, 4, "not closed in its line");
    expect_refused("data_x\n_a \"x\n", 2, 4, "not closed in its line");
    expect_refused("data_x\n_a\n;text\nno end\n", 3, 1, "text field is not closed");
    expect_refused("data_x\nloop_\n_a\n_b\n1 2 3\n", 2, 1, "2 data names and 3 values");
    expect_refused("data_x\n_a 1 2\n", 2, 6, "data name");
    expect_refused("data_x\n_a Notkestra\u00DFe\n", 2, 13, "outside ASCII");
    expect_refused("data_x\nglobal_\n_a 1\n", 2, 1, "global_");
    expect_refused("data_x\nsave_\n", 2, 6, "without a name");
}

TEST(ReadCif, ValueThatFillsMoreThanOneBufferIsRead)
{
    const std::string line(70, 'x');
    std::string text = "data_x\n_publ_section_comment\n;\n";
    while (text.size() < 400000)
        text += line + "\n";
    const Document document = document_of(text + ";\n_cell_length_a 3\n");
    EXPECT_GT(document.blocks.front().item("_publ_section_comment").text.size(), 399000U);
    EXPECT_EQ(document.blocks.front().item("_cell_length_a").text, "3");
}

std::string value_of(std::string_view cif, std::string_view tag)
{
    return std::string(document_of(cif).blocks.front().item(tag).text);
}

TEST(ReadCif2, StringsListsAndTables)
{
    const std::string cif = R"~(#\#CIF_2.0
data_Über
_cell_length_a 7
_publ_a """two
lines"""
_publ_b '''it's nice'''
_publ_c [1 [2 'x ]'] ]
_publ_d { 'k':1 "l":[2] }
_publ_e Notkestraße
_publ_f ''
loop_
_publ_g
[1 2]
{}
'z'
)~";
    const Document document = document_of(cif);
    const Block& block = document.blocks.front();
    EXPECT_EQ(block.name(), "Über");
    EXPECT_EQ(block.item("_publ_a").text, "two\nlines");
    EXPECT_EQ(block.item("_publ_b").text, "it's nice");
    EXPECT_EQ(block.item("_publ_c").text, "[1 [2 'x ]'] ]");
    EXPECT_EQ(block.item("_publ_d").text, "{ 'k':1 \"l\":[2] }");
    EXPECT_EQ(block.item("_publ_e").text, "Notkestraße");
    EXPECT_EQ(block.item("_publ_f").state, State::unknown);
    EXPECT_EQ(block.count("_publ_g"), 3U);
}

TEST(ReadCif2, MagicCodeMayFollowAByteOrderMark)
{
    EXPECT_EQ(value_of("\xEF\xBB\xBF#\\#CIF_2.0\ndata_x\n_cell_length_a \"\"\"7\"\"\"\n",
                       "_cell_length_a"),
              "7");
}

TEST(ReadCif2, BrokenSyntaxIsRefusedWithItsPlace)
{
    const std::string head = "#\\#CIF_2.0\ndata_x\n";
    expect_refused(head + "_a [1 2\n", 4, 1, "file ends");
    expect_refused(head + "_a {'k' 1}\n", 3, 8, "colon");
    expect_refused(head + "_a \"\"\"x\ny\n", 3, 4, "three quotation marks");
    expect_refused(head + "_a 'x\n", 3, 4, "not closed in its line");
    expect_refused(head + "_a 'it's'\n", 3, 8, "s'");
    expect_refused(head + "_a\n_b 1\n", 3, 1, "_a has no value");
    expect_refused(head + "_a " + std::string(200, '[') + "\n", 3, 104, "nested too deeply");
    expect_refused("#\\#CIF_2.0\n", 0, 0, "holds no data");
}

TEST(RecogniseKind, FollowsTheDataNames)
{
    EXPECT_EQ(document_of("data_x\n_cell_length_a 1\n").kind, Kind::core);
    EXPECT_EQ(document_of("data_x\n_cell.length_a 1\n").kind, Kind::core);
    EXPECT_EQ(document_of("data_x\n_publ_section_title x\n").kind, Kind::core);
    EXPECT_EQ(document_of("data_x\n_entry.id 1ABC\n_cell.length_a 1\n").kind, Kind::macromolecular);
    EXPECT_EQ(document_of("data_x\n_audit_conform.dict_name mmcif_pdbx.dic\n").kind,
              Kind::macromolecular);
    EXPECT_EQ(document_of("data_x\n_entity.id 1\ndata_y\n_sas_scan.id 1\n").kind, Kind::scattering);
    EXPECT_EQ(document_of("data_x\n_something_else 1\n").kind, Kind::unrecognised);
}

} // namespace
} // namespace quillet
