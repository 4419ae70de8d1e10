#include "tests/quillet/support.h"

#include "quillet/read_cif.h"
#include "quillet/run.h"
#include "quillet/unicode.h"

#include <atomic>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace quillet::test
{

namespace fs = std::filesystem;

TemporaryFile::TemporaryFile(std::string_view content, const std::string& name)
{
    static std::atomic<int> count{0};
    const fs::path folder =
        fs::temp_directory_path() /
        ("quillet-test-" + std::to_string(getpid()) + "-" + std::to_string(++count));
    fs::create_directory(folder);
    m_path = folder / name;
    std::ofstream file(m_path, std::ios::binary);
    file << content;
    if (!file.flush())
        throw std::runtime_error("cannot write " + m_path.string());
}

TemporaryFile::~TemporaryFile()
{
    std::error_code ignored;
    fs::remove_all(m_path.parent_path(), ignored);
}

Document document_of(std::string_view text, Notes* notes)
{
    const TemporaryFile file(text);
    Notes dropped;
    return read_cif(file.path(), notes ? *notes : dropped);
}

std::vector<std::string> texts_of(const Notes& notes)
{
    std::vector<std::string> texts;
    for (const Note& note : notes.all())
        texts.push_back(note.text);
    return texts;
}

Outcome run_quillet(const std::vector<std::string>& arguments)
{
    const fs::path before = fs::current_path();
    fs::current_path(VEXA_BUNDLE_DIR);
    std::ostringstream out;
    std::ostringstream err;
    const int status = run(arguments, VEXA_BUNDLE_DIR, out, err);
    fs::current_path(before);
    return {status, out.str(), err.str()};
}

std::string article_of(std::string_view cif_text, const std::string& option)
{
    const TemporaryFile file(cif_text);
    std::vector<std::string> arguments = {option, file.path()};
    if (option == "-htmPX")
        arguments.insert(arguments.end(), {"C", "qlettemplate_word.html"});
    const Outcome outcome = run_quillet(arguments);
    if (outcome.status != 0)
        throw std::runtime_error(outcome.err);
    return outcome.out;
}

namespace
{

std::string row_of(const std::string& html, const std::string& key)
{
    const auto start = html.find("<tr data-row=\"" + key + "\">");
    if (start == std::string::npos)
        return {};
    return html.substr(start, html.find("</tr>", start) - start);
}

} // namespace

std::vector<std::string> cells_of(const std::string& html, const std::string& key)
{
    std::vector<std::string> cells;
    const std::string row = row_of(html, key);
    std::size_t at = 0;
    while ((at = row.find("<td>", at)) != std::string::npos) {
        const auto end = row.find("</td>", at);
        cells.push_back(readable(row.substr(at + 4, end - at - 4)));
        at = end;
    }
    return cells;
}

std::string label_of(const std::string& html, const std::string& key)
{
    const std::string row = row_of(html, key);
    const std::string start = "<th scope=\"row\">";
    const auto at = row.find(start);
    if (at == std::string::npos)
        return {};
    return readable(row.substr(at + start.size(), row.find("</th>") - at - start.size()));
}

std::string readable(std::string_view html)
{
    std::string result;
    constexpr std::string_view no_break_space = "\u00A0";
    for (std::size_t i = 0; i < html.size(); ++i) {
        if (html.substr(i, no_break_space.size()) == no_break_space) {
            result += ' ';
            i += no_break_space.size() - 1;
            continue;
        }
        if (html.substr(i, 2) != "&#") {
            result += html[i];
            continue;
        }
        const auto end = html.find(';', i);
        const auto c = std::stoul(std::string(html.substr(i + 2, end - i - 2)));
        append_character(result, c == 0xA0 ? U' ' : static_cast<char32_t>(c));
        i = end;
    }
    return result;
}

namespace
{

// A reader of HTML that forgives nothing.
class HtmlChecker
{
public:
    explicit HtmlChecker(std::string_view html) : m_rest(html) {}

    std::string problems()
    {
        while (m_problem.empty() && !m_rest.empty()) {
            if (m_rest.front() == '<')
                take_tag();
            else if (m_rest.front() == '&')
                take_reference();
            else
                take_character_of_text();
        }
        if (m_problem.empty() && !m_open.empty())
            m_problem = "<" + m_open.back() + "> is not closed";
        return m_problem;
    }

private:
    void take_character_of_text()
    {
        const auto byte = static_cast<unsigned char>(m_rest.front());
        if (byte >= 0x7F || (byte < 0x20 && byte != '\n' && byte != '\t'))
            m_problem = "byte " + std::to_string(byte);
        if (byte == '>')
            m_problem = "bare >";
        m_rest.remove_prefix(1);
    }

    void take_reference()
    {
        static const std::set<std::string_view> named = {"&amp;", "&lt;", "&gt;", "&quot;"};
        const auto size = m_rest.find(';') + 1;
        const std::string_view reference = m_rest.substr(0, size);
        const bool is_number =
            reference.size() > 3 && reference.substr(0, 2) == "&#" &&
            reference.substr(2, reference.size() - 3).find_first_not_of("0123456789") ==
                std::string_view::npos;
        if (size == 0 || (!is_number && named.count(reference) == 0))
            m_problem = "bare & before " + std::string(m_rest.substr(0, 20));
        else
            m_rest.remove_prefix(size);
    }

    void take_tag()
    {
        if (m_rest.substr(0, 4) == "<!--") {
            m_rest.remove_prefix(m_rest.find("-->") + 3);
            return;
        }
        const auto end = m_rest.find('>');
        if (end == std::string_view::npos) {
            m_problem = "tag without end";
            return;
        }
        const std::string_view content = m_rest.substr(1, end - 1);
        m_rest.remove_prefix(end + 1);
        if (content.substr(0, 1) == "!")
            return;
        const bool closes = content.substr(0, 1) == "/";
        const std::string name(content.substr(closes ? 1 : 0, content.find(' ')));
        check_element(name, closes);
    }

    void check_element(const std::string& name, bool closes)
    {
        static const std::set<std::string> empty = {"meta", "br"};
        static const std::set<std::string> known = {"code",
                                                    "div",
                                                    "wbr",
                                                    "html",
                                                    "head",
                                                    "body",
                                                    "title",
                                                    "p",
                                                    "a",
                                                    "h1",
                                                    "h2",
                                                    "h3",
                                                    "i",
                                                    "b",
                                                    "sup",
                                                    "sub",
                                                    "em",
                                                    "strong",
                                                    "table",
                                                    "caption",
                                                    "thead",
                                                    "tbody",
                                                    "tr",
                                                    "th",
                                                    "td",
                                                    "ul",
                                                    "li",
                                                    "pre",
                                                    "vexa:authors",
                                                    "vexa:author",
                                                    "vexa:given",
                                                    "vexa:family",
                                                    "vexa:note",
                                                    "vexa:addresses",
                                                    "vexa:address"};
        if (empty.count(name) > 0)
            return;
        if (known.count(name) == 0)
            m_problem = "unexpected element " + name;
        else if (!closes)
            m_open.push_back(name);
        else if (m_open.empty() || m_open.back() != name)
            m_problem = "</" + name + "> closes <" + (m_open.empty() ? "" : m_open.back()) + ">";
        else
            m_open.pop_back();
    }

    std::string_view m_rest;
    std::vector<std::string> m_open;
    std::string m_problem;
};

std::size_t count(std::string_view text, std::string_view part)
{
    std::size_t result = 0;
    for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1))
        ++result;
    return result;
}

} // namespace

std::string problems_of_html(const std::string& html)
{
    for (const char* once :
         {"<vexa:authors ", "</vexa:authors>", "<vexa:addresses ", "</vexa:addresses>",
          "name=\"vexa_title\"", "name=\"vexa_authors\"", "name=\"vexa_addresses\"", "</body>"}) {
        if (count(html, once) != 1)
            return std::string(once) + " stands " + std::to_string(count(html, once)) + " times";
    }
    if (html.find("</vexa:addresses>\n</body>") == std::string::npos)
        return "the addresses block does not stand before </body>";
    if (html.find("</vexa:authors>\n<vexa:addresses ") == std::string::npos)
        return "the authors block does not stand before the addresses block";
    return HtmlChecker(html).problems();
}

} // namespace quillet::test
