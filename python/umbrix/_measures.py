# SPDX-License-Identifier: MIT
"""A map in a light, the relief that fits, and what is not sound about a map."""

from __future__ import annotations

import ctypes
from dataclasses import dataclass
from typing import Any, Optional, Tuple

import numpy as np

from ._arrays import NAMES, Floats, Texels, address_of, layout_of, result_array
from ._calls import Progress, call
from ._errors import OutOfMemoryError
from ._interface import FindingRecord, FitRecord, Layout, Light, library
from ._pictures import Made, Picture, Source, Taken, flag, one_of
from ._settings import SettingValue, settings_of

_WEIGHTS = {"fitted": 0, "exact": 1, "clamped": 2}


def number(what: str, value: Any) -> float:
    if isinstance(value, (int, float, np.integer, np.floating)) and not isinstance(value, bool):
        return float(value)
    raise TypeError(f"{what} is a number, not {value!r}")


def relight(
    map: Source,
    *,
    azimuth: float = 135.0,
    elevation: float = 45.0,
    exposure: float = 0.7,
    ambient: float = 0.0,
    weights: str = "fitted",
    albedo: Optional[Source] = None,
    force: bool = False,
    out: Optional[Floats] = None,
    progress: Optional[Progress] = None,
    **settings: SettingValue,
) -> Texels:
    """An Umbrix map in a light, as a shader would show it.

    :param map: A map that :func:`map` or the command line made.
    :param azimuth: In degrees; 0 is the right edge of the picture, 90 its top.
    :param elevation: In degrees; 0 is level with the picture, 90 straight above.
    :param exposure: Brightness of flat ground, 0.01 to 10.
    :param ambient: What light from all around adds to that, 0 to 10.
    :param weights: How the channels count: "fitted", "exact" or "clamped".
    :param albedo: Colours of the surface, of the map's size; sRGB in whole numbers, linear in floats.
    :param force: Take a picture that tells that it is no map.
    :param out: Takes the result: float32 (rows, cols), with an albedo (rows, cols, 3). It is returned.
    :param progress: Called with (share, stage) at least every 50 ms, on this thread; only False stops.
    :param settings: ``mode`` counts where the map does not tell its own.
    :returns: Linear light: float32 (rows, cols), with an albedo (rows, cols, 3).
    :raises ArgumentError: A number is out of its range.
    :raises PictureError: It is no map, or the albedo has another size.
    """
    light = Light(
        number("azimuth", azimuth),
        number("elevation", elevation),
        number("exposure", exposure),
        number("ambient", ambient),
        one_of("weights", weights, _WEIGHTS),
        flag("force", force),
    )
    values = settings_of("relight", settings)
    with Taken(map, "map", beside=(out,)) as taken:
        with Made(taken.size, None if albedo is None else 3, "relit", out) as made:
            arguments = [taken.handle, ctypes.byref(light), None, values.handle, made.handle]
            if albedo is None:
                call(library.umbrix_relight, *arguments, progress=progress, small=taken.small)
            else:
                with Taken(albedo, "albedo", beside=(out,)) as colours:
                    arguments[2] = colours.handle
                    call(library.umbrix_relight, *arguments, progress=progress, small=taken.small)
            texels: Texels = made.texels()
            return texels


@dataclass(frozen=True)
class Fit:
    """The relief that fits a height map to a normal map."""

    relief: float
    """In image widths."""
    n_scale: float
    """Strength of the normals."""
    gaussian: float
    """Sigma of the blur, in texels."""
    inverted: bool
    """Dark heights are high."""
    green_down: bool
    """In the normal map."""
    angle: float
    """Mean angle that remains, in degrees."""
    flat_angle: float
    """That of flat ground."""
    beats_flat: bool
    """The relief fits: it is nearer than flat ground by a tenth."""


