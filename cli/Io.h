#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>

/// How a run ended; the value is the exit status of the process.
enum class Exit {
    /// All well.
    Ok = 0,
    /// Something was found, refused, or failed, for at least one file.
    Found = 1,
    /// The command line made no sense; nothing was done.
    Usage = 2,
};

/// The worse of the two.
constexpr Exit worse(Exit first, Exit second)
{
    return first < second ? second : first;
}

/// All that a run touches of its surroundings besides files, so that a test can stand in for them.
/// The streams are not owned and outlive the run. Thread: main only.
struct Io {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    /// A person watches `out`: each file's text is brought there at once.
    bool outIsTerminal = false;
    /// A person watches `err`: work that takes long shows how far it is.
    bool errIsTerminal = false;
    /// Characters in a line of that terminal.
    int errColumns = 80;
    /// A clock that never goes back, in milliseconds.
    std::function<int64_t()> millis;
    /// True once the user wants the run to end. Asked between two files only; from the first question on a signal no
    /// longer ends the process by itself.
    std::function<bool()> interrupted;
};
