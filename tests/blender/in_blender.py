# SPDX-License-Identifier: MIT
"""blender --background --python in_blender.py -- ADDON: uses the add-on as its panel does. Ends with 1 if it does wrong."""
import importlib.util
import sys
import traceback

import bpy
import numpy as np

import umbrix


def texels_of(image):
    width, height = image.size
    texels = np.empty(width * height * 4, np.float32)
    image.pixels.foreach_get(texels)
    return texels.reshape(height, width, 4)[::-1, :, :3]


def use(addon_file):
    spec = importlib.util.spec_from_file_location("umbrix_maps", addon_file)
    addon = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(addon)
    addon.register()

    rows, columns = np.mgrid[0:48, 0:64].astype(np.float32)
    heights = 0.5 + 0.25 * np.sin(rows / 48 * 6.2831853) + 0.25 * np.cos(columns / 64 * 12.5663706)
    image = bpy.data.images.new("hills", 64, 48, float_buffer=True, is_data=True)
    pixels = np.ones((48, 64, 4), np.float32)
    pixels[..., :3] = heights[::-1, :, None]
    image.pixels.foreach_set(pixels.ravel())
    scene = bpy.context.scene
    scene.umbrix_image = image
    given = heights.astype(np.float32)
    given = np.dstack([given, given, given]).mean(axis=2)

    scene.umbrix.relief = 0.125
    assert bpy.ops.umbrix.normals() == {"FINISHED"}
    seen = texels_of(bpy.data.images["hills normals"])
    assert np.array_equal(seen, np.asarray(umbrix.normals(given, relief=0.125)) * np.float32(0.5) + np.float32(0.5))

    scene.umbrix.preset = "stone"
    assert bpy.ops.umbrix.map() == {"FINISHED"}
    with umbrix.preset("stone"):
        expected = np.asarray(umbrix.map(given, kind="height", tile=True))
    assert np.array_equal(texels_of(bpy.data.images["hills Umbrix"]), expected)
    assert bpy.data.images["hills Umbrix"].colorspace_settings.name == "Non-Color"

    image.pixels.foreach_set((pixels * 3).ravel())  # no heights of 0 to 1
    try:
        bpy.ops.umbrix.normals()
    except RuntimeError as error:
        assert "not 0 to 1" in str(error), error
    else:
        raise AssertionError("heights outside 0 to 1 are taken")
    addon.unregister()


try:
    use(sys.argv[sys.argv.index("--") + 1])
except BaseException:
    traceback.print_exc()
    sys.exit(1)
print("the add-on works")