def fit(
    heights: Source,
    normals: Source,
    *,
    find_blur: bool = False,
    progress: Optional[Progress] = None,
    **settings: SettingValue,
) -> Fit:
    """Finds the relief at which the normals of heights come nearest to a normal map of the same size.

    :param find_blur: The sigma of a blur is found, too.
    :param progress: Called with (share, stage) at least every 50 ms, on this thread; only False stops.
    :raises PictureError: The sizes differ, or nothing can be made of one of them.
    """
    values = settings_of("fit", settings)
    found = FitRecord()
    with Taken(heights, "heights") as high, Taken(normals, "normals") as vectors:
        arguments = (high.handle, vectors.handle, values.handle, flag("find_blur", find_blur), ctypes.byref(found))
        call(library.umbrix_find_relief, *arguments, progress=progress, small=high.small)
    return Fit(
        found.relief,
        found.n_scale,
        found.gaussian,
        bool(found.inverted),
        bool(found.green_down),
        found.angle,
        found.flat_angle,
        bool(found.beats_flat),
    )


@dataclass(frozen=True)
class Finding:
    """What is not sound about a picture."""

    name: str
    """"normal-length"."""
    text: str
    """A sentence with figures, without its full stop."""
    fix: str
    """What an exact fix does; empty where there is none."""
    texels: int
    """That it is about; 0 where it is about the picture as a whole."""
    strength: float
    """How bad it is; what the number is depends on the name."""
    first: Optional[Tuple[int, int]]
    """(row, column) of the first of the texels, or None."""


@dataclass(frozen=True)
class Report:
    """What :func:`check` found."""

    findings: Tuple[Finding, ...]
    """Empty if the picture is sound."""
    kind: Optional[str]
    """What it was taken for: "heights", "normals" or "map"."""
    mended: Optional[Texels] = None
    """Normals without what an exact fix mends, if that was asked for and there is something to mend."""

    @property
    def ok(self) -> bool:
        """Whether the picture is sound."""
        return not self.findings


_GREEN = {None: 0, "up": 1, "down": -1}


def check(
    picture: Source,
    *,
    kind: Optional[str] = None,
    green: Optional[str] = None,
    mend: bool = False,
    progress: Optional[Progress] = None,
    **settings: SettingValue,
) -> Report:
    """Looks for what is not sound about a normal map, a height map or an Umbrix map.

    :param kind: What an array is, "heights", "normals" or "map"; None for what it is known to be, or looks like.
    :param green: Where it should point in a normal map: "up" or "down"; None for anywhere.
    :param mend: Give a copy of normals without what an exact fix mends, too.
    :param progress: Called with (share, stage) at least every 50 ms, on this thread; only False stops.
    :param settings: ``tile``, ``h_tile`` and ``v_tile`` say where it should repeat.
    """
    values = settings_of("check", settings)
    if kind is not None and isinstance(picture, Picture):
        raise TypeError("kind is for arrays; a Picture tells its own")
    found = ctypes.c_void_p()
    mended = ctypes.c_void_p()
    try:
        with Taken(picture, "picture", kind=kind) as taken:
            if flag("mend", mend):
                call(library.umbrix_picture_new, ctypes.byref(mended), small=True)
            arguments = (
                taken.handle,
                values.handle,
                one_of("green", green, _GREEN),
                ctypes.byref(found),
                mended if mend else None,
            )
            call(library.umbrix_check, *arguments, progress=progress, small=taken.small)
        taken_for = NAMES[library.umbrix_findings_kind(found)]
        return Report(_findings_of(found), taken_for, _mended_of(mended) if mend else None)
    finally:
        library.umbrix_picture_free(mended)
        library.umbrix_findings_free(found)


def _findings_of(handle: ctypes.c_void_p) -> Tuple[Finding, ...]:
    findings = []
    for index in range(library.umbrix_findings_count(handle)):
        record = FindingRecord()
        library.umbrix_findings_at(handle, index, ctypes.byref(record))
        findings.append(
            Finding(
                record.name.decode(),
                record.text.decode(),
                record.fix.decode(),
                int(record.texels),
                record.strength,
                None if record.x < 0 else (record.y, record.x),
            )
        )
    return tuple(findings)


def _mended_of(handle: ctypes.c_void_p) -> Optional[Texels]:
    """Normals as vectors or encoded, as the picture had them, in floats."""
    layout = Layout()
    library.umbrix_picture_layout(handle, ctypes.byref(layout))
    if layout.width == 0:
        return None
    array = result_array((layout.height, layout.width, layout.channels))
    wanted = layout_of(array, 0)
    call(library.umbrix_picture_copy, handle, address_of(array), ctypes.byref(wanted))
    array._kind = NAMES[layout.kind]
    return array
