# SPDX-License-Identifier: MIT
"""Calls tell how far they are, can be stopped, leave the GIL to others, and leave nothing behind."""

import os
import sys
import threading
import warnings

import numpy as np
import pytest

import umbrix
from conftest import hills
from umbrix import _calls


def test_progress_is_told_on_the_thread_of_the_caller(large):
    told = []

    def progress(share, stage):
        told.append((share, stage, threading.get_ident()))

    umbrix.map(large, rays=16, progress=progress)
    assert told and {thread for _, _, thread in told} == {threading.get_ident()}
    assert all(isinstance(share, float) and 0 <= share <= 1 for share, _, _ in told)
    assert all(isinstance(stage, str) and stage for _, stage, _ in told)


@pytest.mark.parametrize("answer", [False, np.False_], ids=["bool", "numpy"])
def test_only_false_stops(large, answer):
    for other in (None, True, 0, 1, "", np.True_):
        umbrix.normals(large, progress=lambda share, stage, other=other: other)
    with pytest.raises(umbrix.Stopped):
        umbrix.map(large, rays=10000, progress=lambda share, stage: answer)
    assert umbrix.normals(large[:9, :9]).shape == (9, 9, 3)


@pytest.mark.parametrize("kind", [KeyError, KeyboardInterrupt, SystemExit, GeneratorExit])
def test_exceptions_of_the_progress_function_end_the_call_and_arrive(large, kind):
    raised = kind("what the function raises")

    def progress(share, stage):
        raise raised

    with pytest.raises(kind) as caught:
        umbrix.map(large, rays=10000, progress=progress)
    assert caught.value is raised
    umbrix.normals(large[:9, :9])


def test_a_progress_function_cannot_call_the_library(large):
    def progress(share, stage):
        umbrix.normals(large[:9, :9])

    with pytest.raises(RuntimeError, match="while it works"):
        umbrix.map(large, rays=10000, progress=progress)


def test_what_is_no_function_is_refused(heights):
    with pytest.raises(TypeError, match="progress"):
        umbrix.normals(heights, progress=3)


def test_other_threads_go_on_while_the_library_works(large):
    """With such a switch interval a thread that waits for the GIL gets it only where its holder gives it up."""
    begun, answered = threading.Event(), threading.Event()
    outcome = []

    def work():
        def progress(share, stage):
            begun.set()
            return not answered.is_set()

        try:
            umbrix.map(large, rays=10000, progress=progress)
            outcome.append("went on to its end")
        except umbrix.Stopped:
            outcome.append("stopped")

    interval = sys.getswitchinterval()
    thread = threading.Thread(target=work)
    try:
        sys.setswitchinterval(1000)
        thread.start()
        begun.wait()
        answered.set()
        thread.join()
    finally:
        sys.setswitchinterval(interval)
    assert outcome == ["stopped"]


def test_threads_have_their_own_results_and_errors():
    arrays = [hills(60 + 10 * number, 70, number) for number in range(8)]
    expected = [umbrix.normals(array) for array in arrays]
    wrong = []

    def work(number):
        for _ in range(20):
            if not np.array_equal(umbrix.normals(arrays[number]), expected[number]):
                wrong.append(number)
            try:
                umbrix.normals(arrays[number], relief=11 + number)
                wrong.append(number)
            except umbrix.SettingError as error:
                if str(11 + number) not in str(error):
                    wrong.append(str(error))

    threads = [threading.Thread(target=work, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_notes_are_warnings_at_the_line_of_the_call(heights):
    def too_steep():
        return umbrix.map(heights, relief=0.5, rays=8, mode="squared")

    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        too_steep()
    notes = [one for one in caught if issubclass(one.category, umbrix.PictureWarning)]
    assert notes and "relief" in str(notes[0].message) and all(one.filename == __file__ for one in notes)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(umbrix.PictureWarning):
            too_steep()


def resident_bytes():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


@pytest.mark.skipif(not os.path.exists("/proc/self/statm"), reason="there is no /proc")
def test_a_thousand_calls_leave_no_memory_behind(tmp_path):
    array = hills(64, 64)
    file = tmp_path / "a.png"
    umbrix.write(file, array)

    def wrong():
        with pytest.raises(ValueError):
            umbrix.normals(array, relief=99)

    def stopped():
        with pytest.raises(ZeroDivisionError):
            umbrix.read(file, progress=lambda share, stage: 1 / 0)

    kinds = [
        lambda: umbrix.map(array, rays=2),
        lambda: umbrix.read(file).samples,
        lambda: umbrix.read(file).heights,
        lambda: umbrix.Stack().add(array).heights(),
        lambda: umbrix.check(array),
        lambda: umbrix.bent(array),
        wrong,
        stopped,
    ]

    def calls(count):
        for number in range(count):
            umbrix.normals(array, relief=0.01 + number * 1e-4)
            kinds[number % len(kinds)]()

    calls(100)
    before = resident_bytes()
    calls(500)
    assert resident_bytes() - before < 8 << 20  # the arrays of all calls are some 40 MB


def test_threads_leave_no_contexts_behind():
    for _ in range(200):
        thread = threading.Thread(target=umbrix.normals, args=(np.zeros((3, 3), np.float32),))
        thread.start()
        thread.join()
    assert not _calls._under_way
