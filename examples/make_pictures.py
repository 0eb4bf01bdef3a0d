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
PROGRAM = os.path.join(HERE, "..", "build", "release", "zurt")
SIZE = (640, 360)
COLOURS = [(0.27, 0.00, 0.33), (0.23, 0.32, 0.55), (0.13, 0.57, 0.55), (0.37, 0.79, 0.38), (0.99, 0.91, 0.14)]
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


def read(name):
    reader = vtk.vtkXMLPolyDataReader() if name.endswith(".vtp") else vtk.vtkXMLUnstructuredGridReader()
    reader.SetFileName(name)
    reader.Update()
    return reader.GetOutput()


def filtered(algorithm, data, **settings):
    algorithm.SetInputData(data)
    for setting, value in settings.items():
        getattr(algorithm, "Set" + setting)(value)
    algorithm.Update()
    return algorithm.GetOutput()


def kept_part(grid, look):
    """Elements that are not cut away, and of these the ones that have a value at each node."""
    if "box" in look:
        grid = filtered(vtk.vtkClipDataSet(), grid, ClipFunction=box_of(look["box"]), InsideOut=True)
    if "cut" in look:
        plane = vtk.vtkPlane()
        plane.SetOrigin(look["cut"][0])
        plane.SetNormal(look["cut"][1])
        grid = filtered(vtk.vtkExtractGeometry(), grid, ImplicitFunction=plane, ExtractInside=True)
    fluid = vtk.vtkThreshold()
    fluid.SetInputArrayToProcess(0, 0, 0, vtk.vtkDataObject.FIELD_ASSOCIATION_POINTS, "fluid")
    return filtered(fluid, grid, LowerThreshold=0.5)


def box_of(bounds):
    box = vtk.vtkBox()
    box.SetBounds(bounds)
    return box


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
        faces, lines = vtk.vtkAppendPolyData(), vtk.vtkPolyData()
        lines.ShallowCopy(surface)
        lines.SetPolys(vtk.vtkCellArray())
        lines.GetCellData().Initialize()
        faces.AddInputData(filtered(vtk.vtkTubeFilter(), lines, Radius=look["tubes"], NumberOfSides=16, Capping=True))
        return surface, faces
    return surface, None


def fibre_shapes(fibres, look, bounds):
    """Lines as tubes, spheres as they are."""
    lines = vtk.vtkPolyData()
    lines.ShallowCopy(fibres)
    lines.SetVerts(vtk.vtkCellArray())
    lines.GetCellData().Initialize()
    lines.GetPointData().SetActiveScalars("radius")
    tubes = vtk.vtkTubeFilter()
    tubes.SetVaryRadiusToVaryRadiusByAbsoluteScalar()
    shapes = [filtered(tubes, lines, NumberOfSides=48, Capping=True)] if fibres.GetNumberOfLines() > 0 else []
    for cell in cells_of_kind(fibres, 1):
        point = fibres.GetCell(cell).GetPointId(0)
        sphere = vtk.vtkSphereSource()
        sphere.SetCenter(fibres.GetPoint(point))
        sphere.SetRadius(fibres.GetPointData().GetArray("radius").GetValue(point))
        sphere.SetThetaResolution(64)
        sphere.SetPhiResolution(64)
        sphere.Update()
        shapes.append(sphere.GetOutput())
    if "fit" in look:
        margin = 1e-3 if bounds[5] > bounds[4] else 1.0
        box = box_of([limit + (margin if k == 5 else -margin if k == 4 else 1e-3 if k % 2 else -1e-3) for k, limit in enumerate(bounds)])
        shapes = [filtered(vtk.vtkClipPolyData(), shape, ClipFunction=box, InsideOut=True) for shape in shapes]
    return shapes


def cells_of_kind(fibres, kind):
    kinds = fibres.GetCellData().GetArray("kind")
    return [cell for cell in range(fibres.GetNumberOfCells()) if kinds.GetValue(cell) == kind]


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

def colour_table(low, high, log):
    colours = vtk.vtkColorTransferFunction()
    for k, colour in enumerate(COLOURS):
        colours.AddRGBPoint(k / (len(COLOURS) - 1), *colour)
    table = vtk.vtkLookupTable()
    table.SetNumberOfTableValues(256)
    table.SetRange(low, high)
    if log:
        table.SetScaleToLog10()
    for k in range(256):
        table.SetTableValue(k, *colours.GetColor(k / 255), 1.0)
    return table


