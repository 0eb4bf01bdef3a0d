"""Meshes that Gmsh makes, and runs of the program on a Mesh: for the tests of zurt.mesh."""
import os
import re
import subprocess

import gmsh
import meshio
import numpy

from zurt.mesh.checks import _gauss_points
from zurt.mesh.elements import BRICK_CORNERS, BRICK_EDGES, family_of_dimension
from zurt.mesh.families import HEXAHEDRON
from zurt.mesh.interpolation import shape_slopes, shape_values
from zurt.mesh.numbering import advise_solver
from zurt.program import find_program


def make_gmsh_mesh(folder, build, size, orders=(1, 2), versions=((4.1, False),)):
    """Writes the mesh of what build() adds to the model to ORDER-VERSION.msh in the folder, with "b" behind the version if binary.

    Its body is the group "body", its sides have the number 7 and no name. Returns {order: volume or area of the body}, by Gmsh's own
    integration. Once for all orders: Gmsh makes no second mesh with pyramids in one process. The mesh of the highest order is written
    once more as bent.msh, sheared by x + 0.1 sin(2 y + 3 z), which leaves its volume.
    """
    gmsh.initialize(["zurt"], False)
    try:
        gmsh.option.setNumber("General.Terminal", 0)
        gmsh.model.add("model")
        build()
        gmsh.model.occ.synchronize()
        gmsh.option.setNumber("Mesh.MeshSizeMax", size)
        gmsh.option.setNumber("Mesh.MeshSizeMin", size)
        dimension = gmsh.model.getDimension()
        gmsh.model.mesh.generate(dimension)
        gmsh.model.addPhysicalGroup(dimension, [tag for _, tag in gmsh.model.getEntities(dimension)], 1)
        gmsh.model.setPhysicalName(dimension, 1, "body")
        sides = gmsh.model.getBoundary(gmsh.model.getEntities(dimension), oriented=False)
        gmsh.model.addPhysicalGroup(dimension - 1, [tag for _, tag in sides], 7)
        sizes = {order: _write_order(folder, order, versions, dimension) for order in orders}
        tags, places, _ = gmsh.model.mesh.getNodes()
        for tag, (x, y, z) in zip(tags, numpy.reshape(places, (-1, 3))):
            gmsh.model.mesh.setNode(tag, [x + 0.1 * numpy.sin(2 * y + 3 * z), y, z], [])
        gmsh.write(os.path.join(folder, "bent.msh"))
        return sizes
    finally:
        gmsh.finalize()


def _write_order(folder, order, versions, dimension):
    gmsh.model.mesh.setOrder(order)
    for version, binary in versions:
        gmsh.option.setNumber("Mesh.Binary", int(binary))
        gmsh.option.setNumber("Mesh.MshFileVersion", version)
        gmsh.write(os.path.join(folder, f"{order}-{version}{'b' if binary else ''}.msh"))
    size = 0.0
    for kind in gmsh.model.mesh.getElementTypes(dimension):
        places, weights = gmsh.model.mesh.getIntegrationPoints(kind, "Gauss4")
        _, determinants, _ = gmsh.model.mesh.getJacobians(kind, places)
        size += float((numpy.reshape(determinants, (-1, len(weights))) @ weights).sum())
    return size


def _cards_of_block(block, gauss):
    family = {1: (1, 2, 3), 2: (2, 4, 9), 3: (3, 8, 21)}[block.dimension]
    gauss = gauss or (2 if block.elements.shape[1] <= family[1] else 3)
    most = family[1] if block.elements.shape[1] <= family[1] else family[2]
    yield f"{family[0]} {len(block.elements)} 0 0 0 0"
    yield f"1 1 {most} 0 0 " + " ".join([str(gauss)] * block.dimension) + (" 0 1." if block.dimension == 2 else "")
    numbers = numpy.zeros((len(block.elements), most), int)
    numbers[:, :block.elements.shape[1]] = block.elements + 1
    for count, row in enumerate(numbers.tolist(), start=1):
        first, rest = (row, []) if block.dimension == 1 else (row[:family[1]], row[family[1]:])
        yield " ".join(map(str, [count] + first)) + " 0 1 0 0 0 0" + (" 1." if block.dimension < 3 else "")
        if rest:
            yield " ".join(map(str, rest))


