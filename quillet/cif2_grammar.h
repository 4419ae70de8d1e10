// Grammar of CIF 2.0, for the same input and actions as gemmi's grammar of CIF 1.1, from which it
// takes what both versions have in common. What is new: characters outside ASCII anywhere, strings
// in three quotation marks, lists and tables; a quotation mark ends a string wherever it stands.
// After Bernstein et al. (2016), J. Appl. Cryst. 49, 277-284.
#pragma once

#include <gemmi/cif.hpp>

namespace quillet::cif2
{

namespace pegtl = tao::pegtl;
namespace cif1 = gemmi::cif::rules;

// A byte of a character outside ASCII. The input is valid UTF-8, so bytes need not be combined.
struct high_byte {
    template<typename Input>
    static bool match(Input& in)
    {
        if (in.empty() || static_cast<unsigned char>(in.peek_char()) < 0x80)
            return false;
        in.bump_in_this_line(1);
        return true;
    }
};
struct nonblank_ch : pegtl::sor<pegtl::range<'!', '~'>, high_byte> {
};

template<typename Quote>
struct quoted_tail : pegtl::until<Quote, pegtl::not_one<'\n'>> {
};
template<typename Quotes>
struct triple_tail : pegtl::until<Quotes> {
};
template<typename Quote>
struct quoted : pegtl::if_must<Quote, quoted_tail<Quote>> {
};
template<typename Quotes>
struct triple_quoted : pegtl::if_must<Quotes, triple_tail<Quotes>> {
};
struct string : pegtl::sor<triple_quoted<pegtl::string<'\'', '\'', '\''>>,
                           triple_quoted<pegtl::string<'"', '"', '"'>>, quoted<pegtl::one<'\''>>,
                           quoted<pegtl::one<'"'>>> {
};

struct unquoted_ch : pegtl::seq<pegtl::not_at<pegtl::one<'[', ']', '{', '}'>>, nonblank_ch> {
};
struct unquoted
    : pegtl::seq<pegtl::not_at<cif1::keyword>, pegtl::not_at<pegtl::one<'_', '$', '#', '\'', '"'>>,
                 pegtl::plus<unquoted_ch>> {
};

struct value;
struct blanks : pegtl::opt<cif1::whitespace> {
};
struct list_tail : pegtl::until<pegtl::one<']'>, value, blanks> {
};
struct list : pegtl::if_must<pegtl::one<'['>, blanks, list_tail> {
};
struct colon : pegtl::one<':'> {
};
struct entry : pegtl::if_must<string, colon, blanks, value, blanks> {
};
struct table_tail : pegtl::until<pegtl::one<'}'>, entry> {
};
struct table : pegtl::if_must<pegtl::one<'{'>, blanks, table_tail> {
};
struct value : pegtl::sor<string, cif1::textfield, list, table, unquoted> {
};

struct datablockname : pegtl::plus<nonblank_ch> {
};
struct datablockheading : pegtl::seq<cif1::str_data, datablockname> {
};
struct tag : pegtl::seq<pegtl::one<'_'>, pegtl::plus<nonblank_ch>> {
};
struct item_tag : tag {
};
struct item_value : value {
};
struct loop_tag : tag {
};
struct loop_value : value {
};
struct missing_value : pegtl::success {
};
struct loop : pegtl::if_must<
                  cif1::str_loop, cif1::whitespace,
                  pegtl::plus<pegtl::seq<loop_tag, cif1::whitespace, pegtl::discard>>,
                  pegtl::sor<pegtl::plus<pegtl::seq<loop_value, cif1::ws_or_eof, pegtl::discard>>,
                             pegtl::at<pegtl::sor<cif1::keyword, pegtl::eof>>>> {
};
struct dataitem : pegtl::if_must<item_tag, cif1::whitespace,
                                 pegtl::if_then_else<item_value, cif1::ws_or_eof, missing_value>,
                                 pegtl::discard> {
};
struct framename : pegtl::plus<nonblank_ch> {
};
struct frame
    : pegtl::if_must<cif1::str_save, framename, cif1::whitespace,
                     pegtl::star<pegtl::sor<dataitem, loop>>, cif1::endframe, cif1::ws_or_eof> {
};
struct datablock : pegtl::seq<datablockheading, cif1::ws_or_eof,
                              pegtl::star<pegtl::sor<dataitem, loop, frame>>> {
};
struct content : pegtl::plus<datablock> {
};
struct file : pegtl::seq<pegtl::opt<cif1::whitespace>,
                         pegtl::if_must<pegtl::not_at<pegtl::eof>, content, pegtl::eof>> {
};

} // namespace quillet::cif2
