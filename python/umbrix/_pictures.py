# SPDX-License-Identifier: MIT
"""Pictures: those of files, and arrays as the library sees them."""

from __future__ import annotations

import ctypes
import os
from types import TracebackType
from typing import Any, Optional, Tuple, Type, Union

import numpy as np
import numpy.typing as npt

from ._arrays import (
    DTYPES,
    KINDS,
    Texels,
    address_of,
    check_out,
    fits,
    kind_number,
    layout_of,
    result_array,
    taken,
)
from ._calls import SMALL, Progress, call
from ._interface import Layout, Saving, library
from ._settings import SettingValue, Values, settings_of

Source = Union["Picture", npt.ArrayLike]
"""What functions take: a picture of a file, an array, or what NumPy makes an array of."""

PathLike = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class Picture:
    """A picture that :func:`read` read. Functions take it as it is, with what its name and format tell of it.

    It never changes, so threads may share it. Its arrays are made when they are first asked for, kept, and read-only;
    ``picture.samples.copy()`` is one to write to.
    """

    def __init__(self, handle: ctypes.c_void_p) -> None:
        self._handle = handle
        self._layout = Layout()
        library.umbrix_picture_layout(handle, ctypes.byref(self._layout))
        self._samples: Optional[npt.NDArray[Any]] = None
        self._taken: dict[Tuple[str, Values], Texels] = {}

    def __del__(self) -> None:
        library.umbrix_picture_free(self._handle)

    def __reduce__(self) -> Any:
        raise TypeError("a Picture cannot be pickled or copied; its arrays can")

    def __repr__(self) -> str:
        return f"<umbrix.Picture {self.name!r}: {self.format}, {self.shape}, {self.dtype}>"

    @property
    def shape(self) -> Tuple[int, ...]:
        """(rows, cols), or (rows, cols, channels) with 2 to 4 channels."""
        size = (self._layout.height, self._layout.width)
        return size if self._layout.channels == 1 else (*size, self._layout.channels)

    @property
    def dtype(self) -> np.dtype[Any]:
        """Type of its samples: uint8, uint16, float16 or float32."""
        return DTYPES[self._layout.samples]

    @property
    def name(self) -> str:
        """Its file."""
        return os.fsdecode(library.umbrix_picture_name(self._handle))

    @property
    def format(self) -> str:
        """Format of its file: "PNG"."""
        return os.fsdecode(library.umbrix_picture_format(self._handle))

    @property
    def kind(self) -> Optional[str]:
        """"heights", "normals", "map" or "light" if the file tells it, else None."""
        told = self.attributes.get("kind")
        return told if told in KINDS else None

    @property
    def attributes(self) -> dict[str, str]:
        """What the file tells of how it was made: {"mode": "projection"}."""
        told = library.umbrix_picture_attributes(self._handle).decode(errors="replace")
        return dict(line.split(": ", 1) for line in told.splitlines() if ": " in line)

    @property
    def samples(self) -> npt.NDArray[Any]:
        """The samples as the file has them: (rows, cols) or (rows, cols, channels), the top row first."""
        if self._samples is None:
            samples = np.empty(self.shape, self.dtype)
            layout = layout_of(samples, 0)
            call(library.umbrix_picture_copy, self._handle, address_of(samples), ctypes.byref(layout))
            samples.flags.writeable = False
            self._samples = samples
        return self._samples

    @property
    def heights(self) -> Texels:
        """The picture as heights, 0 to 1: float32 (rows, cols). The settings in force say how they are read."""
        return self.as_heights()

    @property
    def normals(self) -> Texels:
        """The picture as normals, vectors with green up, -1 to 1: float32 (rows, cols, 3)."""
        return self.as_normals()

    def as_heights(self, **settings: SettingValue) -> Texels:
        """The same as :attr:`heights` with other settings: ``height_range``, ``invert``, ``height_from``...

        :raises PictureError: It has NaN, or heights outside 0 to 1 and nothing says what they stand for.
        """
        return self._as("as_heights", library.umbrix_read_heights, None, "heights", settings)

    def as_normals(self, **settings: SettingValue) -> Texels:
        """The same as :attr:`normals` with other settings: ``normal_y`` for one whose green points down."""
        return self._as("as_normals", library.umbrix_read_normals, 3, "normals", settings)

    def _as(self, caller: str, function: Any, channels: Optional[int], kind: str, given: Any) -> Texels:
        values = settings_of(caller, given)
        found = self._taken.get((kind, values))
        if found is None:
            with Taken(self, "picture") as source, Made(source.size, channels, kind) as made:
                call(function, source.handle, values.handle, made.handle)
                found = made.texels()
            found.flags.writeable = False
            self._taken[(kind, values)] = found
        return found

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> npt.NDArray[Any]:
        return np.array(self.samples, dtype) if copy else np.asarray(self.samples, dtype)


