# SPDX-License-Identifier: MIT
"""Every room includes rooms below it only, as the house has them; no includes run in a circle; DevIL and the system
keep to their rooms."""

import re
from os.path import normpath
from pathlib import Path

import house

INCLUDE = re.compile(r"^[ \t]*#[ \t]*include[ \t]*([<\"])([^>\"]+)[>\"]", re.MULTILINE)
DEVIL = re.compile(r"^IL/")
SYSTEM = re.compile(r"^(IL/.*|windows\.h|unistd\.h|dirent\.h|sys/.*)$")


class Tree:
    """Which file each include line of the tree means."""

    def __init__(self, root: Path):
        self.root = root
        self.known: dict[str, list[tuple[str, str, str]]] = {}

    def meant(self, part: house.Part, includer: str, kind: str, name: str) -> str:
        """The file that a line names, from the root; "" if it is none of the tree."""
        beside = [Path(includer).parent.as_posix()] if kind == '"' else []
        for folder in [*beside, *part.include_roots, ""]:
            path = normpath(f"{folder}/{name}" if folder else name)
            if (self.root / path).is_file():
                return path
        return ""

    def includes(self, path: str) -> list[tuple[str, str, str]]:
        """(kind, name, file meant) of each include line of a file."""
        part = house.part_of(path)
        if part is None:
            return []
        if path not in self.known:
            text = (self.root / path).read_text(encoding="utf-8")
            self.known[path] = [
                (kind, name, self.meant(part, path, kind, name)) for kind, name in INCLUDE.findall(text)
            ]
        return self.known[path]

    def is_generated(self, name: str) -> bool:
        """Whether the build makes a header of this name from a template."""
        return any(self.root.glob(f"*/**/{Path(name).name}.in"))

    def reached_from(self, start: str) -> set[str]:
        reached, pending = set(), [start]
        while pending:
            path = pending.pop()
            if path and path not in reached and (self.root / path).is_file():
                reached.add(path)
                pending += [meant for _, _, meant in self.includes(path)]
        return reached

    def circle(self, path: str, way: list[str], done: set[str]) -> list[str]:
        """The first circle of includes on the way from a file; none leaves the list empty."""
        if path in way:
            return [*way[way.index(path) :], path]
        if path in done:
            return []
        done.add(path)
        for _, _, meant in self.includes(path):
            found = self.circle(meant, [*way, path], done) if meant else []
            if found:
                return found
        return []


def faults_of(tree: Tree, part: house.Part, includer: str, public: set[str]) -> list[str]:
    if not house.is_declared(part, includer):
        return [f"{includer}: its folder is no room of the house; tests/conventions/house.py declares them"]
    faults = []
    for kind, name, meant in tree.includes(includer):
        if meant and not house.is_allowed(part, includer, meant, public):
            faults.append(f"{includer}: must not include {name}, which is not below its room")
        if not meant and kind == '"' and not tree.is_generated(name):
            faults.append(f"{includer}: includes {name}, which is not there")
        if part.folder == "src" and SYSTEM.match(name) and not includer.startswith("src/boundary/"):
            faults.append(f"{includer}: only the boundary includes {name}")
        if part.folder == "toolkit" and DEVIL.match(name):
            faults.append(f"{includer}: includes {name}, and the toolkit has no use for DevIL")
    return faults


def check(root: Path) -> list[str]:
    tree = Tree(root)
    public = tree.reached_from("src/umbrixlib.h")
    faults, done = [], set()
    for part in house.PARTS:
        for path in house.sources(root, part):
            includer = path.relative_to(root).as_posix()
            faults += faults_of(tree, part, includer, public)
            circle = tree.circle(includer, [], done)
            if circle:
                faults.append(f"{' includes '.join(circle)}: a circle")
    return faults
