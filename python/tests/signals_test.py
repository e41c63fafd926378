# SPDX-License-Identifier: MIT
"""Signals are handled while the library works: Ctrl-C above all. Each program would work for hours if not."""

import os
import signal

import pytest

from conftest import run_python

pytestmark = pytest.mark.skipif(os.name != "posix", reason="signals of POSIX")

# Sends the signal of a name as soon as a call is under way in the main thread.
COMMON = """
import os, signal, sys, threading, time
import numpy as np
import umbrix
from umbrix import _calls

array = np.random.default_rng(1).random((1024, 1024), np.float32)

def send(*names):
    def work():
        while not _calls._under_way:
            time.sleep(0.01)
        for name in names:
            time.sleep(0.1)
            os.kill(os.getpid(), getattr(signal, name))
    threading.Thread(target=work).start()
"""


@pytest.mark.parametrize("progress", ["None", "lambda share, stage: None", "lambda share, stage: time.sleep(600)"])
def test_ctrl_c_ends_a_call(progress):
    printed = run_python(
        COMMON
        + f"""
before = signal.getsignal(signal.SIGINT)
for _ in range(2):
    send("SIGINT")
    try:
        umbrix.map(array, rays=10000, progress={progress})
    except KeyboardInterrupt:
        print("interrupted")
assert signal.getsignal(signal.SIGINT) is before
print(umbrix.normals(array).shape)
"""
    )
    assert printed == "interrupted\ninterrupted\n(1024, 1024, 3)\n"


def test_ctrl_c_ends_a_program_as_usual():
    printed = run_python(
        f"""
import subprocess, sys
done = subprocess.run([sys.executable, "-c", {COMMON + 'send("SIGINT"); umbrix.map(array, rays=10000)'!r}],
                      stderr=subprocess.PIPE, text=True)
print(done.returncode, done.stderr.splitlines()[-1], "ignored" in done.stderr)
"""
    )
    assert printed == f"{-signal.SIGINT} KeyboardInterrupt False\n"


def test_handlers_of_other_signals_have_their_turn_and_may_end_the_call():
    printed = run_python(
        COMMON
        + """
def told(number, frame):
    print("told of", number == signal.SIGUSR1, flush=True)

def timed_out(number, frame):
    raise TimeoutError("too long")

signal.signal(signal.SIGUSR1, told)
signal.signal(signal.SIGALRM, timed_out)
send("SIGUSR1", "SIGUSR1", "SIGALRM")
try:
    umbrix.map(array, rays=10000)
except TimeoutError as error:
    print(error)
assert signal.getsignal(signal.SIGALRM) is timed_out and signal.getsignal(signal.SIGUSR1) is told
"""
    )
    assert printed == "told of True\ntold of True\ntoo long\n"


def test_a_thread_that_is_not_the_main_one_leaves_ctrl_c_to_it():
    printed = run_python(
        COMMON
        + """
stop = False

def work():
    try:
        umbrix.map(array, rays=10000, progress=lambda share, stage: not stop)
    except umbrix.Stopped:
        print("stopped")

thread = threading.Thread(target=work)
thread.start()
send("SIGINT")
try:
    while True:
        time.sleep(0.01)
except KeyboardInterrupt:
    print("interrupted", flush=True)
stop = True
thread.join()
"""
    )
    assert printed == "interrupted\nstopped\n"
