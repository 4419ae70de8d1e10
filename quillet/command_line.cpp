#include "quillet/command_line.h"

#include "quillet/unicode.h"

namespace quillet
{

// Its form is that which help2man makes a manual page of.
const char* const usage =
    "Usage: quillet -htmmo6 FILE [-sas] [OPTION]...\n"
    "  or:  quillet -htmmo5 FILE [-sas] [OPTION]...\n"
    "  or:  quillet -sas FILE [OPTION]...\n"
    "  or:  quillet -htmPX FILE C TEMPLATE [OPTION]...\n"
    "  or:  quillet --figure FILE OUT.svg|OUT.png [--block=NAME] [OPTION]...\n"
    "  or:  quillet --check FILE [--strict]\n"
    "\n"
    "Reads the CIF FILE and prints the article it is the start of as HTML, or draws its "
    "structure.\n"
    "\n"
    "What to make:\n"
    "  -htmmo6       article on a macromolecular structure\n"
    "  -htmmo5       communication on the crystallization of a macromolecule\n"
    "  -sas          alone or with one of these: article on small-angle scattering\n"
    "  -htmPX        article on small-molecule structures, in the form of TEMPLATE, a file\n"
    "                looked for in the working directory and then beside the program\n"
    "  --figure      drawing of the asymmetric unit of a small-molecule structure, of the\n"
    "                curves of a scattering measurement, or of the statistics of a\n"
    "                macromolecular structure in resolution shells: of the first one in FILE\n"
    "  --block=NAME  with --figure: of that in the block data_NAME\n"
    "  --check       nothing but the warnings about FILE, of whatever kind it is\n"
    "\n"
    "Options:\n"
    "  --warnings=article   warnings about the CIF are the last section of the article (default)\n"
    "  --warnings=stderr    they go to standard error\n"
    "  --warnings=none      they are dropped\n"
    "  --strict             warnings are errors (mere remarks are not)\n"
    "  --geometry=marked    bonds and angles of a small molecule are those marked for publication\n"
    "                       in the CIF (default)\n"
    "  --geometry=all       all that involve no hydrogen atom\n"
    "  -h, --help           print this text\n"
    "  --version            print the version\n"
    "\n"
    "Exit status:\n"
    "  0  the article was printed, the drawing written, or the file checked\n"
    "  1  the file cannot be read, is not a CIF, or has nothing to draw; or --strict and a "
    "warning\n"
    "  2  wrong call\n";

namespace
{

WarningPlace parse_warning_place(const std::string& word)
{
    if (word == "article")
        return WarningPlace::article;
    if (word == "stderr")
        return WarningPlace::standard_error;
    if (word == "none")
        return WarningPlace::nowhere;
    throw UsageError("--warnings is article, stderr or none, not \u201c" + word + "\u201d");
}

class Parser
{
public:
    CommandLine parse(const std::vector<std::string>& arguments)
    {
        for (const std::string& argument : arguments)
            take(argument);
        if (m_result.task == CommandLine::Task::article)
            settle();
        return std::move(m_result);
    }

private:
    void take(const std::string& argument)
    {
        const std::string warnings = "--warnings=";
        const std::string block = "--block=";
        if (argument == "--help" || argument == "-h")
            m_result.task = CommandLine::Task::help;
        else if (argument == "--version")
            m_result.task = CommandLine::Task::version;
        else if (argument == "--strict")
            m_result.is_strict = true;
        else if (argument == "--geometry=all")
            m_result.article.geometry = GeometrySelection::without_hydrogen;
        else if (argument == "--geometry=marked")
            m_result.article.geometry = GeometrySelection::marked;
        else if (begins_with(argument, warnings))
            take_warning_place(argument.substr(warnings.size()));
        else if (argument == "-sas")
            m_is_scattering = true;
        else if (argument == "-htmmo6" || argument == "-htmmo5" || argument == "-htmPX" ||
                 argument == "--figure" || argument == "--check")
            take_task(argument);
        else if (begins_with(argument, block))
            m_result.figure_block = argument.substr(block.size());
        else if (!m_task.empty() || m_is_scattering) // what begins with "-" may be a file
            m_operands.push_back(argument);
        else if (begins_with(argument, "-"))
            throw UsageError("unknown option " + argument);
        else
            throw UsageError("no article is asked for: -htmmo6, -htmmo5, -sas or -htmPX must come "
                             "first");
    }

    void take_warning_place(const std::string& word)
    {
        m_result.warnings = parse_warning_place(word);
        m_result.article.has_notes_section = m_result.warnings == WarningPlace::article;
    }

    void take_task(const std::string& argument)
    {
        if (!m_task.empty())
            throw UsageError(m_task + " and " + argument + " exclude each other");
        m_task = argument;
    }

    void settle()
    {
        if (m_task.empty() && !m_is_scattering)
            throw UsageError("no article is asked for: give -htmmo6, -htmmo5, -sas or -htmPX");
        if (m_operands.empty() || m_operands.front().empty())
            throw UsageError("no CIF file is given");
        m_result.cif_path = m_operands.front();
        if (m_task == "--figure")
            settle_figure();
        else if (m_task == "--check")
            settle_check();
        else if (m_task == "-htmPX")
            settle_small_molecule();
        else
            settle_macromolecule();
    }

    void settle_figure()
    {
        const auto ends_with = [&](const std::string& ending) {
            const std::string& path = m_operands.back();
            return path.size() > ending.size() &&
                   path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
        };
        if (m_operands.size() != 2 || !(ends_with(".svg") || ends_with(".png")))
            throw UsageError("--figure takes the CIF file and a file to write, .svg or .png");
        m_result.task = CommandLine::Task::figure;
        m_result.figure_path = m_operands[1];
        m_result.figure_format = ends_with(".png") ? FigureFormat::png : FigureFormat::svg;
    }

    void settle_check()
    {
        if (m_operands.size() > 1 || m_is_scattering)
            throw UsageError("--check takes one CIF file and no kind of article");
        m_result.task = CommandLine::Task::check;
        m_result.warnings = WarningPlace::standard_error;
        m_result.article.has_notes_section = false;
    }

    void settle_small_molecule()
    {
        if (m_is_scattering)
            throw UsageError("-sas does not go with -htmPX");
        if (m_operands.size() != 3 || m_operands[1] != "C")
            throw UsageError("-htmPX takes the CIF file, the letter C and the template");
        m_result.article.kind = ArticleKind::small_molecule;
        m_result.article.template_path = m_operands[2];
    }

    void settle_macromolecule()
    {
        if (m_operands.size() > 1)
            throw UsageError((m_task.empty() ? "-sas" : m_task) + " takes one CIF file; \u201c" +
                             m_operands[1] + "\u201d is one too many");
        m_result.article.prefers_communication = m_task == "-htmmo5";
        m_result.article.kind = m_result.article.prefers_communication ? ArticleKind::communication
                                                                       : ArticleKind::structure;
        if (m_is_scattering)
            m_result.article.kind = ArticleKind::scattering;
    }

    CommandLine m_result;
    std::string m_task;
    bool m_is_scattering = false;
    std::vector<std::string> m_operands;
};

} // namespace

CommandLine parse_command_line(const std::vector<std::string>& arguments)
{
    return Parser().parse(arguments);
}

} // namespace quillet
