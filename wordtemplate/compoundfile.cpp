#include "wordtemplate/compoundfile.h"

#include "wordbridge/error.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <QtEndian>

namespace wordtemplate
{

namespace
{

constexpr int sectorSize = 512;
constexpr int miniSectorSize = 64;
constexpr int miniStreamCutoff = 4096; // smaller streams go to the mini stream
constexpr int directoryEntrySize = 128;
constexpr std::size_t tableSectorsInHeader = 109;

constexpr std::uint32_t freeSector = 0xFFFFFFFF;
constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
constexpr std::uint32_t tableSector = 0xFFFFFFFD;
constexpr std::uint32_t noEntry = 0xFFFFFFFF;

enum EntryType : char { storageType = 1, streamType = 2, rootType = 5 };
enum Colour : char { red = 0, black = 1 };

template<typename Integer>
void put(QByteArray& bytes, Integer value)
{
    char buffer[sizeof value];
    qToLittleEndian(value, buffer);
    bytes.append(buffer, sizeof value);
}

void pad(QByteArray& bytes, int unit, char with = '\0')
{
    if (const int over = bytes.size() % unit)
        bytes.append(unit - over, with);
}

// A line of the directory, in the words of the file format.
struct DirectoryLine {
    QString name;
    char type = 0;
    char colour = black;
    std::uint32_t left = noEntry;
    std::uint32_t right = noEntry;
    std::uint32_t child = noEntry;
    std::uint32_t start = endOfChain;
    std::uint32_t size = 0;
};

// Sibling order: shorter names first, then by upper-case letters ([MS-CFB] 2.6.4).
bool before(const CompoundEntry* a, const CompoundEntry* b)
{
    if (a->name.size() != b->name.size())
        return a->name.size() < b->name.size();
    return a->name.toUpper() < b->name.toUpper();
}

class Writer
{
public:
    explicit Writer(const std::vector<CompoundEntry>& entries)
    {
        DirectoryLine root;
        root.name = QStringLiteral("Root Entry");
        root.type = rootType;
        m_directory.push_back(root);
        m_directory[0].child = addChildren(entries);
    }

    QByteArray file()
    {
        // The mini stream belongs to the root entry and is itself a stream of whole sectors.
        m_directory[0].size = static_cast<std::uint32_t>(m_miniStream.size());
        if (!m_miniStream.isEmpty())
            m_directory[0].start = addSectors(m_miniStream);
        const auto miniTableSize = m_miniTable.size();
        const std::uint32_t miniTableStart =
            miniTableSize == 0 ? endOfChain : addSectors(tableBytes(m_miniTable));
        const std::uint32_t directoryStart = addSectors(directoryBytes());
        const std::vector<std::uint32_t> tablePlaces = addSectorTable();

        QByteArray header = headerStart();
        put(header, static_cast<std::uint32_t>(tablePlaces.size()));
        put(header, directoryStart);
        put(header, std::uint32_t{0}); // transaction number: not used
        put(header, std::uint32_t{miniStreamCutoff});
        put(header, miniTableStart);
        put(header, sectorsFor(static_cast<int>(miniTableSize * 4)));
        put(header, endOfChain); // no table sectors beyond those in the header
        put(header, std::uint32_t{0});
        for (std::size_t i = 0; i < tableSectorsInHeader; ++i)
            put(header, i < tablePlaces.size() ? tablePlaces[i] : freeSector);
        return header + m_sectors;
    }

private:
    static std::uint32_t sectorsFor(int bytes)
    {
        return static_cast<std::uint32_t>((bytes + sectorSize - 1) / sectorSize);
    }

    static QByteArray headerStart()
    {
        QByteArray header = QByteArray::fromHex("D0CF11E0A1B11AE1");
        header.append(16, '\0');            // class id
        put(header, std::uint16_t{0x3E});   // minor version
        put(header, std::uint16_t{3});      // major version
        put(header, std::uint16_t{0xFFFE}); // little endian
        put(header, std::uint16_t{9});      // sectors of 2^9 bytes
        put(header, std::uint16_t{6});      // mini sectors of 2^6 bytes
        header.append(6, '\0');
        put(header, std::uint32_t{0}); // directory sectors are not counted in version 3
        return header;
    }

    // Appends a chain of sectors and returns its first.
    std::uint32_t addSectors(QByteArray content)
    {
        pad(content, sectorSize);
        const auto first = static_cast<std::uint32_t>(m_table.size());
        chain(m_table, sectorsFor(content.size()));
        m_sectors += content;
        return first;
    }

    static void chain(std::vector<std::uint32_t>& table, std::uint32_t count)
    {
        for (std::uint32_t i = 1; i < count; ++i)
            table.push_back(static_cast<std::uint32_t>(table.size()) + 1);
        table.push_back(endOfChain);
    }

