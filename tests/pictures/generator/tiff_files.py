# SPDX-License-Identifier: MIT
"""TIFF: depths, kinds of numbers, layouts, orders of bytes, alpha, orientation and what is refused."""

import numpy as np
from arrays import bytes_of, divided_by_alpha, floats, halves, palette, shorts_of, spread, turned, whole, without_inks
from corpus import Corpus

from tiff_writer import (
    ASCII, BYTE, DEFLATE, FLOAT, GREY, GREY_WHITE_0, PACKBITS, PALETTE, RATIONAL, RGB, SEPARATED, SHORT, SIGNED, YCBCR,
    float_bits, tiff,
)  # fmt: skip

ASSOCIATED, STRAIGHT, UNNAMED = 1, 2, 0


class Maker:
    def __init__(self, corpus: Corpus):
        self.corpus = corpus

    def take(self, name: str, what: str, reference: np.ndarray, *arguments, tolerance=0, remark="", **options) -> None:
        data = tiff(*arguments, **options)
        self.corpus.take(f"tiff/{name}.tif", data, "TIFF", what, reference, tolerance=tolerance, remark=remark)

    def refuse(self, name: str, what: str, sentence: str, *arguments, **options) -> None:
        self.corpus.refuse(f"tiff/{name}.tif", tiff(*arguments, **options), "TIFF", what, sentence)


def add_depths(make: Maker) -> None:
    for bits in (1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 14, 16, 17, 20, 24, 31, 32):
        most = (1 << bits) - 1
        numbers = whole(13, 7, 1, most)
        make.take(f"grey{bits}", f"grey, {bits} bit", spread(numbers, most), numbers, bits)
    for bits in (4, 12, 24):
        most = (1 << bits) - 1
        numbers = whole(13, 7, 3, most)
        make.take(
            f"rgb{bits}_big_endian", f"RGB, {bits} bit, big-endian", spread(numbers, most), numbers, bits, RGB, ">"
        )
    for bits in (1, 4, 8, 16):
        most = (1 << bits) - 1
        numbers = whole(13, 7, 1, most)
        make.take(
            f"white_is_zero{bits}", f"white is 0, {bits} bit", spread(most - numbers, most), numbers, bits, GREY_WHITE_0
        )
    for bits in (8, 12, 16, 24, 32):
        most = (1 << (bits - 1)) - 1
        numbers = whole(13, 7, 1, 2 * most).astype(np.int64) - most
        reference = (numbers / float(most)).astype(np.float32)
        make.take(
            f"signed{bits}", f"signed, {bits} bit", reference, numbers & ((1 << bits) - 1), bits, sample_format=SIGNED
        )
    lowest = np.array([[[-128], [-127], [0], [127]]])
    make.take(
        "signed8_lowest",
        "signed, with the lowest number",
        (lowest / 127.0).astype(np.float32),
        lowest & 255,
        8,
        sample_format=SIGNED,
        remark="-128 is -128/127: numbers are not cut",
    )


def add_floats(make: Maker) -> None:
    grey, rgb = halves(13, 7, 1, -2, 3), halves(13, 7, 3, -1, 1)
    make.take("half_grey", "half, grey, beyond 0 to 1", grey, float_bits(grey, 16), 16, sample_format=FLOAT)
    make.take(
        "half_rgb_big_endian", "half, RGB, big-endian", rgb, float_bits(rgb, 16), 16, RGB, ">", sample_format=FLOAT
    )
    grey, rgba = floats(13, 7, 1, -100, 2000), floats(13, 7, 4)
    make.take("float_grey", "float, grey, beyond 0 to 1", grey, float_bits(grey, 32), 32, sample_format=FLOAT)
    make.take(
        "float_rgba",
        "float, RGB and straight alpha",
        rgba,
        float_bits(rgba, 32),
        32,
        RGB,
        extra=[STRAIGHT],
        sample_format=FLOAT,
    )
    make.take(
        "float_rgba_associated",
        "float, RGB and associated alpha",
        divided_by_alpha(rgba),
        float_bits(rgba, 32),
        32,
        RGB,
        extra=[ASSOCIATED],
        sample_format=FLOAT,
    )
    short = (float_bits(floats(13, 7, 1), 32) & 0xFFFFFF80).astype(np.uint32).view(np.float32)
    make.take("float24", "float of 24 bits", short, float_bits(short, 24), 24, sample_format=FLOAT)
    double = floats(13, 7, 1, -1, 1).astype(np.float64) / 3
    for order, name in (("<", "double"), (">", "double_big_endian")):
        make.take(
            name,
            f"{name.replace('_', ', ')}",
            double.astype(np.float32),
            float_bits(double, 64),
            64,
            order=order,
            sample_format=FLOAT,
        )
    odd = floats(13, 7, 1)
    odd[0, :4, 0] = [np.inf, -np.inf, 1e-40, -0.0]
    make.take(
        "float_infinite", "float, with infinite and tiny numbers", odd, float_bits(odd, 32), 32, sample_format=FLOAT
    )


