#!/usr/bin/env python3
"""Counts what a reader has to hold in mind at once: lines of a header, methods and fields of a class. What is deleted
counts as no method.

check_sizes.py [--root DIR]   complains of each header or class over its limit and exits with 1
check_sizes.py --list         prints the largest classes and headers

Functions over 45 lines are clang-tidy's to find. The parser knows just enough C++ for this tree's layout.
"""

import argparse
import pathlib
import re
import sys
from typing import NamedTuple

FOLDERS = ("app", "audio", "cli", "core", "mixer", "report", "system", "window")
HEADER_LINES = 150
METHODS = 30
FIELDS = 25

# Classes that may be larger, each with its reason.
EXCEPTIONS = {
    "BwfMetadata": "one plain field for each fact of a file",
    "ConfigManager": "a getter and a setter for each type of value, besides loading and saving",
    "DetailPanes": "one widget for each fact that the panes show",
    "MetadataManagerWindow": "the operations that menus, drops, panes and the mixer meet in; the work is done in its parts",
}


class ClassSize(NamedTuple):
    name: str
    methods: int
    fields: int


def without_comments_and_texts(text):
    text = re.sub(r'//[^\n]*|/\*.*?\*/', " ", text, flags=re.DOTALL)
    text = re.sub(r'"(?:\\.|[^"\\\n])*"', '""', text)
    text = re.sub(r"'(?:\\.|[^'\\\n])'", "0", text)
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", "", text, flags=re.MULTILINE)


def end_of_block(text, start):
    """Position behind the brace that closes the one at `start`."""
    depth = 0
    for position in range(start, len(text)):
        depth += {"{": 1, "}": -1}.get(text[position], 0)
        if depth == 0:
            return position + 1
    return len(text)


def members(body):
    """The declarations of a class body, each without the blocks inside it."""
    declaration, position = "", 0
    while position < len(body):
        character = body[position]
        if character == "{":
            position = end_of_block(body, position)
            is_function = "(" in declaration and not declaration.rstrip().endswith("=")
            is_type = re.search(r"\b(class|struct|enum|union)\b", declaration)
            declaration += "{}"
            if is_function and not is_type:
                yield declaration
                declaration = ""
            continue
        if character == ";":
            yield declaration
            declaration = ""
        else:
            declaration += character
        position += 1


ACCESS = re.compile(r"\b(public|protected|private|signals|Q_SIGNALS)(\s+(slots|Q_SLOTS))?\s*:(?!:)|\bQ_OBJECT\b")
NO_MEMBER = re.compile(r"^(using|typedef|friend|static_assert|class|struct|enum|union|template\s*<[^>]*>\s*friend)\b")


def without_arguments(declaration):
    """The declaration less what stands in angle brackets, so that a function type in a template is no call."""
    before = None
    while before != declaration:
        before, declaration = declaration, re.sub(r"<[^<>]*>", "", declaration)
    return declaration


def measure(name, body):
    methods = fields = 0
    for member in members(ACCESS.sub(" ", body)):
        member = member.strip()
        if not member or NO_MEMBER.match(member) or re.search(r"=\s*delete$", member):
            continue
        shape = without_arguments(re.sub(r"\boperator\s*[^\w\s(]+", "operator_", member))
        head = re.split(r"[={]", shape, maxsplit=1)[0]
        if "(" in head and "(*" not in head:
            methods += 1
        elif "constexpr" not in head:
            fields += 1
    return ClassSize(name, methods, fields)


CLASS = re.compile(r"(?<!enum )\b(?:class|struct)\s+(?:alignas\([^)]*\)\s*)?(\w+)(?:\s+final)?"
                   r"[^;{}()=<]*(?:<[^;{}()]*>[^;{}()=]*)?\{")


def classes_of(text):
    text = without_comments_and_texts(text)
    for match in CLASS.finditer(text):
        yield measure(match.group(1), text[match.end():end_of_block(text, match.end() - 1) - 1])


def headers(root):
    for folder in FOLDERS:
        yield from sorted((root / folder).rglob("*.h"))


def complaints(root):
    unused = set(EXCEPTIONS)
    for path in headers(root):
        shown = path.relative_to(root).as_posix()
        text = path.read_text(encoding="utf-8")
        lines = text.count("\n")
        if lines > HEADER_LINES:
            yield f"{shown}: {lines} lines, at most {HEADER_LINES}"
        for size in classes_of(text):
            if size.methods <= METHODS and size.fields <= FIELDS:
                continue
            if size.name in EXCEPTIONS:
                unused.discard(size.name)
                continue
            yield f"{shown}: {size.name} has {size.methods} methods and {size.fields} fields, at most {METHODS} and {FIELDS}"
    for name in sorted(unused):
        yield f"{name} needs no exception any more"


def print_largest(root):
    sizes = [(size, path) for path in headers(root) for size in classes_of(path.read_text(encoding="utf-8"))]
    for size, path in sorted(sizes, key=lambda pair: -max(pair[0].methods, pair[0].fields))[:20]:
        print(f"{size.name}: {size.methods} methods, {size.fields} fields ({path.relative_to(root).as_posix()})")
    for path in sorted(headers(root), key=lambda path: -path.read_text(encoding="utf-8").count("\n"))[:10]:
        print(f"{path.relative_to(root).as_posix()}: {path.read_text(encoding='utf-8').count(chr(10))} lines")


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("--root", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parent.parent)
    arguments.add_argument("--list", action="store_true")
    options = arguments.parse_args()
    if options.list:
        print_largest(options.root)
        return 0
    found = list(complaints(options.root))
    print("\n".join(found) if found else "all headers and classes are within their limits")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
