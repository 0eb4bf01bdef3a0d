"""What is put right ahead of all else: double nodes merged, elements turned, quadratic elements made linear on wish."""
import numpy
from scipy.sparse import coo_matrix
from scipy.sparse.csgraph import connected_components
from scipy.spatial import cKDTree

from ..errors import ZurtError
from .families import FAMILIES, MIRRORED
from .source import Cells, all_nodes, map_nodes, take_cells


def merge_nodes(mesh, tolerance):
    """Points of the SourceMesh no further apart than `tolerance`, in the mesh's unit, become one, that of the lowest row."""
    if not tolerance > 0:
        raise ZurtError(f"nodes are merged within a distance above 0, not {tolerance}", mesh.file)
    pairs = cKDTree(mesh.points).query_pairs(tolerance, output_type="ndarray")
    count = len(mesh.points)
    if not len(pairs):
        mesh.notes.append(f"no two nodes lie within {tolerance:g} of each other; none was merged")
        return
    graph = coo_matrix((numpy.ones(len(pairs), numpy.int8), (pairs[:, 0], pairs[:, 1])), (count, count))
    classes, label = connected_components(graph, directed=False)
    first = numpy.full(classes, count, numpy.int64)
    numpy.minimum.at(first, label, numpy.arange(count))
    new_of_old = first[label]
    far = numpy.linalg.norm(mesh.points - mesh.points[new_of_old], axis=1).max()
    if far > 10 * tolerance:
        raise ZurtError(f"chains of nodes within {tolerance:g} of each other reach over {far:.3g}: take a smaller tolerance", mesh.file)
    mesh.cells = [map_nodes(cells, new_of_old) for cells in mesh.cells]
    mesh.node_sets = {name: numpy.unique(new_of_old[rows]) for name, rows in mesh.node_sets.items()}
    broken = sum(int(repeats(cells.corners).sum()) for cells in mesh.cells)
    if broken:
        raise ZurtError(f"merging nodes within {tolerance:g} takes edges from elements, {broken} in all: take a smaller tolerance", mesh.file)
    mesh.notes.append(f"double nodes merged within {tolerance:g}: {count - classes}")


def drop_repeated(mesh):
    """Elements of one shape with the same nodes become one, in place: files have them that write an element once for each of its groups."""
    marks = numpy.random.default_rng(1).integers(0, 2 ** 63, len(mesh.points), dtype=numpy.uint64)
    new_of_old, found, start, dropped = [], [], 0, 0
    for cells in mesh.cells:
        key = marks[cells.corners].sum(axis=1, dtype=numpy.uint64)
        _, first, number = numpy.unique(key, return_index=True, return_inverse=True)
        kept = numpy.sort(first)
        new_of_old.append(start + numpy.searchsorted(kept, first[number]))
        start, dropped = start + len(kept), dropped + len(key) - len(kept)
        found.append(take_cells(cells, kept) if len(kept) < len(key) else cells)
    if dropped:
        mesh.notes.append(f"elements with the nodes of another one, which are taken once: {dropped}")
        mesh.cells, place = found, numpy.concatenate(new_of_old)
        mesh.groups = {name: numpy.unique(place[rows]) for name, rows in mesh.groups.items()}


def repeats(rows):
    """(m,) whether a row has an entry twice."""
    ordered = numpy.sort(rows, axis=1)
    return (ordered[:, 1:] == ordered[:, :-1]).any(axis=1)


def without_middles(cells):
    """The same Cells with their corners alone: every side is straight."""
    return Cells(cells.family, cells.corners, numpy.full_like(cells.edges, -1), numpy.full_like(cells.faces, -1),
                 numpy.full_like(cells.centre, -1), cells.number)


def without_centres(cells):
    """Bricks and quadrilaterals without nodes on faces and at centres."""
    if cells.family not in ("quad", "hexahedron"):
        return cells
    return Cells(cells.family, cells.corners, cells.edges, numpy.full_like(cells.faces, -1), numpy.full_like(cells.centre, -1),
                 cells.number)


def mirror_cells(cells, rows):
    """Turns the elements of the rows inside out, in place."""
    family = FAMILIES[cells.family]
    corners = MIRRORED[cells.family]
    edge_of = {frozenset(pair): place for place, pair in enumerate(family.edges)}
    face_of = {frozenset(face): place for place, face in enumerate(family.faces)}
    edges = [edge_of[frozenset(corners[corner] for corner in pair)] for pair in family.edges]
    faces = [face_of[frozenset(corners[corner] for corner in face)] for face in family.faces]
    cells.corners = cells.corners.copy()
    cells.edges, cells.faces = cells.edges.copy(), cells.faces.copy()
    cells.corners[rows] = cells.corners[rows][:, list(corners)]
    cells.edges[rows] = cells.edges[rows][:, edges]
    if faces:
        cells.faces[rows] = cells.faces[rows][:, faces]


# Four corners of each solid that span a positive volume, and which of the others make it a mean over the element.
FRAMES = {"tetra": ((0, 1, 2, 3),), "pyramid": ((0, 1, 3, 4), (2, 3, 1, 4)), "wedge": ((0, 1, 2, 3), (3, 5, 4, 0)),
          "hexahedron": ((0, 1, 3, 4), (2, 3, 1, 6), (5, 4, 6, 1), (7, 6, 4, 3))}


def signed_sizes(points, cells):
    """(m,) numbers with the sign of the orientation: volumes of corners of solids, areas in x-y of surfaces; 1 for lines."""
    places = points[cells.corners]
    if cells.dimension == 1:
        return numpy.ones(len(cells))
    if cells.dimension == 2:
        following = numpy.roll(places, -1, axis=1)
        return 0.5 * (places[:, :, 0] * following[:, :, 1] - places[:, :, 1] * following[:, :, 0]).sum(axis=1)
    total = numpy.zeros(len(cells))
    for origin, first, second, third in FRAMES[cells.family]:
        start = places[:, origin]
        total += numpy.einsum("mi,mi->m", numpy.cross(places[:, first] - start, places[:, second] - start), places[:, third] - start)
    return total


def turn_pieces(points, pieces):
    """Turns the elements of blocks that are inside out, in place; their count."""
    turned = 0
    for piece in pieces:
        if piece.role == "block":
            rows = numpy.flatnonzero(signed_sizes(points, piece.cells) < 0)
            if len(rows):
                mirror_cells(piece.cells, rows)
                turned += len(rows)
    return turned


def used_points(count, cells_list):
    """(count,) whether a point belongs to an element."""
    used = numpy.zeros(count + 1, bool)
    for cells in cells_list:
        used[all_nodes(cells).ravel()] = True
    return used[:-1]
