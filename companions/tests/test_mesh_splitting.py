"""Meshes of Gmsh split into quadrilaterals and bricks: volumes, conformity, linear fields, orders of convergence."""
import gmsh
import numpy
import pytest

from mesh_support import findings, l2_error, make_gmsh_mesh, patch_residual, quarter_ring, run_steady
from zurt.mesh.checks import block_size
from zurt.mesh.families import FAMILIES, KINDS, reference_places
from zurt.mesh.interpolation import shape_values
from zurt.mesh.reading import MeshOptions, read_mesh

LINEAR = numpy.array([1.3, -0.7, 0.4])


def disk():
    gmsh.model.occ.addDisk(0, 0, 0, 1, 1)


def ball():
    gmsh.model.occ.addSphere(0, 0, 0, 1)


def pipe():
    quarter_ring(2, recombine=False)()


def bricks():
    quarter_ring(2)()


def fill_with_bricks(box, points):
    """Bricks instead of tetrahedra in a box; points: nodes along an edge."""
    mesh = gmsh.model.mesh
    sides = gmsh.model.getBoundary([(3, box)], oriented=False)
    for _, curve in gmsh.model.getBoundary(sides, oriented=False, combined=False):
        mesh.setTransfiniteCurve(curve, points)
    for _, side in sides:
        mesh.setTransfiniteSurface(side)
        mesh.setRecombine(2, side)
    mesh.setTransfiniteVolume(box)


def boxes_of_two_kinds():
    """Bricks below, tetrahedra above, pyramids between them; 1 by 1 by 2."""
    occ = gmsh.model.occ
    below, above = occ.addBox(0, 0, 0, 1, 1, 1), occ.addBox(0, 0, 1, 1, 1, 1)
    occ.fragment([(3, below)], [(3, above)])
    occ.synchronize()
    fill_with_bricks(below, 4)


def half_of_quads():
    """A plate of 2 by 1, quadrilaterals in its left half and triangles in its right one."""
    occ = gmsh.model.occ
    left, right = occ.addRectangle(0, 0, 0, 1, 1), occ.addRectangle(1, 0, 0, 1, 1)
    occ.fragment([(2, left)], [(2, right)])
    occ.synchronize()
    gmsh.model.mesh.setTransfiniteSurface(left)
    gmsh.model.mesh.setRecombine(2, left)


# Of each: size of its elements, size of the body where Gmsh's sum is off (over pyramids it is), pieces of an element.
CASES = {disk: (0.3, None, 3), half_of_quads: (0.3, None, None), ball: (0.6, None, 4), pipe: (0.5, None, 6), bricks: (0.5, None, 1),
         boxes_of_two_kinds: (0.34, 2.0, None)}


@pytest.fixture(scope="module")
def made(tmp_path_factory):
    """{build: (folder, sizes by order)} of all meshes."""
    found = {}
    for build, (size, _, _) in CASES.items():
        folder = tmp_path_factory.mktemp(build.__name__)
        found[build] = folder, make_gmsh_mesh(folder, build, size)
    return found


@pytest.mark.parametrize("build", CASES)
@pytest.mark.parametrize("order, split", [(1, "linear"), (2, "linear"), (2, "quadratic")])
def test_linear_fields_and_volumes(made, build, order, split):
    folder, sizes = made[build]
    _, known, pieces_each = CASES[build]
    mesh = read_mesh(folder / f"{order}-4.1.msh", MeshOptions(split=split))
    assert [block.name for block in mesh.blocks] == ["body"] * len(mesh.blocks)
    straight = build in (half_of_quads, boxes_of_two_kinds)
    found = sum(block_size(mesh.points, block) for block in mesh.blocks)
    # Pieces of curved tetrahedra have faces of 8 nodes, which follow faces of 6 nodes to the fourth power of their size.
    exact = straight or order == 1 or build is bricks or (split == "quadratic" and build is not ball)
    assert abs(found / (known or sizes[order]) - 1) < (1e-9 if exact else 2e-3 if split == "quadratic" else 0.03)
    if pieces_each:
        sources = numpy.concatenate([block.source for block in mesh.blocks])
        assert (numpy.unique(sources, return_counts=True)[1] == pieces_each).all()
    sides = mesh.node_sets["group-7"]
    assert not [note for note in mesh.notes if "cut there" in note or "joined there" in note or "overlap" in note or "without a common" in note]
    assert patch_residual(mesh, sides) < (1e-11 if build is boxes_of_two_kinds else 1e-13)  # pinholes at the tips of pyramids
    field = mesh.points @ LINEAR + 0.2
    # The program's Gauss rules have single precision; that of order 5 is the best: docs/meshes.md.
    of_twenty = max(block.elements.shape[1] for block in mesh.blocks) > 9
    assert numpy.abs(run_steady(folder, mesh, sides, field, gauss=5) - field).max() < (3e-10 if of_twenty else 1e-10)
    assert findings(folder) == ""


