#!/usr/bin/python3
"""Runs the examples with --vtu and draws one picture of each from its results: examples/NAME/picture.png.

  examples/make_pictures.py [NAME ...]      all of them without a name

Takes the program from build/release and Debian's python3-vtk9; without a display also xvfb and xauth (./setup viewers).
"""
import os
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

import vtk

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "companions"))
from zurt.report.vtk_drawing import (add_actor, cells_of_kind, clipped, colour_table, edges_of, fibre_shapes, filtered, new_scene, read,  # noqa: E402
                                     save, scale_bar, style_text, without, without_fibres)

PROGRAM = os.path.join(HERE, "..", "build", "release", "zurt")
SIZE = (640, 360)
GREY = (0.62, 0.62, 0.62)

# How each is drawn. options: of the program. steps: places in the .pvd, the last one without; several stand below each other, `apart`. name: of the field.
# cut: a point and a normal, elements ahead of that plane are taken away. box: what is kept. lift: the field raises the surface by so
# much a unit. turn: an axisymmetric section is turned about x. tubes: radius in which lines are drawn. across: how radial fibres, which
# have no direction in the deck, lie. fit: fibres end where the mesh does. view: from where. edges: of the elements. contours: how many.
EXAMPLES = {
    "brick20": dict(view=(0.5, -1, 0.6), edges=True),
    "cube_sparse": dict(cut=((0.5, 0.5, 0.5), (0.9, 0.5, 0.3)), view=(1, 0.5, 0.7), edges=True, zoom=1.0),
    "device": dict(steps=[0, 1, 2], apart=0.28, view=(0.05, -1, 0.35), edges=True),
    "drug_release": dict(steps=[1], log=True, across=(0, 1, 0), opacity=0.15, view=(0.3, -1, 0.6), zoom=1.1, edges=True),
    "fibre_box": dict(steps=[2], cut=((0.5, 0.5, 0.5), (0, 0, 1)), view=(0.5, -0.9, 1.0), zoom=1.05),
    "fibrous_sheet": dict(contours=28, fit=True),
    "first": dict(steps=[0, 1, 2, 3], apart=0.3, view=(0.05, -1, 0.35)),
    "homogenization": dict(box=(-1.0, 3.0, -1, 2, -1, 1), contours=28, fit=True),
    "membrane": dict(steps=[0, 1, 2, 3], options=["--prescribed", "faces.dat"], apart=0.3, view=(0.05, -1, 0.35)),
    "line_network": dict(tubes=0.1, view=(0.3, -0.6, 1)),
    "million": dict(options=["--solver", "cg"], cut=((0.5, 0.5, 0.5), (1, -0.7, 0.9)), view=(0.8, -1, 0.9), zoom=1.05),
    "nanochannel_reservoirs": dict(steps=[1], view=(0.4, -1, 0.5), edges=True),
    "radiating_edge": dict(edges=True, contours=8, name="temperature"),
    "ring": dict(turn=True, view=(-1.0, -0.7, 0.5)),
    "spheres": dict(view=(0.75, 0.95, 0.5), fit=True, edges=True),
    "steady_nonlinear": dict(view=(0.4, -1, 0.5), edges=True),
    "t4": dict(contours=20, name="temperature - 100"),
    "torsion": dict(lift=1.0, edges=True, view=(0.8, -1, 0.7), name="torsion function"),
    "two_problems": dict(view=(0.4, -1, 0.5), edges=True),
}


# --- data ---------------------------------------------------------------------------------------------------------------

def run_example(name, folder):
    """[(time, .vtu)] of the first problem."""
    deck = os.path.join(HERE, name, "zurt.dat")
    if not os.path.exists(deck):
        subprocess.run([os.path.join(HERE, name, "make_deck")], check=True, cwd=folder)
        deck = os.path.join(folder, "zurt.dat")
    options = EXAMPLES[name].get("options", [])
    subprocess.run([PROGRAM, "--quiet", "--vtu", "--output", folder, *options, deck], check=True, cwd=os.path.dirname(deck),
                   stderr=subprocess.DEVNULL)
    entries = xml.etree.ElementTree.parse(os.path.join(folder, "zurt.pvd")).iter("DataSet")
    return [(float(entry.get("timestep")), os.path.join(folder, entry.get("file"))) for entry in entries]


