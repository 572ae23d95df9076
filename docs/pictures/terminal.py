#!/usr/bin/env python3
"""Draws a command and what it writes to a terminal.

Usage: terminal.py [--check] <picture.svg> <program> <argument>...

Runs the program with the further option `--color always`, which a terminal does not need. With --check nothing is
written: fails unless the picture is what would be drawn.
"""
import pathlib
import re
import subprocess
import sys
from xml.sax.saxutils import escape

STYLE = """
text { font: 13px ui-monospace, Menlo, Consolas, "DejaVu Sans Mono", monospace; fill: #e6edf3; white-space: pre }
.screen { fill: #0d1117 }
.prompt { fill: #7d8590 }
.bold { font-weight: 700 }
.underlined { text-decoration: underline }
.red { fill: #ff7b72 }
.green { fill: #3fb950 }
"""

# What the codes of a terminal look like; another code ends the script with an error.
LOOKS = {"1": "bold", "4": "underlined", "31": "red", "32": "green"}

TAB, LINE_HEIGHT, CHARACTER_WIDTH, MARGIN = 8, 19, 8, 16


def spans(line):
    """A line of the output as pieces (class, text)."""
    looks = []
    for code, text in re.findall(r"(?:\x1b\[([0-9;]*)m)?([^\x1b]+|$)", line):
        for number in filter(None, code.split(";")):
            looks = [] if number == "0" else looks + [LOOKS[number]]
        if text:
            yield " ".join(looks), text


def drawn(line, y):
    pieces = "".join(f'<tspan class="{look}">{escape(text)}</tspan>' if look else escape(text)
                     for look, text in spans(line))
    return f'<text x="{MARGIN}" y="{y}" xml:space="preserve">{pieces}</text>'


def picture(command, output):
    lines = [line.expandtabs(TAB) for line in output.splitlines()]
    columns = max(len(re.sub(r"\x1b\[[0-9;]*m", "", line)) for line in [command + "  ", *lines])
    width = columns * CHARACTER_WIDTH + 2 * MARGIN
    first = MARGIN + LINE_HEIGHT - 5
    height = first + LINE_HEIGHT * len(lines) + MARGIN
    prompt = f'<text x="{MARGIN}" y="{first}"><tspan class="prompt">$</tspan> {escape(command)}</text>'
    body = [prompt, *(drawn(line, first + LINE_HEIGHT * row) for row, line in enumerate(lines, 1))]
    head = f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" role="img">'
    return "\n".join([head, f"<title>{escape(command)}</title>", f"<style>{STYLE}</style>",
                      f'<rect class="screen" width="{width}" height="{height}" rx="8"/>', *body, "</svg>", ""])


def main():
    arguments = sys.argv[1:]
    checks = arguments[0] == "--check"
    file, program, *options = arguments[1:] if checks else arguments
    run = subprocess.run([program, *options, "--color", "always"], stdout=subprocess.PIPE, encoding="utf-8",
                         check=False)
    drawing = picture(" ".join([pathlib.Path(program).name, *options]), run.stdout)
    if not checks:
        pathlib.Path(file).write_text(drawing, encoding="utf-8")
    elif pathlib.Path(file).read_text(encoding="utf-8") != drawing:
        sys.exit(f"{file} is not what {program} writes; './dev pictures' draws it anew.")


main()
