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
def told(tmp_path_factory):
    """What mypy says of the package and its users, file by file, in one run, as it reads NumPy for long."""
    pytest.importorskip("mypy")
    folder = tmp_path_factory.mktemp("mypy")
    (folder / "user.py").write_text(USER)
    (folder / "wrong.py").write_text(USER + "\n".join(WRONG) + "\n")
    command = [sys.executable, "-m", "mypy", "--strict", "--python-version", "3.9", "--cache-dir", str(folder / "cache")]
    done = subprocess.run(
        [*command, str(PACKAGE_FOLDER / "umbrix"), "user.py", "wrong.py"],
        capture_output=True,
        text=True,
        env={**os.environ, "MYPYPATH": str(PACKAGE_FOLDER)},
        cwd=folder,
    )
    lines = [line for line in done.stdout.splitlines() if ": error:" in line]
    assert lines and not done.stderr, done.stdout + done.stderr
    return lines


def test_the_package_is_sound_to_mypy(told):
    assert not [line for line in told if not line.startswith("wrong.py")]


def test_users_have_types_that_say_what_is_wrong(told):
    found = [line.rpartition("[")[2].rstrip("]") for line in told if line.startswith("wrong.py")]
    assert found == list(WRONG.values())


def test_the_sources_are_python_3_9():
    for file in (PACKAGE_FOLDER / "umbrix").glob("*.py"):
        ast.parse(file.read_text(encoding="utf-8"), feature_version=(3, 9))


def test_every_public_name_says_what_it_is():
    import umbrix

    for name in umbrix.__all__:
        thing = getattr(umbrix, name)
        assert thing.__doc__ or name in ("SettingValue", "Progress"), name
    assert (Path(umbrix.__file__).parent / "py.typed").exists()
