// quillet's command line.
#pragma once

#include "quillet/quillet.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace quillet
{

enum class WarningPlace { article, standard_error, nowhere };

struct CommandLine {
    enum class Task { article, check, figure, help, version } task = Task::article;
    std::string cif_path;
    ArticleOptions article; // its template's path as given
    std::string figure_path;
    FigureFormat figure_format = FigureFormat::svg;
    std::string figure_block;
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
