# SPDX-License-Identifier: MIT
"""Usage: run_python_page.py PAGE EXAMPLES [IMAGES]

Runs the tested code of a page as one program, in a scratch copy of the examples. Each picture of the page whose name
begins with that of the page has to be made by it; IMAGES is a folder that they are put into."""

import contextlib
import io
import os
import re
import shutil
import sys
import tempfile
import traceback
from pathlib import Path

from pages import Block, blocks_of


def run(block: Block, page: str, names: dict[str, object]) -> str:
    """What is wrong with how the block went; empty if nothing is."""
    printed = io.StringIO()
    try:
        with contextlib.redirect_stdout(printed):
            exec(compile("\n" * block.line + block.commands, page, "exec"), names)
    except Exception:
        return traceback.format_exc()
    if printed.getvalue() != (block.printed or ""):
        return f"it prints\n{printed.getvalue()}and not\n{block.printed or ''}"
    return ""


def main() -> int:
    page, examples, *images = (Path(argument).absolute() for argument in sys.argv[1:])
    text = page.read_text(encoding="utf-8")
    blocks = [block for block in blocks_of(text) if block.language == "python"]
    pictures = re.findall(rf"\]\(images/({page.stem}_\w+\.png)\)", text)
    names: dict[str, object] = {"__name__": "__main__"}
    with tempfile.TemporaryDirectory() as scratch:
        shutil.copytree(examples, Path(scratch) / "examples")
        os.chdir(Path(scratch) / "examples")
        faults = [f"{page.name}:{block.line}: {fault}" for block in blocks if (fault := run(block, page.name, names))]
        faults += [f"{page.name}: its code does not make {name}" for name in pictures if not Path(name).is_file()]
        if images and not faults:
            for name in pictures:
                shutil.copy(name, images[0])
        os.chdir("/")
    for fault in faults:
        print(fault)
    print(f"{page.name}: {len(blocks)} blocks of code, {len(pictures)} pictures, {len(faults)} wrong")
    return 1 if faults or not blocks else 0


if __name__ == "__main__":
    sys.exit(main())
