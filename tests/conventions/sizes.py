# SPDX-License-Identifier: MIT
"""A folder holds few files and a file few lines, so that each can be looked over."""

from collections import Counter
from pathlib import Path

from source_tree import files

FOLDERS = ["common", "src", "velloric", "coralith", "toolkit", "apps", "tests", "bench", "examples", "python"]
CODE = {".cpp", ".h", ".cu", ".py", ".sh"}
MOST_FILES = 25
MOST_LINES = 500


def check(root: Path) -> list[str]:
    sources = files(root, FOLDERS, CODE)
    counts = Counter(path.parent.relative_to(root).as_posix() for path in sources)
    faults = [
        f"{folder}: holds {count} source files, and more than {MOST_FILES} want rooms"
        for folder, count in sorted(counts.items())
        if count > MOST_FILES
    ]
    for path in sources:
        name = path.relative_to(root).as_posix()
        lines = len(path.read_text(encoding="utf-8").splitlines())
        if lines > MOST_LINES:
            faults.append(f"{name}: has {lines} lines, and more than {MOST_LINES} want a second file")
    return faults
