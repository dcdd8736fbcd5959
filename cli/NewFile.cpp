#include "cli/NewFile.h"

#include "app/files/WavSuffix.h"
#include "cli/FileRun.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

constexpr size_t kBufferBytes = size_t{ 64 } * 1024;
constexpr mode_t kUsualMode = 0666; // Less what the user's mask takes away.

mode_t modeFor(const std::string& target)
{
    struct stat status = {};
    if (stat(target.c_str(), &status) == 0)
        return status.st_mode & 07777;
    const mode_t mask = umask(0);
    umask(mask);
    return kUsualMode & ~mask;
}

/// By its first bytes, or by its name where a recorder had no time to write any.
bool isRecording(const std::string& path)
{
    std::string id(4, '\0');
    std::ifstream(path, std::ios::binary).read(id.data(), static_cast<std::streamsize>(id.size()));
    return id == "RIFF" || id == "RF64" || id == "BW64"
        || hasWavSuffix(QFileInfo(QFile::decodeName(QByteArray::fromStdString(path))));
}

// An option that swallows the first file of a card (`verify --write *.WAV`) must not cost that take.
std::string whereLinksLead(const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return path;
    if (!std::filesystem::is_regular_file(path, error))
        throw RunError{ path, "it is no file that could be replaced" };
    const std::filesystem::path canonical = std::filesystem::canonical(path, error);
    std::string real = error ? path : canonical.string();
    if (isRecording(real))
        throw RunError{ path, "it is a recording, and none is replaced" };
    return real;
}

} // namespace

NewFile::NewFile(const std::string& path) : target(whereLinksLead(path))
{
    const std::filesystem::path name(target);
    temporary = (name.parent_path() / ("." + name.filename().string() + ".XXXXXX")).string();
    descriptor = mkstemp(temporary.data());
    if (descriptor < 0) {
        temporary.clear();
        throwLastError();
    }
}

NewFile::~NewFile()
{
    if (descriptor >= 0)
        close(descriptor);
    if (!temporary.empty())
        unlink(temporary.c_str());
}

void NewFile::write(std::string_view bytes)
{
    buffer += bytes;
    if (buffer.size() >= kBufferBytes)
        flush();
}

void NewFile::commit()
{
    flush();
    if (fchmod(descriptor, modeFor(target)) != 0 || fsync(descriptor) != 0)
        throwLastError();
    const int closed = close(descriptor);
    descriptor = -1;
    if (closed != 0 || std::rename(temporary.c_str(), target.c_str()) != 0)
        throwLastError();
    temporary.clear();
}

void NewFile::throwLastError() const
{
    throw RunError{ target, fileErrorOf({ errno, std::generic_category() }).words };
}

void NewFile::flush()
{
    std::string_view left = buffer;
    while (!left.empty()) {
        const ssize_t count = ::write(descriptor, left.data(), left.size());
        if (count > 0)
            left.remove_prefix(static_cast<size_t>(count));
        else if (errno != EINTR)
            throwLastError();
    }
    buffer.clear();
}
