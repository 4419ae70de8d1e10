// libFuzzer target: any bytes as the text of one value. Every converter must come back, with HTML
// that nests.

#include "quillet/authors.h"
#include "quillet/cif_text.h"
#include "quillet/experimental_details.h"
#include "quillet/formula.h"
#include "quillet/number.h"
#include "quillet/space_group.h"
#include "quillet/symmetry_codes.h"
#include "quillet/text_field.h"
#include "tests/quillet/support.h"

#include <cstdio>
#include <cstdlib>

namespace {

using quillet::Html;

// In the frame that makes an article of it.
void check(const Html& html)
{
    const std::string frame =
        "<p><a name=\"vexa_title\">x</a><a name=\"vexa_authors\">x</a>"
        "<a name=\"vexa_addresses\">x</a></p><body><p>" +
        quillet::to_ascii(html.str()) +
        "</p><vexa:authors a=\"\"></vexa:authors>\n<vexa:addresses a=\"\"></vexa:addresses>\n"
        "</body>";
    const std::string problems = quillet::test::problems_of_html(frame);
    if (problems.empty())
        return;
    std::fprintf(stderr, "%s\n%s\n", problems.c_str(), frame.c_str());
    std::abort();
}

template <typename Result>
void check_if_any(const std::optional<Result>& html)
{
    if (html)
        check(*html);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    check(quillet::text_to_html(text));
    for (const Html& paragraph : quillet::text_to_paragraphs(text))
        check(paragraph);
    check(quillet::escape(quillet::text_to_plain(text)));
    check_if_any(quillet::format_formula(text));
    check_if_any(quillet::format_moiety_formula(text));
    check_if_any(quillet::format_characteristic_radiation(text));
    check(quillet::space_group_from_symbol(text).symbol);
    check(quillet::space_group_from_hall(text).symbol);
    for (const quillet::NumberFormat format :
         {quillet::as_given, quillet::without_su, quillet::trimmed_zeros, quillet::rounded(2),
          quillet::rounded_and_trimmed(1)})
        check(quillet::format_number_text(text, format));
    check_if_any(quillet::format_with_error(text, text));
    if (const auto number = quillet::parse_number(text))
        quillet::with_su(*number, *number);
    if (const auto operation = quillet::parse_symmetry_operation(text))
        check(operation->html());
    if (const auto criterion = quillet::parse_criterion(text))
        check(criterion->html);
    quillet::split_name(text, true);
    quillet::split_addresses(text);
    quillet::check_orcid(text);
    quillet::unfold_text_field(text);
    return 0;
}
