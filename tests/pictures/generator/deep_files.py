# SPDX-License-Identifier: MIT
"""Radiance HDR, raw heights, PSD, VTF and FITS."""

import struct

import cv2
import numpy as np
from arrays import bytes_of, floats, palette, shorts_of, spread, whole, without_inks
from block_texels import picture
from corpus import Corpus, netpbm
from dds_files import blocks_of, words
from tiff_writer import pack_bits


def rgbe(array: np.ndarray) -> np.ndarray:
    """Bytes of three mantissas and an exponent."""
    top = array.max(axis=2)
    mantissa, exponent = np.frexp(top)
    scale = np.where(top > 1e-32, mantissa * 256 / np.maximum(top, 1e-38), 0)
    result = np.zeros((*top.shape, 4), np.uint8)
    result[..., :3] = np.minimum(array * scale[..., None], 255)
    result[..., 3] = np.where(top > 1e-32, exponent + 128, 0)
    return result


def of_rgbe(texels: np.ndarray) -> np.ndarray:
    exponent = texels[..., 3].astype(np.int32)
    values = np.ldexp(texels[..., :3].astype(np.float64), (exponent - 136)[..., None])
    return np.where(exponent[..., None] == 0, 0, values).astype(np.float32)


def newer_runs(row: np.ndarray) -> bytes:
    result = bytes([2, 2, len(row) >> 8, len(row) & 255])
    for c in range(4):
        line, at = row[:, c], 0
        while at < len(line):
            end = at + 1
            while end < len(line) and end - at < 127 and line[end] == line[at]:
                end += 1
            result += bytes([128 + end - at, line[at]]) if end - at > 1 else bytes([1, line[at]])
            at = end
    return result


def older_runs(row: np.ndarray) -> bytes:
    result, at = b"", 0
    while at < len(row):
        end = at + 1
        while end < len(row) and end - at < 200 and (row[end] == row[at]).all():
            end += 1
        result += row[at].tobytes() + (bytes([1, 1, 1, end - at - 1]) if end - at > 1 else b"")
        at = end
    return result


def add_hdr(corpus: Corpus) -> None:
    def take(
        name: str,
        what: str,
        reference: np.ndarray,
        lines: list[bytes],
        size: str,
        head: str = "",
        maker="own",
        remark="",
    ) -> None:
        data = f"#?RADIANCE\n{head}FORMAT=32-bit_rle_rgbe\n\n{size}\n".encode() + b"".join(lines)
        corpus.take(f"hdr/{name}.hdr", data, "Radiance HDR", what, reference, maker, remark=remark)

    unit = rgbe(floats(33, 21, 3))
    take("unit", "values of 0 to 1", of_rgbe(unit), [newer_runs(row) for row in unit], "-Y 21 +X 33")
    texels = rgbe(floats(33, 21, 3, 0, 40))
    texels[4, 3:20] = texels[4, 3]
    texels[6, 2] = 0
    array = of_rgbe(texels)
    flat = [row.tobytes() for row in texels]
    newer = [newer_runs(row) for row in texels]
    take("flat", "without run lengths", array, flat, "-Y 21 +X 33")
    take("newer", "run lengths of the newer kind", array, newer, "-Y 21 +X 33")
    take("older", "run lengths of the older kind", array, [older_runs(row) for row in texels], "-Y 21 +X 33")
    take("bottom_first", "rows from the bottom", array[::-1], newer, "+Y 21 +X 33")
    take("right_first", "texels from the right", array[:, ::-1], newer, "-Y 21 -X 33")
    take(
        "columns",
        "columns",
        array.transpose(1, 0, 2),
        newer,
        "+X 21 -Y 33",
        remark="columns from the left, each from the top",
    )
    take(
        "exposure",
        "with an exposure and gamma",
        array,
        newer,
        "-Y 21 +X 33",
        "EXPOSURE=2.5\nGAMMA=2.2\n",
        remark="both change no value",
    )
    narrow = texels[:, :5]
    take("narrow", "rows too short for run lengths", array[:, :5], [row.tobytes() for row in narrow], "-Y 21 +X 5")
    data = cv2.imencode(".hdr", floats(33, 21, 3, 0, 40)[..., ::-1])[1].tobytes()
    decoded = cv2.imdecode(np.frombuffer(data, np.uint8), cv2.IMREAD_UNCHANGED)[..., ::-1]
    corpus.take("hdr/opencv.hdr", data, "Radiance HDR", "of OpenCV", decoded, "OpenCV", judge="OpenCV")
    xyz = b"#?RADIANCE\nFORMAT=32-bit_rle_xyze\n\n-Y 21 +X 33\n" + b"".join(newer)
    corpus.refuse("hdr/xyz.hdr", xyz, "Radiance HDR", "XYZ colours", "it is a Radiance picture of XYZ colours")


