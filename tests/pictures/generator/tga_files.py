# SPDX-License-Identifier: MIT
"""TGA: depths, colour maps, run lengths, the four corners that rows may begin in."""

import struct

import numpy as np
from arrays import bytes_of, palette, spread, whole
from corpus import Corpus, netpbm

UPSIDE_DOWN = "ImageMagick 6.9.11 says that the bottom row is first and writes the top row; Pillow and ffmpeg show it upside down, too"
MAPPED, COLOUR, GREY, RUNS = 1, 2, 3, 8


def run_lengths(texels: list[bytes], crossing: int) -> bytes:
    """Packets, which go on over the end of a row where crossing is larger than its texels."""
    result = b""
    for start in range(0, len(texels), crossing):
        row, at = texels[start : start + crossing], 0
        while at < len(row):
            end = at + 1
            while end < len(row) and end - at < 128 and row[end] == row[at]:
                end += 1
            if end - at > 1:
                result += bytes([127 + end - at]) + row[at]
            else:
                while end < len(row) and end - at < 128 and row[end : end + 1] != row[end - 1 : end]:
                    end += 1
                end = max(at + 1, end - (1 if end < len(row) else 0))
                result += bytes([end - at - 1]) + b"".join(row[at:end])
            at = end
    return result


def tga(
    texels: list[bytes],
    size: tuple[int, int],
    kind: int,
    bits: int,
    descriptor: int = 0x20,
    colour_map: tuple[int, list[bytes], int] | None = None,
    comment: bytes = b"",
    footer: bool = False,
    crossing: int = 0,
) -> bytes:
    """texels: as stored, in the order of the file. colour_map: its first number, its entries and their bits."""
    width, height = size
    first, entries, entry_bits = colour_map or (0, [], 0)
    header = struct.pack(
        "<BBBHHBHHHHBB", len(comment), colour_map is not None, kind, first, len(entries), entry_bits, 0, 0, width, height, bits, descriptor
    )  # fmt: skip
    data = run_lengths(texels, crossing or width) if kind & RUNS else b"".join(texels)
    end = struct.pack("<II", 0, 0) + b"TRUEVISION-XFILE.\0" if footer else b""
    return header + comment + b"".join(entries) + data + end


def stored(picture: np.ndarray) -> list[bytes]:
    """Blue first."""
    order = {1: [0], 2: [0, 1], 3: [2, 1, 0], 4: [2, 1, 0, 3]}[picture.shape[2]]
    return [bytes(texel[order].tolist()) for texel in picture.reshape(-1, picture.shape[2])]


def words(picture: np.ndarray) -> list[bytes]:
    """5 bits a channel."""
    flat = picture.reshape(-1, 3)
    return [struct.pack("<H", int(r) << 10 | int(g) << 5 | int(b)) for r, g, b in flat]


