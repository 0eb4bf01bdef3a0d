"""Triangles, tetrahedra, wedges and pyramids cut into quadrilaterals and bricks, with all elements that share an edge with them.

New points are those of edges, faces and elements, so elements that meet have the same ones. Their places are those of the source's shape
functions: on curved elements they lie on the curve.
"""
import numpy
from scipy.sparse import coo_matrix
from scipy.sparse.csgraph import connected_components

from .entities import number_edges, number_faces, number_pairs
from .families import FAMILIES
from .interpolation import shape_values
from .source import has_edges, take_cells
from .split_tables import TIP_NODES, split_table

SPLIT_FAMILIES = ("triangle", "tetra", "pyramid", "wedge")
CHUNK = 100000  # elements whose points are evaluated at once


def rows_to_split(parts):
    """For each Cells (m,) whether its elements have to be split: those that hang together over edges with one of SPLIT_FAMILIES."""
    flagged = [cells.family in SPLIT_FAMILIES for cells in parts]
    if all(flagged) or not any(flagged):
        return [numpy.full(len(cells), flag) for cells, flag in zip(parts, flagged)]
    edges, ends = number_edges(parts)
    count = sum(len(cells) for cells in parts)
    cell = numpy.concatenate([numpy.repeat(numpy.arange(len(own)), own.shape[1]) + start
                              for own, start in zip(edges, numpy.cumsum([0] + [len(cells) for cells in parts[:-1]]))])
    edge = numpy.concatenate([own.ravel() for own in edges])
    graph = coo_matrix((numpy.ones(len(cell), numpy.int8), (cell, count + edge)), (count + len(ends),) * 2)
    label = connected_components(graph, directed=False)[1][:count]
    marked = numpy.zeros(label.max() + 1, bool)
    marked[label[numpy.repeat(flagged, [len(cells) for cells in parts])]] = True
    return numpy.split(marked[label], numpy.cumsum([len(cells) for cells in parts])[:-1])


class _Points:
    """Rows that new points take, one behind the other."""

    def __init__(self, count):
        self.count = count

    def take(self, shape):
        size = int(numpy.prod(shape))
        rows = numpy.arange(self.count, self.count + size).reshape(shape)
        self.count += size
        return rows


def _shared_point(part_numbers, part_nodes, count, points):
    """(count,) row of the point of each edge or face: the source's node where an element has one, else a new one."""
    row = numpy.full(count, -1, numpy.int64)
    for numbers, nodes in zip(part_numbers, part_nodes):
        there = nodes >= 0
        row[numbers[there]] = nodes[there]
    missing = numpy.flatnonzero(row < 0)
    row[missing] = points.take(len(missing))
    return row


def _centres(cells, points):
    """(m,) rows of the middles of solids: the source's nodes, else new ones; None for lines and surfaces."""
    if cells.dimension < 3:
        return None
    rows = cells.centre.copy()
    missing = numpy.flatnonzero(rows < 0)
    rows[missing] = points.take(len(missing))
    return rows


def _shared_points(parts, points_count, quadratic):
    """Rows of the points of all edges, faces, solids and of what lies between them, as a dictionary for _columns; and the count of all."""
    points = _Points(points_count)
    edges, ends = number_edges(parts)
    faces, corners = number_faces(parts, points_count)
    shared = {"edges": edges, "ends": ends, "faces": faces, "corners": corners,
              "edge": _shared_point(edges, [cells.edges for cells in parts], len(ends), points),
              "face": _shared_point(faces, [cells.faces for cells in parts], len(corners), points)}
    shared["centre"] = [_centres(cells, points) for cells in parts]
    shared["upper"] = [points.take((len(cells), TIP_NODES)) if cells.family == "pyramid" else None for cells in parts]
    if quadratic:
        shared["centres"] = [points.take(cells.corners.shape) if cells.dimension == 2 else None for cells in parts]
        shared["quarter"] = points.take((len(ends), 2))
        _take_points_in_faces(parts, shared, points)
        shared["inner"] = [points.take((len(cells), len(FAMILIES[cells.family].faces))) if cells.dimension == 3 else None for cells in parts]
    return shared, points.count


def _take_points_in_faces(parts, shared, points):
    """For each part {(edge, face): (m,) rows} of the points between the middles of an edge and a face."""
    pairs, left, right = [], [], []
    for place, cells in enumerate(parts):
        family = FAMILIES[cells.family]
        for face, corners in enumerate(family.faces):
            for edge, ends in enumerate(family.edges):
                if set(ends) <= set(corners):
                    pairs.append((place, edge, face, len(cells)))
                    left.append(shared["faces"][place][:, face])
                    right.append(shared["edges"][place][:, edge])
    shared["in_face"] = [{} for _ in parts]
    if not pairs:
        return
    number, count = number_pairs(numpy.concatenate(left), numpy.concatenate(right), len(shared["ends"]))
    rows = points.take(count)[number]
    starts = numpy.cumsum([0] + [pair[3] for pair in pairs])
    for (place, edge, face, length), start in zip(pairs, starts):
        shared["in_face"][place][edge, face] = rows[start:start + length]


