"""Mistakes in job files are told with key and line; units come out right."""
import os

import pytest
from support.small_meshes import write_bar, write_plate
from zurt.commands import deck
from zurt.deck.deck_building import build_deck
from zurt.deck.job_file import read_job
from zurt.deck.meshes import read_job_mesh
from zurt.deck.quantities import UnitFault, convert, parse_unit
from zurt.deck.toml_lines import find_lines
from zurt.errors import ZurtError
from zurt.mesh.reading import read_mesh

GOOD = """title = "Bar"
[units]
length = "um"
time = "s"
concentration = "mol/m3"
[time]
steps = [5, 5]
size = [0.1, 1.0]
[device]
mode = 1
nanochannel = 1
length = 6.0
depth = 1.0
width = 1.0
[functions]
short = [[0, 1], [2, 1]]
[[material]]
name = "gel"
diffusion = [[0, 1], [10, 2]]
[[group]]
mesh = "a"
material = "gel"
gauss = 2
[[group]]
mesh = "b"
[[held]]
plane = "x = max"
[initial]
value = 1.0
[[fibre_set]]
diameter = 0.2
points = [[1, 0, 0.5],
          [1, 1, 0.5]]
[fibre_set.table]
distances = ["1 nm", "50 nm"]
concentrations = [0]
factors = [[0.5], [1.0]]
"""

MISTAKES = [
    ("gauss = 2", "gaus = 2", "group[1].gaus: there is no such key; did you mean gauss?"),
    ("[time]\n", "[tme]\n", "tme: there is no such key; did you mean time?"),
    ("gauss = 2", "gauss = 7", "group[1].gauss: 7 is not among the values 1 to 5"),
    ("gauss = 2", "gauss = 2.0", "group[1].gauss: an integer is wanted, not 2.0"),
    ('mesh = "b"', 'mesh = "c"', "group[2].mesh: there is no group \"c\""),
    ('material = "gel"', 'material = "gell"', "group[1].material: there is no material \"gell\"; did you mean gel?"),
    ("plane = \"x = max\"", "plane = \"x = 7\"", "held[1].plane: no node lies in the plane x = 7"),
    ("plane = \"x = max\"", "group = \"endd\"", "held[1].group: the mesh has no group \"endd\"; did you mean end?"),
    ("size = [0.1, 1.0]", "size = [0.1]", "time.size: 2 periods in steps, 1 in size"),
    ("size = [0.1, 1.0]", "size = [0.1, \"1 m\"]", "time.size: \"1 m\" is no time: time is wanted"),
    ("size = [0.1, 1.0]", "size = [0.1, \"1 fortnight\"]", "time.size: there is no unit \"fortnight\""),
    ("value = 1.0", "value = 11.0", "material[1].diffusion: the start value, 11, lies outside the curve"),
    ("diffusion = [[0, 1], [10, 2]]", "diffusion = [[0, 1], [0, 2]]", "material[1].diffusion: the arguments of a table must rise"),
    ("gauss = 2", "source = \"short\"", "group[1].source: the table ends at the time 2; it must reach beyond the end of the run, 5.5"),
    ("gauss = 2", "source = \"shorter\"", "group[1].source: there is no table \"shorter\" in [functions]; did you mean short?"),
    ('distances = ["1 nm", "50 nm"]', "distances = [1e4, 5e4]", "fibre_set[1].table.distances: the distances run up to 5e+07 nm"),
    ("factors = [[0.5], [1.0]]", "factors = [[0.5]]", "fibre_set[1].table.factors: 2 rows of 1 factors are wanted"),
    ("length = 6.0", "length = \"6 m\"", "device.length: the box of the fibres is 6e+06 long and the mesh 6: one of them is in another unit"),
    ("diameter = 0.2", "", "fibre_set[1]: the key diameter is missing"),
    ("mode = 1", "mode = \"1\"", "device.mode: an integer is wanted, not '1'"),
    ('length = "um"\n', "", "units: the key length is missing"),
    ('title = "Bar"', 'title = "Bar', "no TOML:"),
    ("gauss = 2", "area = 0", "group[1].area: a value above 0 is wanted"),
    ("gauss = 2", "area = 1", "group[1].area: lines have an area, bricks have none"),
    ("gauss = 2", "axisymmetric = true", "group[1].axisymmetric: quadrilaterals and lines are turned about an axis"),
    ("gauss = 2\n[[group]]\nmesh = \"b\"", "gauss = 2\n[[group]]\nmesh = \"a\"", "group[2].mesh: the group \"a\" is in group[1] already"),
    ("mode = 1\nnanochannel = 1", "nanochannel = 1", "device.nanochannel: a nanochannel needs device.mode above 0"),
    ("plane = \"x = max\"", "factor = 2\nplane = \"x = max\"", "held[1].factor: a factor is that of a value"),
    ("value = 1.0", "value = \"1e99999999 M\"", "initial.value: \"1e99999999\" is no number that the program can take"),
    ("length = \"um\"", "length = \"um999\"", "units.length: \"um999\" is no unit"),
    ("[time]\n", "[mesh]\nscale = -1\n[time]\n", "mesh.scale: scale is a factor above 0"),
    ("[initial]", "[[surface]]\ngroup = \"end\"\nconvection = \"built-in\"\nenvironment = 1\n[initial]", "surface[1].convection: there is no table"),
    ("[initial]", "[[surface]]\ngroup = \"end\"\nflux = 1\n[[surface]]\ngroup = \"end\"\nflux = 2\n[initial]",
     "surface[2].group: 1 sides of \"end\" have other data"),
    ("[initial]", "[homogenization]\nmedium = true\nfit = true\ndirections = [\"x\"]\nfit_distance = true\n[initial]",
     "homogenization: the key curve_ends is missing"),
]


