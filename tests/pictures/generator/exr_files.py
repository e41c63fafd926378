# SPDX-License-Identifier: MIT
"""OpenEXR: every compression, rows and tiles, channels by name, windows, and what is refused."""

from pathlib import Path

import cv2
import numpy as np
from arrays import floats, halves, whole
from corpus import Corpus

LOSSLESS = ("none", "rle", "zips", "zip", "piz")
KINDS = {"float16": "half", "float32": "float", "uint32": "uint"}


class Maker:
    def __init__(self, corpus: Corpus):
        self.corpus = corpus
        source = Path(__file__).with_name("write_exr.cpp")
        flags = corpus.run("pkg-config", "--cflags", "--libs", "OpenEXR").decode().split()
        corpus.run("g++", "-std=c++20", "-o", "write_exr", source, *flags)

    def file(self, channels: dict[str, np.ndarray], *keys: str, size: tuple[int, int] | None = None) -> bytes:
        """Channels of one plane each."""
        words = []
        for i, (name, plane) in enumerate(channels.items()):
            self.corpus.lay(f"plane{i}", plane.tobytes())
            words.append(f"{name}:{KINDS[plane.dtype.name]}:plane{i}")
            height, width = plane.shape
        width, height = size or (width, height)
        self.corpus.run("./write_exr", "out.exr", width, height, *keys, *words)
        return self.corpus.made("out.exr")

    def take(
        self, name: str, what: str, reference: np.ndarray, channels: dict[str, np.ndarray], *keys: str, **rest
    ) -> None:
        self.corpus.take(f"exr/{name}.exr", self.file(channels, *keys), "OpenEXR", what, reference, "OpenEXR", **rest)

    def refuse(self, name: str, what: str, sentence: str, channels: dict[str, np.ndarray], *keys: str, **rest) -> None:
        size = rest.pop("size", None)
        self.corpus.refuse(
            f"exr/{name}.exr", self.file(channels, *keys, size=size), "OpenEXR", what, sentence, "OpenEXR", **rest
        )


def named(array: np.ndarray, names: str) -> dict[str, np.ndarray]:
    return {name: array[..., i] for i, name in enumerate(names)}


def add_compressions(make: Maker) -> None:
    rgb, grey, rgba = halves(33, 21, 3, -1, 4), floats(33, 21, 1, -3, 9), floats(33, 21, 4)
    for method in LOSSLESS:
        make.take(f"half_rgb_{method}", f"half, RGB, {method}", rgb, named(rgb, "RGB"), f"compression={method}")
        make.take(f"float_y_{method}", f"float, Y, {method}", grey, named(grey, "Y"), f"compression={method}")
        make.take(
            f"tiles_{method}",
            f"tiles, float, RGBA, {method}",
            rgba,
            named(rgba, "RGBA"),
            f"compression={method}",
            "kind=tiles",
        )
    mixed = {"R": rgb[..., 0], "G": rgba[..., 1], "B": rgb[..., 2]}
    in_floats = np.dstack([plane.astype(np.float32) for plane in mixed.values()])
    for method in (*LOSSLESS, "pxr24"):
        reference = in_floats.copy()
        if method == "pxr24":
            reference[..., 1] = short_floats(reference[..., 1])
        make.take(f"mixed_{method}", f"half and float channels, {method}", reference, mixed, f"compression={method}")
    make.take("half_rgb_pxr24", "half, RGB, pxr24", rgb, named(rgb, "RGB"), "compression=pxr24")
    make.take(
        "float_y_pxr24",
        "float, Y, pxr24",
        short_floats(grey),
        named(grey, "Y"),
        "compression=pxr24",
        remark="the method keeps 24 bits of a float",
    )
    make.take(
        "tiles_pxr24",
        "tiles, float, RGBA, pxr24",
        short_floats(rgba),
        named(rgba, "RGBA"),
        "compression=pxr24",
        "kind=tiles",
    )
    smooth = np.dstack(
        [cv2.GaussianBlur(plane.astype(np.float32), (0, 0), 2) for plane in np.moveaxis(rgb, 2, 0)]
    ).astype(np.float16)
    for method in ("b44", "b44a"):
        for kind in ("rows", "tiles"):
            data = make.file(named(smooth, "RGB"), f"compression={method}", f"kind={kind}")
            reference = decoded_by_opencv(data)
            make.corpus.take(
                f"exr/half_rgb_{method}_{kind}.exr",
                data,
                "OpenEXR",
                f"half, RGB, {method}, {kind}",
                reference.astype(np.float16),
                "OpenEXR",
                judge="OpenCV",
            )

    types = {"R": smooth[..., 0], "G": rgba[..., 1], "B": smooth[..., 2]}
    data = make.file(types, "compression=b44")
    make.corpus.take(
        "exr/mixed_b44.exr",
        data,
        "OpenEXR",
        "half and float channels, b44",
        decoded_by_opencv(data),
        "OpenEXR",
        judge="OpenCV",
    )
    for method in ("b44", "b44a"):
        numbers = whole(33, 21, 1, (1 << 32) - 1)[..., 0]
        make.take(
            f"uint_{method}",
            f"whole numbers, {method}",
            (numbers / 4294967295.0).astype(np.float32),
            {"Y": numbers},
            f"compression={method}",
        )
    column = halves(1, 35, 3)
    make.take(
        "column_b44",
        "one column, b44: chunks that are not compressed",
        column,
        named(column, "RGB"),
        "compression=b44",
        remark="OpenEXRCore 3.1.5 by itself decodes these chunks as if they were compressed",
    )