def kept_part(grid, look):
    """Elements that are not cut away, and of these the ones that have a value at each node."""
    if "box" in look:
        grid = clipped(vtk.vtkClipDataSet(), grid, look["box"])
    if "cut" in look:
        plane = vtk.vtkPlane()
        plane.SetOrigin(look["cut"][0])
        plane.SetNormal(look["cut"][1])
        grid = filtered(vtk.vtkExtractGeometry(), grid, ImplicitFunction=plane, ExtractInside=True)
    return without_fibres(grid)


def surface_of(grid, look):
    surface = filtered(vtk.vtkDataSetSurfaceFilter(), grid, NonlinearSubdivisionLevel=3)
    if "lift" in look:
        surface = filtered(vtk.vtkWarpScalar(), surface, ScaleFactor=look["lift"], UseNormal=True, Normal=(0, 0, 1))
    if "turn" in look:
        upright = vtk.vtkTransform()
        upright.RotateY(-90)  # the axis x becomes z, y stays the radius
        surface = filtered(vtk.vtkTransformPolyDataFilter(), surface, Transform=upright)
        surface = filtered(vtk.vtkRotationalExtrusionFilter(), surface, Resolution=90, Angle=250, Capping=True)
        surface = filtered(vtk.vtkTransformPolyDataFilter(), surface, Transform=upright.GetInverse())
    if "tubes" in look:
        lines = without(surface, "Polys")
        return without(surface, "Lines"), filtered(vtk.vtkTubeFilter(), lines, Radius=look["tubes"], NumberOfSides=16, Capping=True)
    return surface, None


def shapes_of_fibres(fibres, look, bounds):
    """Lines as tubes, spheres as they are."""
    shapes = fibre_shapes(fibres, 64)
    if "fit" in look:
        margin = 1e-3 if bounds[5] > bounds[4] else 1.0
        box = [limit + (margin if k == 5 else -margin if k == 4 else 1e-3 if k % 2 else -1e-3) for k, limit in enumerate(bounds)]
        shapes = [clipped(vtk.vtkClipPolyData(), shape, box) for shape in shapes]
    return shapes


def radial_shapes(fibres, grid, across):
    """Tubes of the fibres' radius and length, with the concentration on the axis: the point of the mesh at the fibre's centre."""
    shapes = []
    values = grid.GetPointData().GetArray("concentration")
    for cell in cells_of_kind(fibres, 2):
        point = fibres.GetCell(cell).GetPointId(0)
        centre, half = fibres.GetPoint(point), fibres.GetCellData().GetArray("length").GetValue(cell) / 2
        line = vtk.vtkLineSource()
        line.SetPoint1([c - half * d for c, d in zip(centre, across)])
        line.SetPoint2([c + half * d for c, d in zip(centre, across)])
        line.Update()
        axis = max(range(grid.GetNumberOfPoints()), key=lambda k: (-round(vtk.vtkMath.Distance2BetweenPoints(grid.GetPoint(k), centre), 9), k))
        colour = vtk.vtkDoubleArray()
        colour.SetName("concentration")
        for _ in range(2):
            colour.InsertNextValue(values.GetValue(axis))
        line.GetOutput().GetPointData().SetScalars(colour)
        radius = fibres.GetPointData().GetArray("radius").GetValue(point)
        shapes.append(filtered(vtk.vtkTubeFilter(), line.GetOutput(), Radius=radius, NumberOfSides=24, Capping=True))
    return shapes


# --- the scene ----------------------------------------------------------------------------------------------------------

def add_part(scene, offset, data, *arguments, wire=False, **settings):
    """An actor of this grid, moved along z by the offset."""
    actor = add_actor(scene, data, *arguments, **settings)
    actor.SetPosition(0, 0, offset)
    if wire:
        actor.GetProperty().SetLineWidth(1.2)


