#include "quillet/text_source.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::TemporaryFile;
using test::texts_of;
using testing::ElementsAre;
using testing::HasSubstr;

std::string converted(std::string_view bytes, Notes* notes = nullptr)
{
    const TemporaryFile file(bytes);
    TextSource source(file.path());
    std::string text;
    char buffer[7]; // small, so that every character meets the end of a buffer
    while (const std::size_t count = source.read(buffer, sizeof buffer))
        text.append(buffer, count);
    EXPECT_LE(text.size(), source.size_limit());
    if (notes)
        source.report_repairs(*notes);
    return text;
}

TEST(TextSource, CleanTextPassesWithoutNotes)
{
    Notes notes;
    EXPECT_EQ(converted("data_x\n_a '\xC3\xA9\t'\n", &notes), "data_x\n_a '\u00E9\t'\n");
    EXPECT_EQ(converted("data_x\r\n_a 1\r\n", &notes), "data_x\n_a 1\n");
    EXPECT_TRUE(notes.empty());
}

TEST(TextSource, ByteOrderMarkIsLeftOut)
{
    Notes notes;
    EXPECT_EQ(converted("\xEF\xBB\xBF"
                        "data_x\n",
                        &notes),
              "data_x\n");
    EXPECT_THAT(texts_of(notes), ElementsAre(HasSubstr("byte-order mark")));
}

TEST(TextSource, CarriageReturnsAloneEndLines)
{
    Notes notes;
    EXPECT_EQ(converted("data_x\r_a 1\r\r_b 2\r", &notes), "data_x\n_a 1\n\n_b 2\n");
    EXPECT_THAT(texts_of(notes), ElementsAre(HasSubstr("carriage return alone")));
}

TEST(TextSource, MixedLineEndsAreReportedWhereTheyChange)
{
    Notes notes;
    EXPECT_EQ(converted("a\r\nb\r\nc\nd\re", &notes), "a\nb\nc\nd\ne");
    ASSERT_EQ(notes.all().size(), 1U);
    EXPECT_EQ(notes.all().front().where.line, 3U);
}

TEST(TextSource, BytesThatAreNotUtf8AreWindows1252)
{
    Notes notes;
    EXPECT_EQ(converted("x\n_a 'Carb\xF3 \x80\x93 \xC3\xA9'\n", &notes),
              "x\n_a 'Carb\u00F3 \u20AC\u201C \u00E9'\n");
    ASSERT_EQ(notes.all().size(), 1U);
    EXPECT_THAT(notes.all().front().text, HasSubstr("3 bytes"));
    EXPECT_EQ(notes.all().front().where.line, 2U);
    EXPECT_EQ(notes.all().front().where.column, 9U);
}

TEST(TextSource, NulBytesAreLeftOut)
{
    Notes notes;
    EXPECT_EQ(converted(std::string_view("data_x\n_a 1\0002\n", 14), &notes), "data_x\n_a 12\n");
    EXPECT_THAT(texts_of(notes), ElementsAre(HasSubstr("NUL")));
}

TEST(TextSource, OtherControlCharactersBecomeBlanks)
{
    Notes notes;
    EXPECT_EQ(converted("_a 1\x1A\n\x0C", &notes), "_a 1 \n ");
    EXPECT_THAT(texts_of(notes), ElementsAre(HasSubstr("2 control characters")));
}

std::string utf16(std::u16string_view text, bool little, bool with_mark)
{
    std::string bytes;
    const auto add = [&](unsigned unit) {
        const char low = static_cast<char>(unit & 0xFFU);
        const char high = static_cast<char>(unit >> 8U);
        bytes += little ? low : high;
        bytes += little ? high : low;
    };
    if (with_mark)
        add(0xFEFF);
    for (const char16_t unit : text)
        add(unit);
    return bytes;
}

TEST(TextSource, Utf16IsDecodedInBothByteOrders)
{
    const std::u16string_view text = u"data_x\r\n_a '\u00E9 \U0001D400'\r\n";
    for (const bool little : {true, false}) {
        for (const bool with_mark : {true, false}) {
            Notes notes;
            EXPECT_EQ(converted(utf16(text, little, with_mark), &notes),
                      "data_x\n_a '\u00E9 \U0001D400'\n");
            EXPECT_THAT(texts_of(notes), ElementsAre(HasSubstr("UTF-16")));
        }
    }
}

TEST(TextSource, HalfAUtf16PairIsReported)
{
    Notes notes;
    EXPECT_EQ(converted(utf16({u"ab\xD835", 3}, true, true), &notes), "ab\uFFFD");
    EXPECT_THAT(texts_of(notes), testing::Contains(HasSubstr("Half of a UTF-16")));
}

TEST(TextSource, CharactersAcrossPiecesStayWhole)
{
    // Pieces are 64 KiB; the euro sign and the CR LF straddle their borders.
    const std::string first((1U << 16U) - 1, 'x');
    EXPECT_EQ(converted(first + "\u20AC"), first + "\u20AC");
    EXPECT_EQ(converted(first + "\r\ny"), first + "\ny");
}

// Long runs that need no repair are passed on as they are; repairs begin and end anywhere.
TEST(TextSource, RepairsBetweenLongCleanRuns)
{
    const std::string clean_line(79, 'x');
    std::string bytes;
    std::string expected;
    for (int line = 1; line <= 6000; ++line) {
        bytes += clean_line;
        expected += clean_line;
        if (line % 1501 == 0) {
            bytes += "\xE9\xC3\xA9\r\n";
            expected += "\u00E9\u00E9\n";
        } else if (line % 1999 == 0) {
            bytes += std::string("\0\r", 2);
            expected += '\n';
        } else {
            bytes += '\n';
            expected += '\n';
        }
    }
    Notes notes;
    EXPECT_EQ(converted(bytes, &notes), expected);
    const TemporaryFile file(bytes);
    TextSource source(file.path());
    std::string text(expected.size(), '\0');
    std::size_t size = 0;
    while (const std::size_t count = source.read(text.data() + size, text.size() - size))
        size += count;
    EXPECT_EQ(text, expected);
    ASSERT_EQ(notes.all().size(), 3U);
    EXPECT_EQ(format_position(notes.all()[0].where), "line 1501, column 84"); // line ends
    EXPECT_EQ(format_position(notes.all()[1].where), "line 1501, column 80"); // not UTF-8
    EXPECT_EQ(format_position(notes.all()[2].where), "line 1999, column 80"); // NUL
}

TEST(TextSource, FilesThatCannotBeReadAreErrors)
{
    EXPECT_THROW(TextSource("/nonexistent/file.cif"), InputError);
    EXPECT_THROW(TextSource("/tmp"), InputError);
}

TEST(TextSource, LinesAreFoundByNumber)
{
    const TemporaryFile file("one\r\ntwo\r\n\r\nfour");
    const auto lines = read_lines_of(file.path(), {2, 4, 9});
    EXPECT_EQ(lines.at(2), "two");
    EXPECT_EQ(lines.at(4), "four");
    EXPECT_EQ(lines.count(9), 0U);
}

TEST(TextSource, ColumnsForPeopleCountCharacters)
{
    EXPECT_EQ(column_in_characters("\u00E9\u00E9x", 5), 3U);
    EXPECT_EQ(column_in_characters("abc", 9), 9U);
}

} // namespace
} // namespace quillet
