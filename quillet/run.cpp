#include "quillet/run.h"

#include "quillet/command_line.h"
#include "quillet/diagnostics.h"
#include "quillet/output_file.h"
#include "quillet/quillet.h"
#include "quillet/unicode.h"

#include <filesystem>
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

void print_error(const InputError& error, std::ostream& err)
{
    err << "quillet: " << format_message(error.file(), error.where(), "error", error.what())
        << '\n';
    if (!error.source_line().empty())
        err << listing(error.source_line(), error.where().column);
}

// `warning`: what warnings are called.
void print_notes(const std::vector<Note>& notes, const std::string& path, const char* warning,
                 std::ostream& err)
{
    for (const Note& note : notes) {
        const char* const severity = note.severity == Note::Severity::warning ? warning : "note";
        err << "quillet: " << format_message(path, note.where, severity, note.text) << '\n';
    }
}

// A template is looked for in the working directory and then in `program_folder`.
std::string find_template(const std::string& name, const std::string& program_folder)
{
    namespace fs = std::filesystem;
    std::error_code ignored;
    for (const fs::path& path : {fs::path(name), fs::path(program_folder) / name}) {
        if (fs::exists(path, ignored))
            return path.string();
    }
    throw InputError(name, {},
                     "this template is neither in the working directory nor in " + program_folder);
}

int make_and_print(const CommandLine& command, const std::string& program_folder, std::ostream& out,
                   std::ostream& err)
{
    ArticleOptions options = command.article;
    if (!options.template_path.empty())
        options.template_path = find_template(options.template_path, program_folder);
    const Article article = make_article(command.cif_path, options);

    if (command.is_strict && has_warnings(article.notes)) {
        print_notes(article.notes, command.cif_path, "error", err);
        return bad_input;
    }
    if (command.warnings == WarningPlace::standard_error)
        print_notes(article.notes, command.cif_path, "warning", err);
    if (command.task == CommandLine::Task::article)
        out << article.html;
    return done;
}

void draw_and_write(const CommandLine& command, std::ostream& err)
{
    const Figure figure =
        draw_figure(command.cif_path, command.figure_format, command.figure_block);
    write_file(command.figure_path, figure.data);
    if (command.warnings == WarningPlace::standard_error)
        print_notes(figure.notes, command.cif_path, "warning", err);
}

int run_task(const CommandLine& command, const std::string& program_folder, std::ostream& out,
             std::ostream& err)
{
    const bool draws = command.task == CommandLine::Task::figure;
    try {
        if (!draws)
            return make_and_print(command, program_folder, out, err);
        draw_and_write(command, err);
        return done;
    } catch (const InputError& error) {
        print_error(error, err);
    } catch (const std::exception& error) {
        const std::string& file = draws ? command.figure_path : command.cif_path;
        err << "quillet: " << format_message(file, {}, "error", error.what()) << '\n';
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
            out << "quillet " << version() << '\n';
            return done;
        }
        return run_task(command, program_folder, out, err);
    } catch (const UsageError& error) {
        err << "quillet: " << error.what() << "\n\n" << usage;
        return wrong_call;
    }
}

} // namespace quillet
