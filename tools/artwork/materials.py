"""Surfaces. Those that can carry a legend look themselves up on the legend sheet by their position in the scene."""
import bpy

from shapes import UNIT


class Materials:
    def __init__(self, sheet_path, image_size):
        self._sheet = bpy.data.images.load(str(sheet_path))
        self._sheet.colorspace_settings.name = "Non-Color"
        self._size = image_size

    def reload(self):
        """Call when the legend sheet's file was written anew."""
        self._sheet.reload()

    def plain(self, name, color, rough=0.5, metallic=0.0, specular=0.5):
        material, _, shader = _new(name)
        _set(shader, color, rough, metallic, specular)
        return material

    def spun(self, name, color, rough, cx, cy, pitch=1.6, depth=0.35):
        """Metal turned on a lathe about (cx, cy): fine concentric grooves, the same seen from every side."""
        material, nodes, shader = _new(name)
        _set(shader, color, rough, 1.0, 0.5)
        position = nodes.add("ShaderNodeNewGeometry").outputs["Position"]
        nodes.bump(nodes.math("MULTIPLY", _grooves(nodes, position, cx, cy, pitch), depth), shader)
        return material

    def legended(self, name, color, rough=0.5, metallic=0.0, specular=0.5, grain=0.0, grain_pixels=2.5, speckle=0.0,
                 mottle=0.0, ink=(0.86, 0.86, 0.82), ink_glow=0.20, engrave=1.0, wear=None, wear_metallic=0.2, rub=None,
                 turned=None):
        """A painted or moulded surface.

        grain: height in pixels of its texture, grain_pixels wide; speckle: share by which the colour varies with it; mottle:
        by which it varies over the panel; engrave: depth in pixels of the legends; wear: the colour under the paint;
        rub: colour of edges that hands have polished (where the surface leans away from the viewer); turned: the
        middle of concentric grooves.
        """
        material, nodes, shader = _new(name)
        _set(shader, color, rough, metallic, specular)
        geometry = nodes.add("ShaderNodeNewGeometry")
        ink_mask, caution_mask, wear_mask = self._masks(nodes, geometry.outputs["Position"])

        tone = nodes.rgb(color)
        if mottle:
            cloud = nodes.noise(geometry.outputs["Position"], 260, 3)
            tone = nodes.mix(tone, nodes.rgb([c * (1 - 2 * mottle) for c in color]), cloud)
        if grain:
            texture = nodes.noise(geometry.outputs["Position"], grain_pixels, 2)
            tone = nodes.mix(tone, nodes.rgb([c * (1 - speckle) for c in color]), nodes.ramp(texture, 0.35, 0.65))
        if rub:
            lean = nodes.add("ShaderNodeSeparateXYZ")
            nodes.link(geometry.outputs["Normal"], lean.inputs[0])
            edge = nodes.ramp(lean.outputs["Z"], 0.985, 0.80)
            patches = nodes.ramp(nodes.noise(geometry.outputs["Position"], 60, 2), 0.25, 0.75)
            tone = nodes.mix(tone, nodes.rgb(rub), nodes.math("MULTIPLY", edge, patches))
        if wear:
            tone = nodes.mix(tone, nodes.rgb(wear), wear_mask)
            nodes.link(nodes.math("MULTIPLY", wear_mask, wear_metallic), shader.inputs["Metallic"])
        tone = nodes.mix(tone, nodes.rgb((0.62, 0.40, 0.05)), caution_mask)
        # The paint in a legend is not perfect.
        worn = nodes.ramp(nodes.noise(geometry.outputs["Position"], 7, 4), 0.20, 0.42)
        worn = nodes.math("ADD", nodes.math("MULTIPLY", worn, 0.22), 0.78)
        ink_share = nodes.math("MULTIPLY", ink_mask, worn)
        tone = nodes.mix(tone, nodes.rgb(ink), ink_share)
        nodes.link(tone, shader.inputs["Base Color"])
        nodes.link(nodes.rgb(ink), shader.inputs["Emission"])
        nodes.link(nodes.math("MULTIPLY", ink_share, ink_glow), shader.inputs["Emission Strength"])
        nodes.link(nodes.math("ADD", nodes.math("MULTIPLY", ink_mask, 0.65 - rough), rough), shader.inputs["Roughness"])

        height = nodes.math("MULTIPLY", ink_mask, -engrave)
        height = nodes.math("ADD", height, nodes.math("MULTIPLY", wear_mask, -0.5))
        if grain:
            height = nodes.math("ADD", height, nodes.math("MULTIPLY", texture, grain))
        if turned:
            grooves = _grooves(nodes, geometry.outputs["Position"], *turned, 3.5)
            height = nodes.math("ADD", height, nodes.math("MULTIPLY", grooves, 0.7))
        nodes.bump(height, shader)
        return material

    def _masks(self, nodes, position):
        mapping = nodes.add("ShaderNodeMapping")
        mapping.inputs["Scale"].default_value = (1 / (self._size[0] * UNIT), 1 / (self._size[1] * UNIT), 1)
        mapping.inputs["Location"].default_value = (0, 1, 0)
        nodes.link(position, mapping.inputs["Vector"])
        picture = nodes.add("ShaderNodeTexImage", extension="CLIP")
        picture.image = self._sheet
        nodes.link(mapping.outputs["Vector"], picture.inputs["Vector"])
        split = nodes.add("ShaderNodeSeparateColor")
        nodes.link(picture.outputs["Color"], split.inputs[0])
        return split.outputs[0], split.outputs[1], split.outputs[2]


