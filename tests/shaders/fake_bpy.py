# SPDX-License-Identifier: MIT
"""As much of Blender's module bpy as the script of examples/shaders uses, and the value of its nodes.

A socket has one value, a number or a vector of three; between sockets of the two kinds values go as in Blender."""

import math
from types import SimpleNamespace

NUMBER, VECTOR = 0.0, (0.0, 0.0, 0.0)
SURFACE = {"Normal": (0.0, 0.0, 1.0), "Tangent": (1.0, 0.0, 0.0)}  # of the texel that is lit


class Socket:
    def __init__(self, node, name, start):
        self.node, self.name, self.default_value, self.link = node, name, start, None

    def value(self):
        if self.link is None:
            return self.default_value
        given = self.link.node.value(self.link.name)
        if isinstance(self.default_value, tuple) and not isinstance(given, tuple):
            return (given, given, given)
        if isinstance(given, tuple) and not isinstance(self.default_value, tuple):
            return sum(given) / 3
        return given


class Sockets(list):
    def __getitem__(self, key):
        if isinstance(key, str):
            return next(socket for socket in self if socket.name == key)
        return super().__getitem__(key)


MATH = {
    "ADD": lambda a, b, _: a + b,
    "SUBTRACT": lambda a, b, _: a - b,
    "MULTIPLY": lambda a, b, _: a * b,
    "DIVIDE": lambda a, b, _: a / b if b else 0.0,
    "POWER": lambda a, b, _: a**b,
    "MAXIMUM": lambda a, b, _: max(a, b),
    "LESS_THAN": lambda a, b, _: float(a < b),
    "COMPARE": lambda a, b, apart: float(abs(a - b) <= max(apart, 1e-5)),
}


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def normalized(a):
    length = math.hypot(*a)
    return tuple(part / length for part in a) if length else VECTOR


VECTOR_MATH = {
    **{name: lambda a, b, each=MATH[name]: tuple(each(x, y, 0.0) for x, y in zip(a, b)) for name in list(MATH)[:4]},
    "CROSS_PRODUCT": cross,
    "NORMALIZE": lambda a, _: normalized(a),
    "DOT_PRODUCT": lambda a, b: sum(x * y for x, y in zip(a, b)),
    "LENGTH": lambda a, _: math.hypot(*a),
}
NUMBERS_OF_VECTORS = ("DOT_PRODUCT", "LENGTH")

# The inputs and outputs of each kind of node.
KINDS = {
    "ShaderNodeMath": ([("Value", 0.5)] * 3, ["Value"]),
    "ShaderNodeVectorMath": ([("Vector", VECTOR)] * 3, ["Vector", "Value"]),
    "ShaderNodeSeparateXYZ": ([("Vector", VECTOR)], ["X", "Y", "Z"]),
    "ShaderNodeCombineXYZ": ([("X", NUMBER), ("Y", NUMBER), ("Z", NUMBER)], ["Vector"]),
    "ShaderNodeNewGeometry": ([], ["Position", "Normal"]),
    "ShaderNodeTangent": ([], ["Tangent"]),
}


class Node:
    def __init__(self, tree, kind, name):
        self.tree, self.bl_idname, self.name = tree, kind, name
        self.operation, self.direction_type, self.location = "ADD", "RADIAL", (0.0, 0.0)
        given, made = KINDS.get(kind, ([], []))
        if kind == "NodeGroupInput":
            made = [socket.name for socket in tree.sockets["INPUT"]]
        elif kind == "NodeGroupOutput":
            given = [(socket.name, socket.default_value) for socket in tree.sockets["OUTPUT"]]
        self.inputs = Sockets(Socket(self, socket, start) for socket, start in given)
        self.outputs = Sockets(Socket(self, socket, None) for socket in made)

    def value(self, output):
        if self.name not in self.tree.values:
            self.tree.values[self.name] = self.computed()
        return self.tree.values[self.name][output]

    def computed(self):
        values = [socket.value() for socket in self.inputs]
        if self.bl_idname == "ShaderNodeMath":
            return {"Value": MATH[self.operation](*values)}
        if self.bl_idname == "ShaderNodeVectorMath":
            output = "Value" if self.operation in NUMBERS_OF_VECTORS else "Vector"
            return {output: VECTOR_MATH[self.operation](*values[:2])}
        if self.bl_idname == "ShaderNodeSeparateXYZ":
            return dict(zip("XYZ", values[0]))
        if self.bl_idname == "ShaderNodeCombineXYZ":
            return {"Vector": tuple(values)}
        if self.bl_idname == "NodeGroupInput":
            return self.tree.given
        if self.bl_idname == "ShaderNodeTangent" and self.direction_type != "UV_MAP":
            raise ValueError("this tangent knows no picture")
        return {output.name: SURFACE[output.name] for output in self.outputs if output.name in SURFACE}


class Nodes(list):
    def __init__(self, tree):
        super().__init__()
        self.tree = tree

    def new(self, kind):
        self.append(Node(self.tree, kind, f"{kind}.{len(self):03}"))
        return self[-1]


START = {"NodeSocketColor": (0.0, 0.0, 0.0, 1.0), "NodeSocketVector": VECTOR, "NodeSocketInt": 0, "NodeSocketFloat": NUMBER}


class Tree:
    def __init__(self):
        self.nodes, self.links = Nodes(self), SimpleNamespace(new=self.connect)
        self.sockets = {"INPUT": Sockets(), "OUTPUT": Sockets()}
        self.given, self.values = {}, {}

    def connect(self, output, place):
        if output not in output.node.outputs or place not in place.node.inputs:
            raise ValueError("a link goes from an output to an input")
        place.link = output

    def add_socket(self, direction, kind, name):
        self.sockets[direction].append(Socket(None, name, START[kind]))
        return self.sockets[direction][-1]

    def result(self, **given):
        """The value of the one output for these values of the inputs."""
        self.given, self.values = given, {}
        (output,) = [node for node in self.nodes if node.bl_idname == "NodeGroupOutput"]
        return output.inputs[0].value()


class TreeOfBlender3(Tree):
    def __init__(self):
        super().__init__()
        self.inputs = SimpleNamespace(new=lambda kind, name: self.add_socket("INPUT", kind, name))
        self.outputs = SimpleNamespace(new=lambda kind, name: self.add_socket("OUTPUT", kind, name))


class TreeOfBlender4(Tree):
    def __init__(self):
        super().__init__()
        self.interface = SimpleNamespace(
            new_socket=lambda name, in_out, socket_type: self.add_socket(in_out, socket_type, name)
        )


class Groups(dict):
    def __init__(self, kind_of_tree):
        super().__init__()
        self.kind_of_tree = kind_of_tree

    def new(self, name, kind):
        if kind != "ShaderNodeTree":
            raise ValueError(kind)
        self[name] = self.kind_of_tree()
        return self[name]


def bpy(kind_of_tree):
    return SimpleNamespace(data=SimpleNamespace(node_groups=Groups(kind_of_tree)))
