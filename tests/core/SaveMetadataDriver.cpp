// Saves one edit of one file and says by its exit code how that went, for tests that kill it, starve it or run it as
// somebody else: SaveMetadataDriver FILE [FIELD=VALUE]...
// Flags that are not given are wanted as false. The file is opened by nothing but the save. Exit code 0: true, 1:
// false, 2: an exception, 3: bad arguments.

#include "core/BwfMetadata.h"
#include "core/BwfMetadataWriter.h"

#include <cstdlib>
#include <exception>
#include <map>
#include <string>

namespace {

constexpr int kFailed = 1;
constexpr int kThrew = 2;
constexpr int kBadArguments = 3;

bool setField(BwfMetadata& record, const std::string& name, const std::string& value)
{
    static const std::map<std::string, std::string BwfMetadata::*> kTexts = {
        { "scene", &BwfMetadata::scene },
        { "take", &BwfMetadata::take },
        { "tape", &BwfMetadata::tape },
        { "note", &BwfMetadata::note },
        { "project", &BwfMetadata::project },
        { "ubits", &BwfMetadata::ubits },
    };
    if (const auto text = kTexts.find(name); text != kTexts.end())
        record.*text->second = value;
    else if (name == "timeReference")
        record.timeReference = std::strtoull(value.c_str(), nullptr, 10);
    else if (name == "circled")
        record.circled = value == "true";
    else
        return false;
    return true;
}

int save(int argc, char** argv)
{
    const std::string path = argv[1];
    BwfMetadata updated;
    for (int i = 2; i < argc; ++i) {
        const std::string argument = argv[i];
        const size_t equals = argument.find('=');
        if (equals == std::string::npos || !setField(updated, argument.substr(0, equals), argument.substr(equals + 1)))
            return kBadArguments;
    }
    return BwfMetadataWriter::writeMetadata(path, updated) ? EXIT_SUCCESS : kFailed;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return kBadArguments;
    try {
        return save(argc, argv);
    } catch (const std::exception&) {
        return kThrew;
    }
}
