# SPDX-License-Identifier: MIT
"""Usage: compile_test.py SHADERS GLSLANG

Compiles the shaders of the folder SHADERS with GLSLANG, the program glslangValidator: each in its own language, and as the
GLSL that browser_test.py runs."""

import subprocess
import sys
import tempfile
from pathlib import Path

from wrapped import unreal_node, wrapped

GLSL_VERSIONS = ("100", "300 es", "120", "330", "450")
GLSL_MAIN = "void main() { gl_FragColor = vec4(umbrix_light(vec3(0.5), vec3(0.0, 0.0, 1.0), 0, 1.0, 0.0)); }\n"
HLSL_MAIN = """
float4 main(float3 map : COLOR0, float3 light : COLOR1, int mode : COLOR2) : SV_Target
{{
    float lit;
    {}
    return float4(lit, lit, lit, 1.0);
}}
"""


def glsl_of(version: str, text: str) -> str:
    main = GLSL_MAIN
    precision = "precision highp float;\n" if version == "100" or version.endswith("es") else ""
    if version not in ("100", "120"):
        precision += "out vec4 colour;\n"
        main = main.replace("gl_FragColor", "colour")
    if version == "450":
        precision = precision.replace("out", "layout(location = 0) out")
    return f"#version {version}\n{precision}{text}{main}"


def hlsl_sources(shaders: Path) -> dict[str, str]:
    def text(name: str) -> str:
        return (shaders / name).read_text(encoding="utf-8")

    unity = text("umbrix_unity.hlsl")
    twice = unity + unity  # as two files that include it
    node = unreal_node(text("umbrix_unreal.txt"), "float3")
    return {
        "HLSL": text("umbrix.hlsl") + HLSL_MAIN.format("lit = umbrix_light(map, light, mode, 1.0, 0.0);"),
        "Unity": twice + HLSL_MAIN.format("lit = UmbrixLight(map, light, mode, 1.0, 0.0);"),
        "Unity, node of floats": unity + HLSL_MAIN.format("UmbrixLight_float(map, light, float(mode), 1.0, 0.0, lit);"),
        "Unity, node of halves": unity
        + HLSL_MAIN.format(
            "half thin; UmbrixLight_half(half3(map), half3(light), half(mode), half(1.0), half(0.0), thin); lit = thin;"
        ),
        "Unreal": node + HLSL_MAIN.format("lit = node(map, light, float(mode), 1.0, 0.0);"),
    }


def main() -> int:
    shaders, glslang = Path(sys.argv[1]), sys.argv[2]
    glsl = (shaders / "umbrix.glsl").read_text(encoding="utf-8")
    as_glsl = {f"GLSL {version}": glsl_of(version, glsl) for version in GLSL_VERSIONS}
    as_glsl |= {f"{name}, wrapped": text for name, text in wrapped(shaders).items()}
    as_hlsl = hlsl_sources(shaders)
    failed = []
    with tempfile.TemporaryDirectory() as scratch:
        file = Path(scratch) / "shader.frag"

        def compiles(text: str, *options: str) -> bool:
            file.write_text(text, encoding="utf-8")
            done = subprocess.run([glslang, *options, str(file)], cwd=scratch, stdout=subprocess.PIPE, text=True)
            if done.returncode != 0:
                print(done.stdout)
            return done.returncode == 0

        failed += [name for name, text in as_glsl.items() if not compiles(text)]
        failed += [name for name, text in as_hlsl.items() if not compiles(text, "-D", "-V", "-e", "main")]
    print(f"{len(as_glsl)} shaders of GLSL and {len(as_hlsl)} of HLSL, not compiled: {', '.join(failed) or 'none'}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
