#!/usr/bin/env python3
"""Proves that includes and link lists between the folders point only downwards.

check_layers.py [--root DIR] [--links FILE]   complains of each violation and exits with 1
check_layers.py [--root DIR] --write          writes the table of docs/architecture.md and the picture beside it

A folder is one row of LAYERS. A file belongs to the longest folder that its path begins with. What is in no row
(tests, benchmarks, tools) may include everything and may be included by no row.
"""

import argparse
import pathlib
import re
import sys
from typing import NamedTuple


class Layer(NamedTuple):
    folder: str
    targets: tuple  # The CMake targets whose sources lie in the folder, besides what tests add.
    stands_on: tuple  # The folders it may include, all in rows below its own.
    qt: str  # What it may use of Qt: "" for nothing.
    holds: str


# From the top down: a row may stand on rows below it alone.
LAYERS = (
    Layer("app", ("tagwell_shell", "tagwell"),
          ("window", "report", "mixer", "app/files", "app/look", "app/settings", "audio", "core",
           "system"), "Widgets",
          "`main`, `TagwellApplication`, `MainMenu`: the program and nothing else"),
    Layer("cli", ("tagwell_commands", "tagwell-cli"), ("cli/pdf", "report", "app/files", "app/settings", "core"), "Core",
          "`tagwell-cli`, the program without a window: one source a command"),
    Layer("cli/pdf", ("tagwell-pdf",), ("report",), "Gui",
          "the part of it that prints, a module that is loaded when a PDF is asked for; its header is what both share"),
    Layer("window", ("tagwell_window",),
          ("report", "mixer", "app/files", "app/look", "app/settings", "core"), "Widgets",
          "`MetadataManagerWindow` and what it is made of"),
    Layer("report", ("tagwell_takes", "tagwell_report"), ("app/files", "app/look", "app/settings", "core", "system"),
          "Widgets, PrintSupport",
          "takes, their texts, CSV, ALE and the settings' table with Qt Core alone; above it the printed sheet and "
          "`SoundReportDialog`"),
    Layer("mixer", ("tagwell_mixer",), ("audio", "app/look", "core"), "Widgets",
          "`FilePlaybackMixerDialog`, `FaderSlider`, `MeterWidget`, `WaveformWidget`"),
    Layer("app/files", ("tagwell_walk", "tagwell_files"), ("app/look",), "Widgets",
          "the WAV suffix, the folder walk, command-line arguments; the native file panel and our own"),
    Layer("app/look", ("tagwell_look",), (), "Widgets", "`Theme` with the style sheets, the frame around the keyboard focus, labels for texts of any length, plain tool tips"),
    Layer("app/settings", ("tagwell_settings",), (), "", "`ConfigManager`, the one settings file, and `ReplacementFile`, which writes it"),
    Layer("audio", ("tagwell_audio", "tagwell_audio_output"), ("system",), "",
          "`WavFileReader`, `PlaybackMixer`, `AudioRateConverter`, `TagwellAudioPlayer`"),
    Layer("core", ("tagwell_core",), (), "",
          "`BwfMetadata`, its reader and its writer, `CantarMetadataParser`, `Timecode`"),
    Layer("system", ("tagwell_system",), (), "", "`SilentErrors`, which holds back the error output of the process"),
)

DOCUMENT = "docs/architecture.md"
PICTURE = "docs/pictures/layers.svg"
# Where the picture has each folder: column and row of a grid, chosen so that no arrow runs through a box.
PLACES = {
    "app": (3, 0), "window": (3, 1), "cli": (5, 0), "cli/pdf": (5, 1), "mixer": (2, 2), "report": (4, 2),
    "audio": (0, 3), "core": (2, 3), "app/files": (4, 3), "app/settings": (6, 3), "app/look": (4, 4), "system": (2, 4),
}
BEGIN, END = "<!-- layers -->", "<!-- end of layers -->"
SOURCES = (".cpp", ".h", ".mm")
# Targets that every library has and that bring no code of a folder.
NEUTRAL_TARGETS = {"tagwell_build_options"}


def layer_of(path):
    """The row of a path relative to the root, or None."""
    fitting = [layer for layer in LAYERS if path.startswith(layer.folder + "/")]
    return max(fitting, key=lambda layer: len(layer.folder), default=None)


def sources_under(root):
    """Paths of all sources in the rows' folders, relative to the root."""
    tops = {layer.folder.split("/")[0] for layer in LAYERS}
    for top in sorted(tops):
        for path in sorted((root / top).rglob("*")):
            if path.suffix in SOURCES:
                yield path.relative_to(root).as_posix()


def includes_of(text):
    """(line number, "x/Y.h" or "<QString>") of each include."""
    for number, line in enumerate(text.splitlines(), 1):
        match = re.match(r'\s*#\s*(?:include|import)\s*(?:"([^"]+)"|(<[^>]+>))', line)
        if match:
            yield number, match.group(1) or match.group(2)


def complaint_about(path, included):
    """What is wrong with one include, or None."""
    layer = layer_of(path)
    if included.startswith("<"):
        is_qt = re.match(r"<(Q[A-Z]|Qt|q[a-z]+\.h>)", included)
        return f"{layer.folder} uses no Qt, but includes {included}" if is_qt and not layer.qt else None
    other = layer_of(included)
    if other is None:
        return f"{included} is in no folder that {layer.folder} may include"
    if other != layer and other.folder not in layer.stands_on:
        return f"{layer.folder} must not include {other.folder} ({included})"
    return None


