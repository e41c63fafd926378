# SPDX-License-Identifier: MIT
"""The shaders of examples/shaders as whole fragment shaders of GLSL ES 3.00, which any browser runs.

What differs between the languages and GLSL is put in front: names of types, and what an engine has around a shader."""

import re
from pathlib import Path

HEAD = """#version 300 es
precision highp float;
uniform sampler2D test_map;
uniform vec3 test_light;
uniform int test_mode;
uniform float test_exposure, test_ambient;
out vec4 result;
"""
TEXEL = "texelFetch(test_map, ivec2(gl_FragCoord.xy), 0).rgb"
TYPES_OF_HLSL = "#define float2 vec2\n#define float3 vec3\n#define half float\n#define half3 vec3\n"

# The view of a camera that looks at the surface from the side: a frame of three directions.
GODOT = """
const float PI = 3.14159265358979;
const vec3 TANGENT = vec3(0.36, 0.48, -0.8), BINORMAL = vec3(-0.8, 0.6, 0.0), NORMAL = vec3(0.48, 0.64, 0.6);
const vec3 LIGHT_COLOR = vec3(PI, PI, PI);
const float ATTENUATION = 1.0;
vec3 LIGHT, ALBEDO, DIFFUSE_LIGHT;
vec2 UV;
float ROUGHNESS, AO;
"""
GODOT_MAIN = """
void main() {
    UV = gl_FragCoord.xy / vec2(textureSize(umbrix_map, 0));
    vec3 direction = normalize(test_light);
    LIGHT = TANGENT * direction.x + BINORMAL * direction.y + NORMAL * direction.z;
    DIFFUSE_LIGHT = vec3(0.0);
    fragment();
    light();
    result = vec4(DIFFUSE_LIGHT.g / direction.z + test_ambient * AO);
}
"""


def main_of(value: str) -> str:
    return f"void main() {{ result = vec4({value}); }}\n"


def call(function: str) -> str:
    return f"{function}({TEXEL}, test_light, test_mode, test_exposure, test_ambient)"


def graph_call(function: str) -> str:
    arguments = f"{TEXEL}, test_light, float(test_mode), test_exposure, test_ambient"
    return f"void main() {{ float lit; {function}({arguments}, lit); result = vec4(lit); }}\n"


def unreal_node(body: str, type_of_vectors: str) -> str:
    inputs = f"{type_of_vectors} Map, {type_of_vectors} Light, float Mode, float Exposure, float Ambient"
    return f"float node({inputs})\n{{\n{body}}}\n"


def godot(text: str) -> str:
    text = re.sub(r"^(shader_type|render_mode) .*;$", "", text, flags=re.MULTILINE)
    text = re.sub(r"^(uniform \w+ \w+)\s*:[^;]*;$", r"\1;", text, flags=re.MULTILINE)
    for name in ("map", "mode", "exposure"):
        text = re.sub(rf"^uniform (\w+) umbrix_{name};$", rf"#define umbrix_{name} test_{name}", text, flags=re.MULTILINE)
    return GODOT + re.sub(r"^varying ", "", text, flags=re.MULTILINE) + GODOT_MAIN


def wrapped(shaders: Path) -> dict[str, str]:
    """By what is tried."""
    text = {path.name: path.read_text(encoding="utf-8") for path in shaders.glob("umbrix*")}
    unity = TYPES_OF_HLSL + text["umbrix_unity.hlsl"]
    # Its y points to the bottom of the picture.
    unreal = f"node({TEXEL}, test_light * vec3(1.0, -1.0, 1.0), float(test_mode), test_exposure, test_ambient)"
    bodies = {
        "GLSL": text["umbrix.glsl"] + main_of(call("umbrix_light")),
        "HLSL": TYPES_OF_HLSL + text["umbrix.hlsl"] + main_of(call("umbrix_light")),
        "Godot": godot(text["umbrix.gdshader"]),
        "Unity": unity + main_of(call("UmbrixLight")),
        "Unity, node of floats": unity + graph_call("UmbrixLight_float"),
        "Unity, node of halves": unity + graph_call("UmbrixLight_half"),
        "Unreal": TYPES_OF_HLSL + unreal_node(text["umbrix_unreal.txt"], "float3") + main_of(unreal),
    }
    return {name: HEAD + body for name, body in bodies.items()}
