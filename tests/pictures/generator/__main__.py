# SPDX-License-Identifier: MIT
"""Makes the pictures of the conformance suite, their references and the table of both.

Run by hand, where a format is to have a variant more: /usr/bin/python3 tests/pictures/generator. The files are
committed; no test and no CI job runs this. It needs the Debian packages python3-numpy, python3-pil,
python3-opencv, imagemagick, libtiff-tools, ffmpeg, netpbm, webp, libnvtt-bin, libjpeg-turbo-progs, libopenexr-dev
and g++."""

import importlib
import os
import shutil
import sys
from pathlib import Path

from corpus import Corpus

os.environ["OPENCV_IO_ENABLE_OPENEXR"] = "1"  # before OpenCV is there

MODULES = sys.argv[1:] or [
    "png_files",
    "tiff_files",
    "tiff_of_programs",
    "tiff_by_libtiff",
    "exr_files",
    "tga_files",
    "bmp_files",
    "dds_files",
    "pnm_files",
    "photo_files",
    "old_files",
    "deep_files",
    "refused_files",
]


def main() -> None:
    root = Path(__file__).resolve().parents[1]
    for folder in ("files", "references"):
        shutil.rmtree(root / folder, ignore_errors=True)
    corpus = Corpus(root)
    for name in MODULES:
        importlib.import_module(name).add(corpus)
    corpus.write_index()
    shutil.rmtree(corpus.scratch)
    print(len(corpus.entries), "files")


main()