class _Nodes:
    """Short names for wiring a node tree."""

    def __init__(self, tree):
        self._tree = tree

    def add(self, kind, **settings):
        node = self._tree.nodes.new(kind)
        for name, value in settings.items():
            setattr(node, name, value)
        return node

    def link(self, output, socket):
        self._tree.links.new(output, socket)

    def rgb(self, color):
        node = self.add("ShaderNodeRGB")
        node.outputs[0].default_value = (*color, 1)
        return node.outputs[0]

    def math(self, operation, a, b):
        node = self.add("ShaderNodeMath", operation=operation)
        for socket, value in zip(node.inputs, (a, b)):
            if isinstance(value, (int, float)):
                socket.default_value = value
            else:
                self.link(value, socket)
        return node.outputs[0]

    def vector(self, operation, a, b):
        node = self.add("ShaderNodeVectorMath", operation=operation)
        self.link(a, node.inputs[0])
        node.inputs[1].default_value = b
        return node.outputs[0]

    def mix(self, a, b, share):
        node = self.add("ShaderNodeMixRGB")
        self.link(share, node.inputs[0])
        self.link(a, node.inputs[1])
        self.link(b, node.inputs[2])
        return node.outputs[0]

    def ramp(self, value, start, end):
        """0 at start, 1 at end, clamped; end may be the smaller."""
        node = self.add("ShaderNodeMapRange")
        self.link(value, node.inputs["Value"])
        node.inputs["From Min"].default_value = start
        node.inputs["From Max"].default_value = end
        return node.outputs[0]

    def noise(self, position, pixels, detail):
        node = self.add("ShaderNodeTexNoise")
        node.inputs["Scale"].default_value = 1 / (pixels * UNIT)
        node.inputs["Detail"].default_value = detail
        self.link(position, node.inputs["Vector"])
        return node.outputs["Fac"]

    def bump(self, height, shader):
        """height in pixels."""
        node = self.add("ShaderNodeBump")
        node.inputs["Distance"].default_value = UNIT
        self.link(height, node.inputs["Height"])
        self.link(node.outputs["Normal"], shader.inputs["Normal"])


def _grooves(nodes, position, cx, cy, pitch):
    """0..1 over the distance from (cx, cy), about one groove per pitch pixels."""
    flat = nodes.vector("MULTIPLY", nodes.vector("SUBTRACT", position, (cx * UNIT, -cy * UNIT, 0)), (1, 1, 0))
    length = nodes.add("ShaderNodeVectorMath", operation="LENGTH")
    nodes.link(flat, length.inputs[0])
    noise = nodes.add("ShaderNodeTexNoise", noise_dimensions="1D")
    noise.inputs["Scale"].default_value = 1 / (pitch * UNIT)
    noise.inputs["Detail"].default_value = 2
    nodes.link(length.outputs["Value"], noise.inputs["W"])
    return noise.outputs["Fac"]


def _new(name):
    material = bpy.data.materials.new(name)
    material.use_nodes = True
    return material, _Nodes(material.node_tree), material.node_tree.nodes["Principled BSDF"]


def _set(shader, color, rough, metallic, specular):
    shader.inputs["Base Color"].default_value = (*color, 1)
    shader.inputs["Roughness"].default_value = rough
    shader.inputs["Metallic"].default_value = metallic
    shader.inputs["Specular"].default_value = specular
