#include "cli/FileArguments.h"

#include "app/files/FolderWalk.h"
#include "cli/FileRun.h"

#include <algorithm>
#include <filesystem>
#include <istream>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace {

constexpr std::string_view kList = "-";
constexpr std::string_view kNullOption = "null";

class Collection {
public:
    Collection(Io& used, bool endsByNul) : io(used), end(endsByNul ? '\0' : '\n') { }

    void takeList()
    {
        std::string path;
        while (std::getline(io.in, path, end)) {
            if (!path.empty())
                takePath(path);
        }
    }

    void takePath(const std::string& path)
    {
        std::error_code error;
        if (std::filesystem::is_directory(path, error))
            takeFolder(path);
        else
            files.paths.push_back(path);
    }

    NamedFiles eachOnce()
    {
        std::vector<bool> repeated(files.paths.size());
        {
            std::unordered_set<std::string_view> met;
            for (size_t i = 0; i < files.paths.size(); ++i)
                repeated[i] = !met.insert(files.paths[i]).second;
        }
        size_t kept = 0;
        for (size_t i = 0; i < files.paths.size(); ++i) {
            if (!repeated[i] && kept++ != i)
                files.paths[kept - 1] = std::move(files.paths[i]);
        }
        files.paths.resize(kept);
        return std::move(files);
    }

private:
    void takeFolder(const std::string& path)
    {
        FolderWalkResult walked = walkFolder(path);
        for (const std::string& folder : walked.unreadable)
            refuse(folder, "this folder can't be read");
        for (const std::string& unnamed : walked.unnamed)
            refuse(unnamed, "passed over, since its name is not UTF-8; name the file itself");
        if (walked.files.empty() && walked.unreadable.empty() && walked.unnamed.empty())
            refuse(path, "there is no WAV file in this folder");
        std::move(walked.files.begin(), walked.files.end(), std::back_inserter(files.paths));
    }

    void refuse(const std::string& path, std::string_view words)
    {
        complain(io, path, words);
        files.exit = Exit::Found;
    }

    Io& io;
    char end;
    NamedFiles files;
};

} // namespace

NamedFiles namedFiles(const Arguments& arguments, Io& io)
{
    const bool endsByNul = arguments.has(kNullOption);
    const std::vector<std::string>& operands = arguments.operands;
    Collection collection(io, endsByNul);
    for (const std::string& operand : operands) {
        if (operand == kList)
            collection.takeList();
        else
            collection.takePath(operand);
    }
    if (endsByNul && std::find(operands.begin(), operands.end(), kList) == operands.end())
        collection.takeList();
    return collection.eachOnce();
}

bool namesFiles(const Arguments& arguments)
{
    return !arguments.operands.empty() || arguments.has(kNullOption);
}
