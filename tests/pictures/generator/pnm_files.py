# SPDX-License-Identifier: MIT
"""PBM, PGM, PPM, PAM and PFM: text and bytes, any highest number, comments, long and short lines."""

import cv2
import numpy as np
from arrays import bytes_of, floats, shorts_of, spread, whole
from corpus import Corpus, netpbm

NAMES = {1: "PBM", 2: "PGM", 3: "PPM", 4: "PBM", 5: "PGM", 6: "PPM"}


def text(kind: int, numbers: np.ndarray, most: int | None, per_line: int = 12, comment: bytes = b"") -> bytes:
    height, width, _ = numbers.shape
    flat = [str(int(n)) for n in numbers.reshape(-1)]
    lines = "\n".join(" ".join(flat[i : i + per_line]) for i in range(0, len(flat), per_line))
    top = f"{most}\n" if most else ""
    return f"P{kind}\n".encode() + comment + f"{width} {height}\n{top}{lines}\n".encode()


def raw(kind: int, numbers: np.ndarray, most: int, between: str = "\n") -> bytes:
    height, width, _ = numbers.shape
    samples = numbers.astype(np.uint8 if most < 256 else ">u2").tobytes()
    return between.join([f"P{kind}", f"{width} {height}", str(most)]).encode() + b"\n" + samples


def pam(numbers: np.ndarray, most: int, kind: str) -> bytes:
    height, width, channels = numbers.shape
    head = (
        f"P7\nWIDTH {width}\nHEIGHT {height}\n# a comment\nDEPTH {channels}\nMAXVAL {most}\nTUPLTYPE {kind}\nENDHDR\n"
    )
    return head.encode() + numbers.astype(np.uint8 if most < 256 else ">u2").tobytes()


def pfm(array: np.ndarray, little: bool, scale: float = 1.0, between: str = "\n") -> bytes:
    height, width, channels = array.shape
    head = between.join(["PF" if channels == 3 else "Pf", f"{width} {height}", f"{-scale if little else scale}"]) + "\n"
    return head.encode() + array[::-1].astype("<f4" if little else ">f4").tobytes()


def add_pnm(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, data: bytes, kind: int, remark: str = "") -> None:
        ending = NAMES[kind].lower()
        corpus.take(f"pnm/{name}.{ending}", data, NAMES[kind], what, reference, remark=remark)

    bits = whole(33, 21, 1, 1)
    light = spread(1 - bits, 1)
    packed = np.packbits(bits[..., 0].astype(np.uint8), axis=1).tobytes()
    take("bytes", "bytes, width of no full byte", light, b"P4\n33 21\n" + packed, 4)
    take("text", "text", light, text(1, bits, None), 1)
    close = b"P1\n33 21\n" + b"".join(bytes(48 + int(b) for b in row) + b"\n" for row in bits[..., 0])
    take("text_without_spaces", "text without spaces", light, close, 1)
    for most in (1, 7, 100, 254, 255, 256, 1000, 4095, 65534, 65535):
        numbers = whole(13, 7, 1, most)
        take(f"most_{most}", f"highest number {most}", spread(numbers, most), raw(5, numbers, most), 5)
    for most in (255, 999, 65535):
        numbers = whole(13, 7, 3, most)
        take(f"most_{most}", f"highest number {most}", spread(numbers, most), raw(6, numbers, most), 6)
        take(f"text_{most}", f"text, highest number {most}", spread(numbers, most), text(3, numbers, most), 3)
    grey = whole(33, 21, 1, 255)
    take("text_one_line", "text, all on one line", grey.astype(np.uint8), text(2, grey, 255, 1 << 30), 2)
    take("text_line_each", "text, a line for each number", grey.astype(np.uint8), text(2, grey, 255, 1), 2)
    take(
        "text_comment",
        "text with comments of 900 letters",
        grey.astype(np.uint8),
        text(2, grey, 255, comment=b"# " + b"x" * 900 + b"\n#\n"),
        2,
    )
    inside = text(2, grey, 255).replace(b"\n255\n", b"\n# between\n255 # behind\n", 1)
    take("text_comments", "text, comments between the numbers", grey.astype(np.uint8), inside, 2)
    rgb = whole(13, 7, 3, 255)
    take("spaces", "header of one line", rgb.astype(np.uint8), raw(6, rgb, 255, " "), 6)
    take("tabs", "header with tabs and carriage returns", rgb.astype(np.uint8), raw(6, rgb, 255, "\t\r\n"), 6)
    take("two_pictures", "two pictures: the first", rgb.astype(np.uint8), raw(6, rgb, 255) * 2, 6)
    deep = shorts_of(33, 21, 3)
    corpus.lay("deep.ppm", netpbm(deep))
    take(
        "magick_text",
        "text of ImageMagick, 16 bit",
        deep,
        corpus.run("convert", "deep.ppm", "-compress", "none", "ppm:-"),
        3,
    )
    take("netpbm_plain", "text of netpbm, 16 bit", deep, corpus.run("pnmtoplainpnm", "deep.ppm"), 3)
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "deep.ppm", "-pix_fmt", "rgb48be", "ff.ppm")
    take("ffmpeg", "16 bit of ffmpeg", deep, corpus.made("ff.ppm"), 6)
    take("opencv", "16 bit of OpenCV", deep, cv2.imencode(".ppm", deep[..., ::-1])[1].tobytes(), 6)