def _write_deck(folder, mesh, held, values, run, gauss=None):
    """mesh.dat, a steady problem with held nodes at values of their own; run 0: its input is checked alone. gauss: order, else 2 or 3."""
    indicator = numpy.zeros(len(mesh.points), int)
    indicator[held] = 1
    given = numpy.where(indicator > 0, values, 0.0)
    lines = ["A mesh", "1 0 0 0",
             f"{len(mesh.points)} {len(mesh.blocks)} 1 0 1 -1 0 {-1 if run else 3} 0 -1 0", "1 0 0 20 0. 1e-12 1 0", f"{run} 0 0 0. 0"]
    lines += [f"{row + 1} {flag} {x!r} {y!r} {z!r} {value!r} 0"
              for row, (flag, (x, y, z), value) in enumerate(zip(indicator.tolist(), mesh.points.tolist(), given.tolist()))]
    lines += ["0 0 0 0 0 0. 0 0 0 0 0 0 0 0", "0. 0."]
    for block in mesh.blocks:
        lines += _cards_of_block(block, gauss)
    lines += ["0 1 2 0 0 0", "1 0 0 1. 1. 1. 1. 1e6 -1e6", "1 2", "-1000. 1.", "1000. 1.", "0 0 0 0 0 0 0 0 0 0 0", "0.", "STOP", ""]
    with open(os.path.join(folder, "mesh.dat"), "w") as file:
        file.write("\n".join(lines))
    with open(os.path.join(folder, "held.dat"), "w") as file:
        file.write("0 1\n")


def stored_words(folder, mesh):
    """Entries of the skyline matrix with all nodes free, as the program counts them."""
    _write_deck(folder, mesh, numpy.empty(0, int), numpy.zeros(len(mesh.points)), 0)
    ended = subprocess.run([find_program(), "-q", "-f", "--solver", "skyline", "mesh.dat"], cwd=folder, capture_output=True, text=True)
    assert ended.returncode == 0, ended.stderr
    with open(os.path.join(folder, "mesh.lst"), encoding="latin-1") as file:
        return int(re.search(r"NWK\D*(\d+)", file.read()).group(1))


def outer_nodes(mesh):
    """Rows of the corners of faces that one brick alone has."""
    faces = numpy.concatenate([block.elements[:, :8][:, numpy.argsort(BRICK_CORNERS)][:, list(face)]
                               for block in mesh.blocks for face in HEXAHEDRON.faces])
    _, first, times = numpy.unique(numpy.sort(faces, axis=1), axis=0, return_index=True, return_counts=True)
    return numpy.unique(faces[first[times == 1]])


def findings(folder):
    """What zurt --check says of the deck that was run last, but for its size."""
    ended = subprocess.run([find_program(), "--check", "--prescribed", "held.dat", "mesh.dat"], cwd=folder, capture_output=True, text=True)
    return "" if ended.returncode == 0 else ended.stdout + ended.stderr


def run_steady(folder, mesh, held, values, gauss=None):
    """Solves div grad u = 0 with u = values at the held nodes (rows), by the solver advised; (n,) values at all nodes, with all digits."""
    _write_deck(folder, mesh, held, values, 1, gauss)
    options = ["-q", "-f", "--vtu", "--solver", advise_solver(mesh).name, "--prescribed", "held.dat"]
    ended = subprocess.run([find_program(), *options, "mesh.dat"], cwd=folder, capture_output=True, text=True)
    assert ended.returncode == 0, ended.stderr
    result = meshio.read(os.path.join(folder, "mesh-0001.vtu"))
    node = result.point_data["node"]
    found = numpy.empty(len(mesh.points))
    found[node[node > 0] - 1] = result.point_data["concentration"][node > 0]
    return found


