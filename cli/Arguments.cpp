#include "cli/Arguments.h"

#include "cli/PlainText.h"

namespace {

constexpr std::string_view kDashes = "--";

std::string quoted(std::string_view text)
{
    return "'" + oneLine(text) + "'";
}

bool isChoice(std::string_view value, std::string_view choices)
{
    for (size_t begin = 0; begin <= choices.size();) {
        const size_t end = std::min(choices.find('|', begin), choices.size());
        if (choices.substr(begin, end - begin) == value)
            return true;
        begin = end + 1;
    }
    return false;
}

} // namespace

std::optional<std::string> Arguments::value(std::string_view option) const
{
    const std::vector<std::string>& all = values(option);
    return all.empty() ? std::nullopt : std::optional(all.back());
}

const std::vector<std::string>& Arguments::values(std::string_view option) const
{
    static const std::vector<std::string> kNone;
    const auto found = options.find(option);
    return found == options.end() ? kNone : found->second;
}

class ArgumentParser {
public:
    ArgumentParser(std::span<const std::string> givenArguments, std::span<const Option> knownOptions)
        : given(givenArguments), known(knownOptions)
    {
    }

    ParsedArguments parse()
    {
        while (at < given.size() && result.complaint.empty())
            take(given[at++]);
        return std::move(result);
    }

private:
    void take(const std::string& argument)
    {
        if (onlyOperands || argument.size() < 2 || argument.front() != '-')
            result.arguments.operands.push_back(argument);
        else if (argument == kDashes)
            onlyOperands = true;
        else if (argument.starts_with(kDashes))
            takeLong(std::string_view(argument).substr(kDashes.size()));
        else
            takeLetters(std::string_view(argument).substr(1));
    }

    void takeLong(std::string_view text)
    {
        const size_t sign = text.find('=');
        const std::string_view name = text.substr(0, sign);
        const Option* const option = byName(name);
        if (!option)
            return complain("unknown option " + quoted("--" + std::string(name)));
        if (option->value.empty()) {
            if (sign != std::string_view::npos)
                return complain("option --" + std::string(name) + " takes no value");
            return note(*option, {});
        }
        if (sign != std::string_view::npos)
            return note(*option, text.substr(sign + 1));
        if (at == given.size())
            return complain("option --" + std::string(name) + " lacks its value");
        note(*option, given[at++]);
    }

    void takeLetters(std::string_view letters)
    {
        while (!letters.empty()) {
            const std::string name = std::string("-") + letters.front();
            const Option* const option = byLetter(letters.front());
            if (!option)
                return complain("unknown option " + quoted(name));
            letters.remove_prefix(1);
            if (!option->value.empty())
                return takeLetterValue(name, *option, letters);
            note(*option, {});
        }
    }

    void takeLetterValue(const std::string& name, const Option& option, std::string_view rest)
    {
        if (!rest.empty())
            return note(option, rest);
        if (at == given.size())
            return complain("option " + name + " lacks its value");
        note(option, given[at++]);
    }

    void note(const Option& option, std::string_view value)
    {
        const std::string name(option.name);
        if (!option.value.empty() && !option.repeats && result.arguments.has(name))
            return complain("option --" + name + " was given twice");
        if (!option.choices.empty() && !isChoice(value, option.choices))
            return complain("option --" + name + " takes " + std::string(option.choices) + ", not " + quoted(value));
        result.arguments.options[name].emplace_back(value);
    }

    const Option* byName(std::string_view name) const
    {
        for (const Option& option : known) {
            if (option.name == name)
                return &option;
        }
        return nullptr;
    }

    const Option* byLetter(char letter) const
    {
        for (const Option& option : known) {
            if (option.letter == letter && letter != '\0')
                return &option;
        }
        return nullptr;
    }

    void complain(std::string words) { result.complaint = std::move(words); }

    std::span<const std::string> given;
    std::span<const Option> known;
    size_t at = 0;
    bool onlyOperands = false;
    ParsedArguments result;
};

ParsedArguments parseArguments(std::span<const std::string> given, std::span<const Option> known)
{
    return ArgumentParser(given, known).parse();
}
