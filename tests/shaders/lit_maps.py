# SPDX-License-Identifier: MIT
"""Umbrix maps of all modes in 8 and in 16 bits, and what `umbrix relight` makes of them in several lights."""

import array
import math
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path

WIDTH, HEIGHT = 28, 22
MODES = ("projection", "unit", "flat", "squared")  # in the order of the shaders' mode
DEPTHS = (8, 16)
# azimuth, elevation, exposure, ambient; the lowest counts as one at 6 degrees
LIGHTS = ((135, 40, 1.0, 0.0), (20, 75, 0.7, 0.2), (250, 12, 0.5, 0.1), (310, 3, 1.0, 0.3), (90, 90, 1.0, 0.0))
# In 255ths, of the light. Far less than the step of a byte: rounding of floats is all that may differ.
LARGEST_DIFFERENCE = 0.02
QUIETLY = ("--overwrite", "--progress", "none")

Vector = tuple[float, float, float]


@dataclass
class Case:
    mode: int
    depth: int
    azimuth: float
    elevation: float
    exposure: float
    ambient: float
    texels: array.array  # red, green and blue of the map, row by row from the bottom left
    expected: array.array  # the light of each texel

    @property
    def light(self) -> Vector:
        azimuth, elevation = math.radians(self.azimuth), math.radians(self.elevation)
        across = math.cos(elevation)
        return (math.cos(azimuth) * across, math.sin(azimuth) * across, math.sin(elevation))

    def __str__(self) -> str:
        return f"{MODES[self.mode]}, {self.depth} bits, light {self.azimuth},{self.elevation}"


def read_pfm(path: Path) -> array.array:
    with path.open("rb") as file:
        file.readline()
        file.readline()
        order = "little" if float(file.readline()) < 0 else "big"
        samples = array.array("f", file.read())
    if order != sys.byteorder:
        samples.byteswap()
    return samples


def heights() -> bytes:
    """Hills, steps and pits, as a PGM."""

    def height(x: int, y: int) -> int:
        hill = math.sin(x / 3.1) * math.cos(y / 4.3) + 0.6 * math.sin((x + 2 * y) / 5.7)
        pit = -2.0 if (x - 20) ** 2 + (y - 7) ** 2 < 14 else 0.0
        step = 0.8 if 4 <= x < 12 and 12 <= y < 19 else 0.0
        return min(max(int(128 + 38 * (hill + pit + step)), 0), 255)

    samples = bytes(height(x, y) for y in range(HEIGHT) for x in range(WIDTH))
    return b"P5\n%d %d\n255\n" % (WIDTH, HEIGHT) + samples


def cases(tool: str, folder: Path) -> list[Case]:
    tool = str(Path(tool).resolve())

    def umbrix(*words: str) -> None:
        subprocess.run([tool, *words, *QUIETLY], cwd=folder, check=True, stdout=subprocess.DEVNULL)

    (folder / "heights.pgm").write_bytes(heights())
    found = []
    for mode, name in enumerate(MODES):
        for depth in DEPTHS:
            umbrix("map", "heights.pgm", "-o", "map.png", "--relief", "0.15", "--mode", name, "--depth", str(depth))
            umbrix("convert", "map.png", "-o", "map.pfm", "--depth", "float")
            texels = read_pfm(folder / "map.pfm")
            for azimuth, elevation, exposure, ambient in LIGHTS:
                light = ("--light", f"{azimuth},{elevation}", "--exposure", str(exposure), "--ambient", str(ambient))
                umbrix("relight", "map.png", "-o", "lit.pfm", "--depth", "float", *light)
                expected = read_pfm(folder / "lit.pfm")
                found.append(Case(mode, depth, azimuth, elevation, exposure, ambient, texels, expected))
    return found


def difference(case: Case, lit: list[float]) -> float:
    """The largest, in 255ths. Infinite for what is no number and where texels are missing."""
    if len(lit) != len(case.expected):
        return math.inf
    apart = [255 * abs(a - b) for a, b in zip(lit, case.expected)]
    return math.inf if any(map(math.isnan, apart)) else max(apart)


def report(name: str, differences: dict[str, float]) -> int:
    """Prints the largest difference, and each that is too large; their number."""
    wrong = {case: apart for case, apart in differences.items() if not apart <= LARGEST_DIFFERENCE}
    print(f"{name}: {len(differences)} pictures, largest difference {max(differences.values()):.5f} of 255")
    for case, apart in wrong.items():
        print(f"    {case}: {apart:.5f}")
    return len(wrong)