def add_layouts(make: Maker) -> None:
    rgb = shorts_of(33, 21, 3)
    grey = shorts_of(33, 21, 1)
    make.take("strips_of_4_rows", "strips of 4 rows", rgb, rgb, 16, RGB, rows_per_strip=4)
    make.take("strips_planar", "strips, planar", rgb, rgb, 16, RGB, planar=True, rows_per_strip=5)
    make.take("tiles", "tiles of 16 x 32", rgb, rgb, 16, RGB, tile=(16, 32))
    make.take("tiles_planar", "tiles, planar", rgb, rgb, 16, RGB, planar=True, tile=(16, 16))
    make.take("tiles_large", "one tile, larger than the picture", grey, grey, 16, tile=(64, 48))
    one_bit = whole(33, 21, 1, 1)
    make.take("tiles_1_bit", "tiles, 1 bit", spread(one_bit, 1), one_bit, 1, tile=(16, 16))
    make.take("tiles_12_bit", "tiles, 12 bit, RGB", spread(rgb >> 4, 4095), rgb >> 4, 12, RGB, tile=(16, 16))
    make.take("big_endian", "16 bit, big-endian", rgb, rgb, 16, RGB, ">")
    make.take("bigtiff", "BigTIFF", rgb, rgb, 16, RGB, big=True)
    make.take("bigtiff_big_endian_tiles", "BigTIFF, big-endian, tiles", rgb, rgb, 16, RGB, ">", big=True, tile=(16, 16))
    make.take("lsb_first", "lowest bit first", spread(one_bit, 1), one_bit, 1, lsb_first=True)
    make.take(
        "packbits",
        "PackBits, 8 bit",
        bytes_of(33, 21, 3),
        bytes_of(33, 21, 3),
        8,
        RGB,
        compression=PACKBITS,
        rows_per_strip=4,
    )
    make.take(
        "deflate_tiles_big_endian",
        "Deflate, tiles, big-endian",
        rgb,
        rgb,
        16,
        RGB,
        ">",
        compression=DEFLATE,
        tile=(16, 16),
    )
    make.take("two_pages", "two pages: the first", rgb, rgb, 16, RGB, pages=2)
    make.take("one_texel", "one texel", rgb[:1, :1], rgb[:1, :1], 16, RGB)
    make.take("called_png", "called .png", grey, grey, 16)
    entry = make.corpus.entries.pop()
    path = make.corpus.root / "files" / entry.file
    path.rename(path.with_suffix(".png"))
    entry.file = "tiff/called_png.png"
    make.corpus.entries.append(entry)


