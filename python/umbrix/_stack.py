# SPDX-License-Identifier: MIT
"""Layers of heights and normals."""

from __future__ import annotations

import ctypes
import math
from typing import Any, NamedTuple, Optional

from ._arrays import Floats, Texels
from ._calls import SMALL, Progress, call
from ._errors import ArgumentError
from ._interface import Layer, library
from ._measures import number
from ._pictures import Made, Picture, Source, Taken, one_of
from ._settings import SettingValue, settings_of

_BLENDS = {"blend": 0, "overlay": 1, "multiply": 2, "add": 3}
_KINDS = {"heights": 0, "normals": 1}


class Stacked(NamedTuple):
    """All that is made of a stack."""

    normals: Texels
    """Unit vectors: (rows, cols, 3)."""
    heights: Texels
    """Stretched to 0 to 1: (rows, cols)."""
    map: Texels
    """The Umbrix map of both, with the heights in its alpha: (rows, cols, 4)."""


class Stack:
    """Layers from the lowest to the uppermost, blended into normals, heights and an Umbrix map::

        stack = umbrix.Stack()
        stack.add(rock).add(moss, blend="overlay", opacity=0.5)
        umbrix.write("ground.png", stack.map())

    The lowest layer is heights, and gives the size. Other heights repeat or are cut off; normals of another size are
    left out, with a warning. One thread at a time adds layers; several may make results.
    """

    def __init__(self, *, normal_scale: float = 1.0) -> None:
        """:param normal_scale: Strength of the normals of the whole stack."""
        self._handle = ctypes.c_void_p()
        self._size = (0, 0)
        self._count = 0
        call(library.umbrix_stack_new, ctypes.byref(self._handle), small=True)
        scale = number("normal_scale", normal_scale)
        call(library.umbrix_stack_set_normal_scale, self._handle, scale, small=True)

    def __del__(self) -> None:
        library.umbrix_stack_free(self._handle)

    def __reduce__(self) -> Any:
        raise TypeError("a Stack cannot be pickled or copied")

    def __len__(self) -> int:
        """How many layers it has."""
        return self._count

    def add(
        self,
        array: Source,
        *,
        kind: Optional[str] = None,
        blend: str = "blend",
        opacity: float = 1.0,
        n_scale: Optional[float] = None,
        detail: float = 0.0,
        gaussian: float = 0.0,
        depth: float = 0.0,
        convex: float = 0.0,
        concave: float = 0.0,
    ) -> Stack:
        """Adds an uppermost layer, and returns the stack. The array is copied.

        :param array: Heights or normals.
        :param kind: "heights" or "normals"; None for what the array is known to be, else heights.
        :param blend: How it joins what lies below it: "blend", "overlay", "multiply" or "add".
        :param opacity: Strength of that; 1 is whole.
        :param n_scale: Strength of its normals; None for what fits the relief.
        :param detail: 0 to 100.
        :param gaussian: Sigma of a blur, 0 to 1000 texels.
        :param depth: -100 to 100.
        :param convex: Strength of convex edges.
        :param concave: Strength of concave edges.
        :raises ArgumentError: A number is out of its range.
        :raises PictureError: The lowest layer is normals.
        """
        if kind is None:
            own = array.kind if isinstance(array, (Picture, Texels)) else None
            kind = "normals" if own in ("normals", "bent") else "heights"
        layer = Layer(
            one_of("kind", kind, _KINDS),
            one_of("blend", blend, _BLENDS),
            100.0 * number("opacity", opacity),
            math.nan if n_scale is None else number("n_scale", n_scale),
            number("detail", detail),
            number("gaussian", gaussian),
            number("depth", depth),
            number("convex", convex),
            number("concave", concave),
        )
        with Taken(array, "array", kind=None if isinstance(array, (Picture, Texels)) else kind) as taken:
            call(library.umbrix_stack_add, self._handle, taken.handle, ctypes.byref(layer))
            if not self._count:
                self._size = taken.size
            self._count += 1
        return self

    def normals(
        self, *, out: Optional[Floats] = None, progress: Optional[Progress] = None, **settings: SettingValue
    ) -> Texels:
        """The blended normals: float32 (rows, cols, 3)."""
        return self._one("normals", 0, 3, out, progress, settings)

    def heights(
        self, *, out: Optional[Floats] = None, progress: Optional[Progress] = None, **settings: SettingValue
    ) -> Texels:
        """The blended heights, stretched to 0 to 1: float32 (rows, cols)."""
        return self._one("heights", 1, None, out, progress, settings)

    def map(
        self, *, out: Optional[Floats] = None, progress: Optional[Progress] = None, **settings: SettingValue
    ) -> Texels:
        """The Umbrix map, with the blended heights in its alpha: float32 (rows, cols, 4)."""
        return self._one("map", 2, 4, out, progress, settings)

    def make(self, *, progress: Optional[Progress] = None, **settings: SettingValue) -> Stacked:
        """All three at once, in less time than one after the other."""
        self._check()
        values = settings_of("make", settings)
        with Made(self._size, 3, "normals") as vectors, Made(self._size, None, "heights") as high:
            with Made(self._size, 4, "map") as lit:
                self._run(values.handle, [vectors.handle, high.handle, lit.handle], progress)
                return Stacked(vectors.texels(), high.texels(), lit.texels())

    def _one(
        self, kind: str, place: int, channels: Optional[int], out: Optional[Floats], progress: Any, given: Any
    ) -> Texels:
        self._check()
        values = settings_of(kind, given)
        with Made(self._size, channels, kind, out) as made:
            results: list[Any] = [None, None, None]
            results[place] = made.handle
            self._run(values.handle, results, progress)
            texels: Texels = made.texels()
            return texels

    def _check(self) -> None:
        if not self._count:
            raise ArgumentError("stack: it has no layers")

    def _run(self, values: Optional[int], results: list[Any], progress: Optional[Progress]) -> None:
        small = self._size[0] * self._size[1] <= SMALL
        call(library.umbrix_stack_make, self._handle, values, *results, progress=progress, small=small)
