#pragma once

#include "cli/Io.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// One option of a command, as the command line, the help and the completion know it. A plain value of constants.
struct Option {
    /// Without the two dashes in front.
    std::string_view name;
    /// What its value is called in the help ("SUMS"); empty for a switch, which takes none.
    std::string_view value = {};
    /// What it does, one line.
    std::string_view words = {};
    /// Its short form; NUL if it has none. A value follows it in the same argument or is the next one.
    char letter = '\0';
    /// May be given several times, each with a value of its own.
    bool repeats = false;
    /// The values that are allowed, separated by "|"; empty if any text is.
    std::string_view choices = {};
};

/// A command line taken apart. Texts are bytes as the system gave them.
class Arguments {
public:
    /// True if the option was given.
    bool has(std::string_view option) const { return options.contains(option); }
    /// The value of an option; nothing if it wasn't given.
    std::optional<std::string> value(std::string_view option) const;
    /// All values of an option that repeats, in order; empty if it wasn't given. Valid as long as this object.
    const std::vector<std::string>& values(std::string_view option) const;

    /// What is no option, in order.
    std::vector<std::string> operands;

private:
    friend class ArgumentParser;
    std::map<std::string, std::vector<std::string>, std::less<>> options;
};

/// What a command line says, or what is wrong with it.
struct ParsedArguments {
    Arguments arguments;
    /// What is wrong, in words for the user; empty if nothing is.
    std::string complaint;
};

/// Takes `given` apart by `known` options: "--name", "--name=value", "--name value", "-x",
/// "-xVALUE", "-x VALUE", and "--" in front of what
/// are no options whatever they look like. "-" by itself is no option. Options and other arguments may come mixed.
ParsedArguments parseArguments(std::span<const std::string> given, std::span<const Option> known);
