# SPDX-License-Identifier: MIT
"""Tables without bars."""

from typing import Callable

from markdown import table
from records import Records

GIB = 1024**3


def differences_table(records: Records) -> str:
    def largest(key: str, what: str, **wanted) -> str:
        values = [line[key] for line in records.of(what, **wanted) if key in line]
        return f"{max(values):.1g}" if values else "not measured"

    rows = [
        [f"Embree, set ({name}), mean", largest("embree_difference", "occlusion", set=name)]
        for name in ("i", "ii", "iii")
    ]
    for sigma in (2, 8, 32):
        difference = largest("opencv_difference", "gaussian", sigma=sigma)
        rows.append([f"OpenCV `GaussianBlur`, sigma {sigma}, largest", difference])
    rows.append(["CImg `deriche`, largest", largest("cimg_difference", "gaussian")])
    for name, what in (
        ("`bilateralFilter`", "bilateral"),
        ("`Sobel` and normalisation", "normals"),
        ("`convertTo` chain", "tone"),
    ):
        rows.append([f"OpenCV {name}, largest", largest("opencv_difference", what)])
    return table(["peer", "difference, of heights and shares of 0 to 1"], rows)


def scaling_tables(records: Records) -> str:
    lines = records.of("scaling", over="radius")
    radii = sorted({line["radius"] for line in lines})
    rows = []
    for side in sorted({line["side"] for line in lines}):
        cost = {line["radius"]: line["seconds_per_texel"] for line in lines if line["side"] == side}
        rows.append([str(side), *(f"{1e9 * cost[radius]:.0f}" for radius in radii)])
    first = table(["side", *(f"radius {radius:.3g}" for radius in radii)], rows)
    lines = sorted(records.of("scaling", over="rays"), key=lambda line: line["rays"])
    cost = [f"{1e9 * line['seconds_per_texel']:.0f}" for line in lines]
    second = table(["rays", *(str(line["rays"]) for line in lines)], [["ns a texel", *cost]])
    return first + "\n\n" + second


def file_table(records: Records) -> str:
    lines = records.of("whole_file")
    if not lines:
        return "Not measured."
    names = sorted(
        {name for line in lines for name in line["parts"]},
        key=lambda name: -sum(line["parts"].get(name, 0.0) for line in lines),
    )

    def row(title: str, seconds: Callable[[dict], float]) -> list[str]:
        return [title, *(f"{1000 * seconds(line):.1f}" for line in lines)]

    rows = [
        row("whole run", lambda line: line["wall"]),
        row("decoder and encoder", lambda line: line["decoder_and_encoder"]),
        row("inside the kernels", lambda line: line["kernels"]),
    ]
    for name in names:
        if any(line["parts"].get(name, 0.0) > 0.0005 for line in lines):
            rows.append(row("... " + name, lambda line, part=name: line["parts"].get(part, 0.0)))
    return table(["ms, median run", *(line["map"] for line in lines)], rows)


def memory_table(records: Records) -> str:
    rows = [
        [name, f"({line['set']})", f"{line['bytes'] / GIB:.2f} GiB", f"{line['wall']:.0f} s"]
        for what, name in (
            ("file_memory", "whole `UmbrixFile`"),
            ("kernel_memory", "`Height2DirectionalAO` itself"),
        )
        for line in records.of(what)
    ]
    return table(["8192 x 8192", "set", "memory", "wall time, all processors"], rows)


def start_up_table(records: Records) -> str:
    rows = [
        [name, f"{1000 * seconds:.1f} ms"]
        for line in records.of("start_up")
        for name, seconds in line["seconds"].items()
    ]
    return table(["`umbrix`", "wall time, median"], rows)
