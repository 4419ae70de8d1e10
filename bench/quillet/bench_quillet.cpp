// How long quillet takes and how much memory it needs, as ratios to `gemmi validate`, which only
// reads the file and checks its syntax, and to the bare grammar that quillet reads with, on a file
// mapped into memory. All run as processes, in turns; the best of several runs counts.
//
//   bench_quillet            with files that it makes: a small macromolecule, 4 MB small molecule,
//                            100 MB macromolecule
//   bench_quillet FILE...    with these files
//   bench_quillet --large    bounded memory: 500 MB macromolecule

#include "bench/ratio.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gemmi/cif.hpp>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace
{

namespace fs = std::filesystem;

struct Cost {
    double seconds = 1e9; // processor time
    long kilobytes = 1L << 60;
};

Cost run(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error =
        posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage usage{};
    if (error != 0 || wait4(child, &status, 0, &usage) != child || status != 0)
        throw std::runtime_error("cannot run " + command[0]);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss};
}

void keep_better(Cost& best, const Cost& cost)
{
    best.seconds = std::min(best.seconds, cost.seconds);
    best.kilobytes = std::min(best.kilobytes, cost.kilobytes);
}

// What a file may cost at most, as ratios.
struct Targets {
    const char* validate_time;
    const char* validate_memory;
    const char* grammar_time;
};

void print_memory(const char* what, const Cost& ours, const Cost& theirs, const char* target)
{
    const auto megabytes = [](const Cost& cost) {
        return static_cast<double>(cost.kilobytes) / 1e3;
    };
    std::printf("%-46s %7.1f MB %7.1f MB %8.3f  %s\n", what, megabytes(ours), megabytes(theirs),
                megabytes(ours) / megabytes(theirs), target);
}

std::string own_path; // of this program

void compare(const std::string& file, const std::string& name, const Targets& targets)
{
    constexpr int runs = 7;
    Cost validate;
    Cost quillet;
    Cost grammar;
    Cost nothing;
    for (int i = 0; i < runs; ++i) {
        keep_better(validate, run({"gemmi", "validate", file}));
        keep_better(quillet, run({std::string(VEXA_BUNDLE_DIR) + "/quillet", "-htmmo6", file}));
        keep_better(grammar, run({own_path, "--bare-grammar", file}));
        keep_better(nothing, run({"/bin/true"}));
    }
    std::printf("%s (%.1f MB)\n", name.c_str(), static_cast<double>(fs::file_size(file)) / 1e6);
    bench::printRow("  time: gemmi validate", quillet.seconds, validate.seconds,
                    targets.validate_time);
    bench::printRow("  time: grammar without actions", quillet.seconds, grammar.seconds,
                    targets.grammar_time);
    print_memory("  peak memory: gemmi validate", quillet, validate, targets.validate_memory);
    std::printf("  %.1f ms more than /bin/true\n", (quillet.seconds - nothing.seconds) * 1e3);
}

// The same grammar on a file in memory, with nothing done about what it finds.
int parse_without_actions(const char* path)
{
    namespace pegtl = tao::pegtl;
    pegtl::file_input<> input(path);
    return pegtl::parse<gemmi::cif::rules::file, pegtl::nothing, gemmi::cif::Errors>(input) ? 0 : 1;
}

std::string read_whole(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The small-molecule example with its reflections in a loop and again as an embedded file.
void write_small_molecule(std::ostream& out)
{
    out << read_whole(fs::path(VEXA_SOURCE_DIR) / "examples/small_molecule.cif");
    std::array<char, 80> line{};
    constexpr int reflections = 58000;
    out << "loop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_meas\n"
           "_refln_F_squared_sigma\n_refln_include_status\n";
    for (int i = 0; i < reflections; ++i) {
        std::snprintf(line.data(), line.size(), "%4d %3d %3d %10.2f %8.2f o\n", i % 13, i / 13 % 11,
                      i / 143 % 17, i * 0.37, i * 0.01);
        out << line.data();
    }
    out << "_shelx_hkl_file\n;\n";
    for (int i = 0; i < reflections; ++i) {
        std::snprintf(line.data(), line.size(), "%4d%4d%4d%8.2f%8.2f\n", i % 13, i / 13 % 11,
                      i / 143 % 17, (i % 99999) * 0.1, 1.0);
        out << line.data();
    }
    out << ";\n";
}

// The macromolecular example with so many more atoms.
void write_macromolecule(std::ostream& out, int atoms)
{
    const std::string example =
        read_whole(fs::path(VEXA_SOURCE_DIR) / "examples/macromolecule.cif");
    const auto end_of_atoms = example.rfind("#");
    out << example.substr(0, end_of_atoms);
    std::array<char, 160> line{};
    for (int i = 0; i < atoms; ++i) {
        std::snprintf(line.data(), line.size(),
                      "ATOM %d C CA . LEU A 1 %d ? %.3f %.3f %.3f 1.00 %.2f %d A 1\n", i + 300,
                      i % 28 + 1, (i % 24613) * 0.001, (i % 27082) * 0.001, (i % 39374) * 0.001,
                      10 + (i % 4000) * 0.01, i % 28 + 1);
        out << line.data();
    }
    out << "#\n";
}

template<typename Write>
void compare_made_file(const std::string& name, const Targets& targets, Write write)
{
    const fs::path path =
        fs::temp_directory_path() / ("bench-quillet-" + std::to_string(getpid()) + ".cif");
    {
        std::ofstream file(path, std::ios::binary);
        write(file);
    }
    compare(path.string(), name, targets);
    fs::remove(path);
}

} // namespace

int main(int argc, char* argv[])
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    own_path = fs::read_symlink("/proc/self/exe").string();
    const Targets none = {"", "", ""};
    try {
        if (arguments.size() == 2 && arguments[0] == "--bare-grammar")
            return parse_without_actions(argv[2]);
        bench::printHead();
        if (arguments.empty()) {
            compare(std::string(VEXA_SOURCE_DIR) + "/examples/macromolecule.cif",
                    "small macromolecule (target: 15 ms more than /bin/true)", none);
            compare_made_file("small molecule with reflections", {"<= 1.0", "", ""},
                              write_small_molecule);
            compare_made_file("macromolecule", {"<= 0.25", "<= 0.125", "<= 1.5"},
                              [](std::ostream& out) { write_macromolecule(out, 1'440'000); });
        } else if (arguments[0] == "--large") {
            compare_made_file("large macromolecule", {"<= 0.25", "<= 0.125", "<= 1.5"},
                              [](std::ostream& out) { write_macromolecule(out, 7'200'000); });
        } else {
            for (const std::string& file : arguments)
                compare(file, file, none);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_quillet: %s\n", error.what());
        return 1;
    }
    return 0;
}
