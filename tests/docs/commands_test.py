# SPDX-License-Identifier: MIT
"""Usage: commands_test.py ROOT TOOL. Each command of the tool has an example in the documents that a test runs."""

import re
import subprocess
import sys
from pathlib import Path

from pages import commands_shown


def commands_of(help_text: str) -> set[str]:
    listed = help_text.split("Subcommands:\n")[1].split("\n\n")[0]
    return set(re.findall(r"^  (\w+)", listed, re.MULTILINE))


def main() -> int:
    root, tool = sys.argv[1:]
    commands = commands_of(subprocess.run([tool, "--help"], capture_output=True, text=True, check=True).stdout)
    missing = commands - commands_shown(Path(root))
    print(f"{len(commands)} commands, without an example: {', '.join(sorted(missing)) or 'none'}")
    return 1 if missing or not commands else 0


if __name__ == "__main__":
    sys.exit(main())
