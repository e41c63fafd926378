# SPDX-License-Identifier: MIT
"""The same pictures as those of the command line, byte for byte, whatever the options are."""

import os
import subprocess
import warnings
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import umbrix
from conftest import hills

SETS = 200
SEED = 20261123

# Small enough for a short run where the whole range is not.
RANGES = {
    "relief": (0, 0.5),
    "h_scale": (0, 0.5),
    "n_scale": (-20, 20),
    "gaussian": (0, 3),
    "detail": (0, 5),
    "rays": (1, 48),
    "radius": (0, 1),
    "b_radius": (0, 5),
    "smooth": (0, 3),
    "h_smooth": (0, 3),
}
TEXTS = {"height_range": ["auto", "none", (0, 1), (-0.5, 2)], "replace_invalid": ["none", 0.25]}


@pytest.fixture(scope="module")
def sources(tmp_path_factory):
    """Pictures of all depths, with and without colours and alpha."""
    folder = tmp_path_factory.mktemp("sources")
    ground, colours = hills(27, 34), np.dstack([hills(27, 34, seed) for seed in (2, 3, 4)])
    vectors = umbrix.normals(ground, relief=0.03)
    pictures = {
        "grey_height.png": (ground, 8),
        "deep_height.png": (ground, 16),
        "float_height.exr": (ground, "float"),
        "half_height.exr": (ground, "half"),
        "float_height.tif": (ground, "float"),
        "colours_height.png": (colours, 8),
        "alpha_height.png": (np.dstack([ground, hills(27, 34, 9)]), 16),
        "a_normal.png": (np.dstack([vectors * 0.5 + 0.5, ground]), 8),
        "deep_normal.png": (np.dstack([vectors * 0.5 + 0.5, ground]), 16),
        "plain.png": (ground, 8),
    }
    for name, (array, depth) in pictures.items():
        umbrix.write(folder / name, np.asarray(array), depth=depth)
    return sorted(folder.iterdir())


def random_value(random, name, setting):
    if setting.form == "flag":
        return bool(random.integers(2))
    if setting.form == "choice":
        return str(random.choice(setting.choices))
    if setting.form == "text":
        return TEXTS[name][random.integers(len(TEXTS[name]))]
    least, most = RANGES.get(name, (setting.minimum, setting.maximum))
    if setting.form == "whole":
        return int(random.integers(least, most + 1))
    return round(float(random.uniform(least, most)), 3)


def option(name, value):
    word = name.replace("_", "-")
    if isinstance(value, bool):
        return [f"--{word}" if value else f"--no-{word}"]
    if isinstance(value, tuple):
        return [f"--{word}={value[0]},{value[1]}"]
    return [f"--{word}={value}"]


SAVING = [
    (".png", {}, []),
    (".png", {"depth": 16}, ["--depth", "16"]),
    (".png", {"rounding": "nearest"}, ["--round", "nearest"]),
    (".png", {"rounding": "dither", "compression": "small"}, ["--dither", "--compression", "small"]),
    (".tga", {}, []),
    (".tif", {"depth": "float"}, ["--depth", "float"]),
    (".exr", {}, []),
]


def random_case(random, number, command, sources):
    """The source, the keywords, how it is saved, and the options that say the same."""
    job = {"map": "map", "normal": "normals"}[command]
    table = {
        name: setting
        for name, setting in umbrix.settings().items()
        if job in setting.counts_in or "reading heights" in setting.counts_in
        if not (command == "normal" and name == "detail")
    }
    names = random.choice(sorted(table), random.integers(0, 6), replace=False)
    keywords = {str(name): random_value(random, str(name), table[str(name)]) for name in names}
    if command == "normal" and random.integers(2):
        keywords["normal_y"] = str(random.choice(["up", "down"]))
    options = [word for name, value in keywords.items() for word in option(name, value)]
    if command == "map" and random.integers(4) == 0:
        keywords["kind"] = str(random.choice(["height", "normal"]))
        options.append(f"--{keywords['kind']}-map")
    ending, saving, words = SAVING[random.integers(len(SAVING))]
    preset = [None, None, "stone", "cloth"][random.integers(4)]
    if preset:
        words = [*words, "--preset", preset]
        keywords.setdefault("rays", 16)
        options += [] if any(word.startswith("--rays") for word in options) or command == "normal" else ["--rays=16"]
    source = sources[random.integers(len(sources))]
    return source, keywords, preset, saving, f"{number}{ending}", [*options, *words]


def ours(command, source, keywords, preset, saving, file):
    """The sentence of an error, or None."""
    make = umbrix.map if command == "map" else umbrix.normals
    try:
        if preset:
            with umbrix.preset(preset):
                made = make(umbrix.read(source), **keywords)
        else:
            made = make(umbrix.read(source), **keywords)
        umbrix.write(file, made, **saving)
    except umbrix.Error as error:
        return error.sentence
    return None


@pytest.mark.parametrize("command", ["map", "normal"])
def test_files_are_those_of_the_command_line(command, sources, tmp_path, tool):
    random = np.random.default_rng([SEED, len(command)])
    cases = [random_case(random, number, command, sources) for number in range(SETS // 2)]
    (tmp_path / "tool").mkdir()
    (tmp_path / "ours").mkdir()

    def theirs(case):
        source, _, _, _, name, options = case
        call = [tool, command, str(source), "-o", str(tmp_path / "tool" / name), "--progress", "none", *options]
        return subprocess.run(call, capture_output=True, text=True)

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = list(pool.map(theirs, cases))
    wrong, made = [], 0
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", umbrix.PictureWarning)
        for (source, keywords, preset, saving, name, options), run in zip(cases, runs):
            sentence = ours(command, source, keywords, preset, saving, tmp_path / "ours" / name)
            what = f"{source.name} {name} {options}: {sentence!r} and {run.stderr!r}"
            if sentence is not None or run.returncode != 0:
                refused = sentence is not None and run.returncode != 0
                if not refused or sentence.replace("/ours/", "/tool/") not in run.stderr:
                    wrong.append(what)
            elif (tmp_path / "ours" / name).read_bytes() != (tmp_path / "tool" / name).read_bytes():
                wrong.append(what)
            else:
                made += 1
    assert not wrong, "\n".join(wrong)
    assert made >= 0.8 * len(cases)
