# SPDX-License-Identifier: MIT
"""A Blender add-on: normal maps and Umbrix maps of the picture in the Image Editor.

Install the package for Python where Blender's Python finds it, then this file by Edit > Preferences > Add-ons > Install.
The panel stands in the side bar of the Image Editor, under "Umbrix".
"""

import contextlib

import bpy
import numpy as np
import umbrix

bl_info = {
    "name": "Umbrix maps",
    "author": "The UmbrixLib developers",
    "version": (1, 0, 0),
    "blender": (3, 0, 0),
    "location": "Image Editor > Side bar > Umbrix",
    "description": "Normal maps and Umbrix maps of height maps",
    "category": "Material",
}


def heights_of(image: bpy.types.Image) -> np.ndarray:
    """The mean of the colours, with the top row first; Blender has the bottom row first."""
    width, height = image.size
    texels = np.empty(width * height * image.channels, np.float32)
    image.pixels.foreach_get(texels)
    colours = texels.reshape(height, width, image.channels)[::-1]
    return colours[..., 0] if image.channels < 3 else colours[..., :3].mean(axis=2)


def show(context: bpy.types.Context, name: str, texels: np.ndarray) -> bpy.types.Image:
    """A new picture of 0 to 1, of linear data, in place of one of that name."""
    height, width = texels.shape[:2]
    image = bpy.data.images.get(name)
    if image is not None:
        bpy.data.images.remove(image)
    image = bpy.data.images.new(name, width, height, float_buffer=True, is_data=True)
    pixels = np.ones((height, width, 4), np.float32)
    pixels[..., :3] = texels[::-1, :, :3]
    image.pixels.foreach_set(pixels.ravel())
    image.update()
    image.pack()
    if context.area is not None and context.area.type == "IMAGE_EDITOR":
        context.space_data.image = image
    return image


NO_PRESET = "NONE"
PRESETS = [(NO_PRESET, "None", "The relief below")]
PRESETS += [(name, name, f"The settings of the preset {name}") for name in umbrix.presets()]


class Settings(bpy.types.PropertyGroup):
    preset: bpy.props.EnumProperty(name="Preset", items=PRESETS)
    relief: bpy.props.FloatProperty(
        name="Relief", description="How high white reaches, in widths of the picture", default=0.05, min=0.0, max=10.0
    )
    tile: bpy.props.BoolProperty(name="Repeats", default=True)


class Make(bpy.types.Operator):
    bl_options = {"REGISTER", "UNDO"}

    def execute(self, context: bpy.types.Context) -> "set[str]":
        image = getattr(context.space_data, "image", None) or context.scene.umbrix_image
        if image is None or not image.has_data:
            self.report({"ERROR"}, "Open a height map in the Image Editor")
            return {"CANCELLED"}
        wanted = context.scene.umbrix
        plain = wanted.preset == NO_PRESET
        given = {"relief": wanted.relief} if plain else {}
        try:
            with contextlib.nullcontext() if plain else umbrix.preset(wanted.preset):
                self.make(context, image, tile=wanted.tile, **given)
        except umbrix.Error as error:
            self.report({"ERROR"}, str(error))
            return {"CANCELLED"}
        return {"FINISHED"}


class MakeNormals(Make):
    bl_idname = "umbrix.normals"
    bl_label = "Normal map"

    def make(self, context, image, **settings):
        show(context, f"{image.name} normals", umbrix.normals(heights_of(image), **settings) * 0.5 + 0.5)


class MakeMap(Make):
    bl_idname = "umbrix.map"
    bl_label = "Umbrix map"

    def make(self, context, image, **settings):
        show(context, f"{image.name} Umbrix", umbrix.map(heights_of(image), kind="height", **settings))


class Panel(bpy.types.Panel):
    bl_idname = "UMBRIX_PT_maps"
    bl_label = "Umbrix"
    bl_category = "Umbrix"
    bl_space_type = "IMAGE_EDITOR"
    bl_region_type = "UI"

    def draw(self, context):
        wanted = context.scene.umbrix
        self.layout.prop(wanted, "preset")
        row = self.layout.row()
        row.enabled = wanted.preset == NO_PRESET
        row.prop(wanted, "relief")
        self.layout.prop(wanted, "tile")
        self.layout.operator(MakeNormals.bl_idname)
        self.layout.operator(MakeMap.bl_idname)


CLASSES = (Settings, MakeNormals, MakeMap, Panel)


def register() -> None:
    for each in CLASSES:
        bpy.utils.register_class(each)
    bpy.types.Scene.umbrix = bpy.props.PointerProperty(type=Settings)
    bpy.types.Scene.umbrix_image = bpy.props.PointerProperty(type=bpy.types.Image)


def unregister() -> None:
    del bpy.types.Scene.umbrix_image
    del bpy.types.Scene.umbrix
    for each in reversed(CLASSES):
        bpy.utils.unregister_class(each)
