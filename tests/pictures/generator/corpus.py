# SPDX-License-Identifier: MIT
"""Where the pictures, the arrays that they have to give, and the table of both are kept."""

import subprocess
import tempfile
import zlib
from dataclasses import dataclass
from pathlib import Path

import numpy as np

TYPES = {"uint8": "u8", "uint16": "u16", "float16": "half", "float32": "float"}
MOST_BYTES = 40 * 1024


@dataclass
class Entry:
    file: str
    format: str
    what: str
    maker: str
    judge: str  # whose word the reference is: "array", or a program's
    outcome: str  # "taken" or "refused"
    expected: str  # the reference's name, or the sentence
    tolerance: float
    remark: str


class Corpus:
    """Writes files/FOLDER/NAME, references/NAME and index.tsv below root."""

    def __init__(self, root: Path):
        self.root = root
        self.entries: list[Entry] = []
        self.scratch = Path(tempfile.mkdtemp(prefix="pictures_"))

    def take(
        self,
        file: str,
        data: bytes,
        format: str,
        what: str,
        reference: np.ndarray,
        maker: str = "own",
        tolerance: float = 0,
        remark: str = "",
        judge: str = "array",
    ) -> None:
        """A file that has to give reference: rows from the top, channels last."""
        if reference.ndim == 2:
            reference = reference[..., np.newaxis]
        samples = np.ascontiguousarray(reference)
        samples = samples.astype(samples.dtype.newbyteorder("<"))
        height, width, channels = samples.shape
        raw = samples.tobytes()
        name = f"{width}x{height}x{channels}_{TYPES[samples.dtype.name]}_{zlib.crc32(raw):08x}.raw"
        self._write(self.root / "references" / name, raw)
        self._add(file, data, Entry(file, format, what, maker, judge, "taken", name, tolerance, remark))

    def refuse(
        self, file: str, data: bytes, format: str, what: str, sentence: str, maker: str = "own", remark: str = ""
    ) -> None:
        """A sound file that has to be refused by sentence."""
        self._add(file, data, Entry(file, format, what, maker, "-", "refused", sentence, 0, remark))

    def write_index(self) -> None:
        lines = [
            "file\tformat\twhat is special\tmade by\treference by\toutcome\treference or sentence\ttolerance\tremark"
        ]
        for e in self.entries:
            line = [e.file, e.format, e.what, e.maker, e.judge, e.outcome, e.expected, f"{e.tolerance:g}", e.remark]
            if any("\t" in field or "\n" in field for field in line):
                raise ValueError(f"{e.file}: a field holds a tab or a line break")
            lines.append("\t".join(line).rstrip())
        (self.root / "index.tsv").write_text("\n".join(lines) + "\n")

    def _add(self, file: str, data: bytes, entry: Entry) -> None:
        if any(e.file == file for e in self.entries):
            raise ValueError(f"{file} is made twice")
        if not 0 < len(data) <= MOST_BYTES:
            raise ValueError(f"{file} has {len(data)} bytes")
        self._write(self.root / "files" / file, data)
        self.entries.append(entry)

    @staticmethod
    def _write(path: Path, data: bytes) -> None:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)

    def run(self, *command: object) -> bytes:
        """Runs a program in the folder for scratch files, and gives what it printed."""
        done = subprocess.run([str(c) for c in command], cwd=self.scratch, capture_output=True)
        if done.returncode != 0:
            raise RuntimeError(f"{command}: {done.stderr.decode(errors='replace')}")
        return done.stdout

    def made(self, name: str) -> bytes:
        """A file that a program left in the folder for scratch files."""
        return (self.scratch / name).read_bytes()

    def lay(self, name: str, data: bytes) -> Path:
        """Puts a file for programs into the folder for scratch files."""
        path = self.scratch / name
        path.write_bytes(data)
        return path


def netpbm(array: np.ndarray) -> bytes:
    """PGM, PPM or PAM of 8 or 16 bits, which all programs read."""
    height, width, channels = array.shape
    most = 255 if array.dtype == np.uint8 else 65535
    samples = array.astype(array.dtype.newbyteorder(">")).tobytes()
    if channels in (1, 3):
        return f"P{5 if channels == 1 else 6}\n{width} {height}\n{most}\n".encode() + samples
    kind = "GRAYSCALE_ALPHA" if channels == 2 else "RGB_ALPHA"
    header = f"P7\nWIDTH {width}\nHEIGHT {height}\nDEPTH {channels}\nMAXVAL {most}\nTUPLTYPE {kind}\nENDHDR\n"
    return header.encode() + samples
