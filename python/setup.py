# SPDX-License-Identifier: MIT
"""Puts the shared object of the interface for C and its companions into the package.

They come from a build folder: the one that the variable UMBRIX_BUILD names, else build/release or build/run of the
checkout. "cmake --install" takes them from there, so that they find each other wherever the package is.
"""

import importlib.util
import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

ROOT = Path(__file__).resolve().parent.parent
SHARED_OBJECT = re.compile(r"\.(so|dylib|dll)\b")


def build_folder() -> Path:
    named = os.environ.get("UMBRIX_BUILD")
    folders = [Path(named)] if named else [ROOT / "build" / "release", ROOT / "build" / "run"]
    for folder in folders:
        if any((folder / "capi").glob("*umbrix-c*")):
            return folder
    raise SystemExit(
        f"umbrix: no shared object is built in {' or '.join(map(str, folders))}: build it with scripts/run.sh, or name "
        "its build folder in the variable UMBRIX_BUILD"
    )


def version() -> str:
    found = re.search(r"^project\(UmbrixLib VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)
    if found is None:
        raise SystemExit("umbrix: CMakeLists.txt tells no version")
    return found.group(1)


def dependencies() -> "list[str]":
    """NumPy, unless the Python that builds has one: with --target pip looks for it anew, and where Debian brings NumPy
    there may be no index to find it in. A wheel for others names it."""
    has_numpy = importlib.util.find_spec("numpy") is not None
    return [] if has_numpy and not os.environ.get("UMBRIX_FOR_OTHERS") else ["numpy>=1.22"]


def wanted_names(folder: Path) -> "dict[str, Path]":
    """The files by the names that they are looked for by: a wheel has no links, so each comes once."""
    links = {path.name: path.resolve() for path in folder.iterdir() if path.is_symlink()}
    linked = set(links.values())
    plain = {path.name: path for path in folder.iterdir() if path.is_file() and path.resolve() not in linked}
    return {name: path for name, path in {**links, **plain}.items() if SHARED_OBJECT.search(name)}


class BuildWithLibrary(build_py):
    def run(self) -> None:
        super().run()
        target = Path(self.build_lib) / "umbrix" / "_library"
        shutil.rmtree(target, ignore_errors=True)
        target.mkdir(parents=True)
        with tempfile.TemporaryDirectory() as scratch:
            subprocess.run(
                ["cmake", "--install", str(build_folder()), "--prefix", scratch, "--component", "python", "--strip"],
                check=True,
                stdout=subprocess.DEVNULL,
            )
            for name, path in wanted_names(Path(scratch) / "umbrix" / "_library").items():
                shutil.copy(path, target / name)
        shutil.copy(ROOT / "LICENSE", target)


class AnyPython(bdist_wheel):
    """One wheel for all versions of Python on a platform, as no code of it is compiled for one."""

    def get_tag(self) -> "tuple[str, str, str]":
        return "py3", "none", super().get_tag()[2]


class WithLibrary(Distribution):
    def has_ext_modules(self) -> bool:
        return True


setup(
    version=version(),
    install_requires=dependencies(),
    distclass=WithLibrary,
    cmdclass={"build_py": BuildWithLibrary, "bdist_wheel": AnyPython},
)
