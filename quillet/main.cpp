#include "quillet/run.h"

#include <filesystem>
#include <iostream>
#ifdef __APPLE__
#include <cstdint>
#include <mach-o/dyld.h>
#endif

namespace
{

// The folder of the running program, whatever link it was started by.
std::string program_folder(const char* name)
{
    namespace fs = std::filesystem;
    std::error_code error;
#ifdef __APPLE__
    char path[4096];
    std::uint32_t size = sizeof path;
    if (_NSGetExecutablePath(path, &size) == 0)
        return fs::canonical(path, error).parent_path().string();
#else
    const fs::path path = fs::read_symlink("/proc/self/exe", error);
    if (!error)
        return path.parent_path().string();
#endif
    return fs::path(name).parent_path().string();
}

} // namespace

int main(int argc, char* argv[])
{
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const int status =
        quillet::run(arguments, program_folder(argc > 0 ? argv[0] : ""), std::cout, std::cerr);
    std::cout.flush();
    // A full disk or a closed pipe must not look like an article.
    return status == 0 && !std::cout ? 1 : status;
}
