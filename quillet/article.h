// From a document to the article.
#pragma once

#include "quillet/article_template.h"
#include "quillet/command_line.h"
#include "quillet/document.h"

#include <optional>
#include <string>

namespace quillet
{

// The article in UTF-8 HTML. Its kind is that of the document; if `flavour` asks for another, a
// note says so. `small_molecule_template` replaces the built-in template where it fits.
// If `with_notes`, the notes stand in the article. Their columns count characters afterwards.
// Throws InputError on a bad template.
std::string make_article(const Document& document, Flavour flavour,
                         const std::optional<ArticleTemplate>& small_molecule_template,
                         bool with_notes, Notes& notes);

} // namespace quillet
