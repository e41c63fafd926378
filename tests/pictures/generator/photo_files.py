# SPDX-License-Identifier: MIT
"""JPEG, WebP and GIF: what their own libraries decode, seen through other programs."""

import io
import struct

import cv2
import numpy as np
from arrays import bytes_of, turned
from corpus import Corpus, netpbm
from PIL import Image


FEW_COLOURS = "ImageMagick and OpenCV agree; ffmpeg spreads the fewer texels of colours without smoothing them"


def decoded(data: bytes, mode: str) -> np.ndarray:
    """What Pillow makes of it, unturned."""
    array = np.asarray(Image.open(io.BytesIO(data)).convert(mode) if mode != "CMYK" else Image.open(io.BytesIO(data)))
    return array if array.ndim == 3 else array[..., None]


def exif(orientation: int, order: str) -> bytes:
    mark = b"II" if order == "<" else b"MM"
    tag = struct.pack(order + "HHIHH", 0x112, 3, 1, orientation, 0)
    return b"Exif\0\0" + mark + struct.pack(order + "HIH", 42, 8, 1) + tag + bytes(4)


def with_segment(jpeg: bytes, marker: int, data: bytes) -> bytes:
    return jpeg[:2] + bytes([0xFF, marker]) + struct.pack(">H", len(data) + 2) + data + jpeg[2:]


def smooth(width: int, height: int) -> np.ndarray:
    return cv2.GaussianBlur(bytes_of(width, height, 3), (0, 0), 2)


