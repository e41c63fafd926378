# SPDX-License-Identifier: MIT
"""Maps in a light, fits, checks and stacks."""

import dataclasses
import subprocess

import numpy as np
import pytest

import umbrix
from conftest import hills


def test_relight_is_that_of_the_command_line(tmp_path, heights, tool):
    umbrix.write(tmp_path / "map.exr", umbrix.map(heights, rays=16), depth="float")
    umbrix.write(tmp_path / "colours.png", np.dstack([hills(40, 56, seed) for seed in (2, 3, 4)]))
    lit = umbrix.relight(
        umbrix.read(tmp_path / "map.exr"), azimuth=100, elevation=30, exposure=0.5, ambient=0.25, weights="exact"
    )
    assert lit.shape == (40, 56) and lit.kind == "relit"
    coloured = umbrix.relight(
        umbrix.read(tmp_path / "map.exr"), albedo=umbrix.read(tmp_path / "colours.png"), azimuth=-20.5
    )
    assert coloured.shape == (40, 56, 3)
    usual = ["--light", "100,30", "--exposure", "0.5", "--ambient", "0.25", "--weights", "exact"]
    for array, options in ((lit, usual), (coloured, ["--light", "-20.5,45", "--albedo", str(tmp_path / "colours.png")])):
        ours, theirs = tmp_path / "ours.tif", tmp_path / "theirs.tif"
        umbrix.write(ours, array, depth="float", overwrite=True)
        command = [tool, "relight", str(tmp_path / "map.exr"), "-o", str(theirs), "--overwrite", "--depth", "float"]
        subprocess.run([*command, *options], check=True, capture_output=True)
        assert np.array_equal(umbrix.read(ours).samples, umbrix.read(theirs).samples)


def test_relight_refuses_what_is_no_light_and_no_map(heights):
    made = umbrix.map(heights, rays=4)
    for wrong in ({"elevation": 91}, {"exposure": -1}, {"ambient": 11}, {"azimuth": float("nan")}):
        with pytest.raises(umbrix.ArgumentError, match=next(iter(wrong))):
            umbrix.relight(made, **wrong)
    for wrong in ({"elevation": "30"}, {"weights": 1}, {"force": 1}, {"albedo": "x.png"}):
        with pytest.raises(TypeError, match=next(iter(wrong))):
            umbrix.relight(made, **wrong)
    with pytest.raises(ValueError, match="weights"):
        umbrix.relight(made, weights="best")
    with pytest.raises(umbrix.PictureError):
        umbrix.relight(umbrix.normals(heights))
    with pytest.raises(umbrix.PictureError):
        umbrix.relight(made, albedo=np.zeros((3, 3, 3), np.float32))


def test_fit_finds_the_relief_that_normals_were_made_with():
    heights = hills(128, 128)
    found = umbrix.fit(heights, umbrix.normals(heights, relief=0.08))
    assert found.relief == pytest.approx(0.08, rel=0.05) and found.beats_flat
    assert not found.inverted and not found.green_down and found.angle < found.flat_angle
    down = umbrix.fit(1 - heights, umbrix.normals(heights, relief=0.08, y="down"))
    assert down.inverted and down.green_down
    with pytest.raises(umbrix.Error):
        umbrix.fit(heights, umbrix.normals(heights)[:50])


def test_check_finds_what_is_not_sound(heights):
    sound = umbrix.check(umbrix.normals(hills(128, 128), relief=0.02))
    assert sound.ok and sound.findings == () and sound.kind == "normals" and sound.mended is None
    bent = umbrix.normals(hills(128, 128), relief=0.02)
    bent *= 0.5
    report = umbrix.check(bent, mend=True)
    assert not report.ok and any(finding.name == "normal-length" for finding in report.findings)
    finding = next(one for one in report.findings if one.name == "normal-length")
    assert finding.text and finding.texels > 0 and finding.first == (0, 0)
    assert dataclasses.is_dataclass(report) and dataclasses.is_dataclass(finding)
    assert report.mended is not None and report.mended.shape == bent.shape
    assert umbrix.check(report.mended).ok
    with pytest.raises(ValueError, match="green"):
        umbrix.check(bent, green="left")


def test_a_stack_of_one_layer_is_that_layer():
    heights = hills(64, 64)
    stack = umbrix.Stack().add(heights)
    assert len(stack) == 1
    normals, blended, made = stack.make()
    assert normals.shape == (64, 64, 3) and blended.shape == (64, 64) and made.shape == (64, 64, 4)
    assert np.array_equal(stack.normals(), normals) and normals.kind == "normals"
    assert np.array_equal(stack.heights(), blended) and np.array_equal(stack.map(), made)
    stretched = (heights - heights.min()) / (heights.max() - heights.min())
    assert np.allclose(blended, stretched, atol=1e-5)
    out = np.zeros((64, 64), np.float32)
    assert stack.heights(out=out) is out and np.array_equal(out, blended)


def test_layers_are_blended_as_the_command_line_does(tmp_path, tool):
    umbrix.write(tmp_path / "a.png", hills(48, 48, 1), depth=16, kind="heights")
    umbrix.write(tmp_path / "b.png", hills(48, 48, 2), depth=16, kind="heights")
    umbrix.write(tmp_path / "c.png", umbrix.normals(hills(48, 48, 3)), depth=16)
    (tmp_path / "stack.toml").write_text(
        '[[layer]]\nfile = "a.png"\n\n'
        '[[layer]]\nfile = "b.png"\nblend = "overlay"\nopacity = 50\ngaussian = 1.5\n\n'
        '[[layer]]\nfile = "c.png"\nkind = "normal"\nopacity = 25\n'
    )
    stack = umbrix.Stack()
    stack.add(umbrix.read(tmp_path / "a.png"))
    stack.add(umbrix.read(tmp_path / "b.png"), blend="overlay", opacity=0.5, gaussian=1.5)
    stack.add(umbrix.read(tmp_path / "c.png"), opacity=0.25)
    made = stack.make(rays=16)
    command = [tool, "stack", "stack.toml", "-o", "normals.exr", "--height", "heights.exr", "--map", "map.exr"]
    subprocess.run([*command, "--rays", "16", "--depth", "float"], check=True, capture_output=True, cwd=tmp_path)
    for array, name in zip(made, ("normals.exr", "heights.exr", "map.exr")):
        umbrix.write(tmp_path / "ours.exr", array, depth="float", overwrite=True)
        assert np.array_equal(umbrix.read(tmp_path / "ours.exr").samples, umbrix.read(tmp_path / name).samples), name


def test_stacks_refuse_what_is_no_layer(heights):
    stack = umbrix.Stack()
    with pytest.raises(umbrix.ArgumentError, match="no layers"):
        stack.map()
    with pytest.raises(umbrix.PictureError):
        stack.add(umbrix.normals(heights))
    stack.add(heights)
    for wrong in ({"blend": "burn"}, {"detail": 101}, {"depth": float("nan")}, {"kind": "map"}):
        with pytest.raises(ValueError, match=next(iter(wrong))):
            stack.add(heights, **wrong)
    for wrong in ({"blend": 1}, {"opacity": "1"}, {"n_scale": "auto"}, {"kind": 1}):
        with pytest.raises(TypeError, match=next(iter(wrong))):
            stack.add(heights, **wrong)
    assert len(stack) == 1
