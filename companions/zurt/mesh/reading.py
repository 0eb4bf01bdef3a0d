"""From a mesh file to the Mesh of a deck: reads, chooses groups, cleans, splits and checks."""
import os
from dataclasses import dataclass

import numpy

from ..errors import ZurtError
from .abaqus_files import read_abaqus
from .checks import check_elements, check_plane
from .cleaning import drop_repeated, merge_nodes, turn_pieces, used_points, without_centres, without_middles
from .collapsed import replace_collapsed
from .conformity import conformity_notes
from .elements import elements_of_cells, own_order, widen
from .exodus_files import read_exodus
from .gmsh_files import read_gmsh
from .meshio_files import read_by_meshio
from .model import ElementBlock, Mesh
from .selection import Piece, choose_pieces
from .source import all_nodes, take_cells
from .splitting import rows_to_split, split_parts, subsets


@dataclass
class MeshOptions:
    """How a mesh is read.

    groups: names of the groups that make blocks of elements; None for all of the highest dimension. merge: distance within which nodes
    become one, in the mesh's unit behind `scale`, or None. scale: factor on all coordinates. axes: which axes of the file become x, y, z.
    move: what is added to the coordinates then. split: "linear" or "quadratic", pieces of triangles, tetrahedra, wedges and pyramids
    without or with mid-side nodes. corners_only: mid-side nodes of the file are left out, all sides straight. centres: elements with
    mid-side nodes have a centre node as well, quadrilaterals (9 nodes instead of 8) where the file has it or a triangle is split, bricks of
    27 nodes (21 instead of 20); None: quadrilaterals alone. labels: name of the cell data whose
    numbers tell groups, for formats without names.
    """
    groups: list = None
    merge: float = None
    scale: float = 1.0
    axes: str = "xyz"
    move: tuple = (0.0, 0.0, 0.0)
    split: str = "linear"
    corners_only: bool = False
    centres: bool = None
    labels: str = None


def read_mesh(path, options=None):
    """The Mesh of a file in any of the formats of docs/meshes.md. Raises ZurtError with what is wrong and what would be right."""
    options = options or MeshOptions()
    _check_options(options)
    source = read_source(os.fspath(path), options.labels)
    _place(source, options)
    if options.merge is not None:
        merge_nodes(source, options.merge)
    drop_repeated(source)
    pieces, within = choose_pieces(source, options.groups)
    for piece in pieces:
        if options.corners_only:
            piece.cells = without_middles(piece.cells)
    pieces = replace_collapsed(pieces, source.notes, source.file)
    check_plane(source.points, pieces, source.file)
    turned = turn_pieces(source.points, pieces)
    if turned:
        source.notes.append(f"elements turned that were inside out: {turned}")
    source.notes += conformity_notes(source.points, [piece.cells for piece in pieces if piece.role == "block"], source.file)
    pieces = _attached(source, pieces)
    return _mesh_of_pieces(source, pieces, within, options)


def read_source(path, labels=None):
    """The SourceMesh of a file, by the reader that its name asks for."""
    if not os.path.isfile(path):
        raise ZurtError("there is no such file" if not os.path.isdir(path) else "this is a folder, not a mesh", path)
    name = path.lower()
    if labels is not None and name.endswith((".msh", ".unv", ".inp", ".inp.gz", ".e", ".exo", ".ex2", ".exii")):
        raise ZurtError("labels are cell data of formats without names; this one has names of groups", path)
    if name.endswith(".geo"):
        raise ZurtError(f"this is a geometry, not a mesh: make one of it (gmsh -3 {os.path.basename(path)})", path)
    if name.endswith((".msh", ".unv")):
        return read_gmsh(path)
    if name.endswith((".inp", ".inp.gz")):
        return read_abaqus(path)
    if name.endswith((".e", ".exo", ".ex2", ".exii")):
        return read_exodus(path)
    return read_by_meshio(path, labels)


def _check_options(options):
    if options.split not in ("linear", "quadratic"):
        raise ZurtError(f'split is "linear" or "quadratic", not "{options.split}"')
    if sorted(options.axes) != ["x", "y", "z"]:
        raise ZurtError(f'axes are the letters x, y and z in the order in which they are wanted, as "yzx", not "{options.axes}"')
    if not (numpy.isfinite(options.scale) and options.scale > 0):
        raise ZurtError(f"scale is a factor above 0, not {options.scale}")


def _place(source, options):
    if not numpy.isfinite(source.points).all():
        row = int(numpy.argwhere(~numpy.isfinite(source.points))[0, 0])
        raise ZurtError(f"node {row + 1} of the file has a coordinate that is no number", source.file)
    order = ["xyz".index(axis) for axis in options.axes]
    source.points = source.points[:, order] * options.scale + numpy.asarray(options.move, dtype=float)


def _attached(source, pieces):
    """The pieces without those elements of faces and nodes that have corners in no block."""
    used = used_points(len(source.points), [piece.cells for piece in pieces if piece.role == "block"])
    kept, lost = [], {}
    for piece in pieces:
        stands = used[piece.cells.corners].all(axis=1)
        if not stands.all():
            lost[piece.name] = lost.get(piece.name, 0) + int((~stands).sum())
            piece = Piece(piece.name, piece.role, take_cells(piece.cells, numpy.flatnonzero(stands)), piece.source[stands])
        if len(piece.cells):
            kept.append(piece)
    if lost:
        words = ", ".join(f"{count} of {name}" for name, count in lost.items())
        source.notes.append(f"sides and lines left out that belong to no element of the blocks: {words}")
    return kept


