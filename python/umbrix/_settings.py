# SPDX-License-Identifier: MIT
"""The table of settings, presets, and settings as keywords."""

from __future__ import annotations

import contextvars
import ctypes
import os
from dataclasses import dataclass
from types import TracebackType
from typing import Mapping, Optional, Tuple, Type, Union

import numpy as np

from ._calls import call
from ._errors import OutOfMemoryError
from ._interface import SettingRecord, library

SettingValue = Union[bool, int, float, str, Tuple[float, float], None]
"""A value of a setting. None is as good as not given."""

_FORMS = ("flag", "whole", "number", "auto", "choice", "text")
_JOBS = {
    1: "map",
    2: "normals",
    4: "relight",
    8: "fit",
    16: "reading heights",
    32: "heights",
    128: "check",
    256: "bent",
}


@dataclass(frozen=True)
class Setting:
    """What there is to know of a setting."""

    name: str
    """The keyword: "h_scale"."""
    group: str
    """Heading that it stands under."""
    help: str
    """One sentence without its full stop."""
    unit: str
    """" image widths", as it follows a range; may be empty."""
    default: SettingValue
    """Without a preset."""
    form: str
    """"flag" (bool), "whole" (int), "number" (float), "auto" (float or "auto"), "choice" (str), "text" (as
    `help` says: str, a number, or two of them)."""
    minimum: float
    """Of a number."""
    maximum: float
    """Of a number."""
    choices: Tuple[str, ...]
    """What a choice can be; else empty."""
    counts_in: Tuple[str, ...]
    """The functions that it changes the result of; empty for those that say how a picture is taken or saved."""


def _value(form: str, text: str) -> SettingValue:
    if form == "flag":
        return text == "true"
    if form == "whole":
        return int(text)
    if form == "number" or (form == "auto" and text != "auto"):
        return float(text)
    return text


def _read_table() -> dict[str, Setting]:
    table = {}
    for index in range(library.umbrix_setting_count()):
        record = SettingRecord()
        library.umbrix_setting_at(index, ctypes.byref(record))
        choices: list[str] = []
        while record.choices and record.choices[len(choices)]:
            choices.append(record.choices[len(choices)].decode())
        name, form = record.name.decode().replace("-", "_"), _FORMS[record.form]
        table[name] = Setting(
            name,
            record.group.decode(),
            record.help.decode(),
            record.unit.decode(),
            _value(form, record.initial.decode()),
            form,
            record.minimum,
            record.maximum,
            tuple(choices),
            tuple(job for bit, job in _JOBS.items() if record.jobs & bit),
        )
    return table


_table: dict[str, Setting] = {}


def settings() -> dict[str, Setting]:
    """The table of settings by the keywords that they are, in the order of the command line's help.

    >>> umbrix.settings()["relief"].maximum
    10.0
    """
    if not _table:
        _table.update(_read_table())
    return dict(_table)


def _refusal(setting: Setting, value: object) -> TypeError:
    wanted = {
        "flag": "True or False",
        "whole": "a whole number",
        "number": "a number",
        "auto": 'a number or "auto"',
        "choice": " or ".join(f'"{choice}"' for choice in setting.choices),
        "text": "a text, a number or two numbers",
    }[setting.form]
    return TypeError(f"{setting.name} is {wanted}, not {value!r}")


def _number_text(setting: Setting, value: object) -> str:
    if isinstance(value, (float, np.floating)):
        return repr(float(value))
    if isinstance(value, (int, np.integer)) and not isinstance(value, bool):
        return str(int(value))
    raise _refusal(setting, value)


def _text(setting: Setting, value: object) -> str:
    """A value as the library reads it; TypeError if it is none of the setting's form."""
    form = setting.form
    if form == "flag":
        if isinstance(value, (bool, np.bool_)):
            return "true" if value else "false"
    elif form == "whole":
        if isinstance(value, (int, np.integer)) and not isinstance(value, bool):
            return str(int(value))
    elif form == "choice":
        if isinstance(value, str):
            # What an array calls its own kind, too.
            return {"heights": "height", "normals": "normal"}.get(value, value) if setting.name == "kind" else value
    elif form == "auto" and value == "auto":
        return "auto"
    elif form == "text" and isinstance(value, str):
        return value
    elif form == "text" and isinstance(value, (tuple, list)) and len(value) == 2:
        return ",".join(_number_text(setting, one) for one in value)
    else:
        return _number_text(setting, value)
    raise _refusal(setting, value)


