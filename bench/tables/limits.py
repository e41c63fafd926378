# SPDX-License-Identifier: MIT
"""How far the operators are from what the machine can do at best."""

from dataclasses import dataclass
from typing import Callable

from markdown import table
from records import Records, geometric_mean


CHANNELS = {"float": 1, "float3": 3, "float4": 4}


@dataclass
class Need:
    """What an operator needs of the machine at least, for one element."""

    name: str
    counted: str
    amounts: dict[str, float]
    lines: list[dict]
    elements: Callable[[dict], float]


def texels(line: dict) -> float:
    return line["side"] ** 2


def occlusion_needs(records: Records) -> list[Need]:
    return [
        Need(
            f"`Height2DirectionalAO`, set ({name}), side {side}",
            "the comparisons of the plain walk",
            {"compares": 1},
            records.of("occlusion", set=name, side=side),
            lambda line: texels(line) * line["comparisons_per_texel"],
        )
        for name in ("i", "ii", "iii")
        for side in (512, 1024)
    ]


def gaussian_need(records: Records, pixel: str, sigma: int) -> Need:
    """Eight runs over each component's lines, two passes over memory."""
    channels = CHANNELS[pixel]
    if pixel == "float":
        counted = "two copies; 32 double products and sums, 24 conversions"
        amounts = {"double_multiply_adds": 32, "conversions": 24}
    else:
        counted = "two copies; 56 float operations a component"
        amounts = {"float_operations": 56 * channels}
    amounts["copied_bytes"] = 16 * channels
    lines = records.of("gaussian", pixel=pixel, sigma=sigma, side=1024)
    return Need(f"`gaussianFilterRGBA`, `{pixel}`, sigma {sigma}", counted, amounts, lines, texels)


def bilateral_need(records: Records, radius: int) -> Need:
    amounts = {"float_operations": 8 * (2 * radius + 1) ** 2, "copied_bytes": 8}
    lines = records.of("bilateral", radius=radius, side=512)
    return Need(f"`BilateralFilter`, radius {radius}", "8 float operations a tap", amounts, lines, texels)


def normals_need(records: Records, side: int) -> Need:
    lines = records.of("normals", side=side)
    return Need(f"`Height2Normal`, side {side}", "4 bytes in, 12 out", {"copied_bytes": 16}, lines, texels)


def tone_need(records: Records, pixel: str) -> Need:
    size = 4 * CHANNELS[pixel]
    lines = records.of("tone", pixel=pixel, side=2048)
    amounts = {"copied_bytes": 2 * size}
    return Need(f"tone chain, `{pixel}`, side 2048", f"{size} bytes in and out", amounts, lines, texels)


def needs(records: Records) -> list[Need]:
    found = [
        *occlusion_needs(records),
        *(gaussian_need(records, pixel, sigma) for pixel in CHANNELS for sigma in (2, 32)),
        *(bilateral_need(records, radius) for radius in (2, 5, 10, 20)),
        *(normals_need(records, side) for side in (1024, 2048)),
        *(tone_need(records, pixel) for pixel in CHANNELS),
    ]
    return [need for need in found if need.lines]


LIMIT_NAMES = {
    "copied_bytes": ("copy, bytes read and written", 1e9, "GB/s"),
    "compares": ("16-bit comparisons of the occlusion's inner step", 1e9, "G/s"),
    "float_operations": ("float products and sums, each rounded", 1e9, "G/s"),
    "float_multiply_adds": ("fused float products and sums", 1e9, "G/s"),
    "double_multiply_adds": ("fused double products and sums", 1e9, "G/s"),
    "conversions": ("conversions between float and double", 1e9, "G/s"),
}


def limits_tables(records: Records) -> str:
    limits = records.of("limits")
    if not limits:
        return "Not measured."
    rates = limits[-1]["per_second"]
    first = table(
        [f"one processor, {limits[-1]['instructions']}", "at best"],
        [[text, f"{rates[key] / scale:.1f} {unit}"] for key, (text, scale, unit) in LIMIT_NAMES.items()],
    )
    rows = []
    for need in needs(records):
        limiting = max(need.amounts, key=lambda key: need.amounts[key] / rates[key])
        seconds = need.amounts[limiting] / rates[limiting]
        shares = [seconds * need.elements(line) / line["seconds"]["ours"] for line in need.lines]
        rows.append([need.name, need.counted, LIMIT_NAMES[limiting][0], f"{geometric_mean(shares):.0%}"])
    for kind, name in (("heights", "`BlendHeightMap`"), ("normals", "`BlendLayers`")):
        for line in records.of("blends"):
            share = line["seconds"][f"{kind}_copy"] / line["seconds"][f"{kind}_into_array"]
            counted = f"{line[kind[:-1] + '_bytes']} bytes, in and out together"
            title = f"{name} into an array, mode {line['mode']}"
            rows.append([title, counted, LIMIT_NAMES["copied_bytes"][0], f"{share:.0%}"])
    return first + "\n\n" + table(["operator", "needs, a texel", "limit", "of the limit"], rows)
