#include "cli/VerifyCommand.h"

#include "cli/AudioSum.h"
#include "cli/CommandLine.h"
#include "cli/FileArguments.h"
#include "cli/FileRun.h"
#include "cli/NewFile.h"
#include "cli/PlainText.h"
#include "cli/SumList.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>

namespace {

std::string_view wordsOf(StoredSum stored)
{
    switch (stored) {
    case StoredSum::Agrees:
        return "its MD5 chunk agrees";
    case StoredSum::AgreesReversed:
        return "its MD5 chunk agrees, bytes last first";
    case StoredSum::Differs:
        return "its MD5 chunk DIFFERS";
    case StoredSum::Malformed:
        return "its MD5 chunk is no sum";
    }
    return {};
}

// Lines that a list of sums may hold as comments.
Exit tellStored(const AudioSum& sum, const std::string& path, std::string& out)
{
    Exit exit = Exit::Ok;
    for (const StoredSum stored : sum.stored) {
        out.append("# ").append(oneLine(path)).append(": ").append(wordsOf(stored)).append("\n");
        if (stored == StoredSum::Differs || stored == StoredSum::Malformed)
            exit = Exit::Found;
    }
    return exit;
}

Exit showSums(const Arguments& arguments, Io& io)
{
    const NamedFiles files = namedFiles(arguments, io);
    io.out << kSumListHead << '\n';
    const Exit result = forEachFile(files.paths, io, { .work = [](const std::string& path, std::string& out) {
        const AudioSum sum = readAudioSum(path);
        out += sumLine(sum.digits, path);
        return tellStored(sum, path, out);
    } });
    return worse(files.exit, result);
}

// The list is begun before the long work, so that a folder that can't be written to shows at once. A run that was cut
// short leaves none: half a list would look like a whole one.
Exit writeSums(const Arguments& arguments, const std::string& target, Io& io)
{
    const NamedFiles files = namedFiles(arguments, io);
    NewFile list(target);
    list.write(std::string(kSumListHead) + '\n');
    size_t done = 0;
    const FileWork work{
        .work =
            [&](const std::string& path, std::string& out) {
                const AudioSum sum = readAudioSum(path);
                list.write(sumLine(sum.digits, path));
                ++done;
                return tellStored(sum, path, out);
            },
        .failed = [&done](const std::string&, const FileError&, std::string&) { ++done; },
    };
    const Exit result = forEachFile(files.paths, io, work);
    if (done == files.paths.size())
        list.commit();
    return worse(files.exit, result);
}

std::optional<SumList> readList(const std::string& path, Io& io)
{
    errno = 0;
    std::error_code error;
    std::ifstream stream(path, std::ios::binary);
    if (!stream || std::filesystem::is_directory(path, error)) {
        complain(io, path, stream ? "it is a folder" : fileErrorOf({ errno, std::generic_category() }).words);
        return std::nullopt;
    }
    SumList list = readSumList(stream);
    if (!list.isAudio) {
        complain(io, path, "it is no list of audio sums, since its first line doesn't say so");
        return std::nullopt;
    }
    return list;
}

Exit compareWith(const SumList& list, const std::string& path, std::string& out)
{
    const std::string expected = list.digitsOf(path);
    if (expected.empty())
        throw FileError("not-listed", "it is not in the list of sums");
    const AudioSum sum = readAudioSum(path);
    const bool same = sum.digits == expected;
    out.append(oneLine(path)).append(same ? ": OK\n" : ": FAILED\n");
    return worse(same ? Exit::Ok : Exit::Found, tellStored(sum, path, out));
}

Exit checkSums(const Arguments& arguments, const std::string& source, Io& io)
{
    const std::optional<SumList> list = readList(source, io);
    if (!list)
        return Exit::Found;
    for (const size_t line : list->badLines)
        complain(io, source, "line " + std::to_string(line) + " is no sum, or contradicts one above it");
    if (list->paths.empty())
        complain(io, source, "it lists no file");
    Exit result = list->badLines.empty() && !list->paths.empty() ? Exit::Ok : Exit::Found;

    NamedFiles files{ list->paths, Exit::Ok };
    if (namesFiles(arguments))
        files = namedFiles(arguments, io);
    const FileWork work{
        .work = [&list](const std::string& path, std::string& out) { return compareWith(*list, path, out); },
        .failed = [](const std::string& path, const FileError&,
                      std::string& out) { out.append(oneLine(path)).append(": FAILED, nothing was compared\n"); },
    };
    result = worse(result, files.exit);
    return worse(result, forEachFile(files.paths, io, work));
}

} // namespace

Exit runVerify(const Arguments& arguments, Io& io)
{
    const std::optional<std::string> target = arguments.value("write");
    const std::optional<std::string> source = arguments.value("check");
    if (target && source)
        return refuseUsage(io, kVerifyCommand.name, "--write and --check exclude each other");
    if (source)
        return checkSums(arguments, *source, io);
    if (!namesFiles(arguments))
        return refuseUsage(io, kVerifyCommand.name, "a FILE is missing");
    return target ? writeSums(arguments, *target, io) : showSums(arguments, io);
}
