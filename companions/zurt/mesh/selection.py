"""Which groups of a mesh become blocks of elements, and which are places for boundary values."""
import difflib
from dataclasses import dataclass

import numpy

from ..errors import ZurtError
from .source import Cells, cell_starts, take_cells


@dataclass
class Piece:
    """Elements of one group and one entry of the source's cells. role: "block", "faces" (sides of blocks) or "nodes" (nodes alone).
    source: (m,) places of the elements in the source, counted from zero through all of it.
    """
    name: str
    role: str
    cells: Cells
    source: numpy.ndarray


def choose_pieces(mesh, wanted):
    """The pieces of a SourceMesh, and the sets that lie in blocks: names to places of elements in the source, counted through all of it.

    wanted: names of the groups that make blocks, with those elements of theirs that have the highest dimension; None for all of the highest
    dimension. Groups that make no blocks are faces if their dimension is one below that of the blocks, places of nodes if it is less. Elements
    in no group make a block "all", or "rest" beside others. Notes go to mesh.notes.
    """
    dimension_of = numpy.concatenate([numpy.full(len(cells), cells.dimension) for cells in mesh.cells] or [numpy.empty(0, int)])
    if not len(dimension_of):
        raise ZurtError("there are no elements in this mesh: lines, surfaces or solids are wanted", mesh.file)
    groups = mesh.groups
    if wanted is None:
        highest = dimension_of.max()
        blocks = {name: rows[dimension_of[rows] == highest] for name, rows in groups.items()}
        blocks = _without_unions({name: rows for name, rows in blocks.items() if len(rows)}, len(dimension_of), mesh)
        _add_rest(blocks, mesh, dimension_of)
    else:
        blocks = {name: _wanted_rows(name, mesh, dimension_of) for name in dict.fromkeys(wanted)}
    _refuse_overlaps(blocks, len(dimension_of), mesh)
    if not blocks:
        raise ZurtError("no group is named that makes elements", mesh.file)
    highest = max(dimension_of[rows].max() for rows in blocks.values())
    pieces = [piece for name, rows in blocks.items() for piece in _pieces(mesh, name, "block", rows)]
    within = {}
    for name, rows in groups.items():
        left = rows if name not in blocks else numpy.setdiff1d(rows, blocks[name])
        own = dimension_of[left]
        pieces += _pieces(mesh, name, "faces", left[own == highest - 1]) + _pieces(mesh, name, "nodes", left[own < highest - 1])
        if (own >= highest).any():
            within[name] = left[own >= highest]
    return pieces, within


def _ungrouped(mesh, dimension_of):
    """(name, places) of the elements of the highest dimension in no group: "all", or "rest" beside others."""
    highest = dimension_of == dimension_of.max()
    free = highest.copy()
    for rows in mesh.groups.values():
        free[rows] = False
    name = "all" if free.sum() == highest.sum() else "rest"
    while name in mesh.groups:
        name += "-elements"
    return name, numpy.flatnonzero(free)


def _wanted_rows(name, mesh, dimension_of):
    """Places of the elements of a group, those of its highest dimension; or of those in no group, by their name."""
    other, free = _ungrouped(mesh, dimension_of)
    if name == other and len(free):
        return free
    if name in ("all", "rest") and name not in mesh.groups and len(free):
        raise ZurtError(f'the elements in no group are "{other}" in this mesh, not "{name}"', mesh.file)
    rows = mesh.groups[_known(name, mesh)]
    return rows[dimension_of[rows] == dimension_of[rows].max()]


def _known(name, mesh):
    if name in mesh.groups and len(mesh.groups[name]):
        return name
    if name in mesh.node_sets:
        raise ZurtError(f'"{name}" is a set of nodes in this mesh; a group of elements is wanted', mesh.file)
    if name in mesh.groups:
        raise ZurtError(f'the group "{name}" has no elements in this mesh', mesh.file)
    near = difflib.get_close_matches(name, mesh.groups, 1)
    known = ", ".join(f'"{group}"' for group in sorted(mesh.groups)[:12]) or "none"
    raise ZurtError(f'there is no group "{name}" in this mesh' + (f': is "{near[0]}" meant?' if near else f"; its groups: {known}"),
                    mesh.file)


def _without_unions(blocks, count, mesh):
    """Blocks without those groups whose elements all lie in smaller ones, as a set of all elements beside sets of materials."""
    times = numpy.zeros(count, numpy.int32)
    for rows in blocks.values():
        times[rows] += 1
    for name in sorted(blocks, key=lambda name: -len(blocks[name])):
        rows = blocks[name]
        if (times[rows] > 1).all():
            times[rows] -= 1
            blocks = {other: kept for other, kept in blocks.items() if other != name}
            mesh.notes.append(f'the elements of the group "{name}" make the blocks of other groups; it is a set of nodes')
    return blocks


def _add_rest(blocks, mesh, dimension_of):
    name, rest = _ungrouped(mesh, dimension_of)
    if len(rest):
        if blocks:
            mesh.notes.append(f'elements in no group, which make the block "{name}": {len(rest)}')
        blocks[name] = rest


def _refuse_overlaps(blocks, count, mesh):
    owner = numpy.full(count, -1, numpy.int32)
    for place, (name, rows) in enumerate(blocks.items()):
        taken = owner[rows][owner[rows] >= 0]
        if len(taken):
            other = list(blocks)[taken[0]]
            raise ZurtError(f'the groups "{other}" and "{name}" share elements, {len(taken)} in all: each element can be in one block alone, '
                            "so name the groups that make the blocks", mesh.file)
        owner[rows] = place


def _pieces(mesh, name, role, rows):
    starts, found = cell_starts(mesh.cells), []
    for place, cells in enumerate(mesh.cells):
        own = rows[(rows >= starts[place]) & (rows < starts[place + 1])]
        if len(own):
            found.append(Piece(name, role, take_cells(cells, own - starts[place]), own))
    return found
