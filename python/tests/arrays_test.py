# SPDX-License-Identifier: MIT
"""Arrays go in and out as they lie in memory; those that cannot are converted once, or refused with the reason."""

import numpy as np
import pytest

import umbrix
from conftest import hills
from umbrix import _interface


class Recorder:
    """Stands for a function of the library, and keeps what it was called with."""

    def __init__(self, function):
        self.function = function
        self.calls = []

    def __call__(self, *arguments):
        self.calls.append(arguments)
        return self.function(*arguments)


@pytest.fixture
def wrapped(monkeypatch):
    recorder = Recorder(_interface.library.umbrix_picture_wrap)
    monkeypatch.setattr(_interface.library, "umbrix_picture_wrap", recorder)
    return recorder


@pytest.fixture
def wrapped_results(monkeypatch):
    recorder = Recorder(_interface.library.umbrix_picture_wrap_result)
    monkeypatch.setattr(_interface.library, "umbrix_picture_wrap_result", recorder)
    return recorder


def address(array):
    return array.__array_interface__["data"][0]


def test_contiguous_floats_are_handed_over_as_they_lie(heights, wrapped, wrapped_results):
    made = umbrix.normals(heights)
    assert wrapped.calls[0][1] == address(heights)
    assert wrapped_results.calls[0][1] == address(made)


def test_the_library_fills_the_memory_of_out(heights, wrapped_results):
    memory = np.full((*heights.shape, 3), 7, np.float32)
    assert umbrix.normals(heights, out=memory) is memory
    assert wrapped_results.calls[0][1] == address(memory)
    assert np.array_equal(memory, umbrix.normals(heights))


@pytest.mark.parametrize("dtype", [np.uint8, np.uint16, np.float16, np.float32])
def test_strided_arrays_are_handed_over_with_their_strides(dtype, wrapped):
    scale = np.iinfo(dtype).max if np.issubdtype(dtype, np.integer) else 1
    whole = (np.dstack([hills(41, 62, seed) for seed in range(3)]) * scale).astype(dtype)
    views = [
        whole[::2, ::3, 1],
        whole[::-1, :, 0],
        whole[:, :, 2],
        whole[3:20, 5:40, 0:1],
        np.asfortranarray(whole[:, :, 0]),
        np.moveaxis(np.ascontiguousarray(np.moveaxis(whole, 2, 0)), 0, 2)[:, :, 1],
    ]
    for view in views:
        wrapped.calls.clear()
        made = umbrix.normals(view)
        assert wrapped.calls[0][1] == address(view)
        assert np.array_equal(made, umbrix.normals(np.ascontiguousarray(view)))


def test_arrays_that_no_layout_describes_are_copied(heights):
    column = np.broadcast_to(heights[:, :1], heights.shape)
    assert np.array_equal(umbrix.normals(column), umbrix.normals(column.copy()))
    row = np.broadcast_to(heights[:1], heights.shape)
    assert np.array_equal(umbrix.normals(row), umbrix.normals(row.copy()))
    mirrored = heights[:, ::-1]
    assert np.array_equal(umbrix.normals(mirrored), umbrix.normals(mirrored.copy()))
    unaligned = np.frombuffer(b"\0" + heights.tobytes(), np.uint8)[1:].view(np.float32).reshape(heights.shape)
    assert np.array_equal(umbrix.normals(unaligned), umbrix.normals(heights))


def test_other_numbers_are_converted_once(heights, wrapped):
    expected = umbrix.normals(heights)
    for given in (heights.astype(np.float64), heights.astype(">f4"), heights.tolist(), heights.astype(np.longdouble)):
        assert np.array_equal(umbrix.normals(given), expected)
    flags = heights > 0.5
    expected = umbrix.normals(flags.astype(np.float32))
    for given in (flags, flags.astype(np.int64), flags.astype(int).tolist()):
        assert np.array_equal(umbrix.normals(given), expected)


