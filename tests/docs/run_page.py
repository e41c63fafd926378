# SPDX-License-Identifier: MIT
"""Usage: run_page.py PAGE TOOL EXAMPLES

Runs the tested commands of a page in their order, in a scratch copy of the examples, where `umbrix` is TOOL."""

import os
import subprocess
import sys
import tempfile
from pathlib import Path
import shutil

from pages import Block, blocks_of


OTHER_FAILURE = 99  # a command fails before the last line, which alone may


def run(block: Block, folder: Path, environment: dict[str, str]) -> str:
    """What is wrong with how the block went; empty if nothing is."""
    script = block.commands
    if block.code != 0:
        before, last = script[:-1].rpartition("\n")[::2]
        script = f"trap 'exit {OTHER_FAILURE}' ERR\n{before}\ntrap - ERR\nset +e\n{last}\n"
    done = subprocess.run(
        ["bash", "-e", "-u", "-o", "pipefail", "-c", script],
        cwd=folder,
        env=environment,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    )
    if done.returncode != block.code:
        return f"exit code {done.returncode}, not {block.code}:\n{block.commands}{done.stdout}"
    if block.printed is not None and done.stdout != block.printed:
        return f"it prints\n{done.stdout}and not\n{block.printed}"
    return ""


def run_page(page: Path, tool: Path, examples: Path) -> tuple[int, list[str]]:
    """The number of blocks, and the faults found, each with its line."""
    blocks = [block for block in blocks_of(page.read_text(encoding="utf-8")) if block.language == "sh"]
    faults = []
    with tempfile.TemporaryDirectory() as scratch:
        folder, programs = Path(scratch) / "examples", Path(scratch) / "programs"
        shutil.copytree(examples, folder)
        programs.mkdir()
        (programs / "umbrix").symlink_to(tool)
        environment = os.environ | {"PATH": f"{programs}:{os.environ['PATH']}"}
        for block in blocks:
            fault = run(block, folder, environment)
            if fault:
                faults.append(f"{page.name}:{block.line}: {fault}")
    return len(blocks), faults


def main() -> int:
    page, tool, examples = (Path(argument).absolute() for argument in sys.argv[1:])
    count, faults = run_page(page, tool, examples)
    for fault in faults:
        print(fault)
    print(f"{page.name}: {count} blocks of commands, {len(faults)} wrong")
    return 1 if faults or not count else 0


if __name__ == "__main__":
    sys.exit(main())
