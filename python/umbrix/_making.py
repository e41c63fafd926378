# SPDX-License-Identifier: MIT
"""Maps of heights and normals.

All of these functions take a Picture or an array as source, (rows, cols) or (rows, cols, channels) with the top row
first: uint8 and uint16 stand for 0 to 1, float16 and float32 are what they are, and lie in memory as they like.
Anything else is converted to float32 once. Whatever several threads call at the same time is done one after the
other, each on all processors; other threads of Python go on meanwhile.
"""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, Tuple

import numpy as np

from ._arrays import Floats, Texels
from ._calls import Progress, call
from ._interface import library
from ._pictures import Made, Source, Taken
from ._settings import SettingValue, settings_of


def _make(
    caller: str,
    function: Any,
    source: Source,
    channels: Optional[int],
    kind: str,
    out: Optional[Floats],
    progress: Optional[Progress],
    given: dict[str, SettingValue],
    *more: Any,
) -> Texels:
    values = settings_of(caller, given)
    with Taken(source, "source", beside=(out,)) as taken:
        if channels == 0:  # those of a map
            channels = 4 if taken.channels % 2 == 0 or values["height_in_alpha"] else 3
        with Made(taken.size, channels, kind, out) as made:
            arguments = (taken.handle, values.handle, made.handle, *more)
            call(function, *arguments, progress=progress, small=taken.small)
            texels: Texels = made.texels()
            return texels


def normals(
    heights: Source,
    *,
    relief: Optional[float] = None,
    tile: Optional[bool] = None,
    y: Optional[str] = None,
    out: Optional[Floats] = None,
    progress: Optional[Progress] = None,
    **settings: SettingValue,
) -> Texels:
    """A tangent-space normal map of heights.

    :param heights: 0 to 1, or as the settings for reading heights say.
    :param relief: How high a height of 1 reaches, in widths of the picture; 0.05 without a preset.
    :param tile: The texture repeats; True without a preset.
    :param y: Where green points, "up" (OpenGL) or "down" (DirectX); "up" without a preset.
    :param out: Takes the result: float32 (rows, cols, 3). It is returned.
    :param progress: Called with (share, stage) at least every 50 ms, on this thread; only False stops.
    :param settings: Any of :func:`settings`.
    :returns: Unit vectors, -1 to 1: float32 (rows, cols, 3).
    :raises PictureError: Nothing can be made of the heights.
    :raises SettingError: A value is out of its range.
    :raises Stopped: `progress` returned False.
    """
    if y is not None:
        if "normal_y" in settings:
            raise TypeError("y and normal_y are the same setting; give one of them")
        settings["normal_y"] = y
    settings.update(relief=relief, tile=tile)
    return _make("normals", library.umbrix_make_normals, heights, 3, "normals", out, progress, settings)


def map(
    source: Source,
    *,
    relief: Optional[float] = None,
    rays: Optional[int] = None,
    mode: Optional[str] = None,
    tile: Optional[bool] = None,
    out: Optional[Floats] = None,
    progress: Optional[Progress] = None,
    **settings: SettingValue,
) -> Texels:
    """The Umbrix map of heights, or of normals with the heights in their alpha.

    :param source: Heights or normals. What a Picture or a result tells of itself decides, then ``kind="height"`` or
        ``kind="normal"``, then the samples.
    :param relief: How high a height of 1 reaches, in widths of the picture; 0.05 without a preset.
    :param rays: Rays of the occlusion in each of the three directions.
    :param mode: Light of a normal: "projection", "unit", "flat" or "squared".
    :param tile: The texture repeats; True without a preset.
    :param out: Takes the result: float32 (rows, cols, 3), or 4 channels where the result has them. It is returned.
    :param progress: Called with (share, stage) at least every 50 ms, on this thread; only False stops.
    :param settings: Any of :func:`settings`.
    :returns: float32 (rows, cols, 3); with 4 channels if the source has an alpha or ``height_in_alpha=True``.
    :raises PictureError: Nothing can be made of the source.
    :raises SettingError: A value is out of its range.
    :raises Stopped: `progress` returned False.
    """
    settings.update(relief=relief, rays=rays, mode=mode, tile=tile)
    return _make("map", library.umbrix_make_map, source, 0, "map", out, progress, settings)


def light(
    source: Source, *, out: Optional[Floats] = None, progress: Optional[Progress] = None, **settings: SettingValue
) -> Texels:
    """The light of the three directions alone, without occlusion; as :func:`map` else."""
    return _make("light", library.umbrix_make_light, source, 0, "light", out, progress, settings)


def occlusion(
    source: Source, *, out: Optional[Floats] = None, progress: Optional[Progress] = None, **settings: SettingValue
) -> Texels:
    """The open shares of the three directions alone, without light; as :func:`map` else."""
    return _make("occlusion", library.umbrix_make_occlusion, source, 0, "occlusion", out, progress, settings)


def heights(
    normals: Source, *, out: Optional[Floats] = None, progress: Optional[Progress] = None, **settings: SettingValue
) -> Texels:
    """Heights of which :func:`normals` makes these normals with the same settings.

    :param normals: (rows, cols, 3): vectors of -1 to 1, or 0 to 1 where they are encoded so.
    :param out: Takes the result: float32 (rows, cols). It is returned.
    :param settings: ``relief`` and ``tile`` above all.
    :returns: float32 (rows, cols). The middle of the lowest and the highest is 0.5; they may leave 0 to 1.
    """
    return _make("heights", library.umbrix_make_heights, normals, None, "heights", out, progress, settings, None)


class Bent(NamedTuple):
    """What is made of the sky over heights."""

    normals: Texels
    """Where the open sky is, on the mean: unit vectors, (rows, cols, 3)."""
    occlusion: Texels
    """The open share of the sky, 0 to 1: (rows, cols)."""


def bent(
    heights: Source,
    *,
    directions: Optional[int] = None,
    out: Tuple[Optional[Floats], Optional[Floats]] = (None, None),
    progress: Optional[Progress] = None,
    **settings: SettingValue,
) -> Bent:
    """Bent normals of heights, and the occlusion of the whole sky.

    :param directions: In how many the horizon is looked for.
    :param out: Take the results: float32 (rows, cols, 3) and (rows, cols).
    """
    if not isinstance(out, tuple) or len(out) != 2:
        raise TypeError("out is a tuple of two, for the normals and for the occlusion")
    settings["directions"] = directions
    values = settings_of("bent", settings)
    if out[0] is not None and out[1] is not None and np.may_share_memory(out[0], out[1]):
        raise ValueError("out has two arrays that lie over each other")
    with Taken(heights, "heights", beside=out) as taken:
        with Made(taken.size, 3, "bent", out[0]) as made, Made(taken.size, None, "occlusion", out[1]) as open_share:
            arguments = (taken.handle, values.handle, made.handle, open_share.handle)
            call(library.umbrix_make_bent, *arguments, progress=progress, small=taken.small)
            return Bent(made.texels(), open_share.texels())
