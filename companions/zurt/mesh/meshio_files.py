"""Meshes of all formats that meshio reads and this package has no reader of its own for: VTU, VTK, MED, XDMF, Nastran, Medit, CGNS ..."""
import contextlib
import difflib
import io
import re

import numpy

from ..errors import ZurtError
from .families import FAMILIES
from .middles import cells_of_nodes
from .source import BEHIND_NUMBER, SourceMesh, cell_starts

# Cell data that are numbers of materials or groups, in the order in which they are looked for.
LABELS = ("gmsh:physical", "medit:ref", "nastran:ref", "cell_tags", "material", "materials", "material_id", "MaterialIds", "MaterialID",
          "mat_id", "group", "physical", "region", "subdomain", "domain", "marker", "CellEntityIds")
COUNT_BEHIND = re.compile(r"([a-z]+)\d*$")


def import_meshio():
    """meshio, whose table of dimensions lacks some shapes in Debian's version and then ends at them."""
    import meshio
    from meshio import _mesh
    for shape in ("wedge15", "wedge18", "pyramid13", "pyramid14", "hexahedron20", "hexahedron27"):
        getattr(_mesh, "topological_dimension", {}).setdefault(shape, 3)
    return meshio


def read_by_meshio(path, labels=None):
    """The mesh of any format of meshio as a SourceMesh. labels: name of the cell data that tell groups; without it the known names."""
    meshio = import_meshio()
    said = io.StringIO()
    try:
        with contextlib.redirect_stdout(said), contextlib.redirect_stderr(said):
            mesh = meshio.read(path)
    except (Exception, SystemExit) as error:  # readers of meshio end in many ways
        reason = str(error) if not isinstance(error, SystemExit) else ""
        words = " ".join(part for part in (reason, " ".join(said.getvalue().split())) if part)
        raise ZurtError(f"meshio can't read this mesh: {words or type(error).__name__}", path)
    points = numpy.zeros((len(mesh.points), 3))
    points[:, :mesh.points.shape[1]] = mesh.points[:, :3]
    source = SourceMesh(path, points)
    kept = _take_cells(source, mesh)
    starts = cell_starts(source.cells)
    _take_labels(source, mesh, kept, starts, labels)
    _take_sets(source, mesh, kept, starts)
    return source


def _take_cells(source, mesh):
    """Fills source.cells; for each block of meshio its place there, or None for single points."""
    kept, count = [], 0
    for block in mesh.cells:
        family = COUNT_BEHIND.match(block.type).group(1) if COUNT_BEHIND.match(block.type) else block.type
        if block.type == "vertex":
            kept.append(None)
        elif family in FAMILIES:
            numbers = numpy.arange(count + 1, count + len(block.data) + 1)
            nodes = numpy.asarray(block.data).astype(numpy.int64)
            kept.append(len(source.cells))
            source.cells.append(cells_of_nodes(family, source.points, nodes, numbers, source.file))
        else:
            raise ZurtError(f'there are cells of the type "{block.type}"; lines, triangles, quadrilaterals, tetrahedra, '
                            "pyramids, wedges and bricks of first and second order are read", source.file)
        count += len(block.data)
    return kept


def _label_array(source, mesh, labels):
    """Name of the cell data whose numbers tell the groups; None without any."""
    if labels is not None:
        if labels in mesh.cell_data:
            return labels
        near = difflib.get_close_matches(labels, mesh.cell_data, 1) or sorted(mesh.cell_data)
        raise ZurtError(f'there are no cell data "{labels}"' + (f': is "{near[0]}" meant?' if near else ": there are none at all"),
                        source.file)
    found = [name for name in LABELS if name in mesh.cell_data]
    return found[0] if found else None


def _highest_dimensions(source, kept, data):
    """{number of a group: highest dimension of its elements}"""
    highest = {}
    for place, numbers in zip(kept, data):
        dimension = source.cells[place].dimension if place is not None else 0
        for number in numpy.unique(numbers):
            highest[int(number)] = max(dimension, highest.get(int(number), 0))
    return highest


def _take_labels(source, mesh, kept, starts, labels):
    name = _label_array(source, mesh, labels)
    if name is None:
        return
    names_of_number = {}
    for group, value in mesh.field_data.items():
        value = numpy.ravel(value)
        if len(value) == 2 and numpy.issubdtype(value.dtype, numpy.number):
            names_of_number.setdefault((int(value[0]), int(value[1])), []).append(group)
    families = getattr(mesh, "cell_tags", {})
    if any(numpy.size(own) != len(block.data) or (own != numpy.round(own)).any() for own, block in zip(mesh.cell_data[name], mesh.cells)):
        raise ZurtError(f'the cell data "{name}" are no numbers of groups: one whole number an element is expected', source.file)
    highest = _highest_dimensions(source, kept, mesh.cell_data[name])
    for block, (place, numbers) in enumerate(zip(kept, mesh.cell_data[name])):
        numbers = numpy.ravel(numbers)
        dimension = source.cells[place].dimension if place is not None else 0
        for number in numpy.unique(numbers):
            groups = families.get(int(number)) or names_of_number.get((int(number), dimension))
            if number == 0 and not groups:
                continue  # the usual mark of no group
            bare = f"group-{int(number)}" + (BEHIND_NUMBER[dimension] if dimension < highest[int(number)] else "")
            for group in groups or [bare]:
                rows = numpy.flatnonzero(numbers == number)
                if place is None:
                    _add(source.node_sets, group, mesh.cells[block].data[rows].ravel())
                else:
                    _add(source.groups, group, starts[place] + rows)


def _take_sets(source, mesh, kept, starts):
    for name, rows_of_blocks in mesh.cell_sets.items():
        if name.startswith("gmsh:"):
            continue
        for place, rows in zip(kept, rows_of_blocks):
            if place is not None and rows is not None and len(rows):
                _add(source.groups, name, starts[place] + numpy.asarray(rows, dtype=numpy.int64))
    for name, rows in mesh.point_sets.items():
        _add(source.node_sets, name, numpy.asarray(rows, dtype=numpy.int64))
    tags = mesh.point_data.get("point_tags")
    for number, names in getattr(mesh, "point_tags", {}).items():
        for name in names:
            _add(source.node_sets, name, numpy.flatnonzero(numpy.ravel(tags) == number))


def _add(sets, name, rows):
    sets[name] = numpy.union1d(sets.get(name, numpy.empty(0, numpy.int64)), rows).astype(numpy.int64)
