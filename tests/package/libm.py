# SPDX-License-Identifier: MIT
"""Says which functions of the C library's mathematics a shared library calls.

libm.py LIBRARY [NAME...]   prints those that are not among the names, ends with 1 if there are any

Looked at are those whose last bit no standard settles, so that it depends on the version of the C library and on
the processor. `sqrt`, `fma`, `floor` and their like are exact everywhere.
"""
import re
import subprocess
import sys

UNSETTLED = re.compile(r"(exp|exp2|exp10|expm1|log|log2|log10|log1p|pow|cbrt|hypot|erf|erfc|tgamma|lgamma|sincos|"
                       r"(a?)(sin|cos|tan)h?|atan2)[fl]?$")


def called(library):
    """Names of unsettled functions that the dynamic linker has to find elsewhere."""
    table = subprocess.run(["nm", "--dynamic", "--undefined-only", library],
                           check=True, capture_output=True, text=True).stdout
    names = {line.split()[-1].split("@")[0] for line in table.splitlines()}
    return {name for name in names if UNSETTLED.match(name)}


def main(library, *allowed):
    found = sorted(called(library) - set(allowed))
    for name in found:
        print(f"{library} calls {name}, whose last bit depends on the machine")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
