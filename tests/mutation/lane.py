# SPDX-License-Identifier: MIT
"""A copy of the tree with a build of its own, in which one change at a time is made and tried."""

import json
import os
import re
import signal
import subprocess
from pathlib import Path

from changes import Change

# Headers that more sources read take too long to try.
MOST_READERS = 8
# Seconds of CPU time for one test, as a change may make a loop endless, and of wall time, as it may wait without end:
# far above what each takes on a busy machine.
CPU_LIMIT = 60
WALL_LIMIT = 600

# What reads sources or documents instead of running code, or builds everything anew.
NEVER = r"^(Conventions|Package|Cluster|Docs\.(Links|Site|Checks))\b"
# Whose tests see a change: the folders of tests that use the part of the tree.
SEEN_BY = {
    "toolkit": ("toolkit", "pictures", "cli"),
    "src": ("boundary", "engine", "filters", "foundation", "layers", "normals", "umbrix", "worklist", "velloric", "toolkit/tasks"),
}
SEEN_BY["velloric"] = SEEN_BY["src"]
# Tests of whole results. Other slow tests are left out: of the first 32 changes that a test saw, no slow one was the only.
RESULTS = r"^.*GoldenPictures$"


class Lane:
    def __init__(self, root: Path, folder: Path, revision: str):
        self.source = folder / "source"
        self.build = folder / "build"
        self.temporary = folder / "tmp"
        self.temporary.mkdir(parents=True, exist_ok=True)
        if not self.source.exists():
            _call(["git", "-C", root, "worktree", "add", "--force", "--detach", self.source, revision])
        _call(["git", "-C", self.source, "checkout", "--force", "--detach", revision])
        # Optimised a little, as the tests compute much; not in unity, so that a change costs one object; warnings are
        # no errors, as a change may leave a name unused. Programs need no new link for a new shared library.
        _call(["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
               "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
               "-DUMBRIX_BUILD_TESTS=ON", "-DUMBRIX_BUILD_EXAMPLES=ON"])  # fmt: skip

    def make(self, jobs: int) -> bool:
        return subprocess.run(["cmake", "--build", self.build, "--parallel", str(jobs)], capture_output=True).returncode == 0

    def learn(self) -> None:
        """Reads from the build which sources read which header, and which test lies in which folder."""
        self.readers: dict[str, int] = {}
        listed = subprocess.run(["ninja", "-C", self.build, "-t", "deps"], capture_output=True, text=True, check=True)
        for line in listed.stdout.splitlines():
            if line.startswith("    "):
                path = os.path.normpath(self.build / line.strip())
                if path.startswith(f"{self.source}/"):
                    name = path[len(f"{self.source}/") :]
                    self.readers[name] = self.readers.get(name, 0) + 1
        shown = subprocess.run(["ctest", "--test-dir", self.build, "--show-only=json-v1"], capture_output=True, text=True, check=True)
        self.tests: list[tuple[str, str, bool]] = []  # name, folder of its program, fast
        for test in json.loads(shown.stdout)["tests"]:
            labels = next((p["value"] for p in test["properties"] if p["name"] == "LABELS"), [])
            folder = os.path.relpath(os.path.dirname(test.get("command", ["/"])[0]), self.build)
            if not re.match(NEVER, test["name"]):
                self.tests.append((test["name"], folder, "fast" in labels))

    def rounds(self, file: str) -> list[list[str]]:
        """The tests to try in turn: those of the file's folder, whole results, the other fast ones."""
        part = file.split("/")[0]
        folder = Path("tests") / Path(file).parent.relative_to("src" if part == "src" else ".")
        if part == "velloric":
            folder = Path("tests/velloric")
        near: list[str] = []
        while not near and folder != Path("tests"):
            near = [name for name, at, fast in self.tests if fast and Path(at).is_relative_to(folder)]
            folder = folder.parent
        others = [name for name, at, fast in self.tests
                  if fast and name not in near and any(Path(at).is_relative_to(f"tests/{each}") for each in SEEN_BY[part])]  # fmt: skip
        results = [name for name, _, _ in self.tests if re.match(RESULTS, name)]
        return [names for names in (near, results, others) if names]

    def attempt(self, file: str, change: Change) -> str:
        """Makes the change and undoes it. Returns "killed by TEST", "survived" or "no program: WHY"."""
        if self.readers.get(file, 0) > MOST_READERS or file not in self.readers:
            return f"no program: {self.readers.get(file, 0)} sources read the header"
        path = self.source / file
        text = path.read_text()
        path.write_text(change.made_in(text))
        try:
            if not self.make(1):
                return "no program: does not compile"
            for names in self.rounds(file):
                if failed := self.failing(names):
                    return f"killed by {failed}"
            return "survived"
        finally:
            path.write_text(text)

    def failing(self, names: list[str], jobs: int = 1) -> str:
        """The first of these tests that fails twice, or that runs out of time; empty if none does."""
        failed = self._run(names, jobs)
        if failed and not failed.endswith(" (endless)") and not self._run([failed]):
            return self.failing([name for name in names if name != failed], jobs)  # a busy machine, not the change
        return failed

    def _run(self, names: list[str], jobs: int = 1) -> str:
        chosen = "^(" + "|".join(_escaped(name) for name in names) + ")$"
        command = ["prlimit", f"--cpu={CPU_LIMIT}:", "ctest", "--test-dir", self.build, "-R", chosen, "--stop-on-failure",
                   "--timeout", str(WALL_LIMIT), "--parallel", str(jobs)]  # fmt: skip
        environment = os.environ | {"TMPDIR": str(self.temporary), "UMBRIX_TEST_SHARE": "4"}
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, env=environment,
                              start_new_session=True) as run:  # fmt: skip
            output = run.communicate()[0]
            try:
                os.killpg(run.pid, signal.SIGKILL)  # what a test left running
            except ProcessLookupError:
                pass
        if run.returncode == 0:
            return ""
        found = re.search(r"^\s+\d+ - (\S+) \((\w+)", output, re.M)
        if not found:
            return "ctest itself"
        return found[1] + (" (endless)" if found[2] == "Timeout" else "")


def _escaped(name: str) -> str:
    return re.sub(r"([.+*?()\[\]\\^$|])", r"\\\1", name)


def _call(command: list) -> None:
    subprocess.run(command, check=True, capture_output=True)
