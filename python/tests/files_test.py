# SPDX-License-Identifier: MIT
"""Pictures are read as their files have them, and written as the command line writes them."""

import copy
import os
import pickle
import subprocess

import numpy as np
import pytest

import umbrix
from conftest import hills


@pytest.mark.parametrize(
    ("name", "dtype"),
    [
        ("grey.png", np.uint8),
        ("grey16.png", np.uint16),
        ("grey.exr", np.float16),
        ("float.exr", np.float32),
        ("grey.tga", np.uint8),
        ("grey.tif", np.uint16),
    ],
)
def test_samples_are_those_of_the_file(tmp_path, name, dtype):
    scale = np.iinfo(dtype).max if np.issubdtype(dtype, np.integer) else 1
    for shape in ((5, 7), (5, 7, 3), (5, 7, 4)):
        array = (np.random.default_rng(3).random(shape) * scale).astype(dtype)
        depth = {"uint8": 8, "uint16": 16, "float16": "half", "float32": "float"}[np.dtype(dtype).name]
        umbrix.write(tmp_path / name, array, depth=depth, overwrite=True)
        picture = umbrix.read(tmp_path / name)
        assert picture.dtype == dtype and picture.name == str(tmp_path / name)
        samples = picture.samples
        if picture.shape != shape:  # some formats hold grey as colours
            samples = samples[..., 0]
        assert samples.dtype == dtype and np.array_equal(samples, array)
        assert picture.samples is picture.samples and not picture.samples.flags.writeable
        assert np.array_equal(np.asarray(picture), picture.samples)


def test_a_picture_tells_what_it_is(tmp_path, heights):
    file = tmp_path / "map.png"
    umbrix.write(file, umbrix.map(heights, rays=8, mode="squared"))
    picture = umbrix.read(file)
    assert picture.format == "PNG" and picture.kind == "map" and picture.attributes["mode"] == "squared"
    assert "map.png" in repr(picture)
    for twin in (copy.copy, pickle.dumps):
        with pytest.raises(TypeError):
            twin(picture)


def test_pictures_are_taken_as_heights_and_as_normals(tmp_path, heights):
    umbrix.write(tmp_path / "rock_height.png", heights, depth=16, kind="heights")
    picture = umbrix.read(tmp_path / "rock_height.png")
    taken = picture.heights
    assert taken.shape == heights.shape and taken.dtype == np.float32 and taken.kind == "heights"
    assert np.allclose(taken, heights, atol=2 / 65535) and picture.heights is taken
    assert np.allclose(picture.as_heights(invert=True), 1 - taken, atol=1e-6)
    vectors = umbrix.normals(picture)
    assert np.array_equal(vectors, umbrix.normals(picture.samples))
    umbrix.write(tmp_path / "rock_normal.exr", vectors, depth="float")
    again = umbrix.read(tmp_path / "rock_normal.exr").normals
    assert again.kind == "normals" and np.allclose(again, vectors, atol=1e-6)
    umbrix.write(tmp_path / "rock_normal.png", umbrix.normals(picture, y="down"), depth=16)
    down = umbrix.read(tmp_path / "rock_normal.png")
    assert np.allclose(down.as_normals(normal_y="down"), vectors, atol=1e-4)


def test_results_keep_their_attributes_in_files(tmp_path, heights):
    made = umbrix.map(heights, rays=8)
    umbrix.write(tmp_path / "map.png", made)
    umbrix.write(tmp_path / "twin.png", made.copy())
    umbrix.write(tmp_path / "piece.png", made[:20])
    assert umbrix.read(tmp_path / "map.png").attributes == umbrix.read(tmp_path / "twin.png").attributes
    assert umbrix.read(tmp_path / "map.png").attributes["mode"] == "projection"
    assert "mode" not in umbrix.read(tmp_path / "piece.png").attributes


def test_writing_what_was_read_keeps_it(tmp_path, heights):
    umbrix.write(tmp_path / "a.png", umbrix.normals(heights), depth=16)
    umbrix.write(tmp_path / "b.png", umbrix.read(tmp_path / "a.png"), depth=16)
    assert np.array_equal(umbrix.read(tmp_path / "a.png").samples, umbrix.read(tmp_path / "b.png").samples)


