"""The man page's lists of options and the completions of tagwell-cli, made from the program's own table of commands.

The table is what the target tagwell_command_table writes: {"common": [option], "commands": [{"name", "words",
"operands", "options": [option]}]}, an option being {"name", "letter", "value", "words", "repeats", "choices"}.
"""

import textwrap

PROGRAM = "tagwell-cli"
# What a value is called where it is the path of a file.
PATHS = ("FILE", "OUT", "SUMS", "TABLE")
MAN_COLUMNS = 66  # Escapes make a line longer; 80 is what the page's checker allows.


def options_of(table, command):
    """A command's options, those that every command has included."""
    return command["options"] + table["common"]


def flags_of(option):
    """As one types them: ["-0", "--null"]."""
    return (["-" + option["letter"]] if option["letter"] else []) + ["--" + option["name"]]


def choices_of(option):
    return option["choices"].split("|") if option["choices"] else []


# The man page.

def roff(text):
    """Text that formats as itself."""
    escaped = text.replace("\\", r"\e").replace("-", r"\-").replace("'", r"\(aq").replace("~", r"\(ti")
    return r"\&" + escaped if escaped.startswith(".") else escaped


def wrapped(words):
    """Words in lines as the man page's source has them."""
    lines = textwrap.wrap(words, MAN_COLUMNS, break_long_words=False, break_on_hyphens=False)
    return "\n".join(roff(line) for line in lines)


def man_options(options):
    lines = []
    for option in options:
        value = r" \fI%s\fR" % roff(option["value"]) if option["value"] else ""
        lines += [".TP", ", ".join(r"\fB%s\fR" % roff(flag) for flag in flags_of(option)) + value,
                  wrapped(option["words"])]
    return "\n".join(lines)


def man_values(table):
    """What stands for @COMMONOPTIONS@ and @DUMPOPTIONS@ and their like in the man page."""
    values = {command["name"].upper() + "OPTIONS": man_options(command["options"]) for command in table["commands"]}
    return dict(values, COMMONOPTIONS=man_options(table["common"]))


# bash

BASH = r"""# Made from the program's own table of commands. Needs the functions of the package bash-completion.
_tagwell_cli()
{
    local cur prev words cword split options
    _init_completion -s || return
    if ((cword == 1)); then
        COMPREPLY=($(compgen -W '%(commands)s --help --version' -- "$cur"))
        return
    fi
    case "${words[1]} $prev" in
%(values)s
    esac
    "$split" && return
    if [[ $cur == -* ]]; then
        case "${words[1]}" in
%(options)s
        esac
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
        return
    fi
    _filedir wav
} && complete -F _tagwell_cli %(program)s
"""


def bash_value(command, option):
    if option["value"] in PATHS:
        action = "_filedir; return"
    elif option["choices"]:
        action = "COMPREPLY=($(compgen -W '%s' -- \"$cur\")); return" % " ".join(choices_of(option))
    else:
        action = "return"
    return "        %s) %s ;;" % ("|".join("'%s %s'" % (command["name"], flag) for flag in flags_of(option)), action)


def bash(table):
    values, options = [], []
    for command in table["commands"]:
        own = options_of(table, command)
        values += [bash_value(command, option) for option in own if option["value"]]
        flags = " ".join(flag for option in own for flag in flags_of(option))
        options.append("            %s) options='%s' ;;" % (command["name"], flags))
    return BASH % {"program": PROGRAM, "commands": " ".join(command["name"] for command in table["commands"]),
                   "values": "\n".join(values), "options": "\n".join(options)}


# zsh

ZSH = r"""#compdef %(program)s
# Made from the program's own table of commands.
local curcontext="$curcontext" state line
local -a commands
commands=(
%(commands)s
)
_arguments -C '(- *)--help[say what the program does]' '(- *)--version[say which version this is]' \
    '1:command:->command' '*::argument:->arguments' && return
case $state in
    command) _describe -t commands command commands ;;
    arguments)
        case $words[1] in
%(arguments)s
        esac ;;
esac
"""


def zsh_text(text):
    """Text inside single quotes and the brackets of an argument's description."""
    for special in "\\[]:":
        text = text.replace(special, "\\" + special)
    return text.replace("'", "'\\''")


def zsh_option(option):
    if option["value"] in PATHS:
        value = ":%s:_files" % option["value"]
    elif option["value"]:
        action = "(%s)" % " ".join(choices_of(option)) if option["choices"] else " "
        value = ":%s:%s" % (zsh_text(option["value"]), action)
    else:
        value = ""
    repeats = "*" if option["repeats"] else ""
    equals = "=" if option["value"] else ""
    return ["'%s%s[%s]%s'" % (repeats, flag + (equals if flag.startswith("--") else ""), zsh_text(option["words"]), value)
            for flag in flags_of(option)]


def zsh(table):
    commands = ["    '%s:%s'" % (command["name"], zsh_text(command["words"])) for command in table["commands"]]
    arguments = []
    for command in table["commands"]:
        lines = [text for option in options_of(table, command) for text in zsh_option(option)]
        lines.append("'*:recording:_files -g \"*.(#i)wav\"'")
        arguments.append("            %s) _arguments \\\n                %s ;;"
                         % (command["name"], " \\\n                ".join(lines)))
    return ZSH % {"program": PROGRAM, "commands": "\n".join(commands), "arguments": "\n".join(arguments)}


# fish

# The function for suffixes that comes with fish takes one of them only, and has changed from release to release.
FISH_RECORDINGS = '(complete -C "./any_file "(commandline -ct) | string replace -r "\\t.*" "" ' \
                  '| string match -ri ".*(?:\\.wav|/)(?!.)")'


def fish_text(text):
    return "'%s'" % text.replace("\\", "\\\\").replace("'", "\\'")


def fish_option(command, option):
    parts = ["complete -c %s -n '__fish_seen_subcommand_from %s'" % (PROGRAM, command["name"])]
    parts += ["-s " + option["letter"]] if option["letter"] else []
    parts += ["-l " + option["name"]]
    if option["value"] in PATHS:
        parts += ["-rF"]
    elif option["value"]:
        parts += ["-x"] + (["-a " + fish_text(" ".join(choices_of(option)))] if option["choices"] else [])
    return " ".join(parts + ["-d " + fish_text(option["words"])])


def fish(table):
    lines = ["# Made from the program's own table of commands.", "complete -c %s -f" % PROGRAM]
    at_first = "complete -c %s -n __fish_use_subcommand " % PROGRAM
    lines += [at_first + "-a %s -d %s" % (command["name"], fish_text(command["words"]))
              for command in table["commands"]]
    lines += [at_first + "-l help -d 'say what the program does'", at_first + "-l version -d 'say which version this is'",
              "complete -c %s -n 'not __fish_use_subcommand' -a '%s'" % (PROGRAM, FISH_RECORDINGS)]
    lines += [fish_option(command, option) for command in table["commands"] for option in options_of(table, command)]
    return "\n".join(lines) + "\n"


COMPLETIONS = {".bash": bash, ".zsh": zsh, ".fish": fish}
