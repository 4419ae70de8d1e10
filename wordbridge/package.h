// Packages: the zip archives that .docx, .dotm and .odt files are, as lists of parts in memory.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace wordbridge
{

struct Part {
    QString name; // path inside the archive, without a leading slash
    QByteArray content;
};

class Package
{
public:
    // Reads all parts of an archive. Throws Error if it is missing, not an archive or damaged
    // (checksums are compared).
    static Package read(const QString& path);

    // Writes the archive, replacing `path`. The bytes depend on the parts and their order alone:
    // all time stamps are 1980-01-01. A part called "mimetype" is stored uncompressed, as
    // OpenDocument demands. Throws Error if the file cannot be written.
    void write(const QString& path) const;

    const QVector<Part>& parts() const { return m_parts; }
    QStringList names() const;

    // The content of a part, or null if there is none of that name.
    const QByteArray* find(const QString& name) const;

    // Replaces the part of that name, or adds one at the end.
    void set(const QString& name, const QByteArray& content);

private:
    QVector<Part> m_parts;
};

} // namespace wordbridge
