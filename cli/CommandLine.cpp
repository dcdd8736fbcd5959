#include "cli/CommandLine.h"

#include "cli/CheckCommand.h"
#include "cli/DumpCommand.h"
#include "cli/FileRun.h"
#include "cli/PlainText.h"
#include "cli/ReportCommand.h"
#include "cli/SetCommand.h"
#include "cli/VerifyCommand.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <vector>

namespace {

constexpr std::string_view kProgram = "tagwell-cli";
constexpr size_t kGapBytes = 2; // Between two columns of the help.

constexpr std::array kCommands{
    kDumpCommand,
    kCheckCommand,
    kSetCommand,
    kReportCommand,
    kVerifyCommand,
};

std::string optionTitle(const Option& option)
{
    std::string title = option.letter != '\0' ? std::string("-") + option.letter + ", --" : std::string("    --");
    title += option.name;
    if (!option.value.empty())
        title.append(" ").append(option.value);
    return title;
}

void printRows(std::ostream& out, const std::vector<std::pair<std::string, std::string_view>>& rows)
{
    size_t width = 0;
    for (const auto& [title, words] : rows)
        width = std::max(width, title.size());
    for (const auto& [title, words] : rows)
        out << "  " << title << std::string(width - title.size() + kGapBytes, ' ') << words << '\n';
}

void printLines(std::ostream& out, std::string_view lines)
{
    while (!lines.empty()) {
        const size_t end = std::min(lines.find('\n'), lines.size());
        out << "  " << lines.substr(0, end) << '\n';
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
}

Exit printProgramHelp(Io& io)
{
    io.out << "Usage: " << kProgram << " COMMAND [OPTION...] FILE...\n"
           << "Reads, checks and corrects the metadata of Broadcast WAV files.\n\nCommands:\n";
    std::vector<std::pair<std::string, std::string_view>> rows;
    rows.reserve(kCommands.size());
    for (const Command& command : kCommands)
        rows.emplace_back(command.name, command.words);
    printRows(io.out, rows);
    io.out
        << "\nA FILE may be a folder, which stands for the WAV files under it, or -, which reads paths from standard\n"
           "input, one a line.\n\n"
        << "  " << kProgram << " COMMAND --help  says more of a command\n"
        << "  " << kProgram << " --version       says which version this is\n\n"
        << "Exit status: 0 all well; 1 something was found, refused or failed for at least one file;\n"
           "2 wrong usage.\n";
    return Exit::Ok;
}

Exit printCommandHelp(const Command& command, Io& io)
{
    io.out << "Usage: " << kProgram << ' ' << command.name << " [OPTION...] " << command.operands << '\n'
           << command.words << ".\n\nOptions:\n";
    std::vector<std::pair<std::string, std::string_view>> rows;
    for (const Option& option : command.options)
        rows.emplace_back(optionTitle(option), option.words);
    for (const Option& option : kCommonOptions)
        rows.emplace_back(optionTitle(option), option.words);
    printRows(io.out, rows);
    if (!command.notes.empty()) {
        io.out << '\n';
        printLines(io.out, command.notes);
    }
    io.out << "\nExample:\n";
    printLines(io.out, command.example);
    return Exit::Ok;
}

Exit printVersion(Io& io)
{
    io.out << kProgram << ' ' << TAGWELL_VERSION << '\n';
    return Exit::Ok;
}

const Command* commandNamed(std::string_view name)
{
    for (const Command& command : kCommands) {
        if (command.name == name)
            return &command;
    }
    return nullptr;
}

Exit runCommand(const Command& command, std::span<const std::string> given, Io& io)
{
    std::vector<Option> known(command.options.begin(), command.options.end());
    known.insert(known.end(), std::begin(kCommonOptions), std::end(kCommonOptions));
    const ParsedArguments parsed = parseArguments(given, known);
    if (parsed.arguments.has("help"))
        return printCommandHelp(command, io);
    if (!parsed.complaint.empty())
        return refuseUsage(io, command.name, parsed.complaint);
    try {
        return command.run(parsed.arguments, io);
    } catch (const RunError& error) {
        complain(io, error.path, error.words);
        return Exit::Found;
    }
}

Exit dispatch(std::span<const std::string> given, Io& io)
{
    if (given.empty())
        return refuseUsage(io, {}, "a command is missing");
    const std::string& first = given.front();
    if (first == "--help" || first == "-h")
        return printProgramHelp(io);
    if (first == "--version")
        return printVersion(io);
    const Command* const command = commandNamed(first);
    if (!command)
        return refuseUsage(io, {}, "unknown command '" + oneLine(first) + "'");
    return runCommand(*command, given.subspan(1), io);
}

} // namespace

std::span<const Command> allCommands()
{
    return kCommands;
}

// Output that is lost without a word would pass for a complete answer, so the last thing asked is whether it arrived.
Exit runCommandLine(std::span<const std::string> given, Io& io)
{
    const Exit result = dispatch(given, io);
    io.out.flush();
    if (io.out.good())
        return result;
    io.err << kProgram << ": standard output can't be written\n" << std::flush;
    return worse(result, Exit::Found);
}

Exit refuseUsage(Io& io, std::string_view command, std::string_view complaint)
{
    const std::string program = std::string(kProgram) + (command.empty() ? "" : " ") + std::string(command);
    io.err << program << ": " << complaint << "; see " << program << " --help\n" << std::flush;
    return Exit::Usage;
}
