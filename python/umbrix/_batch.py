# SPDX-License-Identifier: MIT
"""All pictures of a folder."""

from __future__ import annotations

import ctypes
import fnmatch
import os
from dataclasses import dataclass
from pathlib import Path
from typing import Callable, Iterator, Optional, Sequence, Tuple, Union

from . import _making
from ._arrays import Texels
from ._calls import Progress, call
from ._errors import ArgumentError, Error, LibraryError, PictureWarning, Stopped
from ._interface import library
from ._pictures import PathLike, Picture, flag, read, write
from ._settings import SettingValue, settings_of

_Maker = Callable[..., Texels]

# Kinds of umbrix.h that the ending of a name may tell; 0 where it tells none.
_HEIGHTS, _NORMALS = (0, 1), (0, 2)
_ANY = (0, 1, 2)

# What can be made of each picture, what the names of results end in, and of which pictures.
_MAKERS: dict[str, Tuple[_Maker, str, Sequence[int]]] = {
    "map": (_making.map, "_Umbrix", _ANY),
    "normals": (_making.normals, "_Normal", _HEIGHTS),
    "heights": (_making.heights, "_Height", _NORMALS),
    "light": (_making.light, "_Light", _ANY),
    "occlusion": (_making.occlusion, "_Occlusion", _ANY),
    "bent": (lambda *source, **given: _making.bent(*source, **given).normals, "_Bent", _HEIGHTS),
}
_OWN = "_Umbrix"


@dataclass(frozen=True)
class BatchResult:
    """What became of a picture."""

    file: Path
    """The picture."""
    output: Path
    """Its result; there is none after an error."""
    error: Optional[Exception] = None
    """Why there is no result."""
    skipped: bool = False
    """The output was there before, and was not replaced."""


def _stem_ends_in(name: str, suffix: str) -> bool:
    return bool(suffix) and os.path.splitext(name)[0].lower().endswith(suffix.lower())


def _files(folder: Path, recurse: bool, avoided: Optional[Path]) -> Iterator[Path]:
    """Pictures by their names, each folder's own before those of the folders in it."""
    folders = []
    with os.scandir(folder) as entries:
        for entry in sorted(entries, key=lambda one: one.name):
            if entry.name.startswith("."):
                continue
            if entry.is_dir():
                folders.append(Path(entry.path))
            elif library.umbrix_is_picture_name(os.fsencode(entry.name)):
                yield Path(entry.path)
    for inner in folders if recurse else ():
        if not inner.is_symlink() and (avoided is None or not inner.samefile(avoided)):
            yield from _files(inner, recurse, avoided)


def _target(file: Path, folder: Path, output: Optional[Path], suffix: str, extension: Optional[str]) -> Path:
    name = ctypes.c_char_p()
    ending = None if extension is None else os.fsencode(extension)
    call(library.umbrix_result_name, os.fsencode(file), os.fsencode(suffix), ending, ctypes.byref(name), small=True)
    beside = Path(os.fsdecode(name.value or b""))
    return beside if output is None else output / beside.relative_to(folder)


def _plan(
    folder: Path,
    output: Optional[Path],
    recurse: bool,
    include: Sequence[str],
    kinds: Sequence[int],
    suffix: str,
    extension: Optional[str],
) -> list[BatchResult]:
    plan = []
    avoided = output if output is not None and output.is_dir() and not output.samefile(folder) else None
    targets: dict[Path, Path] = {}
    for file in _files(folder, recurse, avoided):
        name = file.name
        if _stem_ends_in(name, suffix) or _stem_ends_in(name, _OWN):
            continue
        if not include and library.umbrix_kind_of_name(os.fsencode(name)) not in kinds:
            continue
        if include and not any(fnmatch.fnmatchcase(name.lower(), pattern.lower()) for pattern in include):
            continue
        target = _target(file, folder, output, suffix, extension)
        other = targets.setdefault(target, file)
        if other is not file:
            raise ArgumentError(f"{target}: {other} and {file} would both be written there; `include` chooses")
        plan.append(BatchResult(file, target))
    return plan


