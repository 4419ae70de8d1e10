// Compound files: the small file systems in one file that VBA projects are stored in, [MS-CFB]
// version 3.
#pragma once

#include <memory>
#include <QByteArray>
#include <QString>
#include <vector>

namespace wordtemplate
{

// A storage (folder) or a stream (file) of a compound file.
struct CompoundEntry {
    QString name;                        // at most 31 characters
    QByteArray content;                  // of a stream
    std::vector<CompoundEntry> children; // of a storage
    bool isStorage = false;

    static CompoundEntry stream(const QString& name, const QByteArray& content);
    static CompoundEntry storage(const QString& name, std::vector<CompoundEntry> children);
};

// Returns a compound file with `entries` below its root. The bytes depend on the entries alone: all
// time stamps are left out. Small enough for what stands in a template, not made for megabytes:
// throws wordbridge::Error when the sectors no longer fit into the table in the header (6.8 MB).
QByteArray writeCompoundFile(const std::vector<CompoundEntry>& entries);

} // namespace wordtemplate