def deck_of(text, folder):
    """The BuiltDeck of a job text and the bar."""
    mesh, path = folder / "bar.msh", folder / "job.toml"
    if not mesh.exists():
        write_bar(mesh)
    path.write_text(text, encoding="utf-8")
    assert deck.main([str(mesh), str(path), "-f", "-o", str(folder / "job.dat")]) == 0
    return (folder / "job.dat").read_text(encoding="ascii")


@pytest.mark.parametrize("good, bad, message", MISTAKES)
def test_mistakes_name_key_and_line(good, bad, message, tmp_path):
    assert good in GOOD
    text = GOOD.replace(good, bad, 1)
    with pytest.raises(ZurtError) as found:
        deck_of(text, tmp_path)
    assert found.value.message.startswith(message), found.value.message
    if bad and "the start value" not in message and not message.startswith(("no TOML", "units")):
        line = text[:text.index(bad)].count("\n") + 1
        assert line <= found.value.line <= line + bad.count("\n")


def test_lengths_in_any_unit_make_one_deck(tmp_path):
    """A deck with correction tables is in micrometres and its distances in nanometres, whatever the job's unit."""
    plain = deck_of(GOOD, tmp_path)
    other = GOOD.replace('length = "um"', 'length = "mm"').replace("6.0", "6e-3").replace("depth = 1.0", "depth = 1e-3").replace(
        "width = 1.0", 'width = "1 um"').replace("diameter = 0.2", "diameter = 2e-4").replace("[[1, 0, 0.5],", "[[1e-3, 0, 5e-4],").replace(
        "[1, 1, 0.5]]", "[1e-3, 1e-3, 5e-4]]").replace('["1 nm", "50 nm"]', '[1e-6, "5e-8 m"]').replace(
        "diffusion = [[0, 1], [10, 2]]", 'diffusion = [[0, 1e-6], ["10 mM", "2 um2/s"]]') + "[mesh]\nscale = 1e-3\n"
    assert deck_of(other, tmp_path) == plain
    assert "       1.0      50.0" in plain


def test_units():
    micrometres = {"length": parse_unit("um"), "time": parse_unit("h"), "concentration": parse_unit("mol/l"), "capacity": parse_unit("1")}
    assert convert("1e-10 m2/s", "diffusion", micrometres, micrometres) == 360000.0
    assert convert("5 nm", "length", micrometres, micrometres) == 0.005
    assert convert("5 nm", "wall distance", micrometres, micrometres) == 5.0
    assert convert("1 mol m^-3 s^-1", "source", micrometres, micrometres) == 3.6
    with pytest.raises(UnitFault):
        convert("5 nm2", "length", micrometres, micrometres)
    with pytest.raises(UnitFault):
        convert("5 K", "capacity", micrometres, micrometres)


