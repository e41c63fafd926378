# SPDX-License-Identifier: MIT
"""Results know what they are as long as that is true."""

import copy
import pickle

import numpy as np
import pytest

import umbrix


@pytest.fixture
def made(heights):
    return umbrix.map(heights, rays=8)


def test_results_know_what_they_are(heights, made):
    assert made.dtype == np.float32 and made.shape == (40, 56, 3) and made.flags.c_contiguous
    assert made.kind == "map" and made.attributes["mode"] == "projection"
    vectors = umbrix.normals(heights)
    assert vectors.kind == "normals" and vectors.attributes
    assert np.allclose(np.linalg.norm(vectors, axis=2), 1, atol=1e-5)
    assert umbrix.light(heights, rays=8).kind == "light"
    assert umbrix.occlusion(heights, rays=8).kind == "occlusion"
    back = umbrix.heights(vectors)
    assert back.kind == "heights" and back.shape == (40, 56)
    bent, occlusion = umbrix.bent(heights)
    assert bent.kind == "bent" and bent.shape == (40, 56, 3)
    assert occlusion.kind == "occlusion" and occlusion.shape == (40, 56)


def test_copies_know_the_same(made):
    for twin in (made.copy(), copy.copy(made), copy.deepcopy(made), pickle.loads(pickle.dumps(made))):
        assert isinstance(twin, umbrix.Texels) and np.array_equal(twin, made)
        assert twin.kind == "map" and twin.attributes == made.attributes


def test_slices_of_rows_and_columns_keep_the_kind_alone(made):
    for piece in (made[:20], made[3:9, 4:8], made[::2, ::2], made[:]):
        assert piece.kind == "map" and piece.attributes == {}
    for other in (made[0], made[:, 0], made[..., 0], made[:, :, :2], made[None], made[made > 0.5], made[[0, 1]]):
        assert other.kind is None and other.attributes == {}


def test_arithmetic_and_other_shapes_know_nothing(made):
    for other in (made * 2, made + made, np.sqrt(abs(made)), -made, made > 0.5):
        assert type(other) is np.ndarray
    for other in (made.reshape(-1), made.T, made.astype(np.float64), np.concatenate([made, made]), made.clip(0, 1)):
        assert getattr(other, "kind", None) is None and not getattr(other, "attributes", None)
    assert isinstance(made.mean(), np.floating) or isinstance(made.mean(), float)


@pytest.mark.parametrize(
    "change",
    [
        lambda array: array.__setitem__((0, 0), 0.5),
        lambda array: array.__setitem__(..., array[::-1].copy()),
        lambda array: array.__imul__(0.5),
        lambda array: np.multiply(array, 0.5, out=array),
        lambda array: np.add.at(array, (0, 0), 0.5),
        lambda array: array.fill(0.25),
        lambda array: array.sort(axis=0),
        lambda array: array.partition(3, axis=0),
        lambda array: array.put([0], [0.5]),
        lambda array: np.copyto(array, 0.5),
        lambda array: np.put(array, [0], [0.5]),
        lambda array: np.place(array, array > 0.2, [0.5]),
        lambda array: np.putmask(array, array > 0.2, [0.5]),
    ],
)
def test_what_is_changed_in_place_is_no_result_any_more(made, change):
    change(made)
    assert made.kind == "map" and made.attributes == {}


def test_in_place_arithmetic_keeps_the_array(made):
    same = made
    made *= 0.5
    assert made is same and isinstance(made, umbrix.Texels)


def test_a_result_as_out_is_told_what_it_holds(heights):
    memory = umbrix.normals(heights)
    umbrix.map(heights, rays=8, out=memory)
    assert memory.kind == "map" and memory.attributes["mode"] == "projection"


def test_attributes_cannot_be_changed_by_accident(made):
    made.attributes["mode"] = "squared"
    assert made.attributes["mode"] == "projection"
