# SPDX-License-Identifier: MIT
"""The functions and records of umbrix.h, as ctypes calls them. ctypes.CDLL lets go of the GIL in each call."""

from __future__ import annotations

import ctypes
from ctypes import c_char_p, c_double, c_int, c_size_t, c_ssize_t, c_uint, c_void_p
from typing import Any

from ._errors import LibraryError
from ._finding import shared_object

INTERFACE = 1
"""UMBRIX_INTERFACE that this package was written for; libraries of a higher one do, too."""

PROGRESS = ctypes.CFUNCTYPE(c_int, c_void_p, c_char_p, c_double)
NOTE = ctypes.CFUNCTYPE(None, c_void_p, c_char_p, c_char_p)

STOPPED = 1


class Record(ctypes.Structure):
    """A record that tells its own size, as umbrix.h wants it."""

    def __init__(self, *values: Any) -> None:
        super().__init__(ctypes.sizeof(self), *values)


class ErrorRecord(Record):
    _fields_ = [("size", c_size_t), ("code", c_int), ("sentence", c_char_p), ("remedy", c_char_p)]


class SettingRecord(Record):
    _fields_ = [
        ("size", c_size_t),
        ("name", c_char_p),
        ("group", c_char_p),
        ("help", c_char_p),
        ("unit", c_char_p),
        ("initial", c_char_p),
        ("form", c_int),
        ("minimum", c_double),
        ("maximum", c_double),
        ("choices", ctypes.POINTER(c_char_p)),
        ("jobs", c_uint),
    ]


class Layout(Record):
    _fields_ = [
        ("size", c_size_t),
        ("width", c_int),
        ("height", c_int),
        ("channels", c_int),
        ("samples", c_int),
        ("kind", c_int),
        ("row_stride", c_ssize_t),
        ("texel_stride", c_ssize_t),
        ("channel_stride", c_ssize_t),
    ]


class Saving(Record):
    _fields_ = [
        ("size", c_size_t),
        ("depth", c_int),
        ("rounding", c_int),
        ("compression", c_int),
        ("overwrite", c_int),
    ]


class Light(Record):
    _fields_ = [
        ("size", c_size_t),
        ("azimuth", c_double),
        ("elevation", c_double),
        ("exposure", c_double),
        ("ambient", c_double),
        ("weights", c_int),
        ("force", c_int),
    ]


class FitRecord(Record):
    _fields_ = [
        ("size", c_size_t),
        ("relief", c_double),
        ("n_scale", c_double),
        ("gaussian", c_double),
        ("inverted", c_int),
        ("green_down", c_int),
        ("angle", c_double),
        ("flat_angle", c_double),
        ("beats_flat", c_int),
    ]


class FindingRecord(Record):
    _fields_ = [
        ("size", c_size_t),
        ("name", c_char_p),
        ("text", c_char_p),
        ("fix", c_char_p),
        ("texels", c_double),
        ("strength", c_double),
        ("x", c_int),
        ("y", c_int),
    ]


class Layer(Record):
    _fields_ = [
        ("size", c_size_t),
        ("normals", c_int),
        ("blend", c_int),
        ("opacity", c_double),
        ("n_scale", c_double),
        ("detail", c_double),
        ("gaussian", c_double),
        ("depth", c_double),
        ("convex", c_double),
        ("concave", c_double),
    ]


# Objects are void pointers, records and what is filled in are given by reference.
_FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "umbrix_interface": (c_int, []),
    "umbrix_version": (c_char_p, []),
    "umbrix_context_new": (c_void_p, []),
    "umbrix_context_free": (None, [c_void_p]),
    "umbrix_last_error": (None, [c_void_p, c_void_p]),
    "umbrix_on_progress": (None, [c_void_p, PROGRESS, c_void_p]),
    "umbrix_on_note": (None, [c_void_p, NOTE, c_void_p]),
    "umbrix_setting_count": (c_size_t, []),
    "umbrix_setting_at": (c_int, [c_size_t, c_void_p]),
    "umbrix_settings_new": (c_void_p, []),
    "umbrix_settings_copy": (c_void_p, [c_void_p]),
    "umbrix_settings_free": (None, [c_void_p]),
    "umbrix_settings_set": (c_int, [c_void_p, c_void_p, c_char_p, c_char_p]),
    "umbrix_settings_get": (c_int, [c_void_p, c_void_p, c_char_p, c_void_p]),
    "umbrix_settings_preset": (c_int, [c_void_p, c_void_p, c_char_p]),
    "umbrix_preset_at": (c_char_p, [c_size_t]),
    "umbrix_picture_new": (c_int, [c_void_p, c_void_p]),
    "umbrix_picture_wrap": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_picture_wrap_result": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_picture_read": (c_int, [c_void_p, c_char_p, c_double, c_void_p]),
    "umbrix_picture_free": (None, [c_void_p]),
    "umbrix_picture_layout": (c_int, [c_void_p, c_void_p]),
    "umbrix_picture_copy": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_picture_name": (c_char_p, [c_void_p]),
    "umbrix_picture_format": (c_char_p, [c_void_p]),
    "umbrix_picture_attributes": (c_char_p, [c_void_p]),
    "umbrix_picture_set_attributes": (c_int, [c_void_p, c_void_p, c_char_p]),
    "umbrix_picture_write": (c_int, [c_void_p, c_void_p, c_char_p, c_void_p]),
    "umbrix_is_picture_name": (c_int, [c_char_p]),
    "umbrix_kind_of_name": (c_int, [c_char_p]),
    "umbrix_result_name": (c_int, [c_void_p, c_char_p, c_char_p, c_char_p, c_void_p]),
    "umbrix_read_heights": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_read_normals": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_make_normals": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_make_map": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_make_light": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_make_occlusion": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_make_heights": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_make_bent": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_relight": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_find_relief": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p, c_int, c_void_p]),
    "umbrix_check": (c_int, [c_void_p, c_void_p, c_void_p, c_int, c_void_p, c_void_p]),
    "umbrix_findings_kind": (c_int, [c_void_p]),
    "umbrix_findings_count": (c_size_t, [c_void_p]),
    "umbrix_findings_at": (c_int, [c_void_p, c_size_t, c_void_p]),
    "umbrix_findings_free": (None, [c_void_p]),
    "umbrix_layer_default": (None, [c_void_p]),
    "umbrix_stack_new": (c_int, [c_void_p, c_void_p]),
    "umbrix_stack_free": (None, [c_void_p]),
    "umbrix_stack_add": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p]),
    "umbrix_stack_set_normal_scale": (c_int, [c_void_p, c_void_p, c_double]),
    "umbrix_stack_make": (c_int, [c_void_p, c_void_p, c_void_p, c_void_p, c_void_p, c_void_p]),
}


def _loaded() -> ctypes.CDLL:
    path = shared_object()
    try:
        loaded = ctypes.CDLL(str(path))
        for name, (result, arguments) in _FUNCTIONS.items():
            function = getattr(loaded, name)
            function.restype = result
            function.argtypes = arguments
    except (OSError, AttributeError) as error:
        raise LibraryError(f"umbrix: {path} cannot be used: {error}") from error
    if loaded.umbrix_interface() < INTERFACE:
        raise LibraryError(f"umbrix: {path} is older than this package; build both of one state")
    return loaded


library: Any = _loaded()
