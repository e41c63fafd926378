# SPDX-License-Identifier: MIT
"""SGI, PCX, Sun raster, Softimage, Alias, icons: formats of workstations and of one page."""

import io
import struct

import numpy as np
from arrays import bytes_of, palette, shorts_of, spread, whole
from bmp_files import bmp, rows_of
from corpus import Corpus, netpbm
from PIL import Image


def sgi(array: np.ndarray, runs: bool) -> bytes:
    height, width, channels = array.shape
    size = array.dtype.itemsize
    header = struct.pack(">HBBHHHHII", 474, runs, size, 3 if channels > 1 else 2, width, height, channels, 0, 255)
    header = header.ljust(512, b"\0")
    rows = [array[y, :, c] for c in range(channels) for y in range(height - 1, -1, -1)]
    if not runs:
        return header + b"".join(row.astype(f">u{size}").tobytes() for row in rows)
    packed = []
    for row in rows:
        words, at = [], 0
        while at < len(row):
            end = at + 1
            while end < len(row) and end - at < 127 and row[end] == row[at]:
                end += 1
            if end - at > 1:
                words += [end - at, int(row[at])]
            else:
                words += [0x80 | 1, int(row[at])]
            at = end
        packed.append(np.array([*words, 0], f">u{size}").tobytes())
    at, starts = 512 + 8 * len(rows), []
    for row in packed:
        starts.append(at)
        at += len(row)
    table = struct.pack(f">{len(rows)}I", *starts) + struct.pack(f">{len(rows)}I", *map(len, packed))
    return header + table + b"".join(packed)


def add_sgi(corpus: Corpus) -> None:
    for array, name in (
        (bytes_of(13, 7, 1), "grey"), (bytes_of(13, 7, 2), "grey and alpha"), (bytes_of(13, 7, 3), "RGB"), (bytes_of(13, 7, 4), "RGBA"),
        (shorts_of(13, 7, 1), "grey, 16 bit"), (shorts_of(13, 7, 3), "RGB, 16 bit"), (shorts_of(13, 7, 4), "RGBA, 16 bit"),
    ):  # fmt: skip
        for runs in (False, True):
            file = f"sgi/{name.replace(' ', '_').replace(',', '').lower()}{'_runs' if runs else ''}.sgi"
            corpus.take(file, sgi(array, runs), "SGI", name + (", run lengths" if runs else ""), array)
    deep = shorts_of(33, 21, 3)
    corpus.lay("deep.ppm", netpbm(deep))
    corpus.run("convert", "deep.ppm", "im.sgi")
    corpus.take("sgi/magick.sgi", corpus.made("im.sgi"), "SGI", "RGB, 16 bit", deep, "ImageMagick")
    rgb = bytes_of(33, 21, 3)
    out = io.BytesIO()
    Image.fromarray(rgb).save(out, "SGI")
    corpus.take("sgi/pillow.rgb", out.getvalue(), "SGI", "RGB, called .rgb", rgb, "Pillow")
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb.ppm", "ff.sgi")
    corpus.take("sgi/ffmpeg.sgi", corpus.made("ff.sgi"), "SGI", "RGB, run lengths", rgb, "ffmpeg")
    old = bytearray(sgi(bytes_of(13, 7, 1), False))
    old[107] = 2
    corpus.refuse(
        "sgi/colour_map.sgi",
        bytes(old),
        "SGI",
        "a map of colours",
        "it is an SGI picture of an old kind, with a map of colours",
    )
    corpus.refuse(
        "sgi/five_channels.sgi",
        sgi(bytes_of(13, 7, 5), False),
        "SGI",
        "five channels",
        "it is an SGI picture of 5 channels",
    )


