#include "quillet/authors.h"

#include "quillet/cif_text.h"
#include "quillet/number.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <initializer_list>
#include <limits>

namespace quillet
{

namespace
{

using TagList = std::vector<std::string_view>;

// Where names of authors may stand, and what goes with them.
struct AuthorSource {
    std::string_view name; // or the given name, where `family` is set
    std::string_view family;
    std::string_view address, email, orcid, footnote, ordinal;
    std::string_view citation_id; // rows of the article's own citation only
};

const AuthorSource publ_author = {"_publ_author_name",
                                  "",
                                  "_publ_author_address",
                                  "_publ_author_email",
                                  "_publ_author_id_orcid",
                                  "_publ_author_footnote",
                                  "",
                                  ""};
const AuthorSource publ_author_ddl2 = {"_publ_author.name",
                                       "",
                                       "_publ_author.address",
                                       "_publ_author.email",
                                       "_publ_author.id_orcid",
                                       "_publ_author.footnote",
                                       "",
                                       ""};
const AuthorSource audit_author = {"_audit_author_name",
                                   "",
                                   "_audit_author_address",
                                   "_audit_author_email",
                                   "_audit_author_id_orcid",
                                   "",
                                   "",
                                   ""};
const AuthorSource audit_author_ddl2 = {"_audit_author.name",
                                        "",
                                        "_audit_author.address",
                                        "_audit_author.email",
                                        "_audit_author.identifier_ORCID",
                                        "",
                                        "_audit_author.pdbx_ordinal",
                                        ""};
const AuthorSource citation_author = {"_citation_author.name",
                                      "",
                                      "",
                                      "",
                                      "_citation_author.identifier_ORCID",
                                      "",
                                      "_citation_author.ordinal",
                                      "_citation_author.citation_id"};
const AuthorSource deposition_contact = {"_pdbx_contact_author.name_first",
                                         "_pdbx_contact_author.name_last",
                                         "",
                                         "_pdbx_contact_author.email",
                                         "_pdbx_contact_author.identifier_ORCID",
                                         "",
                                         "",
                                         ""};

std::vector<const AuthorSource*> sources_for(Kind kind)
{
    if (kind == Kind::core)
        return {&publ_author, &audit_author};
    if (kind == Kind::macromolecular)
        return {&publ_author_ddl2, &publ_author, &citation_author, &audit_author_ddl2};
    return {&publ_author_ddl2, &publ_author, &citation_author, &audit_author_ddl2,
            &deposition_contact};
}

// An author as found, before addresses are compared.
struct Found {
    Author author;
    std::vector<std::string> addresses;
    double ordinal = std::numeric_limits<double>::infinity();
};

struct Contact {
    PersonName name;            // nobody if `written` is empty
    bool is_name_split = false; // by the file itself
    std::string email;
    std::string orcid;
    std::vector<std::string> addresses;
};

std::vector<std::string> words_of(std::string_view name)
{
    std::vector<std::string> words;
    std::string word;
    const auto end_word = [&] {
        const std::string letters = letters_only(word);
        if (!letters.empty())
            words.push_back(letters);
        word.clear();
    };
    for (const char c : name) {
        if (is_ascii_blank(c) || c == ',' || c == '.')
            end_word();
        else
            word += c;
    }
    end_word();
    return words;
}

std::string initials_of(const std::string& given)
{
    std::string initials;
    for (const std::string& word : words_of(given)) {
        std::string_view rest = word;
        append_character(initials, take_character(rest));
    }
    return initials;
}

bool is_title(const std::string& word)
{
    return word == "Dr." || word == "Dr" || word == "Prof." || word == "Prof" ||
           word == "Professor";
}

bool are_initials(const std::string& word)
{
    return word.size() <= 3 && std::all_of(word.begin(), word.end(), is_ascii_upper);
}

// "AB" as "A. B."
std::string with_dots(const std::string& initials)
{
    std::string result;
    for (const char c : initials)
        result += (result.empty() ? "" : " ") + std::string(1, c) + ".";
    return result;
}

// "M.R." as "M. R."; "J.-P." stays.
std::string with_blanks_after_dots(const std::string& name)
{
    std::string result;
    for (std::size_t i = 0; i < name.size(); ++i) {
        result += name[i];
        const bool letter_follows =
            i + 1 < name.size() && !is_ascii_blank(name[i + 1]) &&
            (is_ascii_letter(name[i + 1]) || static_cast<unsigned char>(name[i + 1]) >= 0x80);
        if (name[i] == '.' && letter_follows)
            result += ' ';
    }
    return result;
}

std::vector<std::string> split_words(const std::string& text)
{
    std::vector<std::string> words(1);
    for (const char c : text) {
        if (c != ' ')
            words.back() += c;
        else
            words.emplace_back();
    }
    return words;
}

PersonName split_without_comma(const std::string& name, bool may_be_initials_last)
{
    auto words = split_words(name);
    // "Joint Center for Structural Genomics (JCSG)" is no person's name.
    if (words.size() > 1 && words.back().front() == '(')
        return {"", name, {}};
    if (words.size() == 1) {
        const auto dot = name.rfind('.');
        if (dot == std::string::npos || dot + 1 == name.size())
            return {"", name, {}};
        return {name.substr(0, dot + 1), name.substr(dot + 1), {}};
    }
    if (may_be_initials_last && are_initials(words.back())) {
        const std::string initials = words.back();
        return {with_dots(initials), name.substr(0, name.size() - initials.size() - 1), {}};
    }
    if (words.size() > 1 && is_title(words.front()))
        words.erase(words.begin());
    PersonName result;
    result.family = words.back();
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
        result.given += (i > 0 ? " " : "") + words[i];
    return result;
}

PersonName name_of_parts(const std::string& given, const std::string& family)
{
    const std::string whole_given = with_blanks_after_dots(collapse_blanks(given));
    return {whole_given, family, family + ", " + whole_given};
}

std::string given_text(const Item& item)
{
    return item.is_given() ? text_to_plain(item.text) : std::string();
}

std::string checked_orcid(const Item& item, Notes& notes)
{
    if (!item.is_given())
        return {};
    std::string orcid = check_orcid(item.text);
    if (orcid.empty())
        notes.add(item.where(), "\u201c" + std::string(item.text) +
                                    "\u201d is not a valid ORCID and is left out.");
    return orcid;
}

Item item_if_named(const Rows& rows, std::size_t row, std::string_view tag)
{
    return tag.empty() ? Item() : rows.item(row, tag);
}

// The id of the citation that is the article itself.
std::string own_citation(const Document& document, const Block& block)
{
    if (document.kind == Kind::macromolecular)
        return "primary";
    const Item id = block.item({"_citation.id", "_citation_author.citation_id"});
    return std::string(id.text);
}

std::vector<Found> read_source(const Document& document, const Block& block,
                               const AuthorSource& source, Notes& notes)
{
    std::vector<Found> result;
    const Rows rows = block.rows(source.name);
    const std::string citation =
        source.citation_id.empty() ? std::string() : own_citation(document, block);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item name = rows.item(row, source.name);
        const Item family = item_if_named(rows, row, source.family);
        if (!name.is_given() && !family.is_given())
            continue;
        if (!citation.empty() && rows.item(row, source.citation_id).text != citation)
            continue;
        Found found;
        found.author.name = source.family.empty()
                                ? split_name(given_text(name), source.name == citation_author.name)
                                : name_of_parts(given_text(name), given_text(family));
        found.author.email = given_text(item_if_named(rows, row, source.email));
        found.author.orcid = checked_orcid(item_if_named(rows, row, source.orcid), notes);
        found.author.note = given_text(item_if_named(rows, row, source.footnote));
        found.addresses = split_addresses(item_if_named(rows, row, source.address).text);
        if (const auto ordinal = parse_number(item_if_named(rows, row, source.ordinal).text))
            found.ordinal = ordinal->value();
        result.push_back(std::move(found));
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const Found& a, const Found& b) { return a.ordinal < b.ordinal; });
    return result;
}

