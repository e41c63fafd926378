# SPDX-License-Identifier: MIT
"""The types that the package tells are those that it has, as mypy sees them, from Python 3.9 on."""

import ast
import os
import subprocess
import sys
from pathlib import Path

import pytest

from conftest import PACKAGE_FOLDER

USER = """
import numpy as np
import numpy.typing as npt
from typing import Dict, List, Optional, Tuple
import umbrix

heights: npt.NDArray[np.float32] = np.zeros((4, 4), np.float32)
normals: umbrix.Texels = umbrix.normals(heights, relief=0.1, tile=True, y="up", out=None, h_scale="auto")
kind: Optional[str] = normals.kind
told: Dict[str, str] = normals.attributes
made: npt.NDArray[np.float32] = umbrix.map([[0.0, 1.0]], progress=lambda share, stage: share < 0.5, height_range=(0, 1))
bent, occlusion = umbrix.bent(heights)
ok: bool = umbrix.check(umbrix.read("a.png")).ok
with umbrix.preset("stone", rays=3):
    umbrix.write("a.png", normals, depth=16)
errors: List[Exception] = [one.error for one in umbrix.batch("folder", recurse=True) if one.error]
stack: umbrix.Stack = umbrix.Stack().add(heights, opacity=0.5)
relief: float = umbrix.fit(heights, normals).relief
"""

WRONG = {
    'umbrix.normals(heights, relief="0.1")': "arg-type",
    'umbrix.map(heights, rays=1.5)': "arg-type",
    'umbrix.write("a.png", heights, rounding=1)': "arg-type",
    'umbrix.normals(heights).kinds': "attr-defined",
}


@pytest.fixture(scope="module")
def cache(tmp_path_factory):
    return tmp_path_factory.mktemp("mypy")


def mypy(cache, *arguments: str) -> subprocess.CompletedProcess:
    pytest.importorskip("mypy")
    command = [sys.executable, "-m", "mypy", *arguments]
    environment = {**os.environ, "MYPYPATH": str(PACKAGE_FOLDER), "MYPY_CACHE_DIR": str(cache)}
    return subprocess.run(command, capture_output=True, text=True, env=environment, cwd=cache)


def test_the_package_is_sound_to_mypy(cache):
    done = mypy(cache, "--strict", "--python-version", "3.9", str(PACKAGE_FOLDER / "umbrix"))
    assert done.returncode == 0, done.stdout


def test_users_have_types_that_say_what_is_wrong(cache):
    (cache / "user.py").write_text(USER)
    done = mypy(cache, "--strict", "user.py")
    assert done.returncode == 0, done.stdout
    (cache / "wrong.py").write_text(USER + "\n".join(WRONG) + "\n")
    done = mypy(cache, "--strict", "wrong.py")
    found = [line.rpartition("[")[2].rstrip("]") for line in done.stdout.splitlines() if ": error:" in line]
    assert found == list(WRONG.values()), done.stdout


def test_the_sources_are_python_3_9():
    for file in (PACKAGE_FOLDER / "umbrix").glob("*.py"):
        ast.parse(file.read_text(encoding="utf-8"), feature_version=(3, 9))


def test_every_public_name_says_what_it_is():
    import umbrix

    for name in umbrix.__all__:
        thing = getattr(umbrix, name)
        assert thing.__doc__ or name in ("SettingValue", "Progress"), name
    assert (Path(umbrix.__file__).parent / "py.typed").exists()
