# SPDX-License-Identifier: MIT
"""PNG: every colour type and depth, filters, interlace, transparency, and chunks that change no value."""

import io
import struct
import zlib

import cv2
import numpy as np
from arrays import bytes_of, palette, shorts_of, spread, whole
from corpus import Corpus, netpbm
from PIL import Image

GREY, RGB, PALETTE, GREY_ALPHA, RGB_ALPHA = 0, 2, 3, 4, 6
PASSES = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]


def chunk(kind: bytes, data: bytes) -> bytes:
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def packed_row(row: np.ndarray, bits: int) -> bytes:
    numbers = row.reshape(-1)
    if bits == 16:
        return numbers.astype(">u2").tobytes()
    if bits == 8:
        return numbers.astype(np.uint8).tobytes()
    planes = (numbers[:, None] >> np.arange(bits - 1, -1, -1)) & 1
    return np.packbits(planes.reshape(-1).astype(np.uint8)).tobytes()


def paeth(a: int, b: int, c: int) -> int:
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    return a if pa <= pb and pa <= pc else b if pb <= pc else c


def filtered(row: bytes, above: bytes, step: int, kind: int) -> bytes:
    result = bytearray([kind])
    for i, byte in enumerate(row):
        a = row[i - step] if i >= step else 0
        b = above[i]
        c = above[i - step] if i >= step else 0
        result.append((byte - (0, a, b, (a + b) // 2, paeth(a, b, c))[kind]) & 255)
    return bytes(result)


def rows_of(numbers: np.ndarray, bits: int, filters: list[int]) -> bytes:
    step = max(1, numbers.shape[2] * bits // 8)
    result, above = b"", None
    for y, row in enumerate(numbers):
        packed = packed_row(row, bits)
        above = above or bytes(len(packed))
        result += filtered(packed, above, step, filters[y % len(filters)])
        above = packed
    return result


def png(
    numbers: np.ndarray,
    bits: int,
    colour: int,
    filters: list[int] = [0],
    interlaced: bool = False,
    before: bytes = b"",
    level: int = 9,
    piece: int = 1 << 30,
) -> bytes:
    """numbers: rows from the top, channels last, as they are stored."""
    height, width, _ = numbers.shape
    rows = b""
    if interlaced:
        for left, top, right, down in PASSES:
            part = numbers[top::down, left::right]
            rows += rows_of(part, bits, filters) if part.size else b""
    else:
        rows = rows_of(numbers, bits, filters)
    data = zlib.compress(rows, level)
    header = struct.pack(">IIBBBBB", width, height, bits, colour, 0, 0, int(interlaced))
    pieces = b"".join(chunk(b"IDAT", data[i : i + piece]) for i in range(0, len(data), piece))
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + before + pieces + chunk(b"IEND", b"")


def add_own(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, *arguments, remark: str = "", **options) -> None:
        corpus.take(f"png/{name}.png", png(*arguments, **options), "PNG", what, reference, remark=remark)

    for bits in (1, 2, 4, 8, 16):
        numbers = whole(13, 7, 1, (1 << bits) - 1)
        take(f"grey{bits}", f"grey, {bits} bit", spread(numbers, (1 << bits) - 1), numbers, bits, GREY)
    for channels, colour, kind in ((2, GREY_ALPHA, "grey and alpha"), (3, RGB, "RGB"), (4, RGB_ALPHA, "RGB and alpha")):
        for array, bits in ((bytes_of(13, 7, channels), 8), (shorts_of(13, 7, channels), 16)):
            take(f"channels{channels}_{bits}", f"{kind}, {bits} bit", array, array, bits, colour, [0, 1, 2, 3, 4])
    for bits in (1, 2, 4, 8):
        colours = palette(min(1 << bits, 200))
        numbers = whole(33, 21, 1, len(colours) - 1)
        take(
            f"palette{bits}",
            f"palette, {bits} bit",
            colours[numbers[..., 0]],
            numbers,
            bits,
            PALETTE,
            before=chunk(b"PLTE", colours.tobytes()),
        )
    for name, numbers, bits, colour in (
        ("grey1", whole(33, 21, 1, 1), 1, GREY),
        ("grey16", shorts_of(33, 21, 1), 16, GREY),
        ("rgb8", bytes_of(5, 3, 3), 8, RGB),
        ("rgba16", shorts_of(16, 16, 4), 16, RGB_ALPHA),
        ("one_texel", bytes_of(1, 1, 3), 8, RGB),
    ):
        take(
            f"interlaced_{name}",
            f"interlaced, {name.replace('_', ' ')}",
            spread(numbers, (1 << bits) - 1),
            numbers,
            bits,
            colour,
            [4, 3, 2, 1],
            interlaced=True,
        )
    colours, numbers = palette(16), whole(13, 7, 1, 15)
    plte = chunk(b"PLTE", colours.tobytes())
    take(
        "interlaced_palette4",
        "interlaced palette",
        colours[numbers[..., 0]],
        numbers,
        4,
        PALETTE,
        interlaced=True,
        before=plte,
    )
    add_transparency(take)
    add_palette_with_alpha(take)
    rgb16 = shorts_of(16, 16, 3)
    for kind in range(5):
        take(f"filter{kind}", f"filter {kind} in all rows", rgb16, rgb16, 16, RGB, [kind])
    take("stored", "deflate without compression", rgb16, rgb16, 16, RGB, level=0)
    take("idat_of_7_bytes", "image data in chunks of 7 bytes", rgb16, rgb16, 16, RGB, piece=7)
    marks = chunk(b"gAMA", struct.pack(">I", 100000)) + chunk(b"sRGB", b"\0") + chunk(b"sBIT", b"\x0a\x0a\x0a")
    marks += chunk(b"bKGD", bytes(6)) + chunk(b"pHYs", struct.pack(">IIB", 1, 2, 1)) + chunk(b"tEXt", b"a\0b" * 99)
    take("chunks_without_effect", "gamma, sRGB, significant bits, text", rgb16, rgb16, 16, RGB, before=marks)
    profile = chunk(b"iCCP", b"x\0\0" + zlib.compress(bytes(200)))
    take("broken_profile", "a colour profile that is none", rgb16, rgb16, 16, RGB, before=profile)


def add_transparency(take) -> None:
    numbers = whole(13, 7, 1, 255)
    hidden = int(numbers[3, 0, 0])
    alpha = np.where(numbers == hidden, 0, 255)
    key = chunk(b"tRNS", struct.pack(">H", hidden))
    take(
        "grey8_key",
        "grey with a transparent number",
        np.concatenate([numbers, alpha], 2).astype(np.uint8),
        numbers,
        8,
        GREY,
        before=key,
    )
    four = whole(13, 7, 1, 3)
    alpha = np.where(four == 2, 0, 255)
    key = chunk(b"tRNS", struct.pack(">H", 2))
    take(
        "grey2_key",
        "2-bit grey with a transparent number",
        np.concatenate([four * 85, alpha], 2).astype(np.uint8),
        four,
        2,
        GREY,
        before=key,
    )
    for bits, dtype in ((8, np.uint8), (16, np.uint16)):
        rgb = whole(13, 7, 3, (1 << bits) - 1)
        hidden = [int(v) for v in rgb[3, 1]]
        alpha = np.where((rgb == hidden).all(axis=2, keepdims=True), 0, (1 << bits) - 1)
        key = chunk(b"tRNS", struct.pack(">HHH", *hidden))
        take(
            f"rgb{bits}_key",
            f"RGB of {bits} bit with a transparent colour",
            np.concatenate([rgb, alpha], 2).astype(dtype),
            rgb,
            bits,
            RGB,
            before=key,
        )


def add_palette_with_alpha(take) -> None:
    colours, numbers = palette(16), whole(13, 7, 1, 15)
    before = chunk(b"PLTE", colours.tobytes()) + chunk(b"tRNS", bytes(range(0, 160, 10)))
    remark = "the alpha of a palette is left out: its colours count as they are"
    take(
        "palette4_alpha",
        "palette with alpha",
        colours[numbers[..., 0]],
        numbers,
        4,
        PALETTE,
        before=before,
        remark=remark,
    )


def add_of_programs(corpus: Corpus) -> None:
    rgb16, rgba16, grey16, rgb8 = shorts_of(33, 21, 3), shorts_of(33, 21, 4), shorts_of(33, 21, 1), bytes_of(33, 21, 3)
    corpus.lay("rgb16.ppm", netpbm(rgb16))
    corpus.lay("rgba16.pam", netpbm(rgba16))
    corpus.lay("grey16.pgm", netpbm(grey16))
    out = io.BytesIO()
    Image.fromarray(grey16[..., 0]).save(out, "PNG")
    corpus.take("png/pillow_grey16.png", out.getvalue(), "PNG", "16-bit grey of Pillow", grey16, "Pillow")
    corpus.run("convert", "rgba16.pam", "-interlace", "PNG", "-define", "png:exclude-chunks=date,tIME", "im.png")
    corpus.take("png/magick_rgba16.png", corpus.made("im.png"), "PNG", "16-bit RGBA, interlaced", rgba16, "ImageMagick")
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb16.ppm", "-pix_fmt", "rgb48be", "ff.png")
    corpus.take("png/ffmpeg_rgb16.png", corpus.made("ff.png"), "PNG", "16-bit RGB", rgb16, "ffmpeg")
    corpus.take(
        "png/netpbm_rgb16.png",
        corpus.run("pnmtopng", "-interlace", "rgb16.ppm"),
        "PNG",
        "16-bit RGB, interlaced",
        rgb16,
        "netpbm",
    )
    data = cv2.imencode(".png", rgba16[..., [2, 1, 0, 3]])[1].tobytes()
    corpus.take("png/opencv_rgba16.png", data, "PNG", "16-bit RGBA", rgba16, "OpenCV")
    corpus.lay("rgb8.ppm", netpbm(rgb8))
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb8.ppm", "-f", "apng", "ff.apng")
    corpus.take("png/ffmpeg_animated.png", corpus.made("ff.apng"), "PNG", "APNG: its first picture", rgb8, "ffmpeg")
    corpus.take("png/called_jpg.jpg", png(rgb8, 8, RGB), "PNG", "called .jpg", rgb8)


def add(corpus: Corpus) -> None:
    add_own(corpus)
    add_of_programs(corpus)
