# SPDX-License-Identifier: MIT
"""Calls of the library: each thread has a context of its own, by which errors, notes and progress come back."""

from __future__ import annotations

import ctypes
import os
import sys
import threading
import warnings
from typing import Any, Callable, Optional, Tuple

import numpy as np

from ._errors import LibraryError, OutOfMemoryError, PictureWarning, error_of
from ._interface import NOTE, PROGRESS, STOPPED, ErrorRecord, library
from ._signals import KeptSignals

Progress = Callable[[float, str], object]
"""Called with the share done, 0 to 1, and the stage; only False stops the work."""

SMALL = 64 * 64
"""Texels of a picture that is done before anybody could want to stop it."""


class _Line:
    """What a thread calls the library through."""

    def __init__(self) -> None:
        self.context = library.umbrix_context_new()
        if not self.context:
            raise OutOfMemoryError("umbrix: there is no memory for a context")
        self.progress: Optional[Progress] = None
        self.signals: Optional[KeptSignals] = None
        self.raised: Optional[BaseException] = None
        self.notes: list[Tuple[str, str]] = []
        self.busy = False
        self._functions = (PROGRESS(self._on_progress), NOTE(self._on_note))
        library.umbrix_on_progress(self.context, self._functions[0], None)
        library.umbrix_on_note(self.context, self._functions[1], None)

    def __del__(self) -> None:
        library.umbrix_context_free(self.context)

    def _on_progress(self, _user: Any, stage: bytes, share: float) -> int:
        # No exception may leave a function that C calls: it would be printed, and the work would go on.
        try:
            if self.raised is not None:
                return 0
            if self.signals is not None:
                self.signals.deliver()
            if self.progress is None:
                return 1
            if self.signals is None:
                answer = self.progress(share, stage.decode())
            else:
                with self.signals.let_through():
                    answer = self.progress(share, stage.decode())
            return 0 if isinstance(answer, (bool, np.bool_)) and not answer else 1
        except BaseException as error:  # raised where the call was made
            self.raised = error
            return 0

    def _on_note(self, _user: Any, about: bytes, text: bytes) -> None:
        self.notes.append((os.fsdecode(about), os.fsdecode(text)))

    def call(self, function: Any, arguments: Tuple[Any, ...], progress: Optional[Progress], small: bool) -> int:
        self.progress = progress
        if small or threading.get_ident() != threading.main_thread().ident:
            return int(function(self.context, *arguments))
        self.signals = KeptSignals()
        try:
            with self.signals:
                return int(function(self.context, *arguments))
        finally:
            self.signals = None


_lines = threading.local()
_under_way: set[_Line] = set()
_forked_under_way = False


def _line() -> _Line:
    try:
        found: _Line = _lines.line
    except AttributeError:
        found = _lines.line = _Line()
    return found


def _after_fork() -> None:
    """In the child there is nobody to finish the calls that were under way, nor to leave what they had locked."""
    global _forked_under_way
    if _under_way:
        _forked_under_way = True
        for line in list(_under_way):
            if line.signals is not None:
                line.signals.restore()


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_after_fork)


def _warn(notes: list[Tuple[str, str]]) -> None:
    """Warns at the line outside of this package that made the call."""
    level, frame = 1, sys._getframe()
    package = __name__.partition(".")[0]
    while frame.f_back and str(frame.f_globals.get("__name__")).partition(".")[0] == package:
        level, frame = level + 1, frame.f_back
    for about, text in notes:
        warnings.warn(f"{about}: {text}", PictureWarning, stacklevel=level)


def call(function: Any, *arguments: Any, progress: Optional[Progress] = None, small: bool = False) -> None:
    """Calls a function that takes a context, and raises what it returns.

    Python's signal handlers get their turn every 50 ms, and what they raise, or the progress function, ends the
    call and arrives here.

    :param small: It ends so soon that nobody has to be asked.
    """
    if _forked_under_way:
        raise LibraryError(
            "umbrix: this process was forked while another thread was at work in the library; "
            'start processes by "spawn" or "forkserver", or fork before'
        )
    if progress is not None and not callable(progress):
        raise TypeError(f"progress is a function of (share, stage), not {type(progress).__name__}")
    line = _line()
    if line.busy:
        raise RuntimeError("a function that umbrix calls while it works cannot call umbrix itself")
    try:
        line.busy = True
        _under_way.add(line)
        line.raised = None
        code = line.call(function, arguments, progress, small)
        raised, notes = line.raised, line.notes
    finally:
        line.raised, line.progress, line.notes = None, None, []
        _under_way.discard(line)
        line.busy = False
    if raised is not None:
        try:
            raise raised
        finally:
            raised = None  # or the exception holds the frame that holds it
    if notes:
        _warn(notes)
    if code:
        raise _error(line, code)


def _error(line: _Line, code: int) -> Exception:
    record = ErrorRecord()
    library.umbrix_last_error(line.context, ctypes.byref(record))
    if code == STOPPED:
        return error_of(code, "stopped by the progress function", "")
    return error_of(code, os.fsdecode(record.sentence or b""), os.fsdecode(record.remedy or b""))
