"""Elements in the order of the manual's figures, from corners and middles in VTK's."""
import numpy

from .families import FAMILIES

# Columns of VTK's corners and edges: a brick's corners 1 to 4 go round its upper face.
BRICK_CORNERS = (4, 5, 6, 7, 0, 1, 2, 3)
BRICK_EDGES = (4, 5, 6, 7, 0, 1, 2, 3, 8, 9, 10, 11)


def own_order(corners, middles, centre=None):
    """(m, nodes) rows of points of lines, quadrilaterals or bricks by the number of corners; middles (m, edges) and centre (m,) or None
    are left out where no element has them."""
    if corners.shape[1] == 8:
        corners, middles = corners[:, BRICK_CORNERS], middles[:, BRICK_EDGES]
    columns = [corners]
    with_centre = centre is not None and bool((centre >= 0).any())
    if with_centre or (middles >= 0).any():
        columns.append(middles)
    if with_centre:
        columns.append(centre[:, None])
    return numpy.ascontiguousarray(numpy.concatenate(columns, axis=1))


def elements_of_cells(cells):
    """(m, nodes) of lines, quadrilaterals and bricks as the file has them. A brick's nodes on faces have no place in our elements."""
    centre = {1: None, 2: cells.faces[:, 0] if cells.dimension == 2 else None, 3: cells.centre}[cells.dimension]
    return own_order(cells.corners, cells.edges, centre)


def widen(elements, width):
    """The same elements with columns of -1 behind them."""
    return numpy.pad(elements, ((0, 0), (0, width - elements.shape[1])), constant_values=-1)


def family_of_dimension(dimension):
    """The family of the deck's elements of that dimension: lines, quadrilaterals, bricks."""
    return FAMILIES[("line", "quad", "hexahedron")[dimension - 1]]
