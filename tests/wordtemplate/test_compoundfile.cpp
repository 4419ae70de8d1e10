#include "wordtemplate/compoundfile.h"

#include "compoundreader.h"

#include <gtest/gtest.h>

namespace
{

using wordtemplate::CompoundEntry;
using wordtemplate::writeCompoundFile;

TEST(CompoundFile, HoldsStreamsOfAllSizesInStorages)
{
    std::vector<CompoundEntry> streams;
    std::map<QString, QByteArray> expected;
    for (const int size : {0, 1, 63, 64, 65, 511, 512, 4095, 4096, 4097, 70000}) {
        const QString name = QStringLiteral("stream%1").arg(size);
        const QByteArray content(size, static_cast<char>('a' + size % 26));
        streams.push_back(CompoundEntry::stream(name, content));
        expected["folder/" + name] = content;
    }
    expected["top"] = "text";
    const QByteArray file =
        writeCompoundFile({CompoundEntry::storage(QStringLiteral("folder"), streams),
                           CompoundEntry::stream(QStringLiteral("top"), "text")});
    EXPECT_EQ(CompoundReader(file).streams(), expected);
}

// The search in a directory goes by length first, then by upper-case letters.
TEST(CompoundFile, SortsEntriesAsReadersSearchThem)
{
    const QByteArray file = writeCompoundFile({
        CompoundEntry::stream(QStringLiteral("bb"), "2"),
        CompoundEntry::stream(QStringLiteral("C"), "1"),
        CompoundEntry::stream(QStringLiteral("aaa"), "3"),
    });
    // The middle one of three is the root of the tree, its neighbours left and right of it.
    const int directory = 512 * (1 + qFromLittleEndian<int>(file.constData() + 48));
    EXPECT_EQ(file.mid(directory + 128, 4), QByteArray("b\0b\0", 4));
    EXPECT_EQ(file.mid(directory + 256, 2), QByteArray("C\0", 2));
    EXPECT_EQ(file.mid(directory + 384, 4), QByteArray("a\0a\0", 4));
}

TEST(CompoundFile, MayBeEmpty)
{
    EXPECT_TRUE(CompoundReader(writeCompoundFile({})).streams().empty());
}

} // namespace