def quarter_ring(divisions, recombine=True):
    """build() of a quarter of a thick pipe, radii 1 and 2, height 1, with so many elements to each direction."""
    def build():
        geo = gmsh.model.geo
        points = [geo.addPoint(*place, 0.0) for place in ((0, 0), (1, 0), (2, 0), (0, 2), (0, 1))]
        curves = [geo.addLine(points[1], points[2]), geo.addCircleArc(points[2], points[0], points[3]), geo.addLine(points[3], points[4]),
                  geo.addCircleArc(points[4], points[0], points[1])]
        surface = geo.addPlaneSurface([geo.addCurveLoop(curves)])
        for curve in curves:
            geo.mesh.setTransfiniteCurve(curve, divisions + 1)
        geo.mesh.setTransfiniteSurface(surface)
        if recombine:
            geo.mesh.setRecombine(2, surface)
        sides = geo.extrude([(2, surface)], 0, 0, 1, [divisions], recombine=True)
        geo.synchronize()
        for name, side in (("outer", sides[3]), ("inner", sides[5])):
            gmsh.model.setPhysicalName(2, gmsh.model.addPhysicalGroup(2, [side[1]]), name)
    return build


def _whole_elements(mesh, block):
    """Rows of points in VTK's order, and for each element and node of its shape functions the two nodes that it belongs to: the node itself
    twice, or the ends of an edge without a node."""
    family = family_of_dimension(block.dimension)
    corners, edges = len(family.corners), len(family.edges)
    order = list(BRICK_CORNERS) + [8 + edge for edge in BRICK_EDGES] if block.dimension == 3 else list(range(corners + edges))
    order += list(range(corners + edges, block.elements.shape[1]))
    nodes = numpy.empty_like(block.elements)
    nodes[:, order[:block.elements.shape[1]]] = block.elements
    owners = numpy.stack([nodes, nodes], axis=2)
    for edge, ends in enumerate(family.edges if nodes.shape[1] > corners else ()):
        absent = nodes[:, corners + edge] < 0
        owners[absent, corners + edge] = nodes[absent][:, list(ends)]
    kind = (nodes.shape[1] > corners, (0,) if nodes.shape[1] == 9 else (), False)
    return family.name, kind, owners


def _mapping(mesh, block, order):
    """(shape functions (p, k), their derivatives (d, p, k), (m, p, 3) places, (m, p, d, d) Jacobians, weights (p,), owners (m, k, 2))."""
    name, kind, owners = _whole_elements(mesh, block)
    places, weights = _gauss_points(block.dimension, order)
    shape, slopes = shape_values(name, kind, places), shape_slopes(name, kind, places)
    nodes = mesh.points[owners].mean(axis=2)
    at = numpy.einsum("pk,mki->mpi", shape, nodes)
    jacobian = numpy.einsum("dpk,mki->mpdi", slopes, nodes[..., :block.dimension])
    return shape, slopes, at, jacobian, weights, owners


def l2_error(mesh, values, exact):
    """Root mean square of (values - exact(x, y, z)) over the mesh, by 4 Gauss points in a direction."""
    total = size = 0.0
    for block in mesh.blocks:
        shape, _, at, jacobian, weights, owners = _mapping(mesh, block, 4)
        measure = numpy.linalg.det(jacobian) * weights
        difference = values[owners].mean(axis=2) @ shape.T - exact(at[..., 0], at[..., 1], at[..., 2])
        total += (measure * difference ** 2).sum()
        size += measure.sum()
    return float(numpy.sqrt(total / size))


def patch_residual(mesh, sides):
    """Largest of the integrals of the derivatives of an inner node's shape function, which are zero where elements meet without gaps."""
    sums = numpy.zeros((len(mesh.points), 3))
    for block in mesh.blocks:
        _, slopes, _, jacobian, weights, owners = _mapping(mesh, block, 4)
        cofactors = numpy.linalg.inv(jacobian) * (numpy.linalg.det(jacobian) * weights)[:, :, None, None]
        parts = numpy.einsum("mpid,dpk->mki", cofactors, slopes)
        for owner in range(2):
            numpy.add.at(sums[:, :block.dimension], owners[:, :, owner], 0.5 * parts)
    inner = numpy.setdiff1d(numpy.arange(len(mesh.points)), sides)
    return float(numpy.abs(sums[inner]).max())
