"""Small meshes for job files: a bar of bricks, and a plate with a wire."""
from .deck_mesh import GMSH_ORDER, write_gmsh

CORNERS = [(1, 1, 1), (0, 1, 1), (0, 0, 1), (1, 0, 1), (1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]


def write_bar(path):
    """Six bricks along x, 4 nodes to a section; groups a and b of three each, and the face "end" at x = 0."""
    points = [(float(i), *corner) for i in range(7) for corner in ((0.0, 0.0), (1.0, 0.0), (0.0, 1.0), (1.0, 1.0))]
    elements = []
    for i in range(6):
        nodes = [4 * (i + x) + y + 2 * z + 1 for x, y, z in CORNERS]
        elements.append(("a" if i < 3 else "b", 3, 5, [nodes[k] for k in GMSH_ORDER[5]]))
    elements.append(("end", 2, 3, [1, 2, 4, 3]))
    write_gmsh(path, points, elements)


def write_plate(path):
    """Three by two quadrilaterals of 9 nodes, a wire of two lines of 3 nodes from its corner, edges "top" (3 nodes) and "edge" (x = 3)."""
    points = [(0.5 * i, 1.0 + 0.5 * j, 0.0) for j in range(5) for i in range(7)] + [(3.0, 3.0 + 0.5 * k, 0.0) for k in range(1, 5)]

    def node(i, j):
        return 7 * j + i + 1

    elements = []
    for j in (0, 2):
        for i in (0, 2, 4):
            shape = [(0, 0), (2, 0), (2, 2), (0, 2), (1, 0), (2, 1), (1, 2), (0, 1), (1, 1)]
            elements.append(("plate", 2, 10, [node(i + a, j + b) for a, b in shape]))
    elements += [("wire", 1, 8, [35, 37, 36]), ("wire", 1, 8, [37, 39, 38])]
    elements += [("top", 1, 8, [node(i, 4), node(i + 2, 4), node(i + 1, 4)]) for i in (0, 2, 4)]
    elements += [("edge", 1, 8, [node(6, j), node(6, j + 2), node(6, j + 1)]) for j in (0, 2)]
    write_gmsh(path, points, elements)
