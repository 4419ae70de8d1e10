// The article on macromolecular crystals, from an mmCIF.
#pragma once

#include "quillet/article_template.h"
#include "quillet/authors.h"
#include "quillet/document.h"
#include "quillet/quillet.h"

#include <string>

namespace quillet
{

// All that a template can print of the document, except the notes. `article` is a structure or a
// communication, which has nothing of solution and refinement.
Fields macromolecule_fields(const Document& document, const AuthorList& authors,
                            ArticleKind article, Notes& notes);

const Vocabulary& macromolecule_vocabulary();

// The code of the structure in the Protein Data Bank; unknown if there is none.
Item pdb_code(const Document& document);

} // namespace quillet
