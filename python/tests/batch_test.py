# SPDX-License-Identifier: MIT
"""All pictures of a folder: each by itself, nothing is replaced, and the same call goes on where one ended."""

import dataclasses
import subprocess

import numpy as np
import pytest

import umbrix
from conftest import hills


@pytest.fixture
def folder(tmp_path):
    root = tmp_path / "textures"
    (root / "inner").mkdir(parents=True)
    for number, name in enumerate(["a_height.png", "b_height.tga", "inner/c_height.png"]):
        umbrix.write(root / name, hills(20, 24, number))
    (root / "broken_height.png").write_bytes((root / "a_height.png").read_bytes()[:200])
    (root / "notes.txt").write_text("no picture")
    umbrix.write(root / ".hidden.png", hills(20, 24))
    return root


def names(results, root):
    return [result.file.relative_to(root).as_posix() for result in results]


def test_a_broken_file_costs_its_own_entry_alone(folder):
    results = umbrix.batch(folder, rays=4)
    assert names(results, folder) == ["a_height.png", "b_height.tga", "broken_height.png"]
    assert [result.error is None for result in results] == [True, True, False]
    assert isinstance(results[2].error, umbrix.ReadError) and not results[2].output.exists()
    assert [result.output.name for result in results] == ["a_Umbrix.png", "b_Umbrix.tga", "broken_Umbrix.png"]
    assert all(dataclasses.is_dataclass(result) and not result.skipped for result in results)
    expected = umbrix.map(umbrix.read(folder / "a_height.png"), rays=4)
    umbrix.write(folder / "expected.png", expected)
    assert (folder / "a_Umbrix.png").read_bytes() == (folder / "expected.png").read_bytes()


def test_nothing_is_replaced_and_outputs_are_no_inputs(folder):
    umbrix.batch(folder, rays=4)
    before = {file: file.read_bytes() for file in folder.iterdir() if file.is_file()}
    again = umbrix.batch(folder, rays=8)
    assert [result.skipped for result in again] == [True, True, False]
    assert {file: file.read_bytes() for file in folder.iterdir() if file.is_file()} == before
    replaced = umbrix.batch(folder, rays=8, overwrite=True)
    assert not any(result.skipped for result in replaced)
    assert (folder / "a_Umbrix.png").read_bytes() != before[folder / "a_Umbrix.png"]


def test_folders_in_the_folder_are_walked_on_demand(folder, tmp_path):
    output = tmp_path / "made" / "maps"
    results = umbrix.batch(folder, output=output, make="normals", recurse=True, include="*_Height.*", normal_y="down")
    assert names(results, folder) == ["a_height.png", "b_height.tga", "broken_height.png", "inner/c_height.png"]
    assert sorted(file.relative_to(output).as_posix() for file in output.rglob("*.*")) == [
        "a_Normal.png",
        "b_Normal.tga",
        "inner/c_Normal.png",
    ]
    assert umbrix.read(output / "inner" / "c_Normal.png").attributes["green"] == "down"


def test_pictures_that_are_no_heights_by_their_names_are_left_alone_unless_asked_for(folder):
    umbrix.write(folder / "a_albedo.png", hills(20, 24))
    assert not any("albedo" in result.file.name for result in umbrix.batch(folder, rays=8))
    (result,) = umbrix.batch(folder, include="*_albedo.png", rays=8)
    assert result.output.is_file()


def test_results_are_saved_as_they_are_asked_for(folder):
    results = umbrix.batch(folder, include=["a_*"], suffix="_x", extension=".tif", depth=16, make="heights")
    assert [result.output.name for result in results] == ["a_x.tif"]
    assert isinstance(results[0].error, umbrix.Error) or umbrix.read(folder / "a_x.tif").dtype == np.uint16


def test_progress_goes_over_all_pictures_and_may_stop(folder):
    told = []
    umbrix.batch(folder, rays=4, progress=lambda share, stage: told.append((share, stage)))
    shares = [share for share, _ in told]
    assert shares == sorted(shares) and shares[0] == 0 and shares[-1] <= 1
    assert {stage.partition(":")[0] for _, stage in told} == {"a_height.png", "b_height.tga", "broken_height.png"}
    with pytest.raises(umbrix.Stopped):
        umbrix.batch(folder, overwrite=True, progress=lambda share, stage: not stage.startswith("b_"))
    with pytest.raises(ZeroDivisionError):
        umbrix.batch(folder, overwrite=True, progress=lambda share, stage: 1 / 0)


def test_mistakes_are_told_before_anything_is_written(folder):
    before = sorted(folder.iterdir())
    with pytest.raises(umbrix.SettingError):
        umbrix.batch(folder, relief=99)
    with pytest.raises(ValueError, match="depth"):
        umbrix.batch(folder, depth=7)
    with pytest.raises(FileNotFoundError):
        umbrix.batch(folder / "none")
    umbrix.write(folder / "a_normal.png", umbrix.normals(hills(20, 24)))
    with pytest.raises(umbrix.ArgumentError, match="a_normal.png"):
        umbrix.batch(folder)
    (folder / "a_normal.png").unlink()
    assert sorted(folder.iterdir()) == before


def test_the_command_line_makes_the_same_pictures(folder, tmp_path, tool):
    umbrix.batch(folder, output=tmp_path / "ours", recurse=True, rays=4)
    command = [tool, "batch", str(folder), "--recurse", "--rays", "4", "--keep-tree", str(tmp_path / "tool")]
    assert subprocess.run([*command, "--progress", "none"], capture_output=True).returncode == 1  # the broken one
    pictures = [
        {file.relative_to(root): file.read_bytes() for file in root.rglob("*.*")}
        for root in (tmp_path / "ours", tmp_path / "tool")
    ]
    assert pictures[0] == pictures[1] and len(pictures[0]) == 3