def short_floats(array: np.ndarray) -> np.ndarray:
    """What PXR24 keeps of a float: 24 bits, rounded."""
    bits = array.astype(np.float32).view(np.uint32)
    return ((bits + (bits & 0x80)) & 0xFFFFFF00).astype(np.uint32).view(np.float32)


def decoded_by_opencv(data: bytes) -> np.ndarray:
    decoded = cv2.imdecode(np.frombuffer(data, np.uint8), cv2.IMREAD_UNCHANGED)
    return decoded[..., ::-1] if decoded.ndim == 3 else decoded


def add_forms(make: Maker) -> None:
    rgba, y = halves(33, 21, 4), floats(33, 21, 2)
    make.take("y_and_a", "channels Y and A", y, named(y, "YA"), "compression=zip")
    make.take("xyz", "channels X, Y and Z: vectors", rgba[..., :3], named(rgba, "XYZ"))
    make.take("only_z", "one channel of another name", y[..., :1], {"Z": y[..., 0]})
    make.take("height_and_a", "one channel of another name, and A", y, {"height": y[..., 0], "A": y[..., 1]})
    make.take("lower_case", "channels r, g and b", rgba[..., :3], named(rgba, "rgb"))
    layer = {f"normal.{name}": plane for name, plane in named(rgba, "RGB").items()}
    make.take("layer", "one layer", rgba[..., :3], layer)
    make.take(
        "layer_xyz", "one layer of X, Y and Z", rgba[..., :3], {f"N.{n}": p for n, p in named(rgba, "XYZ").items()}
    )
    make.take(
        "more_channels",
        "R, G and B among others",
        rgba[..., :3],
        {**named(rgba, "RGB"), "Z": y[..., 0], "mask.A": y[..., 1]},
        "compression=piz",
    )
    numbers = whole(33, 21, 1, (1 << 32) - 1)[..., 0]
    make.take(
        "uint",
        "whole numbers of 32 bits",
        (numbers / 4294967295.0).astype(np.float32),
        {"Y": numbers},
        "compression=zip",
    )
    make.take(
        "uint_pxr24",
        "whole numbers, pxr24",
        (numbers / 4294967295.0).astype(np.float32),
        {"Y": numbers},
        "compression=pxr24",
    )
    for order in ("down", "any"):
        kind = "tiles" if order == "any" else "rows"
        make.take(
            f"order_{order}",
            f"rows written {order}",
            rgba,
            named(rgba, "RGBA"),
            f"order={order}",
            f"kind={kind}",
            "compression=zip",
        )
    make.take("mipmap", "tiles with smaller levels", rgba, named(rgba, "RGBA"), "kind=mipmap", "compression=zip")
    make.take("ripmap", "tiles with levels of all shapes", rgba, named(rgba, "RGBA"), "kind=ripmap", "compression=piz")
    make.take(
        "window_inside",
        "a data window inside the display window",
        rgba,
        named(rgba, "RGBA"),
        "x=5",
        "y=7",
        "shown=0,0,63,63",
    )
    make.take(
        "window_negative",
        "a data window from below 0",
        rgba,
        named(rgba, "RGBA"),
        "x=-9",
        "y=-4",
        "shown=0,0,15,15",
        "compression=zip",
    )
    make.take(
        "window_negative_tiles",
        "the same in tiles",
        rgba,
        named(rgba, "RGBA"),
        "x=-9",
        "y=-4",
        "shown=0,0,15,15",
        "kind=tiles",
    )
    odd = floats(13, 7, 1)
    odd[0, :4, 0] = [np.inf, -np.inf, np.nan, 1e-40]
    make.take("infinite", "infinite numbers and NaN", odd, named(odd, "Y"))
    one = halves(1, 1, 3)
    make.take("one_texel", "one texel", one, named(one, "RGB"), "compression=piz")
    data = cv2.imencode(".exr", floats(33, 21, 3)[..., ::-1])[1].tobytes()
    make.corpus.take("exr/opencv_float.exr", data, "OpenEXR", "float, RGB", floats(33, 21, 3), "OpenCV")
    make.corpus.lay("y.exr", make.file(named(y[..., :1], "Y")))
    make.corpus.run("exrmaketiled", "-z", "zip", "-m", "y.exr", "tiled.exr")
    make.corpus.take(
        "exr/exrmaketiled.exr",
        make.corpus.made("tiled.exr"),
        "OpenEXR",
        "float, Y, tiles of 64 x 64 with levels",
        y[..., :1],
        "exrmaketiled",
    )


