# SPDX-License-Identifier: MIT
"""Python's signal handlers while C code works that calls back.

Python runs them where the main thread enters Python code. That is the first instruction of a function that C
calls, before any "try" of it: an exception of theirs, KeyboardInterrupt above all, would be lost there. So while C
works, signals are written down, and their handlers run where what they raise can be kept.
"""

from __future__ import annotations

import contextlib
import signal
from types import FrameType, TracebackType
from typing import Any, Callable, Iterator, Optional, Tuple, Type


class KeptSignals:
    """Keeps signals that have handlers in Python while a block runs. For the main thread alone."""

    def __init__(self) -> None:
        self._handlers: dict[int, Callable[[int, Optional[FrameType]], Any]] = {}
        self._kept: list[Tuple[int, Optional[FrameType]]] = []
        self._keeper = self._keep  # one object, to be told from handlers that others set

    def _keep(self, number: int, frame: Optional[FrameType]) -> None:
        self._kept.append((number, frame))

    def install(self) -> None:
        for number in signal.valid_signals():
            handler = signal.getsignal(number)
            if callable(handler) and handler is not self._keeper:
                self._handlers[number] = handler
                try:
                    signal.signal(number, self._keeper)
                except ValueError:  # in a subinterpreter, which gets no signals
                    return

    def restore(self) -> None:
        """Each handler stands again, whatever one raises that is back already."""
        raised: Optional[BaseException] = None
        for number, handler in self._handlers.items():
            while signal.getsignal(number) is self._keeper:
                try:
                    signal.signal(number, handler)
                except BaseException as error:
                    raised = error
        if raised is not None:
            raise raised

    def deliver(self) -> None:
        """Runs the handlers of the signals that came."""
        raised: Optional[BaseException] = None
        while self._kept:
            number, frame = self._kept.pop(0)
            try:
                self._handlers[number](number, frame)
            except BaseException as error:
                raised = raised or error
        if raised is not None:
            raise raised

    @contextlib.contextmanager
    def let_through(self) -> Iterator[None]:
        """Signals are handled as they come while the block runs."""
        self.restore()
        try:
            yield
        finally:
            self.install()

    def __enter__(self) -> None:
        try:
            self.install()
        except BaseException:
            self.restore()
            raise

    def __exit__(
        self,
        _type: Optional[Type[BaseException]],
        _value: Optional[BaseException],
        _traceback: Optional[TracebackType],
    ) -> None:
        self.restore()
        self.deliver()