def add(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, *arguments, maker="own", remark="", **options) -> None:
        corpus.take(f"tga/{name}.tga", tga(*arguments, **options), "TGA", what, reference, maker, remark=remark)

    size = (33, 21)
    grey, rgb, rgba, five = bytes_of(*size, 1), bytes_of(*size, 3), bytes_of(*size, 4), whole(*size, 3, 31)
    grey_alpha = bytes_of(*size, 2)
    for runs, name in ((0, ""), (RUNS, "_runs")):
        what = ", run lengths" if runs else ""
        take(f"grey{name}", f"grey{what}", grey, stored(grey), size, GREY | runs, 8)
        take(f"grey_alpha{name}", f"grey and alpha{what}", grey_alpha, stored(grey_alpha), size, GREY | runs, 16, 0x28)
        take(f"rgb{name}", f"RGB{what}", rgb, stored(rgb), size, COLOUR | runs, 24)
        take(f"rgba{name}", f"RGBA{what}", rgba, stored(rgba), size, COLOUR | runs, 32, 0x28)
        take(f"five_bits{name}", f"5 bits a channel{what}", spread(five, 31), words(five), size, COLOUR | runs, 16)
        colours = palette(200)
        numbers = whole(*size, 1, 199)[..., 0]
        entries = [bytes(c[::-1].tolist()) for c in colours]
        texels = [bytes([n]) for n in numbers.reshape(-1)]
        take(
            f"map{name}",
            f"colour map of 24 bit{what}",
            colours[numbers],
            texels,
            size,
            MAPPED | runs,
            8,
            colour_map=(0, entries, 24),
        )
    take("five_bits_15", "5 bits a channel, called 15 bit", spread(five, 31), words(five), size, COLOUR, 15)
    shifted = [bytes([n + 40]) for n in numbers.reshape(-1)]
    take(
        "map_from_40",
        "colour map that begins with number 40",
        colours[numbers],
        shifted,
        size,
        MAPPED,
        8,
        colour_map=(40, entries, 24),
    )
    words_map = whole(200, 1, 3, 31)
    take(
        "map_of_16_bit",
        "colour map of 16 bit",
        spread(words_map, 31)[0][numbers],
        texels,
        size,
        MAPPED,
        8,
        colour_map=(0, words(words_map), 16),
    )
    take(
        "map_of_15_bit",
        "colour map of 15 bit",
        spread(words_map, 31)[0][numbers],
        texels,
        size,
        MAPPED | RUNS,
        8,
        colour_map=(0, words(words_map), 15),
    )
    with_alpha = [entry + b"\x80" for entry in entries]
    take(
        "map_of_32_bit",
        "colour map of 32 bit",
        colours[numbers],
        texels,
        size,
        MAPPED,
        8,
        colour_map=(0, with_alpha, 32),
        remark="the alpha of a palette is left out",
    )
    many = palette(256).repeat(2, axis=0)
    many[:, 1] = np.arange(512) // 2
    many[:, 2] = np.arange(512) % 256
    wide = whole(*size, 1, 511)[..., 0]
    take(
        "map_16_bit_numbers",
        "numbers of 16 bit",
        many[wide],
        [struct.pack("<H", int(n) + 300) for n in wide.reshape(-1)],
        size,
        MAPPED,
        16,
        colour_map=(300, [bytes(c[::-1].tolist()) for c in many], 24),
    )
    take(
        "unused_map", "RGB with a colour map of no use", rgb, stored(rgb), size, COLOUR, 24, colour_map=(0, entries, 24)
    )
    for descriptor, name, view in (
        (0x00, "bottom_left", rgb[::-1]),
        (0x10, "bottom_right", rgb[::-1, ::-1]),
        (0x20, "top_left", rgb),
        (0x30, "top_right", rgb[:, ::-1]),
    ):
        take(name, f"from the {name.replace('_', ' ')}", view, stored(rgb), size, COLOUR, 24, descriptor)
    take(
        "bottom_right_map_runs",
        "from the bottom right, colour map, run lengths",
        colours[numbers][::-1, ::-1],
        texels,
        size,
        MAPPED | RUNS,
        8,
        0x10,
        colour_map=(0, entries, 24),
    )
    take("comment", "a comment of 255 bytes", rgb, stored(rgb), size, COLOUR, 24, comment=bytes(range(255)))
    take("footer", "with a footer", rgb, stored(rgb), size, COLOUR, 24, footer=True)
    take("runs_over_rows", "runs over the ends of rows", rgb, stored(rgb), size, COLOUR | RUNS, 24, crossing=1 << 20)
    take(
        "alpha_unnamed",
        "32 bit without bits of alpha in its descriptor",
        rgba,
        stored(rgba),
        size,
        COLOUR,
        32,
        0x20,
        remark="its fourth byte is taken as an alpha, whatever the descriptor says",
    )
    corpus.take("tga/without_name.bin", tga(stored(rgb), size, COLOUR, 24), "TGA", "without a name that tells", rgb)
    add_of_programs(corpus, rgb, rgba, grey)
    sentence = "it is a TGA picture with Huffman codes"
    corpus.refuse("tga/huffman.tga", tga(stored(rgb), size, 32, 24), "TGA", "Huffman codes", sentence)
    one_bit = tga([bytes(5)] * 21, size, GREY, 1)
    corpus.refuse("tga/one_bit.tga", one_bit, "TGA", "one bit a texel", "it is a TGA picture of one bit a texel")


def add_of_programs(corpus: Corpus, rgb: np.ndarray, rgba: np.ndarray, grey: np.ndarray) -> None:
    corpus.lay("rgba.pam", netpbm(rgba))
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.lay("grey.pgm", netpbm(grey))
    corpus.run("convert", "rgba.pam", "-compress", "RLE", "im.tga")
    corpus.take(
        "tga/magick_rgba.tga",
        corpus.made("im.tga"),
        "TGA",
        "RGBA, run lengths",
        rgba[::-1],
        "ImageMagick",
        remark=UPSIDE_DOWN,
    )
    corpus.run("convert", "grey.pgm", "-compress", "None", "im.tga")
    corpus.take(
        "tga/magick_grey.tga", corpus.made("im.tga"), "TGA", "grey", grey[::-1], "ImageMagick", remark=UPSIDE_DOWN
    )
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb.ppm", "-pix_fmt", "bgr24", "ff.tga")
    corpus.take("tga/ffmpeg_rgb.tga", corpus.made("ff.tga"), "TGA", "RGB, run lengths", rgb, "ffmpeg")
    corpus.run("sh", "-c", "pamtotga -rgb rgb.ppm > netpbm.tga")
    corpus.take("tga/netpbm_rgb.tga", corpus.made("netpbm.tga"), "TGA", "RGB, run lengths", rgb, "netpbm")
