# SPDX-License-Identifier: MIT
"""TIFF: every compression that libtiff has, and the files of other programs."""

import io
import zlib

import cv2
import numpy as np
from arrays import bytes_of, divided_by_alpha, floats, halves, shorts_of, spread, whole
from corpus import Corpus, netpbm
from PIL import Image
from tiff_writer import DEFLATE, FLOAT, GREY_WHITE_0, RGB, SHORT, SIGNED, float_bits, tiff


def add_compressions(corpus: Corpus) -> None:
    def copy(name: str, what: str, reference: np.ndarray, base: bytes, *options: str, tolerance=0, remark="") -> None:
        corpus.lay("base.tif", base)
        corpus.run("tiffcp", *options, "base.tif", "copy.tif")
        data = corpus.made("copy.tif")
        (corpus.scratch / "copy.tif").unlink()
        corpus.take(f"tiff/{name}.tif", data, "TIFF", what, reference, "tiffcp", tolerance, remark)

    rgb8, rgb, grey = bytes_of(33, 21, 3), shorts_of(33, 21, 3), floats(33, 21, 1, -2, 5)
    rgb8_file, rgb_file = tiff(rgb8, 8, RGB), tiff(rgb, 16, RGB)
    grey_file = tiff(float_bits(grey, 32), 32, sample_format=FLOAT)
    half = halves(33, 21, 3)
    half_file = tiff(float_bits(half, 16), 16, RGB, sample_format=FLOAT)
    double = floats(33, 21, 1).astype(np.float64)
    double_file = tiff(float_bits(double, 64), 64, sample_format=FLOAT)
    rgb32 = whole(33, 21, 3, (1 << 32) - 1)
    rgb32_file = tiff(rgb32, 32, RGB)
    bilevel = whole(33, 21, 1, 1)
    bilevel_file = tiff(1 - bilevel, 1, GREY_WHITE_0)
    for method in ("lzw", "zip", "zstd", "lzma"):
        copy(f"{method}", f"{method}, 16 bit", rgb, rgb_file, "-c", method)
        copy(
            f"{method}_predictor",
            f"{method}, predictor 2, tiles",
            rgb,
            rgb_file,
            "-c",
            f"{method}:2",
            "-t",
            "-w",
            "16",
            "-l",
            "16",
        )
    copy("lzw_float_predictor", "lzw, float predictor", grey, grey_file, "-c", "lzw:3")
    copy("zip_half_predictor", "zip, half, float predictor", half, half_file, "-c", "zip:3")
    copy("zip_double_predictor", "zip, double, float predictor", double.astype(np.float32), double_file, "-c", "zip:3")
    copy("lzw_32_bit_predictor", "lzw, 32 bit, predictor 2", spread(rgb32, (1 << 32) - 1), rgb32_file, "-c", "lzw:2")
    copy("zip_planar_bigtiff", "zip, planar, BigTIFF", rgb8, rgb8_file, "-c", "zip:2", "-p", "separate", "-8")
    copy("lzw_8_bit_predictor", "lzw, 8 bit, predictor 2, strips of 3 rows", rgb8, rgb8_file, "-c", "lzw:2", "-r", "3")
    copy("packbits_bilevel", "PackBits, 1 bit", spread(bilevel, 1), bilevel_file, "-c", "packbits")
    for method in ("g3:1d", "g3:2d:fill", "g4"):
        name = method.replace(":", "_")
        copy(f"fax_{name}", f"fax {method}", spread(bilevel, 1), bilevel_file, "-c", method)
    copy("fax_g4_lsb_first", "fax g4, lowest bit first", spread(bilevel, 1), bilevel_file, "-c", "g4", "-f", "lsb2msb")
    copy("jbig", "JBIG", spread(bilevel, 1), bilevel_file, "-c", "jbig")
    copy("lerc", "LERC, 16 bit", rgb, rgb_file, "-c", "lerc")
    copy("lerc_zstd_float", "LERC with zstd, float", grey, grey_file, "-c", "lerc:0:s2")
    signed = rgb.astype(np.int64) - 32768
    copy(
        "lzw_signed_predictor",
        "lzw, signed, predictor 2",
        (signed / 32767.0).astype(np.float32),
        tiff(signed & 0xFFFF, 16, RGB, sample_format=SIGNED),
        "-c",
        "lzw:2",
    )
    copy("webp_lossless", "WebP, lossless", rgb8, rgb8_file, "-c", "webp:p100")
    add_lossy(corpus, rgb8, rgb8_file)


def add_float_predictor(corpus: Corpus) -> None:
    """Each row: the first bytes of all samples, then the second ones, and so on, as differences."""
    grey = floats(33, 21, 1, -2, 5)
    planes = grey[..., 0].astype(">f4").view(np.uint8).reshape(21, 33, 4).transpose(0, 2, 1).reshape(21, -1)
    differences = np.concatenate([planes[:, :1], np.diff(planes, axis=1)], axis=1)
    strip = zlib.compress(differences.astype(np.uint8).tobytes())
    tags = {317: (SHORT, [3])}
    data = tiff(float_bits(grey, 32), 32, order=">", sample_format=FLOAT, compression=DEFLATE, strip=strip, tags=tags)
    remark = "tiffcp 4.5 writes such a file with the bytes of each sample the wrong way round"
    corpus.take(
        "tiff/float_predictor_big_endian.tif", data, "TIFF", "Deflate, float predictor, big-endian", grey, remark=remark
    )


