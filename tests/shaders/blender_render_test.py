# SPDX-License-Identifier: MIT
"""Usage: blender_render_test.py SHADERS TOOL BLENDER

Renders maps with the nodes that the script of the folder SHADERS makes, in BLENDER itself, by Cycles on the CPU, and
compares the light with what `umbrix relight` of TOOL makes of them."""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

from lit_maps import HEIGHT, WIDTH, cases, difference, report


def main() -> int:
    shaders, tool, blender = Path(sys.argv[1]).resolve(), sys.argv[2], sys.argv[3]
    with tempfile.TemporaryDirectory() as scratch:
        folder = Path(scratch)
        tried = cases(tool, folder)
        told = [{**vars(case), "light": case.light, "texels": case.texels.tolist(), "expected": None} for case in tried]
        data = {"width": WIDTH, "height": HEIGHT, "cases": told}
        (folder / "cases.json").write_text(json.dumps(data), encoding="utf-8")
        inside = Path(__file__).parent / "in_blender.py"
        options = ["--background", "--factory-startup", "--python-exit-code", "1", "--python", inside, "--"]
        files = [shaders / "umbrix_blender.py", folder / "cases.json", folder / "answer.json"]
        done = subprocess.run([blender, *options, *files], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            print(done.stdout)
            return 1
        answer = json.loads((folder / "answer.json").read_text(encoding="utf-8"))
    return 1 if report("Blender", {str(case): difference(case, lit) for case, lit in zip(tried, answer)}) else 0


if __name__ == "__main__":
    sys.exit(main())
