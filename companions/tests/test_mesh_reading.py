"""Meshes of all formats, their groups, what is put right in them and what is refused."""
import itertools
import os

import gmsh
import meshio
import netCDF4
import numpy
import pytest

from mesh_support import make_gmsh_mesh, outer_nodes, patch_residual, run_steady
from zurt.errors import ZurtError
from zurt.mesh.checks import block_size
from zurt.mesh.meshio_files import import_meshio
from zurt.mesh.reading import MeshOptions, read_mesh

REAL = "/usr/share/doc/calculix-ccx-test/examples/test"  # of Debian's package calculix-ccx-test


def ball():
    gmsh.model.occ.addSphere(0, 0, 0, 1)


def volume(mesh):
    return sum(block_size(mesh.points, block) for block in mesh.blocks)


@pytest.fixture(scope="module")
def made(tmp_path_factory):
    """Folder with a ball of tetrahedra of both orders in many formats, by Gmsh and by meshio, and its volume in pieces by order."""
    folder = tmp_path_factory.mktemp("formats")
    make_gmsh_mesh(folder, ball, 0.6, versions=[(2.2, False), (2.2, True), (4.1, False), (4.1, True)])
    gmsh.initialize(["zurt"], False)
    gmsh.option.setNumber("General.Terminal", 0)
    for order in (1, 2):
        gmsh.open(str(folder / f"{order}-4.1.msh"))
        for ending in ("unv", "inp"):
            gmsh.write(str(folder / f"{order}.{ending}"))
    gmsh.finalize()
    for order in (1, 2):
        mesh = meshio.read(folder / f"{order}-4.1.msh")
        mesh = meshio.Mesh(mesh.points, mesh.cells, cell_data={"cell_tags": mesh.cell_data["gmsh:physical"]})
        for ending in ("vtu", "med", "e"):
            meshio.write(folder / f"{order}-meshio.{ending}", mesh)
    return folder, {order: volume(read_mesh(folder / f"{order}-4.1.msh")) for order in (1, 2)}


# What each format makes of the names of the body and of its sides.
FORMATS = {"-2.2.msh": ("body", "group-7"), "-2.2b.msh": ("body", "group-7"), "-4.1b.msh": ("body", "group-7"),
           ".unv": ("body", "PhysicalSurface7"), ".inp": ("body", "PhysicalSurface7"), "-meshio.vtu": ("group-1", "group-7"),
           "-meshio.med": ("group-1", "group-7"), "-meshio.e": ("block-1", "block-0")}


@pytest.mark.parametrize("order", (1, 2))
@pytest.mark.parametrize("ending", FORMATS)
def test_every_format_gives_the_same_mesh(made, ending, order):
    folder, volumes = made
    body, sides = FORMATS[ending]
    mesh = read_mesh(folder / f"{order}{ending}", MeshOptions(groups=[body]))
    assert [block.name for block in mesh.blocks] == [body]
    assert abs(volume(mesh) / volumes[order] - 1) < 1e-12
    assert len(mesh.node_sets[body]) == len(mesh.points)
    assert len(mesh.node_sets[sides]) == len(mesh.faces[sides]) + 2  # a closed surface of quadrilaterals (Euler)
    assert patch_residual(mesh, mesh.node_sets[sides]) < 1e-13