class _Handle:
    """A picture of the library's that lives as long as a block."""

    __slots__ = ("handle", "_owned")

    def __init__(self) -> None:
        self.handle: Any = ctypes.c_void_p()
        self._owned = True

    def __exit__(
        self,
        _type: Optional[Type[BaseException]],
        _value: Optional[BaseException],
        _traceback: Optional[TracebackType],
    ) -> None:
        if self._owned:
            library.umbrix_picture_free(self.handle)


class Taken(_Handle):
    """What a function is given, as the library sees it. :attr:`array` is None for a picture of a file."""

    __slots__ = ("array", "size", "channels")

    def __init__(
        self, given: Source, what: str, *, kind: Optional[str] = None, beside: Tuple[object, ...] = ()
    ) -> None:
        """:param beside: Memory of results, which must not lie over that of the source."""
        super().__init__()
        self.array: Optional[npt.NDArray[Any]] = None
        if isinstance(given, Picture):
            self._owned = False
            self.handle = given._handle
            layout = given._layout
        else:
            if kind is None and isinstance(given, Texels):
                kind = given.kind
            self.array = taken(given, what)
            if any(isinstance(one, np.ndarray) and np.may_share_memory(self.array, one) for one in beside):
                self.array = self.array.copy()
            layout = layout_of(self.array, kind_number(kind))
        self.size: Tuple[int, int] = (layout.height, layout.width)
        self.channels: int = layout.channels
        if self.array is not None:
            call(
                library.umbrix_picture_wrap,
                address_of(self.array),
                ctypes.byref(layout),
                ctypes.byref(self.handle),
                small=True,
            )
            if isinstance(given, Texels) and given._told:
                call(library.umbrix_picture_set_attributes, self.handle, given._told, small=True)

    @property
    def small(self) -> bool:
        rows, columns = self.size
        return rows * columns <= SMALL

    def __enter__(self) -> Taken:
        return self


class Made(_Handle):
    """Where a function puts its result: a new array, or the caller's ``out``."""

    __slots__ = ("_array", "_out", "_kind")

    def __init__(self, size: Tuple[int, int], channels: Optional[int], kind: str, out: Optional[Any] = None) -> None:
        """:param channels: None for an array of two dimensions."""
        super().__init__()
        shape = size if channels is None else (*size, channels)
        self._kind = kind
        self._out = out
        if out is not None:
            check_out(out, shape)
        self._array: npt.NDArray[Any] = out if out is not None and fits(out) else result_array(shape)
        layout = layout_of(self._array, kind_number(kind))
        call(
            library.umbrix_picture_wrap_result,
            address_of(self._array),
            ctypes.byref(layout),
            ctypes.byref(self.handle),
            small=True,
        )

    def __enter__(self) -> Made:
        return self

    def texels(self) -> Any:
        """The array that holds the result, with what it tells of itself if it is of the kind that can."""
        array = self._array
        if self._out is not None and array is not self._out:
            np.copyto(self._out, array)
            array = self._out
        if isinstance(array, Texels):
            array._kind = self._kind
            array._told = library.umbrix_picture_attributes(self.handle)
        return array


def _file_name(path: PathLike) -> bytes:
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("the name of a file has no zero in it")
    return name


