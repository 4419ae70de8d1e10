// Files as a whole.
#pragma once

#include <memory>
#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace wordbridge
{

// The content of a file. Throws Error if it cannot be read.
QByteArray readFile(const QString& path);

// Writes a file, making the folders that it stands in. Throws Error if it cannot be written.
void writeFile(const QString& path, const QByteArray& content);

// A new folder that only the user can read, removed with the object. Throws Error if there can be
// none.
std::unique_ptr<QTemporaryDir> makeWorkFolder();

} // namespace wordbridge
