# SPDX-License-Identifier: MIT
"""All settings are keywords; presets count in their block, in their context."""

import contextvars
import subprocess
import threading

import numpy as np
import pytest

import umbrix
from conftest import hills


def test_the_table_has_every_setting():
    table = umbrix.settings()
    assert table["relief"].default == pytest.approx(0.05) and table["relief"].maximum == 10
    assert table["tile"].default is True and table["tile"].form == "flag"
    assert table["mode"].choices == ("projection", "unit", "flat", "squared")
    assert table["h_scale"].form == "auto" and table["h_scale"].default == "auto"
    assert table["rays"].form == "whole" and isinstance(table["rays"].default, int)
    assert "map" in table["rays"].counts_in and "normals" not in table["rays"].counts_in
    assert all(setting.name == name and setting.help for name, setting in table.items())


def test_every_setting_is_a_keyword_that_takes_its_own_default():
    small = np.full((8, 8), 0.5, np.float32)
    expected = umbrix.map(small)
    for name, setting in umbrix.settings().items():
        assert np.array_equal(umbrix.map(small, **{name: setting.default}), expected), name


def test_settings_change_what_they_say(heights):
    assert not np.array_equal(umbrix.normals(heights, relief=0.1), umbrix.normals(heights))
    assert not np.array_equal(umbrix.map(heights, rays=3, h_contrast=0.5), umbrix.map(heights, rays=3))
    down, up = umbrix.normals(heights, y="down"), umbrix.normals(heights, y="up")
    assert np.array_equal(down * np.float32([1, -1, 1]), up)
    assert np.array_equal(umbrix.normals(heights, normal_y="down"), down)
    assert np.array_equal(umbrix.normals(heights, relief=None, tile=None), umbrix.normals(heights))
    inverted = umbrix.normals(1 - heights)
    assert np.allclose(umbrix.normals(heights, invert=True), inverted, atol=1e-4)


def test_numbers_of_numpy_are_numbers(heights):
    expected = umbrix.map(heights, relief=0.25, rays=8, tile=False)
    given = umbrix.map(heights, relief=np.float32(0.25), rays=np.int16(8), tile=np.bool_(False))
    assert np.array_equal(given, expected)
    assert np.array_equal(umbrix.normals(heights * 4, height_range=(0, 4)), umbrix.normals(heights * 4, height_range="0,4"))


@pytest.mark.parametrize(
    "settings",
    [
        {"relief": "0.05"},
        {"relief": True},
        {"relief": [0.05]},
        {"tile": 1},
        {"tile": "true"},
        {"rays": 3.0},
        {"rays": "3"},
        {"mode": 0},
        {"h_scale": False},
        {"h_scale": "automatic"},
        {"height_range": (1, 2, 3)},
        {"height_range": (1, "2")},
        {"height_range": {}},
    ],
    ids=str,
)
def test_values_of_a_wrong_type_are_a_type_error_that_names_the_keyword(heights, settings):
    with pytest.raises(TypeError, match=next(iter(settings))):
        umbrix.map(heights, **settings)


@pytest.mark.parametrize(
    "settings",
    [
        {"relief": -1},
        {"relief": 10.5},
        {"relief": float("nan")},
        {"relief": float("inf")},
        {"rays": 0},
        {"rays": 10**30},
        {"mode": "projections"},
        {"height_range": (2, 1)},
        {"height_range": "much"},
        {"contrast": -1.01},
    ],
    ids=str,
)
def test_values_out_of_range_are_a_value_error_with_the_sentence_of_the_library(heights, settings):
    with pytest.raises(ValueError, match=next(iter(settings)).replace("_", ".")) as caught:
        umbrix.map(heights, **settings)
    assert isinstance(caught.value, umbrix.SettingError) and caught.value.sentence


def test_an_unknown_keyword_is_a_type_error_that_names_the_nearest(heights):
    with pytest.raises(TypeError, match="'releif'.*'relief'"):
        umbrix.map(heights, releif=0.1)
    with pytest.raises(TypeError, match="'h-scale'.*'h_scale'"):
        umbrix.map(heights, **{"h-scale": 0.1})
    with pytest.raises(TypeError, match="'qqqq'"):
        umbrix.map(heights, qqqq=1)
    with pytest.raises(TypeError, match="same setting"):
        umbrix.normals(heights, y="up", normal_y="up")


def test_presets_count_in_their_block(heights):
    name = "terrain"
    assert name in umbrix.presets()
    usual = umbrix.map(heights, rays=8)
    with umbrix.preset(name) as preset:
        inside = umbrix.map(heights, rays=8)
        with umbrix.preset(name, relief=0.5, mode="squared"):
            nested = umbrix.map(heights, rays=8)
        assert np.array_equal(umbrix.map(heights, rays=8), inside)
        relief = preset["relief"]
    assert not np.array_equal(inside, usual) and not np.array_equal(nested, inside)
    assert np.array_equal(umbrix.map(heights, rays=8), usual)
    assert relief != umbrix.settings()["relief"].default
    with umbrix.preset(name):
        assert np.array_equal(umbrix.normals(heights), umbrix.normals(heights, relief=relief))


def test_a_preset_ends_with_its_block_whatever_happens_there(heights):
    usual = umbrix.normals(heights)
    with pytest.raises(KeyError):
        with umbrix.preset("terrain"):
            raise KeyError
    assert np.array_equal(umbrix.normals(heights), usual)


def test_presets_are_of_their_context(heights):
    usual = umbrix.normals(heights)
    seen = {}

    def look(name):
        seen[name] = umbrix.normals(heights)

    with umbrix.preset("terrain"):
        thread = threading.Thread(target=look, args=("thread",))
        thread.start()
        thread.join()
        contextvars.copy_context().run(look, "copy")
        contextvars.Context().run(look, "fresh")
        here = umbrix.normals(heights)
    assert np.array_equal(seen["thread"], usual) and np.array_equal(seen["fresh"], usual)
    assert np.array_equal(seen["copy"], here) and not np.array_equal(here, usual)


def test_presets_may_be_files(heights, tmp_path):
    file = tmp_path / "mine.toml"
    file.write_text("relief = 0.25\nnormal_y = \"down\"\n")
    for name in (file, str(file)):
        with umbrix.preset(name):
            assert np.array_equal(umbrix.normals(heights), umbrix.normals(heights, relief=0.25, y="down"))
    file.write_text("relief = 99\n")
    with pytest.raises(umbrix.SettingError, match="mine.toml"):
        umbrix.preset(file)
    with pytest.raises(umbrix.Error):
        umbrix.preset(tmp_path / "none.toml")


def test_wrong_presets_are_refused():
    with pytest.raises(umbrix.SettingError, match="granit"):
        umbrix.preset("granit")
    with pytest.raises(TypeError):
        umbrix.preset(3)
    with pytest.raises(TypeError, match="releif"):
        umbrix.preset("terrain", releif=1)
    with pytest.raises(KeyError):
        umbrix.preset("terrain")["releif"]


def test_the_shipped_presets_are_those_of_the_command_line(tool):
    printed = subprocess.run([tool, "preset", "list"], capture_output=True, text=True, check=True).stdout
    assert all(name in printed for name in umbrix.presets()) and len(umbrix.presets()) >= 3