def add_logarithms(corpus: Corpus) -> None:
    """Logarithms of luminance: the high bytes of a row as they are, then the low ones."""
    logs = whole(33, 21, 1, 2047)[..., 0] + 16384 - 1024
    strip = b"".join(bytes([33]) + plane.astype(np.uint8).tobytes() for row in logs for plane in (row >> 8, row & 255))
    data = tiff(logs[..., None], 16, 32844, compression=34676, sample_format=SIGNED, strip=strip)
    luminance = np.exp2((logs + 0.5) / 256 - 64).astype(np.float32)
    corpus.take("tiff/log_luminance.tif", data, "TIFF", "logarithms of luminance", luminance, tolerance=1e-5)


def add_lossy(corpus: Corpus, rgb8: np.ndarray, rgb8_file: bytes) -> None:
    """What others than the toolkit read decides."""
    grey8_file = tiff(rgb8[..., :1], 8)
    smooth = cv2.GaussianBlur(rgb8, (0, 0), 3)
    for name, what, file, options in (
        ("jpeg_ycbcr", "JPEG, YCbCr", tiff(smooth, 8, RGB), ["-c", "jpeg:90"]),
        ("jpeg_rgb", "JPEG, RGB", rgb8_file, ["-c", "jpeg:r:90"]),
        ("jpeg_tiles", "JPEG, YCbCr, tiles", tiff(smooth, 8, RGB), ["-c", "jpeg:90", "-t", "-w", "16", "-l", "16"]),
        ("jpeg_grey", "JPEG, grey", grey8_file, ["-c", "jpeg:90"]),
    ):
        corpus.lay("base.tif", file)
        corpus.run("tiffcp", *options, "base.tif", "copy.tif")
        reference = np.asarray(Image.open(corpus.scratch / "copy.tif").convert("L" if "grey" in name else "RGB"))
        corpus.take(f"tiff/{name}.tif", corpus.made("copy.tif"), "TIFF", what, reference, "tiffcp", 2, judge="Pillow")


def add_of_programs(corpus: Corpus) -> None:
    rgb, rgba, grey = shorts_of(33, 21, 3), shorts_of(33, 21, 4), shorts_of(33, 21, 1)
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.lay("rgba.pam", netpbm(rgba))
    for name, what, options in (
        ("lzw", "16 bit, LZW", ["-compress", "LZW"]),
        ("zip_msb", "16 bit, zip, big-endian", ["-compress", "Zip", "-endian", "MSB"]),
        ("rle", "16 bit, PackBits", ["-compress", "RLE"]),
    ):
        corpus.run("convert", "rgb.ppm", *options, "im.tif")
        corpus.take(f"tiff/magick_{name}.tif", corpus.made("im.tif"), "TIFF", what, rgb, "ImageMagick")
    corpus.run("convert", "rgba.pam", "-compress", "None", "im.tif")
    corpus.take("tiff/magick_alpha.tif", corpus.made("im.tif"), "TIFF", "16 bit, straight alpha", rgba, "ImageMagick")
    corpus.run("convert", "rgba.pam", "-define", "tiff:alpha=associated", "im.tif")
    premultiplied = cv2.imdecode(np.frombuffer(corpus.made("im.tif"), np.uint8), cv2.IMREAD_UNCHANGED)[
        ..., [2, 1, 0, 3]
    ]
    corpus.take(
        "tiff/magick_alpha_associated.tif",
        corpus.made("im.tif"),
        "TIFF",
        "16 bit, associated alpha",
        divided_by_alpha(premultiplied),
        "ImageMagick",
        1,
        judge="OpenCV",
    )
    for kind, layout in (("rgb48le", rgb), ("rgba64le", rgba)):
        corpus.run(
            "ffmpeg", "-v", "error", "-y", "-i", "rgba.pam" if layout is rgba else "rgb.ppm", "-pix_fmt", kind, "ff.tif"
        )
        corpus.take(f"tiff/ffmpeg_{kind}.tif", corpus.made("ff.tif"), "TIFF", f"{kind}, PackBits", layout, "ffmpeg")
    colours = floats(33, 21, 3, -1, 4)
    bright = floats(33, 21, 3, 0, 4)
    data = cv2.imencode(".tif", bright[..., ::-1])[1].tobytes()
    decoded = cv2.imdecode(np.frombuffer(data, np.uint8), cv2.IMREAD_UNCHANGED)[..., ::-1]
    assert np.abs(decoded - bright).max() < 0.1
    remark = "its colours are X, Y and Z with the white of D65, as OpenCV writes and reads them"
    take = corpus.take
    take("tiff/opencv_float.tif", data, "TIFF", "float RGB as LogLuv", decoded, "OpenCV", 2e-5, remark, "OpenCV")
    for mode, array in (
        ("I;16", grey[..., 0]),
        ("F", colours[..., 0]),
        ("I", whole(13, 7, 1, (1 << 31) - 1)[..., 0].astype(np.int32)),
    ):
        out = io.BytesIO()
        Image.fromarray(array).save(out, "TIFF", compression="tiff_adobe_deflate")
        reference = (array / 2147483647.0).astype(np.float32) if mode == "I" else array
        corpus.take(
            f"tiff/pillow_{mode.replace(';', '')}.tif", out.getvalue(), "TIFF", f"mode {mode}", reference, "Pillow"
        )
    corpus.run("sh", "-c", "pamtotiff -truecolor rgb.ppm > netpbm.tif")
    corpus.take("tiff/netpbm.tif", corpus.made("netpbm.tif"), "TIFF", "16 bit", rgb, "netpbm")


def add(corpus: Corpus) -> None:
    add_compressions(corpus)
    add_float_predictor(corpus)
    add_logarithms(corpus)
    add_of_programs(corpus)
