# SPDX-License-Identifier: MIT
"""Usage: blender --background --factory-startup --python in_blender.py -- SCRIPT CASES ANSWER

Runs SCRIPT, the one of examples/shaders, in Blender, lights the maps of the file CASES with its nodes on a plane that faces
the side, and writes the light of each texel to the file ANSWER."""

import json
import runpy
import sys

import bpy
from mathutils import Euler, Vector


def new_scene(width: int, height: int) -> bpy.types.Scene:
    """A plane of one unit a texel below a camera, in no light but its own."""
    scene = bpy.context.scene
    for thing in list(bpy.data.objects):
        bpy.data.objects.remove(thing)
    bpy.ops.mesh.primitive_plane_add(size=1)
    plane = bpy.context.object
    plane.scale = (width, height, 1)
    bpy.ops.object.transform_apply(scale=True)
    camera = bpy.data.objects.new("camera", bpy.data.cameras.new("camera"))
    scene.collection.objects.link(camera)
    camera.data.type = "ORTHO"
    camera.data.ortho_scale = max(width, height)
    camera.location = (0, 0, 5)
    camera.parent = plane
    plane.rotation_euler = Euler((0.6, -0.4, 1.1))
    scene.camera = camera
    scene.render.engine = "CYCLES"
    scene.render.resolution_x, scene.render.resolution_y, scene.render.resolution_percentage = width, height, 100
    scene.render.image_settings.file_format, scene.render.image_settings.color_depth = "OPEN_EXR", "32"
    scene.cycles.samples = 1
    scene.cycles.use_denoising = False
    scene.cycles.pixel_filter_type, scene.cycles.filter_width = "BLACKMAN_HARRIS", 0.01  # the middle of each texel
    bpy.context.view_layer.update()
    return scene


def new_material(picture: bpy.types.Image) -> bpy.types.ShaderNodeTree:
    material = bpy.data.materials.new("lit")
    material.use_nodes = True
    tree = material.node_tree
    tree.nodes.clear()
    texture = tree.nodes.new("ShaderNodeTexImage")
    texture.image, texture.interpolation = picture, "Closest"
    light = tree.nodes.new("ShaderNodeGroup")
    light.name, light.node_tree = "light", bpy.data.node_groups["Umbrix Light"]
    emission = tree.nodes.new("ShaderNodeEmission")
    output = tree.nodes.new("ShaderNodeOutputMaterial")
    tree.links.new(texture.outputs["Color"], light.inputs["Map"])
    tree.links.new(light.outputs["Light"], emission.inputs["Strength"])
    tree.links.new(emission.outputs["Emission"], output.inputs["Surface"])
    bpy.context.object.data.materials.append(material)
    return tree


def main() -> None:
    script, cases, answer = sys.argv[sys.argv.index("--") + 1 :]
    runpy.run_path(script)
    with open(cases, encoding="utf-8") as file:
        data = json.load(file)
    scene = new_scene(data["width"], data["height"])
    plane = bpy.context.object
    picture = bpy.data.images.new("map", data["width"], data["height"], alpha=False, float_buffer=True)
    picture.colorspace_settings.name = "Non-Color"
    light = new_material(picture).nodes["light"]
    lit = []
    for case in data["cases"]:
        picture.pixels = [sample for texel in zip(*[iter(case["texels"])] * 3) for sample in (*texel, 1.0)]
        picture.update()
        light.inputs["Direction"].default_value = plane.matrix_world.to_3x3() @ Vector(case["light"])
        light.inputs["Mode"].default_value = case["mode"]
        light.inputs["Exposure"].default_value = case["exposure"]
        light.inputs["Ambient"].default_value = case["ambient"]
        scene.render.filepath = f"{answer}.exr"
        bpy.ops.render.render(write_still=True)
        rendered = bpy.data.images.load(f"{answer}.exr")
        lit.append(list(rendered.pixels)[::4])
        bpy.data.images.remove(rendered)
    with open(answer, "w", encoding="utf-8") as file:
        json.dump(lit, file)


main()