def add_alpha(make: Maker) -> None:
    for name, extra in (("straight", STRAIGHT), ("associated", ASSOCIATED), ("unnamed", UNNAMED)):
        for array, bits in ((bytes_of(13, 7, 4), 8), (shorts_of(13, 7, 4), 16)):
            if extra == ASSOCIATED:
                array = np.concatenate([np.minimum(array[..., :3], array[..., 3:]), array[..., 3:]], 2)
            reference = divided_by_alpha(array) if extra == ASSOCIATED else array
            make.take(f"alpha_{name}{bits}", f"{name} alpha, {bits} bit", reference, array, bits, RGB, extra=[extra])
    array = shorts_of(13, 7, 2)
    make.take("grey_alpha_straight", "grey and straight alpha", array, array, 16, extra=[STRAIGHT])
    make.take(
        "grey_alpha_associated",
        "grey and associated alpha, planar",
        divided_by_alpha(array),
        array,
        16,
        planar=True,
        extra=[ASSOCIATED],
    )
    six = shorts_of(13, 7, 6)
    make.take(
        "extra_samples",
        "an extra sample before and behind the alpha",
        six[..., [0, 1, 2, 4]],
        six,
        16,
        RGB,
        extra=[UNNAMED, STRAIGHT, UNNAMED],
    )
    make.take(
        "extra_samples_planar",
        "the same, planar",
        six[..., [0, 1, 2, 4]],
        six,
        16,
        RGB,
        planar=True,
        extra=[UNNAMED, STRAIGHT, UNNAMED],
    )
    three = floats(13, 7, 3)
    make.take(
        "grey_three_samples",
        "grey of three samples: an array as RGB",
        three,
        float_bits(three, 32),
        32,
        sample_format=FLOAT,
        extra=[UNNAMED, UNNAMED],
    )
    rgba = bytes_of(13, 7, 4)
    software = {305: (ASCII, b"Developer's Image Library\0")}
    make.take(
        "alpha_marked_wrong",
        "alpha that DevIL marks as associated",
        rgba,
        rgba,
        8,
        RGB,
        extra=[ASSOCIATED],
        tags=software,
    )


def add_rest(make: Maker) -> None:
    rgb = bytes_of(13, 7, 3)
    for orientation in range(1, 9):
        make.take(
            f"orientation{orientation}",
            f"orientation {orientation}",
            turned(rgb, orientation),
            rgb,
            8,
            RGB,
            orientation=orientation,
        )
    deep = shorts_of(21, 9, 1)
    make.take(
        "orientation6_tiles", "orientation 6, 16 bit, tiles", turned(deep, 6), deep, 16, orientation=6, tile=(16, 16)
    )
    for bits in (1, 2, 4, 8, 16):
        colours = palette(1 << min(bits, 8))
        if bits == 16:
            colours = np.tile(colours, (256, 1))
        numbers = whole(13, 7, 1, (1 << bits) - 1)
        map16 = (SHORT, [int(v) * 257 for v in colours.T.reshape(-1)])
        if bits < 16:
            make.take(
                f"palette{bits}",
                f"palette, {bits} bit",
                colours[numbers[..., 0]],
                numbers,
                bits,
                PALETTE,
                tags={320: map16},
            )
    deep = shorts_of(16, 1, 3)[0]
    numbers = whole(13, 7, 1, 15)
    make.take(
        "palette_of_16_bit",
        "palette of 16-bit colours",
        deep[numbers[..., 0]],
        numbers,
        4,
        PALETTE,
        tags={320: (SHORT, [int(v) for v in deep.T.reshape(-1)])},
    )
    colours = palette(16)
    make.take(
        "palette_of_low_bytes",
        "palette that is written as 0 to 255",
        colours[numbers[..., 0]],
        numbers,
        4,
        PALETTE,
        tags={320: (SHORT, [int(v) for v in colours.T.reshape(-1)])},
    )
    for array, bits in ((bytes_of(13, 7, 4), 8), (shorts_of(13, 7, 4), 16)):
        make.take(f"cmyk{bits}", f"CMYK, {bits} bit", without_inks(array), array, bits, SEPARATED)
    five = bytes_of(13, 7, 5)
    make.take(
        "cmyk_alpha_planar",
        "CMYK and alpha, planar",
        without_inks(five),
        five,
        8,
        SEPARATED,
        planar=True,
        extra=[STRAIGHT],
    )
    make.take("profile", "with a colour profile", rgb, rgb, 8, RGB, tags={34675: (BYTE, bytes(40))})
    refuse = make.refuse
    refuse(
        "complex",
        "complex numbers",
        "it is a TIFF picture of complex numbers",
        floats(4, 4, 1).view(np.uint32).astype(np.uint64),
        64,
        sample_format=6,
    )
    refuse(
        "whole64",
        "whole numbers of 64 bits",
        "it is a TIFF picture of whole numbers with 64 bits",
        whole(4, 4, 1, 1000),
        64,
    )
    refuse("lab", "Lab colours", "it is a TIFF picture of Lab colours", rgb, 8, 8)
    refuse(
        "camera_raw", "a sensor's colours", "it is a TIFF picture of camera raw colours", shorts_of(13, 7, 1), 16, 32803
    )
    refuse(
        "mixed_depths",
        "channels of 5, 6 and 5 bits",
        "it is a TIFF picture with channels of different depths",
        rgb,
        8,
        RGB,
        tags={258: (SHORT, [5, 6, 5])},
    )
    refuse(
        "other_inks",
        "inks that are not CMYK",
        "it is a TIFF picture of inks that are not CMYK of 8 or 16 bits",
        bytes_of(13, 7, 4),
        8,
        SEPARATED,
        tags={332: (SHORT, [2])},
    )
    for method, name in ((34712, "JPEG 2000"), (50002, "JPEG XL")):
        refuse(
            f"method_{method}",
            f"{name} compression",
            f"it is a TIFF picture compressed with {name}",
            rgb,
            8,
            RGB,
            tags={259: (SHORT, [method])},
        )
    refuse(
        "method_60000",
        "an unknown compression",
        "it is a TIFF picture compressed with method 60000",
        rgb,
        8,
        RGB,
        tags={259: (SHORT, [60000])},
    )
    refuse(
        "ycbcr16",
        "YCbCr of 16 bits",
        "it is a TIFF picture of YCbCr colours with 16 bits",
        shorts_of(12, 8, 3),
        16,
        YCBCR,
    )


