# SPDX-License-Identifier: MIT
"""Usage: browser_test.py SHADERS TOOL CHROMIUM

Runs the shaders of the folder SHADERS in the browser CHROMIUM, without a display or a graphics processor, and compares the
light with what `umbrix relight` of TOOL makes of the same maps."""

import array
import base64
import json
import re
import subprocess
import sys
import tempfile
from html import unescape
from pathlib import Path

from lit_maps import HEIGHT, WIDTH, Case, cases, difference, report
from wrapped import wrapped

OPTIONS = "--headless --no-sandbox --use-angle=swiftshader --enable-unsafe-swiftshader --timeout=60000 --dump-dom"


def page(shaders: dict[str, str], tried: list[Case]) -> str:
    data = {
        "width": WIDTH,
        "height": HEIGHT,
        "shaders": shaders,
        "cases": [
            {
                "texels": base64.b64encode(case.texels.tobytes()).decode(),
                "light": [2.5 * part for part in case.light],  # of any length
                "mode": case.mode,
                "exposure": case.exposure,
                "ambient": case.ambient,
            }
            for case in tried
        ],
    }
    template = (Path(__file__).parent / "page.html").read_text(encoding="utf-8")
    return template.replace("{data}", json.dumps(data).replace("</", "<\\/"), 1)


def floats(text: str) -> list[float]:
    return array.array("f", base64.b64decode(text)).tolist()


def main() -> int:
    shaders, tool, chromium = wrapped(Path(sys.argv[1])), sys.argv[2], sys.argv[3]
    with tempfile.TemporaryDirectory() as scratch:
        folder = Path(scratch)
        tried = cases(tool, folder)
        (folder / "page.html").write_text(page(shaders, tried), encoding="utf-8")
        command = [chromium, *OPTIONS.split(), f"--user-data-dir={folder / 'user'}", f"file://{folder}/page.html"]
        shown = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=300)
    found = re.search(r'<pre id="answer">(.+?)</pre>', shown.stdout, re.DOTALL)
    if not found:
        print(shown.stderr)
        return 1
    answer = json.loads(unescape(found[1]))
    wrong = 0
    for name in shaders:
        if isinstance(answer[name], str):
            print(f"{name}: {answer[name]}")
            wrong += 1
        else:
            wrong += report(name, {str(case): difference(case, floats(lit)) for case, lit in zip(tried, answer[name])})
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
