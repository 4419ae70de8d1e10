#include "quillet/command_line.h"

namespace quillet
{

const char* const usage =
    "Usage: quillet -htmmo6 FILE [-sas]\n"
    "       quillet -htmmo5 FILE [-sas]\n"
    "       quillet -htmPX FILE C TEMPLATE\n"
    "       quillet --help | --version\n"
    "\n"
    "Reads the CIF FILE and prints the article it is the start of as HTML.\n"
    "\n"
    "  -htmmo6    article on a macromolecular structure\n"
    "  -htmmo5    communication on the crystallization of a macromolecule\n"
    "  -sas       with one of these: article on small-angle scattering\n"
    "  -htmPX     article on small-molecule structures, in the form of TEMPLATE, a file\n"
    "             looked for in the working directory and then beside the program\n"
    "\n"
    "  --warnings=article   warnings about the CIF are the last section of the article (default)\n"
    "  --warnings=stderr    they go to standard error\n"
    "  --warnings=none      they are dropped\n"
    "  --strict             they are errors\n"
    "\n"
    "Exit status: 0 done; 1 the file cannot be read or is not a CIF; 2 wrong call.\n";

namespace
{

bool begins_with(const std::string& text, const std::string& prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

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
        if (argument == "--help" || argument == "-h")
            m_result.task = CommandLine::Task::help;
        else if (argument == "--version")
            m_result.task = CommandLine::Task::version;
        else if (argument == "--strict")
            m_result.is_strict = true;
        else if (begins_with(argument, warnings))
            m_result.warnings = parse_warning_place(argument.substr(warnings.size()));
        else if (argument == "-sas")
            m_is_scattering = true;
        else if (argument == "-htmmo6" || argument == "-htmmo5" || argument == "-htmPX")
            take_article(argument);
        else if (!m_article.empty()) // what begins with "-" may be a file
            m_operands.push_back(argument);
        else if (begins_with(argument, "-"))
            throw UsageError("unknown option " + argument);
        else
            throw UsageError("no article is asked for: -htmmo6, -htmmo5 or -htmPX must come first");
    }

    void take_article(const std::string& argument)
    {
        if (!m_article.empty())
            throw UsageError(m_article + " and " + argument + " exclude each other");
        m_article = argument;
    }

    void settle()
    {
        if (m_article.empty())
            throw UsageError("no article is asked for: give -htmmo6, -htmmo5 or -htmPX");
        if (m_operands.empty() || m_operands.front().empty())
            throw UsageError("no CIF file is given");
        m_result.cif_path = m_operands.front();
        if (m_article == "-htmPX")
            settle_small_molecule();
        else
            settle_macromolecule();
    }

    void settle_small_molecule()
    {
        if (m_is_scattering)
            throw UsageError("-sas does not go with -htmPX");
        if (m_operands.size() != 3 || m_operands[1] != "C")
            throw UsageError("-htmPX takes the CIF file, the letter C and the template");
        m_result.flavour = Flavour::small_molecule;
        m_result.template_name = m_operands[2];
    }

    void settle_macromolecule()
    {
        if (m_operands.size() > 1)
            throw UsageError(m_article + " takes one CIF file; \u201c" + m_operands[1] +
                             "\u201d is one too many");
        m_result.flavour = m_article == "-htmmo5" ? Flavour::communication : Flavour::structure;
        if (m_is_scattering)
            m_result.flavour = Flavour::scattering;
    }

    CommandLine m_result;
    std::string m_article;
    bool m_is_scattering = false;
    std::vector<std::string> m_operands;
};

} // namespace

CommandLine parse_command_line(const std::vector<std::string>& arguments)
{
    return Parser().parse(arguments);
}

} // namespace quillet
