# SPDX-License-Identifier: MIT
"""Compares what a shared library exports with a checked-in list.

symbols.py LIBRARY LIST           prints the differences, ends with 1 if there are any
symbols.py LIBRARY LIST --write   writes the list: a change of it is a change of the library's interface
"""
import re
import subprocess
import sys

STRING = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"


def exported(library):
    """Readable names of the functions and objects that the dynamic linker finds in a library."""
    table = subprocess.run(["nm", "--dynamic", "--defined-only", "--demangle", library],
                           check=True, capture_output=True, text=True).stdout
    names = set()
    for line in table.splitlines():
        _, kind, name = line.split(" ", 2)
        # Names with two underscores in front are the linker's and the sanitizers'; weak ones come from templates of
        # the C++ library that every user of them has as well.
        if kind in "TBDRG" and not re.match(r"__|_(edata|end|init|fini)$", name):
            names.add(name.replace(STRING, "std::string"))
    return sorted(names)


def main(library, list_file, *options):
    found = exported(library)
    if options == ("--write",):
        with open(list_file, "w", encoding="utf-8") as out:
            out.writelines(name + "\n" for name in found)
        return 0
    with open(list_file, encoding="utf-8") as known_file:
        known = known_file.read().splitlines()
    gone = sorted(set(known) - set(found))
    new = sorted(set(found) - set(known))
    for name in gone:
        print(f"no longer exported: {name}")
    for name in new:
        print(f"exported and not in {list_file}: {name}")
    if not found:
        print(f"{library} exports nothing")
    return 1 if gone or new or not found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
