# SPDX-License-Identifier: MIT
"""Formats that are not read: each has to be refused by its name."""

import io
import struct
import time

from arrays import bytes_of
from corpus import Corpus, netpbm
from PIL import Image


def add(corpus: Corpus) -> None:
    rgb = bytes_of(33, 21, 3)
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.lay("even.ppm", netpbm(bytes_of(64, 64, 3)))

    def refuse(file: str, name: str, maker: str, data: bytes) -> None:
        corpus.refuse(f"refused/{file}", data, "other formats", name, f"it is {name}", maker)

    for ending in ("jp2", "j2k"):
        out = io.BytesIO()
        Image.fromarray(rgb).save(out, "JPEG2000", no_jp2=ending == "j2k")
        refuse(f"pillow.{ending}", "a JPEG 2000 picture", "Pillow", out.getvalue())
    for ending, name in (("heic", "an HEIF picture"), ("avif", "an AVIF picture")):
        corpus.run("convert", "even.ppm", f"im.{ending}")
        refuse(f"magick.{ending}", name, "ImageMagick", corpus.made(f"im.{ending}"))
    for ending, name, options in (
        ("jxl", "a JPEG XL picture", ["-c:v", "libjxl"]),
        ("qoi", "a QOI picture", []),
        ("dpx", "a DPX picture", []),
    ):
        corpus.run("ffmpeg", "-v", "error", "-y", "-i", "even.ppm", *options, f"ff.{ending}")
        refuse(f"ffmpeg.{ending}", name, "ffmpeg", corpus.made(f"ff.{ending}"))
    corpus.run("convert", "rgb.ppm", "im.xpm")
    refuse("magick.xpm", "an XPM picture", "ImageMagick", corpus.made("im.xpm"))
    refuse("own.svg", "an SVG drawing", "own", b'<?xml version="1.0"?>\n<svg xmlns="http://www.w3.org/2000/svg"/>\n')
    no_date = time.gmtime(0)
    for kind, name, options in (
        ("PDF", "a PDF document", {"creationDate": no_date, "modDate": no_date}),
        ("EPS", "a PostScript drawing", {}),
    ):
        out = io.BytesIO()
        Image.fromarray(rgb).save(out, kind, **options)
        refuse(f"pillow.{kind.lower()}", name, "Pillow", out.getvalue())
    refuse("netpbm.iff", "an IFF picture", "netpbm", corpus.run("ppmtoilbm", "-24force", "rgb.ppm"))
    refuse("own.ktx", "a KTX texture", "own", b"\xabKTX 11\xbb\r\n\x1a\n" + struct.pack("<I", 0x04030201) + bytes(100))
    refuse("own.ktx2", "a KTX2 texture", "own", b"\xabKTX 20\xbb\r\n\x1a\n" + bytes(100))
    refuse(
        "own.astc",
        "an ASTC texture",
        "own",
        b"\x13\xab\xa1\x5c" + bytes([4, 4, 1, 4, 0, 0, 4, 0, 0, 1, 0, 0]) + bytes(16),
    )
    refuse("own.pvr", "a PVR texture", "own", b"PVR\x03" + bytes(60))
    refuse("own.jxr", "a JPEG XR picture", "own", b"II\xbc\x01" + bytes(60))
    refuse("own.xcf", "a GIMP picture with layers", "own", b"gimp xcf v011\0" + bytes(60))
    corpus.run("sh", "-c", "gzip -n < rgb.ppm > rgb.ppm.gz")
    refuse("packed.ppm.gz", "a compressed file (gzip)", "gzip", corpus.made("rgb.ppm.gz"))
