# SPDX-License-Identifier: MIT
"""Usage: blender_test.py SHADERS TOOL

Runs the script for Blender of the folder SHADERS with a stand-in for Blender, and compares the light that its nodes compute
with what `umbrix relight` of TOOL makes of the same maps."""

import runpy
import sys
import tempfile
from pathlib import Path

import fake_bpy
from lit_maps import Case, Vector, cases, difference, report

# A surface that faces the side, and its picture turned.
RIGHT, TOP, NORMAL = (0.36, 0.48, -0.8), (-0.8, 0.6, 0.0), (0.48, 0.64, 0.6)


def group(script: Path, kind_of_tree: type) -> fake_bpy.Tree:
    sys.modules["bpy"] = fake_bpy.bpy(kind_of_tree)
    for _ in range(2):  # the second run has a group to make anew
        runpy.run_path(str(script))
    (tree,) = sys.modules["bpy"].data.node_groups.values()
    return tree


def lit(tree: fake_bpy.Tree, case: Case, direction: Vector) -> list[float]:
    settings = {"Direction": direction, "Mode": case.mode, "Exposure": case.exposure, "Ambient": case.ambient}
    texels = zip(*[iter(case.texels)] * 3)
    return [tree.result(Map=texel, **settings) for texel in texels]


def main() -> int:
    script, tool = Path(sys.argv[1]) / "umbrix_blender.py", sys.argv[2]
    with tempfile.TemporaryDirectory() as scratch:
        tried = cases(tool, Path(scratch))
    wrong = 0
    for kind_of_tree, step in ((fake_bpy.TreeOfBlender3, 4), (fake_bpy.TreeOfBlender4, 1)):
        tree = group(script, kind_of_tree)
        found = {str(case): difference(case, lit(tree, case, case.light)) for case in tried[::step]}
        wrong += report(f"{kind_of_tree.__name__}, {len(tree.nodes)} nodes", found)
    fake_bpy.SURFACE |= {"Tangent": RIGHT, "Normal": NORMAL}
    found = {}
    for case in tried[:: len(tried) // 8]:
        turned = tuple(sum(a * b for a, b in zip(case.light, axes)) for axes in zip(RIGHT, TOP, NORMAL))
        found[str(case)] = difference(case, lit(tree, case, turned))
    wrong += report("a surface that faces the side", found)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
