"""Graphics files as VTU and XDMF: what comes out is held against the program's own VTU of the same run, read by meshio and by VTK."""
import os
import subprocess

import h5py
import meshio
import numpy
import pytest
import vtk
from vtk.util.numpy_support import vtk_to_numpy

from zurt.commands import convert
from zurt.errors import ZurtError
from zurt.program import TREE, find_program

DIGITS = 5.01e-5  # half of the last of five digits


def run_example(name, folder):
    deck = os.path.join(TREE, "examples", name, "zurt.dat")
    subprocess.run([find_program(), "--quiet", "--vtu", "--output", folder, deck], check=True, stderr=subprocess.DEVNULL)


def by_node(mesh, name):
    """Values at nodes 1, 2, ... of the mesh; the program's files have points that are no nodes (number 0)."""
    node = mesh.point_data["node"]
    rows = numpy.flatnonzero(node > 0)
    return mesh.point_data[name][rows[numpy.argsort(node[rows], kind="stable")]]


def same(values, exact):
    known = numpy.isfinite(exact) & numpy.isfinite(values)
    exact = numpy.where(numpy.abs(exact) < 1.0e-15, 0.0, exact)
    assert known.any() or not numpy.isfinite(exact).any()
    return (numpy.abs(values - exact)[known] <= DIGITS * numpy.abs(exact[known]) + 1.0e-14).all()


def cell_sizes(path):
    """Volumes, areas and lengths of all cells by VTK: an element with its nodes in a wrong order has another one."""
    reader = vtk.vtkXMLUnstructuredGridReader()
    reader.SetFileName(path)
    reader.Update()
    assert reader.GetOutput().GetNumberOfCells() > 0
    sizes = vtk.vtkCellSizeFilter()
    sizes.SetInputConnection(reader.GetOutputPort())
    sizes.ComputeVertexCountOff()
    sizes.Update()
    data = sizes.GetOutput().GetCellData()
    return numpy.array([vtk_to_numpy(data.GetArray(name)).sum() for name in ("Length", "Area", "Volume")])


@pytest.mark.parametrize("example, cells", [("brick20", "hexahedron20"), ("device", "hexahedron"), ("ring", "quad"),
                                            ("fibre_box", "hexahedron")])
def test_equals_the_programs_own_files(tmp_path, example, cells):
    run_example(example, tmp_path / "own")
    convert.main(["-o", str(tmp_path / "made"), str(tmp_path / "own" / "zurt.unv")])
    own = sorted(name for name in os.listdir(tmp_path / "own") if name.endswith(".vtu"))
    made = sorted(name for name in os.listdir(tmp_path / "made") if name.endswith(".vtu"))
    assert len(made) == len(own)
    for mine, theirs in ((made[0], own[0]), (made[-1], own[-1])):
        a, b = meshio.read(tmp_path / "made" / mine), meshio.read(tmp_path / "own" / theirs)
        assert cells in a.cells_dict
        rows = numpy.flatnonzero(b.point_data["node"] > 0)
        assert numpy.allclose(a.points, b.points[rows], rtol=DIGITS, atol=1.0e-12)
        for name in ("concentration", "flux", "coefficient", "mass_flux"):
            assert (name in a.point_data) == (name in b.point_data)
            assert name not in a.point_data or same(by_node(a, name), by_node(b, name))
        assert numpy.isclose(a.field_data["TimeValue"][0], b.field_data["TimeValue"][0], rtol=DIGITS)
        assert numpy.allclose(cell_sizes(str(tmp_path / "made" / mine)), cell_sizes(str(tmp_path / "own" / theirs)), rtol=1.0e-3)
    convert.main(["--xdmf", "-o", str(tmp_path / "made"), str(tmp_path / "own" / "zurt.unv")])
    with meshio.xdmf.TimeSeriesReader(tmp_path / "made" / "zurt.xdmf") as series:
        points, blocks = series.read_points_cells()
        steps = [series.read_data(k) for k in range(series.num_steps)]
    assert (points == a.points).all() and meshio.Mesh(points, blocks).cells_dict.keys() == a.cells_dict.keys()
    assert all((rows == a.cells_dict[kind]).all() for kind, rows in meshio.Mesh(points, blocks).cells_dict.items())
    assert len(steps) == len(made) and steps[-1][0] == a.field_data["TimeValue"][0] and steps[-1][1].keys() == a.point_data.keys()
    assert all(numpy.array_equal(values, a.point_data[name], equal_nan=True) for name, values in steps[-1][1].items())
    assert all(numpy.array_equal(numpy.concatenate(values), numpy.concatenate(a.cell_data[name])) for name, values in steps[-1][2].items())