def add_jpeg(corpus: Corpus) -> None:
    def take(
        name: str,
        what: str,
        data: bytes,
        mode: str,
        maker: str,
        reference: np.ndarray | None = None,
        judge="Pillow",
    ) -> None:
        reference = decoded(data, mode) if reference is None else reference
        remark = FEW_COLOURS if name in ("ycbcr_422", "ycbcr_420", "smooth_411") else ""
        corpus.take(f"jpeg/{name}.jpg", data, "JPEG", what, reference, maker, 1, remark, judge)

    rgb = smooth(33, 21)
    picture = Image.fromarray(rgb)

    def saved(image: Image.Image, **options) -> bytes:
        out = io.BytesIO()
        image.save(out, "JPEG", **options)
        return out.getvalue()

    for sampling, name in ((0, "4:4:4"), (1, "4:2:2"), (2, "4:2:0")):
        take(
            f"ycbcr_{name.replace(':', '')}",
            f"YCbCr {name}",
            saved(picture, quality=90, subsampling=sampling),
            "RGB",
            "Pillow",
        )
    take("grey", "grey", saved(picture.convert("L"), quality=90), "L", "Pillow")
    take("progressive", "progressive", saved(picture, progressive=True), "RGB", "Pillow")
    take("progressive_grey", "progressive, grey", saved(picture.convert("L"), progressive=True), "L", "Pillow")
    corpus.lay("rgb.ppm", netpbm(rgb))
    for name, options in (
        ("arithmetic", ["-arithmetic"]),
        ("restart", ["-restart", "1"]),
        ("rgb", ["-rgb", "-quality", "95"]),
        ("smooth_411", ["-sample", "4x1"]),
        ("quality_100", ["-quality", "100", "-sample", "1x1"]),
    ):
        data = corpus.run("cjpeg", *options, "rgb.ppm")
        take(name, " ".join(options).replace("-", "").replace("sample ", "samples "), data, "RGB", "cjpeg")
    inks = bytes_of(33, 21, 4)
    inks[..., 3] //= 3
    data = saved(Image.fromarray(np.ascontiguousarray(cv2.GaussianBlur(inks, (0, 0), 2)), "CMYK"), quality=95)
    take(
        "cmyk",
        "CMYK of Adobe's kind",
        data,
        "CMYK",
        "Pillow",
        colours_of_inks(decoded(data, "CMYK")),
        judge="Pillow",
    )
    corpus.lay("inks.jpg", data)
    corpus.run("convert", "inks.jpg", "-quality", "95", "-define", "jpeg:colorspace=YCCK", "ycck.jpg")
    data = corpus.made("ycck.jpg")
    if b"Adobe" in data and data[data.index(b"Adobe") + 11] == 2:
        take(
            "ycck",
            "YCCK",
            data,
            "CMYK",
            "ImageMagick",
            colours_of_inks(decoded(data, "CMYK")),
            judge="Pillow",
        )
    plain = saved(picture, quality=90, subsampling=0)
    for orientation in range(1, 9):
        order = "<" if orientation % 2 else ">"
        data = with_segment(plain, 0xE1, exif(orientation, order))
        take(
            f"orientation{orientation}",
            f"EXIF orientation {orientation}",
            data,
            "RGB",
            "Pillow",
            turned(decoded(data, "RGB"), orientation),
        )
    take(
        "profile", "with a colour profile", with_segment(plain, 0xE2, b"ICC_PROFILE\0\1\1" + bytes(50)), "RGB", "Pillow"
    )
    take(
        "comment",
        "with a comment and unknown segments",
        with_segment(with_segment(plain, 0xFE, b"x" * 500), 0xEB, bytes(40)),
        "RGB",
        "Pillow",
    )
    take("stray_bytes", "stray bytes behind its end", plain + b"\0" * 99, "RGB", "Pillow")
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb.ppm", "-q:v", "2", "ff.jpg")
    take("ffmpeg", "of ffmpeg", corpus.made("ff.jpg"), "RGB", "ffmpeg")
    take("opencv", "of OpenCV", cv2.imencode(".jpg", rgb[..., ::-1])[1].tobytes(), "RGB", "OpenCV")
    one = saved(Image.fromarray(rgb[:1, :1]))
    take("one_texel", "one texel", one, "RGB", "Pillow")
    corpus.take("jpeg/called_png.png", plain, "JPEG", "called .png", decoded(plain, "RGB"), "Pillow", 1)
    corpus.run(
        "ffmpeg",
        "-v",
        "error",
        "-y",
        "-i",
        "rgb.ppm",
        "-c:v",
        "ljpeg",
        "-pix_fmt",
        "bgr24",
        "-f",
        "image2",
        "lossless.jpg",
    )
    corpus.refuse(
        "jpeg/lossless.jpg", corpus.made("lossless.jpg"), "JPEG", "lossless", "it is a lossless JPEG picture", "ffmpeg"
    )
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgb.ppm", "-c:v", "jpegls", "-f", "image2", "ls.jpg")
    corpus.refuse("jpeg/jpeg_ls.jpg", corpus.made("ls.jpg"), "JPEG", "JPEG-LS", "it is a JPEG-LS picture", "ffmpeg")
    deep = bytearray(plain)
    deep[plain.index(b"\xff\xc0") + 4] = 12
    corpus.refuse("jpeg/twelve_bits.jpg", bytes(deep), "JPEG", "12 bits", "it is a JPEG picture of 12 bits")


