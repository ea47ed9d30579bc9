"""Meshes of the scenes. Everything is in artwork pixels, y down, z up from the faceplate's front; 100 to a scene unit.

Nearly all parts are lofts: one outline, drawn several times at different insets and heights, and skinned.
"""
import math

import bpy

UNIT = 0.01  # scene units per artwork pixel
CORNER_STEPS = 10


def place(x, y, z=0.0):
    return (x * UNIT, -y * UNIT, z * UNIT)


def rounded(rect, radius):
    """Outline function of a rectangle with round corners: inset (negative grows) -> points."""

    def outline(inset):
        w, h = rect.w / 2 - inset, rect.h / 2 - inset
        r = min(max(radius - inset, 0.6), w, h)
        points = []
        for quarter, (sx, sy) in enumerate(((1, 1), (-1, 1), (-1, -1), (1, -1))):
            for step in range(CORNER_STEPS + 1):
                angle = math.pi / 2 * (quarter + step / CORNER_STEPS)
                points.append((rect.cx + sx * (w - r) + r * math.cos(angle), rect.cy + sy * (h - r) + r * math.sin(angle)))
        return points

    return outline


def circle(cx, cy, radius, points=192):
    """Outline function of a circle."""

    def outline(inset):
        r = radius - inset
        angles = [2 * math.pi * i / points for i in range(points)]
        return [(cx + r * math.cos(a), cy + r * math.sin(a)) for a in angles]

    return outline


def fluted(cx, cy, radius, flutes, depth, sharpness=1.0, steps=16):
    """Outline function of a circle with flutes cut into it; depth in pixels. Sharpness above 1 narrows the grooves."""

    def outline(inset):
        points = []
        for i in range(flutes * steps):
            angle = 2 * math.pi * i / (flutes * steps)
            groove = (0.5 + 0.5 * math.cos(angle * flutes)) ** sharpness
            r = radius - inset - depth * groove
            points.append((cx + r * math.cos(angle), cy + r * math.sin(angle)))
        return points

    return outline


def loft(outline, levels, material, cap=True, smooth_degrees=40):
    """Skins the outline through levels of (inset, z), from the lowest outer one inward; cap closes the last."""
    rings = [outline(inset) for inset, _ in levels]
    count = len(rings[0])
    vertices = [place(x, y, z) for ring, (_, z) in zip(rings, levels) for x, y in ring]
    faces = []
    for level in range(len(levels) - 1):
        low, high = level * count, (level + 1) * count
        for i in range(count):
            j = (i + 1) % count
            faces.append((low + j, low + i, high + i, high + j))
    if cap:
        top = (len(levels) - 1) * count
        faces.append(tuple(reversed(range(top, top + count))))
    return add_mesh(vertices, faces, material, smooth_degrees)


def add_mesh(vertices, faces, material, smooth_degrees=40):
    mesh = bpy.data.meshes.new("part")
    mesh.from_pydata(vertices, [], faces)
    mesh.polygons.foreach_set("use_smooth", [True] * len(mesh.polygons))
    mesh.use_auto_smooth = True
    mesh.auto_smooth_angle = math.radians(smooth_degrees)
    mesh.materials.append(material)
    part = bpy.data.objects.new("part", mesh)
    bpy.context.scene.collection.objects.link(part)
    return part


def shoulder(width, z_low, z_high, inset=0.0, steps=5):
    """Levels of a quarter-round edge that rises from z_low at inset to z_high at inset + width."""
    levels = []
    for step in range(steps + 1):
        angle = math.pi / 2 * step / steps
        levels.append((inset + width * (1 - math.cos(angle)), z_low + (z_high - z_low) * math.sin(angle)))
    return levels


def flat_with_holes(outlines, z, material):
    """A flat face: the first outline filled, the others left out of it. Each is a list of points."""
    curve = bpy.data.curves.new("face", "CURVE")
    curve.dimensions = "2D"
    curve.fill_mode = "BOTH"
    for points in outlines:
        spline = curve.splines.new("POLY")
        spline.points.add(len(points) - 1)
        for point, (x, y) in zip(spline.points, points):
            point.co = (*place(x, y)[:2], 0, 1)
        spline.use_cyclic_u = True
    curve.materials.append(material)
    face = bpy.data.objects.new("face", curve)
    face.location.z = z * UNIT
    bpy.context.scene.collection.objects.link(face)
    return face