def test_problems_fibres_and_damaged_files(tmp_path):
    run_example("two_problems", tmp_path / "own")
    graphics = tmp_path / "own" / "zurt.unv"
    convert.main(["-o", str(tmp_path / "made"), str(graphics)])
    assert {"zurt.pvd", "zurt-p2.pvd"} <= set(os.listdir(tmp_path / "made"))
    own, made = (meshio.read(tmp_path / folder / name) for folder, name in (("own", "zurt-p2-0001.vtu"), ("made", "zurt-p2-0001.vtu")))
    assert same(by_node(made, "concentration"), by_node(own, "concentration"))
    with pytest.raises(ZurtError, match="--force"):
        convert.main(["-o", str(tmp_path / "made"), str(graphics)])

    run_example("drug_release", tmp_path / "radial")
    convert.main(["-o", str(tmp_path / "inner"), "--last", str(tmp_path / "radial" / "zurt.unv")])
    own = sorted((tmp_path / "radial").glob("zurt-0*.vtu"))[-1]
    made = meshio.read(next((tmp_path / "inner").glob("*.vtu")))
    assert "vertex" in made.cells_dict
    assert same(by_node(made, "concentration"), by_node(meshio.read(own), "concentration"))

    cut = tmp_path / "cut.unv"
    cut.write_bytes(graphics.read_bytes()[:-400])  # a run that was killed while it wrote
    convert.main(["-o", str(tmp_path / "made"), str(cut)])
    (tmp_path / "no.unv").write_text("C a deck\n")
    with pytest.raises(ZurtError, match="universal"):
        convert.main([str(tmp_path / "no.unv")])


def test_elements_with_middles(tmp_path):
    ring = [(0, 0), (2, 0), (4, 0), (4, 1), (4, 2), (2, 2), (0, 2), (0, 1)]  # corners and middles of a side in turn, as the file has them
    nodes = "".join(f"{i + 1:10d}         0         0         8{x:13.5E}{y:13.5E}{0:13.5E}\n" for i, (x, y) in enumerate(ring))
    elements = "".join(f"{label:10d}{kind:10d}{kind:10d}         1         1         7{len(row):10d}\n" + "".join(f"{n:10d}" for n in row) + "\n"
                       for label, kind, row in ((1, 45, range(1, 9)), (2, 24, (1, 2, 3)), (3, 21, (3, 5))))
    graphics = tmp_path / "sheet.unv"
    graphics.write_text("    -1\n    15\n" + nodes + "    -1\n    -1\n    71\n" + elements + "    -1\n")
    convert.main(["-o", str(tmp_path), str(graphics)])
    mesh = meshio.read(tmp_path / "sheet-mesh.vtu")
    assert {kind: len(rows) for kind, rows in mesh.cells_dict.items()} == {"quad8": 1, "line3": 1, "line": 1}
    assert mesh.cells_dict["quad8"].tolist() == [[0, 2, 4, 6, 1, 3, 5, 7]] and mesh.cells_dict["line3"].tolist() == [[0, 2, 1]]
    assert numpy.allclose(cell_sizes(str(tmp_path / "sheet-mesh.vtu")), [6.0, 8.0, 0.0])
    convert.main(["--xdmf", "-o", str(tmp_path), str(graphics)])
    with h5py.File(tmp_path / "sheet-mesh.h5") as store:  # kinds by their numbers in XDMF, the count of a line's nodes behind its own
        assert store["mesh/cells"][()].tolist() == [0x25, 0, 2, 4, 6, 1, 3, 5, 7, 0x22, 0, 2, 1, 2, 2, 2, 4]
    for options, message in ((["-o", str(tmp_path)], "--force"), (["--xdmf", "-o", str(tmp_path)], "--force"), ([str(graphics)], "have the names")):
        with pytest.raises(ZurtError, match=message):
            convert.main([*options, str(graphics)])
