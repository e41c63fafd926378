# SPDX-License-Identifier: MIT
"""Tries changes of the code and counts those that no test sees. scripts/mutate.sh says how to call it."""

import random
import subprocess
import sys
import threading
import time
from dataclasses import dataclass
from pathlib import Path

from changes import Change, changes_of
from lane import Lane

ROOT = Path(__file__).resolve().parents[2]
FOLDERS = ("src", "velloric/src", "toolkit")
SHARES = {"operator": 0.45, "constant": 0.45, "rounding": 0.1}


@dataclass(frozen=True)
class Mutant:
    file: str
    line: int
    change: Change

    def __str__(self) -> str:
        return f"{self.file}:{self.line}\t{self.change.old}\t{self.change.new}"


def all_mutants(source: Path) -> dict[str, list[Mutant]]:
    found: dict[str, list[Mutant]] = {kind: [] for kind in SHARES}
    for folder in FOLDERS:
        for path in sorted((source / folder).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                text = path.read_text()
                for change in changes_of(text):
                    line = text.count("\n", 0, change.at) + 1
                    found[change.kind].append(Mutant(str(path.relative_to(source)), line, change))
    return found


def drawn(mutants: dict[str, list[Mutant]], seed: str):
    """All mutants in the order that the seed gives; a kind that is used up is passed over."""
    draw = random.Random(seed)
    left = {kind: draw.sample(these, len(these)) for kind, these in mutants.items()}
    while any(left.values()):
        kind = draw.choices(list(SHARES), list(SHARES.values()))[0]
        if left[kind]:
            yield left[kind].pop()


class Trials:
    """What was tried, in a file that the next call goes on with."""

    def __init__(self, record: Path, wanted: int):
        self.record = record
        self.wanted = wanted
        self.results: dict[int, tuple[str, str]] = {}
        if record.exists():
            for line in record.read_text().splitlines():
                number, mutant, result = line.split("\t", 1)[0], *line.split("\t", 1)[1].rsplit("\t", 1)
                self.results[int(number)] = (mutant, result)
        self.guard = threading.Lock()
        self.taken = set(self.results)

    def counted(self) -> list[tuple[str, str]]:
        """The first results that count, in the order of the draw."""
        programs = [self.results[n] for n in sorted(self.results) if not self.results[n][1].startswith("no program")]
        return programs[: self.wanted]

    def next(self) -> int | None:
        with self.guard:
            if len(self.counted()) >= self.wanted:
                return None
            number = next(n for n in range(len(self.taken) + 1) if n not in self.taken)
            self.taken.add(number)
            return number

    def note(self, number: int, mutant: Mutant, result: str) -> None:
        with self.guard:
            self.results[number] = (str(mutant), result)
            with self.record.open("a") as record:
                record.write(f"{number}\t{mutant}\t{result}\n")
            print(f"{len(self.counted())}: {mutant}: {result}".replace("\t", " "), flush=True)


def main(wanted: int, lanes: int) -> int:
    revision = subprocess.run(["git", "-C", ROOT, "rev-parse", "HEAD"], capture_output=True, text=True, check=True).stdout.strip()
    folder = ROOT / "build" / "mutants"
    folder.mkdir(parents=True, exist_ok=True)
    trials = Trials(folder / f"{revision}.tsv", wanted)
    if len(trials.counted()) < wanted:
        made = [Lane(ROOT, folder / str(n + 1), revision) for n in range(lanes)]
        for lane in made:
            if not lane.make(lanes):
                print("The tree does not compile as it is.", file=sys.stderr)
                return 2
            lane.learn()
        order = list(drawn(all_mutants(made[0].source), revision))
        parts = [f"{name}/CMakeLists.txt" for name in FOLDERS] if not trials.results else []
        for names in [names for part in parts for names in made[0].rounds(part)]:
            if failed := made[0].failing(names, lanes):
                print(f"{failed} fails before anything is changed.", file=sys.stderr)
                return 2

        def work(lane: Lane) -> None:
            while (number := trials.next()) is not None:
                mutant = order[number]
                start = time.monotonic()
                trials.note(number, mutant, lane.attempt(mutant.file, mutant.change))
                print(f"    {time.monotonic() - start:.0f} s", flush=True)

        threads = [threading.Thread(target=work, args=(lane,)) for lane in made]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    survivors = [mutant for mutant, result in trials.counted() if result == "survived"]
    count = len(trials.counted())
    print(f"{count} mutants of {revision[:10]}, {count - len(survivors)} killed, {100 * (count - len(survivors)) / count:.1f} %")
    for mutant in survivors:
        print("survived: " + mutant.replace("\t", " "))
    return 0 if len(survivors) * 20 <= count else 1


if __name__ == "__main__":
    sys.exit(main(int(sys.argv[1]), int(sys.argv[2])))
