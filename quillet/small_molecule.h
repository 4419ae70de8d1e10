// The article on small-molecule structures, from a core CIF.
#pragma once

#include "quillet/article_template.h"
#include "quillet/authors.h"
#include "quillet/document.h"
#include "quillet/geometry.h"

namespace quillet
{

// All that a template can print of the document, except the notes.
Fields small_molecule_fields(const Document& document, const AuthorList& authors,
                             GeometrySelection geometry, Notes& notes);

const Vocabulary& small_molecule_vocabulary();

} // namespace quillet
