#!/usr/bin/env python3
"""Writes docs/benchmarks/README.md and its charts from the figures of the benchmark programs.

Usage: report.py <folder with a .tsv file of each program> <build folder>
"""
import datetime
import math
import os
import pathlib
import platform
import re
import subprocess
import sys
from xml.sax.saxutils import escape

ROOT = pathlib.Path(__file__).resolve().parent.parent
OUTPUT = ROOT / "docs" / "benchmarks"

PACKAGES = {
    "Xerces-C++": "libxerces-c-dev",
    "ICU": "libicu-dev",
    "libxml2": "libxml2-dev",
    "pugixml": "libpugixml-dev",
    "Google Benchmark": "libbenchmark-dev",
    "iso-codes": "iso-codes",
    "shared-mime-info": "shared-mime-info",
}

# By program: a heading, and what is measured, where a peer does less.
SECTIONS = {
    "LoadDocument": ("Loading", """
A text in memory becomes a tree. ParseXMLDoc, Xerces' parser and libxml2 validate the real documents, which have a
DTD; libxml2 always records lines, up to 65,535. pugixml does less: no validation, no entities or default values of a DTD, no check
of names and characters, no lines."""),
    "PrintDocument": ("Printing", """
A tree becomes text in memory. libxml2 and pugixml hold their trees in UTF-8, so that UTF-8 is a copy for them, which
ours encodes from UTF-16. pugixml does less: it writes question marks for what an encoding lacks, and has no
KOI8-R."""),
    "EchoDocument": ("Echoing the events of a parse", """
A text is parsed and its events become text again, without a tree. The first peer is the same parse with an empty
handler, which does less: it writes nothing. libxml2 goes from its SAX interface to its text writer, without
namespaces and without validation."""),
    "CompareDocuments": ("Comparing", """
Two equal documents are compared. The bare walk is what a comparison on tree walkers cannot do without: it does less,
for it goes through the same pairs with Xerces' walkers and looks at no attribute and no text. pugixml has no
comparison; what is measured compares names, attributes in their order and texts as they stand, without numbers,
tolerances, case, filters or messages."""),
    "CompareFiles": ("Comparing files by the tool", """
Two equal files are read, parsed with the lines of their nodes, and compared, each time by a new process. The tool parses
both at once, which its processor time does not show."""),
    "WriteChannel": ("Writing through the output channel", """
400,000 values are written and exported as UTF-8. The bare calls make the same nodes and use the same serializer.
pugixml does less: it is given its texts in UTF-8, and does not check names and characters."""),
    "ReadChannel": ("Reading through the input channel", """
The document of 400,000 values is opened, from a file by the channel and from memory by the peers, and its values are
read back by name. The bare calls and pugixml do less: they take the values in their order and look at no name, but
for the attributes of the languages."""),
    "HelperFunctions": ("Helper functions", """
Tags of four kinds (integer, number, text, quoted string) are built and read. The bare calls make the same tree; in
reading they do less: they believe every text. pugixml makes no indentation and checks nothing."""),
}

# What the README shows, by program and input: whole groups, so that no peer is left out.
OVERVIEW = {
    ("LoadDocument", "15 MB of records"): "Loading 15 MB",
    ("PrintDocument", "15 MB of records in UTF-8"): "Printing 15 MB",
    ("CompareDocuments", "15 MB of beams"): "Comparing 15 MB with 15 MB",
}

METHOD = """\
One program for each section measures ours and the peers in one run on the same input. Every candidate does its work
once unmeasured, then in 7 repetitions of at least 0.1 s each, and the repetitions of all candidates take turns in
random order. A figure is the median of the processor times for doing the work once; the time for which the processor
did something else is not in it. A ratio says how much longer ours takes than the peer: below 1, ours is faster. Where
there is a limit, `./dev bench` fails above it. Each candidate checks that it did the work."""


def read_figures(path):
    """The times by input, as (name, is ours, milliseconds) in order, and the limits by what they limit."""
    times, limits = {}, {}
    for line in path.read_text().splitlines():
        kind, *fields = line.split("\t")
        if kind == "time":
            source, name, whose, time = fields
            if math.isnan(float(time)):
                sys.exit(f"{path.name}: {source}/{name} was not measured")
            times.setdefault(source, []).append((name, whose == "ours", float(time)))
        else:
            what, ratio, at_most = fields
            limits[what] = (float(ratio), float(at_most))
    return times, limits


def milliseconds(time):
    digits = max(0, 2 - math.floor(math.log10(time)))
    return f"{time:.{digits}f}"


