# SPDX-License-Identifier: MIT
"""BMP and icons: headers of all sizes, depths, masks, run lengths, and rows from the top."""

import io
import struct

import cv2
import numpy as np
from arrays import bytes_of, palette, spread, whole
from corpus import Corpus, netpbm
from PIL import Image

NONE, RUNS8, RUNS4, MASKS, JPEG, PNG, MASKS_ALPHA = range(7)


def rows_of(packed: list[bytes], top_first: bool) -> bytes:
    padded = [row + bytes(-len(row) % 4) for row in packed]
    return b"".join(padded if top_first else padded[::-1])


def header(
    size: int, width: int, height: int, bits: int, compression: int, data: int, colours: int, masks: list[int]
) -> bytes:
    if size == 12:
        return struct.pack("<IHHHH", 12, width, height, 1, bits)
    full = struct.pack("<IiiHHIIiiII", size, width, height, 1, bits, compression, data, 2835, 2835, colours, 0)
    if size == 40:
        return full + b"".join(struct.pack("<I", mask) for mask in masks)
    if size == 64:
        return full + bytes(24)
    rest = struct.pack("<IIII", *masks, *[0] * (4 - len(masks)))
    rest += b"BGRs" + bytes(size)  # sRGB, and what a version 5 says of profiles
    return (full + rest)[:size]


def bmp(
    data: bytes,
    size: tuple[int, int],
    bits: int,
    compression: int = NONE,
    header_size: int = 40,
    colours: np.ndarray | None = None,
    top_first: bool = False,
    masks: list[int] = [],
    gap: int = 0,
    used: int | None = None,
) -> bytes:
    width, height = size
    table = (
        b""
        if colours is None
        else b"".join(bytes(c[::-1].tolist()) + (b"" if header_size == 12 else b"\0") for c in colours)
    )
    used = used if used is not None else 0 if colours is None else len(colours)
    dib = header(header_size, width, -height if top_first else height, bits, compression, len(data), used, masks)
    at = 14 + len(dib) + len(table) + gap
    return b"BM" + struct.pack("<IHHI", at + len(data), 0, 0, at) + dib + table + bytes(gap) + data


def packed(numbers: np.ndarray, bits: int) -> list[bytes]:
    planes = (numbers[..., None] >> np.arange(bits - 1, -1, -1)) & 1
    return [np.packbits(row.reshape(-1).astype(np.uint8)).tobytes() for row in planes]


def words(picture: np.ndarray, shifts: list[int], size: int) -> list[bytes]:
    """Texels of size bytes, channel i shifted by shifts[i]."""
    numbers = sum(picture[..., i].astype(np.uint64) << np.uint64(shift) for i, shift in enumerate(shifts))
    return [b"".join(int(n).to_bytes(size, "little") for n in row) for row in numbers]


def runs8(numbers: np.ndarray) -> bytes:
    """Runs, stretches as they are, and a jump over zeros, from the bottom up."""
    result = b""
    for row in numbers[::-1]:
        at = 0
        while at < len(row):
            end = at + 1
            while end < len(row) and end - at < 255 and row[end] == row[at]:
                end += 1
            if row[at] == 0 and end - at > 2 and end < len(row):
                result += bytes([0, 2, end - at, 0])
            elif end - at == 1 and len(row) - at >= 5 and len(set(row[at : at + 5])) == 5:
                end = at + 5
                result += bytes([0, 5, *row[at:end], 0])
            else:
                result += bytes([end - at, row[at]])
            at = end
        result += b"\0\0"
    return result[:-2] + b"\0\1"


def runs4(numbers: np.ndarray) -> bytes:
    """Pairs that change, and stretches as they are."""
    result = b""
    for row in numbers[::-1]:
        at = 0
        while at < len(row):
            piece = [int(v) for v in row[at : at + 6]]
            if len(piece) == 6:
                pairs = [piece[i] << 4 | piece[i + 1] for i in (0, 2, 4)]
                result += bytes([0, 6, *pairs, 0])
            else:
                for i in range(0, len(piece), 2):
                    pair = piece[i : i + 2]
                    result += bytes([len(pair), pair[0] << 4 | pair[-1]])
            at += 6
        result += b"\0\0"
    return result + b"\0\1"