@pytest.mark.parametrize("build", [boxes_of_two_kinds, pipe, bricks])
@pytest.mark.parametrize("split", ["linear", "quadratic"])
def test_bent_elements_meet(made, build, split):
    """Of second order and curved, pyramids beside the others: no gaps, and the volume of the straight ones."""
    folder, sizes = made[build]
    mesh = read_mesh(folder / "bent.msh", MeshOptions(split=split))
    found = sum(block_size(mesh.points, block) for block in mesh.blocks)
    assert abs(found / (CASES[build][1] or sizes[2]) - 1) < (1e-3 if split == "quadratic" else 0.03)
    assert patch_residual(mesh, mesh.node_sets["group-7"]) < 1e-11


def thin_shell():
    """One layer of bricks of a pipe wall, radii 1 and 1.0002, whose sides bulge by forty times its thickness."""
    geo = gmsh.model.geo
    geo.addPoint(0, 0, 0)
    line = geo.extrude([(0, geo.addPoint(1, 0, 0))], 2e-4, 0, 0, [1])
    strip = geo.extrude([line[1]], 0, 0, 1, [2], recombine=True)
    geo.revolve([strip[1]], 0, 0, 0, 0, 0, 1, 1.5, [6], recombine=True)
    geo.synchronize()


def test_thin_curved_elements(tmp_path):
    make_gmsh_mesh(tmp_path, thin_shell, 1.0, [2])
    mesh = read_mesh(tmp_path / "2-4.1.msh")
    assert abs(sum(block_size(mesh.points, block) for block in mesh.blocks) / (0.75 * (1.0002 ** 2 - 1.0)) - 1) < 1e-4
    assert all(note.startswith("nodes left out") for note in mesh.notes)


def wire_in_a_box_beside_another():
    """A box of tetrahedra with lines along their edges, the groups "body" and "wire", and a box of 8 bricks that doesn't touch it."""
    occ, mesh = gmsh.model.occ, gmsh.model.mesh
    box, other = occ.addBox(0, 0, 0, 1, 1, 1), occ.addBox(3, 0, 0, 1, 1, 1)
    wire = occ.addLine(occ.addPoint(0.2, 0.2, 0.2), occ.addPoint(0.8, 0.8, 0.8))
    occ.synchronize()
    mesh.embed(1, [wire], 3, box)
    fill_with_bricks(other, 3)
    gmsh.model.setPhysicalName(1, gmsh.model.addPhysicalGroup(1, [wire]), "wire")


@pytest.mark.parametrize("order, split, nodes, of_lines", [(1, "linear", (8, 8), 2), (2, "linear", (8, 20), 2), (2, "quadratic", (20, 20), 3)])
def test_several_dimensions_and_parts_that_stay_whole(tmp_path, order, split, nodes, of_lines):
    make_gmsh_mesh(tmp_path, wire_in_a_box_beside_another, 0.4, [order])
    mesh = read_mesh(tmp_path / f"{order}-4.1.msh", MeshOptions(split=split, groups=["body", "wire"]))
    lines = next(block for block in mesh.blocks if block.dimension == 1)
    assert lines.name == "wire" and lines.elements.shape == (6, of_lines)
    assert abs(block_size(mesh.points, lines) - 0.6 * 3 ** 0.5) < 1e-12
    bricks = [block for block in mesh.blocks if block.dimension == 3]
    assert {block.elements.shape[1] for block in bricks} == set(nodes)
    assert abs(sum(block_size(mesh.points, block) for block in bricks) - 2.0) < 1e-9
    whole = bricks[-1].elements[(mesh.points[bricks[-1].elements[:, 0]][:, 0] > 2)]
    assert len(whole) == 8 and set(lines.elements.ravel()) <= set(bricks[0].elements.ravel())


