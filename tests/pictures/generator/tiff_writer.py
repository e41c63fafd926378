# SPDX-License-Identifier: MIT
"""Writes TIFF files as the format's text has them, byte by byte, without libtiff."""

import struct
import zlib

import numpy as np

BYTE, ASCII, SHORT, LONG, RATIONAL, LONG8 = 1, 2, 3, 4, 5, 16
SIZES = {BYTE: ("B", 1), ASCII: ("s", 1), SHORT: ("H", 2), LONG: ("I", 4), RATIONAL: ("I", 8), LONG8: ("Q", 8)}
NONE, DEFLATE, PACKBITS = 1, 8, 32773
GREY_WHITE_0, GREY, RGB, PALETTE, SEPARATED, YCBCR = 0, 1, 2, 3, 5, 6
UNSIGNED, SIGNED, FLOAT = 1, 2, 3


def packed(row: np.ndarray, bits: int, order: str) -> bytes:
    """A row of whole numbers, or of floats as the numbers of their bits."""
    numbers = row.reshape(-1).astype(np.uint64)
    if bits in (8, 16, 32, 64):
        return numbers.astype(f"{order}u{bits // 8}").tobytes()
    if bits == 24:
        four = numbers.astype(f"{order}u4").view(np.uint8).reshape(-1, 4)
        return (four[:, :3] if order == "<" else four[:, 1:]).tobytes()
    planes = (numbers[:, None] >> np.arange(bits - 1, -1, -1, dtype=np.uint64)) & np.uint64(1)
    return np.packbits(planes.reshape(-1).astype(np.uint8)).tobytes()


def pack_bits(data: bytes) -> bytes:
    """Runs where three bytes are equal, stretches elsewhere."""
    result, at = b"", 0
    while at < len(data):
        end = at + 1
        while end < len(data) and end - at < 128 and data[end] == data[at]:
            end += 1
        if end - at > 2:
            result += bytes([257 - (end - at), data[at]])
        else:
            end = at + 1
            while end < len(data) and end - at < 128 and not (data[end : end + 3] == data[end : end + 1] * 3):
                end += 1
            result += bytes([end - at - 1]) + data[at:end]
        at = end
    return result


def compressed(rows: list[bytes], method: int) -> bytes:
    if method == DEFLATE:
        return zlib.compress(b"".join(rows), 9)
    return b"".join(map(pack_bits, rows)) if method == PACKBITS else b"".join(rows)


def blocks(numbers: np.ndarray, tile: tuple[int, int] | None, rows_per_strip: int) -> list[np.ndarray]:
    height, width, _ = numbers.shape
    if tile is None:
        return [numbers[y : y + rows_per_strip] for y in range(0, height, rows_per_strip)]
    across, down = tile
    filled = np.pad(numbers, ((0, -height % down), (0, -width % across), (0, 0)), mode="edge")
    places = [(y, x) for y in range(0, height, down) for x in range(0, width, across)]
    return [filled[y : y + down, x : x + across] for y, x in places]


def tiff(
    numbers: np.ndarray,
    bits: int,
    photometric: int = GREY,
    order: str = "<",
    sample_format: int = UNSIGNED,
    big: bool = False,
    planar: bool = False,
    tile: tuple[int, int] | None = None,
    rows_per_strip: int = 1 << 30,
    compression: int = NONE,
    extra: list[int] | None = None,
    orientation: int = 1,
    lsb_first: bool = False,
    tags: dict[int, tuple[int, object]] = {},
    pages: int = 1,
    strip: bytes | None = None,
) -> bytes:
    """numbers: rows from the top, channels last, as they are stored. extra: the kinds of the extra samples.
    strip: the bytes of the one strip, where they are not these rows."""
    height, width, channels = numbers.shape
    planes = [numbers[..., c : c + 1] for c in range(channels)] if planar else [numbers]
    data = []
    for plane in planes:
        for block in blocks(plane, tile, min(rows_per_strip, height)):
            piece = compressed([packed(row, bits, order) for row in block], compression)
            if lsb_first:
                piece = np.packbits(np.unpackbits(np.frombuffer(piece, np.uint8)), bitorder="little").tobytes()
            data.append(piece if strip is None else strip)
    offset_type = LONG8 if big else LONG
    fields: dict[int, tuple[int, object]] = {
        256: (LONG, [width]),
        257: (LONG, [height]),
        258: (SHORT, [bits] * channels),
        259: (SHORT, [compression]),
        262: (SHORT, [photometric]),
        274: (SHORT, [orientation]),
        277: (SHORT, [channels]),
        284: (SHORT, [2 if planar else 1]),
        339: (SHORT, [sample_format] * channels),
    }
    if tile is None:
        fields[273] = (offset_type, [0] * len(data))
        fields[278] = (LONG, [min(rows_per_strip, height)])
        fields[279] = (offset_type, [len(piece) for piece in data])
    else:
        fields[322], fields[323] = (LONG, [tile[0]]), (LONG, [tile[1]])
        fields[324] = (offset_type, [0] * len(data))
        fields[325] = (offset_type, [len(piece) for piece in data])
    if extra is not None:
        fields[338] = (SHORT, extra)
    if lsb_first:
        fields[266] = (SHORT, [2])
    fields.update(tags)
    start = 16 if big else 8
    places, at = [], start
    for piece in data:
        places.append(at)
        at += len(piece) + len(piece) % 2
    fields[273 if tile is None else 324] = (offset_type, places)
    texels = b"".join(piece + bytes(len(piece) % 2) for piece in data)
    mark = b"II" if order == "<" else b"MM"
    header = mark + (struct.pack(order + "HHHQ", 43, 8, 0, at) if big else struct.pack(order + "HI", 42, at))
    return header + texels + b"".join(directories(fields, at, order, big, pages))


def directories(fields: dict, at: int, order: str, big: bool, pages: int) -> list[bytes]:
    """As many as there are pages, all of the same picture."""
    result = []
    for page in range(pages):
        entries, behind = b"", b""
        size = 8 + 20 * len(fields) + 8 if big else 2 + 12 * len(fields) + 4
        for tag in sorted(fields):
            kind, values = fields[tag]
            code, width = SIZES[kind]
            value = bytes(values) if kind in (ASCII, BYTE) else struct.pack(order + code * len(values), *values)
            count = len(value) // width
            inline = 8 if big else 4
            if len(value) > inline:
                place = at + size + len(behind)
                behind += value + bytes(len(value) % 2)
                value = struct.pack(order + ("Q" if big else "I"), place)
            entries += struct.pack(order + ("HHQ" if big else "HHI"), tag, kind, count) + value.ljust(inline, b"\0")
        after = at + size + len(behind) if page + 1 < pages else 0
        count = struct.pack(order + ("Q" if big else "H"), len(fields))
        result.append(count + entries + struct.pack(order + ("Q" if big else "I"), after) + behind)
        at = after
    return result


def float_bits(numbers: np.ndarray, bits: int) -> np.ndarray:
    """Floats as the numbers that their bits are."""
    if bits == 24:  # one bit of sign, 7 of exponent, 16 of fraction
        whole = numbers.astype(np.float32).view(np.uint32).astype(np.int64)
        exponent = (whole >> 23 & 255) - 127 + 63
        return np.where(numbers == 0, 0, (whole >> 31) << 23 | exponent << 16 | (whole >> 7 & 0xFFFF))
    kinds = {16: (np.float16, np.uint16), 32: (np.float32, np.uint32), 64: (np.float64, np.uint64)}
    return numbers.astype(kinds[bits][0]).view(kinds[bits][1])