def table(times, limits):
    """One row a candidate; the ratios are those of the first of ours. Takes the limits that it shows."""
    lines = ["| Input | | ms | ours / it | at most |", "|---|---|--:|--:|--:|"]
    for source, candidates in times.items():
        first_name, _, first_time = next(candidate for candidate in candidates if candidate[1])
        for index, (name, is_ours, time) in enumerate(candidates):
            limit = limits.pop(f"{source}: {first_name} / {name}", None)
            lines.append("| {} | {} | {} | {} | {} |".format(
                source if index == 0 else "",
                f"**{name}**" if is_ours else name,
                milliseconds(time),
                "" if name == first_name else f"{first_time / time:.2f}",
                f"{limit[1]:g}" if limit else ""))
    return lines


def limit_table(limits):
    lines = ["", "| Further ratios | is | at most |", "|---|--:|--:|"]
    lines += [f"| {what} | {ratio:.2f} | {at_most:g} |" for what, (ratio, at_most) in limits.items()]
    return lines if limits else []


STYLE = """
text { font: 13px system-ui, sans-serif; fill: #1f2328 }
.input { font-weight: 600 }
.ours { fill: #2a72d4 }
.peer { fill: #9aa4af }
@media (prefers-color-scheme: dark) {
  text { fill: #e6edf3 }
  .ours { fill: #4d94f0 }
  .peer { fill: #6e7681 }
}
"""


def chart(heading, times):
    """Horizontal bars; the longest of each input has the full length."""
    left, length, line = 220, 440, 22
    body, y = [], 4
    for source, candidates in times.items():
        y += line
        body.append(f'<text class="input" x="0" y="{y}">{escape(source)}</text>')
        longest = max(time for _, _, time in candidates)
        for name, is_ours, time in candidates:
            y += line
            width = max(1, round(length * time / longest))
            kind = "ours" if is_ours else "peer"
            body.append(f'<text x="{left - 10}" y="{y}" text-anchor="end">{escape(name)}</text>'
                        f'<rect class="{kind}" x="{left}" y="{y - 13}" width="{width}" height="16" rx="2"/>'
                        f'<text x="{left + width + 8}" y="{y}">{milliseconds(time)} ms</text>')
        y += line // 2
    head = f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 760 {y + 8}" width="760" role="img">'
    return "\n".join([head, f"<title>{escape(heading)}</title>", f"<style>{STYLE}</style>", *body, "</svg>", ""])


def first_match(pattern, path):
    return re.search(pattern, pathlib.Path(path).read_text(), re.MULTILINE).group(1).strip()


def version_of(package):
    return subprocess.run(["dpkg-query", "--show", "--showformat=${Version}", package],
                          check=True, capture_output=True, text=True).stdout


def circumstances(build):
    """What the figures depend on, as rows of a table; nothing that tells whose machine it was."""
    cache = build / "CMakeCache.txt"
    compiler = first_match(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache)
    build_type = first_match(r"^CMAKE_BUILD_TYPE:\w+=(.*)$", cache)
    flags = first_match(rf"^CMAKE_CXX_FLAGS_{build_type.upper()}:\w+=(.*)$", cache)
    memory = int(first_match(r"^MemTotal:\s+(\d+) kB", "/proc/meminfo")) / 2**20
    release = platform.freedesktop_os_release()
    compiler_version = subprocess.run([compiler, "--version"], check=True, capture_output=True,
                                      text=True).stdout.splitlines()[0]
    return [
        ("Date", datetime.date.today().isoformat()),
        ("Processor", f"{first_match(r'^model name.*: (.*)$', '/proc/cpuinfo')}, {os.cpu_count()} processors seen, "
                      f"{platform.machine()}"),
        ("Memory", f"{memory:.0f} GiB"),
        ("System", f"{release['PRETTY_NAME']}, {platform.libc_ver()[0]} {platform.libc_ver()[1]}"),
        ("Compiler", f"{compiler_version}; {build_type}: `{flags}`, C++20, shared libraries"),
        *((name, version_of(package)) for name, package in PACKAGES.items()),
    ]


def main():
    figures, build = (pathlib.Path(argument) for argument in sys.argv[1:3])
    OUTPUT.mkdir(parents=True, exist_ok=True)
    lines = ["# Benchmarks", "", "Written by `./dev bench`. [PROFILE.md](PROFILE.md) tells where the time goes.", "",
             "| | |", "|---|---|"]
    lines += [f"| {name} | {value} |" for name, value in circumstances(build)]
    lines += ["", METHOD]
    overview = {}
    for program, (heading, about) in SECTIONS.items():
        times, limits = read_figures(figures / f"{program}.tsv")
        (OUTPUT / f"{program}.svg").write_text(chart(heading, times))
        overview.update({OVERVIEW[program, source]: candidates for source, candidates in times.items()
                         if (program, source) in OVERVIEW})
        lines += ["", f"## {heading}", about, "", f"![{heading}: bars of the times below]({program}.svg)", ""]
        lines += table(times, limits) + limit_table(limits)
    (OUTPUT / "Overview.svg").write_text(chart("Processor time, shorter is better", overview))
    (OUTPUT / "README.md").write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