def errors_in_ring(tmp_path, divisions, order, split, recombine):
    """Of log r between radii 1 and 2, held inside and outside."""
    found = []
    for count in divisions:
        make_gmsh_mesh(tmp_path, quarter_ring(count, recombine), 0.5, [order])
        mesh = read_mesh(tmp_path / f"{order}-4.1.msh", MeshOptions(split=split))
        held = numpy.union1d(mesh.node_sets["inner"], mesh.node_sets["outer"])
        values = numpy.zeros(len(mesh.points))
        values[mesh.node_sets["outer"]] = numpy.log(2.0)
        solution = run_steady(tmp_path, mesh, held, values)
        found.append(l2_error(mesh, solution, lambda x, y, z: 0.5 * numpy.log(x * x + y * y)))
    return numpy.array(found)


@pytest.mark.parametrize("order, split, recombine, least", [(1, "linear", True, 1.9), (2, "linear", True, 2.9), (1, "linear", False, 1.9),
                                                            (2, "quadratic", False, 1.9)])
def test_order_of_convergence_on_a_curve(tmp_path, order, split, recombine, least):
    """2 for bricks of 8 nodes, 3 for the file's own bricks of 20 nodes; pieces with 20 nodes are no parallelepipeds even in fine meshes,
    and there elements without the products of all squares fall back to 2 (D. N. Arnold, D. Boffi, R. S. Falk, Approximation by
    quadrilateral finite elements, 2002)."""
    errors = errors_in_ring(tmp_path, (2, 4), order, split, recombine)
    assert numpy.log2(errors[0] / errors[1]) > least


@pytest.mark.parametrize("order, split, least, most", [(1, "linear", 1.8, 2.4), (2, "quadratic", 2.8, 4.0)])
def test_order_of_convergence_in_the_plane(tmp_path, order, split, least, most):
    """Triangles of a disk; exp(x) cos(y), whose values on the circle the outer nodes take. Quadrilaterals of 9 nodes have order 3."""
    errors = []
    for size in (0.4, 0.1):
        make_gmsh_mesh(tmp_path, disk, size, [order])
        mesh = read_mesh(tmp_path / f"{order}-4.1.msh", MeshOptions(split=split))
        held = mesh.node_sets["group-7"]
        on_circle = mesh.points[held] / numpy.linalg.norm(mesh.points[held], axis=1)[:, None]
        values = numpy.zeros(len(mesh.points))
        values[held] = numpy.exp(on_circle[:, 0]) * numpy.cos(on_circle[:, 1])
        errors.append(l2_error(mesh, run_steady(tmp_path, mesh, held, values), lambda x, y, z: numpy.exp(x) * numpy.cos(y)))
    assert least < numpy.log(errors[0] / errors[1]) / numpy.log(4.0) < most


@pytest.mark.parametrize("name, count", [key for key in KINDS if FAMILIES[key[0]].dimension == 3 and key[1] != 21])
def test_solids_have_their_faces_shape_functions(name, count):
    """On a face the functions of its nodes are those of the triangle or quadrilateral, and all others are zero: so solids of all kinds meet."""
    family, kind = FAMILIES[name], KINDS[name, count]
    nodes = reference_places(family, *kind)
    for face, corners in enumerate(family.faces):
        flat = {3: "triangle", 4: "quad"}[len(corners)]
        of_face = (kind[0], (0,) if face in kind[1] else (), False)
        places = numpy.random.default_rng(1).random((20, 2)) * 0.5
        own = shape_values(flat, of_face, places)
        linear = shape_values(flat, (False, (), False), numpy.concatenate([places, reference_places(FAMILIES[flat], *of_face)]))
        at = linear @ family.corners[list(corners)]
        values = shape_values(name, kind, at[:20])
        column = [int(numpy.linalg.norm(nodes - place, axis=1).argmin()) for place in at[20:]]
        assert numpy.abs(values[:, column] - own).max() < 1e-12
        assert numpy.abs(numpy.delete(values, column, axis=1)).max(initial=0.0) < 1e-12