    static QByteArray tableBytes(const std::vector<std::uint32_t>& table)
    {
        QByteArray bytes;
        for (const std::uint32_t next : table)
            put(bytes, next);
        pad(bytes, sectorSize, '\xFF'); // 0xFFFFFFFF: free
        return bytes;
    }

    // The table of all sectors takes sectors itself, which it lists too.
    std::vector<std::uint32_t> addSectorTable()
    {
        const std::size_t others = m_table.size();
        std::size_t count = 0;
        while (count * (sectorSize / 4) < others + count)
            ++count;
        if (count > tableSectorsInHeader)
            throw wordbridge::Error(QStringLiteral("the VBA project is too large"));
        std::vector<std::uint32_t> places;
        for (std::size_t i = 0; i < count; ++i) {
            places.push_back(static_cast<std::uint32_t>(m_table.size()));
            m_table.push_back(tableSector);
        }
        m_sectors += tableBytes(m_table);
        return places;
    }

    void storeContent(DirectoryLine& line, const QByteArray& content)
    {
        line.size = static_cast<std::uint32_t>(content.size());
        if (content.isEmpty())
            return;
        if (content.size() >= miniStreamCutoff) {
            line.start = addSectors(content);
            return;
        }
        line.start = static_cast<std::uint32_t>(m_miniTable.size());
        m_miniStream += content;
        pad(m_miniStream, miniSectorSize);
        chain(m_miniTable,
              static_cast<std::uint32_t>(m_miniStream.size() / miniSectorSize) - line.start);
    }

    std::uint32_t addChildren(const std::vector<CompoundEntry>& entries)
    {
        std::vector<const CompoundEntry*> sorted;
        sorted.reserve(entries.size());
        for (const CompoundEntry& entry : entries)
            sorted.push_back(&entry);
        std::sort(sorted.begin(), sorted.end(), before);

        // Siblings form a red-black tree. Halving a sorted list fills every level but the last;
        // with that last level red and all else black, the rules of such a tree hold.
        int fullLevels = 0;
        while ((std::size_t{2} << fullLevels) - 1 <= sorted.size())
            ++fullLevels;
        return addTree(sorted, 0, sorted.size(), fullLevels);
    }

    std::uint32_t addTree(const std::vector<const CompoundEntry*>& sorted, std::size_t first,
                          std::size_t last, int blackLevels)
    {
        if (first == last)
            return noEntry;
        const std::size_t middle = first + (last - first) / 2;
        const CompoundEntry& entry = *sorted[middle];

        DirectoryLine line;
        line.name = entry.name;
        line.type = entry.isStorage ? storageType : streamType;
        line.colour = blackLevels > 0 ? black : red;
        if (entry.isStorage)
            line.start = 0;
        else
            storeContent(line, entry.content);
        const std::size_t index = m_directory.size();
        m_directory.push_back(line);

        // Not through a reference: the directory grows underneath.
        const std::uint32_t child = entry.isStorage ? addChildren(entry.children) : noEntry;
        const std::uint32_t left = addTree(sorted, first, middle, blackLevels - 1);
        const std::uint32_t right = addTree(sorted, middle + 1, last, blackLevels - 1);
        m_directory[index].child = child;
        m_directory[index].left = left;
        m_directory[index].right = right;
        return static_cast<std::uint32_t>(index);
    }

    QByteArray directoryBytes() const
    {
        QByteArray bytes;
        for (const DirectoryLine& line : m_directory) {
            const int start = bytes.size();
            for (const QChar letter : line.name)
                put(bytes, letter.unicode());
            bytes.append(start + 64 - bytes.size(), '\0');
            put(bytes, static_cast<std::uint16_t>((line.name.size() + 1) * 2));
            bytes.append(line.type);
            bytes.append(line.colour);
            put(bytes, line.left);
            put(bytes, line.right);
            put(bytes, line.child);
            bytes.append(36, '\0'); // class id, state, creation and modification time
            put(bytes, line.start);
            put(bytes, std::uint64_t{line.size});
        }
        while (bytes.size() % sectorSize != 0)
            bytes += unusedLine();
        return bytes;
    }

    static QByteArray unusedLine()
    {
        QByteArray bytes(directoryEntrySize, '\0');
        std::fill(bytes.begin() + 68, bytes.begin() + 80, '\xFF'); // siblings and child: none
        return bytes;
    }

    std::vector<DirectoryLine> m_directory;
    std::vector<std::uint32_t> m_table;     // next sector of each sector
    std::vector<std::uint32_t> m_miniTable; // the same for mini sectors
    QByteArray m_sectors;
    QByteArray m_miniStream;
};

} // namespace

CompoundEntry CompoundEntry::stream(const QString& name, const QByteArray& content)
{
    return {name, content, {}, false};
}

CompoundEntry CompoundEntry::storage(const QString& name, std::vector<CompoundEntry> children)
{
    return {name, {}, std::move(children), true};
}

QByteArray writeCompoundFile(const std::vector<CompoundEntry>& entries)
{
    return Writer(entries).file();
}

} // namespace wordtemplate