# A brick and a wedge on it, of second order; the order of the file's nodes is another in every format, and the brick is inside out.
def brick_and_wedge():
    grid = {}
    for x in range(3):
        for y in range(3):
            for z in range(5):
                grid[x, y, z] = len(grid)
    points = numpy.array(list(grid), dtype=float)
    brick = [(0, 0, 0), (0, 2, 0), (2, 2, 0), (2, 0, 0), (0, 0, 2), (0, 2, 2), (2, 2, 2), (2, 0, 2)]
    wedge = [(0, 0, 2), (2, 0, 2), (0, 0, 4), (0, 2, 2), (2, 2, 2), (0, 2, 4)]
    edges = {"brick": [(0, 1), (1, 2), (2, 3), (3, 0), (4, 5), (5, 6), (6, 7), (7, 4), (0, 4), (1, 5), (2, 6), (3, 7)],
             "wedge": [(0, 1), (1, 2), (2, 0), (3, 4), (4, 5), (5, 3), (0, 3), (1, 4), (2, 5)]}
    rows = {}
    for name, corners in (("brick", brick), ("wedge", wedge)):
        middles = [tuple((a + b) // 2 for a, b in zip(corners[i], corners[j])) for i, j in edges[name]]
        rows[name] = numpy.array([[grid[place] for place in corners + middles]])
    return points, rows["brick"], rows["wedge"]


@pytest.mark.parametrize("seed", range(3))
def test_middles_in_any_order_and_elements_inside_out(tmp_path, seed):
    points, brick, wedge = brick_and_wedge()
    dice = numpy.random.default_rng(seed)
    if seed:
        brick = numpy.concatenate([brick[:, :8], dice.permutation(brick[:, 8:], axis=1)], axis=1)
        wedge = numpy.concatenate([wedge[:, :6], dice.permutation(wedge[:, 6:], axis=1)], axis=1)
    import_meshio()
    meshio.write(tmp_path / "two.vtu", meshio.Mesh(points, [("hexahedron20", brick), ("wedge15", wedge)]))
    for split, nodes in (("linear", 8), ("quadratic", 20)):
        mesh = read_mesh(tmp_path / "two.vtu", MeshOptions(split=split))
        assert abs(volume(mesh) - 12.0) < 1e-12 and [block.elements.shape for block in mesh.blocks] == [(14, nodes)]
        x, y, z = mesh.points.round(9).T
        outside = numpy.flatnonzero((x % 2 == 0) | (y % 2 == 0) | (z == 0) | (x + z == 4))
        assert patch_residual(mesh, outside) < 1e-13
        assert any("elements turned that were inside out: 2" == note for note in mesh.notes)
        assert any(note.endswith("no element of the blocks: 18") for note in mesh.notes)


ABAQUS = """*HEADING
two bricks and a spring
*NODE, NSET=Nall
1, 0., 0., 0.
2, 1., 0., 0.
3, 1., 1., 0.
4, 0., 1., 0.
11, 0., , 1.
12, 1., 0., 1.
13, 1., 1., 1.
14, 0., 1., 1.
111, 0., 0., 1.0000001
112, 1., 0., 1.
113, 1., 1., 1.
114, 0., 1., 1.
121, 0., 0., 2.
122, 1., 0., 2.
123, 1., 1., 2.
124, 0., 1., 2.D0
*Element, type=DC3D8, elset=lower
5, 1, 2, 3, 4, 11, 12, 13,
14
*ELEMENT, TYPE=C3D8R
9, 111,112,113,114,121,122,123,124
*ELEMENT, TYPE=SPRINGA
20, 1, 2
*ELSET, ELSET=both, GENERATE
5, 9, 4
*ELSET, ELSET=upper
9
*NSET, NSET=top, GENERATE
121, 124
*SURFACE, NAME=left, TYPE=ELEMENT
lower, S6
9, S6
"""


def test_sets_and_surfaces_of_abaqus_and_double_nodes(tmp_path):
    path = tmp_path / "two.inp"
    path.write_text(ABAQUS)
    apart = read_mesh(path)
    assert len(apart.points) == 16 and sorted(block.name for block in apart.blocks) == ["lower", "upper"]
    assert any(note.startswith("nodes at the place of another one: 4, the first at (0, 0, 1);") for note in apart.notes)
    mesh = read_mesh(path, MeshOptions(merge=1e-3, scale=2.0, groups=["both"]))
    assert len(mesh.points) == 12 and abs(volume(mesh) - 16.0) < 1e-5
    assert any(note == "double nodes merged within 0.001: 4" for note in mesh.notes)
    assert (mesh.points[mesh.node_sets["top"]][:, 2] == 4.0).all() and len(mesh.node_sets["upper"]) == 8
    assert mesh.faces["left"].shape == (2, 4) and (mesh.points[mesh.faces["left"]][:, :, 0] == 0.0).all()
    assert list(mesh.blocks[0].source) == [0, 1]


def test_side_sets_of_exodus_and_node_sets_of_split_elements(tmp_path):
    """A wedge whose slanted side is a side set, and whose triangle at the bottom is a set of nodes."""
    with netCDF4.Dataset(tmp_path / "wedge.e", "w") as data:
        for name, size in (("num_nodes", 6), ("num_dim", 3), ("num_el_blk", 1), ("num_el_in_blk1", 1), ("num_nod_per_el1", 6),
                           ("num_side_sets", 1), ("num_side_ss1", 1), ("num_node_sets", 1), ("num_nod_ns1", 3), ("len_string", 33)):
            data.createDimension(name, size)
        for axis, values in zip("xyz", numpy.array([(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (0, 1, 1)]).T):
            data.createVariable("coord" + axis, "f8", ("num_nodes",))[:] = values
        block = data.createVariable("connect1", "i4", ("num_el_in_blk1", "num_nod_per_el1"))
        block.elem_type = "WEDGE6"
        block[:] = [[1, 2, 3, 4, 5, 6]]
        data.createVariable("elem_ss1", "i4", ("num_side_ss1",))[:] = 1
        data.createVariable("side_ss1", "i4", ("num_side_ss1",))[:] = 2
        data.createVariable("node_ns1", "i4", ("num_nod_ns1",))[:] = [1, 2, 3]
        names = data.createVariable("ns_names", "S1", ("num_node_sets", "len_string"))
        names[:] = numpy.array([list("bottom".ljust(33, "\0"))], dtype="S1")
    mesh = read_mesh(tmp_path / "wedge.e", MeshOptions(split="quadratic"))
    slanted = mesh.points[mesh.node_sets["side-set-1"]]
    assert mesh.faces["side-set-1"].shape == (4, 8) and abs(slanted[:, 0] + slanted[:, 1] - 1.0).max() < 1e-12
    bottom = numpy.flatnonzero(mesh.points[:, 2] == 0.0)
    assert len(bottom) == 16 and (mesh.node_sets["bottom"] == bottom).all()


def plate(tmp_path, cells, places, **data):
    path = tmp_path / "plate.vtu"
    meshio.write(path, meshio.Mesh(numpy.array(places, dtype=float), cells, **data))
    return path


SQUARE = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)]
ONE_QUAD = [("quad", numpy.array([[0, 1, 2, 3]]))]


def cube(*corner):
    """Corners of a cube of edge 1 at that place, in VTK's order."""
    return [tuple(numpy.add(corner, place)) for place in itertools.product((0, 1), repeat=3)]


CUBE = [0, 4, 6, 2, 1, 5, 7, 3]
CURVED = [(1 + 0.1 * (1 - s * s), 1 + s, 0) for s in (-1, -0.5, 0, 0.5, 1)]


@pytest.mark.parametrize("cells, places, said", [
    # one quadrilateral against two
    ([("quad", [[0, 1, 3, 2], [1, 4, 5, 6], [6, 5, 7, 3]])], [(0, 0, 0), (1, 0, 0), (0, 2, 0), (1, 2, 0), (2, 0, 0), (2, 1, 0), (1, 1, 0), (2, 2, 0)],
     ["nodes that lie on an edge of an element without being one of its nodes: 1, the first at (1, 1, 0)"]),
    # the same along a curve, of second order: the middles of the two lie on the edge of the one
    ([("quad8", [[0, 2, 3, 1, 4, 6, 8, 9], [2, 10, 11, 6, 12, 13, 14, 5], [6, 11, 15, 3, 14, 16, 17, 7]])],
     [(0, 0, 0), (0, 2, 0), CURVED[0], CURVED[4], (0.5, 0, 0), CURVED[1], CURVED[2], CURVED[3], (0.5, 2, 0), (0, 1, 0),
      (2, 0, 0), (2, 1, 0), (1.5, 0, 0), (2, 0.5, 0), (1.55, 1, 0), (2, 2, 0), (2, 1.5, 0), (1.5, 2, 0)],
     ["nodes that lie on an edge of an element without being one of its nodes: 2, the first at (1.075, 0.5, 0)"]),
    # two bricks that are not joined
    ([("hexahedron", [CUBE, [8 + row for row in CUBE]])], cube(0, 0, 0) + cube(1, 0, 0),
     ["nodes at the place of another one: 4, the first at (1, 0, 0); what they belong to is not joined there: merge = 1e-09 joins it",
      "the elements fall into 2 parts without a common node; the smallest has 1 of 2"]),
    # a corner of one brick in the middle of another's face
    ([("hexahedron", [CUBE, [8 + row for row in CUBE]])], cube(0, 0, 0) + cube(1, 0.5, 0.5),
     ["nodes that lie on an edge or a face of an element without being one of its nodes: 2, the first at (1, 1, 1)", "the elements fall into 2 parts"]),
    # three bricks on one face
    ([("hexahedron", [CUBE, [4, 8, 10, 6, 5, 9, 11, 7], [4, 12, 14, 6, 5, 13, 15, 7]])],
     cube(0, 0, 0) + cube(1, 0, 0)[4:] + [(2.5, -0.5, -0.5), (2.5, -0.5, 1.5), (2.5, 1.5, -0.5), (2.5, 1.5, 1.5)],
     ["faces that belong to more than two solids: 1, the first about (1, 0.5, 0.5)"]),
    # a brick and two tetrahedra on it
    ([("hexahedron", [CUBE]), ("tetra", [[4, 6, 7, 8], [4, 7, 5, 8]])], cube(0, 0, 0) + [(2, 0.5, 0.5)],
     ["faces of four corners against two triangles: 1, the first about (1, 0.5, 0.5)"]),
    # a line that ends on another one
    ([("line", [[0, 1], [2, 3]])], [(0, 0, 0), (2, 0, 0), (1, 0, 0), (1, 1, 0)], ["nodes that lie on a line of an element", "the elements fall into 2 parts"]),
    ([("quad", [[0, 1, 2, 3], [1, 2, 3, 0]])], SQUARE, ["elements with the nodes of another one, which are taken once: 1"])])
def test_what_does_not_meet(tmp_path, cells, places, said):
    notes = read_mesh(plate(tmp_path, [(name, numpy.array(rows)) for name, rows in cells], places)).notes
    found = [note for note in notes if not note.startswith("elements split")]
    assert len(found) == len(said) and all(note.startswith(start) for note, start in zip(found, said)), found


@pytest.mark.parametrize("cells, places, options, said", [
    (ONE_QUAD, [(x, y, 0.5) for x, y, _ in SQUARE], {}, "lies in the plane z = 0.5; .* lie in z = 0: move it by -0.5"),
    (ONE_QUAD, [(3, x, y) for x, y, _ in SQUARE], {}, 'in the plane x = 3; .*exchange the axes .option axes = "yzx"'),
    (ONE_QUAD, [(x, y, x * y) for x, y, _ in SQUARE], {}, "lies in space, z goes from 0 to 1; .*There are no shells"),
    (ONE_QUAD, SQUARE, {"groups": ["grup-3"]}, 'there is no group "grup-3" in this mesh: is "group-3" meant?'),
    (ONE_QUAD, [(x * 1e-9, y * 1e-9, 0) for x, y, _ in SQUARE], {}, "too small for the program, .* not 2.5e-19"),
    ([("quad", numpy.array([[0, 2, 1, 3]]))], SQUARE, {}, "turned inside out or have no extent .* element 1 of the file"),
    ([("quad", numpy.array([[0, 1, 2, 1]]))], SQUARE, {}, "1 of 1 elements .* have a node twice, the first is element 1"),
    ([("triangle", numpy.array([[0, 1, 2]]))], SQUARE, {"merge": 2.0}, "merging nodes within 2 takes edges from elements, 1 in all"),
    ([("polygon", numpy.array([[0, 1, 2, 3]]))], SQUARE, {}, "there are cells of the type .polygon"),
    (ONE_QUAD, SQUARE, {"labels": "mat"}, 'no cell data "mat": is "material" meant?'),
    (ONE_QUAD, SQUARE, {"axes": "xy"}, "axes are the letters"), (ONE_QUAD, SQUARE, {"scale": 0.0}, "a factor above 0"),
    ([("quad", numpy.arange(48).reshape(12, 4))], [(x + i, y, 0) for i in range(12) for x, y, _ in SQUARE], {}, "no two of the 12 elements"),
    (ONE_QUAD, SQUARE, {"split": "cubic"}, '"linear" or "quadratic", not "cubic"')])
def test_what_is_refused(tmp_path, cells, places, options, said):
    path = plate(tmp_path, cells, places, cell_data={"material": [numpy.full(len(rows), 3) for _, rows in cells]})
    with pytest.raises(ZurtError, match=said):
        read_mesh(path, MeshOptions(**options))


@pytest.mark.parametrize("name, text, said", [
    ("none.msh", None, "there is no such file"), ("a.geo", "", "a geometry, not a mesh"), ("a.msh", "$Mesh\n", "Gmsh can't read|no nodes"),
    ("a.vtu", "<xml", "meshio can't read"), ("a.e", "x", "no mesh of Exodus"), ("a.inp", "*NODE\n1, 0., x\n", ":1: a number is expected"),
    ("c.inp", "*NODE\n1, 0.\n*NSET, NSET=a, GENERATE\n1, x\n", ":3: first, last and step of a set"), ("d.inp", "*NODE\n*ELEMENT, TYPE=C3D8\n", "no solids"),
    ("e.inp", "".join(f"*PART, NAME=p{i}\n*NODE\n1, 0.\n2, 1.\n*ELEMENT, TYPE=T3D2\n{i}, 1, 2\n*END PART\n" for i in (1, 2)), "2 numbers of nodes stand in"),
    ("f.inp.gz", "x", "can't be read"), ("g.inp", "*INCLUDE, INPUT=g.inp\n", "include one another"),
    ("b.inp", "*NODE\n1, 0.\n*ELEMENT, TYPE=C3D4\n1, 1, 2, 3, 4\n", ":3: element 1 has the node 2, which does not exist")])
def test_files_that_are_no_meshes(tmp_path, name, text, said):
    if text is not None:
        (tmp_path / name).write_text(text)
    with pytest.raises(ZurtError, match=said):
        read_mesh(tmp_path / name)


def test_numbers_without_names(tmp_path):
    """The number 5 stands for a surface and for its outline, 6 for a point."""
    def disk():
        gmsh.model.occ.addDisk(0, 0, 0, 1, 1)
        gmsh.model.occ.synchronize()
        for dimension, number in ((2, 5), (1, 5), (0, 6)):
            gmsh.model.addPhysicalGroup(dimension, [1], number)

    make_gmsh_mesh(tmp_path, disk, 0.5, [1])
    mesh = read_mesh(tmp_path / "1-4.1.msh", MeshOptions(groups=["group-5"]))
    assert [block.name for block in mesh.blocks] == ["group-5"] and len(mesh.node_sets["group-6"]) == 1
    assert len(mesh.faces["group-5-lines"]) == len(mesh.node_sets["group-5-lines"]) < len(mesh.node_sets["group-5"])


def test_elements_in_no_group_beside_a_group(tmp_path):
    """Three quadrilaterals in a row, the last one in no group; what is not named leaves no nodes behind."""
    places = [(x, y, 0) for x in range(4) for y in range(2)]
    rows = numpy.array([[0, 2, 3, 1], [2, 4, 5, 3], [4, 6, 7, 5]])
    path = plate(tmp_path, [("quad", rows)], places, cell_data={"material": [numpy.array([1, 2, 0])]})
    mesh = read_mesh(path, MeshOptions(groups=["group-2", "rest"]))
    assert [(block.name, len(block.elements)) for block in mesh.blocks] == [("group-2", 1), ("rest", 1)] and len(mesh.points) == 6
    with pytest.raises(ZurtError, match='the elements in no group are "rest" in this mesh, not "all"'):
        read_mesh(path, MeshOptions(groups=["all"]))


def test_cubic_elements_are_refused(tmp_path):
    make_gmsh_mesh(tmp_path, lambda: gmsh.model.occ.addDisk(0, 0, 0, 1, 1), 1.0, [3])
    with pytest.raises(ZurtError, match="order 1 or 2"):
        read_mesh(tmp_path / "3-4.1.msh")


@pytest.mark.parametrize("corners, pieces, size", [
    ([0, 1, 2, 2, 4, 5, 6, 6], 6, 0.5), ([3, 0, 1, 2, 3, 4, 5, 2], 6, 0.5), ([0, 0, 4, 4, 1, 2, 6, 5], 6, 0.5),
    ([0, 1, 2, 3, 4, 4, 4, 4], 12, 1 / 3), ([6, 0, 3, 6, 6, 1, 2, 6], 12, 1 / 3), ([0, 1, 2, 2, 5, 5, 5, 5], 4, 1 / 6)])
def test_collapsed_bricks(tmp_path, corners, pieces, size):
    """Wedges, pyramids and a tetrahedron of the corners of a cube, as bricks with nodes in several corners."""
    cube = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)]
    mesh = read_mesh(plate(tmp_path, [("hexahedron", numpy.array([corners]))], cube))
    assert mesh.blocks[0].elements.shape == (pieces, 8) and abs(volume(mesh) - size) < 1e-12


@pytest.mark.skipif(not os.path.isdir(REAL), reason="calculix-ccx-test is not installed (./setup companions)")
def test_meshes_of_others(tmp_path):
    """A segment of a disk that the authors of CalculiX meshed twice, by tetrahedra and by bricks of second order; and a bolt in its nut."""
    bricks = read_mesh(os.path.join(REAL, "segment.inp.gz"))
    for split in ("linear", "quadratic"):
        pieces = read_mesh(os.path.join(REAL, "segmenttet.inp.gz"), MeshOptions(split=split))
        assert abs(volume(pieces) / volume(bricks) - 1) < 5e-4 and len(pieces.blocks[0].elements) == 4 * 1489
        if split == "linear":
            outside, field = outer_nodes(pieces), pieces.points @ [1.3, -0.7, 0.4]
            assert patch_residual(pieces, outside) < 1e-13
            assert numpy.abs(run_steady(tmp_path, pieces, outside, field, gauss=5) - field).max() < 1e-10
    bolt = read_mesh(os.path.join(REAL, "thread.inp.gz"))
    assert {block.name for block in bolt.blocks} >= {"BOLT", "FLA", "NUT"}
