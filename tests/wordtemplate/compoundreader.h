// Reads a compound file by the letter of [MS-CFB], independently of the writer under test.
#pragma once

#include <map>
#include <QByteArray>
#include <QString>
#include <QtEndian>
#include <stdexcept>
#include <vector>

class CompoundReader
{
public:
    explicit CompoundReader(const QByteArray& file) : m_file(file)
    {
        require(file.left(8) == QByteArray::fromHex("D0CF11E0A1B11AE1"), "signature");
        require((file.size() - 512) % 512 == 0, "whole sectors");
        for (quint32 i = 0; i < number(44); ++i)
            append(m_table, sector(number(76 + 4 * static_cast<int>(i))));
        m_directory = chain(number(48));
        append(m_miniTable, chain(number(60)));
        m_miniStream = chain(at(m_directory, 116));
        readSiblings(at(m_directory, 76), QString());
    }

    // Path ("VBA/dir") to content.
    const std::map<QString, QByteArray>& streams() const { return m_streams; }

private:
    static void require(bool condition, const char* what)
    {
        if (!condition)
            throw std::runtime_error(what);
    }

    static quint32 at(const QByteArray& bytes, int offset)
    {
        require(offset + 4 <= bytes.size(), "offset");
        return qFromLittleEndian<quint32>(bytes.constData() + offset);
    }

    quint32 number(int offset) const { return at(m_file, offset); }

    QByteArray sector(quint32 index) const
    {
        const int start = 512 * (static_cast<int>(index) + 1);
        require(start + 512 <= m_file.size(), "sector");
        return m_file.mid(start, 512);
    }

    static void append(std::vector<quint32>& table, const QByteArray& bytes)
    {
        for (int i = 0; i < bytes.size(); i += 4)
            table.push_back(at(bytes, i));
    }

    QByteArray chain(quint32 start) const
    {
        QByteArray content;
        for (quint32 index = start; index != 0xFFFFFFFE; index = m_table.at(index)) {
            require(content.size() <= m_file.size(), "endless chain");
            content += sector(index);
        }
        return content;
    }

    QByteArray miniChain(quint32 start) const
    {
        QByteArray content;
        for (quint32 index = start; index != 0xFFFFFFFE; index = m_miniTable.at(index))
            content += m_miniStream.mid(64 * static_cast<int>(index), 64);
        return content;
    }

    void readSiblings(quint32 index, const QString& folder)
    {
        if (index == 0xFFFFFFFF)
            return;
        const QByteArray line = m_directory.mid(static_cast<int>(index) * 128, 128);
        const int nameBytes = qFromLittleEndian<quint16>(line.constData() + 64);
        QString name;
        for (int i = 0; i < nameBytes - 2; i += 2)
            name.append(QChar(qFromLittleEndian<quint16>(line.constData() + i)));
        const QString path = folder.isEmpty() ? name : folder + '/' + name;
        readSiblings(at(line, 68), folder);
        const int size = static_cast<int>(at(line, 120));
        if (line[66] == 1)
            readSiblings(at(line, 76), path);
        else
            m_streams[path] =
                (size < 4096 ? miniChain(at(line, 116)) : chain(at(line, 116))).left(size);
        readSiblings(at(line, 72), folder);
    }

    QByteArray m_file;
    std::vector<quint32> m_table;
    std::vector<quint32> m_miniTable;
    QByteArray m_directory;
    QByteArray m_miniStream;
    std::map<QString, QByteArray> m_streams;
};
