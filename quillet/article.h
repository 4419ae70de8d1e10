// From a document to the article.
#pragma once

#include "quillet/article_template.h"
#include "quillet/document.h"
#include "quillet/quillet.h"

#include <optional>
#include <string>

namespace quillet
{

// The template that the options name. Throws InputError if it cannot be read.
std::optional<ArticleTemplate> own_template_of(const ArticleOptions& options);

// The kind of article that is made from a recognised document.
ArticleKind kind_of_article(const Document& document, const ArticleOptions& options);

// The article in UTF-8 HTML. Its kind is that of the document; if another is asked for, a
// note says so, and `own_template` is not used. The columns of the notes count characters
// afterwards. Throws InputError on a bad template.
std::string article_html(const Document& document, const ArticleOptions& options,
                         const std::optional<ArticleTemplate>& own_template, Notes& notes);

} // namespace quillet