def read(path: PathLike, *, max_texels: Optional[float] = None, progress: Optional[Progress] = None) -> Picture:
    """Reads a picture: PNG, TIFF, OpenEXR, JPEG, WebP, TGA, PSD, DDS, HDR, PFM, BMP and more.

    Its decoder runs in this process; the command line gives it one without rights instead.

    :param max_texels: A larger picture is refused; None for 268,435,456 (16384 x 16384).
    :param progress: Called with (share, stage) at least every 50 ms, on this thread; only False stops.
    :raises NoFileError: There is no such file, or it may not be read.
    :raises ReadError: It holds no picture that can be taken.
    """
    if max_texels is None:
        most = 0.0
    else:
        most = float(max_texels)
        if not most >= 1:
            raise ValueError(f"max_texels is 1 or more, not {max_texels!r}")
    handle = ctypes.c_void_p()
    call(library.umbrix_picture_read, _file_name(path), most, ctypes.byref(handle), progress=progress)
    return Picture(handle)


_DEPTHS = {None: 0, 8: 1, 16: 2, "half": 3, "float": 4}
_ROUNDINGS = {"truncate": 0, "nearest": 1, "dither": 2}
_COMPRESSIONS = {"default": 0, "fast": 1, "small": 2}


def one_of(what: str, value: Any, known: Any) -> int:
    """The number of a choice; TypeError or ValueError tells the others."""
    try:
        if value in known and type(value) in {type(one) for one in known}:
            number: int = known[value]
            return number
    except TypeError:  # no hash
        pass
    choices = " or ".join(repr(one) for one in known)
    error = ValueError if type(value) in {type(one) for one in known} else TypeError
    raise error(f"{what} is {choices}, not {value!r}")


def flag(what: str, value: Any) -> int:
    if not isinstance(value, (bool, np.bool_)):
        raise TypeError(f"{what} is True or False, not {value!r}")
    return int(value)


def write(
    path: PathLike,
    array: Source,
    *,
    depth: Union[int, str, None] = None,
    kind: Optional[str] = None,
    rounding: str = "truncate",
    compression: str = "default",
    overwrite: bool = False,
    progress: Optional[Progress] = None,
) -> None:
    """Writes an array as a picture, which is the command line's byte for byte if it was made in the same way.

    :param path: Its extension names the format: .png, .tif, .exr, .tga, .jpg and more.
    :param array: (rows, cols) or (rows, cols, channels), the top row first. Floats are 0 to 1, or -1 to 1 in normals.
    :param depth: 8, 16, "half" or "float"; None for what the format holds as a rule.
    :param kind: What it is, "heights", "normals" or "map"; results of this package know it themselves.
    :param rounding: "truncate" as the command line does, "nearest", or "dither" for noise that hides the steps.
    :param compression: "default", "fast" or "small".
    :param overwrite: Replace a file of that name. It takes its name in one step, when it has been read back: until
        then, and after an error, the former one stays.
    :param progress: Called with (share, stage) at least every 50 ms, on this thread; only False stops.
    :raises ExistsError: There is a file of that name, and no `overwrite`.
    :raises WriteError: It could not be written, or the format does not hold such a picture.
    :raises ValueError: Samples are negative and nothing tells whether they are normals: give `kind`.
    """
    saving = Saving(
        one_of("depth", depth, _DEPTHS),
        one_of("rounding", rounding, _ROUNDINGS),
        one_of("compression", compression, _COMPRESSIONS),
        flag("overwrite", overwrite),
    )
    if isinstance(array, Picture) and kind is not None:
        raise TypeError("kind is for arrays; a Picture tells its own")
    with Taken(array, "array", kind=kind) as source:
        samples = source.array
        unknown = kind is None and getattr(array, "kind", None) is None
        if samples is not None and unknown and samples.dtype.kind == "f" and np.less(samples, 0).any():
            raise ValueError('array has negative samples: kind tells what they are, "normals" or "heights"')
        call(
            library.umbrix_picture_write,
            source.handle,
            _file_name(path),
            ctypes.byref(saving),
            progress=progress,
        )
