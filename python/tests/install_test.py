# SPDX-License-Identifier: MIT
"""What pip installs stands by itself: it needs neither the checkout nor the build folder."""

import importlib.util
import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

from conftest import PACKAGE_FOLDER

CHECKOUT = PACKAGE_FOLDER.parent
NEEDED = ("pip", "setuptools", "wheel")

pytestmark = [
    pytest.mark.skipif(not (PACKAGE_FOLDER / "setup.py").exists(), reason="the package is not that of a checkout"),
    pytest.mark.skipif(
        shutil.which("cmake") is None or any(importlib.util.find_spec(name) is None for name in NEEDED),
        reason="pip, setuptools, wheel or CMake is missing",
    ),
]


def pip_install(source: Path, target: Path, **environment: str) -> subprocess.CompletedProcess:
    command = [sys.executable, "-m", "pip", "install", str(source), "--target", str(target)]
    return subprocess.run(
        [*command, "--no-build-isolation", "--no-index", "--disable-pip-version-check"],
        env={**os.environ, **environment},
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    )


@pytest.fixture(scope="module")
def build() -> Path:
    named = os.environ.get("UMBRIX_BUILD")
    folder = Path(named) if named else CHECKOUT / "build" / "release"
    if not (folder / "cmake_install.cmake").exists():
        pytest.skip("there is no build folder to install from")
    return folder


@pytest.fixture(scope="module")
def source(tmp_path_factory) -> Path:
    """A copy of the package's folder in a tree like the checkout, as pip writes into the folder."""
    tree = tmp_path_factory.mktemp("tree")
    (tree / "capi").mkdir()
    for name in ("CMakeLists.txt", "LICENSE", "capi/umbrix.h"):
        shutil.copy(CHECKOUT / name, tree / name)
    shutil.copytree(PACKAGE_FOLDER, tree / "python", ignore=shutil.ignore_patterns("build", "*.egg-info", "__pycache__"))
    return tree / "python"


def test_what_is_installed_stands_by_itself(build, source, tmp_path):
    target = tmp_path / "target"
    done = pip_install(source, target, UMBRIX_BUILD=str(build))
    assert done.returncode == 0, done.stdout
    library = target / "umbrix" / "_library"
    libraries = sorted(file.name.partition(".")[0] for file in library.glob("*.so*"))
    assert libraries == ["libcoralith", "libumbrix-c", "libvelloric"]
    assert (library / "LICENSE").exists() and (target / "umbrix" / "py.typed").exists()
    moved = tmp_path / "moved"
    target.rename(moved)
    program = """
import umbrix, numpy as np
umbrix.map(np.random.default_rng(1).random((90, 90), np.float32), rays=4)
maps = open("/proc/self/maps").read() if __import__("os").path.exists("/proc/self/maps") else ""
print(umbrix.__file__)
print(sorted({line.split()[-1] for line in maps.splitlines() if "umbrix-c" in line or "velloric" in line or "coralith" in line}))
"""
    environment = {name: value for name, value in os.environ.items() if not name.startswith("UMBRIX_")}
    environment.update(PYTHONPATH=str(moved))
    done = subprocess.run([sys.executable, "-B", "-c", program], capture_output=True, text=True, env=environment, cwd=tmp_path)
    assert done.returncode == 0, done.stderr
    file, loaded = done.stdout.splitlines()
    assert file.startswith(str(moved))
    assert str(build) not in loaded and loaded.count(str(moved)) >= 3


def test_the_metadata_tell_the_version_and_any_python(build, source, tmp_path):
    target = tmp_path / "target"
    assert pip_install(source, target, UMBRIX_BUILD=str(build)).returncode == 0
    info = next(target.glob("umbrix-*.dist-info"))
    import umbrix

    assert f"Version: {umbrix.__version__}" in (info / "METADATA").read_text()
    assert "Tag: py3-none-" in (info / "WHEEL").read_text() and "none-any" not in (info / "WHEEL").read_text()


def test_without_a_build_the_reason_is_told(source, tmp_path):
    done = pip_install(source, tmp_path / "target", UMBRIX_BUILD=str(tmp_path / "none"))
    assert done.returncode != 0 and "scripts/run.sh" in done.stdout and "UMBRIX_BUILD" in done.stdout
    program = "import sys; sys.path.insert(0, sys.argv[1]); import umbrix"
    done = subprocess.run(
        [sys.executable, "-B", "-c", program, str(source)],
        capture_output=True,
        text=True,
        env={**os.environ, "UMBRIX_BUILD": str(tmp_path / "none"), "PYTHONPATH": ""},
    )
    assert done.returncode != 0 and "UMBRIX_BUILD" in done.stderr.splitlines()[-1]
