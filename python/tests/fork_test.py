# SPDX-License-Identifier: MIT
"""In a process that was forked, calls work, or say why not; none hangs."""

import os

import pytest

from conftest import run_python

pytestmark = pytest.mark.skipif(not hasattr(os, "fork"), reason="there is no fork")

COMMON = """
import multiprocessing, os, threading, time
import numpy as np
import umbrix

arrays = [np.random.default_rng(seed).random((150, 160), np.float32) for seed in range(6)]

def work(array):
    return umbrix.map(array, rays=16, relief=0.02)
"""


def test_a_pool_of_forked_processes_works_after_calls_in_the_parent():
    printed = run_python(
        COMMON
        + """
expected = [work(array) for array in arrays]
with multiprocessing.get_context("fork").Pool(3) as pool:
    made = pool.map(work, arrays, 1)
    pool.close()
    pool.join()
print(all(np.array_equal(one, other) and one.kind == "map" and one.attributes == other.attributes
          for one, other in zip(made, expected)))
print(np.array_equal(work(arrays[0]), expected[0]))
"""
    )
    assert printed == "True\nTrue\n"


def test_a_process_that_was_forked_from_a_call_at_work_says_so():
    printed = run_python(
        COMMON
        + """
begun, stop = threading.Event(), False

def progress(share, stage):
    begun.set()
    return not stop

def at_work():
    try:
        umbrix.map(np.zeros((1024, 1024), np.float32), rays=10000, progress=progress)
    except umbrix.Stopped:
        pass

thread = threading.Thread(target=at_work)
thread.start()
begun.wait()
child = os.fork()
if child == 0:
    try:
        work(arrays[0])
        os._exit(1)
    except umbrix.LibraryError as error:
        os._exit(0 if "forked" in str(error) else 2)
    finally:
        os._exit(3)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
stop = True
thread.join()
print(work(arrays[0]).shape)
"""
    )
    assert printed == "0\n(150, 160, 3)\n"


def test_a_fork_between_calls_of_threads_works():
    printed = run_python(
        COMMON
        + """
threads = [threading.Thread(target=work, args=(array,)) for array in arrays]
for thread in threads:
    thread.start()
for thread in threads:
    thread.join()
child = os.fork()
if child == 0:
    os._exit(0 if work(arrays[0]).shape == (150, 160, 3) else 1)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
"""
    )
    assert printed == "0\n"