def draw_mesh(scene, grid, look, table, offset):
    surface, tubes = surface_of(grid, look)
    if tubes is not None:
        add_part(scene, offset, tubes, table)
    add_part(scene, offset, surface, table, opacity=look.get("opacity", 1.0))
    if look.get("edges"):
        wires = surface if "lift" in look else grid
        add_part(scene, offset, edges_of(wires), colour=(0.25, 0.25, 0.25), opacity=0.5, wire=True)
    if "contours" in look:
        contours = vtk.vtkContourFilter()
        contours.GenerateValues(look["contours"], *table.GetRange())
        add_part(scene, offset, filtered(contours, surface, ComputeScalars=False), colour=(0.1, 0.1, 0.1), wire=True)


def add_label(scene, time, label, place):
    label.SetInput(f"t = {time:.4g}")
    label.SetPosition(*place)
    style_text(label.GetTextProperty(), 15, 0)
    scene.AddActor(label)


def add_scale(scene, table, title):
    scale = scale_bar(table, title, (15, 14), 0)
    scale.SetPosition(0.8, 0.08)
    scale.SetWidth(0.18)
    scale.SetHeight(0.86)
    scene.AddActor2D(scale)


def place_camera(scene, look):
    camera = scene.GetActiveCamera()
    bounds = scene.ComputeVisiblePropBounds()
    centre = [(bounds[2 * axis] + bounds[2 * axis + 1]) / 2 for axis in range(3)]
    view = look.get("view", (0, 0, 1))
    camera.SetFocalPoint(centre)
    camera.SetPosition([c + d for c, d in zip(centre, view)])
    camera.SetViewUp((0, 1, 0) if view == (0, 0, 1) else (0, 0, 1))
    camera.ParallelProjectionOn()
    scene.ResetCamera()
    camera.Zoom(look.get("zoom", 1.2))


def draw(name, folder):
    look = EXAMPLES[name]
    steps = run_example(name, folder)
    chosen = [steps[k] for k in look.get("steps", [-1])]
    grids = [kept_part(read(file), look) for _, file in chosen]
    for grid in grids:
        grid.GetPointData().SetActiveScalars("concentration")
    ranges = [grid.GetPointData().GetArray("concentration").GetFiniteRange(0) for grid in grids]
    table = colour_table(min(low for low, _ in ranges), max(high for _, high in ranges), look.get("log", False))
    scene = new_scene((0, 0, 0.78, 1))
    for k, grid in enumerate(grids):
        draw_mesh(scene, grid, look, table, -k * look.get("apart", 0.0))
    fibres = os.path.join(folder, "zurt-fibres.vtp")
    if os.path.exists(fibres):
        for shape in shapes_of_fibres(read(fibres), look, grids[0].GetBounds()):
            add_actor(scene, shape, colour=GREY)
        if "across" in look:
            for shape in radial_shapes(read(fibres), grids[0], look["across"]):
                add_actor(scene, shape, table)
    place_camera(scene, look)
    for k, ((time, _), grid) in enumerate(zip(chosen, grids)):
        if len(grids) > 1:
            bounds = grid.GetBounds()
            above = bounds[5] + 0.03 * (bounds[1] - bounds[0]) - k * look["apart"]
            add_label(scene, time, vtk.vtkBillboardTextActor3D(), (bounds[0], bounds[2], above))
        elif time > 0:
            add_label(scene, time, vtk.vtkTextActor(), (12, SIZE[1] - 28))
    legend = new_scene((0, 0, 1, 1))
    add_scale(legend, table, look.get("name", "concentration"))
    return legend, scene


def main():
    vtk.vtkMapper.SetResolveCoincidentTopologyToPolygonOffset()  # lines stand ahead of the surface that they lie on
    if "DISPLAY" not in os.environ:
        os.execvp("xvfb-run", ["xvfb-run", "--auto-servernum", sys.executable, *sys.argv])
    for name in sys.argv[1:] or sorted(EXAMPLES):
        with tempfile.TemporaryDirectory() as folder:
            save(draw(name, folder), SIZE, os.path.join(HERE, name, "picture.png"))
        print(name, os.path.getsize(os.path.join(HERE, name, "picture.png")), "bytes")


if __name__ == "__main__":
    main()