bool are_same_names(const std::vector<Found>& a, const std::vector<Found>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Found& x, const Found& y) {
        return x.author.name.written == y.author.name.written;
    });
}

// The first source of the first block that names somebody.
std::vector<Found> find_authors(const Document& document, Notes& notes)
{
    std::vector<Found> result;
    for (const AuthorSource* source : sources_for(document.kind)) {
        for (const Block& block : document.blocks) {
            auto found = read_source(document, block, *source, notes);
            if (found.empty())
                continue;
            if (result.empty())
                result = std::move(found);
            else if (!are_same_names(result, found))
                notes.add(block.where(), "data_" + block.name() +
                                             " names other authors than an earlier block; "
                                             "they are not used.");
        }
        if (!result.empty())
            break;
    }
    return result;
}

// Where the contact author may stand.
struct ContactSource {
    std::string_view name, address, email, orcid;
};

const std::initializer_list<ContactSource> contact_sources = {
    {"_publ_contact_author_name", "_publ_contact_author_address", "_publ_contact_author_email",
     "_publ_contact_author_id_orcid"},
    {"_publ_contact_author.name", "_publ_contact_author.address", "_publ_contact_author.email",
     "_publ_contact_author.id_orcid"},
    {"_publ_contact_author", "", "_publ_contact_author_email", "_publ_contact_author_id_orcid"},
    {"_audit_contact_author_name", "_audit_contact_author_address", "_audit_contact_author_email",
     "_audit_contact_author_id_orcid"},
    {"_audit_contact_author.name", "_audit_contact_author.address", "_audit_contact_author.email",
     ""}};

