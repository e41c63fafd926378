# SPDX-License-Identifier: MIT
"""What goes wrong, as exceptions: each says one sentence, and is one of Python's own kinds where there is one."""

from __future__ import annotations

from typing import Dict, Type


class Error(Exception):
    """Anything that the library refuses or fails at. The kinds below say what."""

    sentence: str = ""
    """What is wrong: "rock.png: it is damaged"."""

    remedy: str = ""
    """What helps: "give 0 to 10"; empty where that does not depend on data."""


class ArgumentError(Error, ValueError):
    """The call itself makes no sense, as sizes that do not fit each other."""


class SettingError(Error, ValueError):
    """There is no such preset, or a value is none for its setting."""


class PictureError(Error, ValueError):
    """Nothing can be made of the picture: NaN, heights outside 0 to 1, its size."""


class ReadError(Error, OSError):
    """The file holds no picture that can be taken."""


class NoFileError(ReadError, FileNotFoundError):
    """There is no such file, or it may not be read."""


class WriteError(Error, OSError):
    """The file could not be written. What was there is still there."""


class ExistsError(WriteError, FileExistsError):
    """The file exists, and is not to be replaced."""


class OutOfMemoryError(Error, MemoryError):
    """There is not enough memory."""


class Stopped(Error):
    """The progress function returned False."""


class LibraryError(Error, ImportError):
    """The shared object is missing, does not fit, or cannot be used in this process."""


class PictureWarning(UserWarning):
    """What the user ought to know about a picture that was taken nevertheless."""


# By umbrix_code; all others are Error itself.
_KINDS: Dict[int, Type[Error]] = {
    1: Stopped,
    2: ArgumentError,
    3: SettingError,
    4: NoFileError,
    5: ReadError,
    6: WriteError,
    7: ExistsError,
    8: PictureError,
    9: OutOfMemoryError,
}


def error_of(code: int, sentence: str, remedy: str) -> Error:
    """The exception for an outcome that is not UMBRIX_OK."""
    error = _KINDS.get(code, Error)(f"{sentence}; {remedy}" if remedy else sentence)
    error.sentence = sentence
    error.remedy = remedy
    return error


for _kind in (Error, *_KINDS.values(), LibraryError, PictureWarning):
    _kind.__module__ = "umbrix"
del _kind
