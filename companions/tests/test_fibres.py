"""Sets of fibres: closed forms for laws and fractions, no overlap by another way of measuring it, and what the program makes of the cards."""
import re
import subprocess

import numpy
import pytest
import tifffile
import vtk
from vtk.util.numpy_support import numpy_to_vtk

from zurt.commands import fibres as command
from zurt.errors import ZurtError
from zurt.fibres import geometry, orientation, placement, volume
from zurt.fibres.model import BALLS, LINES, Fibres
from zurt.fibres.recipe import read_recipe
from zurt.fibres.table_file import read_table
from zurt.program import find_program

CORNERS = [(1, 1, 1), (0, 1, 1), (0, 0, 1), (1, 0, 1), (1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]


def make(folder, text, name="made"):
    """(printed numbers of the run by their label, Fibres of the CSV file) of a recipe."""
    path = folder / f"{name}.toml"
    path.write_text(text)
    command.main(["random", str(path), "-o", str(folder / name), "--picture", str(folder / f"{name}.png")])
    box = numpy.array([1.0, 1.0, 0.0 if "box = [1.0, 1.0]" in text else 1.0])
    return read_table(folder / f"{name}.csv", 1.0, box)


def printed(capsys):
    """(volume fraction, as the program sees it, orientation tensor or None)."""
    text = capsys.readouterr().out
    values = [float(value) for value in re.findall(r"fraction[^:]*: ([\d.]+)", text)]
    tensor = re.search(r"by length\): (.*)", text)
    return values[0], values[1], tensor and numpy.array([row.split() for row in tensor[1].split(";")], float)


def porosity(folder, cards, plane=False, n=14, free=False):
    """Porosity that zurt prints for a box of 1 meshed by n elements a side, under these cards. free: they are in free format."""
    count, layers = n + 1, 1 if plane else n + 1
    lines = ["Box of fibres", "2 1 1 2", f"{1.0:10.4f}{1.0:10.4f}{0.0 if plane else 1.0:10.4f}", ""]
    lines += [f"{count * count * layers:10d}    1    1    0    1   -1    0   -1    0   -1    0", "    1    0    0    2       0.0      1e-3    1    0", "    1"]
    for k in range(layers):
        for j in range(count):
            for i in range(count):
                number = (k * count + j) * count + i + 1
                lines.append(f"{number:10d}{int(i in (0, n)):5d}     {i / n:15.8f}{j / n:15.8f}{k / n:15.8f}{0.0:15.1f}    0")
    lines += [f"{re.search('NSETS ([0-9]+)', cards)[1]:>5s}", "", None]
    elements, width = n**2 * (1 if plane else n), 5 if plane else 3
    lines += [f"{2 if plane else 3:5d}{elements:10d}    0    0    0    0", "    1     " + ("    4    0    0    3    3" if plane else "    8    0    0    3    3    3")]
    corners = [corner for corner in CORNERS if corner[2] == 0] if plane else CORNERS
    for e in range(elements):
        i, j, k = e % n, e // n % n, e // n**2
        nodes = [((k + c) * count + j + b) * count + i + a + 1 for a, b, c in corners]
        lines.append("".join(f"{number:8d}" for number in [e + 1, *nodes]) + f"{0:{width}d}" * 6)
    lines += ["    2", "    1    2", f"{0.0:20.6f}{1.0:20.6f}", f"{1000.0:20.6f}{1.0:20.6f}", "    1    1", "     1.000", "     1.000", "    1.0000",
              "    1", "  1.00000E+00", "    0    0    0", "    1" + "    0" * 10, "       0.0", "STOP"]
    if free:  # a slash leaves the rest of a card 0
        lines = [*lines[:1], "1 1 1 2", *(None if line is None else line + " /" for line in lines[2:-1]), "STOP"]
    (folder / "box.dat").write_text("\n".join(cards.rstrip("\n") if line is None else line for line in lines) + "\n")
    run = subprocess.run([find_program(), *(["--free"] if free else []), "-q", "-f", "-o", folder / "run", folder / "box.dat"], capture_output=True, text=True)
    assert run.returncode == 0, run.stderr
    return float((folder / "run" / "MASS-X.LST").read_text().split("\n")[1].split()[1].replace("D", "E"))


def least_gap(fibres, period):
    """Smallest distance of two fibres' walls, by points along the axes, a twentieth of a diameter apart: no closed form of two segments."""
    from scipy.spatial import cKDTree
    steps = numpy.linspace(0.0, 1.0, 1 + int(20.0 * numpy.linalg.norm(fibres.ends - fibres.starts, axis=1).max() / fibres.diameters.min()))
    points = fibres.starts[:, None] + steps[:, None] * (fibres.ends - fibres.starts)[:, None]
    owner = numpy.repeat(numpy.arange(len(points)), len(steps))
    points = points.reshape(-1, 3)
    tree = cKDTree(points % 1.0 if period else points, boxsize=[1.0, 1.0, 1.0] if period else None)
    pairs = tree.query_pairs(1.2 * fibres.diameters.max(), output_type="ndarray")
    pairs = pairs[owner[pairs[:, 0]] != owner[pairs[:, 1]]]
    way = points[pairs[:, 0]] - points[pairs[:, 1]]
    way -= numpy.round(way) * period
    return (numpy.linalg.norm(way, axis=1) - 0.5 * fibres.diameters[owner[pairs]].sum(axis=1)).min()


# --- laws and fractions -------------------------------------------------------------------------------------------------

@pytest.mark.parametrize("values", [(1 / 3, 1 / 3, 1 / 3), (0.6, 0.3, 0.1), (0.96, 0.03, 0.01), (0.7, 0.3, 0.0), (1.0, 0.0, 0.0)])
def test_directions_have_the_tensor(values):
    axes = numpy.linalg.qr(numpy.random.default_rng(2).standard_normal((3, 3)))[0]
    tensor = axes * values @ axes.T
    p = orientation.draw_directions(numpy.random.default_rng(1), tensor, 200_000)
    assert numpy.allclose(numpy.linalg.norm(p, axis=1), 1.0)
    assert numpy.abs(orientation.mean_tensor(p, numpy.ones(len(p))) - tensor).max() < 0.004
    few = orientation.match_tensor(p[:40], numpy.ones(40), tensor)
    assert values[2] < 0.05 or numpy.abs(orientation.mean_tensor(few, numpy.ones(40)) - tensor).max() < 1.0e-9


def test_fractions_of_known_bodies():
    def lines(starts, ends, d, box=(1.0, 1.0, 1.0)):
        return Fibres(numpy.array(starts, float), numpy.array(ends, float), numpy.array(d), LINES, numpy.array(box))

    crossed = lines([(0, 0.5, 0.5), (0.5, 0, 0.5)], [(1, 0.5, 0.5), (0.5, 1, 0.5)], [0.4, 0.4])  # common volume of two cylinders: 16 r^3 / 3
    short = lines([(0.3, 0.5, 0.5)], [(0.7, 0.5, 0.5)], [0.2])
    ball = Fibres(numpy.array([(0.0, 0.0, 0.0)]), numpy.array([(0.0, 0.0, 0.0)]), numpy.array([1.0]), BALLS, numpy.ones(3))
    for fibres, exact in ((crossed, 2 * numpy.pi * 0.04 - 16 / 3 * 0.008), (short, 0.4 * numpy.pi * 0.01), (ball, numpy.pi / 48)):
        found = volume.volume_fraction(fibres)
        assert abs(found.value - exact) < max(5.0 * found.error, 1.0e-5) and found.error < 5.0e-4
    assert abs(volume.fraction_as_seen(crossed).value - (2 * numpy.pi * 0.04 - 16 / 3 * 0.008)) < 1.0e-3
    # Where a thin axis is the nearest, the program takes the thick fibre around it for fluid.
    thick_and_thin = lines([(0, 0.5, 0.5), (0, 0.56, 0.5)], [(1, 0.5, 0.5), (1, 0.56, 0.5)], [0.2, 0.02])
    assert volume.fraction_as_seen(thick_and_thin).value < 0.75 * volume.volume_fraction(thick_and_thin).value


# --- generated sets, in the program -------------------------------------------------------------------------------------

PERIODIC = """
box = [1.0, 1.0, 1.0]
seed = 7
length = 0.8
volume_fraction = 0.12
periodic = true
diameter = 0.08
orientation.eigenvalues = [0.6, 0.3, 0.1]
"""


def test_periodic_hard_core(tmp_path, capsys):
    fibres = make(tmp_path, PERIODIC)
    reached, seen, tensor = printed(capsys)
    one = numpy.pi * 0.0016 * 0.8
    assert abs(reached - 0.12) <= 0.5 * one + 1e-5 and abs(reached - len(fibres.diameters) * one) < 1e-5
    assert least_gap(fibres, True) > -1.0e-6
    assert numpy.abs(tensor - numpy.diag([0.6, 0.3, 0.1])).max() < 0.06
    assert (tmp_path / "made.png").stat().st_size > 10_000
    cards = (tmp_path / "made.cards").read_text()
    assert abs(1.0 - porosity(tmp_path, cards) - seen) < 0.003
    make(tmp_path, PERIODIC, "again")
    assert (tmp_path / "again.cards").read_text() == cards
    make(tmp_path, PERIODIC + 'cards.format = "free"\n', "free")
    assert porosity(tmp_path, (tmp_path / "free.cards").read_text(), free=True) == porosity(tmp_path, cards)


def test_cut_lognormal_fibres(tmp_path, capsys, monkeypatch):
    text = ('box = [1.0, 1.0, 1.0]\nlength = "through"\nvolume_fraction = 0.1\n[diameter]\ndistribution = "lognormal"\nmean = 0.09\ndeviation = 0.03\n')
    fibres = make(tmp_path, text)
    reached, seen, _ = printed(capsys)
    assert abs(reached - 0.1) < 0.005 and seen < reached
    assert abs(1.0 - porosity(tmp_path, (tmp_path / "made.cards").read_text()) - seen) < 0.003
    assert 0.07 < fibres.diameters.mean() < 0.11 and len(numpy.unique(fibres.diameters)) == 8
    command.main(["from-csv", str(tmp_path / "made.csv"), "--box", "1", "1", "1", "-o", str(tmp_path / "again")])
    assert (tmp_path / "again.cards").read_text() == (tmp_path / "made.cards").read_text()
    monkeypatch.setattr(placement, "MANY", 0)  # the search of large sets finds the same pairs, also in parts
    monkeypatch.setattr(geometry, "AT_ONCE", 1000)
    monkeypatch.setattr(placement, "AT_ONCE", 1000)
    make(tmp_path, text, "kept")
    assert (tmp_path / "kept.cards").read_text() == (tmp_path / "made.cards").read_text()


def test_overlapping_and_margin(tmp_path, capsys):
    text = 'box = [1.0, 1.0, 1.0]\nlength = 1.5\nvolume_fraction = 0.3\noverlap = true\nmargin = 0.06\ndiameter = 0.12\n'
    make(tmp_path, text)
    reached, seen, tensor = printed(capsys)
    assert abs(reached - 0.3) < 0.005 and abs(seen - reached) < 0.004  # with the margin nothing is lost at the faces
    assert numpy.abs(tensor - numpy.eye(3) / 3).max() < 0.08
    assert "ELFIB, DFIB, WFIB: 1.12 1.12 1.12" in (tmp_path / "made.cards").read_text()


def test_circles_in_the_plane(tmp_path, capsys):
    make(tmp_path, 'box = [1.0, 1.0]\nshape = "circles"\nvolume_fraction = 0.55\nperiodic = true\ngap = 0.005\ndiameter = 0.1\n')
    reached, seen, _ = printed(capsys)
    assert abs(reached - 0.55) < 0.005 and abs(seen - reached) < 0.003
    assert abs(1.0 - porosity(tmp_path, (tmp_path / "made.cards").read_text(), plane=True, n=50) - seen) < 0.004


def test_periodic_fibres_that_meet_themselves(tmp_path, capsys):
    """As long as the box and along it they go on without end; longer ones would fill some places twice."""
    text = PERIODIC.replace("0.6, 0.3, 0.1", "1.0, 0.0, 0.0").replace("volume_fraction = 0.12", "number = 9")
    make(tmp_path, text.replace("length = 0.8", "length = 1.0"))
    assert abs(printed(capsys)[0] - 9 * numpy.pi * 0.0016) < 1.0e-5
    with pytest.raises(ZurtError, match="9 fibres do not fit without overlap: 0 fibres"):
        make(tmp_path, text.replace("length = 0.8", "length = 1.3"))


def test_faults(tmp_path, monkeypatch):
    monkeypatch.setattr(placement, "SWEEPS", 30)
    for change, message in ((("volume_fraction = 0.12", "volume_fraction = 0.6"), r"can't be reached without overlap: \d+ fibres"),
                            (("diameter", "diametre"), "did you mean diameter"), (("0.1]", "0.5]"), "trace 1"),
                            (("seed = 7", "seed = -7"), "seed"), (("length = 0.8", 'length = "through"'), "periodic"),
                            (("orientation.eigenvalues", "orientation"), "a table with keys"), (("seed = 7", "seed = 7\ncards = 3"), "a table with keys"),
                            (("volume_fraction = 0.12", "volume_fraction = 1e-9"), "less than half a fibre"),
                            (("seed = 7", "cards.correction = {distances = [2, 1], concentrations = [1], factors = [[1], [1]]}"), "above the one before")):
        with pytest.raises(ZurtError, match=message):
            make(tmp_path, PERIODIC.replace(*change).replace("diameter = 0.08", "diameter = 0.16"))
    with pytest.raises(ZurtError, match="volume_fraction or number"):
        (tmp_path / "a.toml").write_text("box = [1.0, 1.0, 1.0]\nlength = 1.0\ndiameter = 0.1\n")
        read_recipe(tmp_path / "a.toml")
    (tmp_path / "a.csv").write_text("x1,y1,z1,x2,y2,z2,diameter\n0,0,0,1,1,1,0.1\n0,0,0,0,0,0,0.1\n")
    with pytest.raises(ZurtError, match="both ends") as caught:
        read_table(tmp_path / "a.csv", 1.0, numpy.ones(3))
    assert caught.value.line == 3


# --- images -------------------------------------------------------------------------------------------------------------

def write_vti(path, mask, voxel):
    """The mask as values of cells, by VTK's own writer."""
    image, writer = vtk.vtkImageData(), vtk.vtkXMLImageDataWriter()
    image.SetDimensions(*(size + 1 for size in mask.shape))
    image.SetSpacing(voxel, voxel, voxel)
    image.GetCellData().SetScalars(numpy_to_vtk(mask.ravel(order="F").astype(numpy.uint8), deep=True))
    writer.SetFileName(str(path))
    writer.SetInputData(image)
    assert writer.Write()


def test_fibres_of_a_drawn_stack(tmp_path):
    size, voxel = 70, 0.05
    true = [((0, 20, 15), (70, 30, 25), 8.0), ((35, 0, 45), (30, 70, 40), 10.0), ((10, 60, 0), (60, 50, 70), 6.0), ((12, 15, 55), (52, 18, 60), 7.0)]
    points = numpy.stack(numpy.indices((size,) * 3), -1) + 0.5
    mask = numpy.zeros((size,) * 3, bool)
    for start, end, d in true:
        way = numpy.subtract(end, start)
        length = numpy.linalg.norm(way)
        along = (points - start) @ way / length
        across = numpy.linalg.norm(points - start - along[..., None] * way / length, axis=-1)
        mask |= (across < 0.5 * d) & (along > 0) & (along < length)
    tifffile.imwrite(tmp_path / "scan.tif", mask.T.astype(numpy.uint8))
    command.main(["from-image", str(tmp_path / "scan.tif"), "--voxel", str(voxel), "-o", str(tmp_path / "scan")])
    write_vti(tmp_path / "image.vti", mask, voxel)
    command.main(["from-image", str(tmp_path / "image.vti"), "-o", str(tmp_path / "image")])
    assert (tmp_path / "image.csv").read_text() == (tmp_path / "scan.csv").read_text()
    found = read_table(tmp_path / "scan.csv", 1.0 / voxel, numpy.full(3, float(size)))
    assert len(found.diameters) == len(true)
    for start, end, d in true:
        way = numpy.subtract(end, start) / numpy.linalg.norm(numpy.subtract(end, start))
        middle, axis = 0.5 * (found.starts + found.ends), found.ends - found.starts
        off = numpy.linalg.norm(numpy.cross(middle - start, way), axis=1)
        k = int(off.argmin())
        length = numpy.linalg.norm(axis[k])
        assert off[k] < 0.7 and abs(axis[k] @ way) / length > numpy.cos(numpy.radians(1.5))
        assert abs(found.diameters[k] - d) < 1.0 and abs(length - numpy.linalg.norm(numpy.subtract(end, start))) < 5.0
