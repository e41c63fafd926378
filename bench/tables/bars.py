# SPDX-License-Identifier: MIT
"""What every operator has to reach. Each bar is stated here and nowhere else."""

from dataclasses import dataclass
from math import log
from typing import Callable, Optional

from jobs import files_a_second, ours, over_parts
from markdown import number, table
from records import Records, geometric_mean, ratio

GIB = 1024**3
NOISE = 0.05  # Share of the machine that others may use where a bar asks for an idle one.


@dataclass
class Figure:
    value: float
    cells: list[float]
    condition: str = ""  # Why the bar cannot be judged here, if it cannot.


def mean_of(cells: list[float]) -> Optional[Figure]:
    return Figure(geometric_mean(cells), cells) if cells else None


def lowest_of(cells: list[float]) -> Optional[Figure]:
    return Figure(min(cells), cells) if cells else None


def highest_of(cells: list[float]) -> Optional[Figure]:
    return Figure(max(cells), cells) if cells else None


def against(rival: str, what: str, **wanted) -> Callable[[Records], Optional[Figure]]:
    """Geometric mean, over maps and sides, of how many times the rival's time is ours."""
    return lambda records: mean_of([ratio(line, rival) for line in records.of(what, **wanted)])


def lowest_mean(rival: str, what: str, key: str, **wanted) -> Callable[[Records], Optional[Figure]]:
    """The same for each value of a key, and the lowest of them."""

    def figure(records: Records) -> Optional[Figure]:
        lines = records.of(what, **wanted)
        groups = {line[key]: [] for line in lines}
        for line in lines:
            groups[line[key]].append(ratio(line, rival))
        return lowest_of([geometric_mean(group) for group in groups.values()])

    return figure


def embree(line: dict) -> float:
    """Against the faster of Embree's two forms, both without tiling."""
    fastest = min(line["seconds"]["embree"], line["seconds"]["embree_one_by_one"])
    return fastest / line["seconds"]["ours_untiled"]


def on_idle_machine(figure: Optional[Figure], lines: list[dict]) -> Optional[Figure]:
    """Wall time means little where others run."""
    others = max((line["others"] for line in lines), default=0.0)
    if figure and others > NOISE:
        figure.condition = f"others used up to {others:.0%} of the machine"
    return figure


def two_threads(records: Records) -> Optional[Figure]:
    lines = records.of("threads")
    cells = [line["seconds"]["two"] / line["seconds"]["one"] for line in lines]
    return on_idle_machine(mean_of(cells), lines)


def start_up(name: str) -> Callable[[Records], Optional[Figure]]:
    def figure(records: Records) -> Optional[Figure]:
        lines = records.of("start_up")
        return on_idle_machine(highest_of([1000 * line["seconds"][name] for line in lines]), lines)

    return figure


def job_against(rival: str, job: str) -> Callable[[Records], Optional[Figure]]:
    def figure(records: Records) -> Optional[Figure]:
        lines = [line for line in records.of("job", job=job) if rival in line["seconds"]]
        return on_idle_machine(mean_of([ratio(line, rival) for line in lines]), lines)

    return figure


def png_over_tga(records: Records) -> Optional[Figure]:
    pairs = zip(ours(records, "map, PNG"), ours(records, "map, TGA"))
    return on_idle_machine(mean_of([png / tga for png, tga in pairs]), records.of("job"))


def job_over_parts(job: str) -> Callable[[Records], Optional[Figure]]:
    def figure(records: Records) -> Optional[Figure]:
        lines = records.of("job", job=job)
        return on_idle_machine(mean_of([over_parts(line) for line in lines]), lines)

    return figure


def batch_speed(job: str) -> Callable[[Records], Optional[Figure]]:
    def figure(records: Records) -> Optional[Figure]:
        lines = records.of("batch", job=job)
        return on_idle_machine(mean_of([files_a_second(line) for line in lines]), lines)

    return figure


def job_memory(records: Records) -> Optional[Figure]:
    return highest_of([line["bytes"] / GIB for line in records.of("job_memory")])


def stop(records: Records) -> Optional[Figure]:
    lines = records.of("stop")
    return on_idle_machine(highest_of([line["largest_milliseconds"] for line in lines]), lines)


def share_of_kernels(records: Records) -> Optional[Figure]:
    lines = records.of("whole_file")
    return on_idle_machine(lowest_of([100 * line["share"] for line in lines]), lines)


def blend(kind: str) -> Callable[[Records], Optional[Figure]]:
    def figure(records: Records) -> Optional[Figure]:
        return highest_of(
            [
                ratio(line, f"{kind}_into_{target}", f"{kind}_copy")
                for line in records.of("blends")
                for target in ("array", "result")
            ]
        )

    return figure


