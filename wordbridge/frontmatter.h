// Title page without the template's macro: authors and addresses put into the article itself.
#pragma once

#include "wordbridge/htmltree.h"
#include "wordbridge/publicationmetadata.h"

namespace wordbridge
{

// Fills the places vexa_authors and vexa_addresses of the article the way the macro of the Word
// template does (wordtemplate/macros/Vexa_authors.bas): address labels where there are several
// addresses, an asterisk for corresponding authors, signs for notes; advice to the author where
// nothing is known. Places that the article does not have stay unfilled.
void fillFrontMatter(HtmlNode& article, const PublicationMetadata& metadata);

// The text in the place vexa_title; empty if there is none.
QString articleTitle(const HtmlNode& article);

} // namespace wordbridge
