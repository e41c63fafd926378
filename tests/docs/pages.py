# SPDX-License-Identifier: MIT
"""Reads the commands of a page: its blocks that start with ```sh tested, and what they are to print.

    ```sh tested            the block ends with exit code 0
    ```sh tested exit=1     its last command ends with exit code 1, those before with 0
    ```python tested        code of a program that goes on from block to block
    ```text printed         straight behind such a block: what it prints, errors included
"""

from dataclasses import dataclass
from pathlib import Path
import re

OPENING = re.compile(r"^```(?:sh tested(?: exit=(\d+))?|(python) tested)$")
PRINTED = "```text printed"


@dataclass
class Block:
    line: int
    commands: str
    code: int = 0
    printed: str | None = None
    language: str = "sh"


def blocks_of(text: str) -> list[Block]:
    found: list[Block] = []
    lines = text.splitlines()
    at = 0
    while at < len(lines):
        if not lines[at].startswith("```"):
            at += 1
            continue
        end = lines.index("```", at + 1)
        body = "\n".join(lines[at + 1 : end]) + "\n"
        opening = OPENING.match(lines[at])
        if opening:
            found.append(Block(at + 1, body, int(opening.group(1) or 0), language=opening.group(2) or "sh"))
        elif lines[at] == PRINTED:
            if not found or found[-1].printed is not None:
                raise ValueError(f"line {at + 1}: no tested block prints this")
            found[-1].printed = body
        elif lines[at].startswith(("```sh tested", "```python tested", PRINTED)):
            raise ValueError(f"line {at + 1}: not understood: {lines[at]}")
        at = end + 1
    return found


def commands_shown(root: Path) -> set[str]:
    """The tool's commands that tested blocks of the pages use."""
    return {
        name
        for page in (root / "docs").glob("*.md")
        for block in blocks_of(page.read_text(encoding="utf-8"))
        for name in re.findall(r"^umbrix (\w+)", block.commands, re.MULTILINE)
    }