def add(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, *arguments, remark="", **options) -> None:
        corpus.take(f"bmp/{name}.bmp", bmp(*arguments, **options), "BMP", what, reference, remark=remark)

    size = (33, 21)
    rgb, rgba = bytes_of(*size, 3), bytes_of(*size, 4)
    blue_first = [row[:, ::-1].tobytes() for row in rgb]
    for bits in (1, 2, 4, 8):
        colours = palette(1 << bits)
        numbers = whole(*size, 1, (1 << bits) - 1)[..., 0]
        take(
            f"palette{bits}",
            f"palette, {bits} bit",
            colours[numbers],
            rows_of(packed(numbers, bits), False),
            size,
            bits,
            colours=colours,
        )
    few, of_few = palette(50), whole(*size, 1, 49)[..., 0]
    take(
        "palette_of_50",
        "palette of 50 colours, rows from the top",
        few[of_few],
        rows_of(packed(of_few, 8), True),
        size,
        8,
        colours=few,
        top_first=True,
    )
    full = palette(256)
    numbers = whole(*size, 1, 255)[..., 0]
    take(
        "palette_count_0",
        "palette whose length is told as 0",
        full[numbers],
        rows_of(packed(numbers, 8), False),
        size,
        8,
        colours=full,
        used=0,
    )
    greys = np.arange(256, dtype=np.uint8)[:, None].repeat(3, axis=1)
    take("grey", "palette of all greys", greys[numbers], rows_of(packed(numbers, 8), False), size, 8, colours=greys)
    take("rgb24", "24 bit", rgb, rows_of(blue_first, False), size, 24)
    take("rgb24_top_first", "24 bit, rows from the top", rgb, rows_of(blue_first, True), size, 24, top_first=True)
    take("gap", "a gap before the texels", rgb, rows_of(blue_first, False), size, 24, gap=10)
    for header_size, version in ((12, "OS/2 1"), (64, "OS/2 2"), (108, "version 4"), (124, "version 5")):
        take(
            f"header{header_size}",
            f"header of {version}",
            rgb,
            rows_of(blue_first, False),
            size,
            24,
            header_size=header_size,
        )
    take(
        "header12_palette",
        "header of OS/2 1, palette",
        full[numbers],
        rows_of(packed(numbers, 8), False),
        size,
        8,
        header_size=12,
        colours=full,
    )
    add_masks(take, size, rgb, rgba)
    small = whole(*size, 1, 15)[..., 0]
    small[2, 3:20] = 0
    take("runs8", "run lengths, 8 bit, with jumps", full[small], runs8(small), size, 8, RUNS8, colours=full)
    take("runs4", "run lengths, 4 bit", palette(16)[small], runs4(small), size, 4, RUNS4, colours=palette(16))
    bare = bmp(rows_of(blue_first, False), size, 24)[14:]
    corpus.take("bmp/bare.dib", bare, "BMP", "without the header of a file, .dib", rgb)
    add_of_programs(corpus, rgb, rgba)
    add_refused(corpus, rgb)


