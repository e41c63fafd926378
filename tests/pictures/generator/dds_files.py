# SPDX-License-Identifier: MIT
"""DDS: blocks, masks, floats, headers of both kinds, and what is refused."""

import struct

import numpy as np
from arrays import bytes_of, divided_by_alpha, floats, halves, shorts_of, spread, whole, with_blue
from block_texels import picture
from corpus import Corpus, netpbm

ALPHA, ONLY_ALPHA, CODE, COLOURS, GREY = 1, 2, 4, 0x40, 0x20000
BLOCK_BYTES = {"bc1": 8, "bc4": 8, "bc4s": 8}


def dds(
    data: bytes,
    size: tuple[int, int],
    code: bytes | int = 0,
    flags: int = 0,
    bits: int = 0,
    masks: list[int] = [0, 0, 0, 0],
    dx10: int | None = None,
    pitch: int = 0,
    caps: int = 0,
    levels: int = 0,
    mark: int = 0,
    depth: int = 0,
) -> bytes:
    """code: four letters, or Direct3D's number of a format. dx10: DXGI's number. mark: what it says of alpha."""
    width, height = size
    has = 0x1007 | (8 if pitch else 0) | (0x20000 if levels else 0) | (0x800000 if depth else 0)
    if dx10 is not None:
        code = b"DX10"
    number = code if isinstance(code, int) else int.from_bytes(code, "little")
    kind = CODE if number else flags
    header = struct.pack("<IIIIIII", 124, has, height, width, pitch, depth, levels) + bytes(44)
    header += struct.pack("<IIIIIIII", 32, kind, number, bits, *masks)
    header += struct.pack("<IIIII", 0x1000, caps, 0, 0, 0)
    newer = b"" if dx10 is None else struct.pack("<IIIII", dx10, 3, 0, 1, mark)
    return b"DDS " + header + newer + data


def words(array: np.ndarray, shifts: list[int], size: int) -> bytes:
    numbers = sum(array[..., i].astype(np.uint64) << np.uint64(shift) for i, shift in enumerate(shifts))
    return b"".join(int(n).to_bytes(size, "little") for n in numbers.reshape(-1))


