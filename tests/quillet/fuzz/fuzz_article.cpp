// libFuzzer target: any bytes as a CIF. quillet must make an article that is well-formed and holds
// both blocks once, or say with exit status 1 what is wrong with the file; and it must be able to
// draw the figure or refuse.

#include "quillet/figure.h"
#include "quillet/read_cif.h"
#include "tests/quillet/support.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// A file in memory that can be opened by name.
class MemoryFile
{
public:
    MemoryFile(const unsigned char* data, std::size_t size) : m_descriptor(memfd_create("cif", 0))
    {
        if (write(m_descriptor, data, size) != static_cast<ssize_t>(size))
            std::abort();
    }
    ~MemoryFile() { close(m_descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};

void require(bool condition, const std::string& what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

void check_article(const std::string& path, const std::string& option)
{
    const auto outcome = quillet::test::run_quillet({option, path, "--warnings=article"});
    if (outcome.status == 0) {
        require(outcome.err.empty(), "something on standard error: " + outcome.err);
        const std::string problems = quillet::test::problems_of_html(outcome.out);
        require(problems.empty(), problems + "\n" + outcome.out);
    } else {
        require(outcome.status == 1, "exit status " + std::to_string(outcome.status));
        require(outcome.out.empty(), "an article in spite of the error");
        require(outcome.err.find("quillet: " + path + ":") == 0, outcome.err);
    }
}

void check_figure(const std::string& path)
{
    try {
        quillet::Notes notes;
        const auto document = quillet::read_cif(path, notes);
        const std::string svg = quillet::make_figure(document, {}, notes);
        require(svg.find("nan") == std::string::npos, svg);
    } catch (const quillet::InputError&) {
        return; // refused
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const MemoryFile file(data, size);
    check_article(file.path(), "-htmmo6");
    check_article(file.path(), "-htmmo5");
    check_figure(file.path());
    return 0;
}
