# SPDX-License-Identifier: MIT
"""Normal maps, Umbrix maps and what goes with them, from arrays of NumPy and from files::

    import umbrix

    heights = umbrix.read("rock_height.exr").heights
    umbrix.write("rock_normal.png", umbrix.normals(heights, relief=0.05), depth=16)
    umbrix.write("rock.png", umbrix.map(heights, rays=128))

Arrays have their top row first. Every setting of the command line is a keyword, with '_' for '-': see
:func:`settings`. Results are those of the command line to the bit, for any number of processors.

Threads: all functions may be called from several threads. The GIL is free while the library works. In a process that
was forked they work, or raise LibraryError if another thread was at work in the library at that moment.
"""

from __future__ import annotations

from ._arrays import Texels
from ._batch import BatchResult, batch
from ._calls import Progress
from ._errors import (
    ArgumentError,
    Error,
    ExistsError,
    LibraryError,
    NoFileError,
    OutOfMemoryError,
    PictureError,
    PictureWarning,
    ReadError,
    SettingError,
    Stopped,
    WriteError,
)
from ._interface import library as _library
from ._making import Bent, bent, heights, light, map, normals, occlusion
from ._measures import Finding, Fit, Report, check, fit, relight
from ._pictures import Picture, read, write
from ._settings import Preset, Setting, SettingValue, preset, presets, settings
from ._stack import Stack, Stacked

__version__: str = _library.umbrix_version().decode()

__all__ = [
    "ArgumentError",
    "BatchResult",
    "Bent",
    "Error",
    "ExistsError",
    "Finding",
    "Fit",
    "LibraryError",
    "NoFileError",
    "OutOfMemoryError",
    "Picture",
    "PictureError",
    "PictureWarning",
    "Preset",
    "Progress",
    "ReadError",
    "Report",
    "Setting",
    "SettingError",
    "SettingValue",
    "Stack",
    "Stacked",
    "Stopped",
    "Texels",
    "WriteError",
    "batch",
    "bent",
    "check",
    "fit",
    "heights",
    "light",
    "map",
    "normals",
    "occlusion",
    "preset",
    "presets",
    "read",
    "relight",
    "settings",
    "write",
]
