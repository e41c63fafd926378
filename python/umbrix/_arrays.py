# SPDX-License-Identifier: MIT
"""Arrays of NumPy on their way into the library and out of it."""

from __future__ import annotations

import warnings
from typing import Any, Optional, Tuple, Union

import numpy as np
import numpy.typing as npt

from ._interface import Layout

Floats = npt.NDArray[np.float32]

# umbrix_kind by what an array is called.
KINDS = {
    None: 0,
    "heights": 1,
    "normals": 2,
    "bent": 2,
    "map": 3,
    "light": 3,
    "occlusion": 3,
    "relit": 3,
}
NAMES = {0: None, 1: "heights", 2: "normals", 3: "map"}

FLOAT = 3
DTYPES = (np.dtype(np.uint8), np.dtype(np.uint16), np.dtype(np.float16), np.dtype(np.float32))
_SAMPLES = {dtype: number for number, dtype in enumerate(DTYPES)}
_MOST = 65535


class Texels(np.ndarray[Any, np.dtype[np.float32]]):
    """What the functions return: a float32 array, (rows, cols) or (rows, cols, channels), the top row first.

    It is an array like any other, and knows two things besides. Arithmetic gives plain arrays, which know neither.
    """

    _kind: Optional[str] = None
    _told: bytes = b""

    @property
    def kind(self) -> Optional[str]:
        """"heights", "normals", "bent", "map", "light", "occlusion", "relit", or None. Slices of rows and columns
        keep it."""
        return self._kind

    @property
    def attributes(self) -> dict[str, str]:
        """What tells how it was made: {"mode": "projection"}. :func:`write` hands it on. The result itself and its
        copies have it; slices and what was changed have none."""
        lines = self._told.decode(errors="replace").splitlines()
        return dict(line.split(": ", 1) for line in lines if ": " in line)

    def _like(self, other: Texels) -> Texels:
        self._kind, self._told = other._kind, other._told
        return self

    def _forget(self) -> None:
        self._told = b""

    def copy(self, order: Any = "C") -> Texels:
        return super().copy(order)._like(self)

    def __copy__(self) -> Texels:
        return self.copy("K")

    def __deepcopy__(self, memo: Any) -> Texels:
        return self.copy("K")

    def __reduce__(self) -> Any:
        make, arguments, state = super().__reduce__()  # type: ignore[misc]
        return make, arguments, (state, self._kind, self._told)

    def __setstate__(self, state: Any) -> None:
        super().__setstate__(state[0])
        self._kind, self._told = state[1:]

    def __getitem__(self, key: Any) -> Any:
        found = super().__getitem__(key)
        keys = key if isinstance(key, tuple) else (key,)
        if isinstance(found, Texels) and len(keys) <= 2 and all(isinstance(one, slice) for one in keys):
            found._kind = self._kind
        return found

    # What changes an array in place leaves nothing behind that tells how it was made.

    def __setitem__(self, key: Any, value: Any) -> None:
        self._forget()
        super().__setitem__(key, value)  # type: ignore[no-untyped-call]

    def __array_ufunc__(self, ufunc: Any, method: str, *inputs: Any, **options: Any) -> Any:
        results = options.get("out")
        if results is not None:
            options["out"] = tuple(_plain(result) for result in results)
        answer = getattr(ufunc, method)(*(_plain(one) for one in inputs), **options)
        changed = [one for one in (results or inputs[:1] if method == "at" else results or ()) if isinstance(one, Texels)]
        for one in changed:
            one._forget()
        return changed[0] if results is not None and len(results) == 1 and changed else answer

    def __array_function__(self, function: Any, types: Any, arguments: Any, options: Any) -> Any:
        if function in (np.copyto, np.put, np.place, np.putmask, np.fill_diagonal, np.put_along_axis):
            for one in arguments[:1]:
                if isinstance(one, Texels):
                    one._forget()
        return super().__array_function__(function, types, arguments, options)

    def fill(self, value: Any) -> None:
        self._forget()
        super().fill(value)

    def put(self, *arguments: Any, **options: Any) -> None:
        self._forget()
        super().put(*arguments, **options)

    def sort(self, *arguments: Any, **options: Any) -> None:
        self._forget()
        super().sort(*arguments, **options)

    def partition(self, *arguments: Any, **options: Any) -> None:
        self._forget()
        super().partition(*arguments, **options)


