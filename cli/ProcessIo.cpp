#include "cli/ProcessIo.h"

#include "cli/Interrupt.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <iostream>

namespace {

constexpr int kUsualColumns = 80;
constexpr std::streamsize kOutBytes = std::streamsize{ 64 } * 1024;

int columnsOf(int descriptor)
{
    winsize size = {};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

int64_t steadyMillis()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

Io processIo()
{
    static char outBuffer[kOutBytes];
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    std::cout.rdbuf()->pubsetbuf(outBuffer, kOutBytes);
    return {
        .in = std::cin,
        .out = std::cout,
        .err = std::cerr,
        .outIsTerminal = isatty(STDOUT_FILENO) == 1,
        .errIsTerminal = isatty(STDERR_FILENO) == 1,
        .errColumns = columnsOf(STDERR_FILENO),
        .millis = steadyMillis,
        .interrupted = interruptRequested,
    };
}
