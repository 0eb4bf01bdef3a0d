"""Meshes of Exodus II: blocks of elements, node sets and side sets with their names."""
import numpy

from ..errors import ZurtError
from .middles import cells_of_nodes
from .sides import sides_of_cells
from .source import SourceMesh

FAMILY_OF_NAME = (("TETRA", "tetra"), ("TET", "tetra"), ("HEX", "hexahedron"), ("WEDGE", "wedge"), ("PYRA", "pyramid"), ("QUAD", "quad"),
                  ("SHELL", "quad"), ("TRI", "triangle"), ("BAR", "line"), ("BEAM", "line"), ("TRUSS", "line"), ("EDGE", "line"))

# Sides as Exodus counts them, as numbers of faces (of edges for surfaces) of families.py.
SIDES = {"hexahedron": (2, 1, 3, 0, 4, 5), "tetra": (1, 2, 3, 0), "wedge": (2, 3, 4, 0, 1), "pyramid": (1, 2, 3, 4, 0),
         "quad": (0, 1, 2, 3), "triangle": (0, 1, 2)}


def read_exodus(path):
    """The file's mesh as a SourceMesh: blocks and side sets are groups; those without a name are block-1, side-set-1 after their number."""
    try:
        import netCDF4
        with netCDF4.Dataset(path) as data:
            return _read_dataset(data, path)
    except ZurtError:
        raise
    except Exception as error:  # netCDF4 raises whatever HDF5 says
        raise ZurtError(f"this is no mesh of Exodus: {error}", path)


def _names(data, variable, numbers, word):
    """Names of blocks or sets, those that are blank by their number."""
    count = len(numbers)
    names = [""] * count
    if variable in data.variables:
        texts = data.variables[variable]
        texts.set_auto_mask(False)
        names = [b"".join(row).split(b"\0")[0].decode("utf-8", "replace").strip() for row in texts[:]]
    return [name or f"{word}-{number}" for name, number in zip(names, numbers)]


def _numbers(data, variable, dimension):
    if dimension not in data.dimensions:
        return []
    count = len(data.dimensions[dimension])
    return [int(number) for number in data.variables[variable][:]] if variable in data.variables else list(range(1, count + 1))


def _points(data):
    points = numpy.zeros((len(data.dimensions["num_nodes"]), 3))
    if "coord" in data.variables:
        coordinates = numpy.asarray(data.variables["coord"][:]).T
        points[:, :coordinates.shape[1]] = coordinates
    for axis, name in enumerate(("coordx", "coordy", "coordz")):
        if name in data.variables:
            points[:, axis] = data.variables[name][:]
    return points


def _read_dataset(data, path):
    mesh = SourceMesh(path, _points(data))
    starts, kinds, count = [], [], 0
    blocks = _numbers(data, "eb_prop1", "num_el_blk")
    for place, name in enumerate(_names(data, "eb_names", blocks, "block"), start=1):
        if f"connect{place}" not in data.variables:
            continue  # a block without elements
        connectivity = data.variables[f"connect{place}"]
        nodes = numpy.asarray(connectivity[:]).astype(numpy.int64) - 1
        kind = str(connectivity.elem_type).upper()
        family = next((family for start, family in FAMILY_OF_NAME if kind.startswith(start)), None)
        if family is None or (kind.startswith("SHELL") and nodes.shape[1] in (3, 6)):
            family = "triangle" if family else None
        if family is None:
            raise ZurtError(f'the elements of the block "{name}" are of the type {kind}, which is not read', path)
        numbers = numpy.arange(count + 1, count + len(nodes) + 1)
        mesh.cells.append(cells_of_nodes(family, mesh.points, nodes, numbers, path))
        mesh.groups[name] = numpy.arange(count, count + len(nodes))
        starts.append(count)
        kinds.append(kind)
        count += len(nodes)
    sets = _numbers(data, "ns_prop1", "num_node_sets")
    for place, name in enumerate(_names(data, "ns_names", sets, "node-set"), start=1):
        if f"node_ns{place}" in data.variables:
            mesh.node_sets[name] = numpy.unique(numpy.asarray(data.variables[f"node_ns{place}"][:]).astype(numpy.int64) - 1)
    _read_side_sets(data, mesh, numpy.array(starts + [count]), kinds)
    return mesh


def _read_side_sets(data, mesh, starts, kinds):
    sets = _numbers(data, "ss_prop1", "num_side_sets")
    solids = len(mesh.cells)
    # A shell's first two sides are its own two faces, its edges come behind them.
    ahead = [2 if "SHELL" in kind else 0 for kind in kinds]
    for place, name in enumerate(_names(data, "ss_names", sets, "side-set"), start=1):
        if f"elem_ss{place}" not in data.variables:
            continue
        elements = numpy.asarray(data.variables[f"elem_ss{place}"][:]).astype(numpy.int64) - 1
        sides = numpy.asarray(data.variables[f"side_ss{place}"][:]).astype(numpy.int64) - 1
        block_of = numpy.searchsorted(starts, elements, side="right") - 1
        found = []
        for block in range(solids):
            own = (block_of == block) & (sides >= ahead[block])
            if own.any() and mesh.cells[block].family in SIDES:
                found += sides_of_cells(mesh.cells[block], elements[own] - starts[block],
                                        numpy.array(SIDES[mesh.cells[block].family])[sides[own] - ahead[block]])
        count = sum(len(cells) for cells in mesh.cells)
        mesh.cells += found
        mesh.groups[name] = numpy.arange(count, count + sum(len(cells) for cells in found))
