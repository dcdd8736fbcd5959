#!/usr/bin/env python3
"""Writes the papers that carry the version, the changelog or the command line's options: metainfo, Debian's changelog,
man pages, the completions of tagwell-cli.

    papers.py --version 2.1.7 --homepage URL --maintainer "Name <mail>" --docs /usr/share/doc/tagwell --source DIR
              --commands TABLE --out DIR PROGRAM...

DIR/CHANGELOG.md follows Keep a Changelog. Its newest dated release must be the version that is built, so that neither
can be raised alone. PROGRAM... are the programs on the path: each has a man page packaging/man/<program>.1.in and is
named in the metainfo. TABLE is what the target tagwell_command_table writes. The same input gives the same bytes.
"""

import argparse
import datetime
import gzip
import json
import pathlib
import re
import sys
import textwrap
from xml.sax.saxutils import escape

sys.dont_write_bytecode = True  # The sources stay as they are.
import commands  # noqa: E402

SECTIONS = ("Added", "Changed", "Deprecated", "Removed", "Fixed", "Security")
RELEASE = re.compile(r"^## \[(?P<version>[^\]]+)\](?: - (?P<date>\d{4}-\d{2}-\d{2}))?$")


class Release:
    """One release: version, date, and sections as (title, [item])."""

    def __init__(self, version, date):
        self.version = version
        self.date = datetime.date.fromisoformat(date)
        self.sections = []

    def add_line(self, line):
        """Takes a section's heading, an item in a section, or a further line of an item; ValueError for anything else."""
        if line.startswith("### "):
            if line[4:] not in SECTIONS:
                raise ValueError("no such section: " + line[4:])
            self.sections.append((line[4:], []))
        elif line.startswith("- ") and self.sections:
            self.sections[-1][1].append(line[2:].strip())
        elif line.startswith("  ") and self.sections and self.sections[-1][1]:
            self.sections[-1][1][-1] += " " + line.strip()
        elif line.strip():
            raise ValueError("neither an item of a section nor a part of one: " + line)


def releases_in(changelog):
    """The dated releases, newest first. What is not released yet is left out; any other heading is a mistake."""
    found, current = [], None
    for number, line in enumerate(changelog.splitlines(), 1):
        if line.startswith("## "):
            heading = RELEASE.match(line)
            if heading is None or (heading["date"] is None) != (heading["version"] == "Unreleased"):
                raise SystemExit('CHANGELOG.md:%d: not "## [version] - date": %s' % (number, line))
            current = Release(heading["version"], heading["date"]) if heading["date"] else None
            found += [current] if current else []
        elif current:
            try:
                current.add_line(line)
            except ValueError as error:
                raise SystemExit("CHANGELOG.md:%d: %s" % (number, error)) from None
    return found


def plain(text):
    """Markdown without its code marks."""
    return text.replace("`", "")


def metainfo_releases(releases):
    lines = ["<releases>"]
    for release in releases:
        lines += ['  <release type="stable" version="%s" date="%s">' % (release.version, release.date),
                  "    <description>"]
        for title, items in release.sections:
            lines += ["      <p>%s</p>" % escape(title), "      <ul>"]
            lines += ["        <li>%s</li>" % escape(plain(item)) for item in items]
            lines += ["      </ul>"]
        lines += ["    </description>", "  </release>"]
    return lines + ["</releases>"]


def filled(template, values):
    """The template with each @NAME@ replaced. A value of several lines takes the indent of its place."""
    def value(match):
        return ("\n" + match[1]).join([match[1] + values[match[2]].splitlines()[0]] + values[match[2]].splitlines()[1:])
    text = re.sub(r"(?m)^( *)@([A-Z]+)@$", value, template)
    return re.sub(r"@([A-Z]+)@", lambda match: values[match[1]], text)


def debian_changelog(releases, maintainer):
    entries = []
    for release in releases:
        lines = ["tagwell (%s) stable; urgency=medium" % release.version, ""]
        for title, items in release.sections:
            lines += ["  [ %s ]" % title]
            for item in items:
                lines += textwrap.wrap(plain(item), 78, initial_indent="  * ", subsequent_indent="    ")
            lines += [""]
        lines += [" -- %s  %s, %02d %s %d 12:00:00 +0000" % (
            maintainer, "Mon Tue Wed Thu Fri Sat Sun".split()[release.date.weekday()], release.date.day,
            "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()[release.date.month - 1], release.date.year)]
        entries.append("\n".join(lines) + "\n")
    return "\n".join(entries)


def write_compressed(path, text):
    path.write_bytes(gzip.compress(text.encode(), compresslevel=9, mtime=0))


def arguments():
    parser = argparse.ArgumentParser()
    for name in ("--version", "--homepage", "--maintainer", "--docs", "--source", "--commands", "--out"):
        parser.add_argument(name, required=True)
    parser.add_argument("programs", nargs="+")
    return parser.parse_args()


def main():
    given = arguments()
    source, out = pathlib.Path(given.source), pathlib.Path(given.out)
    packaging = source / "packaging"
    releases = releases_in((source / "CHANGELOG.md").read_text(encoding="utf-8"))
    if not releases or releases[0].version != given.version:
        raise SystemExit("CHANGELOG.md's newest release is not %s, the version in CMakeLists.txt" % given.version)
    out.mkdir(parents=True, exist_ok=True)
    table = json.loads(pathlib.Path(given.commands).read_text(encoding="utf-8"))

    values = {
        **commands.man_values(table),
        "VERSION": given.version, "HOMEPAGE": given.homepage, "DATE": str(releases[0].date),
        "DOCS": given.docs,
        "BINARIES": "\n".join("<binary>%s</binary>" % program for program in given.programs),
        "RELEASES": "\n".join(metainfo_releases(releases)),
    }
    name = "com.brindleaudio.tagwell.metainfo.xml"
    (out / name).write_text(filled((packaging / (name + ".in")).read_text(encoding="utf-8"), values), encoding="utf-8")
    write_compressed(out / "changelog.gz", debian_changelog(releases, given.maintainer))
    for program in given.programs:
        page = (packaging / "man" / (program + ".1.in")).read_text(encoding="utf-8")
        write_compressed(out / (program + ".1.gz"), filled(page, values))
    for suffix, text in commands.COMPLETIONS.items():
        (out / (commands.PROGRAM + suffix)).write_text(text(table), encoding="utf-8")


if __name__ == "__main__":
    main()