Item first_named(const Document& document, std::string_view tag)
{
    return tag.empty() ? Item() : first_item(document, {tag});
}

void read_contact_name(Contact& contact, std::string_view text)
{
    contact.name = split_name(text_to_plain(text), false);
    contact.is_name_split = contact.name.written.find(',') != std::string::npos;
}

Contact read_contact(const Document& document, const ContactSource& source, Notes& notes)
{
    Contact contact;
    const Item name = first_named(document, source.name);
    if (!name.is_given())
        return contact;
    std::string_view first_line = name.text;
    if (source.address.empty()) { // the old item holds both
        const auto end = std::min(name.text.find('\n'), name.text.size());
        first_line = name.text.substr(0, end);
        contact.addresses = split_addresses(name.text.substr(end));
    } else {
        contact.addresses = split_addresses(first_named(document, source.address).text);
    }
    read_contact_name(contact, first_line);
    contact.email = given_text(first_named(document, source.email));
    contact.orcid = checked_orcid(first_named(document, source.orcid), notes);
    return contact;
}

// The contact of a deposition, whose name and address stand in parts.
Contact read_deposition_contact(const Document& document, Notes& notes)
{
    Contact contact;
    for (const Block& block : document.blocks) {
        const Rows rows =
            block.rows({"_pdbx_contact_author.name_last", "_pdbx_contact_author.name_first"});
        for (std::size_t row = 0; row < rows.size() && contact.name.written.empty(); ++row) {
            const auto part = [&](std::string_view name) {
                return given_text(rows.item(row, "_pdbx_contact_author." + std::string(name)));
            };
            if (part("name_last").empty())
                continue;
            contact.name =
                name_of_parts(part("name_first") + " " + part("name_mi"), part("name_last"));
            contact.is_name_split = true;
            contact.email = part("email");
            contact.orcid =
                checked_orcid(rows.item(row, "_pdbx_contact_author.identifier_ORCID"), notes);
            std::string address;
            for (const char* name : {"address_1", "address_2", "address_3", "city",
                                     "state_province", "postal_code", "country"}) {
                const std::string text = part(name);
                address += (address.empty() || text.empty() ? "" : ", ") + text;
            }
            contact.addresses = split_addresses(address);
        }
    }
    return contact;
}

