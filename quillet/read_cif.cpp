#include "quillet/read_cif.h"

#include "quillet/atom_row_reader.h"
#include "quillet/cif2_grammar.h"
#include "quillet/kept_items.h"
#include "quillet/plain_rows.h"
#include "quillet/text_field.h"
#include "quillet/text_source.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <cstring>
#include <gemmi/cif.hpp>
#include <set>
#include <tao/pegtl/contrib/limit_depth.hpp>

namespace quillet
{

namespace
{

namespace pegtl = tao::pegtl;
namespace rules = gemmi::cif::rules;

// What the grammar's actions fill.
class Builder
{
public:
    Builder(std::vector<Block>& blocks, const std::string& path, CifVersion version, Notes& notes)
        : m_blocks(blocks),
          m_path(path),
          m_version(version),
          m_notes(notes)
    {
    }

    void begin_block(std::string name, Position where)
    {
        m_loop_count = 0;
        if (!m_names.insert(ascii_lower(name)).second)
            m_notes.add(where, "There is another block of the name data_" + name + ".");
        m_blocks.emplace_back(std::move(name), where);
    }

    void begin_frame(Position where)
    {
        m_in_frame = true;
        m_notes.add(where, "What stands in a save frame is not used.");
    }

    void end_frame() { m_in_frame = false; }

    void begin_loop(Position where)
    {
        ++m_loop_count;
        m_loop_start = where;
        m_targets.clear();
        m_value_count = 0;
        m_has_begun_values = false;
    }

    void add_pair_tag(std::string tag, Position where)
    {
        m_targets.clear();
        add_column(std::move(tag), where, 0);
    }

    void add_loop_tag(std::string tag, Position where)
    {
        add_column(std::move(tag), where, m_loop_count);
    }

    void add_pair_value(std::string_view raw, Position where)
    {
        add_value(m_targets.back(), raw, where);
    }

    void add_loop_value(std::string_view raw, Position where)
    {
        begin_values();
        const std::size_t column = m_value_count % m_targets.size();
        add_value(m_targets[column], raw, where);
        ++m_value_count;
        if (!m_atoms.is_active())
            return;
        if (m_atoms.wants(column))
            m_atoms.keep(column, decoded(raw, where));
        if (column + 1 == m_targets.size())
            m_atoms.add_kept_row(m_blocks.back().mutable_atom_totals());
    }

    // Before each value of a loop; does something before the first.
    void begin_values()
    {
        if (m_has_begun_values)
            return;
        m_has_begun_values = true;
        m_atoms.begin_loop(coordinate_columns());
        m_keeps_values = std::any_of(m_targets.begin(), m_targets.end(),
                                     [](const Target& target) { return target.keep; });
    }

    // Whether a row begins here whose values need only be counted or summed.
    bool takes_rows() const { return !m_keeps_values && m_value_count % m_targets.size() == 0; }

    // One value for each column of the loop, to be filled for add_row().
    std::vector<std::string_view>& row_buffer()
    {
        m_row.resize(m_targets.size());
        return m_row;
    }

    void add_row(const std::vector<std::string_view>& row)
    {
        m_value_count += row.size();
        if (m_in_frame)
            return;
        for (const Target& target : m_targets)
            ++m_blocks.back().mutable_columns()[target.column].count;
        if (m_atoms.is_active())
            m_atoms.add_row(row, m_blocks.back().mutable_atom_totals());
    }

    void end_loop() const
    {
        const std::size_t width = m_targets.size();
        if (m_value_count % width != 0)
            fail(m_loop_start, "this loop_ has " + std::to_string(width) + " data names and " +
                                   std::to_string(m_value_count) +
                                   " values: its last row is incomplete");
        if (m_value_count == 0)
            m_notes.add(m_loop_start, "This loop_ has no values.");
    }

    void missing_value() const { fail(m_tag_start, "data name " + m_tag + " has no value"); }

    void begin_value(Position where) { m_value_start = where; }
    Position value_start() const { return m_value_start; }

