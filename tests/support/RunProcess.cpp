#include "tests/support/RunProcess.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kNotStarted = 127;

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& each : texts)
        pointers.push_back(each.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& added)
{
    std::vector<std::string> result = added; // The first of two equal names wins.
    for (char** each = environ; *each; ++each) {
        bool replaced = false;
        for (const std::string& other : added)
            replaced |= std::strncmp(*each, other.c_str(), other.find('=') + 1) == 0;
        if (!replaced)
            result.emplace_back(*each);
    }
    return result;
}

std::string readAll(int descriptor)
{
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t count = read(descriptor, block, sizeof block);
        if (count > 0)
            text.append(block, static_cast<size_t>(count));
        else if (count == 0 || errno != EINTR)
            return text;
    }
}

} // namespace

ProcessResult runProcess(
    const std::vector<std::string>& command, const std::vector<std::string>& environment, bool withErrors)
{
    std::vector<std::string> arguments = command;
    std::vector<std::string> variables = environmentWith(environment);
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> variablePointers = pointersTo(variables);

    ProcessResult result;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return result;
    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_RDWR);
        dup2(nothing, STDIN_FILENO);
        dup2(ends[1], STDOUT_FILENO);
        dup2(withErrors ? ends[1] : nothing, STDERR_FILENO);
        execvpe(argumentPointers[0], argumentPointers.data(), variablePointers.data());
        _exit(kNotStarted);
    }
    close(ends[1]);
    if (child > 0) {
        result.output = readAll(ends[0]);
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
        if (WIFEXITED(status))
            result.exitCode = WEXITSTATUS(status);
        if (WIFSIGNALED(status))
            result.signal = WTERMSIG(status);
    }
    close(ends[0]);
    return result;
}

bool programExists(const std::string& name)
{
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    std::string folder;
    while (std::getline(folders, folder, ':')) {
        if (access((folder + "/" + name).c_str(), X_OK) == 0)
            return true;
    }
    return false;
}
