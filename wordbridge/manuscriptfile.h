// Where manuscripts are kept and what they are called.
#pragma once

#include <QString>

namespace wordbridge
{

// The base name for the manuscript of an article: "Manuscript – NAME", or "Manuscript" if `name` is
// empty. What file systems do not take is replaced, and long names are cut to 180 bytes of UTF-8.
QString manuscriptBaseName(const QString& name);

// Copies `source` to "BASENAME.SUFFIX" in the user's documents folder, which is made if it is
// missing, and returns the new path. A number is added where the name is taken: no file is ever
// replaced, also not by two runs at once. Where the documents folder cannot be written, the home
// folder serves. Throws Error if neither can.
QString keepManuscript(const QString& source, const QString& baseName);

} // namespace wordbridge
