# SPDX-License-Identifier: MIT
"""Each source file starts with its licence; a script does after the line that names its interpreter."""

from pathlib import Path

from source_tree import files

FOLDERS = ["common", "src", "velloric", "coralith", "apps", "tests", "bench", "examples", "python", "cmake", "scripts", ".ci"]
SOURCES = {".cpp", ".h", ".py", ".sh", ".cmake", ".in", ""}
LICENCE = "SPDX-License-Identifier: MIT"


def is_source(path: Path) -> bool:
    return path.suffix != "" or path.parent.name == ".ci"


def check(root: Path) -> list[str]:
    faults = []
    build_files = [path for folder in FOLDERS for path in (root / folder).rglob("CMakeLists.txt")]
    sources = [path for path in files(root, FOLDERS, SOURCES) if is_source(path)]
    for path in [root / "CMakeLists.txt", *build_files, *sources]:
        lines = path.read_text(encoding="utf-8").splitlines() + ["", ""]
        first = lines[1] if lines[0].startswith("#!") else lines[0]
        if LICENCE not in first:
            faults.append(f"{path.relative_to(root)}: does not start with {LICENCE}")
    return faults