def growth(over: str) -> Callable[[Records], Optional[Figure]]:
    """Exponent of the cost from the lowest value to the highest, the largest over the sides."""

    def figure(records: Records) -> Optional[Figure]:
        lines = records.of("scaling", over=over)
        exponents = []
        for side in sorted({line["side"] for line in lines}):
            points = sorted((line[over], line["seconds_per_texel"]) for line in lines if line["side"] == side)
            (low, low_cost), (high, high_cost) = points[0], points[-1]
            exponents.append(log(high_cost / low_cost) / log(high / low))
        return highest_of(exponents)

    return figure


def gibibytes(what: str, sets: tuple[str, ...]) -> Callable[[Records], Optional[Figure]]:
    return lambda records: highest_of(
        [line["bytes"] / GIB for line in records.of(what) if line["set"] in sets]
    )


def checks(records: Records) -> Optional[Figure]:
    cells = [float(line["equals_plain"]) for line in records.lines if "equals_plain" in line]
    return Figure(sum(cells) / len(cells), cells) if cells else None


def formats(what: str, only: str = "") -> Callable[[Records], Optional[Figure]]:
    """The lowest speed of the toolkit over that of the format's own library."""
    return lambda records: lowest_of(
        [ratio(line, "direct") for line in records.of(what) if line["file"].startswith(only)]
    )


def png_size(records: Records) -> Optional[Figure]:
    lines = records.of("picture_writing")
    return highest_of([line["size"] for line in lines if line["file"].startswith("PNG")])


@dataclass
class Bar:
    operator: str
    text: str
    figure: Callable[[Records], Optional[Figure]]
    limit: float
    at_least: bool = True
    unit: str = "x"

    def verdict(self, figure: Figure) -> str:
        if figure.condition:
            return f"not judged: {figure.condition}"
        holds = figure.value >= self.limit if self.at_least else figure.value <= self.limit
        return "holds" if holds else "**falls short**"


def occlusion_bars() -> list[Bar]:
    name = "`Height2DirectionalAO`"

    def cells(records: Records, **wanted) -> list[float]:
        return [ratio(line, "plain") for line in records.of("occlusion", **wanted)]

    def embree_cells(records: Records) -> list[float]:
        return [embree(line) for line in records.of("occlusion")]

    return [
        Bar(name, "plain, side 512: mean at least 60", lambda r: mean_of(cells(r, side=512)), 60),
        Bar(name, "plain, side 1024: mean at least 90", lambda r: mean_of(cells(r, side=1024)), 90),
        Bar(name, "plain: no cell under 30", lambda r: lowest_of(cells(r)), 30),
        Bar(name, "Embree: mean at least 130", lambda r: mean_of(embree_cells(r)), 130),
        Bar(name, "Embree: no cell under 60", lambda r: lowest_of(embree_cells(r)), 60),
        Bar(name, "two threads: at most 0.54 of one, idle machine", two_threads, 0.54, False),
    ]


def gaussian_bars() -> list[Bar]:
    bars = [
        Bar(
            "`gaussianFilterRGBA`, `float`",
            "plain: at least 10, every sigma",
            lowest_mean("plain", "gaussian", "sigma", pixel="float"),
            10,
        )
    ]
    opencv = {"float": {2: 1 / 1.3, 8: 3.8, 32: 14}, "float3": {2: 1, 8: 6, 32: 24}}
    opencv["float4"] = opencv["float3"]
    for pixel, limits in opencv.items():
        name = f"`gaussianFilterRGBA`, `{pixel}`"
        if pixel != "float":
            bars.append(
                Bar(
                    name,
                    "plain: at least 4.5, every sigma",
                    lowest_mean("plain", "gaussian", "sigma", pixel=pixel),
                    4.5,
                )
            )
        for sigma, limit in limits.items():
            text = f"OpenCV, sigma {sigma}: at least {limit:.3g}"
            bars.append(Bar(name, text, against("opencv", "gaussian", pixel=pixel, sigma=sigma), limit))
        if pixel == "float":
            figure = lowest_mean("cimg", "gaussian", "sigma", pixel=pixel)
            bars.append(Bar(name, "CImg: at least 4, every sigma", figure, 4))
    return bars


