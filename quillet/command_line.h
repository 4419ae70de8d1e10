// quillet's command line.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace quillet
{

// Which article is asked for. What the file holds decides in the end: see make_article().
enum class Flavour {
    structure,     // -htmmo6: macromolecular structure, in full
    communication, // -htmmo5: macromolecular crystallization communication
    scattering,    // -sas with either of these
    small_molecule // -htmPX
};

enum class WarningPlace { article, standard_error, nowhere };

struct CommandLine {
    enum class Task { article, help, version } task = Task::article;
    Flavour flavour = Flavour::structure;
    std::string cif_path;
    std::string template_name; // empty: the built-in one
    WarningPlace warnings = WarningPlace::article;
    bool is_strict = false; // warnings are errors
};

// The call is wrong.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// `arguments` without the program's name. Throws UsageError.
CommandLine parse_command_line(const std::vector<std::string>& arguments);

// For --help and after wrong calls.
extern const char* const usage;

} // namespace quillet
