#include "system/SilentErrors.h"

#include <mutex>

#include <fcntl.h>
#include <unistd.h>

namespace {

struct Redirection {
    std::mutex mutex; // Held while the descriptor is switched, not in between.
    int users = 0;
    int saved = -1; // A copy of the error output as the first user found it; negative if there is none.
};

Redirection& redirection()
{
    static Redirection theOne;
    return theOne;
}

// A copy of the error output, which points to nowhere from then on. Negative if nothing was done.
int redirect()
{
    // The copy comes first: in a process without an error output the file opened would become it.
    const int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (saved < 0)
        return -1;
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) {
        close(saved);
        return -1;
    }
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
    return saved;
}

} // namespace

SilentErrors::SilentErrors()
{
    Redirection& shared = redirection();
    const std::lock_guard lock(shared.mutex);
    if (shared.users++ == 0)
        shared.saved = redirect();
}

SilentErrors::~SilentErrors()
{
    Redirection& shared = redirection();
    const std::lock_guard lock(shared.mutex);
    if (--shared.users > 0 || shared.saved < 0)
        return;
    dup2(shared.saved, STDERR_FILENO);
    close(shared.saved);
}
