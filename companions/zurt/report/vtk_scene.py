"""Draws a .vtu file by VTK, in a process of its own: VTK ends the process where it finds no display.

    python3 -m zurt.report.vtk_scene STEP.vtu FIBRES.vtp|- PICTURE.png SECTIONS.png LOW_X HIGH_X LOW_Y HIGH_Y LOW_Z HIGH_Z LOW HIGH

The box says which part is drawn, LOW and HIGH the range of colours. SECTIONS.png is written for models that extend in three directions.
"""
import os
import sys

import vtk

from .vtk_drawing import (add_actor, clipped, colour_table, edges_of, fibre_shapes, filtered, new_scene, read, save, scale_bar, without,
                          without_fibres)

SIZE = (760, 430)
THIN = 0.1  # of the largest extent: below it a direction counts as none


def fibres_in_mesh(fibres, bounds):
    """Shapes of the fibres, cut at the mesh."""
    flat = bounds[5] - bounds[4] < 1e-9
    margin = 1e-3 * max(bounds[1] - bounds[0], bounds[3] - bounds[2])
    box = [limit + (1 if k % 2 else -1) * (1e3 * margin if flat and k > 3 else margin) for k, limit in enumerate(bounds)]
    return [clipped(vtk.vtkClipPolyData(), shape, box) for shape in fibre_shapes(fibres, 32)]


def add_mesh(scene, grid, table, tube_radius):
    surface = filtered(vtk.vtkDataSetSurfaceFilter(), grid, NonlinearSubdivisionLevel=2)
    if surface.GetNumberOfLines() > 0:
        add_actor(scene, filtered(vtk.vtkTubeFilter(), without(surface, "Polys"), Radius=tube_radius, NumberOfSides=12, Capping=True), table)
        surface = without(surface, "Lines")
    add_actor(scene, surface, table)
    if grid.GetNumberOfCells() < 4000:
        add_actor(scene, edges_of(grid), colour=(0.2, 0.2, 0.2), opacity=0.35)


def extents(bounds):
    return [bounds[2 * axis + 1] - bounds[2 * axis] for axis in range(3)]


def place_camera(scene, bounds, direction=None):
    """Looks at the bounds from a direction, so that all of them is seen in the scene's part of the window."""
    size = extents(bounds)
    thin = [axis for axis in range(3) if size[axis] <= THIN * max(size)]
    thin = thin if len(thin) == 1 else [axis for axis in thin if size[axis] == 0.0]
    if direction is None:
        direction = (0, 0, 1) if 2 in thin else (0, -1, 0) if 1 in thin else (1, 0, 0) if 0 in thin else (0.55, -1, 0.6)
    camera = scene.GetActiveCamera()
    centre = [(bounds[2 * axis] + bounds[2 * axis + 1]) / 2 for axis in range(3)]
    camera.SetFocalPoint(centre)
    camera.SetPosition([c + 2 * max(size) * d for c, d in zip(centre, direction)])
    camera.SetViewUp((0, 1, 0) if abs(direction[2]) == 1 else (0, 0, 1))
    camera.ParallelProjectionOn()
    matrix, corners = camera.GetViewTransformMatrix(), [[bounds[k], bounds[2 + m], bounds[4 + n], 1.0] for k in (0, 1) for m in (0, 1)
                                                       for n in (0, 1)]
    seen = [matrix.MultiplyPoint(corner) for corner in corners]
    across, up = (max(abs(point[axis]) for point in seen) for axis in (0, 1))
    left, bottom, right, top = scene.GetViewport()
    aspect = (right - left) * SIZE[0] / ((top - bottom) * SIZE[1])
    camera.SetParallelScale(1.08 * max(up, across / aspect, 1e-30))
    scene.ResetCameraClippingRange()


def add_scale(scene, table):
    largest = max(map(abs, table.GetRange()))
    plain = 1e-3 <= largest < 1e4  # numbers with exponents are longer
    scale = scale_bar(table, "c", (20, 18 if plain else 13), 0.1)
    scale.SetPosition(0.05, 0.08)
    scale.SetWidth(0.9)
    scale.SetHeight(0.84)
    scene.AddActor2D(scale)