Contact find_contact(const Document& document, Notes& notes)
{
    for (const ContactSource& source : contact_sources) {
        Contact contact = read_contact(document, source, notes);
        if (!contact.name.written.empty())
            return contact;
    }
    return document.kind == Kind::core ? Contact() : read_deposition_contact(document, notes);
}

void apply_contact(const Contact& contact, std::vector<Found>& authors, AuthorList& list)
{
    if (contact.name.written.empty())
        return;
    const auto match = std::find_if(authors.begin(), authors.end(), [&](const Found& found) {
        return is_same_person(contact.name, found.author.name);
    });
    if (match == authors.end()) {
        list.contact_name = collapse_blanks(contact.name.given + " " + contact.name.family);
        list.contact_email = contact.email;
        return;
    }
    Author& author = match->author;
    author.is_corresponding = true;
    if (contact.is_name_split && author.name.written.find(',') == std::string::npos)
        author.name = contact.name;
    if (author.email.empty())
        author.email = contact.email;
    if (author.orcid.empty())
        author.orcid = contact.orcid;
    if (match->addresses.empty())
        match->addresses = contact.addresses;
}

void number_addresses(std::vector<Found>& authors, AuthorList& list)
{
    std::vector<std::string> keys;
    for (Found& found : authors) {
        for (const std::string& address : found.addresses) {
            const std::string key = letters_and_digits_only(address);
            const auto known = std::find(keys.begin(), keys.end(), key);
            const auto index = static_cast<std::size_t>(known - keys.begin());
            if (known == keys.end()) {
                keys.push_back(key);
                list.addresses.push_back(address);
            }
            auto& of_author = found.author.addresses;
            if (std::find(of_author.begin(), of_author.end(), index) == of_author.end())
                of_author.push_back(index);
        }
        list.authors.push_back(std::move(found.author));
    }
}

std::string join_address_lines(std::string_view text)
{
    constexpr std::size_t full_line = 60;
    std::string result;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        result += line;
        if (text.empty())
            break;
        const bool is_punctuated =
            !line.empty() && std::string_view(",;:").find(line.back()) != std::string_view::npos;
        const bool is_wrapped = count_characters(line) >= full_line;
        result += is_punctuated || is_wrapped ? " " : ", ";
    }
    result = text_to_plain(result);
    result.erase(result.find_last_not_of(" ,;.") + 1);
    return result;
}

Html attribute(const Html& name, const std::string& value)
{
    return value.empty() ? Html() : " "_html + name + "=\""_html + escape(value) + "\""_html;
}

Html opening_tag(const Html& name, std::size_t count)
{
    return "<"_html + name + attribute("xmlns:vexa"_html, VEXAWORD_PUBLAUTHORS_NAMESPACE) +
           attribute("count"_html, std::to_string(count)) + ">"_html;
}

Html element(const Html& name, const std::string& content)
{
    return content.empty()
               ? Html()
               : "<"_html + name + ">"_html + escape(content) + "</"_html + name + ">"_html;
}

std::string address_id(std::size_t index)
{
    return "d" + std::to_string(index + 1);
}

Html author_element(const Author& author, std::size_t number)
{
    std::string addresses;
    for (const std::size_t index : author.addresses)
        addresses += (addresses.empty() ? "" : " ") + address_id(index);
    return "<vexa:author"_html + attribute("id"_html, "a" + std::to_string(number)) +
           attribute("seq"_html, std::to_string(number)) + attribute("addr"_html, addresses) +
           attribute("corresponding"_html, author.is_corresponding ? "yes" : "") +
           attribute("orcid"_html, author.orcid) + attribute("email"_html, author.email) +
           ">"_html + element("vexa:given"_html, author.name.given) + "<vexa:family>"_html +
           escape(author.name.family) + "</vexa:family>"_html +
           element("vexa:note"_html, author.note) + "</vexa:author>\n"_html;
}

} // namespace

