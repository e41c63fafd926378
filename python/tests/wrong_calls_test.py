# SPDX-License-Identifier: MIT
"""Thousands of calls that make no sense: each ends in an exception that is meant for it, and the next one works."""

import numpy as np
import pytest

import umbrix
from conftest import hills

CALLS = 2000
SEED = 7

NO_ARRAYS = [
    None,
    3,
    "rock.png",
    b"",
    object(),
    {},
    set(),
    [[1], [2, 3]],
    [["a", "b"]],
    np.zeros(0, np.float32),
    np.zeros(7, np.float32),
    np.zeros((0, 4), np.float32),
    np.zeros((4, 0, 3), np.uint8),
    np.zeros((4, 4, 5), np.uint8),
    np.zeros((2, 2, 2, 2), np.float16),
    np.zeros((3, 3), complex),
    np.zeros((3, 3), "U3"),
    np.zeros((3, 3), "timedelta64[s]"),
    np.zeros((70000, 1), np.uint8),
    np.zeros((1, 70000), np.uint8),
    np.full((9, 9), np.nan, np.float32),
    np.full((9, 9), np.inf, np.float16),
    np.full((9, 9), -1, np.float32),
    np.full((9, 9), 1e30),
    np.full((9, 9), 300),
    np.ma.masked_all((3, 3)),
    umbrix,
    lambda: None,
]
NO_VALUES = [object(), [], {}, (1,), (1, 2, 3), b"1", 1j, "much", "\0", "", float("nan"), float("-inf"), 1e300, -1e300, 10**40]
NO_OUTS = [
    0,
    [],
    "out",
    np.zeros((9, 9), np.float32),
    np.zeros((9, 9, 3), np.float64),
    np.zeros((9, 9, 5), np.float32),
    np.zeros((9, 9, 3), ">f4"),
    np.broadcast_to(np.float32(0), (9, 9, 3)),
]
NO_WORDS = ["", "x", "relie", "map", "h-scale", "Relief", "__class__", "self", "settings", "\u2603"]
NO_FILES = ["", "none/a.png", "a", "a.xyz", "/", ".", "a\0.png", None, 3, 3.5, [], "x" * 5000 + ".png"]


def pick(random, many):
    return many[random.integers(len(many))]


@pytest.fixture
def wrong_calls(tmp_path, monkeypatch):
    """Makers of calls that cannot be right: each takes random numbers, and gives a call and what it is about."""
    monkeypatch.chdir(tmp_path)
    ground = hills(9, 9)
    vectors = umbrix.normals(ground)
    umbrix.write("ground.png", ground)
    made = umbrix.map(ground, rays=2)
    makers = [umbrix.normals, umbrix.map, umbrix.light, umbrix.occlusion, umbrix.bent]
    names = list(umbrix.settings())
    stack = umbrix.Stack().add(ground)

    def no_array(random):
        make, array = pick(random, makers), pick(random, NO_ARRAYS)
        return (lambda: make(array)), (make.__name__, array)

    def no_value(random):
        make, name, value = pick(random, makers), pick(random, names), pick(random, NO_VALUES)
        if isinstance(value, (int, float)) and name == "replace_invalid":  # any number takes their place
            return no_array(random)
        return (lambda: make(ground, **{name: value})), (make.__name__, name, value)

    def no_out(random):
        make, out = pick(random, [umbrix.normals, umbrix.map, umbrix.light]), pick(random, NO_OUTS)
        return (lambda: make(ground, out=out)), (make.__name__, "out", type(out))

    def no_word(random):
        make, word = pick(random, [*makers, umbrix.heights, umbrix.check]), pick(random, NO_WORDS)
        return (lambda: make(ground, **{word: 1})), (make.__name__, word)

    def no_file(random):
        file = pick(random, NO_FILES)
        if random.integers(2):
            return (lambda: umbrix.read(file)), ("read", file)
        return (lambda: umbrix.write(file, ground)), ("write", file)

    def no_saving(random):
        name = pick(random, ["depth", "kind", "rounding", "compression", "overwrite", "progress"])
        value = pick(random, [0, 7, "9", 3.5, [], {}, object(), b"x", "\u2603"])
        return (lambda: umbrix.write("b.png", ground, **{name: value})), ("write", name, value)

    def no_picture(random):
        call = pick(random, [lambda array: umbrix.write("b.png", array), umbrix.check, umbrix.Stack().add, umbrix.heights])
        array = pick(random, NO_ARRAYS[:20])
        return (lambda: call(array)), (call, array)

    def no_light(random):
        name = pick(random, ["azimuth", "elevation", "exposure", "ambient", "weights", "albedo", "force"])
        value = pick(random, ["x", -1e9, float("nan"), [], object(), 2e9, b""])
        return (lambda: umbrix.relight(made, **{name: value})), ("relight", name, value)

    def no_layer(random):
        name = pick(random, ["blend", "kind", "opacity", "n_scale", "detail", "gaussian", "depth", "convex", "concave"])
        value = pick(random, ["x", 1e9, float("inf"), [], object(), b""])
        return (lambda: stack.add(ground, **{name: value})), ("Stack.add", name, value)

    def no_fit(random):
        one, other = pick(random, [ground, *NO_ARRAYS[:20]]), pick(random, [vectors[:5], *NO_ARRAYS[:20]])
        return (lambda: umbrix.fit(one, other)), ("fit", one, other)

    def no_preset(random):
        value = pick(random, ["", "x", "x.toml", "/", 3, None, b"stone", ["stone"]])
        return (lambda: umbrix.preset(value)), ("preset", value)

    def no_folder(random):
        name, value = pick(
            random,
            [("make", "x"), ("make", 3), ("recurse", 1), ("overwrite", "no"), ("relief", "x"), ("releif", 1)],
        )
        folder = pick(random, [".", "none"])
        return (lambda: umbrix.batch(folder, **{name: value})), ("batch", name, value)

    return [
        no_array, no_value, no_out, no_word, no_file, no_saving, no_picture, no_light, no_layer, no_fit, no_preset,
        no_folder,
    ]  # fmt: skip


def test_calls_that_make_no_sense_end_in_exceptions(wrong_calls, tmp_path):
    random = np.random.default_rng(SEED)
    ground = hills(9, 9)
    expected = umbrix.normals(ground)
    went_through, odd = [], []
    for _ in range(CALLS):
        call, about = pick(random, wrong_calls)(random)
        try:
            call()
        except (TypeError, ValueError, OSError, umbrix.Error) as error:
            if not str(error):
                odd.append((about, error))
        except BaseException as error:
            odd.append((about, error))
        else:
            went_through.append(about)
    assert not odd and not went_through
    assert np.array_equal(umbrix.normals(ground), expected)
    assert [file.name for file in tmp_path.iterdir()] == ["ground.png"]
