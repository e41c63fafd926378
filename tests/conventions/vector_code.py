# SPDX-License-Identifier: MIT
"""Vector code keeps its helpers in an unnamed namespace. Without optimisation the compiler does not inline them, and the
linker would take one of two that have the same name in two sources for both."""

import re
from pathlib import Path

from source_tree import files

FOLDERS = ["common", "src", "velloric", "toolkit", "bench"]
OPENING = re.compile(r"namespace (?:\w+::)*HWY_NAMESPACE \{\n(?:namespace hn = .*\n|\n)*namespace \{\n")
INCLUDED = re.compile(r'#define HWY_TARGET_INCLUDE "(.*)"')


def check(root: Path) -> list[str]:
    faults = []
    for path in files(root, FOLDERS, {".cpp"}):
        text = path.read_text(encoding="utf-8")
        compiled = INCLUDED.search(text)
        if compiled and Path(compiled[1]).name != path.name:
            path = path.with_name(Path(compiled[1]).name)
            text = path.read_text(encoding="utf-8")
        if compiled and not OPENING.search(text):
            faults.append(f"{path.relative_to(root)}: its vector code is in no unnamed namespace")
    return faults