PersonName split_name(std::string_view written, bool may_be_initials_last)
{
    const std::string name = collapse_blanks(written);
    const auto comma = name.rfind(',');
    PersonName result;
    if (comma == std::string::npos) {
        result = split_without_comma(name, may_be_initials_last);
    } else {
        result.family = trimmed(std::string_view(name).substr(0, comma));
        result.given = trimmed(std::string_view(name).substr(comma + 1));
    }
    if (result.family.empty())
        std::swap(result.family, result.given);
    result.given = with_blanks_after_dots(result.given);
    result.written = name;
    return result;
}

AuthorList collect_authors(const Document& document, Notes& notes)
{
    AuthorList list;
    auto authors = find_authors(document, notes);
    apply_contact(find_contact(document, notes), authors, list);
    number_addresses(authors, list);
    return list;
}

std::string check_orcid(std::string_view text)
{
    std::string_view id = trimmed(text);
    for (const std::string_view prefix : {"http://orcid.org/", "https://orcid.org/"}) {
        if (ascii_lower(id.substr(0, prefix.size())) == prefix)
            id.remove_prefix(prefix.size());
    }
    constexpr std::size_t length = 19;
    if (id.size() != length)
        return {};
    unsigned remainder = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const bool is_hyphen_place = i % 5 == 4;
        if (is_hyphen_place != (id[i] == '-'))
            return {};
        if (is_hyphen_place || i == length - 1)
            continue;
        if (!is_ascii_digit(id[i]))
            return {};
        remainder = (remainder + static_cast<unsigned>(id[i] - '0')) * 2 % 11;
    }
    const unsigned check = (12 - remainder) % 11;
    const char expected = check == 10 ? 'X' : static_cast<char>('0' + check);
    return id.back() == expected ? std::string(id) : std::string();
}

std::vector<std::string> split_addresses(std::string_view text)
{
    std::vector<std::string> addresses;
    for (const std::string& part : split_paragraphs(text)) {
        std::string address = join_address_lines(part);
        if (!address.empty())
            addresses.push_back(std::move(address));
    }
    return addresses;
}

bool is_same_person(const PersonName& a, const PersonName& b)
{
    auto words_of_a = words_of(a.written);
    auto words_of_b = words_of(b.written);
    std::sort(words_of_a.begin(), words_of_a.end());
    std::sort(words_of_b.begin(), words_of_b.end());
    if (words_of_a == words_of_b)
        return !words_of_a.empty();
    if (letters_only(a.family) != letters_only(b.family) || a.given.empty() || b.given.empty())
        return false;
    // One of the two may leave out middle names.
    const std::string a_initials = initials_of(a.given);
    const std::string b_initials = initials_of(b.given);
    return begins_with(a_initials, b_initials) || begins_with(b_initials, a_initials);
}

Html authors_element(const AuthorList& list)
{
    Html result = opening_tag("vexa:authors"_html, list.authors.size()) + "\n"_html;
    for (std::size_t i = 0; i < list.authors.size(); ++i)
        result += author_element(list.authors[i], i + 1);
    return result + "</vexa:authors>\n"_html;
}

Html addresses_element(const AuthorList& list)
{
    Html result = opening_tag("vexa:addresses"_html, list.addresses.size()) + "\n"_html;
    for (std::size_t i = 0; i < list.addresses.size(); ++i)
        result += "<vexa:address"_html + attribute("id"_html, address_id(i)) +
                  attribute("label"_html, address_label(i)) + ">"_html + escape(list.addresses[i]) +
                  "</vexa:address>\n"_html;
    return result + "</vexa:addresses>\n"_html;
}

std::string address_label(std::size_t index)
{
    std::string label;
    for (std::size_t n = index + 1; n > 0; n = (n - 1) / 26)
        label.insert(0, 1, static_cast<char>('a' + (n - 1) % 26));
    return label;
}

} // namespace quillet
