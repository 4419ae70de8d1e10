// The article on small-angle scattering, from a sasCIF.
#pragma once

#include "quillet/article_template.h"
#include "quillet/authors.h"
#include "quillet/document.h"

namespace quillet
{

// All that a template can print of the document, except the notes.
Fields scattering_fields(const Document& document, const AuthorList& authors, Notes& notes);

const Vocabulary& scattering_vocabulary();

} // namespace quillet
