// The real program, as the application starts it, and every CIF at hand.

#include "tests/quillet/support.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillet
{
namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

std::string shell_quoted(const std::string& text)
{
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

std::string read_pipe(std::FILE* pipe)
{
    std::string text;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
        text.append(buffer.data(), count);
    return text;
}

std::string read_whole(const fs::path& path)
{
    std::FILE* file = std::fopen(path.c_str(), "r");
    std::string text = read_pipe(file);
    std::fclose(file);
    return text;
}

// Working directory: the program's own folder. Standard error comes before standard output.
test::Outcome run_program(const std::vector<std::string>& arguments)
{
    std::string command = "cd " + shell_quoted(VEXA_BUNDLE_DIR) + " && timeout 20 " +
                          shell_quoted(std::string(VEXA_BUNDLE_DIR) + "/quillet");
    for (const std::string& argument : arguments)
        command += " " + shell_quoted(argument);
    const test::TemporaryFile errors("");
    std::FILE* pipe = popen((command + " 2>" + shell_quoted(errors.path())).c_str(), "r");
    test::Outcome outcome;
    outcome.out = read_pipe(pipe);
    outcome.status = WEXITSTATUS(pclose(pipe));
    outcome.err = read_whole(errors.path());
    return outcome;
}

std::vector<fs::path> cifs_below(const fs::path& folder)
{
    std::vector<fs::path> paths;
    if (fs::exists(folder)) {
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".cif" || extension == ".mcif" || extension == ".sascif")
                paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

// An article without a fault, or an error that names the file.
void expect_sound(const fs::path& path, const std::vector<std::string>& arguments)
{
    SCOPED_TRACE(path.string());
    const test::Outcome outcome = run_program(arguments);
    if (outcome.status == 0) {
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(test::problems_of_html(outcome.out), "");
    } else {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, StartsWith("quillet: " + path.string() + ":"));
        EXPECT_THAT(outcome.err, HasSubstr(" error: "));
    }
}

TEST(QuilletProgram, MakesAnArticleOfEachExample)
{
    const auto paths = cifs_below(fs::path(VEXA_SOURCE_DIR) / "examples");
    ASSERT_EQ(paths.size(), 4U);
    for (const fs::path& path : paths) {
        SCOPED_TRACE(path.string());
        const test::Outcome outcome = run_program({"-htmmo6", path.string()});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(test::problems_of_html(outcome.out), "");
    }
}

TEST(QuilletProgram, ExitsWithTwoWithoutFile)
{
    EXPECT_EQ(run_program({"-htmmo6"}).status, 2);
    EXPECT_EQ(run_program({"-htmPX", "", "C", "qlettemplate_word.html"}).status, 2);
}

TEST(QuilletProgram, FullDiskIsAnError)
{
    const std::string command =
        "cd " + shell_quoted(VEXA_BUNDLE_DIR) + " && ./quillet --help " + ">/dev/full 2>/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
}

// Kilobytes of memory that the program needs at most for a macromolecule of so many atoms.
long peak_memory(int atoms)
{
    const test::TemporaryFile cif("data_x\n_entry.id 1abc\nloop_\n_atom_site.id\n"
                                  "_atom_site.type_symbol\n_atom_site.label_atom_id\n"
                                  "_atom_site.Cartn_x\n_atom_site.B_iso_or_equiv\n");
    // Not all in memory at once: the child process begins as a copy of this one.
    std::FILE* file = std::fopen(cif.path().c_str(), "a");
    for (int i = 1; i <= atoms; ++i)
        std::fprintf(file, "%d C \"C5'\" 12.345 20.00\n", i);
    std::fclose(file);
    const pid_t child = fork();
    if (child == 0) {
        const std::string program = std::string(VEXA_BUNDLE_DIR) + "/quillet";
        if (std::freopen("/dev/null", "w", stdout))
            execl(program.c_str(), "quillet", "-htmmo6", cif.path().c_str(), nullptr);
        _exit(127);
    }
    int status = -1;
    rusage usage{};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    EXPECT_EQ(status, 0);
    return usage.ru_maxrss;
}

TEST(QuilletProgram, MemoryDoesNotGrowWithTheNumberOfAtoms)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer keeps freed memory";
#endif
    const long small = peak_memory(1000);
    const long large = peak_memory(1000000); // 30 MB
    EXPECT_LT(large, small + 2000);
}

// The files in a folder of the collection, or all; empty, which is said, where there is none.
std::vector<fs::path> cif_collection(const std::string& subfolder = {})
{
    const char* folder = std::getenv("VEXA_CIF_COLLECTION");
    auto paths = folder ? cifs_below(fs::path(folder) / subfolder) : std::vector<fs::path>();
    if (paths.empty())
        std::printf("skipped: no CIF collection here\n");
    return paths;
}

TEST(QuilletProgram, ReadsOrRefusesEveryCifOfTheCollection)
{
    for (const fs::path& path : cif_collection()) {
        expect_sound(path, {"-htmPX", path.string(), "C", "qlettemplate_word.html"});
        expect_sound(path, {"-htmmo6", path.string()});
        expect_sound(path, {"-htmmo5", path.string()});
        expect_sound(path, {"-htmmo5", path.string(), "-sas"});
        expect_sound(path, {"-sas", path.string()});
    }
}

// Crystal structures of the collection, and what is known of them from the files.
TEST(QuilletProgram, FillsTheTablesOfMacromoleculesInTheCollection)
{
    for (const fs::path& path : cif_collection("mx-xray")) {
        SCOPED_TRACE(path.string());
        const std::string full = run_program({"-htmmo6", path.string()}).out;
        const std::string communication = run_program({"-htmmo5", path.string()}).out;
        for (const char* key :
             {"B3.abc", "B3.sg", "B4.rfree", "B4.res", "B4.n.total", "B4.rb", "B4.ra"}) {
            const auto cells = test::cells_of(full, key);
            ASSERT_FALSE(cells.empty()) << key;
            EXPECT_NE(cells.front(), "?") << key;
        }
        for (const char* key : {"B1.org", "B1.seq", "B2.meth", "B2.res", "B3.rmerge"}) {
            EXPECT_FALSE(test::cells_of(full, key).empty()) << key;
            EXPECT_EQ(test::cells_of(communication, key), test::cells_of(full, key)) << key;
        }
        EXPECT_EQ(communication.find("\"B4."), std::string::npos);
        EXPECT_EQ(communication.find("REFMAC"), std::string::npos);
    }
}

// The plain means over ligand and water atoms are those that the deposition states.
TEST(QuilletProgram, MeanBIsThatOfTheDeposition)
{
    const char* folder = std::getenv("VEXA_CIF_COLLECTION");
    const fs::path path = folder ? fs::path(folder) / "mx-xray/5i55.cif" : fs::path();
    if (!fs::exists(path)) {
        std::printf("skipped: no CIF collection here\n");
        return;
    }
    std::string text = read_whole(path);
    for (const std::string tag :
         {"_refine_hist.pdbx_B_iso_mean_ligand", "_refine_hist.pdbx_B_iso_mean_solvent"}) {
        const auto at = text.find(tag);
        ASSERT_NE(at, std::string::npos);
        text.insert(at + 1, "x");
    }
    const test::TemporaryFile without(text);
    for (const std::string& file : {path.string(), without.path()}) {
        const std::string html = run_program({"-htmmo6", file}).out;
        EXPECT_EQ(test::cells_of(html, "B4.b.lig"), std::vector<std::string>{"19.2"});
        EXPECT_EQ(test::cells_of(html, "B4.b.wat"), std::vector<std::string>{"25.9"});
    }
}

// In Guinier analyses the product of Rg and the last momentum transfer is about 1.
TEST(QuilletProgram, FillsTheTablesOfScatteringInTheCollection)
{
    for (const fs::path& path : cif_collection("sascif")) {
        SCOPED_TRACE(path.string());
        const std::string html = test::readable(run_program({"-sas", path.string()}).out);
        for (const char* key : {"C1.title", "C1.ent", "C1.org", "C1.uni", "C1.seq", "C1.mwc",
                                "C1.conc", "C1.buf", "C2.inst", "C2.wl", "C2.q", "C2.npt", "C2.T",
                                "C3.pr", "C4.gI0", "C4.gRg", "C4.pRg", "C4.dmax", "C4.ratio"}) {
            const auto cells = test::cells_of(html, key);
            ASSERT_EQ(cells.size(), 1U) << key;
            EXPECT_NE(cells.front(), "?") << key;
        }
        EXPECT_THAT(test::cells_of(html, "C2.q").front(), HasSubstr("\u00C5<sup>\u22121</sup>"));
        const std::string range = test::cells_of(html, "C4.qRg").front();
        const double last = std::stod(range.substr(range.find("\u2013") + 3));
        EXPECT_GT(last, 0.5);
        EXPECT_LT(last, 1.4);
    }
}

// A picture, or an error that names the file.
TEST(QuilletProgram, DrawsOrRefusesEveryCifOfTheCollection)
{
    for (const fs::path& path : cif_collection()) {
        SCOPED_TRACE(path.string());
        const test::TemporaryFile picture("", "out.svg");
        const test::Outcome outcome = run_program({"--figure", path.string(), picture.path()});
        EXPECT_EQ(outcome.out, "");
        if (outcome.status == 0) {
            EXPECT_EQ(outcome.err, "");
            EXPECT_GT(fs::file_size(picture.path()), 0U);
        } else {
            EXPECT_EQ(outcome.status, 1);
            EXPECT_THAT(outcome.err, StartsWith("quillet: " + path.string() + ":"));
            EXPECT_EQ(fs::file_size(picture.path()), 0U);
        }
    }
}

} // namespace
} // namespace quillet
