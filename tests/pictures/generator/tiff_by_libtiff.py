# SPDX-License-Identifier: MIT
"""TIFF: compressions that libtiff writes and its tools do not."""

import ctypes
from pathlib import Path

import numpy as np
from arrays import bytes_of, shorts_of, spread, whole
from corpus import Corpus
from tiff_writer import GREY_WHITE_0, RGB, UNSIGNED

FAX_RLE, FAX_RLE_WORDS, PIXAR_LOG, OLD_DEFLATE = 2, 32771, 32909, 32946


class Library:
    def __init__(self) -> None:
        self.library = ctypes.CDLL("libtiff.so.6")
        self.library.TIFFOpen.restype = ctypes.c_void_p
        self.library.TIFFWriteEncodedStrip.restype = ctypes.c_ssize_t
        self.library.TIFFWriteEncodedStrip.argtypes = [
            ctypes.c_void_p,
            ctypes.c_uint32,
            ctypes.c_void_p,
            ctypes.c_ssize_t,
        ]

    def write(self, path: Path, rows: np.ndarray, size: tuple[int, int], fields: dict[int, int]) -> bytes:
        """rows: the bytes of one strip."""
        tiff = ctypes.c_void_p(self.library.TIFFOpen(str(path).encode(), b"w"))
        every = {256: size[0], 257: size[1], 278: size[1], 284: 1, 274: 1}
        for tag, value in {**every, **fields}.items():
            self.library.TIFFSetField(tiff, ctypes.c_uint32(tag), ctypes.c_uint32(value))
        data = np.ascontiguousarray(rows).tobytes()
        written = self.library.TIFFWriteEncodedStrip(tiff, 0, data, len(data))
        self.library.TIFFClose(tiff)
        if written != len(data):
            raise RuntimeError(f"{path.name} is not written")
        return path.read_bytes()


def fields(method: int, photometric: int, channels: int, bits: int, kind: int = UNSIGNED) -> dict[int, int]:
    return {259: method, 262: photometric, 277: channels, 258: bits, 339: kind}


def add(corpus: Corpus) -> None:
    library = Library()

    def take(
        name: str,
        what: str,
        reference: np.ndarray,
        rows: np.ndarray,
        form: dict[int, int],
        tolerance: float = 0,
        remark: str = "",
    ) -> None:
        height, width = reference.shape[:2]
        data = library.write(corpus.scratch / "out.tif", rows, (width, height), form)
        corpus.take(f"tiff/{name}.tif", data, "TIFF", what, reference, "libtiff", tolerance, remark)

    bits = whole(33, 21, 1, 1)
    packed = np.packbits(1 - bits[..., 0].astype(np.uint8), axis=1)
    form = fields(FAX_RLE, GREY_WHITE_0, 1, 1)
    take("fax_rle", "fax RLE", spread(bits, 1), packed, form)
    data = library.write(corpus.scratch / "out.tif", packed, (33, 21), fields(FAX_RLE_WORDS, GREY_WHITE_0, 1, 1))
    sentence = "it is a TIFF picture compressed with CCITT RLE/W"
    remark = "libtiff 4.5 neither writes nor reads the bytes right that fill rows up to words"
    corpus.refuse("tiff/fax_rle_words.tif", data, "TIFF", "fax RLE, rows of whole words", sentence, "libtiff", remark)
    rgb = shorts_of(33, 21, 3)
    take("old_deflate", "Deflate by its old number", rgb, rgb, fields(OLD_DEFLATE, RGB, 3, 16))
    eight = bytes_of(33, 21, 3)
    in_bytes = (rgb.astype(np.uint32) * 255 + 32767) // 65535
    for array, reference, form, kind in (
        (eight, eight, fields(PIXAR_LOG, RGB, 3, 8), "8 bit"),
        (rgb, in_bytes, fields(PIXAR_LOG, RGB, 3, 16), "written from 16 bit"),
    ):
        name, remark = kind.replace(" ", "_"), "" if array is eight else "the file says that it has 8 bits"
        take(f"pixar_log_{name}", f"PixarLog, {kind}", reference.astype(np.uint8), array, form, 1, remark)
