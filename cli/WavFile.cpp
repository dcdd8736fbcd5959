#include "cli/WavFile.h"

#include "cli/FileRun.h"

#include <cerrno>
#include <filesystem>

WavFile::WavFile(const std::string& path)
{
    errno = 0;
    opened.emplace(stream, regular(path));
    if (!stream)
        throw fileErrorOf({ errno != 0 ? errno : EIO, std::generic_category() });
    blocks.emplace(stream);
    list = readChunkList(stream, *blocks);
    if (!list.isWave)
        throw FileError("not-wav", "it is no WAV file");
}

// Asked before the file is opened: opening a pipe would wait for its other end.
const std::string& WavFile::regular(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        throw fileErrorOf(error ? error : std::make_error_code(std::errc::no_such_file_or_directory));
    if (!std::filesystem::is_regular_file(status))
        throw FileError("not-a-file", "it is no file");
    return path;
}

std::string WavFile::read(uint64_t offset, uint64_t count)
{
    std::string bytes(static_cast<size_t>(available(offset, count)), '\0');
    bytes.resize(read(offset, bytes.data(), bytes.size()));
    return bytes;
}

size_t WavFile::read(uint64_t offset, char* target, size_t count)
{
    return count == 0 ? 0 : blocks->read(stream, offset, target, count);
}
