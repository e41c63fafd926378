# SPDX-License-Identifier: MIT
"""Compares the rules of `umbrix relight --weights` with the relief itself, lit by Lambert's law and shadowed by a walk over
its heights. Prints the tables of docs/maps.md. Usage: /usr/bin/python3 bench/light_rules.py UMBRIX HEIGHTS...
UMBRIX is the tool, HEIGHTS are height maps that tile. Needs python3-numpy; takes half a minute a picture."""

import subprocess
import sys
import tempfile
from pathlib import Path

import numpy as np

RELIEF = 0.05  # The tool's default, in image widths.
REACH = 0.25  # Of a shadow, as that of the tool's rays.
AZIMUTHS = range(0, 360, 15)
ELEVATIONS = (15, 30, 45, 60, 75)
RULES = ("fitted", "exact", "clamped")


def read_pfm(path: Path) -> np.ndarray:
    """Rows from the bottom up, as the file has them."""
    with path.open("rb") as file:
        colours = file.readline().strip() == b"PF"
        width, height = map(int, file.readline().split())
        order = "<f4" if float(file.readline()) < 0 else ">f4"
        samples = np.frombuffer(file.read(), order)
    return samples.reshape((height, width, 3)[: 3 if colours else 2])


def tangents(heights: np.ndarray, azimuth: float, lowest: float) -> np.ndarray:
    """Of the horizon: a walk of one column or row a step, to the nearest texel, as far as a light at `lowest` needs it."""
    x, y = np.cos(azimuth), np.sin(azimuth)
    larger = max(abs(x), abs(y))
    x, y, step = x / larger, y / larger, 1 / larger
    found = np.full(heights.shape, -np.inf, np.float32)
    span = float(heights.max() - heights.min())
    for k in range(1, int(min(REACH * heights.shape[1], span / np.tan(lowest)) / step) + 2):
        moved = np.roll(heights, (-int(np.floor(k * y + 0.5)), -int(np.floor(k * x + 0.5))), (0, 1))
        np.maximum(found, (moved - heights) / np.float32(k * step), out=found)
    return found


def normals(heights: np.ndarray) -> np.ndarray:
    x = (np.roll(heights, 1, 1) - np.roll(heights, -1, 1)) / 2
    y = (np.roll(heights, 1, 0) - np.roll(heights, -1, 0)) / 2
    n = np.stack([x, y, np.ones_like(x)], -1)
    return n / np.linalg.norm(n, axis=-1, keepdims=True)


def figures(tool: str, source: str, folder: Path) -> np.ndarray:
    """By rule and elevation: error and correlation, dark texels, least and largest contrast. The last rule is the truth."""

    def run(*words: str) -> None:
        subprocess.run([tool, *words, "--overwrite", "--progress", "none"], check=True, stdout=subprocess.DEVNULL)

    run("convert", source, "-o", str(folder / "h.pfm"), "--height-from", "mean", "--depth", "float")
    run("map", source, "--height-map", "--relief", str(RELIEF), "-o", str(folder / "map.pfm"), "--depth", "float")
    heights = read_pfm(folder / "h.pfm")
    heights = heights * np.float32(RELIEF * heights.shape[1])  # in texels
    facing = normals(heights)
    found = np.zeros((len(RULES) + 1, len(ELEVATIONS), len(AZIMUTHS), 4))
    for a, azimuth in enumerate(np.radians(AZIMUTHS)):
        horizon = tangents(heights, azimuth, np.radians(min(ELEVATIONS)))
        for e, elevation in enumerate(np.radians(ELEVATIONS)):
            light = [np.cos(azimuth) * np.cos(elevation), np.sin(azimuth) * np.cos(elevation), np.sin(elevation)]
            truth = np.maximum(facing @ light, 0) * (np.tan(elevation) > horizon)
            found[-1, e, a] = 0, 1, (truth <= 0).mean(), truth.std()
            for r, rule in enumerate(RULES):
                run("relight", str(folder / "map.pfm"), "-o", str(folder / "lit.pfm"), "--depth", "float", "--weights", rule,
                    "--exposure", f"{light[2]:.6f}", "--light", f"{AZIMUTHS[a]},{ELEVATIONS[e]}")
                lit = read_pfm(folder / "lit.pfm")
                error = np.sqrt(np.mean((lit - truth) ** 2))
                alike = np.corrcoef(lit.ravel(), truth.ravel())[0, 1] if truth.any() else np.nan
                found[r, e, a] = error, alike, (lit <= 0).mean(), lit.std()
    return found


def table(head: list[str], rows: list[list[str]]) -> None:
    print("| " + " | ".join(head) + " |\n|" + " --- |" * len(head))
    for row in rows:
        print("| " + " | ".join(row) + " |")
    print()


def main(tool: str, sources: list[str]) -> None:
    with tempfile.TemporaryDirectory() as folder:
        found = np.stack([figures(tool, source, Path(folder)) for source in sources])
    names = [*(f"`{rule}`" for rule in RULES), "the relief"]
    # Azimuths at which no light reaches a relief have no correlation.
    means = np.nanmean(found, axis=(0, 3))
    low = found[:, :, : ELEVATIONS.index(30) + 1, :, 3]
    swing = (low.max(axis=3) / low.min(axis=3)).mean(axis=0)[:, -1]
    table(["rule", *(f"error at {e}" for e in ELEVATIONS), "mean"],
          [[names[r], *(f"{x:.3f}" for x in means[r, :, 0]), f"{means[r, :, 0].mean():.4f}"] for r in range(len(RULES))])
    table(["rule", *(f"correlation at {e}" for e in ELEVATIONS), "mean"],
          [[names[r], *(f"{x:.3f}" for x in means[r, :, 1]), f"{means[r, :, 1].mean():.4f}"] for r in range(len(RULES))])
    table(["", "contrast, largest over least, at 30", "dark texels at 15"],
          [[names[r], f"{swing[r]:.2f}", f"{100 * means[r, 0, 2]:.0f} %"] for r in range(len(RULES) + 1)])


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