def _plain(one: Any) -> Any:
    return one.view(np.ndarray) if isinstance(one, Texels) else one


def kind_number(kind: Optional[str]) -> int:
    if kind not in KINDS:
        known = ", ".join(f'"{name}"' for name in KINDS if name)
        error: Union[TypeError, ValueError] = ValueError(f"kind is one of {known}, not {kind!r}")
        raise error if isinstance(kind, str) else TypeError(str(error))
    return KINDS[kind]


def _converted(given: Any, what: str) -> npt.NDArray[Any]:
    """An array of a type that the library takes."""
    if isinstance(given, np.ma.MaskedArray):
        raise TypeError(f"{what}: a masked array has samples that are none; fill() gives it values for them")
    if not isinstance(given, np.ndarray):
        try:
            with warnings.catch_warnings():
                warnings.simplefilter("error")  # rows of unlike lengths
                given = np.asarray(given)
        except (ValueError, TypeError, Warning) as error:
            raise TypeError(f"{what}: {type(given).__name__} is no array of numbers: {error}") from error
    if given.dtype in _SAMPLES and given.dtype.isnative:
        return given  # type: ignore[no-any-return]
    if given.dtype.newbyteorder("=") in _SAMPLES:
        return given.astype(given.dtype.newbyteorder("="))  # type: ignore[no-any-return]
    if given.dtype.kind not in "fiub":
        raise TypeError(
            f"{what}: samples are uint8, uint16, float16, float32, or what float32 is made of, not {given.dtype}"
        )
    with np.errstate(over="ignore"):  # an infinite sample has a sentence of its own
        return given.astype(np.float32)  # type: ignore[no-any-return]


def check_shape(shape: Tuple[int, ...], what: str) -> None:
    if len(shape) not in (2, 3):
        raise ValueError(f"{what}: its shape is (rows, cols) or (rows, cols, channels), not {shape}")
    if len(shape) == 3 and not 1 <= shape[2] <= 4:
        raise ValueError(f"{what}: it has 1 to 4 channels, not {shape[2]}")
    if not (1 <= shape[0] <= _MOST and 1 <= shape[1] <= _MOST):
        raise ValueError(f"{what}: it has 1 to {_MOST} rows and columns, not {shape[0]} and {shape[1]}")


def fits(array: npt.NDArray[Any]) -> bool:
    """Whether a layout can say how it lies in memory. A step of 0 means something else there."""
    steps = [step for step, count in zip(array.strides, array.shape) if count > 1]
    return bool(array.flags.aligned) and 0 not in steps and all(step > 0 for step in array.strides[1:])


def layout_of(array: npt.NDArray[Any], kind: int) -> Layout:
    shape = array.shape
    channels = shape[2] if len(shape) == 3 else 1
    if array.flags.c_contiguous:
        return Layout(shape[1], shape[0], channels, _SAMPLES[array.dtype], kind, 0, 0, 0)
    steps = array.strides
    last = steps[2] if len(steps) == 3 and channels > 1 else 0
    return Layout(shape[1], shape[0], channels, _SAMPLES[array.dtype], kind, steps[0], steps[1], last)


def address_of(array: npt.NDArray[Any]) -> int:
    address: int = array.__array_interface__["data"][0]
    return address


def taken(given: Any, what: str) -> npt.NDArray[Any]:
    """The array itself wherever the library can take it as it lies, else one copy of it.

    TypeError for what are no numbers, ValueError for shapes that are no picture's.
    """
    array = _converted(given, what)
    check_shape(array.shape, what)
    return array if fits(array) else np.ascontiguousarray(array)


def result_array(shape: Tuple[int, ...]) -> Texels:
    return np.ndarray.__new__(Texels, shape, np.float32)


def check_out(out: Any, shape: Tuple[int, ...]) -> None:
    """Refuses memory that cannot take the result."""
    if not isinstance(out, np.ndarray):
        raise TypeError(f"out is an array of NumPy, not {type(out).__name__}")
    if out.dtype != np.float32 or not out.dtype.isnative:
        raise TypeError(f"out has the type float32, not {out.dtype}")
    if out.shape != shape:
        raise ValueError(f"out has the shape {shape}, not {out.shape}")
    if not out.flags.writeable:
        raise ValueError("out is read-only")