def add_actor(scene, data, table=None, colour=GREY, opacity=1.0, wire=False, offset=0.0):
    mapper = vtk.vtkPolyDataMapper()
    mapper.SetInputData(data)
    mapper.SetScalarVisibility(table is not None)
    if table is not None:
        mapper.SetLookupTable(table)
        mapper.UseLookupTableScalarRangeOn()
        mapper.InterpolateScalarsBeforeMappingOn()
    actor = vtk.vtkActor()
    actor.SetMapper(mapper)
    actor.SetPosition(0, 0, offset)
    look = actor.GetProperty()
    look.SetAmbient(0.5)
    look.SetDiffuse(0.55)
    look.SetColor(colour)
    look.SetOpacity(opacity)
    if wire:
        look.SetLineWidth(1.2)
    scene.AddActor(actor)


def edges_of(grid):
    """Lines along the edges of all elements."""
    outline = filtered(vtk.vtkExtractEdges(), grid)
    outline.GetPointData().SetScalars(None)
    return outline


def draw_mesh(scene, grid, look, table, offset):
    surface, tubes = surface_of(grid, look)
    if tubes is not None:
        tubes.Update()
        add_actor(scene, tubes.GetOutput(), table, offset=offset)
        surface.SetLines(vtk.vtkCellArray())
        surface.GetCellData().Initialize()
    add_actor(scene, surface, table, opacity=look.get("opacity", 1.0), offset=offset)
    if look.get("edges"):
        wires = surface if "lift" in look else grid
        add_actor(scene, edges_of(wires), colour=(0.25, 0.25, 0.25), opacity=0.5, wire=True, offset=offset)
    if "contours" in look:
        contours = vtk.vtkContourFilter()
        contours.GenerateValues(look["contours"], *table.GetRange())
        add_actor(scene, filtered(contours, surface, ComputeScalars=False), colour=(0.1, 0.1, 0.1), wire=True, offset=offset)


def add_label(scene, time, label, place):
    label.SetInput(f"t = {time:.4g}")
    label.SetPosition(*place)
    style(label.GetTextProperty(), 15)
    scene.AddActor(label)


def style(text, size):
    text.SetColor(0, 0, 0)
    text.SetFontSize(size)
    text.ItalicOff()
    text.BoldOff()
    text.ShadowOff()


def add_scale(scene, table, title):
    scale = vtk.vtkScalarBarActor()
    scale.SetLookupTable(table)
    scale.SetTitle(title)
    scale.SetNumberOfLabels(5)
    scale.SetLabelFormat("%.4g")
    scale.UnconstrainedFontSizeOn()
    style(scale.GetTitleTextProperty(), 15)
    style(scale.GetLabelTextProperty(), 14)
    scale.SetPosition(0.8, 0.08)
    scale.SetWidth(0.18)
    scale.SetHeight(0.86)
    scale.SetDrawNanAnnotation(False)
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
    scene = vtk.vtkRenderer()
    scene.SetBackground(1, 1, 1)
    scene.SetViewport(0, 0, 0.78, 1)
    for k, grid in enumerate(grids):
        draw_mesh(scene, grid, look, table, -k * look.get("apart", 0.0))
    fibres = os.path.join(folder, "zurt-fibres.vtp")
    if os.path.exists(fibres):
        for shape in fibre_shapes(read(fibres), look, grids[0].GetBounds()):
            add_actor(scene, shape)
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
    legend = vtk.vtkRenderer()
    legend.SetBackground(1, 1, 1)
    legend.SetLayer(0)
    add_scale(legend, table, look.get("name", "concentration"))
    return scene, legend


def save(scene, legend, file):
    window = vtk.vtkRenderWindow()
    window.SetOffScreenRendering(1)
    window.SetMultiSamples(8)
    window.SetSize(*SIZE)
    scene.SetLayer(0)
    for part in (legend, scene):
        window.AddRenderer(part)
    window.Render()
    image = vtk.vtkWindowToImageFilter()
    image.SetInput(window)
    image.ReadFrontBufferOff()
    writer = vtk.vtkPNGWriter()
    writer.SetInputConnection(image.GetOutputPort())
    writer.SetCompressionLevel(9)
    writer.SetFileName(file)
    writer.Write()


def main():
    vtk.vtkMapper.SetResolveCoincidentTopologyToPolygonOffset()  # lines stand ahead of the surface that they lie on
    if "DISPLAY" not in os.environ:
        os.execvp("xvfb-run", ["xvfb-run", "--auto-servernum", sys.executable, *sys.argv])
    for name in sys.argv[1:] or sorted(EXAMPLES):
        with tempfile.TemporaryDirectory() as folder:
            save(*draw(name, folder), os.path.join(HERE, name, "picture.png"))
        print(name, os.path.getsize(os.path.join(HERE, name, "picture.png")), "bytes")


if __name__ == "__main__":
    main()