def add_raw(corpus: Corpus) -> None:
    heights = shorts_of(17, 17, 1)
    corpus.take("raw/heights.r16", heights.tobytes(), "R16", "a square of 16-bit numbers", heights)
    signature = heights.copy()
    signature[0, :2, 0] = [0x4D42, 0x0A50]
    corpus.take("raw/like_a_bmp.r16", signature.tobytes(), "R16", "heights that begin as a BMP does", signature)
    deep = floats(17, 17, 1, -20, 3000)
    corpus.take("raw/heights.r32", deep.tobytes(), "R32", "a square of floats", deep)
    corpus.refuse(
        "raw/no_square.r16",
        heights.tobytes()[:-2],
        "R16",
        "no square",
        "its 576 bytes are no square of numbers of 16 bits",
    )
    corpus.refuse(
        "raw/no_square.r32", deep.tobytes()[:-3], "R32", "no square", "its 1153 bytes are no square of floats"
    )


def psd(planes: np.ndarray, mode: int, bits: int, runs: bool, table: bytes = b"", large: bool = False) -> bytes:
    """planes: channels first, as they are stored."""
    channels, height, width = planes.shape
    if bits == 1:
        width = 13
    head = b"8BPS" + struct.pack(">HxxxxxxHIIHH", 2 if large else 1, channels, height, width, bits, mode)
    head += struct.pack(">I", len(table)) + table + struct.pack(">I", 6) + b"8BIM\0\0"
    head += struct.pack(">Q" if large else ">I", 0)
    rows = [row.astype(row.dtype.newbyteorder(">")).tobytes() for plane in planes for row in plane]
    if not runs:
        return head + b"\0\0" + b"".join(rows)
    packed = [pack_bits(row) for row in rows]
    sizes = struct.pack(f">{len(packed)}{'I' if large else 'H'}", *map(len, packed))
    return head + b"\0\1" + sizes + b"".join(packed)


