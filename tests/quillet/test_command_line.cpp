#include "quillet/command_line.h"

#include "quillet/run.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace quillet
{
namespace
{

using test::Outcome;
using test::run_quillet;
using test::TemporaryFile;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string small_cif = "data_I\n_cell_length_a 7\n";

TEST(CommandLine, CallsOfTheApplication)
{
    CommandLine command = parse_command_line({"-htmmo6", "/a b/x.cif"});
    EXPECT_EQ(command.article.kind, ArticleKind::structure);
    EXPECT_EQ(command.cif_path, "/a b/x.cif");
    EXPECT_EQ(parse_command_line({"-htmmo5", "x.cif"}).article.kind, ArticleKind::communication);
    EXPECT_EQ(parse_command_line({"-htmmo6", "x.cif", "-sas"}).article.kind,
              ArticleKind::scattering);
    EXPECT_EQ(parse_command_line({"-sas", "x.cif"}).article.kind, ArticleKind::scattering);
    EXPECT_EQ(parse_command_line({"-sas", "x.cif"}).cif_path, "x.cif");
    EXPECT_EQ(parse_command_line({"-sas", "x.cif", "-htmmo5"}).article.kind,
              ArticleKind::scattering);
    command = parse_command_line({"-htmPX", "x.cif", "C", "t.html"});
    EXPECT_EQ(command.article.kind, ArticleKind::small_molecule);
    EXPECT_EQ(command.article.template_path, "t.html");
}

TEST(CommandLine, WarningsHaveAPlace)
{
    EXPECT_EQ(parse_command_line({"-htmmo6", "x.cif"}).warnings, WarningPlace::article);
    EXPECT_EQ(parse_command_line({"--warnings=stderr", "-htmmo6", "x.cif"}).warnings,
              WarningPlace::standard_error);
    EXPECT_EQ(parse_command_line({"-htmmo6", "x.cif", "--warnings=none"}).warnings,
              WarningPlace::nowhere);
    EXPECT_TRUE(parse_command_line({"-htmmo6", "x.cif", "--strict"}).is_strict);
}

TEST(CommandLine, GeometryIsWhatIsMarkedUnlessAllIsWanted)
{
    EXPECT_EQ(parse_command_line({"-htmmo6", "x.cif"}).article.geometry, GeometrySelection::marked);
    EXPECT_EQ(parse_command_line({"-htmmo6", "x.cif", "--geometry=all"}).article.geometry,
              GeometrySelection::without_hydrogen);
}

TEST(CommandLine, WrongCallsAreRefused)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"-htmmo6"},
                                               {"-htmmo6", ""},
                                               {"-sas"},
                                               {"-sas", "x.cif", "y.cif"},
                                               {"x.cif"},
                                               {"-x", "y.cif"},
                                               {"-htmmo6", "x.cif", "y.cif"},
                                               {"-htmmo6", "-htmmo5", "x.cif"},
                                               {"-htmPX", "x.cif"},
                                               {"-htmPX", "x.cif", "B", "t.html"},
                                               {"-htmPX", "x.cif", "C", "t.html", "-sas"},
                                               {"-htmmo6", "x.cif", "--warnings=loud"}})
        EXPECT_THROW(parse_command_line(arguments), UsageError);
}

