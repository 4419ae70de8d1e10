// The real program, as the application starts it, and every CIF at hand.

#include "tests/quillet/support.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

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
    std::FILE* file = std::fopen(errors.path().c_str(), "r");
    outcome.err = read_pipe(file);
    std::fclose(file);
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
    ASSERT_EQ(paths.size(), 3U);
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

TEST(QuilletProgram, ReadsOrRefusesEveryCifOfTheCollection)
{
    const char* folder = std::getenv("VEXA_CIF_COLLECTION");
    const auto paths = folder ? cifs_below(folder) : std::vector<fs::path>();
    if (paths.empty()) {
        std::printf("skipped: no CIF collection here\n");
        return;
    }
    for (const fs::path& path : paths) {
        expect_sound(path, {"-htmPX", path.string(), "C", "qlettemplate_word.html"});
        expect_sound(path, {"-htmmo6", path.string()});
        expect_sound(path, {"-htmmo5", path.string(), "-sas"});
    }
}

} // namespace
} // namespace quillet
