"""Parts of pictures drawn by VTK: what the report and the pictures of the examples have in common."""
import vtk

COLOURS = [(0.27, 0.00, 0.33), (0.23, 0.32, 0.55), (0.13, 0.57, 0.55), (0.37, 0.79, 0.38), (0.99, 0.91, 0.14)]


def read(name):
    """The data of a .vtu or .vtp file."""
    reader = vtk.vtkXMLPolyDataReader() if name.endswith(".vtp") else vtk.vtkXMLUnstructuredGridReader()
    reader.SetFileName(name)
    reader.Update()
    return reader.GetOutput()


def filtered(algorithm, data, **settings):
    """What a filter with these settings makes of the data."""
    algorithm.SetInputData(data)
    for setting, value in settings.items():
        getattr(algorithm, "Set" + setting)(value)
    algorithm.Update()
    return algorithm.GetOutput()


def clipped(clip, data, bounds):
    """The part inside a box."""
    box = vtk.vtkBox()
    box.SetBounds(bounds)
    return filtered(clip, data, ClipFunction=box, InsideOut=True)


def without_fibres(grid):
    """Elements that have a value at each node."""
    if grid.GetPointData().GetArray("fluid") is None:
        return grid
    fluid = vtk.vtkThreshold()
    fluid.SetInputArrayToProcess(0, 0, 0, vtk.vtkDataObject.FIELD_ASSOCIATION_POINTS, "fluid")
    return filtered(fluid, grid, LowerThreshold=0.5)


def without(data, cells):
    """A copy without cells of a kind: "Polys", "Lines" or "Verts"."""
    copy = vtk.vtkPolyData()
    copy.ShallowCopy(data)
    getattr(copy, "Set" + cells)(vtk.vtkCellArray())
    copy.GetCellData().Initialize()
    return copy


def cells_of_kind(fibres, kind):
    """Cells of a file of fibres: kind 0 lines, 1 spheres, 2 radial fibres."""
    kinds = fibres.GetCellData().GetArray("kind")
    return [cell for cell in range(fibres.GetNumberOfCells()) if kinds.GetValue(cell) == kind]


def fibre_shapes(fibres, sides):
    """Lines as tubes and spheres as they are. sides: of a tube's circle."""
    shapes = []
    if fibres.GetNumberOfLines() > 0:
        lines = without(fibres, "Verts")
        lines.GetPointData().SetActiveScalars("radius")
        tubes = vtk.vtkTubeFilter()
        tubes.SetVaryRadiusToVaryRadiusByAbsoluteScalar()
        shapes.append(filtered(tubes, lines, NumberOfSides=sides, Capping=True))
    for cell in cells_of_kind(fibres, 1):
        point = fibres.GetCell(cell).GetPointId(0)
        sphere = vtk.vtkSphereSource()
        sphere.SetCenter(fibres.GetPoint(point))
        sphere.SetRadius(fibres.GetPointData().GetArray("radius").GetValue(point))
        sphere.SetThetaResolution(sides)
        sphere.SetPhiResolution(sides)
        sphere.Update()
        shapes.append(sphere.GetOutput())
    return shapes


def edges_of(grid):
    """Lines along the edges of all elements."""
    outline = filtered(vtk.vtkExtractEdges(), grid)
    outline.GetPointData().SetScalars(None)
    return outline


def colour_table(low, high, log=False):
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


def add_actor(scene, data, table=None, colour=(0.6, 0.6, 0.6), opacity=1.0):
    """Adds a surface or lines, in colours of its scalars by a table or in one colour. The actor."""
    mapper = vtk.vtkPolyDataMapper()
    mapper.SetInputData(data)
    mapper.SetScalarVisibility(table is not None)
    if table is not None:
        mapper.SetLookupTable(table)
        mapper.UseLookupTableScalarRangeOn()
        mapper.InterpolateScalarsBeforeMappingOn()
    actor = vtk.vtkActor()
    actor.SetMapper(mapper)
    look = actor.GetProperty()
    look.SetAmbient(0.5)
    look.SetDiffuse(0.55)
    look.SetColor(colour)
    look.SetOpacity(opacity)
    scene.AddActor(actor)
    return actor


def style_text(text, size, grey):
    text.SetColor(grey, grey, grey)
    text.SetFontSize(size)
    text.ItalicOff()
    text.BoldOff()
    text.ShadowOff()


def scale_bar(table, title, sizes, grey):
    """A scale of colours. sizes: of its title and of its labels, in pixels."""
    scale = vtk.vtkScalarBarActor()
    scale.SetLookupTable(table)
    scale.SetTitle(title)
    scale.SetVerticalTitleSeparation(sizes[1] // 2)  # half of the top label stands beside the end of the bar
    scale.SetNumberOfLabels(5)
    scale.SetLabelFormat("%.4g")
    scale.UnconstrainedFontSizeOn()
    scale.SetDrawNanAnnotation(False)
    for text, size in zip((scale.GetTitleTextProperty(), scale.GetLabelTextProperty()), sizes):
        style_text(text, size, grey)
    return scale


def new_scene(viewport):
    scene = vtk.vtkRenderer()
    scene.SetBackground(1, 1, 1)
    scene.SetViewport(*viewport)
    return scene


def save(scenes, size, file):
    """Draws the scenes into a .png file of so many pixels."""
    window = vtk.vtkRenderWindow()
    window.SetOffScreenRendering(1)
    window.SetMultiSamples(8)
    window.SetSize(*size)
    for scene in scenes:
        window.AddRenderer(scene)
    window.Render()
    image = vtk.vtkWindowToImageFilter()
    image.SetInput(window)
    image.ReadFrontBufferOff()
    writer = vtk.vtkPNGWriter()
    writer.SetInputConnection(image.GetOutputPort())
    writer.SetCompressionLevel(9)
    writer.SetFileName(file)
    writer.Write()