def draw_surface(grid, fibres, table, file):
    bounds = grid.GetBounds()
    size = extents(bounds)
    solid = min(size) > THIN * max(size)
    scene, legend = new_scene((0, 0, 0.84, 1)), new_scene((0.84, 0, 1, 1))
    shown, shapes = grid, fibres_in_mesh(fibres, bounds) if fibres is not None else []
    if shapes and solid:  # the half below, so that fibres are seen
        middle = bounds[:5] + ((bounds[4] + bounds[5]) / 2 + 1e-9 * size[2],)
        half = filtered(vtk.vtkExtractGeometry(), grid, ImplicitFunction=box_of(middle), ExtractInside=True)
        shown = half if half.GetNumberOfCells() > 0.3 * grid.GetNumberOfCells() else grid
    add_mesh(scene, without_fibres(shown), table, 0.02 * max(size))
    for shape in shapes:
        add_actor(scene, shape, colour=(0.72, 0.72, 0.72))
    place_camera(scene, bounds)
    add_scale(legend, table)
    save([scene, legend], SIZE, file)


def box_of(bounds):
    box = vtk.vtkBox()
    margin = 1e-9 + 1e-6 * max(extents(bounds))
    box.SetBounds([limit + (margin if k % 2 else -margin) for k, limit in enumerate(bounds)])
    return box


def draw_sections(grid, table, file):
    """Three planes through the middle, side by side."""
    bounds = grid.GetBounds()
    scenes = []
    for axis in range(3):
        plane = vtk.vtkPlane()
        plane.SetOrigin([(bounds[2 * k] + bounds[2 * k + 1]) / 2 + 1e-7 * (bounds[2 * k + 1] - bounds[2 * k]) for k in range(3)])
        normal = [1.0 if k == axis else 0.0 for k in range(3)]
        plane.SetNormal(normal)
        cut = filtered(vtk.vtkCutter(), without_fibres(grid), CutFunction=plane)
        scene = new_scene((0.28 * axis, 0, 0.28 * (axis + 1), 1))
        cut.GetPointData().SetActiveScalars("concentration")
        add_actor(scene, cut, table)
        place_camera(scene, cut.GetBounds() if cut.GetNumberOfPoints() else bounds, ((1, 0, 0), (0, -1, 0), (0, 0, 1))[axis])
        scene.GetActiveCamera().Zoom(0.9)
        label = vtk.vtkTextActor()
        label.SetInput(f"{'xyz'[axis]} = {plane.GetOrigin()[axis]:.4g}")
        label.SetPosition(16, 6)
        label.GetTextProperty().SetColor(0.1, 0.1, 0.1)
        label.GetTextProperty().SetFontSize(18)
        scene.AddActor(label)
        scenes.append(scene)
    legend = new_scene((0.84, 0, 1, 1))
    add_scale(legend, table)
    save([*scenes, legend], SIZE, file)


def main(arguments):
    step, fibres, picture, sections, *numbers = arguments
    box, (low, high) = [float(each) for each in numbers[:6]], (float(each) for each in numbers[6:])
    grid = read(step)
    grid.GetPointData().SetActiveScalars("concentration")
    bounds = grid.GetBounds()
    if any(box[2 * k] > bounds[2 * k] or box[2 * k + 1] < bounds[2 * k + 1] for k in range(3)):
        grid = filtered(vtk.vtkExtractGeometry(), grid, ImplicitFunction=box_of(box), ExtractInside=True)
        grid.GetPointData().SetActiveScalars("concentration")
    vtk.vtkMapper.SetResolveCoincidentTopologyToPolygonOffset()
    table = colour_table(low, high)
    marks = grid.GetCellData().GetArray("fibre_mark")
    taking_part = fibres != "-" and (marks is None or marks.GetRange()[0] < 2)  # not in an equivalent medium
    draw_surface(grid, read(fibres) if taking_part else None, table, picture)
    size = extents(grid.GetBounds())
    if min(size) > 0.2 * max(size) and grid.GetNumberOfCells() >= 64:
        draw_sections(grid, table, sections)


if __name__ == "__main__":
    main(sys.argv[1:])
    sys.stdout.flush()
    os._exit(0)  # without VTK's own end, which may fail once the display is gone