    [[noreturn]] void fail(Position where, const std::string& message) const
    {
        throw InputError(m_path, where, message);
    }

private:
    // Where values go: a column of the current block, or nowhere in a save frame.
    struct Target {
        std::size_t column = 0;
        bool keep = false;
    };

    void add_column(std::string tag, Position where, std::size_t loop)
    {
        m_tag_start = where;
        m_tag = tag;
        if (m_in_frame) {
            m_targets.emplace_back();
            return;
        }
        auto& columns = m_blocks.back().mutable_columns();
        m_targets.push_back({columns.size(), is_kept(ascii_lower(tag))});
        columns.push_back({std::move(tag), where, loop, 0, {}});
    }

    // Which columns of the current loop are wanted for totals of atoms. Coordinates of
    // macromolecules are not kept: there are many, and no table prints them.
    std::vector<std::string> coordinate_columns()
    {
        std::vector<std::string> tags;
        if (m_in_frame)
            return tags;
        const auto& columns = m_blocks.back().columns();
        for (const Target& target : m_targets)
            tags.push_back(ascii_lower(columns[target.column].tag));
        if (std::find(tags.begin(), tags.end(), "_atom_site.cartn_x") == tags.end())
            return {};
        for (Target& target : m_targets)
            target.keep = false;
        return tags;
    }

    void add_value(const Target& target, std::string_view raw, Position where)
    {
        if (m_in_frame)
            return;
        Column& column = m_blocks.back().mutable_columns()[target.column];
        ++column.count;
        if (!target.keep)
            return;
        column.values.push_back({decoded(raw, where), where});
    }

    std::string decoded(std::string_view raw, Position where) const
    {
        const bool is_text_field = raw.front() == ';' && where.column == 1;
        return decode_value(raw, is_text_field, m_version);
    }

    std::vector<Block>& m_blocks;
    const std::string& m_path;
    CifVersion m_version;
    Notes& m_notes;
    std::set<std::string> m_names; // of the blocks so far, in lower case

    bool m_in_frame = false;
    std::string m_tag; // the last one
    Position m_tag_start;
    Position m_value_start;
    std::size_t m_loop_count = 0; // in the current block
    Position m_loop_start;
    std::vector<Target> m_targets; // of the current pair or loop
    std::size_t m_value_count = 0; // in the current loop
    std::vector<std::string_view> m_row;
    bool m_has_begun_values = false;
    bool m_keeps_values = false; // in the current loop
    AtomRowReader m_atoms;       // of the current loop, if it holds coordinates
};

template<typename Iterator>
Position position_of(const Iterator& iterator)
{
    return {static_cast<std::uint32_t>(iterator.line), static_cast<std::uint32_t>(iterator.column)};
}

// Takes rows of a loop whose values are only counted or summed, as many as are plain and in the
// buffer, from the value at which `in` stands to the end of the last value. False if none is.
// Nearly all of a large file is such rows, and this is several times faster than the grammar, which
// takes over where it stops.
template<typename Input>
bool take_plain_rows(Input& in, Builder& builder)
{
    constexpr std::size_t lookahead = 4096;
    builder.begin_values();
    if (!builder.takes_rows())
        return false;
    const char* const end = in.end(lookahead);
    const char* at = in.current();
    std::vector<std::string_view>& row = builder.row_buffer();
    while (read_plain_row(at, end, row))
        builder.add_row(row);
    if (at == in.current())
        return false;
    while (const void* line_end =
               std::memchr(in.current(), '\n', static_cast<std::size_t>(at - in.current())))
        in.bump_to_next_line(
            static_cast<std::size_t>(static_cast<const char*>(line_end) - in.current()) + 1);
    in.bump_in_this_line(static_cast<std::size_t>(at - in.current()));
    return true;
}

template<typename Rule>
struct Action : pegtl::nothing<Rule> {
};

template<>
struct Action<rules::datablockname> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.begin_block(in.string(), position_of(in.iterator()));
    }
};

template<>
struct Action<rules::str_global> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.fail(position_of(in.iterator()), "global_ is not allowed in a CIF");
    }
};

