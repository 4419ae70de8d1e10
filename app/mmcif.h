// Tells a macromolecular CIF (mmCIF) from other text.
#pragma once

#include <QString>

// True when text contains one of a fixed list of mmCIF data names and category prefixes, in any
// letter case, anywhere: in a loop header, a value or a comment. CIF syntax plays no part. Pure
// function.
bool isMmCifText(const QString& text);
