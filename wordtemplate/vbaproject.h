// VBA projects: what Word keeps in a part called vbaProject.bin, [MS-OVBA].
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

namespace wordtemplate
{

struct VbaModule {
    QString name;
    QByteArray source; // ASCII, any line ends; begins with the line Attribute VB_Name = "<name>"
    bool isDocument = false; // the module of the document itself rather than a standard module
};

// Reads the module from the text of a .bas or .cls file. Throws wordbridge::Error if the text is
// not ASCII or does not begin with its Attribute line.
VbaModule readVbaModule(const QByteArray& text, bool isDocument);

// Returns the bytes of vbaProject.bin: the source of the modules alone, without compiled code, so
// that Word compiles it when it opens the template. The bytes depend on the arguments alone.
QByteArray writeVbaProject(const QString& name, const std::vector<VbaModule>& modules);

} // namespace wordtemplate
