#include "wordbridge/package.h"

#include "wordbridge/error.h"

#include <algorithm>
#include <memory>
#include <QFile>
#include <QStringList>
#include <zip.h>

namespace wordbridge
{

namespace
{

struct DiscardArchive {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, DiscardArchive>;

struct CloseEntry {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};

Archive openArchive(const QString& path, int flags, const QString& complaint)
{
    int code = 0;
    Archive archive(zip_open(QFile::encodeName(path).constData(), flags, &code));
    if (archive == nullptr) {
        zip_error_t error;
        zip_error_init_with_code(&error, code);
        const QString reason = QString::fromUtf8(zip_error_strerror(&error));
        zip_error_fini(&error);
        throw Error(complaint.arg(path, reason));
    }
    return archive;
}

QByteArray readEntry(zip_t* archive, zip_uint64_t index, const zip_stat_t& entry,
                     const QString& path)
{
    const auto damaged = [&path, &entry] {
        return Error(QStringLiteral("%1 is damaged: its part %2 cannot be read")
                         .arg(path, QString::fromUtf8(entry.name)));
    };
    const std::unique_ptr<zip_file_t, CloseEntry> file(zip_fopen_index(archive, index, 0));
    if (file == nullptr)
        throw damaged();

    // Read to the end rather than for the stated size: that is what compares the checksum, and a
    // damaged size must not decide how much memory is asked for.
    QByteArray content;
    char buffer[64 * 1024];
    zip_int64_t count = 0;
    while ((count = zip_fread(file.get(), buffer, sizeof buffer)) > 0)
        content.append(buffer, static_cast<int>(count));
    if (count < 0)
        throw damaged();
    return content;
}

void addEntry(zip_t* archive, const Part& part, const QString& path)
{
    // The content outlives the archive's closing, so the archive need not copy it.
    zip_source_t* source = zip_source_buffer(archive, part.content.constData(),
                                             static_cast<zip_uint64_t>(part.content.size()), 0);
    const zip_int64_t index =
        zip_file_add(archive, part.name.toUtf8().constData(), source, ZIP_FL_ENC_GUESS);
    if (index < 0) {
        zip_source_free(source);
        throw Error(QStringLiteral("cannot write %1: %2")
                        .arg(path, QString::fromUtf8(zip_strerror(archive))));
    }
    const auto entry = static_cast<zip_uint64_t>(index);
    const bool stored = part.name == QLatin1String("mimetype");
    zip_set_file_compression(archive, entry, stored ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
    zip_file_set_dostime(archive, entry, 0, (1 << 5) | 1, 0); // 1980-01-01 00:00
}

} // namespace

Package Package::read(const QString& path)
{
    const Archive archive = openArchive(path, ZIP_RDONLY | ZIP_CHECKCONS,
                                        QStringLiteral("%1 is not a readable document: %2"));
    Package package;
    const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
    for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
        zip_stat_t entry;
        if (zip_stat_index(archive.get(), i, 0, &entry) != 0)
            throw Error(QStringLiteral("%1 is damaged").arg(path));
        const QString name = QString::fromUtf8(entry.name);
        if (!name.endsWith(QLatin1Char('/')))
            package.m_parts.push_back({name, readEntry(archive.get(), i, entry, path)});
    }
    return package;
}

void Package::write(const QString& path) const
{
    const QString complaint = QStringLiteral("cannot write %1: %2");
    Archive archive = openArchive(path, ZIP_CREATE | ZIP_TRUNCATE, complaint);
    for (const Part& part : m_parts)
        addEntry(archive.get(), part, path);
    if (zip_close(archive.get()) != 0)
        throw Error(complaint.arg(path, QString::fromUtf8(zip_strerror(archive.get()))));
    static_cast<void>(archive.release()); // closed, and with that freed
}

QStringList Package::names() const
{
    QStringList names;
    for (const Part& part : m_parts)
        names.push_back(part.name);
    return names;
}

const QByteArray* Package::find(const QString& name) const
{
    const auto part = std::find_if(m_parts.cbegin(), m_parts.cend(),
                                   [&](const Part& candidate) { return candidate.name == name; });
    return part == m_parts.cend() ? nullptr : &part->content;
}

void Package::set(const QString& name, const QByteArray& content)
{
    for (Part& part : m_parts) {
        if (part.name == name) {
            part.content = content;
            return;
        }
    }
    m_parts.push_back({name, content});
}

} // namespace wordbridge