def blocks_of(form: str, size: tuple[int, int], seed: int = 7) -> bytes:
    """Random blocks, some of which have their two colours in the other order."""
    count = -(-size[0] // 4) * -(-size[1] // 4)
    return np.random.default_rng(seed).integers(0, 256, count * BLOCK_BYTES.get(form, 16), np.uint8).tobytes()


def reference_of(data: bytes, size: tuple[int, int], form: str) -> np.ndarray:
    decoded = picture(data, *size, form)
    return with_blue(decoded) if form in ("bc5", "bc5s") else decoded


def add_blocks(corpus: Corpus) -> None:
    size = (18, 13)
    codes = {
        b"DXT1": "bc1",
        b"DXT3": "bc2",
        b"DXT5": "bc3",
        b"ATI1": "bc4",
        b"BC4U": "bc4",
        b"BC4S": "bc4s",
        b"BC5U": "bc5",
        b"BC5S": "bc5s",
    }
    for code, form in codes.items():
        data, name = blocks_of(form, size), code.decode()
        tolerance = 1e-6 if form.endswith("s") else 1 if form == "bc5" else 0
        corpus.take(
            f"dds/{name.lower()}.dds",
            dds(data, size, code),
            "DDS",
            name,
            reference_of(data, size, form),
            tolerance=tolerance,
        )
    for number, form in (
        (71, "bc1"),
        (72, "bc1"),
        (74, "bc2"),
        (77, "bc3"),
        (80, "bc4"),
        (81, "bc4s"),
        (83, "bc5"),
        (84, "bc5s"),
    ):
        data = blocks_of(form, size, number)
        tolerance = 1e-6 if form.endswith("s") else 1 if form == "bc5" else 0
        corpus.take(
            f"dds/dx10_{number}.dds",
            dds(data, size, dx10=number),
            "DDS",
            f"DX10 header, {form.upper()}, DXGI {number}",
            reference_of(data, size, form),
            tolerance=tolerance,
        )
    for code, form in ((b"DXT2", "bc2"), (b"DXT4", "bc3")):
        data = blocks_of(form, size)
        corpus.take(
            f"dds/{code.decode().lower()}.dds",
            dds(data, size, code),
            "DDS",
            f"{code.decode()}: associated alpha",
            divided_by_alpha(reference_of(data, size, form)),
        )
    data = blocks_of("bc5", size)
    decoded = picture(data, *size, "bc5")
    remark = "ATI's own form has green first, for ffmpeg as well; Pillow takes red first"
    green_first = with_blue(decoded[..., [1, 0]])
    corpus.take("dds/ati2.dds", dds(data, size, b"ATI2"), "DDS", "ATI2", green_first, tolerance=1, remark=remark)
    red_first = dds(data, size, b"ATI2", bits=int.from_bytes(b"A2XY", "little"))
    corpus.take("dds/ati2_a2xy.dds", red_first, "DDS", "ATI2 with A2XY: red first", with_blue(decoded), tolerance=1)
    data = blocks_of("bc3", size, 5)
    red_in_alpha = reference_of(data, size, "bc3")[..., [3, 1, 2]]
    corpus.take("dds/rxgb.dds", dds(data, size, b"RXGB"), "DDS", "RXGB: red in the alpha of DXT5", red_in_alpha)
    one = blocks_of("bc1", (1, 1))
    corpus.take(
        "dds/one_texel.dds", dds(one, (1, 1), b"DXT1"), "DDS", "one texel", reference_of(one, (1, 1), "bc1")[..., :3]
    )
    levels = blocks_of("bc1", (16, 16)) + blocks_of("bc1", (8, 8)) + blocks_of("bc1", (4, 4))
    corpus.take(
        "dds/levels.dds",
        dds(levels, (16, 16), b"DXT1", levels=3, caps=0x400000),
        "DDS",
        "smaller levels",
        reference_of(levels, (16, 16), "bc1"),
    )
    cube = b"".join(blocks_of("bc1", (8, 8), seed) for seed in range(6))
    corpus.take(
        "dds/cube.dds",
        dds(cube, (8, 8), b"DXT1", caps=0xFE00),
        "DDS",
        "a cube: its first face",
        reference_of(cube, (8, 8), "bc1"),
    )
    slices = blocks_of("bc1", (8, 8), 1) + blocks_of("bc1", (8, 8), 2)
    corpus.take(
        "dds/volume.dds",
        dds(slices, (8, 8), b"DXT1", caps=0x200000, depth=2),
        "DDS",
        "a volume: its first slice",
        reference_of(slices, (8, 8), "bc1"),
    )


def add_samples(corpus: Corpus) -> None:
    def take(
        name: str, what: str, reference: np.ndarray, data: bytes, tolerance: float = 0, remark: str = "", **options
    ) -> None:
        corpus.take(
            f"dds/{name}.dds", dds(data, (13, 7), **options), "DDS", what, reference, tolerance=tolerance, remark=remark
        )

    rgb, rgba, grey = bytes_of(13, 7, 3), bytes_of(13, 7, 4), bytes_of(13, 7, 1)
    bgra_masks = [0xFF0000, 0xFF00, 0xFF, 0xFF000000]
    take(
        "a8r8g8b8",
        "8 bits a channel, alpha",
        rgba,
        words(rgba, [16, 8, 0, 24], 4),
        flags=COLOURS | ALPHA,
        bits=32,
        masks=bgra_masks,
    )
    take(
        "a8b8g8r8",
        "8 bits a channel, red first",
        rgba,
        words(rgba, [0, 8, 16, 24], 4),
        flags=COLOURS | ALPHA,
        bits=32,
        masks=[0xFF, 0xFF00, 0xFF0000, 0xFF000000],
    )
    take(
        "x8r8g8b8",
        "8 bits a channel, a byte of no use",
        rgb,
        words(rgb, [16, 8, 0], 4),
        flags=COLOURS,
        bits=32,
        masks=bgra_masks[:3] + [0],
    )
    take("r8g8b8", "24 bit", rgb, words(rgb, [16, 8, 0], 3), flags=COLOURS, bits=24, masks=bgra_masks[:3] + [0])
    padded = b"".join(row + bytes(1) for row in (words(rgb[y : y + 1], [16, 8, 0], 3) for y in range(7)))
    take(
        "padded_rows",
        "24 bit, rows of 40 bytes",
        rgb,
        padded,
        flags=COLOURS,
        bits=24,
        masks=bgra_masks[:3] + [0],
        pitch=40,
        remark="ImageMagick, Pillow and ffmpeg leave the pitch of the header out of account",
    )
    five, ten = whole(13, 7, 4, 31), whole(13, 7, 3, 1023)
    odd = np.dstack([spread(five[..., 0], 31), spread(five[..., 1] * 2, 63), spread(five[..., 2], 31)])
    numbers = np.dstack([five[..., 0], five[..., 1] * 2, five[..., 2]])
    take(
        "r5g6b5",
        "5, 6 and 5 bits",
        odd,
        words(numbers, [11, 5, 0], 2),
        flags=COLOURS,
        bits=16,
        masks=[0xF800, 0x7E0, 0x1F, 0],
    )
    bit = np.dstack([five[..., :3], five[..., 3:] & 1])
    reference = np.dstack([spread(bit[..., :3], 31), spread(bit[..., 3:], 1)])
    take(
        "a1r5g5b5",
        "5 bits a channel, 1 of alpha",
        reference,
        words(bit, [10, 5, 0, 15], 2),
        flags=COLOURS | ALPHA,
        bits=16,
        masks=[0x7C00, 0x3E0, 0x1F, 0x8000],
    )
    four = whole(13, 7, 4, 15)
    take(
        "a4r4g4b4",
        "4 bits a channel",
        spread(four, 15),
        words(four, [8, 4, 0, 12], 2),
        flags=COLOURS | ALPHA,
        bits=16,
        masks=[0xF00, 0xF0, 0xF, 0xF000],
    )
    take(
        "a2b10g10r10",
        "10 bits a channel",
        spread(ten, 1023),
        words(ten, [0, 10, 20], 4),
        flags=COLOURS,
        bits=32,
        masks=[0x3FF, 0xFFC00, 0x3FF00000, 0],
    )
    two = shorts_of(13, 7, 2)
    take("l8", "grey", grey, grey.tobytes(), flags=GREY, bits=8, masks=[0xFF, 0, 0, 0])
    take("l16", "grey, 16 bit", two[..., :1], two[..., :1].tobytes(), flags=GREY, bits=16, masks=[0xFFFF, 0, 0, 0])
    pair = bytes_of(13, 7, 2)
    take("a8l8", "grey and alpha", pair, pair.tobytes(), flags=GREY | ALPHA, bits=16, masks=[0xFF, 0, 0, 0xFF00])
    take("a8", "alpha alone: taken as grey", grey, grey.tobytes(), flags=ONLY_ALPHA, bits=8, masks=[0, 0, 0, 0xFF])
    take(
        "g16r16",
        "16 bits of red and green: blue is made",
        with_blue(two),
        two.tobytes(),
        1,
        flags=COLOURS,
        bits=32,
        masks=[0xFFFF, 0xFFFF0000, 0, 0],
    )
    for code, array, what in (
        (36, shorts_of(13, 7, 4), "16 bit, RGBA"),
        (111, halves(13, 7, 1, -2, 3), "half, grey"),
        (113, halves(13, 7, 4, -2, 3), "half, RGBA"),
        (114, floats(13, 7, 1, -2, 3), "float, grey"),
        (116, floats(13, 7, 4, -2, 3), "float, RGBA"),
    ):
        take(f"d3d_{code}", f"{what}, Direct3D {code}", array, array.tobytes(), code=code)
    for number, array, what in (
        (2, floats(13, 7, 4, -2, 3), "float, RGBA"),
        (6, floats(13, 7, 3, -2, 3), "float, RGB"),
        (10, halves(13, 7, 4), "half, RGBA"),
        (11, shorts_of(13, 7, 4), "16 bit, RGBA"),
        (28, rgba, "8 bit, RGBA"),
        (41, floats(13, 7, 1), "float, grey"),
        (54, halves(13, 7, 1), "half, grey"),
        (56, shorts_of(13, 7, 1), "16 bit, grey"),
        (61, grey, "8 bit, grey"),
    ):
        take(f"dx10_{number}", f"DX10 header, {what}, DXGI {number}", array, array.tobytes(), dx10=number)
    take("dx10_87", "DX10 header, 8 bit, blue first, DXGI 87", rgba, words(rgba, [16, 8, 0, 24], 4), dx10=87)
    take(
        "dx10_premultiplied",
        "DX10 header that says: associated alpha",
        divided_by_alpha(rgba),
        rgba.tobytes(),
        dx10=28,
        mark=2,
    )
    vectors = floats(13, 7, 2, -1, 1)
    take(
        "dx10_16",
        "DX10 header, float, red and green: blue is made",
        with_blue(vectors),
        vectors.tobytes(),
        1e-3,
        dx10=16,
        remark="in floats, blue has the error of a root of a small difference",
    )


def add_of_programs(corpus: Corpus) -> None:
    rgba = bytes_of(16, 16, 4)
    corpus.lay("rgba.pam", netpbm(rgba))
    corpus.run("convert", "rgba.pam", "rgba.png")
    for option, form in (("-bc1", "bc1"), ("-bc2", "bc2"), ("-bc3", "bc3"), ("-bc4", "bc4"), ("-bc5", "bc5")):
        corpus.run("nvcompress", "-nocuda", "-nomips", option, "rgba.png", "nv.dds")
        data = corpus.made("nv.dds")
        reference = reference_of(data[128:], (16, 16), form)
        opaque = form == "bc1" and (reference[..., 3] == 255).all()
        corpus.take(
            f"dds/nvcompress_{form}.dds",
            data,
            "DDS",
            form.upper(),
            reference[..., :3] if opaque else reference,
            "nvcompress",
            1 if form == "bc5" else 0,
        )
    for method, form in (("dxt1", "bc1"), ("dxt5", "bc3")):
        corpus.run("convert", "rgba.pam", "-define", f"dds:compression={method}", "-define", "dds:mipmaps=0", "im.dds")
        data = corpus.made("im.dds")
        reference = reference_of(data[128:], (16, 16), form)
        opaque = form == "bc1" and (reference[..., 3] == 255).all()
        corpus.take(
            f"dds/magick_{method}.dds",
            data,
            "DDS",
            method.upper(),
            reference[..., :3] if opaque else reference,
            "ImageMagick",
        )


def add_refused(corpus: Corpus) -> None:
    for number, name in ((95, "BC6H"), (96, "BC6H"), (98, "BC7"), (99, "BC7")):
        corpus.refuse(
            f"dds/dx10_{number}.dds",
            dds(bytes(64), (8, 8), dx10=number),
            "DDS",
            f"{name}, DXGI {number}",
            f"it is a DDS file with {name} compression",
        )
    corpus.refuse(
        "dds/dx10_31.dds",
        dds(bytes(256), (8, 8), dx10=31),
        "DDS",
        "a signed format, DXGI 31",
        "it is a DDS file of the DXGI format 31",
    )
    corpus.refuse(
        "dds/dx10_67.dds",
        dds(bytes(256), (8, 8), dx10=67),
        "DDS",
        "one exponent for all channels, DXGI 67",
        "it is a DDS file of the DXGI format 67",
    )
    corpus.refuse("dds/uyvy.dds", dds(bytes(128), (8, 8), b"UYVY"), "DDS", "UYVY", "it is a DDS file of the form UYVY")
    corpus.refuse(
        "dds/palette.dds",
        dds(bytes(1088), (8, 8), flags=0x20, bits=8),
        "DDS",
        "a palette",
        "it is a DDS file of a palette",
    )
    corpus.refuse(
        "dds/bump.dds",
        dds(bytes(128), (8, 8), flags=0x80000, bits=16, masks=[0xFF, 0xFF00, 0, 0]),
        "DDS",
        "signed numbers",
        "it is a DDS file of signed numbers",
    )
    corpus.refuse(
        "dds/yuv.dds",
        dds(bytes(256), (8, 8), flags=0x200, bits=32, masks=[0xFF, 0xFF00, 0xFF0000, 0]),
        "DDS",
        "luma and chroma",
        "it is a DDS file of luma and chroma (YUV)",
    )


def add(corpus: Corpus) -> None:
    add_blocks(corpus)
    add_samples(corpus)
    add_of_programs(corpus)
    add_refused(corpus)