def colours_of_inks(inks: np.ndarray) -> np.ndarray:
    numbers = inks.astype(np.uint32)
    return (((255 - numbers[..., :3]) * (255 - numbers[..., 3:]) + 127) // 255).astype(np.uint8)


def add_webp(corpus: Corpus) -> None:
    rgb, rgba = bytes_of(33, 21, 3), bytes_of(33, 21, 4)
    corpus.lay("rgb.ppm", netpbm(rgb))
    corpus.lay("rgba.pam", netpbm(rgba))
    corpus.run("convert", "rgba.pam", "rgba.png")
    corpus.run("cwebp", "-quiet", "-lossless", "rgb.ppm", "-o", "out.webp")
    corpus.take("webp/lossless.webp", corpus.made("out.webp"), "WebP", "lossless", rgb, "cwebp")
    lossless = corpus.made("out.webp")
    corpus.run("cwebp", "-quiet", "-lossless", "-exact", "rgba.png", "-o", "out.webp")
    corpus.take("webp/lossless_alpha.webp", corpus.made("out.webp"), "WebP", "lossless with alpha", rgba, "cwebp")
    blurred = Image.fromarray(smooth(33, 21))
    for name, options in (("lossy", {"quality": 80}), ("lossy_small", {"quality": 10, "method": 6})):
        out = io.BytesIO()
        blurred.save(out, "WEBP", **options)
        data = out.getvalue()
        corpus.take(
            f"webp/{name}.webp",
            data,
            "WebP",
            f"lossy, quality {options['quality']}",
            decoded(data, "RGB"),
            "Pillow",
            1,
            FEW_COLOURS,
            "Pillow",
        )
    corpus.run("cwebp", "-quiet", "-q", "90", "-alpha_q", "100", "rgba.png", "-o", "out.webp")
    data = corpus.made("out.webp")
    corpus.take(
        "webp/lossy_alpha.webp",
        data,
        "WebP",
        "lossy with alpha",
        decoded(data, "RGBA"),
        "cwebp",
        1,
        FEW_COLOURS,
        "Pillow",
    )
    out = io.BytesIO()
    frames = [Image.fromarray(rgb), Image.fromarray(rgb[::-1])]
    frames[0].save(out, "WEBP", save_all=True, append_images=frames[1:], lossless=True, duration=100)
    corpus.take("webp/animated.webp", out.getvalue(), "WebP", "an animation: its first picture", rgb, "Pillow")
    corpus.lay("plain.webp", lossless)
    corpus.lay("exif", exif(6, "<")[6:])
    corpus.run("webpmux", "-set", "exif", "exif", "plain.webp", "-o", "turned.webp")
    corpus.take(
        "webp/orientation6.webp", corpus.made("turned.webp"), "WebP", "EXIF orientation 6", turned(rgb, 6), "webpmux"
    )
    one = io.BytesIO()
    Image.fromarray(rgb[:1, :1]).save(one, "WEBP", lossless=True)
    corpus.take("webp/one_texel.webp", one.getvalue(), "WebP", "one texel", rgb[:1, :1], "Pillow")


def add_gif(corpus: Corpus) -> None:
    def take(name: str, what: str, data: bytes, reference: np.ndarray, maker: str, remark: str = "") -> None:
        corpus.take(f"gif/{name}.gif", data, "GIF", what, reference, maker, remark=remark)

    rgb = bytes_of(33, 21, 3)
    few = (rgb // 64 * 85).astype(np.uint8)
    corpus.lay("few.ppm", netpbm(few))
    corpus.run("convert", "few.ppm", "im.gif")
    take("magick", "up to 64 colours", corpus.made("im.gif"), few, "ImageMagick")
    corpus.run("convert", "few.ppm", "-interlace", "GIF", "im.gif")
    take("interlaced", "interlaced", corpus.made("im.gif"), few, "ImageMagick")
    take("netpbm", "of netpbm", corpus.run("pamtogif", "few.ppm"), few, "netpbm")
    out = io.BytesIO()
    indexed = Image.fromarray(few).convert("P", palette=Image.Palette.ADAPTIVE, colors=64)
    exact = np.asarray(indexed.convert("RGB"))
    indexed.save(out, "GIF")
    take("pillow", "of Pillow", out.getvalue(), exact, "Pillow")
    out = io.BytesIO()
    indexed.save(out, "GIF", transparency=int(np.asarray(indexed)[0, 0]))
    take("transparent", "a transparent colour", out.getvalue(), exact, "Pillow", "the alpha of a palette is left out")
    corpus.run("convert", "few.ppm", "(", "few.ppm", "-flip", ")", "-delay", "10", "im.gif")
    take("animated", "an animation: its first picture", corpus.made("im.gif"), few, "ImageMagick")
    two = (np.indices((21, 33)).sum(axis=0) % 2 * 255).astype(np.uint8)
    corpus.lay("two.pgm", netpbm(two[..., None]))
    corpus.run("convert", "two.pgm", "im.gif")
    take("two_colours", "two colours", corpus.made("im.gif"), np.dstack([two] * 3), "ImageMagick")


def add(corpus: Corpus) -> None:
    add_jpeg(corpus)
    add_webp(corpus)
    add_gif(corpus)
