# SPDX-License-Identifier: MIT
"""The version number stands in CMakeLists.txt alone; the change log starts with the changes of that version."""

import re
from pathlib import Path

from source_tree import files

FOLDERS = ["common", "src", "velloric", "coralith", "toolkit", "apps", "bench", "cmake", "docs", "examples"]
FOLDERS += ["python", "scripts", "tests"]
TEXTS = {".cpp", ".h", ".cu", ".in", ".txt", ".cmake", ".py", ".sh", ".md", ".toml"}
PROJECT = re.compile(r"^project\(\w+ VERSION (\d+\.\d+\.\d+)", re.MULTILINE)
HEADING = re.compile(r"^## \[(.*?)\] - (?:unreleased|\d{4}-\d{2}-\d{2})$", re.MULTILINE)


def check(root: Path) -> list[str]:
    project = PROJECT.search((root / "CMakeLists.txt").read_text(encoding="utf-8"))
    if project is None:
        return ["CMakeLists.txt: names no version of the project"]
    version = project[1]
    faults = []
    newest = HEADING.search((root / "CHANGELOG.md").read_text(encoding="utf-8"))
    if newest is None or newest[1] != version:
        faults.append(f"CHANGELOG.md: does not start with the changes of {version}")
    number = re.compile(rf"(?<![\d.]){re.escape(version)}(?!\d|\.\d)")
    for path in files(root, FOLDERS, TEXTS):
        if number.search(path.read_text(encoding="utf-8", errors="replace")):
            faults.append(f"{path.relative_to(root).as_posix()}: repeats the version {version} of CMakeLists.txt")
    return faults
