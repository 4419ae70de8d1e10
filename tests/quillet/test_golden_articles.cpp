// Whole articles. For each CIF in golden/ and each example there is the article that it must give,
// as HTML. After a change that is meant, run this program with QUILLET_UPDATE_GOLDEN=1 in the
// environment, and look at what git says has changed.

#include "tests/quillet/support.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace quillet
{
namespace
{

namespace fs = std::filesystem;

const fs::path golden_folder = fs::path(VEXA_SOURCE_DIR) / "tests/quillet/golden";

std::vector<std::string> cif_names_in(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".cif")
            names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string read_whole(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string first_difference(const std::string& expected, const std::string& actual)
{
    std::istringstream a(expected);
    std::istringstream b(actual);
    std::string line_a;
    std::string line_b;
    for (int number = 1;; ++number) {
        const bool more_a = static_cast<bool>(std::getline(a, line_a));
        const bool more_b = static_cast<bool>(std::getline(b, line_b));
        if (!more_a && !more_b)
            return "";
        if (!more_a || !more_b || line_a != line_b)
            return "line " + std::to_string(number) + "\n  expected: " + (more_a ? line_a : "") +
                   "\n  actual:   " + (more_b ? line_b : "");
    }
}

void expect_golden(const fs::path& cif, const std::string& option, const fs::path& golden)
{
    std::vector<std::string> arguments = {option, cif.string()};
    if (option == "-htmPX")
        arguments.insert(arguments.end(), {"C", "qlettemplate_word.html"});
    const test::Outcome outcome = test::run_quillet(arguments);
    ASSERT_EQ(outcome.err, "");
    EXPECT_EQ(test::problems_of_html(outcome.out), "");
    if (std::getenv("QUILLET_UPDATE_GOLDEN")) {
        std::ofstream(golden, std::ios::binary) << outcome.out;
        return;
    }
    ASSERT_TRUE(fs::exists(golden)) << golden << " is missing";
    EXPECT_EQ(first_difference(read_whole(golden), outcome.out), "");
}

class GoldenArticle : public testing::TestWithParam<std::string>
{
};

TEST_P(GoldenArticle, IsAsItWas)
{
    expect_golden(golden_folder / (GetParam() + ".cif"), "-htmPX",
                  golden_folder / (GetParam() + ".html"));
}

INSTANTIATE_TEST_SUITE_P(SmallMolecules, GoldenArticle,
                         testing::ValuesIn(cif_names_in(golden_folder)),
                         [](const auto& article) { return article.param; });

const fs::path macromolecule_folder = golden_folder / "macromolecules";

class GoldenMacromolecule : public testing::TestWithParam<std::string>
{
};

TEST_P(GoldenMacromolecule, IsAsItWas)
{
    expect_golden(macromolecule_folder / (GetParam() + ".cif"), "-htmmo6",
                  macromolecule_folder / (GetParam() + ".html"));
}

INSTANTIATE_TEST_SUITE_P(Macromolecules, GoldenMacromolecule,
                         testing::ValuesIn(cif_names_in(macromolecule_folder)),
                         [](const auto& article) { return article.param; });

const fs::path scattering_folder = golden_folder / "scattering";

class GoldenScattering : public testing::TestWithParam<std::string>
{
};

TEST_P(GoldenScattering, IsAsItWas)
{
    expect_golden(scattering_folder / (GetParam() + ".cif"), "-sas",
                  scattering_folder / (GetParam() + ".html"));
}

INSTANTIATE_TEST_SUITE_P(Scattering, GoldenScattering,
                         testing::ValuesIn(cif_names_in(scattering_folder)),
                         [](const auto& article) { return article.param; });

struct Example {
    const char* cif;
    const char* option;
    const char* golden;
};

class GoldenExample : public testing::TestWithParam<Example>
{
};

TEST_P(GoldenExample, IsAsItWas)
{
    expect_golden(fs::path(VEXA_SOURCE_DIR) / "examples" / GetParam().cif, GetParam().option,
                  golden_folder / GetParam().golden);
}

INSTANTIATE_TEST_SUITE_P(
    Examples, GoldenExample,
    testing::Values(Example{"small_molecule.cif", "-htmPX", "example_small_molecule.html"},
                    Example{"macromolecule.cif", "-htmmo6", "example_macromolecule.html"},
                    Example{"macromolecule.cif", "-htmmo5", "example_communication.html"},
                    Example{"scattering.cif", "-sas", "example_scattering.html"},
                    Example{"scattering_series.cif", "-sas", "example_scattering_series.html"}));

} // namespace
} // namespace quillet