template<>
struct Action<rules::framename> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.begin_frame(position_of(in.iterator()));
    }
};

template<>
struct Action<rules::endframe> {
    static void apply0(Builder& builder) { builder.end_frame(); }
};

template<>
struct Action<rules::item_tag> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.add_pair_tag(in.string(), position_of(in.iterator()));
    }
};

template<>
struct Action<rules::item_value> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.add_pair_value(in.string_view(), position_of(in.iterator()));
    }
};

template<>
struct Action<rules::missing_value> {
    static void apply0(const Builder& builder) { builder.missing_value(); }
};

template<>
struct Action<rules::str_loop> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.begin_loop(position_of(in.iterator()));
    }
};

template<>
struct Action<rules::loop_tag> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.add_loop_tag(in.string(), position_of(in.iterator()));
    }
};

struct TakeLoopValue {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.add_loop_value(in.string_view(), position_of(in.iterator()));
    }
};

template<>
struct Action<rules::loop_value> : TakeLoopValue {
    template<typename Rule, pegtl::apply_mode A, pegtl::rewind_mode M,
             template<typename...> class Actions, template<typename...> class Control,
             typename Input>
    static bool match(Input& in, Builder& builder)
    {
        return take_plain_rows(in, builder) ||
               pegtl::match<Rule, A, M, Actions, Control>(in, builder);
    }
};

template<>
struct Action<rules::loop> {
    static void apply0(Builder& builder) { builder.end_loop(); }
};

// The same for CIF 2.0.
template<>
struct Action<cif2::datablockname> : Action<rules::datablockname> {
};
template<>
struct Action<cif2::framename> : Action<rules::framename> {
};
template<>
struct Action<cif2::item_tag> : Action<rules::item_tag> {
};
template<>
struct Action<cif2::item_value> : Action<rules::item_value> {
};
template<>
struct Action<cif2::missing_value> : Action<rules::missing_value> {
};
template<>
struct Action<cif2::loop_tag> : Action<rules::loop_tag> {
};
template<>
struct Action<cif2::loop_value> : TakeLoopValue {
};
template<>
struct Action<cif2::loop> : Action<rules::loop> {
};

// Lists and tables nest, and a file must not be able to exhaust the stack.
constexpr std::size_t deepest_nesting = 100;
template<>
struct Action<cif2::list> : pegtl::limit_depth<deepest_nesting> {
};
template<>
struct Action<cif2::table> : pegtl::limit_depth<deepest_nesting> {
};

// The token at which the grammar gave up, shortened for a message.
template<typename Input>
std::string token_at(const Input& in)
{
    constexpr std::size_t longest = 40;
    std::string_view text(in.current(), std::min(in.buffer_occupied(), longest));
    const auto end = std::find_if(text.begin(), text.end(), is_ascii_blank);
    text = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    return "\u201c" + std::string(text) + (text.size() == longest ? "\u2026" : "") + "\u201d";
}

template<typename Input>
std::string unexpected_token(const Input& in)
{
    if (in.buffer_occupied() == 0)
        return "the file ends where more was expected";
    const auto first = static_cast<unsigned char>(in.peek_char());
    if (first >= 0x80)
        return "a value needs quotation marks: " + token_at(in) + " is outside ASCII";
    return token_at(in) + " stands where a data name, loop_ or data_ was expected; is a "
                          "quotation mark or a semicolon missing before it?";
}

// What to say about a value whose end is missing, by the rule that looked for it.
template<typename Rule>
constexpr const char* missing_end = nullptr;
template<typename Quote>
constexpr const char* missing_end<rules::quoted_tail<Quote>> =
    "this quotation mark is not closed in its line";
template<typename Quote>
constexpr const char* missing_end<cif2::quoted_tail<Quote>> =
    "this quotation mark is not closed in its line";
template<typename Quotes>
constexpr const char* missing_end<cif2::triple_tail<Quotes>> =
    "these three quotation marks are not closed";
template<>
constexpr const char* missing_end<pegtl::until<rules::field_sep>> =
    "this text field is not closed by a line that begins with a semicolon";