def add_refused(make: Maker) -> None:
    rgb, y = halves(16, 12, 3), floats(16, 12, 1)
    for method in ("dwaa", "dwab"):
        make.refuse(
            f"half_{method}",
            f"{method} compression",
            "it is an OpenEXR picture compressed with DWA",
            named(rgb, "RGB"),
            f"compression={method}",
            remark="OpenEXRCore 3.1.5 has no decoder for it",
        )
    make.refuse("deep", "deep", "it is a deep OpenEXR picture", {"Z": y[..., 0]}, "kind=deep", "compression=zips")
    make.refuse("parts", "several parts", "it is an OpenEXR picture of several parts", named(rgb, "RGB"), "kind=parts")
    few = halves(8, 6, 2)
    chroma = {"RY": few[..., 0], "BY": few[..., 1]}
    make.refuse(
        "chroma",
        "luminance and chroma",
        "it is an OpenEXR picture of luminance and chroma",
        chroma,
        "sampling=2",
        size=(16, 12),
    )
    make.refuse(
        "sampled",
        "a channel of fewer texels",
        "it is an OpenEXR picture with channels of fewer texels",
        {"Y": few[..., 0]},
        "sampling=2",
        size=(16, 12),
    )
    two = {f"{layer}.{n}": p for layer in ("a", "b") for n, p in named(rgb, "RGB").items()}
    make.refuse("layers", "several layers", "it is an OpenEXR picture of several layers", two)
    make.refuse(
        "names",
        "channels without a meaning",
        "it is an OpenEXR picture with the channels u, v",
        {"u": rgb[..., 0], "v": rgb[..., 1]},
    )


def add(corpus: Corpus) -> None:
    make = Maker(corpus)
    add_compressions(make)
    add_forms(make)
    add_refused(make)
