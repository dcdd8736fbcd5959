// Writes the command line's own table of commands as JSON, for the man page and the completions, so that neither can
// name an option that the program doesn't have. Usage: tagwell_command_table FILE

#include "cli/CommandLine.h"
#include "cli/JsonText.h"

#include <fstream>

namespace {

void appendOptions(std::span<const Option> options, JsonText& json)
{
    json.beginArray();
    for (const Option& option : options) {
        json.beginObject().key("name").text(option.name).key("value").text(option.value);
        json.key("words").text(option.words);
        json.key("letter").text(option.letter == '\0' ? std::string_view() : std::string_view(&option.letter, 1));
        json.key("repeats").flag(option.repeats).key("choices").text(option.choices).endObject();
    }
    json.endArray();
}

void appendCommand(const Command& command, JsonText& json)
{
    json.beginObject().key("name").text(command.name).key("words").text(command.words);
    json.key("operands").text(command.operands).key("options");
    appendOptions(command.options, json);
    json.endObject();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    std::string table;
    JsonText json(table);
    json.beginObject().key("common");
    appendOptions(kCommonOptions, json);
    json.key("commands").beginArray();
    for (const Command& command : allCommands())
        appendCommand(command, json);
    json.endArray().endObject();
    std::ofstream out(argv[1], std::ios::binary | std::ios::trunc);
    out << table << '\n';
    out.close();
    return out.fail() ? 1 : 0;
}
