// Looking things up in an mmCIF, whose categories refer to each other by ids, and turning the
// words of depositions, many of them all in capitals, into those of an article.
#pragma once

#include "quillet/cells.h"
#include "quillet/document.h"
#include "quillet/html.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// What rows of other categories are about: an entity, a crystal, a refinement.
struct Subject {
    const Block* block = nullptr;
    std::string_view id_name; // how those categories call its id: "entity_id"
    std::string_view id;      // empty if the file gives none: then every row is about the first
    // Rows that name no subject are about the first one.
    bool is_first = true;
};

// The rows of the category that `rows` belongs to that are about the subject. `id_tag` is a data
// name such as "_entity_src_gen.entity_id".
std::vector<std::size_t> rows_about(const Subject& subject, const Rows& rows,
                                    std::string_view id_tag);

// The data name of the subject's id in the category of `tag`.
std::string id_tag_for(const Subject& subject, std::string_view tag);

// The different usable values that a category has for a subject, in file order.
struct Values {
    State state = State::unknown; // of the whole: given if `items` is not empty
    std::string_view tag;         // data name asked for first
    std::vector<Item> items;
};

// From the first data name that has a usable value in a row about the subject.
Values values_about(const Subject& subject, Tags tags);

// The same if only one value can be meant: the first.
Item item_about(const Subject& subject, Tags tags);

// A cell with all of the values as text.
Cell text_cell(const Values& values);

// With ", " between, or "; " where a part has a comma of its own.
Html listed(const std::vector<Html>& parts);

// Adds what is not yet there.
void add_new(std::vector<Html>& parts, const Html& part);

bool is_all_capitals(std::string_view text);

// "MOLECULAR REPLACEMENT" as "Molecular replacement". Words in `kept` stay ("SAD"), and so does
// text that is not all in capitals.
std::string sentence_case(std::string_view text, const std::set<std::string_view>& kept = {});

// "ESCHERICHIA COLI K12" as "Escherichia coli K12".
std::string organism_name(std::string_view text);

// Numbers with a hyphen or an en dash between as a range with an en dash, or as one number if both
// are the same; other text as numbers or text.
Html format_range_text(std::string_view text, NumberFormat format);

} // namespace quillet
