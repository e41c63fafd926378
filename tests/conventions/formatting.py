# SPDX-License-Identifier: MIT
"""Each source is as clang-format 14 leaves it with the project's .clang-format; other versions break lines elsewhere."""

import shutil
import subprocess
from pathlib import Path

from source_tree import files

FOLDERS = ["common", "src", "velloric", "coralith", "toolkit", "apps", "tests", "bench", "examples"]
CODE = {".cpp", ".h", ".cu"}
PROGRAM = "clang-format-14"
AT_ONCE = 64  # sources a call: starting the program costs more than reading one


def unformatted(sources: list[Path]) -> list[Path]:
    command = [PROGRAM, "--style=file", "--dry-run", "-Werror", "--ferror-limit=1"]
    if subprocess.run([*command, *sources], stderr=subprocess.DEVNULL, check=False).returncode == 0:
        return []
    if len(sources) == 1:
        return sources
    half = len(sources) // 2
    return unformatted(sources[:half]) + unformatted(sources[half:])


def check(root: Path) -> list[str]:
    if shutil.which(PROGRAM) is None:
        return [f"{PROGRAM} is not found; scripts/install_packages.sh tests installs it"]
    sources = files(root, FOLDERS, CODE)
    found = [unformatted(sources[i : i + AT_ONCE]) for i in range(0, len(sources), AT_ONCE)]
    return [
        f"{path.relative_to(root).as_posix()}: not formatted; {PROGRAM} -i mends it"
        for batch in found
        for path in batch
    ]
