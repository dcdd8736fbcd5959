#include "app/settings/ReplacementFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

namespace {

constexpr char kTemporarySuffix[] = ".tmp";
constexpr mode_t kFileMode = 0666; // Less the user's mask, as for any new file.

// A save takes about a millisecond, or some tens where the disk is slow. Who holds the lock for a second hangs, and
// the window shall not hang with him.
constexpr std::chrono::seconds kLongestWait(1);
constexpr std::chrono::milliseconds kPause(1);

// False if somebody else holds the lock. A file system without locks is no reason not to save.
bool tryLock(int descriptor)
{
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
}

} // namespace

ReplacementFile::ReplacementFile(std::string targetPath)
    : target(std::move(targetPath)), temporary(target + kTemporarySuffix)
{
    acquire();
    if (isOpen() && !truncate()) {
        unlink(temporary.c_str());
        closeDescriptor();
    }
}

ReplacementFile::~ReplacementFile()
{
    if (!isOpen())
        return;
    if (!isTarget)
        unlink(temporary.c_str());
    closeDescriptor(); // Not earlier: this gives the lock away.
}

bool ReplacementFile::write(const std::string& text) const
{
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t step = ::write(descriptor, text.data() + written, text.size() - written);
        if (step < 0 && errno == EINTR)
            continue;
        if (step <= 0)
            return false;
        written += static_cast<size_t>(step);
    }
    return true;
}

bool ReplacementFile::flush() const
{
    return flushToDisk(descriptor);
}

bool ReplacementFile::takeTargetsPlace()
{
    isTarget = std::rename(temporary.c_str(), target.c_str()) == 0;
    return isTarget;
}

// Nothing is changed in the file before the lock is held and the name has been looked at again: what was opened may
// have been another's, and may have become the target while this one waited.
void ReplacementFile::acquire()
{
    const auto end = std::chrono::steady_clock::now() + kLongestWait;
    do {
        // Without O_NONBLOCK a pipe of that name would hold the program until somebody reads it.
        descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, kFileMode);
        if (!isOpen())
            return;
        const bool locked = tryLock(descriptor);
        if (locked && nameStillMeansThisFile())
            return;
        closeDescriptor();
        if (!locked)
            std::this_thread::sleep_for(kPause);
    } while (std::chrono::steady_clock::now() < end);
}

bool ReplacementFile::nameStillMeansThisFile() const
{
    struct stat opened { };
    struct stat named { };
    return fstat(descriptor, &opened) == 0 && stat(temporary.c_str(), &named) == 0 && opened.st_dev == named.st_dev
        && opened.st_ino == named.st_ino;
}

bool ReplacementFile::truncate() const
{
    struct stat now { };
    return fstat(descriptor, &now) == 0 && (now.st_size == 0 || ftruncate(descriptor, 0) == 0);
}

void ReplacementFile::closeDescriptor()
{
    close(descriptor);
    descriptor = -1;
}

bool flushToDisk(int descriptor)
{
    return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}