def add_pam(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, data: bytes) -> None:
        corpus.take(f"pam/{name}.pam", data, "PAM", what, reference)

    for channels, kind in ((1, "GRAYSCALE"), (2, "GRAYSCALE_ALPHA"), (3, "RGB"), (4, "RGB_ALPHA")):
        for most in (255, 65535):
            numbers = whole(13, 7, channels, most)
            take(
                f"{kind.lower()}_{most}",
                f"{kind}, highest number {most}",
                spread(numbers, most),
                pam(numbers, most, kind),
            )
    bits = whole(13, 7, 1, 1)
    take("black_and_white", "BLACKANDWHITE", spread(bits, 1), pam(bits, 1, "BLACKANDWHITE"))
    odd = whole(13, 7, 4, 1000)
    take("own_kind", "a kind of its own, highest number 1000", spread(odd, 1000), pam(odd, 1000, "heights"))
    rgba = bytes_of(13, 7, 4)
    corpus.lay("rgba.pam", netpbm(rgba))
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "rgba.pam", "ff.pam")
    take("ffmpeg", "RGB_ALPHA of ffmpeg", rgba, corpus.made("ff.pam"))


def add_pfm(corpus: Corpus) -> None:
    def take(name: str, what: str, reference: np.ndarray, data: bytes, maker: str = "own", remark: str = "") -> None:
        corpus.take(f"pfm/{name}.pfm", data, "PFM", what, reference, maker, remark=remark)

    grey, rgb = floats(13, 7, 1, -2, 3), floats(13, 7, 3, -2, 3)
    for array, name in ((grey, "grey"), (rgb, "rgb")):
        take(f"{name}_little", f"{name}, low byte first", array, pfm(array, True))
        take(f"{name}_big", f"{name}, high byte first", array, pfm(array, False))
    unit = floats(33, 21, 1)
    take("unit", "grey of 0 to 1", unit, pfm(unit, True))
    take("scale", "a scale of 0.5", grey, pfm(grey, True, 0.5), remark="the scale changes no value")
    take("one_line", "header of one line", grey, pfm(grey, True, between=" "))
    odd = grey.copy()
    odd[0, :3, 0] = [np.inf, -np.inf, np.nan]
    take("infinite", "infinite numbers and NaN", odd, pfm(odd, True))
    take("opencv", "RGB of OpenCV", rgb, cv2.imencode(".pfm", rgb[..., ::-1])[1].tobytes(), "OpenCV")
    corpus.lay("grey.pfm", pfm(grey, True))
    corpus.run("ffmpeg", "-v", "error", "-y", "-i", "grey.pfm", "ff.pfm")
    take("ffmpeg", "grey of ffmpeg", grey, corpus.made("ff.pfm"), "ffmpeg")


def add(corpus: Corpus) -> None:
    add_pnm(corpus)
    add_pam(corpus)
    add_pfm(corpus)
