// The article on macromolecular crystals, from an mmCIF.
#pragma once

#include "quillet/article_template.h"
#include "quillet/authors.h"
#include "quillet/document.h"

#include <string>

namespace quillet
{

// All that a template can print of the document, except the notes.
Fields macromolecule_fields(const Document& document, const AuthorList& authors, Notes& notes);

const Vocabulary& macromolecule_vocabulary();

// The code of the structure in the Protein Data Bank; unknown if there is none.
Item pdb_code(const Document& document);

} // namespace quillet
