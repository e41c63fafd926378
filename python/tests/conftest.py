# SPDX-License-Identifier: MIT
"""What the tests share: small arrays to work on, and programs that are run in a process of their own."""

import os
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import umbrix

PACKAGE_FOLDER = Path(umbrix.__file__).resolve().parent.parent


def hills(rows: int, columns: int, seed: int = 1) -> np.ndarray:
    """Heights of 0.1 to 0.9 that tile, float32."""
    random = np.random.default_rng(seed)
    y = np.arange(rows)[:, None] * (2 * np.pi / rows)
    x = np.arange(columns)[None, :] * (2 * np.pi / columns)
    ground = np.zeros((rows, columns))
    for _ in range(6):
        down, right = random.integers(-3, 4, 2)
        ground += random.uniform(0.2, 1) * np.cos(down * y + right * x + random.uniform(0, 6))
    ground += random.uniform(-0.2, 0.2, ground.shape)
    ground -= ground.min()
    return (0.1 + 0.8 * ground / max(ground.max(), 1e-9)).astype(np.float32)


@pytest.fixture
def heights() -> np.ndarray:
    return hills(40, 56)


@pytest.fixture(scope="session")
def large() -> np.ndarray:
    """Enough for a call to last until somebody stops it, with `rays` in plenty."""
    return hills(512, 512)


def run_python(code: str, *arguments: str, timeout: float = 120) -> str:
    """What a program prints that is run in a process of its own; it has to end well."""
    done = subprocess.run(
        [sys.executable, "-B", "-c", code, *arguments],
        env={**os.environ, "PYTHONPATH": str(PACKAGE_FOLDER)},
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        timeout=timeout,
    )
    assert done.returncode == 0, done.stdout
    return done.stdout


@pytest.fixture
def tool() -> str:
    """The command line."""
    found = os.environ.get("UMBRIX_TOOL")
    if not found:
        pytest.skip("UMBRIX_TOOL names no command line to compare with")
    return found
