// A library to be loaded in front of the C library. It lets the n-th call of one kind on one file, open for reading
// and writing, go wrong. What happens is told by the environment:
//   TAGWELL_FAULT_PATH   the file, absolute and without links
//   TAGWELL_FAULT_CALL   "write", "read", "seek" or "close"
//   TAGWELL_FAULT_AT     which call, counted from 1
//   TAGWELL_FAULT_HOW    "error": nothing is done, EIO; "full": nothing is done, ENOSPC; "half-error": half of it is
//                        written, then EIO; "half-kill": half of it is written, then the process is killed;
//                        "short": half of it is written, and the call says so
//   TAGWELL_FAULT_MARK   a file that is made when it has happened

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <sys/uio.h>
#include <unistd.h>

namespace {

template <typename Function> Function* nextOf(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string setting(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

bool isTheFile(int descriptor)
{
    if ((fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDWR)
        return false;
    char target[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length > 0 && std::string(target, static_cast<size_t>(length)) == setting("TAGWELL_FAULT_PATH");
}

/// Counts the calls of the wanted kind. True for the one that is to go wrong.
bool goesWrong(const char* call, int descriptor)
{
    static long count = 0;
    if (setting("TAGWELL_FAULT_CALL") != call || !isTheFile(descriptor))
        return false;
    if (++count != std::atol(setting("TAGWELL_FAULT_AT").c_str()))
        return false;
    close(open(setting("TAGWELL_FAULT_MARK").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    return true;
}

ssize_t failedWith(int error)
{
    errno = error;
    return -1;
}

int plainError()
{
    return setting("TAGWELL_FAULT_HOW") == "full" ? ENOSPC : EIO;
}

ssize_t faultyWrite(int descriptor, const char* bytes, size_t size)
{
    const std::string how = setting("TAGWELL_FAULT_HOW");
    if (how == "error" || how == "full")
        return failedWith(plainError());
    const ssize_t half = nextOf<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, size / 2);
    if (how == "half-kill")
        raise(SIGKILL);
    return how == "short" ? half : failedWith(EIO);
}

} // namespace

extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t size)
{
    if (goesWrong("write", descriptor))
        return faultyWrite(descriptor, static_cast<const char*>(bytes), size);
    return nextOf<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, size);
}

ssize_t writev(int descriptor, const iovec* parts, int count)
{
    if (!goesWrong("write", descriptor))
        return nextOf<ssize_t(int, const iovec*, int)>("writev")(descriptor, parts, count);
    std::string joined;
    for (int i = 0; i < count; ++i)
        joined.append(static_cast<const char*>(parts[i].iov_base), parts[i].iov_len);
    return faultyWrite(descriptor, joined.data(), joined.size());
}

ssize_t read(int descriptor, void* bytes, size_t size)
{
    if (goesWrong("read", descriptor))
        return failedWith(EIO);
    return nextOf<ssize_t(int, void*, size_t)>("read")(descriptor, bytes, size);
}

off_t lseek(int descriptor, off_t offset, int whence) noexcept
{
    if (goesWrong("seek", descriptor))
        return failedWith(EIO);
    return nextOf<off_t(int, off_t, int)>("lseek")(descriptor, offset, whence);
}

off64_t lseek64(int descriptor, off64_t offset, int whence) noexcept
{
    if (goesWrong("seek", descriptor))
        return failedWith(EIO);
    return nextOf<off64_t(int, off64_t, int)>("lseek64")(descriptor, offset, whence);
}

int fclose(FILE* file)
{
    const bool wrong = goesWrong("close", fileno(file));
    const int result = nextOf<int(FILE*)>("fclose")(file);
    if (!wrong)
        return result;
    errno = EIO;
    return EOF;
}
}
