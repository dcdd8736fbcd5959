#pragma once

#include "tests/support/TempFolder.h"

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A child process whose output goes to files. Killed when the object goes, and when the thread that made it ends.
class ChildProcess {
public:
    /// Starts `arguments` (program first, searched in PATH) with `environment` ("NAME=value") on top of this process's
    /// own. Standard output goes to `outPath`, the error output to `errorPath`. See `running` for success.
    ChildProcess(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
        const std::string& outPath, const std::string& errorPath);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// False once it has ended, or if it could not be started.
    bool running();
    /// Sends `signal` and waits for the end. Nothing if it has ended.
    void end(int signal);
    /// Sends `signal` and doesn't wait: SIGSTOP makes a server that never answers.
    void send(int signal) const;

private:
    pid_t pid = -1;
};

/// A PulseAudio server of one test's own, with one null sink: no hardware, no session, also as root. What is played at
/// the sink's rate comes back from its monitor bit for bit. Needs the packages pulseaudio and pulseaudio-utils.
class PulseServer {
public:
    /// Starts a server whose only sink has `rate` frames per second in two channels of 32-bit float, and waits until it
    /// takes connections. See `running` for success.
    explicit PulseServer(uint32_t rate);

    /// True while the server is there.
    bool running() { return process && process->running(); }
    /// What the environment variable PULSE_SERVER has to be to reach it.
    std::string address() const;
    /// "NAME=value" pairs with which another process reaches it.
    std::vector<std::string> environment() const;
    /// Sets the same for this process. The home folder becomes one that goes with the server.
    void useInThisProcess() const;

    /// The server vanishes without a word to its clients.
    void kill();
    /// The server stays connected and answers nothing any more. `kill` still works.
    void freeze();
    /// Goes on after `freeze`.
    void thaw();

    /// Records what the sink plays, from before the constructor returns until `stop`.
    class Recording {
    public:
        explicit Recording(const PulseServer& server);
        /// True once samples arrive.
        bool running();
        /// Frames recorded so far.
        size_t frames() const;
        /// Ends the recording. Interleaved stereo.
        std::vector<float> stop();

    private:
        std::string path;
        ChildProcess process;
    };

private:
    friend class Recording;
    std::string socketPath() const { return folder.file("native"); }

    TempFolder folder;
    uint32_t sinkRate;
    std::unique_ptr<ChildProcess> process;
};
