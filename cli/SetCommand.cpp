#include "cli/SetCommand.h"

#include "cli/CommandLine.h"
#include "cli/EditTable.h"
#include "cli/FileArguments.h"
#include "cli/FileEdit.h"
#include "cli/FileRun.h"
#include "cli/PlainText.h"

#include <sys/stat.h>

#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

namespace {

EditManner mannerOf(const Arguments& arguments)
{
    return {
        .usePadding = arguments.has("use-padding"),
        .partly = arguments.has("partly"),
        .verify = arguments.has("verify"),
        .keepDate = arguments.has("keep-date"),
        .dryRun = arguments.has("dry-run"),
    };
}

Exit report(const std::string& path, const FileEditResult& result, std::string& out)
{
    out.append(oneLine(path)).append(": ").append(result.words).append("\n");
    return result.exit;
}

/// The same file under whatever name; nothing if there is none.
using FileKey = std::pair<dev_t, ino_t>;
std::optional<FileKey> keyOf(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileKey{ status.st_dev, status.st_ino };
}

/// False, and says why, if rows name files that aren't there or aren't among `allowed`, or one twice. An empty
/// `allowed` allows all.
bool acceptsFiles(const EditTable& table, const std::string& source, const std::set<FileKey>& allowed, Io& io)
{
    bool isRight = true;
    const auto refuse = [&](const std::string& path, const char* words) {
        complain(io, source, oneLine(path) + ": " + words);
        isRight = false;
    };
    std::set<FileKey> met;
    for (const std::string& path : table.paths()) {
        const std::optional<FileKey> key = keyOf(path);
        if (!key)
            refuse(path, "there is no such file");
        else if (!allowed.empty() && !allowed.contains(*key))
            refuse(path, "this file was not asked for");
        else if (!met.insert(*key).second)
            refuse(path, "this file is named twice");
    }
    return isRight;
}

Exit setFromTable(const Arguments& arguments, const std::string& source, Io& io)
{
    EditTable table(source);
    for (const std::string& complaint : table.complaints())
        complain(io, source, complaint);
    if (!table.complaints().empty())
        return Exit::Found;
    NamedFiles asked;
    std::set<FileKey> allowed;
    if (namesFiles(arguments)) {
        asked = namedFiles(arguments, io);
        for (const std::string& path : asked.paths) {
            if (const std::optional<FileKey> key = keyOf(path)) {
                allowed.insert(*key);
                continue;
            }
            complain(io, path, "there is no such file");
            asked.exit = worse(asked.exit, Exit::Found);
        }
        if (allowed.empty() || asked.exit != Exit::Ok)
            return worse(asked.exit, Exit::Found);
    }
    if (!acceptsFiles(table, source, allowed, io))
        return Exit::Found;
    const EditManner manner = mannerOf(arguments);
    size_t row = 0;
    const FileWork work{ .work = [&](const std::string& path, std::string& out) {
        const size_t index = row++;
        const EditRequest request = table.request(index, readFileFacts(path));
        return report(path, editFile(path, request, manner), out);
    } };
    return worse(asked.exit, forEachFile(table.paths(), io, work));
}

} // namespace

Exit runSet(const Arguments& arguments, Io& io)
{
    const ParsedEdit edit = parseEdit(arguments);
    if (!edit.complaint.empty())
        return refuseUsage(io, kSetCommand.name, edit.complaint);
    const std::optional<std::string> table = arguments.value("from-csv");
    if (table && !edit.request.isEmpty())
        return refuseUsage(io, kSetCommand.name, "--from-csv takes all values from the table, none from options");
    if (table)
        return setFromTable(arguments, *table, io);
    if (edit.request.isEmpty())
        return refuseUsage(io, kSetCommand.name, "there is nothing to set");
    if (!namesFiles(arguments))
        return refuseUsage(io, kSetCommand.name, "a FILE is missing");
    const NamedFiles files = namedFiles(arguments, io);
    const EditManner manner = mannerOf(arguments);
    const Exit result = forEachFile(files.paths, io, { .work = [&](const std::string& path, std::string& out) {
        return report(path, editFile(path, edit.request, manner), out);
    } });
    return worse(files.exit, result);
}