TEST(Program, CallWithoutFileTellsHowToCallIt)
{
    const Outcome outcome = run_quillet({"-htmmo6"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("quillet: no CIF file is given\n\nUsage: quillet "));
}

TEST(Program, HelpAndVersion)
{
    EXPECT_THAT(run_quillet({"--help"}).out, StartsWith("Usage: quillet "));
    EXPECT_THAT(run_quillet({"--version"}).out, testing::MatchesRegex("quillet [0-9.]+\n"));
    EXPECT_EQ(run_quillet({"--help"}).status, 0);
}

TEST(Program, ArticleGoesToStandardOutputAlone)
{
    const TemporaryFile file(small_cif, "sp ace '\u00E9'.cif");
    const Outcome outcome = run_quillet({"-htmPX", file.path(), "C", "qlettemplate_word.html"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(test::problems_of_html(outcome.out), "");
}

TEST(Program, ErrorsTellFileLineAndColumnInCharacters)
{
    const TemporaryFile file("data_I\n_cell_length_a '\u00E9' x\n");
    const Outcome outcome = run_quillet({"-htmmo6", file.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("quillet: " + file.path() + ":2:20: error: "));
    EXPECT_THAT(outcome.err,
                HasSubstr("\n _cell_length_a '\u00E9' x\n" + std::string(20, ' ') + "^\n"));
}

TEST(Program, LongLinesAreCutAroundTheError)
{
    const TemporaryFile file("data_I\n_cell_length_a " + std::string(500, 'y') + " x\n");
    const Outcome outcome = run_quillet({"-htmmo6", file.path()});
    EXPECT_THAT(outcome.err, HasSubstr("y x\n"));
    EXPECT_LT(outcome.err.size(), 500 + file.path().size());
}

TEST(Program, UnreadableFilesAreErrors)
{
    const Outcome missing = run_quillet({"-htmmo6", "/nonexistent.cif"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, StartsWith("quillet: /nonexistent.cif: error: cannot be read: "));
    EXPECT_EQ(run_quillet({"-htmmo6", "/tmp"}).status, 1);
}

TEST(Program, CifWithoutAnythingKnownIsAnError)
{
    const TemporaryFile file("data_x\n_unheard_of 1\n");
    const Outcome outcome = run_quillet({"-htmmo6", file.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("not a recognised CIF"));
}

TEST(Program, BadTemplateIsAnError)
{
    const TemporaryFile cif(small_cif);
    const TemporaryFile bad("{{titel}}", "bad.html");
    const Outcome outcome = run_quillet({"-htmPX", cif.path(), "C", bad.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("quillet: " + bad.path() + ":1:1: error: "));
    EXPECT_EQ(run_quillet({"-htmPX", cif.path(), "C", "absent.html"}).status, 1);
}

TEST(Program, TemplatesAreLookedForInTheWorkingDirectoryThenBesideTheProgram)
{
    const TemporaryFile cif(small_cif);
    const TemporaryFile mine("\xEF\xBB\xBF{{>article_start}}mine\r\n{{>article_end}}", "mine.html");
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(run({"-htmPX", cif.path(), "C", "mine.html"}, mine.folder(), out, err), 0)
        << err.str();
    EXPECT_THAT(out.str(), HasSubstr("mine\n"));
    EXPECT_EQ(run({"-htmPX", cif.path(), "C", "absent.html"}, mine.folder(), out, err), 1);
    EXPECT_THAT(err.str(), StartsWith("quillet: absent.html: error: this template is neither"));
}

TEST(Program, WarningsGoWhereTheyAreSent)
{
    const TemporaryFile file("data_I\n_cell_length_a '\u00E9'\n_cell_length_a 2\n");
    const std::string line = file.path() + ":3:1: warning: Data name";
    const Outcome in_article = run_quillet({"-htmmo6", file.path()});
    EXPECT_THAT(in_article.out, HasSubstr("<li>line 3, column 1: Data name"));
    EXPECT_EQ(in_article.err, "");

    const Outcome on_stderr = run_quillet({"-htmmo6", file.path(), "--warnings=stderr"});
    EXPECT_EQ(on_stderr.status, 0);
    EXPECT_THAT(on_stderr.err, HasSubstr("quillet: " + line));
    EXPECT_THAT(on_stderr.out, Not(HasSubstr("Notes on the CIF")));

    const Outcome nowhere = run_quillet({"-htmmo6", file.path(), "--warnings=none"});
    EXPECT_EQ(nowhere.err, "");
    EXPECT_THAT(nowhere.out, Not(HasSubstr("Notes on the CIF")));

    const Outcome strict = run_quillet({"-htmmo6", file.path(), "--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.out, "");
    EXPECT_THAT(strict.err, HasSubstr(file.path() + ":3:1: error: Data name"));
}

TEST(Program, StrictnessIsAboutWarningsNotRemarks)
{
    const TemporaryFile file("data_I\n_cell_length_a 2\n_reflns_threshold_expression I>2\\s(I)\n");
    const Outcome outcome = run_quillet(
        {"-htmPX", file.path(), "C", "qlettemplate_word.html", "--strict", "--warnings=stderr"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr(": note: Rows left out"));
}

TEST(Program, FileDecidesWhichArticleIsMade)
{
    const TemporaryFile core(small_cif);
    const Outcome outcome = run_quillet({"-htmmo5", core.path(), "-sas"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("Experimental details"));
    EXPECT_THAT(outcome.out, HasSubstr("small-angle scattering was asked for"));
}

} // namespace
} // namespace quillet