def filter_bars() -> list[Bar]:
    name = "`BilateralFilter`, `float`"
    bars = [
        Bar(name, "plain: at least 6.5, every radius", lowest_mean("plain", "bilateral", "radius"), 6.5)
    ]
    for radius, limit in {2: 1.6, 5: 2.2, 10: 2.5, 20: 2.5}.items():
        text = f"OpenCV, radius {radius}: at least {limit}"
        bars.append(Bar(name, text, against("opencv", "bilateral", radius=radius), limit))
    name = "`Height2Normal`"
    bars.append(Bar(name, "plain: at least 3, every side", lowest_mean("plain", "normals", "side"), 3))
    for side, limit in {1024: 3.5, 2048: 6}.items():
        text = f"OpenCV, side {side}: at least {limit}"
        bars.append(Bar(name, text, against("opencv", "normals", side=side), limit))
    for pixel, operator, limit in (
        ("float", "PreProcess", 1),
        ("float3", "PostProcess", 2),
        ("float4", "PostProcess", 2),
    ):
        name = f"tone chain of `{operator}`, `{pixel}`"
        figure = lowest_mean("plain", "tone", "side", pixel=pixel)
        bars.append(Bar(name, "plain: at least 3, every side", figure, 3))
        text = f"OpenCV, side 2048: at least {limit}"
        bars.append(Bar(name, text, against("opencv", "tone", pixel=pixel, side=2048), limit))
    return bars


def job_bars() -> list[Bar]:
    return [
        Bar("`umbrix normal`, 4096, 8-bit PNG", "GEGL: at least 4", job_against("gegl", "normal, PNG"), 4),
        Bar("`umbrix map`, 4096, 64 rays", "PNG at most 1.9 times TGA", png_over_tga, 1.9, False),
        Bar("`umbrix map`, 4096, TGA", "at most 1.25 times its parts", job_over_parts("map, TGA"), 1.25, False),
        Bar("`umbrix stack`, 2048, PNG", "at most 1.25 times its parts", job_over_parts("stack, PNG"), 1.25, False),
        Bar("`umbrix batch`, 512 x 512, 128 rays", "at least 25 files/s", batch_speed("map"), 25, True, "files/s"),
        Bar("`umbrix batch --normal`, 512 x 512", "at least 50 files/s", batch_speed("normal"), 50, True, "files/s"),
        Bar("`umbrix map`, 8192, 8-bit PNG", "at most 1.5 GiB", job_memory, 1.5, False, "GiB"),
        Bar("`umbrix --help`", "at most 8 ms", start_up("--help"), 8, False, "ms"),
        Bar("`umbrix info`", "at most 10 ms", start_up("info"), 10, False, "ms"),
        Bar("`umbrix map`, 64 x 64", "at most 12 ms", start_up("map of 64 x 64"), 12, False, "ms"),
    ]


BARS = [
    *occlusion_bars(),
    *gaussian_bars(),
    *filter_bars(),
    Bar("`BlendHeightMap`", "every mode and form: at most 3 times `memcpy`", blend("heights"), 3, False),
    Bar("`BlendLayers`", "every mode and form: at most 3 times `memcpy`", blend("normals"), 3, False),
    Bar(
        "whole `UmbrixFile`, 2048, set (ii)",
        "inside the kernels: at least 90 %, every map",
        share_of_kernels,
        90,
        unit="%",
    ),
    Bar("occlusion over `rays`", "exponent of the cost: at most 1", growth("rays"), 1, False, ""),
    Bar("occlusion over `radius`", "exponent of the cost: less than 1", growth("radius"), 0.999, False, ""),
    Bar(
        "whole `UmbrixFile`, 8192, set (ii)",
        "at most 6 GiB",
        gibibytes("file_memory", ("ii",)),
        6,
        False,
        "GiB",
    ),
    Bar(
        "`Height2DirectionalAO`, 8192",
        "working memory, every set: at most 1.2 GiB",
        gibibytes("kernel_memory", ("i", "ii", "iii")),
        1.2,
        False,
        "GiB",
    ),
    Bar("reading of pictures", "the formats' libraries: at least 0.9, every file", formats("picture_reading"), 0.9),
    Bar("writing of pictures", "the formats' libraries: at least 0.9, every file", formats("picture_writing"), 0.9),
    Bar(
        "writing of 16-bit PNG",
        "libpng, level 6: at least 4, every picture in colour",
        formats("picture_writing", "PNG, 16-bit RGB"),
        4,
    ),
    Bar("writing of 16-bit PNG", "libpng, level 6: at most 1.03 of the size", png_size, 1.03, False),
    *job_bars(),
    Bar("`make_map`, 2048", "returns at most 50 ms after a wish to stop", stop, 50, False, "ms"),
    Bar("all operators", "results equal the plain form's, bit for bit", checks, 1, True, ""),
]


def bars_table(records: Records) -> str:
    rows = []
    for bar in BARS:
        figure = bar.figure(records)
        if figure is None:
            rows.append([bar.operator, bar.text, "", "", "not measured"])
            continue
        unit = "" if bar.unit in ("", "x") else " " + bar.unit
        spread = f"{number(min(figure.cells))} to {number(max(figure.cells))}, {len(figure.cells)} cells"
        spread = spread if len(figure.cells) > 1 else ""
        rows.append([bar.operator, bar.text, number(figure.value) + unit, spread, bar.verdict(figure)])
    return table(["operator", "bar", "measured", "lowest to highest", ""], rows)