def add_masks(take, size: tuple[int, int], rgb: np.ndarray, rgba: np.ndarray) -> None:
    five = whole(*size, 3, 31)
    take(
        "five_bits", "16 bit: 5 bits a channel", spread(five, 31), rows_of(words(five, [10, 5, 0], 2), False), size, 16
    )
    odd = np.dstack([five[..., 0], whole(*size, 1, 63)[..., 0], five[..., 2]])
    reference = np.dstack([spread(odd[..., 0], 31), spread(odd[..., 1], 63), spread(odd[..., 2], 31)])
    take(
        "masks_565",
        "masks of 5, 6 and 5 bits",
        reference,
        rows_of(words(odd, [11, 5, 0], 2), False),
        size,
        16,
        MASKS,
        masks=[0xF800, 0x7E0, 0x1F],
    )
    ten = whole(*size, 3, 1023)
    take(
        "masks_10",
        "masks of 10 bits",
        spread(ten, 1023),
        rows_of(words(ten, [20, 10, 0], 4), False),
        size,
        32,
        MASKS,
        masks=[1023 << 20, 1023 << 10, 1023],
        header_size=56,
    )
    take(
        "masks_bgr",
        "masks in another order",
        rgb,
        rows_of(words(rgb, [0, 8, 16], 4), False),
        size,
        32,
        MASKS,
        masks=[255, 255 << 8, 255 << 16],
    )
    order = [0xFF << 16, 0xFF << 8, 0xFF, 0xFF << 24]
    data = rows_of(words(rgba, [16, 8, 0, 24], 4), False)
    take(
        "alpha_v4", "32 bit with a mask for alpha, version 4", rgba, data, size, 32, MASKS, header_size=108, masks=order
    )
    take(
        "alpha_v5", "32 bit with a mask for alpha, version 5", rgba, data, size, 32, MASKS, header_size=124, masks=order
    )
    take(
        "alpha_56",
        "32 bit with a mask for alpha, 56 bytes of header",
        rgba,
        data,
        size,
        32,
        MASKS,
        header_size=56,
        masks=order,
    )
    take(
        "alpha_unnamed",
        "32 bit, whose fourth byte has no name",
        rgba,
        data,
        size,
        32,
        remark="a fourth byte that tells texels apart is an alpha",
    )
    take("fourth_byte_0", "32 bit, whose fourth byte is 0", rgb, rows_of(words(rgb, [16, 8, 0], 4), False), size, 32)
    four = whole(*size, 4, 15)
    take(
        "masks_4444",
        "masks of 4 bits, with alpha",
        spread(four, 15),
        rows_of(words(four, [8, 4, 0, 12], 2), False),
        size,
        16,
        MASKS,
        header_size=56,
        masks=[0xF00, 0xF0, 0xF, 0xF000],
    )


def add_of_programs(corpus: Corpus, rgb: np.ndarray, rgba: np.ndarray) -> None:
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.lay("rgba.pam", netpbm(rgba))
    out = io.BytesIO()
    Image.fromarray(rgb).save(out, "BMP")
    corpus.take("bmp/pillow.bmp", out.getvalue(), "BMP", "24 bit", rgb, "Pillow")
    corpus.run("convert", "rgba.pam", "im.bmp")
    corpus.take("bmp/magick_rgba.bmp", corpus.made("im.bmp"), "BMP", "32 bit, version 5", rgba, "ImageMagick")
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgba.pam", "-pix_fmt", "bgra", "ff.bmp")
    corpus.take("bmp/ffmpeg_bgra.bmp", corpus.made("ff.bmp"), "BMP", "32 bit", rgba, "ffmpeg")
    corpus.take("bmp/opencv.bmp", cv2.imencode(".bmp", rgb[..., ::-1])[1].tobytes(), "BMP", "24 bit", rgb, "OpenCV")
    corpus.take("bmp/netpbm.bmp", corpus.run("ppmtobmp", "-bpp=24", "rgb.ppm"), "BMP", "24 bit", rgb, "netpbm")


def add_refused(corpus: Corpus, rgb: np.ndarray) -> None:
    def refuse(name: str, what: str, sentence: str, *arguments, **options) -> None:
        corpus.refuse(f"bmp/{name}.bmp", bmp(*arguments, **options), "BMP", what, sentence)

    for compression, kind in ((JPEG, "JPEG"), (PNG, "PNG")):
        data = cv2.imencode(f".{kind.lower()}", rgb)[1].tobytes()
        refuse(
            f"around_{kind.lower()}",
            f"around a {kind} picture",
            f"it is a BMP file around a {kind} picture",
            data,
            (33, 21),
            0,
            compression,
        )
    refuse("cmyk", "inks", "it is a BMP file of inks (CMYK)", bytes(33 * 21 * 4), (33, 21), 32, 11)
    refuse(
        "os2_huffman",
        "OS/2's Huffman codes",
        "it is a BMP file with a compression of OS/2",
        bytes(100),
        (33, 21),
        1,
        3,
        64,
    )
    one = bmp(bytes(33 * 4 * 21), (33, 21), 24)
    corpus.refuse(
        "bmp/array.bmp",
        b"BA" + struct.pack("<IIHH", 14, 0, 0, 0) + one,
        "BMP",
        "an array of pictures",
        "it is an OS/2 array of BMP pictures",
    )