def find_cycle(graph):
    """Files of one include cycle in order, or an empty list."""
    done = set()

    def visit(path, trail):
        if path in trail:
            return trail[trail.index(path):] + [path]
        if path in done:
            return []
        done.add(path)
        for included in graph.get(path, ()):
            found = visit(included, trail + [path])
            if found:
                return found
        return []

    for path in sorted(graph):
        found = visit(path, [])
        if found:
            return found
    return []


def check_rows():
    """Each row stands on rows below it alone, so the rows themselves have no cycle."""
    names = [layer.folder for layer in LAYERS]
    for index, layer in enumerate(LAYERS):
        for folder in layer.stands_on:
            if folder not in names[index + 1:]:
                yield f"{layer.folder} stands on {folder}, which is not below it"


def check_includes(root):
    graph = {}
    for path in sources_under(root):
        if layer_of(path) is None:
            yield f"{path}: in no folder of the table"
            continue
        found = list(includes_of((root / path).read_text(encoding="utf-8")))
        graph[path] = [included for _, included in found if not included.startswith("<")]
        for number, included in found:
            complaint = complaint_about(path, included)
            if complaint:
                yield f"{path}:{number}: {complaint}"
    cycle = find_cycle(graph)
    if cycle:
        yield "include cycle: " + " -> ".join(cycle)


def check_links(text):
    """Each line of `text`: a target, its folder, and what it links, separated by blanks."""
    owner = {target: layer for layer in LAYERS for target in layer.targets}
    for line in text.splitlines():
        target, folder, *linked = line.split()
        layer = owner.get(target)
        if layer is None or layer.folder != folder:
            yield f"{folder}: target {target} is not in the table's row of that folder"
            continue
        for other in linked:
            if other.startswith("Qt6::") and not layer.qt:
                yield f"{target} uses no Qt, but links {other}"
            if not other.startswith("tagwell_") or other in NEUTRAL_TARGETS:
                continue
            row = owner.get(other)
            if row is None or (row != layer and row.folder not in layer.stands_on):
                yield f"{target} must not link {other}"


def table():
    rows = ["| folder | targets | stands on | Qt | holds |", "| --- | --- | --- | --- | --- |"]
    for layer in LAYERS:
        targets = ", ".join(f"`{target}`" for target in layer.targets)
        stands_on = ", ".join(f"`{folder}/`" for folder in layer.stands_on) or "the standard library" * (not layer.qt)
        rows.append(f"| `{layer.folder}/` | {targets} | {stands_on} | {layer.qt or 'none'} | {layer.holds} |")
    return "\n".join(rows) + "\n"


def direct_arrows():
    """(upper, lower) folder pairs less those that a way over a third folder implies."""
    stands_on = {layer.folder: set(layer.stands_on) for layer in LAYERS}
    for upper, lowers in stands_on.items():
        for lower in sorted(lowers):
            if not any(lower in stands_on[between] for between in lowers):
                yield upper, lower


def picture():
    """The folders as boxes at their places, with the arrows of `direct_arrows`."""
    place = {folder: (100 + 100 * column, 40 + 90 * row) for folder, (column, row) in PLACES.items()}
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" width="800" height="440" '
             'font-family="sans-serif" font-size="15">',
             '<defs><marker id="tip" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="8" markerHeight="8" '
             'orient="auto"><path d="M0 0 8 4 0 8z" fill="#555"/></marker></defs>',
             '<rect width="100%" height="100%" fill="white"/>']
    for upper, lower in direct_arrows():
        (x1, y1), (x2, y2) = place[upper], place[lower]
        lines.append(f'<line x1="{x1}" y1="{y1 + 20}" x2="{x2}" y2="{y2 - 20}" stroke="#555" marker-end="url(#tip)"/>')
    for folder, (x, y) in place.items():
        lines.append(f'<rect x="{x - 65}" y="{y - 20}" width="130" height="40" rx="5" fill="#e8eef5" stroke="#456"/>')
        lines.append(f'<text x="{x}" y="{y + 5}" text-anchor="middle">{folder}/</text>')
    return "\n".join(lines + ["</svg>"]) + "\n"


def document_with_table(text):
    """`text` with the table between the two marks; None if the marks are missing."""
    pattern = re.compile(re.escape(BEGIN) + r"\n.*?" + re.escape(END), re.DOTALL)
    if not pattern.search(text):
        return None
    return pattern.sub(lambda _: f"{BEGIN}\n{table()}{END}", text)


def check_document(root):
    text = (root / DOCUMENT).read_text(encoding="utf-8")
    if document_with_table(text) != text:
        yield f"{DOCUMENT}: its table differs from tools/check_layers.py; run it with --write"
    shown = root / PICTURE
    if not shown.exists() or shown.read_text(encoding="utf-8") != picture():
        yield f"{PICTURE}: differs from tools/check_layers.py; run it with --write"


def write_document(root):
    path = root / DOCUMENT
    text = document_with_table(path.read_text(encoding="utf-8"))
    if text is None:
        sys.exit(f"{DOCUMENT}: the marks {BEGIN} and {END} are missing")
    path.write_text(text, encoding="utf-8")
    (root / PICTURE).write_text(picture(), encoding="utf-8")


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("--root", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parent.parent)
    arguments.add_argument("--links", type=pathlib.Path, help="lines of target, folder and linked libraries")
    arguments.add_argument("--write", action="store_true")
    options = arguments.parse_args()
    complaints = [*check_rows()]
    if complaints:
        print(*complaints, sep="\n")
        return 1
    if options.write:
        write_document(options.root)
    complaints = [*check_includes(options.root), *check_document(options.root)]
    if options.links:
        complaints += check_links(options.links.read_text(encoding="utf-8"))
    for complaint in complaints:
        print(complaint)
    if not complaints:
        print("all includes and links point downwards")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
