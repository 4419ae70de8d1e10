// What would keep Word from opening a document.
#pragma once

#include "wordbridge/package.h"

#include <QStringList>

namespace wordbridge
{

// Checks a .docx for what is known to make Word refuse it, repair it or ask its user about it;
// returns a sentence for each finding, none for a sound document. Checked are content types;
// relationships, their targets and the references to them; that all XML is well-formed and that
// nothing in the document can run or is fetched from elsewhere; references to styles and
// numberings; order and uniqueness of properties; the shape of tables, fields and bookmarks; the
// custom properties.
QStringList checkWordDocument(const Package& document);

} // namespace wordbridge
