# SPDX-License-Identifier: MIT
"""Usage: check.py contracts|engine|formatting|includes|licences|sizes|vector_code|versions ROOT.

Prints each fault; fails if there is one."""

import importlib
import sys
from pathlib import Path


def main() -> int:
    name, root = sys.argv[1:]
    faults = importlib.import_module(name).check(Path(root))
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
