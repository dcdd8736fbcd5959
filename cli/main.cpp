#include "cli/CommandLine.h"
#include "cli/ProcessIo.h"

#include <string>
#include <vector>

// The arguments are taken as the bytes they are: through Qt, a name that is no UTF-8 would come back as another one.
int main(int argc, char** argv)
{
    const std::vector<std::string> given(argv + (argc > 0 ? 1 : 0), argv + argc);
    Io io = processIo();
    return static_cast<int>(runCommandLine(given, io));
}
