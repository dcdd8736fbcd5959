#include "cli/DumpCommand.h"

#include "cli/CommandLine.h"
#include "cli/DumpFormat.h"
#include "cli/FileArguments.h"
#include "cli/FileRun.h"

#include <ostream>

namespace {

std::unique_ptr<DumpFormat> formatOf(const Arguments& arguments)
{
    const bool withChunks = arguments.has("chunks");
    if (arguments.has("json"))
        return jsonDump(withChunks);
    return arguments.has("csv") ? csvDump(withChunks) : textDump(withChunks);
}

} // namespace

Exit runDump(const Arguments& arguments, Io& io)
{
    if (arguments.has("json") && arguments.has("csv"))
        return refuseUsage(io, kDumpCommand.name, "--json and --csv exclude each other");
    if (!namesFiles(arguments))
        return refuseUsage(io, kDumpCommand.name, "a FILE is missing");
    const NamedFiles files = namedFiles(arguments, io);
    const std::unique_ptr<DumpFormat> format = formatOf(arguments);
    io.out << format->head();
    const Exit result = forEachFile(files.paths, io,
        { .work =
                [&format](const std::string& path, std::string& out) {
                    format->file(readFileFacts(path), out);
                    return Exit::Ok;
                },
            .failed = [&format](const std::string& path, const FileError& error,
                          std::string& out) { format->failed(path, error, out); } });
    return worse(files.exit, result);
}