def _columns(place, cells, table, shared):
    """(m, points of the table) rows of points."""
    columns = numpy.empty((len(cells), len(table.points)), numpy.int64)
    edges, faces = shared["edges"][place], shared["faces"][place]
    for column, point in enumerate(table.points):
        kind = point[0]
        if kind == "v":
            columns[:, column] = cells.corners[:, point[1]]
        elif kind == "e":
            columns[:, column] = shared["edge"][edges[:, point[1]]]
        elif kind == "f":
            columns[:, column] = shared["face"][faces[:, point[1]]]
        elif kind == "c":
            columns[:, column] = shared["centre"][place]
        elif kind == "vc":
            columns[:, column] = shared["centres"][place][:, point[1]]
        elif kind == "m":
            columns[:, column] = shared["upper"][place][:, point[1]]
        elif kind == "ve":
            edge = edges[:, point[2]]
            upper = (shared["ends"][edge, 0] != cells.corners[:, point[1]]).astype(int)
            columns[:, column] = shared["quarter"][edge, upper]
        elif kind == "ef":
            columns[:, column] = shared["in_face"][place][point[1:]]
        else:
            columns[:, column] = shared["inner"][place][:, point[1]]
    return columns


def nodes_and_kind(cells):
    """(m, k) rows of the nodes that the elements have, and their kind as interpolation.shape_values takes it."""
    parts, edges, faces = [cells.corners], has_edges(cells), ()
    if edges:
        parts.append(cells.edges)
        faces = tuple(face for face in range(cells.faces.shape[1]) if (cells.faces[:, face] >= 0).all())
        parts.append(cells.faces[:, list(faces)])
    centre = edges and cells.dimension == 3 and bool((cells.centre >= 0).all())
    if centre:
        parts.append(cells.centre[:, None])
    return numpy.concatenate(parts, axis=1), (edges, faces, centre)


def _place_points(places, old_count, cells, table, columns):
    """Sets the coordinates of the new points of these elements."""
    nodes, kind = nodes_and_kind(cells)
    weights = shape_values(cells.family, kind, table.places)
    for start in range(0, len(cells), CHUNK):
        rows = columns[start:start + CHUNK]
        found = numpy.einsum("pk,mki->mpi", weights, places[nodes[start:start + CHUNK]], optimize=True)
        new = rows >= old_count
        places[rows[new]] = found[new]


def split_parts(points, parts, quadratic, centres, node_sets):
    """Splits all elements of the list of Cells.

    points: (n, 3). quadratic: pieces have mid-side nodes; centres: those of surfaces a centre node then, too. Returns the points with the
    new ones behind them, and for each entry (corners, middles, centres, source, columns): (q, 2, 4 or 8) rows of the corners of the pieces,
    (q, 1, 4 or 12) of their edges in VTK's order and (q,) of their centres, -1 where there is none, (q,) rows of the elements they come
    from, and (m, k) all points of each element. node_sets: rows of points by name, extended in place by the new points of the
    solids, sides of the body and edges of those whose corners they have.
    """
    count = len(points)
    shared, total = _shared_points(parts, count, quadratic)
    places = numpy.concatenate([points, numpy.zeros((total - count, 3))])
    found, every = [], []
    # Solids last: on a side that a face of a group shares with a solid both give the same places but for rounding.
    for place, cells in sorted(enumerate(parts), key=lambda item: item[1].dimension):
        table = split_table(cells.family, quadratic, centres)
        columns = _columns(place, cells, table, shared)
        _place_points(places, count, cells, table, columns)
        corners = columns[:, table.pieces]
        middles = numpy.where(table.middles >= 0, columns[:, table.middles], -1)
        middle = numpy.where(table.centres >= 0, columns[:, table.centres], -1).ravel()
        found.append((place, (corners.reshape(-1, corners.shape[2]), middles.reshape(-1, middles.shape[2]), middle,
                              numpy.repeat(numpy.arange(len(cells)), len(table.pieces)), columns)))
        every.append((place, table, columns))
    _extend_node_sets(parts, shared, every, node_sets, total)
    return places, [entry for _, entry in sorted(found, key=lambda item: item[0])]


def _extend_node_sets(parts, shared, every, node_sets, total):
    """Adds the new points between those of a set that are all corners of a solid, or of a side of the body."""
    if not node_sets:
        return
    highest = max(cells.dimension for cells in parts)
    sides = shared["faces"] if highest == 3 else shared["edges"]
    times = numpy.zeros(len(shared["corners"] if highest == 3 else shared["ends"]), numpy.int64)
    for place, cells in enumerate(parts):
        if cells.dimension == highest and highest > 1:
            times += numpy.bincount(sides[place].ravel(), minlength=len(times))
    for name, rows in node_sets.items():
        inside = numpy.zeros(total, bool)
        inside[rows] = True
        found = [rows]
        for place, table, columns in every:
            cells = parts[place]
            if cells.dimension == highest:
                found += _points_between(cells, table, columns, inside, times[sides[place]] == 1 if highest > 1 else None)
        node_sets[name] = numpy.unique(numpy.concatenate(found))


def _points_between(cells, table, columns, inside, outer):
    """Points of whole elements, and of their outer sides, whose corners are all inside."""
    family = FAMILIES[cells.family]
    among = inside[cells.corners]
    found = [columns[among.all(axis=1)].ravel()]
    for side, corners in enumerate((family.faces if family.dimension == 3 else family.edges) if outer is not None else ()):
        rows = among[:, list(corners)].all(axis=1) & outer[:, side]
        own = [column for column, point in enumerate(table.points) if _on_side(family, point, side, set(corners))]
        found.append(columns[rows][:, own].ravel())
    return found


def _on_side(family, point, side, corners):
    kind = point[0]
    if kind in ("c", "m", "fc", "vc"):
        return False
    if kind == "v":
        return point[1] in corners
    if kind in ("e", "ve"):
        return set(family.edges[point[-1]]) <= corners
    return family.dimension == 3 and point[-1] == side


def subsets(parts, masks):
    """The parts' elements where the masks hold, and their rows."""
    rows = [numpy.flatnonzero(mask) for mask in masks]
    return [take_cells(cells, own) for cells, own in zip(parts, rows)], rows
