# SPDX-License-Identifier: MIT
"""Where the shared object is."""

from __future__ import annotations

import ctypes
import os
import sys
from pathlib import Path
from typing import Iterator, List, Optional

from ._errors import LibraryError

_HERE = Path(__file__).resolve().parent
_NAMES = {
    "win32": ["umbrix-c.dll", "libumbrix-c.dll"],
    "darwin": ["libumbrix-c.dylib"],
}.get(sys.platform, ["libumbrix-c.so"])


def _folders() -> Iterator[Path]:
    """Folders that may hold it, in the order in which they count."""
    yield _HERE / "_library"  # an installation
    named = os.environ.get("UMBRIX_BUILD")
    if named:
        yield from (Path(named) / "capi", Path(named))
        return
    tree = _HERE.parent.parent  # a checkout
    if (tree / "capi" / "umbrix.h").is_file():
        yield from (tree / "build" / name / "capi" for name in ("release", "run"))


def _in_folder(folder: Path) -> Iterator[Path]:
    for name in _NAMES:
        if (folder / name).is_file():
            yield folder / name
        yield from sorted(folder.glob(name + ".*"))  # libumbrix-c.so.0.2


def _of_the_system() -> Optional[Path]:
    """The name by which the dynamic linker finds the one that a package of the system has installed."""
    name = "libumbrix-c.so.1"
    try:
        ctypes.CDLL(name)
    except OSError:
        return None
    return Path(name)


def shared_object() -> Path:
    """The shared object to load; LibraryError names the places if there is none."""
    looked: List[str] = []
    for folder in _folders():
        for found in _in_folder(folder):
            return found
        looked.append(str(folder))
    installed = _of_the_system()
    if installed is not None:
        return installed
    raise LibraryError(
        f"umbrix: its shared object {_NAMES[0]} is in none of these folders: {', '.join(looked)}; build it "
        "with scripts/run.sh, or name its build folder in the variable UMBRIX_BUILD"
    )
