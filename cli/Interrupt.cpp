#include "cli/Interrupt.h"

#include <csignal>
#include <initializer_list>

namespace {

volatile std::sig_atomic_t requested = 0;

extern "C" void rememberRequest(int)
{
    requested = 1;
}

// Restarting calls: a read or a write that is under way goes on as if nothing had happened.
bool arm()
{
    struct sigaction action = {};
    action.sa_handler = rememberRequest;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : { SIGINT, SIGTERM, SIGHUP }) {
        struct sigaction before = {};
        // A signal that whoever started the process had switched off (nohup, a background job) stays off.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
    return true;
}

} // namespace

bool interruptRequested()
{
    static const bool armed = arm();
    return armed && requested != 0;
}
