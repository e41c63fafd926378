# SPDX-License-Identifier: MIT
"""What the blocks of BC1 to BC5 hold, by the formulas of their description, each rounded once at the end."""

import numpy as np


def rounded(values: list[float]) -> list[int]:
    return [int(np.floor(v + 0.5)) for v in values]


def colours(block: bytes, only_four: bool) -> np.ndarray:
    """16 texels of red, green, blue, alpha."""
    a, b = int.from_bytes(block[:2], "little"), int.from_bytes(block[2:4], "little")

    def parts(word: int) -> np.ndarray:
        return np.array([(word >> 11) / 31, (word >> 5 & 63) / 63, (word & 31) / 31]) * 255

    table = [parts(a), parts(b)]
    if only_four or a > b:
        table += [(2 * table[0] + table[1]) / 3, (table[0] + 2 * table[1]) / 3]
        alphas = [255] * 4
    else:
        table += [(table[0] + table[1]) / 2, np.zeros(3)]
        alphas = [255, 255, 255, 0]
    choices = int.from_bytes(block[4:8], "little")
    result = []
    for _ in range(16):
        result.append(rounded(table[choices & 3]) + [alphas[choices & 3]])
        choices >>= 2
    return np.array(result)


def channel(block: bytes, signed: bool = False) -> np.ndarray:
    """16 values of 0 to 255, or of -1 to 1."""
    a, b = block[0], block[1]
    if signed:
        a, b = (max(v - 256 if v > 127 else v, -127) / 127 for v in (a, b))
    steps = 7 if a > b else 5
    table = [a, b] + [((steps - i) * a + i * b) / steps for i in range(1, steps)]
    if steps == 5:
        table += [-1, 1] if signed else [0, 255]
    choices = int.from_bytes(block[2:8], "little")
    values = [table[choices >> 3 * i & 7] for i in range(16)]
    return np.array(values) if signed else np.array(rounded(values))


def texels(block: bytes, form: str) -> np.ndarray:
    """4 x 4 texels of a block, channels last."""
    if form == "bc1":
        result = colours(block, False)
    elif form == "bc2":
        result = colours(block[8:], True)
        result[:, 3] = [(block[i // 2] >> 4 * (i % 2) & 15) * 17 for i in range(16)]
    elif form == "bc3":
        result = colours(block[8:], True)
        result[:, 3] = channel(block[:8])
    elif form in ("bc4", "bc4s"):
        result = channel(block, form == "bc4s")[:, None]
    else:
        result = np.stack([channel(block[:8], form == "bc5s"), channel(block[8:], form == "bc5s")], axis=1)
    return result.reshape(4, 4, -1)


def picture(data: bytes, width: int, height: int, form: str) -> np.ndarray:
    """All blocks of a picture, the top row first."""
    size = 8 if form in ("bc1", "bc4", "bc4s") else 16
    across, down = -(-width // 4), -(-height // 4)
    blocks = [texels(data[i * size : (i + 1) * size], form) for i in range(across * down)]
    rows = [np.concatenate(blocks[y * across : (y + 1) * across], axis=1) for y in range(down)]
    whole = np.concatenate(rows, axis=0)[:height, :width]
    return whole.astype(np.float32 if form.endswith("s") else np.uint8)