class Values:
    """Settings in the library's memory. They never change, so threads may share them."""

    def __init__(self, handle: Optional[int]) -> None:
        self.handle = handle
        self._read: dict[str, SettingValue] = {}
        if not handle:
            raise OutOfMemoryError("umbrix: there is no memory for settings")

    def __del__(self) -> None:
        library.umbrix_settings_free(self.handle)

    def with_texts(self, texts: Mapping[str, str]) -> Values:
        changed = Values(library.umbrix_settings_copy(self.handle))
        for name, text in texts.items():
            call(library.umbrix_settings_set, changed.handle, name.encode(), os.fsencode(text), small=True)
        return changed

    def __getitem__(self, name: str) -> SettingValue:
        if name not in self._read:
            text = ctypes.c_char_p()
            call(library.umbrix_settings_get, self.handle, name.encode(), ctypes.byref(text), small=True)
            self._read[name] = _value(settings()[name].form, os.fsdecode(text.value or b""))
        return self._read[name]


def _texts_of(caller: str, given: Mapping[str, object]) -> dict[str, str]:
    texts = {}
    for name, value in given.items():
        setting = _table.get(name) or settings().get(name)
        if setting is None:
            raise _unknown(caller, name)
        if value is not None:
            texts[name] = _text(setting, value)
    return texts


def _unknown(caller: str, name: str) -> TypeError:
    import difflib

    near = difflib.get_close_matches(name, settings(), 1)
    meant = f"; did you mean {near[0]!r}?" if near else ""
    return TypeError(f"{caller}() has no keyword {name!r}, and there is no setting of that name{meant}")


class Preset:
    """Settings under a name, for a block of code; see :func:`preset`."""

    def __init__(self, name: Optional[str], values: Values) -> None:
        self.name = name
        self._values = values
        self._changed: dict[Tuple[Tuple[str, str], ...], Values] = {}

    def __getitem__(self, name: str) -> SettingValue:
        """Value of the setting of that keyword. KeyError if there is none."""
        if name not in settings():
            raise KeyError(name)
        return self._values[name]

    def __repr__(self) -> str:
        return f"umbrix.preset({self.name!r})"

    def values(self, caller: str, given: Mapping[str, object]) -> Values:
        """With the keywords of a call, which are few and mostly those of the call before."""
        if not given:
            return self._values
        texts = _texts_of(caller, given)
        key = tuple(texts.items())
        found = self._changed.get(key)
        if found is None:
            found = self._values.with_texts(texts)
            if len(self._changed) >= 32:
                self._changed.clear()
            self._changed[key] = found
        return found

    def __enter__(self) -> Preset:
        _in_force.set((self, _in_force.get()))
        return self

    def __exit__(
        self,
        _type: Optional[Type[BaseException]],
        _value: Optional[BaseException],
        _traceback: Optional[TracebackType],
    ) -> None:
        current = _in_force.get()
        if current is not None:
            _in_force.set(current[1])


_Nested = Tuple[Preset, Optional["_Nested"]]
_in_force: contextvars.ContextVar[Optional[_Nested]] = contextvars.ContextVar("umbrix_preset", default=None)
_defaults = Preset(None, Values(library.umbrix_settings_new()))


def settings_of(caller: str, given: Mapping[str, object]) -> Values:
    """The settings of a call: its keywords over those in force."""
    current = _in_force.get()
    return (_defaults if current is None else current[0]).values(caller, given)


def preset(name: Union[str, os.PathLike[str]], **settings: SettingValue) -> Preset:
    """Settings under a name, which count in a ``with`` block for all that its context calls::

        with umbrix.preset("stone", rays=300):
            umbrix.map(heights)

    :param name: One of :func:`presets`, or a file: a name with '/' in it or with ".toml" at its end.
    :param settings: Go before those of the preset.

    A preset replaces one of a block around it. Threads and asyncio tasks have each their own.

    :raises SettingError: There is no such preset, or the file holds none.
    """
    text = os.fspath(name)
    if not isinstance(text, str):
        raise TypeError(f"the name of a preset is a str, not {type(text).__name__}")
    if isinstance(name, os.PathLike) and "/" not in text and not text.endswith(".toml"):
        text = f"./{text}"
    values = Values(library.umbrix_settings_new())
    call(library.umbrix_settings_preset, values.handle, os.fsencode(text), small=True)
    return Preset(text, values.with_texts(_texts_of("preset", settings)) if settings else values)


def presets() -> list[str]:
    """Names of the presets that come with the library."""
    names: list[str] = []
    while True:
        name: Optional[bytes] = library.umbrix_preset_at(len(names))
        if name is None:
            return names
        names.append(name.decode())
