// Who wrote the article and where they work, as the CIF tells.
#pragma once

#include "quillet/document.h"
#include "quillet/html.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// All strings are plain UTF-8, marks converted and dropped.

struct PersonName {
    std::string given; // may be empty
    std::string family;
    std::string written; // as in the source, before it was split
};

// Splits a name. With a comma the family name stands before the (last) one; else it is the last
// word, and a leading title such as "Dr." is dropped. `may_be_initials_last`: the source writes
// "Peng Y" for Y. Peng.
PersonName split_name(std::string_view written, bool may_be_initials_last);

struct Author {
    PersonName name;
    std::string email;
    std::string orcid; // bare: 0000-0002-1825-0097
    std::string note;
    std::vector<std::size_t> addresses; // indices into AuthorList::addresses
    bool is_corresponding = false;
};

struct AuthorList {
    std::vector<Author> authors;
    std::vector<std::string> addresses; // each once, in order of first appearance
    // The contact author, if he or she could not be found among the authors.
    std::string contact_name;
    std::string contact_email;
};

// From the sources that the kind of document has for them; what cannot be used goes to `notes`.
AuthorList collect_authors(const Document& document, Notes& notes);

// The identifier without the resolver's address; empty if it is malformed or its check digit
// (ISO 7064 mod 11-2) is wrong.
std::string check_orcid(std::string_view text);

// The addresses that one text holds (blank lines part them), each on one line.
std::vector<std::string> split_addresses(std::string_view text);

// True if both name the same person: the same words in any order, or the same family name and
// the same initials of the given names, as far as both have them. Case, accents and punctuation
// do not count.
bool is_same_person(const PersonName& a, const PersonName& b);

// The two elements that hand authors and addresses to the word processor; docs/article-html.md has
// their form. Well-formed XML, also without any author.
Html authors_element(const AuthorList& list);
Html addresses_element(const AuthorList& list);

// "a", "b", ... "z", "aa", ...
std::string address_label(std::size_t index);

} // namespace quillet