def add_ycbcr(make: Maker) -> None:
    """Rec. 601 in all of 0 to 255, as the tags say; blocks of 2 x 2 texels have one pair of differences."""
    full = {532: (RATIONAL, [0, 1, 255, 1, 128, 1, 255, 1, 128, 1, 255, 1]), 531: (SHORT, [1])}

    def colours(y: np.ndarray, cb: np.ndarray, cr: np.ndarray) -> np.ndarray:
        y, cb, cr = (plane.astype(float) for plane in (y, cb - 128.0, cr - 128.0))
        rgb = np.stack([y + 1.402 * cr, y - 0.344136 * cb - 0.714136 * cr, y + 1.772 * cb], axis=2)
        return np.clip(np.floor(rgb + 0.5), 0, 255).astype(np.uint8)

    y = bytes_of(12, 8, 1)[..., 0]
    differences = bytes_of(12, 8, 2, seed=2)
    all_three = np.dstack([y, differences])
    make.take(
        "ycbcr",
        "YCbCr, without compression",
        colours(y, differences[..., 0], differences[..., 1]),
        all_three,
        8,
        YCBCR,
        tags={**full, 530: (SHORT, [1, 1])},
        tolerance=1,
    )
    few = differences[::2, ::2]
    blocks = np.concatenate([y.reshape(4, 2, 6, 2).transpose(0, 2, 1, 3).reshape(4, 6, 4), few], axis=2)
    wide = few.repeat(2, axis=0).repeat(2, axis=1)
    make.take(
        "ycbcr_2x2",
        "YCbCr, differences of 2 x 2 texels",
        colours(y, wide[..., 0], wide[..., 1]),
        all_three,
        8,
        YCBCR,
        strip=blocks.tobytes(),
        tags={**full, 530: (SHORT, [2, 2])},
        tolerance=1,
    )


def add(corpus: Corpus) -> None:
    make = Maker(corpus)
    add_depths(make)
    add_floats(make)
    add_layouts(make)
    add_alpha(make)
    add_rest(make)
    add_ycbcr(make)