def test_samples_of_all_types_stand_for_the_same_heights():
    levels = np.arange(256, dtype=np.uint8).reshape(16, 16)
    expected = umbrix.normals(levels.astype(np.float32) / np.float32(255))
    assert np.allclose(umbrix.normals(levels), expected, atol=1e-6)
    assert np.allclose(umbrix.normals(levels.astype(np.uint16) * 257), expected, atol=1e-6)


def test_read_only_arrays_are_taken_and_stay_as_they_are(heights):
    before = heights.copy()
    heights.flags.writeable = False
    umbrix.map(heights, rays=4)
    assert np.array_equal(heights, before)


def test_results_over_their_source_are_right(heights):
    memory = np.zeros((*heights.shape, 3), np.float32)
    memory[..., 1] = heights
    umbrix.normals(memory[..., 1], out=memory)
    assert np.array_equal(memory, umbrix.normals(heights))


def test_out_may_lie_in_memory_as_it_likes(heights):
    expected = umbrix.normals(heights)
    rows, columns = heights.shape
    for out in (
        np.zeros((2 * rows, columns, 4), np.float32)[::2, :, 1:],
        np.zeros((rows, columns, 3), np.float32)[::-1],
        np.zeros((rows, columns, 3), np.float32)[:, ::-1],
        np.zeros((3, rows, columns), np.float32).transpose(1, 2, 0),
    ):
        assert umbrix.normals(heights, out=out) is out
        assert np.array_equal(out, expected)


def test_out_has_the_shape_and_type_of_the_result(heights):
    rows, columns = heights.shape
    read_only = np.zeros((rows, columns, 3), np.float32)
    read_only.flags.writeable = False
    with pytest.raises(ValueError, match="read-only"):
        umbrix.normals(heights, out=read_only)
    with pytest.raises(ValueError, match=r"\(40, 56, 3\)"):
        umbrix.normals(heights, out=np.zeros((rows, columns), np.float32))
    with pytest.raises(TypeError, match="float32"):
        umbrix.normals(heights, out=np.zeros((rows, columns, 3)))
    with pytest.raises(TypeError, match="float32"):
        umbrix.normals(heights, out=np.zeros((rows, columns, 3), ">f4"))
    with pytest.raises(TypeError, match="list"):
        umbrix.normals(heights, out=[])


@pytest.mark.parametrize("shape", [(0, 0), (0, 5), (5, 0), (9,), (), (3, 3, 5), (3, 3, 0), (2, 2, 2, 2), (65536, 1)])
def test_shapes_that_are_no_picture_are_refused(shape):
    with pytest.raises(ValueError, match="source"):
        umbrix.normals(np.zeros(shape, np.float32))


@pytest.mark.parametrize(
    "given",
    [
        None,
        "rock.png",
        b"rock.png",
        object(),
        {1: 2},
        [[1, 2], [3]],
        [["a"]],
        np.zeros((3, 3), complex),
        np.zeros((3, 3), object),
        np.zeros((3, 3), "datetime64[s]"),
        np.zeros((3, 3), [("h", "f4")]),
        np.ma.masked_less(np.zeros((3, 3)), 1),
    ],
    ids=lambda given: type(given).__name__,
)
def test_what_holds_no_numbers_is_refused_with_the_reason(given):
    with pytest.raises(TypeError, match="source: .+"):
        umbrix.normals(given)


def test_the_smallest_pictures_are_taken():
    for shape in ((1, 1), (1, 2), (2, 1), (2, 2), (1, 300), (300, 1)):
        assert umbrix.normals(np.full(shape, 0.5, np.float32)).shape == (*shape, 3)
        if min(shape) > 1:
            assert umbrix.map(np.full(shape, 0.5, np.float32), rays=4).shape == (*shape, 3)
    with pytest.raises(umbrix.PictureError, match="1 x 1"):
        umbrix.map(np.full((1, 1), 0.5, np.float32))