def test_lines_of_a_job():
    text = "a = 1\n[b]\nc = [\n 1, # ]\n 2]\nd = \"x\" # [e]\n[[f]]\n[[f.g]]\nh = 1\n[[f]]\ng = [{ h = 2 }]\n"
    lines = find_lines(text)
    assert (lines[("a",)], lines[("b", "d")], lines[("f", 0, "g", 0, "h")], lines[("f", 1)], lines[("f", 1, "g")]) == (1, 6, 9, 10, 11)


def test_numbers_beyond_their_columns_make_a_deck_free(tmp_path):
    """A fixed device deck whose numbers don't fit its columns becomes one of free cards, and is refused where fixed columns are asked for."""
    text = GOOD.replace("diameter = 0.2", "diameter = 0.20000000123456").replace("[units]", "[deck]\nrounding = 1e-9\n[units]")
    assert "1 1 1 0\n" in deck_of(text, tmp_path)
    with pytest.raises(ZurtError, match=r"Fibre set card, DIAM \(F10.6\): 0.20000000123456 becomes .200000001 in"):
        deck_of("format = \"fixed\"\n" + text, tmp_path)


def test_files_are_not_overwritten(tmp_path):
    deck_of(GOOD, tmp_path)
    with pytest.raises(ZurtError, match="--force overwrites it"):
        deck.main([str(tmp_path / "bar.msh"), str(tmp_path / "job.toml"), "-o", str(tmp_path / "job.dat")])


def test_renumbering_makes_the_store_small(tmp_path):
    """Nodes in a bad order: the band of a bar shrinks, and held nodes go with their places."""
    write_bar(tmp_path / "bar.msh")
    text = "title = \"t\"\n[[material]]\nname = \"m\"\ndiffusion = 1\n[[group]]\nmesh = [\"a\", \"b\"]\n[[held]]\nplane = \"x = 6\"\n"
    (tmp_path / "job.toml").write_text(text)
    job = read_job(os.fspath(tmp_path / "job.toml"))
    mesh = read_mesh(os.fspath(tmp_path / "bar.msh"))
    order = [(7 * i) % 28 + (7 * i) // 28 for i in range(28)]
    place = {row: i for i, row in enumerate(order)}
    mesh.points = mesh.points[order]
    for block in mesh.blocks:
        for row in block.elements:
            row[:] = [place[node] for node in row]
    mesh.node_sets = {}
    built = build_deck(job, [mesh])
    before, after = built.bands[0]
    assert after == 166 < before
    problem = built.problems[0]
    assert (problem.points[problem.indicator > 0][:, 0] == 6.0).all() and problem.indicator.sum() == 4


PLATE = """title = "Plate"
mesh.move = [0, -2, 0]
group = [{ mesh = "plate", axisymmetric = true }]
material = [{ name = "a", diffusion = 1 }]
held = [{ group = "edge", value = 2.0, factor = 1.5 }, { plane = "x = 0" }]
prescribed.constant = true
initial = { group = [{ plane = ["x = 0", "x = 1"], value = 0.5 }] }
"""


def test_a_radius_below_zero_and_held_constants(tmp_path):
    """y is the radius; held nodes without a value have 0 on their cards, whatever they start with."""
    write_plate(tmp_path / "plate.msh")
    built = []
    for text in (PLATE, PLATE.replace("-2", "-1")):
        (tmp_path / "job.toml").write_text(text)
        job = read_job(os.fspath(tmp_path / "job.toml"))
        mesh = read_job_mesh(job, job.problems[0], tmp_path / "plate.msh")[1]
        try:
            built.append(build_deck(job, [mesh]).problems[0])
        except ZurtError as error:
            assert error.message.startswith("group[1].axisymmetric: y is the radius, and goes down to -1: it is 0 or above")
    problem, = built
    held = problem.indicator > 0
    assert set(problem.value[held & (problem.points[:, 0] == 3.0)]) == {3.0} and set(problem.value[held & (problem.points[:, 0] == 0.0)]) == {0.0}
