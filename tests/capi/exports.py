# SPDX-License-Identifier: MIT
"""exports.py LIBRARY HEADER MAP: the library exports the functions of the header under the names of the map, and no more.

Ends with 1 if not."""
import re
import subprocess
import sys
from pathlib import Path


def declared(header: str) -> set[str]:
    code = re.sub(r"/\*.*?\*/", "", header, flags=re.DOTALL)
    return set(re.findall(r"\b(umbrix_\w+)\((?!\*)", code))


def exported(library: str) -> dict[str, str]:
    """The name of each symbol that the dynamic linker finds, with its version."""
    table = subprocess.run(
        ["nm", "--dynamic", "--defined-only", library], check=True, capture_output=True, text=True
    ).stdout
    found = {}
    for line in table.splitlines():
        _, kind, name = line.split(" ", 2)
        name, _, version = name.partition("@@")
        if kind != "A" and not name.startswith("__"):
            found[name] = version
    return found


def main(library: str, header: str, names: str) -> int:
    in_header = declared(Path(header).read_text(encoding="utf-8"))
    in_map = set(re.findall(r"^ +(umbrix_\w+);$", Path(names).read_text(encoding="utf-8"), re.MULTILINE))
    in_library = exported(library)
    wrong = [f"{name}: in the header and not in the map" for name in sorted(in_header - in_map)]
    wrong += [f"{name}: in the map and not in the header" for name in sorted(in_map - in_header)]
    wrong += [f"{name}: not exported" for name in sorted(in_header - set(in_library))]
    wrong += [f"{name}: exported and not declared" for name in sorted(set(in_library) - in_header)]
    wrong += [f"{name}: of version {version}" for name, version in sorted(in_library.items()) if version != "UMBRIX_1"]
    print("\n".join(wrong) or f"{len(in_header)} functions")
    return 1 if wrong or not in_header else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
