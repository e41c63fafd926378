# SPDX-License-Identifier: MIT
"""Folders of src/ include only folders that come before them; only the boundary includes DevIL and the system."""

import re
from fnmatch import fnmatch
from pathlib import Path

from source_tree import files

ORDER = ["common", "foundation", "boundary", "filters", "normals", "layers", "umbrix", "worklist"]

# (who includes, what is included). The boundary declares functions that take plain records of the pipelines; the folder
# batch of normals drives a layer stack.
EXCEPTIONS = [
    ("boundary/*.h", "umbrix/umbrix_options.h"),
    ("normals/folder_to_normal*", "layers/*"),
]

INCLUDE = re.compile(r"^\s*#\s*include\s*([<\"])([^>\"]+)[>\"]", re.MULTILINE)
SYSTEM = re.compile(r"^(IL/.*|windows\.h|unistd\.h|dirent\.h|sys/.*)$")


def is_allowed(includer: str, included: str) -> bool:
    if any(fnmatch(includer, who) and fnmatch(included, what) for who, what in EXCEPTIONS):
        return True
    folder, included_folder = includer.split("/")[0], included.split("/")[0]
    return (
        folder in ORDER
        and included_folder in ORDER
        and ORDER.index(included_folder) <= ORDER.index(folder)
    )


def check(root: Path) -> list[str]:
    source = root / "src"
    faults = []
    for path in files(root, ["src"], {".cpp", ".h"}):
        includer = path.relative_to(source).as_posix()
        if "/" not in includer:
            continue  # the umbrella header
        for kind, included in INCLUDE.findall(path.read_text(encoding="utf-8")):
            beside = kind == '"' and (path.parent / included).exists()
            if kind == '"' and not beside and not is_allowed(includer, included):
                faults.append(f"src/{includer}: must not include {included}")
            if SYSTEM.match(included) and not includer.startswith("boundary/"):
                faults.append(f"src/{includer}: only the boundary includes {included}")
    return faults