def pcx(
    planes: list[np.ndarray],
    bits: int,
    small: np.ndarray | None = None,
    large: np.ndarray | None = None,
    version: int = 5,
    grey: bool = False,
) -> bytes:
    """planes: the packed rows of each plane; all rows are of an even number of bytes."""
    height, row = planes[0].shape
    width = {1: 33, 2: 33, 4: 33, 8: 33}[bits]
    table = b"" if small is None else small.tobytes()
    header = struct.pack("<BBBBHHHHHH", 10, version, 1, bits, 0, 0, width - 1, height - 1, 72, 72) + table.ljust(
        48, b"\0"
    )
    header += struct.pack("<BBHH", 0, len(planes), row, 2 if grey else 1)
    data = b""
    for y in range(height):
        for plane in planes:
            line, at = plane[y], 0
            while at < row:
                end = at + 1
                while end < row and end - at < 63 and line[end] == line[at]:
                    end += 1
                data += bytes([0xC0 | end - at, line[at]]) if end - at > 1 or line[at] >= 0xC0 else bytes([line[at]])
                at = end
    return header.ljust(128, b"\0") + data + (b"" if large is None else b"\x0c" + large.tobytes())


def even(rows: np.ndarray) -> np.ndarray:
    return np.pad(rows, ((0, 0), (0, rows.shape[1] % 2)))


def add_pcx(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, data: bytes, maker: str = "own", remark: str = "") -> None:
        corpus.take(f"pcx/{name}.pcx", data, "PCX", what, reference, maker, remark=remark)

    rgb = bytes_of(33, 21, 3)
    take("rgb", "24 bit", rgb, pcx([even(rgb[..., c]) for c in range(3)], 8))
    large, numbers = palette(256), whole(33, 21, 1, 255)[..., 0]
    take("palette8", "palette, 8 bit", large[numbers], pcx([even(numbers.astype(np.uint8))], 8, large=large))
    grey = bytes_of(33, 21, 1)
    take("grey", "grey without a palette", grey, pcx([even(grey[..., 0])], 8, grey=True))
    colours = palette(16)
    for bits in (1, 2, 4):
        few = whole(33, 21, 1, (1 << bits) - 1)[..., 0]
        planes = (few[..., None] >> np.arange(bits - 1, -1, -1)) & 1
        packed = np.packbits(planes.reshape(21, -1).astype(np.uint8), axis=1)
        remark = "netpbm takes these two colours as well; Pillow and ffmpeg take black and white" if bits == 1 else ""
        data = pcx([even(packed)], bits, small=colours)
        take(f"palette{bits}", f"palette, {bits} bit", colours[few], data, remark=remark)
    sixteen = whole(33, 21, 1, 15)[..., 0]
    planes = [even(np.packbits(((sixteen >> i) & 1).astype(np.uint8), axis=1)) for i in range(4)]
    take("four_planes", "four planes of one bit", colours[sixteen], pcx(planes, 1, small=colours))
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.run("convert", "rgb.ppm", "im.pcx")
    take("magick", "24 bit", rgb, corpus.made("im.pcx"), "ImageMagick")
    out = io.BytesIO()
    Image.fromarray(rgb).save(out, "PCX")
    take("pillow", "24 bit", rgb, out.getvalue(), "Pillow")
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb.ppm", "-pix_fmt", "rgb24", "ff.pcx")
    take("ffmpeg", "24 bit", rgb, corpus.made("ff.pcx"), "ffmpeg")
    take("netpbm", "24 bit", rgb, corpus.run("ppmtopcx", "-24bit", "rgb.ppm"), "netpbm")
    page = pcx([even(rgb[..., c]) for c in range(3)], 8)
    book = struct.pack("<IIII", 0x3ADE68B1, 16, 16 + len(page), 0)
    corpus.take("pcx/book.dcx", book + page + page, "DCX", "two pages: the first", rgb)


def sun(rows: bytes, size: tuple[int, int], bits: int, kind: int, table: np.ndarray | None = None) -> bytes:
    colours = b"" if table is None else table.T.tobytes()
    if kind == 2:
        packed, at = b"", 0
        while at < len(rows):
            end = at + 1
            while end < len(rows) and end - at < 256 and rows[end] == rows[at]:
                end += 1
            if end - at > 2:
                packed += bytes([128, end - at - 1, rows[at]])
            else:
                packed += b"".join(b"\x80\0" if byte == 128 else bytes([byte]) for byte in rows[at:end])
            at = end
        rows = packed
    return (
        struct.pack(">IIIIIIII", 0x59A66A95, *size, bits, len(rows), kind, table is not None, len(colours))
        + colours
        + rows
    )


