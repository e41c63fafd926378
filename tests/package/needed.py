# SPDX-License-Identifier: MIT
"""Says which exported functions a program does not need from the libraries.

needed.py PROGRAM LIST...   LIST as symbols.py writes it; ends with 1 if there are any
"""
import subprocess
import sys

from symbols import STRING

# What classes keep for themselves no program can name.
PRIVATE = {
    "umbrix_v0::NLayers::make_result(umbrix_v0::layer_size)",
    "umbrix_v0::NLayers::resize_layer(int, umbrix_v0::layer_size, bool, bool)",
    "umbrix_v0::NLayers::result_for(umbrix_v0::layer_size) const",
    "umbrix_v0::umbrix_list::item_at(int)",
    "umbrix_v0::umbrix_list::remove_all()",
}


def needed(program):
    table = subprocess.run(["nm", "--dynamic", "--undefined-only", "--demangle", program],
                           check=True, capture_output=True, text=True).stdout
    return {line.split(maxsplit=1)[1].replace(STRING, "std::string") for line in table.splitlines()}


def main(program, *lists):
    exported = set()
    for name in lists:
        with open(name, encoding="utf-8") as lines:
            exported.update(lines.read().splitlines())
    missing = sorted(exported - PRIVATE - needed(program))
    for name in missing:
        print(f"not in {program}: {name}")
    return 1 if missing or not exported else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
