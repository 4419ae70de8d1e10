#include "wordtemplate/vbacompression.h"

#include "wordbridge/error.h"

#include <gtest/gtest.h>

namespace
{

using wordtemplate::compressVba;
using wordtemplate::decompressVba;

// The examples of [MS-OVBA] 3.2.
TEST(VbaCompression, ReadsTheExamplesOfTheFormat)
{
    EXPECT_EQ(decompressVba(QByteArray::fromHex("0119B000616263646566676800696A6B6C6D6E6F7000"
                                                "7172737475762E")),
              "abcdefghijklmnopqrstuv.");
    EXPECT_EQ(decompressVba(QByteArray::fromHex(
                  "012FB000236161616263646582660070616768696A013808616B6C00306D6E6F7006710270041"
                  "07273747576107778797A003C")),
              "#aaabcdefaaaaghijaaaaaklaaamnopqaaaaaaaaaaaarstuvwxyzaaa");
    EXPECT_EQ(decompressVba(QByteArray::fromHex("0103B002614500")), QByteArray(73, 'a'));
}

TEST(VbaCompression, WritesTheSameBytesAsTheExamples)
{
    EXPECT_EQ(compressVba("abcdefghijklmnopqrstuv.").toHex().toUpper(),
              "0119B000616263646566676800696A6B6C6D6E6F7000"
              "7172737475762E");
    EXPECT_EQ(compressVba(QByteArray(73, 'a')).toHex().toUpper(), "0103B002614500");
}

class RoundTrip : public testing::TestWithParam<int>
{
};

// Sizes around the chunk size, texts that compress well, badly and not at all.
TEST_P(RoundTrip, GivesTheTextBack)
{
    const int size = GetParam();
    QByteArray text;
    QByteArray noise;
    unsigned state = 1;
    for (int i = 0; i < size; ++i) {
        text += "Selection.TypeText value "[i % 25];
        state = state * 1664525U + 1013904223U;
        noise += static_cast<char>(state >> 24);
    }
    EXPECT_EQ(decompressVba(compressVba(text)), text);
    EXPECT_EQ(decompressVba(compressVba(QByteArray(size, 'x'))), QByteArray(size, 'x'));
    if (size % 4096 ==
        0) { // a chunk that cannot be compressed is padded, so only whole ones come back
        EXPECT_EQ(decompressVba(compressVba(noise)), noise);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, RoundTrip,
                         testing::Values(0, 1, 2, 3, 8, 15, 16, 17, 64, 4095, 4096, 4097, 8192,
                                         20000));

// Some virus scanners lose their place after a chunk that ends on a full group of eight tokens.
TEST(VbaCompression, LeavesTheLastGroupOfAChunkUnfilled)
{
    for (int size = 1; size < 400; ++size) {
        QByteArray text;
        for (int i = 0; text.size() < size; ++i)
            text += "Dim a" + QByteArray::number(i % 7) + " As Long\r\n";
        text.truncate(size);
        const QByteArray container = compressVba(text);
        ASSERT_EQ(decompressVba(container), text);
        int tokens = 0;
        bool copies = false;
        for (int at = 3; at < container.size();) {
            const int flags = static_cast<unsigned char>(container[at++]);
            for (int bit = 0; bit < 8 && at < container.size(); ++bit, ++tokens) {
                copies |= (flags >> bit & 1) != 0;
                at += (flags >> bit & 1) != 0 ? 2 : 1;
            }
        }
        if (copies) {
            EXPECT_NE(tokens % 8, 0) << size;
        }
    }
}

TEST(VbaCompression, RefusesDamagedContainers)
{
    EXPECT_THROW(decompressVba(""), wordbridge::Error);
    EXPECT_THROW(decompressVba("\x02"), wordbridge::Error);
    EXPECT_THROW(decompressVba(QByteArray::fromHex("0119B00061")), wordbridge::Error);
    EXPECT_THROW(decompressVba(QByteArray::fromHex("0103B001FFFF00")), wordbridge::Error);
}

} // namespace