template<typename Rule>
constexpr bool is_frame_name =
    std::is_same_v<Rule, rules::framename> || std::is_same_v<Rule, cif2::framename>;
template<typename Rule>
constexpr bool is_content =
    std::is_same_v<Rule, rules::content> || std::is_same_v<Rule, cif2::content>;
template<typename Rule>
constexpr bool is_value =
    std::is_same_v<Rule, rules::item_value> || std::is_same_v<Rule, rules::loop_value> ||
    std::is_same_v<Rule, cif2::item_value> || std::is_same_v<Rule, cif2::loop_value>;

// Human words for what the grammar expected.
template<typename Rule>
struct Refusal : pegtl::normal<Rule> {
    template<typename Input>
    static void start([[maybe_unused]] const Input& in, [[maybe_unused]] Builder& builder)
    {
        if constexpr (is_value<Rule>)
            builder.begin_value(position_of(in.iterator()));
    }

    template<typename Input>
    [[noreturn]] static void raise(const Input& in, Builder& builder)
    {
        const Position here = position_of(in.iterator());
        if constexpr (missing_end<Rule> != nullptr)
            builder.fail(builder.value_start(), missing_end<Rule>);
        else if constexpr (is_frame_name<Rule>)
            builder.fail(here, "save_ stands here without a name");
        else if constexpr (is_content<Rule>)
            builder.fail(here, "not a CIF: a block header (data_ and a name) was expected, not " +
                                   token_at(in));
        else if constexpr (std::is_same_v<Rule, cif2::colon>)
            builder.fail(here, "a colon must follow the key of a table");
        else
            builder.fail(here, unexpected_token(in));
    }
};

struct SourceReader {
    TextSource& source;
    std::size_t operator()(char* buffer, std::size_t size) const
    {
        return source.read(buffer, size);
    }
};

template<typename Grammar>
void parse(TextSource& source, Builder& builder)
{
    constexpr std::size_t chunk = std::size_t{1} << 16U;
    // The buffer must be able to hold the longest value, which may be nearly the whole file; its
    // pages are taken from the system only when they are used.
    pegtl::buffer_input<SourceReader, pegtl::eol::lf_crlf, std::string, chunk> input(
        "", source.size_limit(), SourceReader{source});
    try {
        if (!pegtl::parse<Grammar, Action, Refusal>(input, builder))
            builder.fail({}, "not a CIF: the file holds no data");
    } catch (const pegtl::parse_error& error) { // only from the limit of depth
        builder.fail(position_of(error.positions().front()), "values are nested too deeply");
    }
}

CifVersion version_of(TextSource& source)
{
    return source.begins_with("#\\#CIF_2.0") ? CifVersion::cif_2_0 : CifVersion::cif_1_1;
}

// A single atom may stand in pairs instead of a loop.
void add_lone_atom(Block& block)
{
    const Column* coordinate = block.find("_atom_site.Cartn_x");
    if (!coordinate || coordinate->loop != 0)
        return;
    const auto text = [&](const char* tag) { return block.item(tag).text; };
    block.mutable_atom_totals().add(
        {text("_atom_site.type_symbol"), text("_atom_site.label_entity_id"),
         text("_atom_site.B_iso_or_equiv"), text("_atom_site.pdbx_PDB_model_num")});
}

} // namespace

Document read_cif(const std::string& path, Notes& notes)
{
    Document document;
    document.path = path;
    TextSource source(path);
    const CifVersion version = version_of(source);
    Builder builder(document.blocks, document.path, version, notes);
    if (version == CifVersion::cif_2_0)
        parse<cif2::file>(source, builder);
    else
        parse<rules::file>(source, builder);
    source.report_repairs(notes);
    document.kind = recognise_kind(document.blocks);
    const Naming naming = document.kind == Kind::core ? Naming::dot_as_underscore : Naming::exact;
    for (Block& block : document.blocks) {
        block.make_index(naming, notes);
        add_lone_atom(block);
    }
    return document;
}

} // namespace quillet