def add_psd(corpus: Corpus) -> None:
    def take(
        name: str,
        what: str,
        reference: np.ndarray,
        planes: np.ndarray,
        mode: int,
        bits: int,
        runs: bool = False,
        remark: str = "",
        **rest,
    ) -> None:
        large = rest.get("large", False)
        data = psd(planes, mode, bits, runs, **rest)
        corpus.take(
            f"psd/{name}.{'psb' if large else 'psd'}", data, "PSB" if large else "PSD", what, reference, remark=remark
        )

    for runs, what in ((False, ""), (True, ", run lengths")):
        for array, bits in ((bytes_of(13, 7, 3), 8), (shorts_of(13, 7, 3), 16), (floats(13, 7, 3, -1, 4), 32)):
            take(
                f"rgb{bits}{'_runs' if runs else ''}",
                f"RGB, {bits} bit{what}",
                array,
                np.moveaxis(array, 2, 0),
                3,
                bits,
                runs,
            )
    for array, bits in ((bytes_of(13, 7, 4), 8), (shorts_of(13, 7, 4), 16)):
        take(f"rgba{bits}", f"RGB and a channel more, {bits} bit", array, np.moveaxis(array, 2, 0), 3, bits)
        full = 255 if bits == 8 else 65535
        take(f"cmyk{bits}", f"CMYK, {bits} bit", without_inks(full - array), np.moveaxis(array, 2, 0), 4, bits, True)
        grey = array[..., :1]
        take(f"grey{bits}", f"grey, {bits} bit", grey, np.moveaxis(grey, 2, 0), 1, bits, True)
    five = bytes_of(13, 7, 5)
    inverse = five.copy()
    inverse[..., :4] = 255 - inverse[..., :4]
    take("cmyk_alpha", "CMYK and a channel more", without_inks(inverse), np.moveaxis(five, 2, 0), 4, 8)
    pair = shorts_of(13, 7, 2)
    take("grey_alpha", "grey and a channel more, 16 bit", pair, np.moveaxis(pair, 2, 0), 1, 16)
    colours, numbers = palette(256), whole(13, 7, 1, 255)[..., 0].astype(np.uint8)
    take("palette", "palette", colours[numbers], numbers[None], 2, 8, table=colours.T.tobytes())
    bits = whole(13, 7, 1, 1)
    packed = np.packbits(bits[..., 0].astype(np.uint8), axis=1)
    take("one_bit", "1 bit", spread(1 - bits, 1), packed[None], 0, 1)
    grey = bytes_of(13, 7, 1)
    take("duotone", "duotone: taken as grey", grey, np.moveaxis(grey, 2, 0), 8, 8, table=bytes(100))
    deep = shorts_of(13, 7, 3)
    for runs in (False, True):
        take(
            f"large{'_runs' if runs else ''}",
            f"RGB, 16 bit{', run lengths' if runs else ''}",
            deep,
            np.moveaxis(deep, 2, 0),
            3,
            16,
            runs,
            large=True,
        )
    corpus.lay("deep.ppm", netpbm(shorts_of(33, 21, 3)))
    corpus.run("convert", "deep.ppm", "im.psd")
    corpus.take("psd/magick.psd", corpus.made("im.psd"), "PSD", "RGB, 16 bit", shorts_of(33, 21, 3), "ImageMagick")
    lab = psd(np.moveaxis(bytes_of(13, 7, 3), 2, 0), 9, 8, False)
    corpus.refuse("psd/lab.psd", lab, "PSD", "Lab colours", "it is a Photoshop picture of Lab colours")
    spots = psd(np.moveaxis(bytes_of(13, 7, 3), 2, 0), 7, 8, False)
    corpus.refuse(
        "psd/channels.psd",
        spots,
        "PSD",
        "channels without colours",
        "it is a Photoshop picture of channels without colours",
    )


def vtf(
    data: bytes,
    size: tuple[int, int],
    form: int,
    version: int = 2,
    flags: int = 0,
    frames: int = 1,
    levels: int = 1,
    small: bytes = b"",
) -> bytes:
    header_size = 64 if version == 1 else 80 if version == 2 else 96 if small else 88
    low = 13 if small else 0xFFFFFFFF
    head = b"VTF\0" + struct.pack("<III", 7, version, header_size) + struct.pack("<HHIHHxxxx", *size, flags, frames, 0)
    head += struct.pack("<fffxxxxfIBIBB", 0, 0, 0, 1, form, levels, low, 4 if small else 0, 4 if small else 0)
    head += struct.pack("<H", 1) if version >= 2 else b""
    if version >= 3:
        parts = ([(1, header_size)] if small else []) + [(0x30, header_size + len(small))]
        head = head.ljust(68, b"\0") + struct.pack("<I", len(parts)) + bytes(8)
        head += b"".join(struct.pack("<II", name, place) for name, place in parts)
    return head.ljust(header_size, b"\0") + small + data


