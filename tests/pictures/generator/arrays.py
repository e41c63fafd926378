# SPDX-License-Identifier: MIT
"""The arrays that the pictures are made from: rows from the top, channels last.

Each differs in all directions and channels, has its lowest and its highest value, noise, and stretches of one
value that run lengths can hold."""

import numpy as np


def whole(width: int, height: int, channels: int, most: int, seed: int = 1) -> np.ndarray:
    """Whole numbers of 0 to most."""
    noise = np.random.default_rng([seed, width, height, channels])
    y, x = np.mgrid[0:height, 0:width]
    planes = []
    for c in range(channels):
        ramp = (x * (c + 1) / max(width, 2) + y * (2 - c % 3) / (3 * max(height, 2))) % 1.0
        plane = np.where(x * 2 > width, noise.random((height, width)), ramp)
        plane[height // 3, : width * 2 // 3] = (c + 1) / (channels + 1)
        plane[-1, width // 4 :] = 0.75 - c / 8
        numbers = np.minimum(np.floor(plane * (most + 1)), most).astype(np.int64)
        numbers[0, 0], numbers[0, -1], numbers[-1, 0] = 0, most, most * (c + 1) // (channels + 1)
        planes.append(numbers)
    return np.stack(planes, axis=2).astype(np.uint32)


def bytes_of(width: int, height: int, channels: int, seed: int = 1) -> np.ndarray:
    return whole(width, height, channels, 255, seed).astype(np.uint8)


def shorts_of(width: int, height: int, channels: int, seed: int = 1) -> np.ndarray:
    return whole(width, height, channels, 65535, seed).astype(np.uint16)


def floats(width: int, height: int, channels: int, low: float = 0.0, high: float = 1.0, seed: int = 1) -> np.ndarray:
    """Floats of low to high, of which none is a short binary fraction."""
    numbers = whole(width, height, channels, 16777215, seed) / 16777215.0
    return (low + numbers * (high - low)).astype(np.float32)


def halves(width: int, height: int, channels: int, low: float = 0.0, high: float = 1.0, seed: int = 1) -> np.ndarray:
    return floats(width, height, channels, low, high, seed).astype(np.float16)


def spread(numbers: np.ndarray, most: int) -> np.ndarray:
    """Whole numbers of 0 to most as the samples that they stand for: 8 or 16 bits, or floats of 0 to 1."""
    if most > 65535:
        return (numbers / float(most)).astype(np.float32)
    full = 255 if most <= 255 else 65535
    scaled = (numbers.astype(np.uint64) * full + most // 2) // most
    return scaled.astype(np.uint8 if full == 255 else np.uint16)


def palette(colours: int, seed: int = 1) -> np.ndarray:
    """Colours of 8 bits, none of them grey: one row each."""
    table = np.random.default_rng([seed, colours]).integers(0, 256, (colours, 3))
    table[:, 0] = np.arange(colours) * 255 // max(colours - 1, 1)
    return table.astype(np.uint8)


def without_inks(inks: np.ndarray) -> np.ndarray:
    """Red, green and blue of cyan, magenta, yellow and black, where the full number is full ink."""
    full = 255 if inks.dtype == np.uint8 else 65535
    numbers = inks.astype(np.uint64)
    colours = ((full - numbers[..., :3]) * (full - numbers[..., 3:4]) + full // 2) // full
    return np.concatenate([colours, numbers[..., 4:5]], axis=2).astype(inks.dtype)


def divided_by_alpha(picture: np.ndarray) -> np.ndarray:
    """Colours that were multiplied with the last channel, as they were before."""
    colours, alpha = picture[..., :-1], picture[..., -1:]
    if picture.dtype.kind == "f":
        divided = np.where(alpha == 0, colours, colours / np.where(alpha == 0, 1, alpha))
    else:
        full = 255 if picture.dtype == np.uint8 else 65535
        numbers, by = colours.astype(np.uint64), np.maximum(alpha.astype(np.uint64), 1)
        divided = np.where(alpha == 0, numbers, np.minimum((numbers * full + by // 2) // by, full))
    return np.concatenate([divided.astype(picture.dtype), alpha], axis=2)


def turned(stored: np.ndarray, orientation: int) -> np.ndarray:
    """What a viewer shows of the rows as a file has them, by its orientation tag of 1 to 8."""
    turns = {
        1: lambda a: a,
        2: lambda a: a[:, ::-1],
        3: lambda a: a[::-1, ::-1],
        4: lambda a: a[::-1],
        5: lambda a: a.transpose(1, 0, 2),
        6: lambda a: a.transpose(1, 0, 2)[:, ::-1],
        7: lambda a: a[::-1, ::-1].transpose(1, 0, 2),
        8: lambda a: a.transpose(1, 0, 2)[::-1],
    }
    return np.ascontiguousarray(turns[orientation](stored))


def with_blue(vectors: np.ndarray) -> np.ndarray:
    """Red and green of normals with the blue that makes them unit vectors."""
    if vectors.dtype.kind == "f":
        v = vectors.astype(np.float64)
        blue = np.sqrt(np.maximum(0, 1 - (v**2).sum(axis=2, keepdims=True)))
        return np.concatenate([v, blue], axis=2).astype(np.float32)
    full = 255 if vectors.dtype == np.uint8 else 65535
    v = vectors / full * 2 - 1
    blue = np.sqrt(np.maximum(0, 1 - (v**2).sum(axis=2, keepdims=True)))
    encoded = np.floor((blue + 1) / 2 * full + 0.5).astype(vectors.dtype)
    return np.concatenate([vectors, encoded], axis=2)
