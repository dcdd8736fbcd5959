#include "tests/cli/CliRun.h"

#include "cli/CommandLine.h"

#include <sstream>
#include <streambuf>

namespace {

/// Takes a number of bytes, then fails as a full disk does.
class LimitedBuffer : public std::streambuf {
public:
    explicit LimitedBuffer(int64_t bytes) : room(bytes) { }
    std::string taken;

protected:
    int_type overflow(int_type byte) override
    {
        if (room == 0)
            return traits_type::eof();
        if (room > 0)
            --room;
        taken += traits_type::to_char_type(byte);
        return byte;
    }

private:
    int64_t room;
};

} // namespace

CliResult runCli(const std::vector<std::string>& arguments, const CliSetup& setup)
{
    std::istringstream in(setup.in);
    LimitedBuffer buffer(setup.outRoom);
    std::ostream out(&buffer);
    std::ostringstream err;
    int64_t now = 0;
    int questions = 0;
    Io io{
        .in = in,
        .out = out,
        .err = err,
        .outIsTerminal = setup.outIsTerminal,
        .errIsTerminal = setup.errIsTerminal,
        .errColumns = setup.errColumns,
        .millis = [&] { return now += setup.millisPerLook; },
        .interrupted =
            [&] {
                if (setup.beforeFile)
                    setup.beforeFile(questions);
                return questions++ >= setup.interruptAfter && setup.interruptAfter >= 0;
            },
    };
    const Exit exit = runCommandLine(arguments, io);
    return { exit, buffer.taken, err.str() };
}
