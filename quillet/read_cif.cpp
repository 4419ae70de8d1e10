#include "quillet/read_cif.h"

#include "quillet/kept_items.h"
#include "quillet/text_field.h"
#include "quillet/text_source.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <gemmi/cif.hpp>
#include <set>

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
    Builder(std::vector<Block>& blocks, const std::string& path, Notes& notes)
        : m_blocks(blocks),
          m_path(path),
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
        if (m_value_count == 0)
            skip_coordinates_of_macromolecules();
        add_value(m_targets[m_value_count % m_targets.size()], raw, where);
        ++m_value_count;
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

    // There are many, and no table prints them.
    void skip_coordinates_of_macromolecules()
    {
        const auto& columns = m_blocks.back().columns();
        const bool is_macromolecular =
            !m_in_frame && std::any_of(m_targets.begin(), m_targets.end(), [&](const Target& t) {
                return ascii_lower(columns[t.column].tag) == "_atom_site.cartn_x";
            });
        if (!is_macromolecular)
            return;
        for (Target& target : m_targets)
            target.keep = false;
    }

    void add_value(const Target& target, std::string_view raw, Position where)
    {
        if (m_in_frame)
            return;
        Column& column = m_blocks.back().mutable_columns()[target.column];
        ++column.count;
        if (!target.keep)
            return;
        const bool is_text_field = raw.front() == ';' && where.column == 1;
        column.values.push_back({decode_value(raw, is_text_field), where});
    }

    std::vector<Block>& m_blocks;
    const std::string& m_path;
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
};

template<typename Iterator>
Position position_of(const Iterator& iterator)
{
    return {static_cast<std::uint32_t>(iterator.line), static_cast<std::uint32_t>(iterator.column)};
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

template<>
struct Action<rules::loop_value> {
    template<typename Input>
    static void apply(const Input& in, Builder& builder)
    {
        builder.add_loop_value(in.string_view(), position_of(in.iterator()));
    }
};

template<>
struct Action<rules::loop> {
    static void apply0(Builder& builder) { builder.end_loop(); }
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

// Human words for what the grammar expected.
template<typename Rule>
struct Refusal : pegtl::normal<Rule> {
    template<typename Input>
    [[noreturn]] static void raise(const Input& in, Builder& builder)
    {
        builder.fail(position_of(in.iterator()), unexpected_token(in));
    }
};

template<typename Quote>
struct Refusal<rules::quoted_tail<Quote>> : pegtl::normal<rules::quoted_tail<Quote>> {
    template<typename Input>
    [[noreturn]] static void raise(const Input&, Builder& builder)
    {
        builder.fail(builder.value_start(), "this quotation mark is not closed in its line");
    }
};

template<>
struct Refusal<pegtl::until<rules::field_sep>> : pegtl::normal<pegtl::until<rules::field_sep>> {
    template<typename Input>
    [[noreturn]] static void raise(const Input&, Builder& builder)
    {
        builder.fail(builder.value_start(),
                     "this text field is not closed by a line that begins with a semicolon");
    }
};

template<>
struct Refusal<rules::framename> : pegtl::normal<rules::framename> {
    template<typename Input>
    [[noreturn]] static void raise(const Input& in, Builder& builder)
    {
        builder.fail(position_of(in.iterator()), "save_ stands here without a name");
    }
};

template<>
struct Refusal<rules::content> : pegtl::normal<rules::content> {
    template<typename Input>
    [[noreturn]] static void raise(const Input& in, Builder& builder)
    {
        builder.fail(position_of(in.iterator()),
                     "not a CIF: a block header (data_ and a name) was expected, not " +
                         token_at(in));
    }
};

// Quotation marks and semicolons of values are reported where they open.
template<typename Rule>
struct ValueControl : pegtl::normal<Rule> {
    template<typename Input>
    static void start(const Input& in, Builder& builder)
    {
        builder.begin_value(position_of(in.iterator()));
    }
    template<typename Input>
    [[noreturn]] static void raise(const Input& in, Builder& builder)
    {
        builder.fail(position_of(in.iterator()), unexpected_token(in));
    }
};
template<>
struct Refusal<rules::item_value> : ValueControl<rules::item_value> {
};
template<>
struct Refusal<rules::loop_value> : ValueControl<rules::loop_value> {
};

struct SourceReader {
    TextSource& source;
    std::size_t operator()(char* buffer, std::size_t size) const
    {
        return source.read(buffer, size);
    }
};

void parse(TextSource& source, Builder& builder)
{
    constexpr std::size_t chunk = std::size_t{1} << 16U;
    // The buffer must be able to hold the longest value, which may be nearly the whole file; its
    // pages are taken from the system only when they are used.
    pegtl::buffer_input<SourceReader, pegtl::eol::lf_crlf, std::string, chunk> input(
        "", source.size_limit(), SourceReader{source});
    if (!pegtl::parse<rules::file, Action, Refusal>(input, builder))
        builder.fail({}, "not a CIF: the file holds no data");
}

} // namespace

Document read_cif(const std::string& path, Notes& notes)
{
    Document document;
    document.path = path;
    TextSource source(path);
    Builder builder(document.blocks, document.path, notes);
    parse(source, builder);
    source.report_repairs(notes);
    document.kind = recognise_kind(document.blocks);
    const Naming naming = document.kind == Kind::core ? Naming::dot_as_underscore : Naming::exact;
    for (Block& block : document.blocks)
        block.make_index(naming, notes);
    return document;
}

} // namespace quillet
