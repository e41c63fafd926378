# SPDX-License-Identifier: MIT
"""Writes the shaders of examples/shaders, and the one that docs/maps.md shows, from light.glsl.
Usage: make_shaders.py [--check]    with --check it writes nothing, and fails if a file is not what it would write

light.glsl is the body of one function, in what GLSL, HLSL and Godot have in common: statements "type name = value;" and a
return. Choices (a ? b : c) are whole values, so that Python can be made of it, too."""

import re
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parent
ROOT = SOURCE.parents[2]
PAGE = ROOT / "docs" / "maps.md"
PAGE_BLOCK = re.compile(r"(?<=^## In a shader\n)(.*?^```glsl\n).*?(?=^```$)", re.MULTILINE | re.DOTALL)
DECLARATION = re.compile(r"(?:float|vec2|vec3) (\w+) = (.*);", re.DOTALL)
PYTHON_NAMES = {"max": "larger", "pow": "power"}


def hlsl(body: str) -> str:
    return re.sub(r"\bvec([23])\b", r"float\1", body)


def python_value(value: str) -> str:
    """A choice becomes a call, one choice a line."""
    condition, choice, rest = value.partition(" ? ")
    if not choice:
        return value
    yes, _, no = rest.partition(" : ")
    return f"select({condition}, {yes}, {python_value(no)})".replace(", select(", ",\n    select(")


def python_statement(statement: str) -> str:
    text = " ".join(statement.split())
    declared = DECLARATION.fullmatch(text)
    if declared:
        text = f"{declared[1]} = {python_value(declared[2])}"
    else:
        text = text.removesuffix(";")
    return re.sub(r"\b(max|pow)\(", lambda call: PYTHON_NAMES[call[1]] + "(", text)


def python(body: str) -> str:
    written, statement = [], ""
    for line in body.splitlines():
        if not statement and (not line or line.startswith("//")):
            written.append(line.replace("//", "#"))
            continue
        statement += line + "\n"
        if line.endswith(";"):
            written.append(python_statement(statement))
            statement = ""
    return "\n".join(written) + "\n"


LANGUAGES = {
    "umbrix.glsl": str,
    "umbrix.hlsl": hlsl,
    "umbrix.gdshader": str,
    "umbrix_unity.hlsl": hlsl,
    "umbrix_unreal.txt": hlsl,
    "umbrix_blender.py": python,
}


def filled(template: str, body: str) -> str:
    """The template, with the body at the indentation of its place."""

    def indented(place: re.Match) -> str:
        lines = body.rstrip("\n").split("\n")
        return "\n".join(place[1] + line if line else "" for line in lines)

    return re.sub(r"^( *)@BODY@$", indented, template, flags=re.MULTILINE)


def results() -> dict[Path, str]:
    body = (SOURCE / "light.glsl").read_text(encoding="utf-8")
    body = body.removeprefix("// SPDX-License-Identifier: MIT\n")
    made = {
        SOURCE.parent / name: filled((SOURCE / f"{name}.in").read_text(encoding="utf-8"), translated(body))
        for name, translated in LANGUAGES.items()
    }
    shown = made[SOURCE.parent / "umbrix.glsl"].split("\n\n", 1)[1]
    page, places = PAGE_BLOCK.subn(lambda place: place[1] + shown, PAGE.read_text(encoding="utf-8"))
    if places != 1:
        raise SystemExit(f"{PAGE.name} has no shader to replace")
    return made | {PAGE: page}


def main() -> int:
    made = results()
    if sys.argv[1:] == ["--check"]:
        stale = [path for path, text in made.items() if not path.exists() or path.read_text(encoding="utf-8") != text]
        for path in stale:
            print(f"{path.relative_to(ROOT)} is not what {Path(__file__).name} makes")
        return 1 if stale else 0
    if sys.argv[1:]:
        print(__doc__, file=sys.stderr)
        return 2
    for path, text in made.items():
        path.write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
