# SPDX-License-Identifier: MIT
"""What the figures were measured on."""

import os
import re
import subprocess
from pathlib import Path


def output_of(*command: str) -> str:
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return ""


def machine(build: Path, date: str, quick: bool) -> str:
    cpu = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text(encoding="utf-8"))
    memory = re.search(r"MemTotal:\s*(\d+)", Path("/proc/meminfo").read_text(encoding="utf-8"))
    cache = (build / "CMakeCache.txt").read_text(encoding="utf-8")
    compiler = re.search(r"CMAKE_CXX_COMPILER:\w+=(.*)", cache)
    version = output_of(compiler[1], "--version").splitlines() if compiler else []
    packages = []
    for package in ("libembree-dev", "libopencv-dev", "cimg-dev"):
        number_of = output_of("dpkg-query", "--show", "--showformat=${Version}", package)
        packages.append(f"{package} {number_of or 'unknown'}")
    facts = [
        f"{cpu[1] if cpu else 'unknown processor'}, {os.cpu_count()} processors",
        f"{int(memory[1]) / 2**20:.0f} GiB of memory" if memory else "",
        version[0] if version else "",
        ", ".join(packages),
        f"{date}, commit {output_of('git', 'rev-parse', '--short', 'HEAD') or 'unknown'}",
        "a quick run: fewer maps, sets, rows and rounds" if quick else "a full run",
    ]
    return "; ".join(fact for fact in facts if fact) + "."