def _inside(progress: Optional[Progress], name: str, done: int, count: int) -> Optional[Progress]:
    if progress is None:
        return None
    told = progress
    return lambda share, stage: told((done + share) / count, f"{name}: {stage}")


def batch(
    folder: PathLike,
    *,
    output: Optional[PathLike] = None,
    make: str = "map",
    recurse: bool = False,
    include: Union[str, Sequence[str]] = (),
    suffix: Optional[str] = None,
    extension: Optional[str] = None,
    depth: Union[int, str, None] = None,
    rounding: str = "truncate",
    compression: str = "default",
    overwrite: bool = False,
    progress: Optional[Progress] = None,
    **settings: SettingValue,
) -> list[BatchResult]:
    """Makes the maps of all pictures in a folder, and writes each as soon as it is made.

    A picture that cannot be read or taken costs its own entry alone. Outputs that exist are skipped, so the same
    call goes on where one was interrupted; outputs of earlier runs, told by the suffix and by "_Umbrix", and hidden
    files are not taken as inputs.

    :param folder: Where the pictures are.
    :param output: Folder of the results, made if it is missing, with the same folders in it; None: beside the pictures.
    :param make: "map", "normals", "heights", "light", "occlusion" or "bent".
    :param recurse: Look into the folders in the folder, too.
    :param include: Patterns of the names that are wanted, as "*_height.*"; in any letter case. Without any, pictures
        are left alone whose names end as those of something else do: rock_albedo.png, and normals where heights are
        asked for.
    :param suffix: What the names of results end in, instead of "_Umbrix", "_Normal" and the like.
    :param extension: Of the results, with the dot; None: that of the picture where it loses nothing, else ".png".
    :param depth: As of :func:`write`, like `rounding` and `compression`.
    :param overwrite: Replace outputs that exist.
    :param progress: Called with (share of all, "rock.png: occlusion") at least every 50 ms and before each picture, on
        this thread; only False stops.
    :param settings: Any of :func:`settings`.
    :returns: An entry for each picture, folder by folder.
    :raises ArgumentError: Two pictures would have the same output. Nothing has been written then.
    :raises Stopped: `progress` returned False. What is written stays.
    """
    if make not in _MAKERS:
        error = ValueError if isinstance(make, str) else TypeError
        raise error(f"make is {' or '.join(map(repr, _MAKERS))}, not {make!r}")
    maker, usual, kinds = _MAKERS[make]
    settings_of("batch", settings)  # refused once, and not for each picture
    root = Path(os.fsdecode(folder))
    into = None if output is None else Path(os.fsdecode(output))
    patterns = [include] if isinstance(include, str) else list(include)
    ending = usual if suffix is None else suffix
    results = []
    plan = _plan(root, into, bool(flag("recurse", recurse)), patterns, kinds, ending, extension)
    flag("overwrite", overwrite)
    for done, entry in enumerate(plan):
        inside = _inside(progress, entry.file.name, done, len(plan))
        if inside is not None and inside(0.0, "begin") is False:
            raise Stopped("stopped by the progress function")
        if not overwrite and os.path.lexists(entry.output):
            results.append(BatchResult(entry.file, entry.output, skipped=True))
            continue
        try:
            if into is not None:
                entry.output.parent.mkdir(parents=True, exist_ok=True)
            picture: Picture = read(entry.file, progress=inside)
            made = maker(picture, progress=inside, **settings)
            write(
                entry.output,
                made,
                depth=depth,
                rounding=rounding,
                compression=compression,
                overwrite=overwrite,
                progress=inside,
            )
            results.append(entry)
        except (Stopped, LibraryError):
            raise
        except (Error, OSError, MemoryError, PictureWarning) as error:
            results.append(BatchResult(entry.file, entry.output, error))
    return results