def _mesh_of_pieces(source, pieces, within, options):
    parts = [piece.cells for piece in pieces]
    masks = rows_to_split(parts)
    whole, rows_of_whole = subsets(parts, [~mask for mask in masks])
    cut, rows_of_cut = subsets(parts, masks)
    points, every = source.points, {name: rows.copy() for name, rows in source.node_sets.items()}
    centres = options.centres is not False and max(piece.cells.dimension for piece in pieces if piece.role == "block") == 2
    shares = []  # (piece, elements, source, all points of these elements)
    if any(len(cells) for cells in cut):
        chosen = [place for place, cells in enumerate(cut) if len(cells)]
        points, found = split_parts(points, [cut[place] for place in chosen], options.split == "quadratic", centres, every)
        for place, (corners, middles, middle, element, columns) in zip(chosen, found):
            shares.append((pieces[place], own_order(corners, middles, middle), pieces[place].source[rows_of_cut[place]][element], columns))
        _note_split([pieces[place] for place in chosen], [cut[place] for place in chosen], shares, source)
    for piece, cells, rows in zip(pieces, whole, rows_of_whole):
        if len(cells):
            kept = cells if (centres if cells.dimension == 2 else options.centres is True) else without_centres(cells)
            shares.append((piece, elements_of_cells(kept), piece.source[rows], all_nodes(kept)))
    mesh = Mesh(points, notes=source.notes)
    _fill_blocks(mesh, [share for share in shares if share[0].role == "block"])
    for name, rows in within.items():
        inside = [block.elements[numpy.isin(block.source, rows)].ravel() for block in mesh.blocks]
        every[name] = numpy.unique(numpy.concatenate([every.get(name, numpy.empty(0, numpy.int64))] + inside))
    _drop_orphans(mesh, shares, every, len(source.points))
    numbers = numpy.concatenate([cells.number for cells in source.cells])
    check_elements(mesh.points, mesh.blocks, numbers, source.file)
    return mesh


def _note_split(pieces, cut, shares, source):
    before, after = {}, 0
    for piece, cells, share in zip(pieces, cut, shares):
        if piece.role == "block":
            before[cells.family] = before.get(cells.family, 0) + len(cells)
            after += len(share[1])
    shapes = {"line": "lines", "triangle": "triangles", "quad": "quadrilaterals", "tetra": "tetrahedra", "pyramid": "pyramids",
              "wedge": "wedges", "hexahedron": "bricks"}
    if not after:
        return
    words = ", ".join(f"{shapes[family]} {count}" for family, count in before.items())
    source.notes.append(f"elements split: {words}, into {after} pieces")
    if before.get("pyramid"):
        source.notes.append(f"pieces at the tips of pyramids, bricks whose upper four corners lie in one point: {8 * before['pyramid']}")


def _fill_blocks(mesh, shares):
    """One block for each group and number of nodes."""
    gathered = {}
    for piece, elements, origin, _ in shares:
        key = (piece.name, piece.cells.dimension, elements.shape[1])
        gathered.setdefault(key, []).append((elements, origin))
    for (name, dimension, _), found in gathered.items():
        elements = numpy.concatenate([elements for elements, _ in found])
        origin = numpy.concatenate([origin for _, origin in found])
        order = numpy.argsort(origin, kind="stable")
        mesh.blocks.append(ElementBlock(name, dimension, elements[order], origin[order]))


def _drop_orphans(mesh, shares, node_sets, source_count):
    """Leaves out points of no element and everything that stands on them; numbers the others in their order."""
    count = len(mesh.points)
    used = numpy.zeros(count + 1, bool)
    for block in mesh.blocks:
        used[block.elements.ravel()] = True
    used = used[:-1]
    new_of_old = numpy.append(numpy.cumsum(used) - 1, -1)  # the last entry serves what is absent
    new_of_old[:-1][~used] = -1
    dropped = source_count - int(used[:source_count].sum())
    if dropped:
        mesh.notes.append(f"nodes left out that belong to no element of the blocks: {dropped}")
    mesh.points = mesh.points[used]
    for block in mesh.blocks:
        block.elements = new_of_old[block.elements]
    faces = {}
    for piece, elements, _, columns in shares:
        node_sets[piece.name] = numpy.union1d(node_sets.get(piece.name, numpy.empty(0, numpy.int64)), columns)
        if piece.role == "faces":
            faces.setdefault(piece.name, []).append(elements)
    for name, found in faces.items():
        width = max(elements.shape[1] for elements in found)
        elements = numpy.concatenate([widen(elements, width) for elements in found])
        stands = (used[elements] | (elements < 0)).all(axis=1)
        if not stands.all():
            mesh.notes.append(f"sides left out that are no sides of elements: {int((~stands).sum())} of {name}")
        if stands.any():
            mesh.faces[name] = new_of_old[elements[stands]]
    empty = []
    for name, rows in sorted(node_sets.items()):
        kept = new_of_old[rows[rows >= 0]]
        kept = kept[kept >= 0]
        if len(kept):
            mesh.node_sets[name] = kept.astype(numpy.int64)
        else:
            empty.append(name)
    if empty:
        mesh.notes.append(f"groups left out, as none of their nodes belongs to an element of the blocks: {', '.join(empty)}")
