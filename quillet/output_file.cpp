#include "quillet/output_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace quillet
{

void write_file(const std::string& path, const std::string& content)
{
    namespace fs = std::filesystem;
    const std::string unfinished = path + ".part";
    const auto fail = [&](const std::string& reason) {
        std::error_code ignored;
        fs::remove(unfinished, ignored);
        throw std::runtime_error("cannot be written: " + reason);
    };
    errno = 0;
    std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (!file)
        fail(std::strerror(errno));
    std::error_code error;
    fs::rename(unfinished, path, error);
    if (error)
        fail(error.message());
}

} // namespace quillet
