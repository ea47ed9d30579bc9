"""Camera, light and rendering. Every picture is rendered into its separate light and colour passes (see darkroom.py)."""
import math
from pathlib import Path

import bpy

from shapes import UNIT, add_mesh, place

PASSES = ("DiffDir", "DiffInd", "DiffCol", "GlossDir", "GlossInd", "GlossCol", "Emit", "Alpha",
          "Denoising Normal", "Denoising Depth")


class Stage:
    def __init__(self, image_size, samples, threads):
        self._width, self._height = image_size
        self._scene = scene = bpy.context.scene
        scene.render.engine = "CYCLES"
        scene.cycles.device = "CPU"
        scene.cycles.samples = samples
        scene.cycles.use_adaptive_sampling = False
        scene.cycles.use_denoising = False
        scene.cycles.caustics_reflective = scene.cycles.caustics_refractive = False
        scene.cycles.max_bounces, scene.cycles.diffuse_bounces, scene.cycles.glossy_bounces = 2, 1, 1
        scene.cycles.blur_glossy = 1.0
        scene.render.threads_mode, scene.render.threads = "FIXED", threads
        scene.render.film_transparent = True
        scene.render.resolution_x, scene.render.resolution_y = image_size
        self._lights = []
        self._add_camera()
        self._prepare_passes()

    def light_room(self, gain):
        """A large soft light from the upper left, a cool fill from the right, a weak one from below."""
        cx, cy = self._width / 2 * UNIT, -self._height / 2 * UNIT
        self._area((cx - 7, cy + 8, 10), (-38, -32, 0), 4.2, 1650 * gain, (1, 0.97, 0.92))
        beyond = self._width / 2 * UNIT + 3.5  # further right: a light straight above a glass would shine back from it
        self._area((cx + beyond, cy + 3, 8), (-12, 54, 0), 6, 560 * gain, (0.82, 0.90, 1))
        self._area((cx, cy - 9, 10), (42, 0, 0), 9, 260 * gain, (1, 1, 1))
        self._sky([(0, 0.10 * gain), (1, 0.13 * gain)])
        self._window(gain)

    def light_evenly(self, gain):
        """The same from all sides, a bright ring half way up: for what the program turns."""
        for light in self._lights:
            bpy.data.objects.remove(light)
        self._lights = []
        ring = ((0, 0.04), (0.45, 0.25), (0.66, 1.9), (0.80, 1.2), (0.92, 0.45), (1, 0.55))
        self._sky([(height, light * gain) for height, light in ring])

    def render(self, folder, box=None, cropped=False):
        """Writes the passes into the folder as NAME.exr; box: the (x, y, w, h) in pixels to render, the rest stays empty or,
        if cropped, is not there."""
        render = self._scene.render
        render.use_border, render.use_crop_to_border = box is not None, cropped
        if box is not None:
            x, y, w, h = box
            inside = 0.25  # of a pixel: Blender keeps these shares as floats and cuts off what they come to
            render.border_min_x, render.border_max_x = (x + inside) / self._width, (x + w + inside) / self._width
            render.border_min_y = 1 - (y + h - inside) / self._height
            render.border_max_y = 1 - (y - inside) / self._height
        self._output.base_path = str(folder)
        bpy.ops.render.render()
        for name in PASSES:
            (Path(folder) / f"{name}0001.exr").replace(Path(folder) / f"{name}.exr")

    def _add_camera(self):
        camera = bpy.data.cameras.new("camera")
        camera.type = "ORTHO"
        camera.ortho_scale = max(self._width, self._height) * UNIT
        seen = bpy.data.objects.new("camera", camera)
        seen.location = place(self._width / 2, self._height / 2, 2000)
        self._scene.collection.objects.link(seen)
        self._scene.camera = seen

    def _area(self, at, degrees, size, energy, color):
        lamp = bpy.data.lights.new("light", "AREA")
        lamp.energy, lamp.size, lamp.color = energy, size, color
        light = bpy.data.objects.new("light", lamp)
        light.location = at
        light.rotation_euler = [math.radians(angle) for angle in degrees]
        self._scene.collection.objects.link(light)
        self._lights.append(light)

    def _window(self, gain):
        """Two slanting bands of light overhead that only glossy surfaces reflect: what makes glass look like glass."""
        material = bpy.data.materials.new("window")
        material.use_nodes = True
        shader = material.node_tree.nodes["Principled BSDF"]
        shader.inputs["Base Color"].default_value = (0, 0, 0, 1)
        shader.inputs["Emission"].default_value = (0.85, 0.93, 1, 1)
        shader.inputs["Emission Strength"].default_value = 0.55 * gain
        lean = self._height * 0.45
        for left, right in ((0.20, 0.36), (0.39, 0.43), (0.74, 0.86)):
            x0, x1 = left * self._width, right * self._width
            corners = [(x0 - lean, self._height), (x1 - lean, self._height), (x1 + lean, 0), (x0 + lean, 0)]
            band = add_mesh([place(x, y, 1200) for x, y in corners], [(0, 1, 2, 3)], material)
            band.visible_camera = band.visible_diffuse = band.visible_shadow = False
            self._lights.append(band)

    def _sky(self, levels):
        """A world whose light changes from the horizon (0) to straight above (1): (height, light) in that order."""
        world = bpy.data.worlds.new("sky")
        self._scene.world = world
        world.use_nodes = True
        nodes, links = world.node_tree.nodes, world.node_tree.links
        direction = nodes.new("ShaderNodeTexCoord")
        split = nodes.new("ShaderNodeSeparateXYZ")
        ramp = nodes.new("ShaderNodeValToRGB")
        stops = ramp.color_ramp.elements
        for height, _ in levels[2:]:
            stops.new(height)
        for stop, (height, light) in zip(stops, levels):
            stop.position, stop.color = height, (light, light, light, 1)
        links.new(direction.outputs["Generated"], split.inputs[0])
        links.new(split.outputs["Z"], ramp.inputs[0])
        links.new(ramp.outputs[0], nodes["Background"].inputs[0])

    def _prepare_passes(self):
        layer = self._scene.view_layers[0]
        for kind in ("diffuse", "glossy"):
            for part in ("direct", "indirect", "color"):
                setattr(layer, f"use_pass_{kind}_{part}", True)
        layer.use_pass_emit = True
        layer.cycles.denoising_store_passes = True
        self._scene.use_nodes = True
        tree = self._scene.node_tree
        tree.nodes.clear()
        source = tree.nodes.new("CompositorNodeRLayers")
        self._output = tree.nodes.new("CompositorNodeOutputFile")
        self._output.format.file_format = "OPEN_EXR"
        self._output.format.color_depth = "32"
        self._output.file_slots.clear()
        for name in PASSES:
            self._output.file_slots.new(name)
            tree.links.new(source.outputs[name], self._output.inputs[name])