def test_negative_samples_want_a_kind(tmp_path, heights):
    vectors = np.asarray(umbrix.normals(heights)).view(np.ndarray)
    with pytest.raises(ValueError, match="kind"):
        umbrix.write(tmp_path / "a.png", vectors)
    assert not os.listdir(tmp_path)
    umbrix.write(tmp_path / "a.png", vectors, kind="normals")
    umbrix.write(tmp_path / "b.png", umbrix.normals(heights))
    umbrix.write(tmp_path / "c.png", umbrix.normals(heights)[:])
    samples = [umbrix.read(tmp_path / name).samples for name in ("a.png", "b.png", "c.png")]
    assert np.array_equal(samples[0], samples[1]) and np.array_equal(samples[0], samples[2])


def test_files_are_replaced_on_demand_alone(tmp_path, heights):
    file = tmp_path / "a.png"
    umbrix.write(file, heights)
    before = file.read_bytes()
    with pytest.raises(FileExistsError) as caught:
        umbrix.write(file, 1 - heights)
    assert isinstance(caught.value, umbrix.WriteError) and file.read_bytes() == before
    umbrix.write(file, 1 - heights, overwrite=True)
    assert file.read_bytes() != before
    assert os.listdir(tmp_path) == ["a.png"]


def test_names_may_be_of_any_kind(tmp_path, heights):
    for name in (str(tmp_path / "a.png"), os.fsencode(tmp_path / "b.png"), tmp_path / "gr\u00fcn \u2603.png"):
        umbrix.write(name, heights)
        assert umbrix.read(name).shape == heights.shape
    odd = os.fsencode(tmp_path) + b"/\xff\xfe.png"
    umbrix.write(odd, heights)
    assert os.fsencode(umbrix.read(odd).name) == odd


def test_files_that_hold_no_picture_are_refused_by_name(tmp_path, heights):
    with pytest.raises(FileNotFoundError, match="none.png") as caught:
        umbrix.read(tmp_path / "none.png")
    assert isinstance(caught.value, umbrix.ReadError) and isinstance(caught.value, OSError)
    (tmp_path / "text.png").write_text("no picture")
    with pytest.raises(umbrix.ReadError, match="text.png"):
        umbrix.read(tmp_path / "text.png")
    umbrix.write(tmp_path / "whole.png", heights)
    (tmp_path / "half.png").write_bytes((tmp_path / "whole.png").read_bytes()[:700])
    with pytest.raises(umbrix.ReadError, match="half.png"):
        umbrix.read(tmp_path / "half.png")
    with pytest.raises(umbrix.ReadError):
        umbrix.read(tmp_path / "whole.png", max_texels=100)
    with pytest.raises(OSError):
        umbrix.read(tmp_path)


def test_files_that_cannot_be_written_are_refused_by_name(tmp_path, heights):
    for name in ("none/a.png", "a.unknown", "a"):
        with pytest.raises(umbrix.WriteError):
            umbrix.write(tmp_path / name, heights)
    with pytest.raises(umbrix.Error):
        umbrix.write(tmp_path / "a.jpg", heights, depth=16)
    assert not os.listdir(tmp_path)


def test_depth_rounding_and_compression_are_those_of_the_command_line(tmp_path, tool):
    source = tmp_path / "source.exr"
    umbrix.write(source, hills(30, 31), depth="float", kind="heights")
    for number, (name, keywords, options) in enumerate(
        [
            ("a.png", {}, []),
            ("a.png", {"depth": 16}, ["--depth", "16"]),
            ("a.png", {"rounding": "nearest"}, ["--round", "nearest"]),
            ("a.png", {"rounding": "dither"}, ["--dither"]),
            ("a.png", {"compression": "fast"}, ["--compression", "fast"]),
            ("a.png", {"compression": "small"}, ["--compression", "small"]),
            ("a.exr", {"depth": "half"}, ["--depth", "half"]),
            ("a.tif", {"depth": "float"}, ["--depth", "float"]),
        ]
    ):
        ours, theirs = tmp_path / f"{number}_{name}", tmp_path / f"{number}_tool_{name}"
        umbrix.write(ours, umbrix.normals(umbrix.read(source)), **keywords)
        subprocess.run([tool, "normal", str(source), "-o", str(theirs), *options], check=True, capture_output=True)
        assert ours.read_bytes() == theirs.read_bytes(), (name, keywords)
