#include "tests/support/TempFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

TempFolder::TempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "tagwell-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::filesystem::filesystem_error("mkdtemp", pattern, std::error_code(errno, std::generic_category()));
    root = std::filesystem::canonical(pattern);
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

std::string readBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>() };
}

void writeBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out)
        throw std::runtime_error("cannot write " + path);
}