def add_vtf(corpus: Corpus) -> None:
    size = (16, 8)
    rgba = bytes_of(*size, 4)
    bgr = [16, 8, 0]
    for form, name, reference, data in (
        (0, "RGBA8888", rgba, rgba.tobytes()),
        (1, "ABGR8888", rgba, words(rgba, [24, 16, 8, 0], 4)),
        (2, "RGB888", rgba[..., :3], rgba[..., :3].tobytes()),
        (3, "BGR888", rgba[..., :3], words(rgba[..., :3], bgr, 3)),
        (5, "I8", rgba[..., :1], rgba[..., :1].tobytes()),
        (6, "IA88", rgba[..., :2], rgba[..., :2].tobytes()),
        (8, "A8: taken as grey", rgba[..., :1], rgba[..., :1].tobytes()),
        (12, "BGRA8888", rgba, words(rgba, [*bgr, 24], 4)),
        (16, "BGRX8888", rgba[..., :3], words(rgba[..., :3], bgr, 4)),
        (24, "half RGBA", floats(*size, 4).astype(np.float16), floats(*size, 4).astype(np.float16).tobytes()),
        (25, "16-bit RGBA", shorts_of(*size, 4), shorts_of(*size, 4).tobytes()),
        (13, "DXT1", None, blocks_of("bc1", size)),
        (14, "DXT3", None, blocks_of("bc2", size)),
        (15, "DXT5", None, blocks_of("bc3", size)),
    ):
        if reference is None:
            reference = picture(data, *size, {13: "bc1", 14: "bc2", 15: "bc3"}[form])
        corpus.take(f"vtf/form{form}.vtf", vtf(data, size, form), "VTF", name, reference)
    for version in (1, 2, 3, 5):
        small = blocks_of("bc1", (4, 4), 3)
        levels = bytes(4 * 2 * 4) + bytes(8 * 4 * 4) + rgba.tobytes()
        data = vtf(levels, size, 0, version, small=small, levels=3)
        corpus.take(
            f"vtf/version7{version}.vtf", data, "VTF", f"version 7.{version}, a small picture, smaller levels", rgba
        )
    cube = vtf(rgba.tobytes() + bytes(5 * rgba.size), size, 0, flags=0x4000)
    corpus.take("vtf/cube.vtf", cube, "VTF", "a cube: its first face", rgba)
    frames = vtf(rgba.tobytes() + bytes(rgba.size), size, 0, frames=2)
    corpus.take("vtf/frames.vtf", frames, "VTF", "two frames: the first", rgba)
    corpus.refuse(
        "vtf/uvlx.vtf", vtf(rgba.tobytes(), size, 26), "VTF", "vectors of 8 bits", "it is a VTF file of the format 26"
    )


def fits(array: np.ndarray, bits: int, cards: dict[str, float] = {}) -> bytes:
    """array: channels first, rows from the bottom, as stored."""
    axes = {f"NAXIS{i + 1}": n for i, n in enumerate(array.shape[::-1])}
    lines = {"SIMPLE": "T", "BITPIX": bits, "NAXIS": array.ndim, **axes, **cards}
    head = "".join(f"{name:<8}= {value:>20}".ljust(80) for name, value in lines.items()) + "END".ljust(80)
    data = array.astype(array.dtype.newbyteorder(">")).tobytes()
    return head.ljust(-(-len(head) // 2880) * 2880).encode() + data + bytes(-len(data) % 2880)


def add_fits(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, *arguments, **options) -> None:
        corpus.take(f"fits/{name}.fits", fits(*arguments, **options), "FITS", what, reference[::-1])

    grey, deep = bytes_of(13, 7, 1)[..., 0], shorts_of(13, 7, 1)[..., 0]
    take("bytes", "8 bit", grey, grey, 8)
    take(
        "shorts", "16 bit without a sign", deep, (deep.astype(np.int32) - 32768).astype(np.int16), 16, {"BZERO": 32768}
    )
    signed = (deep.astype(np.int32) - 32768).astype(np.int16)
    take("signed", "16 bit, signed", (signed / 32767.0).astype(np.float32), signed, 16)
    scaled = (signed * 0.25 + 100).astype(np.float32)
    take("scaled", "16 bit, scaled", scaled, signed, 16, {"BZERO": 100, "BSCALE": 0.25})
    large = (whole(13, 7, 1, (1 << 32) - 1)[..., 0].astype(np.int64) - (1 << 31)).astype(np.int32)
    take("longs", "32 bit, signed", (large / 2147483647.0).astype(np.float32), large, 32)
    array = floats(13, 7, 1, -3, 9)[..., 0]
    take("float", "float", array, array, -32)
    double = array.astype(np.float64) / 3
    take("double", "double", double.astype(np.float32), double, -64)
    rgb = floats(13, 7, 3)
    take("rgb", "three planes", rgb, np.moveaxis(rgb, 2, 0), -32)
    corpus.lay("deep.pgm", netpbm(deep[..., None]))
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "deep.pgm", "-pix_fmt", "gray16be", "-f", "fits", "ff.fits")
    corpus.take("fits/ffmpeg.fits", corpus.made("ff.fits"), "FITS", "16 bit", deep, "ffmpeg")
    four = fits(np.zeros((4, 7, 13), np.uint8), 8)
    corpus.refuse("fits/four_planes.fits", four, "FITS", "four planes", "it is a FITS file without a simple picture")


def add(corpus: Corpus) -> None:
    for part in (add_hdr, add_raw, add_psd, add_vtf, add_fits):
        part(corpus)
