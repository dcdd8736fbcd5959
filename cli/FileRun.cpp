#include "cli/FileRun.h"

#include "cli/PlainText.h"
#include "cli/Progress.h"

#include <filesystem>
#include <new>
#include <optional>
#include <ostream>

namespace {

constexpr std::string_view kProgram = "tagwell-cli";

struct Outcome {
    Exit exit = Exit::Ok;
    std::optional<FileError> error;
};

Outcome workOn(const std::string& path, const FileWork& work, std::string& out)
{
    try {
        return { work.work(path, out), std::nullopt };
    } catch (const FileError& error) {
        return { Exit::Found, error };
    } catch (const std::system_error& error) { // A filesystem_error is one, and so is a failure of a stream.
        return { Exit::Found, fileErrorOf(error.code()) };
    } catch (const std::bad_alloc&) {
        return { Exit::Found, FileError("no-memory", "there is not enough memory for it") };
    } catch (const std::exception& error) {
        return { Exit::Found, FileError("io-error", error.what()) };
    }
}

// True if the text has arrived as far as one can know by now.
bool deliver(const std::string& text, Io& io)
{
    if (!text.empty())
        io.out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (io.outIsTerminal)
        io.out.flush();
    return io.out.good();
}

Exit endEarly(Io& io, size_t done, size_t total)
{
    io.out.flush();
    io.err << kProgram << ": interrupted after " << std::to_string(done) << " of " << std::to_string(total)
           << " files\n"
           << std::flush;
    return Exit::Found;
}

} // namespace

FileError fileErrorOf(std::error_code error)
{
    if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
        return { "not-found", "there is no such file" };
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted)
        return { "no-permission", "there is no permission for it" };
    if (error == std::errc::read_only_file_system)
        return { "read-only", "its disk can only be read" };
    if (error == std::errc::no_space_on_device)
        return { "disk-full", "its disk is full" };
    if (error == std::errc::is_a_directory)
        return { "not-a-file", "it is a folder" };
    if (error == std::errc::filename_too_long)
        return { "not-found", "its name is too long" };
    return { "io-error", error.message() };
}

void complain(Io& io, std::string_view path, std::string_view words)
{
    io.out.flush();
    io.err << kProgram << ": " << oneLine(path) << ": " << oneLine(words) << '\n' << std::flush;
}

Exit forEachFile(const std::vector<std::string>& files, Io& io, const FileWork& work)
{
    Exit worst = Exit::Ok;
    Progress progress(io, files.size());
    std::string text;
    for (size_t i = 0; i < files.size(); ++i) {
        if (io.interrupted()) {
            progress.clear();
            return endEarly(io, i, files.size());
        }
        text.clear();
        const Outcome outcome = workOn(files[i], work, text);
        if (outcome.error) {
            text.clear();
            if (work.failed)
                work.failed(files[i], *outcome.error, text);
        }
        if (outcome.error || (io.outIsTerminal && !text.empty()))
            progress.clear();
        if (!deliver(text, io))
            return Exit::Found;
        if (outcome.error)
            complain(io, files[i], outcome.error->words);
        worst = worse(worst, outcome.exit);
        progress.step(i + 1);
    }
    return worst;
}
