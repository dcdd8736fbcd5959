#include "tests/support/PulseServer.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <thread>

extern char** environ;

namespace {

constexpr int kPatience = 30000; // Milliseconds before a start counts as failed.

template <typename Condition> bool waitFor(Condition condition)
{
    for (int i = 0; i < kPatience; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

std::string nameOf(std::string_view pair)
{
    return std::string(pair.substr(0, pair.find('=')));
}

std::vector<std::string> mergedEnvironment(const std::vector<std::string>& extra)
{
    std::vector<std::string> merged = extra;
    for (char** each = environ; *each; ++each) {
        const auto sameName = [each](const std::string& other) { return nameOf(other) == nameOf(*each); };
        if (std::none_of(extra.begin(), extra.end(), sameName))
            merged.emplace_back(*each);
    }
    return merged;
}

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> list;
    for (std::string& text : texts)
        list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

bool accepts(const std::string& socketPath)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
    const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected = connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(handle);
    return connected;
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
    const std::string& outPath, const std::string& errorPath)
{
    // Everything that allocates comes before the fork: other threads may hold the heap's lock.
    std::vector<std::string> argumentTexts = arguments;
    std::vector<std::string> environmentTexts = mergedEnvironment(environment);
    const std::vector<char*> argumentList = pointers(argumentTexts);
    const std::vector<char*> environmentList = pointers(environmentTexts);
    const int out = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const int error = ::open(errorPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    pid = fork();
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(out, STDOUT_FILENO);
        dup2(error, STDERR_FILENO);
        execvpe(argumentList[0], argumentList.data(), environmentList.data());
        _exit(127);
    }
    ::close(out);
    ::close(error);
}

ChildProcess::~ChildProcess()
{
    end(SIGKILL);
}

bool ChildProcess::running()
{
    if (pid > 0 && waitpid(pid, nullptr, WNOHANG) == pid)
        pid = -1;
    return pid > 0;
}

void ChildProcess::end(int signal)
{
    if (!running())
        return;
    ::kill(pid, signal);
    waitpid(pid, nullptr, 0);
    pid = -1;
}

void ChildProcess::send(int signal) const
{
    if (pid > 0)
        ::kill(pid, signal);
}

PulseServer::PulseServer(uint32_t rate) : sinkRate(rate)
{
    // The socket comes last, so that whoever gets through to the server finds the sink there. Without "norewinds" each
    // new stream stalls for a second.
    const std::vector<std::string> arguments
        = { "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--disable-shm=yes", "-L",
              "module-null-sink sink_name=t rate=" + std::to_string(rate) + " format=float32le channels=2 norewinds=1",
              "-L", "module-native-protocol-unix socket=" + socketPath() + " auth-anonymous=1" };
    const std::vector<std::string> home
        = { "HOME=" + folder.path().string(), "XDG_RUNTIME_DIR=" + folder.path().string() };
    process = std::make_unique<ChildProcess>(arguments, home, folder.file("out"), folder.file("log"));
    if (!waitFor([this] { return !process->running() || accepts(socketPath()); }))
        process->end(SIGKILL);
}

std::string PulseServer::address() const
{
    return "unix:" + socketPath();
}

std::vector<std::string> PulseServer::environment() const
{
    return { "PULSE_SERVER=" + address(), "HOME=" + folder.path().string(),
        "XDG_RUNTIME_DIR=" + folder.path().string() };
}

void PulseServer::useInThisProcess() const
{
    for (const std::string& pair : environment())
        setenv(nameOf(pair).c_str(), pair.c_str() + nameOf(pair).size() + 1, 1);
}

void PulseServer::kill()
{
    process->end(SIGKILL);
}

void PulseServer::freeze()
{
    process->send(SIGSTOP);
}

void PulseServer::thaw()
{
    process->send(SIGCONT);
}

PulseServer::Recording::Recording(const PulseServer& server)
    : path(server.folder.file("recorded"))
    , process({ "parec", "-d", "t.monitor", "--format=float32le", "--rate=" + std::to_string(server.sinkRate),
                  "--channels=2", "--latency-msec=20", "--raw" },
          server.environment(), path, server.folder.file("parec.log"))
{
    waitFor([this] { return frames() > 0 || !process.running(); });
}

bool PulseServer::Recording::running()
{
    return frames() > 0 && process.running();
}

size_t PulseServer::Recording::frames() const
{
    std::error_code ignored;
    const auto size = std::filesystem::file_size(path, ignored);
    return ignored ? 0 : static_cast<size_t>(size) / (2 * sizeof(float));
}

std::vector<float> PulseServer::Recording::stop()
{
    process.end(SIGTERM);
    const std::string bytes = readBytes(path);
    std::vector<float> samples(bytes.size() / (2 * sizeof(float)) * 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}