LONG_RUNS = ("rgb2", "palette2")


def add_sun(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, data: bytes, maker: str = "own") -> None:
        remark = "runs that go over the end of a row are lost to ImageMagick and Pillow" if name in LONG_RUNS else ""
        corpus.take(f"sun/{name}.ras", data, "Sun raster", what, reference, maker, remark=remark)

    size = (13, 7)
    rgb, grey = bytes_of(*size, 3), bytes_of(*size, 1)
    colours, numbers = palette(200), whole(*size, 1, 199)[..., 0].astype(np.uint8)
    blue_first = b"".join(row[:, ::-1].tobytes() + b"\0" for row in rgb)
    for kind, what in ((0, ", old"), (1, ""), (2, ", run lengths")):
        take(f"rgb{kind}", f"24 bit{what}", rgb, sun(blue_first, size, 24, kind))
        take(
            f"palette{kind}",
            f"palette{what}",
            colours[numbers],
            sun(b"".join(row.tobytes() + b"\0" for row in numbers), size, 8, kind, colours),
        )
    take("red_first", "24 bit, red first", rgb, sun(b"".join(row.tobytes() + b"\0" for row in rgb), size, 24, 3))
    four = np.concatenate([np.zeros((7, 13, 1), np.uint8), rgb[..., ::-1]], axis=2)
    take("rgb32", "32 bit", rgb, sun(four.tobytes(), size, 32, 1))
    alpha = bytes_of(*size, 4)
    take("rgba32", "32 bit, whose first byte is an alpha", alpha, sun(alpha[..., [3, 2, 1, 0]].tobytes(), size, 32, 1))
    take(
        "grey",
        "8 bit without a palette",
        grey,
        sun(b"".join(row.tobytes() + b"\0" for row in grey[..., 0]), size, 8, 1),
    )
    bits = whole(*size, 1, 1)
    take(
        "one_bit",
        "1 bit",
        spread(1 - bits, 1),
        sun(np.packbits(bits[..., 0].astype(np.uint8), axis=1).tobytes(), size, 1, 1),
    )
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.run("convert", "rgb.ppm", "sun:im.ras")
    take("magick", "24 bit", rgb, corpus.made("im.ras"), "ImageMagick")
    take("netpbm", "24 bit, run lengths", rgb, corpus.run("pnmtorast", "rgb.ppm"), "netpbm")
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb.ppm", "-f", "image2", "-c:v", "sunrast", "ff.ras")
    take("ffmpeg", "24 bit", rgb, corpus.made("ff.ras"), "ffmpeg")


def add_others(corpus: Corpus) -> None:
    rgb = bytes_of(13, 7, 3)
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.run(
        "ffmpeg",
        "-v",
        "error",
        "-y",
        "-i",
        "rgb.ppm",
        "-f",
        "image2",
        "-c:v",
        "alias_pix",
        "-pix_fmt",
        "bgr24",
        "ff.pix",
    )
    corpus.take("alias/ffmpeg.pix", corpus.made("ff.pix"), "Alias PIX", "24 bit", rgb, "ffmpeg")
    grey = bytes_of(13, 7, 1)
    corpus.lay("grey.pgm", netpbm(grey))
    corpus.run(
        "ffmpeg",
        "-v",
        "error",
        "-y",
        "-i",
        "grey.pgm",
        "-f",
        "image2",
        "-c:v",
        "alias_pix",
        "-pix_fmt",
        "gray",
        "ff.pix",
    )
    corpus.take("alias/ffmpeg_grey.pix", corpus.made("ff.pix"), "Alias PIX", "grey", grey, "ffmpeg")
    rgba = bytes_of(13, 7, 4)
    for packet, name in ((0, "bytes"), (2, "run lengths")):
        header = b"\x53\x80\xf6\x34" + bytes(84) + b"PICT" + struct.pack(">HHfHH", 13, 7, 1.0, 3, 0)
        header += bytes([1, 8, packet, 0xE0, 0, 8, packet, 0x10])
        data = b""
        for row in rgba:
            for part in (row[:, :3], row[:, 3:]):
                data += (bytes([len(row) - 1]) if packet else b"") + part.tobytes()
        corpus.take(
            f"softimage/{name.replace(' ', '_')}.pic", header + data, "Softimage", f"RGB and alpha, {name}", rgba
        )


