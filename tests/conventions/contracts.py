# SPDX-License-Identifier: MIT
"""Each comment marked "Contract:" names, after "Test:", the test that keeps the behaviour."""

import re
from pathlib import Path

from source_tree import files

FOLDERS = ["common", "src", "velloric", "coralith", "apps"]
TEST_FOLDERS = ["tests", "velloric", "coralith"]
CODE = {".cpp", ".h"}

COMMENT_LINE = re.compile(r"^[^\"]*?//[/!]?<? ?(.*)$")
TEST_MACRO = re.compile(r"^\s*(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)", re.MULTILINE)
NAMED_TESTS = re.compile(r"Tests?:\s+(\w+\.\w+(?:(?:,| and|, and)\s+\w+\.\w+)*)")


def existing_tests(root: Path) -> set[str]:
    return {
        f"{suite}.{name}"
        for path in files(root, TEST_FOLDERS, CODE)
        for suite, name in TEST_MACRO.findall(path.read_text(encoding="utf-8"))
    }


def comments(text: str) -> list[tuple[int, str]]:
    """Runs of comment lines joined to one line each, with the number of their first line."""
    found: list[tuple[int, str]] = []
    running = False
    for number, line in enumerate(text.splitlines(), start=1):
        comment = COMMENT_LINE.match(line)
        if comment is None:
            running = False
        elif running and line.lstrip().startswith("//"):
            found[-1] = (found[-1][0], f"{found[-1][1]} {comment.group(1)}")
        else:
            found.append((number, comment.group(1)))
            running = True
    return found


def check(root: Path) -> list[str]:
    tests = existing_tests(root)
    faults = []
    for path in files(root, FOLDERS, CODE):
        for number, comment in comments(path.read_text(encoding="utf-8")):
            place = f"{path.relative_to(root)}:{number}"
            for contract in comment.split("Contract:")[1:]:
                named = NAMED_TESTS.search(contract)
                if named is None:
                    faults.append(f"{place}: the contract names no test")
                    continue
                for test in re.findall(r"\w+\.\w+", named.group(1)):
                    if test not in tests:
                        faults.append(f"{place}: there is no test {test}")
    return faults
