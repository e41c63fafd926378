# SPDX-License-Identifier: MIT
"""What the toolkit leaves to its front ends: terminals, printing, signals, the options of a command line. And it
starts no program by the path of the one that it runs in."""

import re
from pathlib import Path

from source_tree import files

FOLDERS = ["toolkit"]
CODE = {".cpp", ".h"}

# (what is looked for, in code without comments; what it is)
RULES = [
    (re.compile(r"\bisatty\b"), "asks whether there is a terminal"),
    (re.compile(r"\b(?:f|v|vf)?printf\s*\(|\bf?puts\s*\(|\bputchar\s*\("), "prints"),
    (re.compile(r"\bstd::(?:cout|cerr|clog)\b|\bfmt::(?:v?print|println)\b"), "prints"),
    (re.compile(r"(?<!\w)(?:signal|sigaction|signalfd|sigprocmask|pthread_sigmask)\s*\("), "handles signals"),
    (re.compile(r'"/proc/self/exe"'), "looks up the program that it runs in"),
    (re.compile(r"#\s*include\s*[<\"]CLI/"), "parses a command line"),
    (re.compile(r'"(?:[^"\\\n]|\\.)*(?<![\w-])--[a-z](?:[^"\\\n]|\\.)*"'), "names an option"),
]

# The worker is a program of its own, so the signals that it ignores are its own.
EXCEPTIONS = {("toolkit/workers/worker_main.cpp", "handles signals")}

TOKEN = re.compile(
    r'(?P<text>"(?:[^"\\\n]|\\.)*")|(?P<character>\'(?:[^\'\\\n]|\\.)+\')|(?P<comment>//[^\n]*|/\*.*?\*/)', re.DOTALL
)


def without_comments(code: str) -> str:
    """The code with each comment blanked, its line breaks kept."""

    def kept(token: re.Match) -> str:
        return re.sub(r"[^\n]", " ", token[0]) if token["comment"] else token[0]

    return TOKEN.sub(kept, code)


def check(root: Path) -> list[str]:
    faults = []
    for path in files(root, FOLDERS, CODE):
        name = path.relative_to(root).as_posix()
        code = without_comments(path.read_text(encoding="utf-8"))
        for pattern, what in RULES:
            if (name, what) in EXCEPTIONS:
                continue
            for found in pattern.finditer(code):
                line = code.count("\n", 0, found.start()) + 1
                faults.append(f"{name}:{line}: {what}, which is the front end's: {found[0]}")
    return faults