def icon(pictures: list[tuple[tuple[int, int], int, bytes]], kind: int = 1) -> bytes:
    at, entries, data = 6 + 16 * len(pictures), b"", b""
    for (width, height), bits, picture in pictures:
        entries += struct.pack("<BBBBHHII", width % 256, height % 256, 0, 0, 1, bits, len(picture), at + len(data))
        data += picture
    return struct.pack("<HHH", 0, kind, len(pictures)) + entries + data


def of_icon(picture: bytes, mask: bytes) -> bytes:
    """A BMP without its file's header, of twice the height, with a mask behind it."""
    dib = bytearray(picture[14:])
    dib[8:12] = struct.pack("<i", 2 * struct.unpack("<i", dib[8:12])[0])
    return bytes(dib) + mask


def add_icons(corpus: Corpus) -> None:
    rgba, rgb = bytes_of(16, 12, 4), bytes_of(16, 12, 3)
    full = bmp(rows_of([row[:, [2, 1, 0, 3]].tobytes() for row in rgba], False), (16, 12), 32)
    corpus.take("ico/rgba.ico", icon([((16, 12), 32, of_icon(full, bytes(48)))]), "ICO", "32 bit with alpha", rgba)
    hidden = (np.indices((12, 16)).sum(axis=0) % 3 == 0).astype(np.uint8)
    mask = rows_of([row.tobytes() for row in np.packbits(hidden, axis=1)], False)
    plain = bmp(rows_of([row[:, ::-1].tobytes() for row in rgb], False), (16, 12), 24)
    with_mask = np.dstack([rgb, np.where(hidden, 0, 255).astype(np.uint8)])
    corpus.take(
        "ico/rgb_mask.ico", icon([((16, 12), 24, of_icon(plain, mask))]), "ICO", "24 bit with a mask", with_mask
    )
    colours, numbers = palette(16), whole(16, 12, 1, 15)[..., 0].astype(np.uint8)
    rows = rows_of([bytes(row[0::2] << 4 | row[1::2]) for row in numbers], False)
    few = bmp(rows, (16, 12), 4, colours=colours)
    reference = np.dstack([colours[numbers], with_mask[..., 3]])
    corpus.take("ico/palette4.ico", icon([((16, 12), 4, of_icon(few, mask))]), "ICO", "palette with a mask", reference)
    small = bmp(rows_of([bytes(16)] * 4, False), (4, 4), 32)
    both = icon([((4, 4), 32, of_icon(small, bytes(16))), ((16, 12), 24, of_icon(plain, mask))])
    corpus.take("ico/two_sizes.ico", both, "ICO", "two pictures: the larger", with_mask)
    corpus.take("ico/pointer.cur", icon([((16, 12), 24, of_icon(plain, mask))], 2), "ICO", "a pointer, .cur", with_mask)
    corpus.lay("rgba.pam", netpbm(bytes_of(16, 16, 4)))
    corpus.run("convert", "rgba.pam", "im.ico")
    corpus.take("ico/magick.ico", corpus.made("im.ico"), "ICO", "32 bit", bytes_of(16, 16, 4), "ImageMagick")
    out = io.BytesIO()
    Image.fromarray(bytes_of(16, 16, 4)).save(out, "ICO", sizes=[(16, 16)])
    corpus.refuse(
        "ico/pillow_png.ico",
        out.getvalue(),
        "ICO",
        "a PNG picture in it",
        "it is an icon that holds a PNG picture",
        "Pillow",
    )


def add(corpus: Corpus) -> None:
    for part in (add_sgi, add_pcx, add_sun, add_others, add_icons):
        part(corpus)
