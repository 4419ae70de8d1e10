#include "quillet/run.h"

#include "quillet/article.h"
#include "quillet/command_line.h"
#include "quillet/html.h"
#include "quillet/read_cif.h"
#include "quillet/text_source.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <ostream>

namespace quillet
{

namespace
{

constexpr int done = 0;
constexpr int bad_input = 1;
constexpr int wrong_call = 2;

// The line with a caret under the place; long lines are cut around it.
std::string listing(const std::string& line, std::uint32_t column)
{
    constexpr std::size_t width = 100;
    constexpr std::size_t before = 60;
    std::string_view shown = line;
    std::size_t at = column - 1;
    while (at > before && count_characters(shown) > width) {
        take_character(shown);
        --at;
    }
    std::string result = " ";
    std::string caret = " ";
    for (std::size_t i = 0; !shown.empty() && i < width; ++i) {
        const char32_t c = take_character(shown);
        append_character(result, is_invalid_byte(c) ? U'\uFFFD' : c);
        if (i < at)
            caret += c == '\t' ? '\t' : ' ';
    }
    return result + "\n" + caret + "^\n";
}

void print_error(const InputError& error, const std::string& cif_path, std::ostream& err)
{
    Position where = error.where();
    std::string line = error.source_line();
    if (line.empty() && where.line > 0 && error.file() == cif_path) {
        const auto lines = read_lines_of(cif_path, {where.line});
        line = lines.empty() ? std::string() : lines.begin()->second;
    }
    if (where.line > 0)
        where.column = column_in_characters(line, where.column);
    err << "quillet: " << format_message(error.file(), where, "error", error.what()) << '\n';
    if (!line.empty())
        err << listing(line, where.column);
}

void print_notes(const Notes& notes, const std::string& path, const char* severity,
                 std::ostream& err)
{
    for (const Note& note : notes.all())
        err << "quillet: " << format_message(path, note.where, severity, note.text) << '\n';
}

Document read_recognised(const std::string& path, Notes& notes)
{
    Document document = read_cif(path, notes);
    if (document.kind == Kind::unrecognised)
        throw InputError(path, {},
                         "not a recognised CIF: it has neither data of a small-molecule or "
                         "macromolecular structure nor of small-angle scattering");
    return document;
}

int make_and_print(const CommandLine& command, const std::string& program_folder, std::ostream& out,
                   std::ostream& err)
{
    std::optional<ArticleTemplate> own_template;
    if (!command.template_name.empty())
        own_template = ArticleTemplate::from_file(command.template_name, program_folder);
    Notes notes;
    const Document document = read_recognised(command.cif_path, notes);
    const bool with_notes = command.warnings == WarningPlace::article && !command.is_strict;
    const std::string html =
        make_article(document, command.flavour, own_template, with_notes, notes);

    if (command.is_strict && !notes.empty()) {
        print_notes(notes, command.cif_path, "error", err);
        return bad_input;
    }
    if (command.warnings == WarningPlace::standard_error)
        print_notes(notes, command.cif_path, "warning", err);
    out << to_ascii(html);
    return done;
}

int run_article(const CommandLine& command, const std::string& program_folder, std::ostream& out,
                std::ostream& err)
{
    try {
        return make_and_print(command, program_folder, out, err);
    } catch (const InputError& error) {
        print_error(error, command.cif_path, err);
    } catch (const std::exception& error) {
        err << "quillet: " << format_message(command.cif_path, {}, "error", error.what()) << '\n';
    }
    return bad_input;
}

} // namespace

int run(const std::vector<std::string>& arguments, const std::string& program_folder,
        std::ostream& out, std::ostream& err)
{
    try {
        const CommandLine command = parse_command_line(arguments);
        if (command.task == CommandLine::Task::help) {
            out << usage;
            return done;
        }
        if (command.task == CommandLine::Task::version) {
            out << "quillet " << VEXAWORD_VERSION << '\n';
            return done;
        }
        return run_article(command, program_folder, out, err);
    } catch (const UsageError& error) {
        err << "quillet: " << error.what() << "\n\n" << usage;
        return wrong_call;
    }
}

} // namespace quillet
