// What all kinds of article share: title, authors, text sections, notes.
#pragma once

#include "quillet/article_template.h"
#include "quillet/authors.h"
#include "quillet/document.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// An item of the manuscript (`_publ_...`): the first usable value of any block. A different value
// in a later block is reported and not used.
Item manuscript_item(const Document& document, Tags tags, Notes& notes);

// Running text as "<p>...</p>" elements; "<p>?</p>" for an item without value.
Html paragraphs_of(const Item& item);

// A section of the article, for templates: {{#name}}<h1>...</h1>{{text}}{{/name}}.
Fields text_section(const Html& text);

// Sets the text sections that CIFs of all kinds may have (`_publ_section_...`, `_publ_body_...`).
// Sections named in `skeleton` are set without text, too, so that the author sees what to write.
void set_text_sections(Fields& fields, const Document& document,
                       const std::set<std::string_view>& skeleton, Notes& notes);

// Whether the CIF has captions of figures, beside which none are to be made up.
bool has_figure_captions(const Document& document);

// Sets title, short_name (plain text), authors (whether there are any), correspondence and
// keywords.
void set_front_matter(Fields& fields, const Html& title, const std::string& short_name,
                      const AuthorList& authors, const std::vector<Html>& keywords);

// Keywords of a text that separates them with ";" or else with ",".
std::vector<Html> split_keywords(std::string_view text);

// Keywords between separators of one kind.
std::vector<Html> split_keywords(std::string_view text, char separator);

// Sets the section of notes with its items, each with place and message.
void set_notes(Fields& fields, const Notes& notes);

// The names that these functions set.
extern const std::set<std::string_view> front_matter_field_names;

} // namespace quillet
