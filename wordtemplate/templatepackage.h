// The Word template as a package: its readable parts and its macros put together.
#pragma once

#include "wordbridge/package.h"

#include <QString>

namespace wordtemplate
{

// Puts the template together from
//   partsFolder   the XML parts, laid out as inside the package
//   macrosFolder  the VBA modules: ThisDocument.cls and any number of .bas files
// Comments and the white space between elements are left out of the parts. The package depends on
// the content of the files alone. Throws wordbridge::Error if a file is missing or is not
// well-formed.
wordbridge::Package buildTemplate(const QString& partsFolder, const QString& macrosFolder);

} // namespace wordtemplate
