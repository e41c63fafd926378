# SPDX-License-Identifier: MIT
"""Makes a group of shader nodes for Blender: the light on an Umbrix map, as "umbrix relight" makes it.

Open this file in Blender's text editor and run it, then add Group > Umbrix Light in the shader editor. Run again, it makes
the nodes of that group anew. Its sockets:

    Map        the map, from an Image Texture whose colour space is Non-Color
    Direction  towards the light, in world space; the surface needs a UV map
    Mode       --mode of the map: 0 projection, 1 unit, 2 flat, 3 squared
    Exposure   brightness of flat ground that nothing hides
    Ambient    what light from all around adds to it
    Light      the brightness, for the Strength of an Emission for instance
"""

import bpy

NAME = "Umbrix Light"
SOCKETS = (
    ("INPUT", "NodeSocketColor", "Map", (0.57735027, 0.57735027, 0.57735027, 1.0)),
    ("INPUT", "NodeSocketVector", "Direction", (-0.5, 0.5, 0.70710678)),
    ("INPUT", "NodeSocketInt", "Mode", 0),
    ("INPUT", "NodeSocketFloat", "Exposure", 1.0),
    ("INPUT", "NodeSocketFloat", "Ambient", 0.0),
    ("OUTPUT", "NodeSocketFloat", "Light", None),
)


def add_socket(tree, direction, kind, name, start):
    if hasattr(tree, "interface"):  # Blender 4
        socket = tree.interface.new_socket(name=name, in_out=direction, socket_type=kind)
    else:
        socket = (tree.inputs if direction == "INPUT" else tree.outputs).new(kind, name)
    if start is not None:
        socket.default_value = start


def empty_group():
    tree = bpy.data.node_groups.get(NAME)
    if tree is None:
        tree = bpy.data.node_groups.new(NAME, "ShaderNodeTree")
        for socket in SOCKETS:
            add_socket(tree, *socket)
    tree.nodes.clear()
    return tree


TREE = empty_group()
COLUMNS = {}  # of the nodes, by their names


class Value:
    """A number or a vector: a constant, or the output of a node. A vector of two numbers has 0 as its third."""

    def __init__(self, source, is_vector=False):
        self.source = source
        self.is_vector = is_vector

    def __add__(self, other):
        return combined("ADD", self, other)

    def __radd__(self, other):
        return combined("ADD", other, self)

    def __sub__(self, other):
        return combined("SUBTRACT", self, other)

    def __rsub__(self, other):
        return combined("SUBTRACT", other, self)

    def __mul__(self, other):
        return combined("MULTIPLY", self, other)

    def __rmul__(self, other):
        return combined("MULTIPLY", other, self)

    def __truediv__(self, other):
        return combined("DIVIDE", self, other)

    def __lt__(self, other):
        return number("LESS_THAN", self, other)

    def __eq__(self, other):
        return number("COMPARE", self, other, 0.5)  # whole numbers

    @property
    def x(self):
        return self.part("X")

    @property
    def y(self):
        return self.part("Y")

    @property
    def z(self):
        return self.part("Z")

    @property
    def xy(self):
        return self * vec3(1.0, 1.0, 0.0)

    def part(self, name):
        return Value(add_node("ShaderNodeSeparateXYZ", None, self).outputs[name])


def add_node(kind, operation, *operands):
    """A node in the column behind those that it takes values from."""
    node = TREE.nodes.new(kind)
    if operation:
        node.operation = operation
    column = 0
    for place, operand in zip(node.inputs, operands):
        source = operand.source if isinstance(operand, Value) else operand
        if hasattr(source, "node"):
            TREE.links.new(source, place)
            column = max(column, COLUMNS[source.node.name] + 1)
        elif kind == "ShaderNodeVectorMath" and not isinstance(source, tuple):
            place.default_value = (source, source, source)
        else:
            place.default_value = source
    COLUMNS[node.name] = column
    node.location = (180 * column, -180 * list(COLUMNS.values()).count(column))
    return node


def is_vector(operand):
    return isinstance(operand, Value) and operand.is_vector


def number(operation, *operands):
    return Value(add_node("ShaderNodeMath", operation, *operands).outputs["Value"])


def vector(operation, *operands):
    return Value(add_node("ShaderNodeVectorMath", operation, *operands).outputs["Vector"], True)


def number_of(operation, *vectors):
    return Value(add_node("ShaderNodeVectorMath", operation, *vectors).outputs["Value"])


def combined(operation, *operands):
    return (vector if any(map(is_vector, operands)) else number)(operation, *operands)


def vec3(x, y, z):
    if all(isinstance(part, float) for part in (x, y, z)):
        return Value((x, y, z), True)
    return Value(add_node("ShaderNodeCombineXYZ", None, x, y, z).outputs["Vector"], True)


def dot(a, b):
    return number_of("DOT_PRODUCT", a, b)


def length(a):
    return number_of("LENGTH", a)


def normalize(a):
    return vector("NORMALIZE", a)


def larger(a, b):
    return number("MAXIMUM", a, b)


def power(a, b):
    return number("POWER", a, b)


def select(condition, yes, no):
    return no + (yes - no) * condition


def umbrix_light(map, light, mode, exposure, ambient):
    # What each channel of the map has on flat ground that nothing hides.
    ground = select(mode == 1, vec3(0.42640143, 0.57735027, 0.57735027),
        select(mode == 2, vec3(1.0, 1.0, 1.0),
        select(mode == 3, vec3(0.18181818, 0.33333333, 0.33333333), vec3(0.57735027, 0.57735027, 0.57735027))))

    # A light lower than 6 degrees counts as one at 6 degrees.
    towards = normalize(light)
    plane = larger(length(towards.xy), 0.000001)
    cosine = select(towards.z < 0.10452846, 0.99452190, plane)
    sine = larger(towards.z, 0.10452846)

    # The light's part along the plane over its height, 1.25 sine^0.3 times as long as it is: nearest to traced shadows. In
    # mode 3 a low slope changes its channels twice as much.
    reach = select(mode == 3, 0.625, 1.25)
    slope = towards.xy / plane * (reach * cosine * power(sine, -0.7))

    # The share of each channel in the light of flat ground, together 1. Those that face away may be below 0.
    left = 0.375 - 0.17677670 * slope.x
    across = 0.40824829 * slope.y
    shares = vec3(0.25 + 0.35355339 * slope.x, left - across, left + across)

    direct = larger(dot(map / ground, shares), 0.0)
    all_around = dot(map, vec3(1.0, 1.0, 1.0)) / dot(ground, vec3(1.0, 1.0, 1.0))
    return larger(exposure * direct + ambient * all_around, 0.0)


def in_tangent_space(direction):
    normal = Value(add_node("ShaderNodeNewGeometry", None).outputs["Normal"], True)
    tangent = add_node("ShaderNodeTangent", None)
    tangent.direction_type = "UV_MAP"
    right = Value(tangent.outputs["Tangent"], True)
    return vec3(dot(direction, right), dot(direction, vector("CROSS_PRODUCT", normal, right)), dot(direction, normal))


given = add_node("NodeGroupInput", None).outputs
lit = umbrix_light(
    Value(given["Map"], True),
    in_tangent_space(Value(given["Direction"], True)),
    Value(given["Mode"]),
    Value(given["Exposure"]),
    Value(given["Ambient"]),
)
add_node("NodeGroupOutput", None, lit)
