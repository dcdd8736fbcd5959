// A library to be loaded in front of the C library. It lets the n-th call of one kind on one file go wrong. What
// happens is told by the environment:
//   TAGWELL_FAULT_PATH   the file, absolute and without links
//   TAGWELL_FAULT_ACCESS "read-write", or "read" for calls on the file while it is open for reading alone
//   TAGWELL_FAULT_CALL   "open", "write", "read", "seek" or "close"
//   TAGWELL_FAULT_AT     which call, counted from 1
//   TAGWELL_FAULT_HOW    "error": nothing is done, EIO; "full": nothing is done, ENOSPC; "half-error": half of it is
//                        read or written, then EIO; "half-kill": half of it is written, then the process is killed;
//                        "short": half of it is read or written, and the call says so; "end": nothing is read, as at
//                        the end of the file, now and later
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

int wantedAccess()
{
    return setting("TAGWELL_FAULT_ACCESS") == "read" ? O_RDONLY : O_RDWR;
}

bool isTheFile(int descriptor)
{
    if ((fcntl(descriptor, F_GETFL) & O_ACCMODE) != wantedAccess())
        return false;
    char target[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length > 0 && std::string(target, static_cast<size_t>(length)) == setting("TAGWELL_FAULT_PATH");
}

/// Counts the calls of the wanted kind on the file. True for the one that is to go wrong.
bool isTheCall()
{
    static long count = 0;
    if (++count != std::atol(setting("TAGWELL_FAULT_AT").c_str()))
        return false;
    close(open(setting("TAGWELL_FAULT_MARK").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    return true;
}

bool goesWrong(const char* call, int descriptor)
{
    return setting("TAGWELL_FAULT_CALL") == call && isTheFile(descriptor) && isTheCall();
}

bool openGoesWrong(const char* path, const char* mode)
{
    const int access = std::strchr(mode, '+') ? O_RDWR : O_RDONLY;
    return setting("TAGWELL_FAULT_CALL") == "open" && access == wantedAccess() && setting("TAGWELL_FAULT_PATH") == path
        && isTheCall();
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

ssize_t plainRead(int descriptor, void* bytes, size_t size)
{
    return nextOf<ssize_t(int, void*, size_t)>("read")(descriptor, bytes, size);
}

/// What a read that goes wrong leaves to the reads behind it, on whatever descriptor of the file.
enum class Aftermath { None, OneError, End };
Aftermath aftermath = Aftermath::None;

ssize_t faultyRead(int descriptor, void* bytes, size_t size)
{
    const std::string how = setting("TAGWELL_FAULT_HOW");
    if (how == "error")
        return failedWith(EIO);
    if (how == "end") {
        aftermath = Aftermath::End;
        return 0;
    }
    const ssize_t half = plainRead(descriptor, bytes, size / 2);
    if (how == "short")
        return half;
    if (half <= 0) // Where nothing came, no further read would follow and meet the error.
        return failedWith(EIO);
    aftermath = Aftermath::OneError;
    return half;
}

} // namespace

extern "C" {

FILE* fopen(const char* path, const char* mode)
{
    if (openGoesWrong(path, mode)) {
        errno = EIO;
        return nullptr;
    }
    return nextOf<FILE*(const char*, const char*)>("fopen")(path, mode);
}

FILE* fopen64(const char* path, const char* mode)
{
    if (openGoesWrong(path, mode)) {
        errno = EIO;
        return nullptr;
    }
    return nextOf<FILE*(const char*, const char*)>("fopen64")(path, mode);
}

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
    if (aftermath == Aftermath::End && isTheFile(descriptor))
        return 0;
    if (aftermath == Aftermath::OneError && isTheFile(descriptor)) {
        aftermath = Aftermath::None;
        return failedWith(EIO);
    }
    return goesWrong("read", descriptor) ? faultyRead(descriptor, bytes, size) : plainRead(descriptor, bytes, size);
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
