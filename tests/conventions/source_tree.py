# SPDX-License-Identifier: MIT
"""The files of the project, without what was built from them."""

from pathlib import Path


def files(root: Path, folders: list[str], suffixes: set[str]) -> list[Path]:
    """All files below the folders of root whose suffix is among the suffixes, in order."""
    return sorted(
        path
        for folder in folders
        for path in (root / folder).rglob("*")
        if path.is_file() and path.suffix in suffixes and "__pycache__" not in path.parts
    )
