"""Pages: what they say, and that a browser shows them."""
import base64
import os
import re
import shutil
import subprocess
from html import escape
from html.parser import HTMLParser

import meshio
import numpy
import pytest
from example_runs import example_run, example_text

import zurt
from zurt.commands import deck, report
from zurt.report import charts, fields, gather, pictures, render
from zurt.report.fibre_run import direct_deck, single_fit
from zurt.report.fit_story import compare_flows, read_searches

VOID = {"meta", "img", "br", "line", "polyline", "circle", "polygon"}


class Page(HTMLParser):
    """Text, images and drawings of a page; unclosed tags are an error."""

    def __init__(self, text):
        super().__init__()
        self.open, self.words, self.images, self.drawings = [], [], [], []
        self.feed(text)
        assert self.open == []

    def handle_starttag(self, tag, attributes):
        found = dict(attributes)
        assert tag != "script" and not any(str(found.get(key, "")).startswith(("http", "//", "file")) for key in ("src", "href"))
        self.images += [found] if tag == "img" else []
        self.drawings += [found] if tag == "svg" else []
        self.open += [tag] if tag not in VOID else []

    def handle_startendtag(self, tag, attributes):
        pass

    def handle_endtag(self, tag):
        assert self.open.pop() == tag

    def handle_data(self, data):
        self.words.append(data.strip())


def test_page_of_a_fit_tells_its_story(tmp_path):
    run = example_run("homogenization")
    path = tmp_path / "fit.html"
    assert report.main([run.folder, "--solve-fibres", "--output", str(path)]) == 0
    page = Page(path.read_text())
    fitted = run.masses["X"][0].fitted
    words = " ".join(page.words)
    assert charts.tidy(fitted["D1D"], 5) in page.words and charts.tidy(fitted["HEQ"], 5) in page.words
    assert "Cylinders between two reservoirs" in page.words and "16 runs of the medium" in words and "Flows of both models" in page.words
    assert all(image["alt"] and base64.b64decode(image["src"].split(",")[1]).startswith(b"\x89PNG") for image in page.images) and page.images
    assert all(drawing["aria-label"] for drawing in page.drawings) and len(page.drawings) >= 10
    curve = read_searches(run)[0]
    assert curve.values[-1] == pytest.approx(fitted["D1D"], rel=1e-4)
    assert (curve.brackets[-1].min() <= curve.values[-1]) and (curve.brackets[-1].max() >= curve.values[-1])


TWO_DIRECTIONS = """
title = "Two directions"
units.length = "um"
device = { mode = 3, nanochannel = 3, length = 1.0, depth = 1.0, width = 0.25 }
material = [{ name = "fluid", diffusion = [[0.0, 1.0], [10.0, 1.0]] }]
group = [{ gauss = 2, part = [{ mesh = ["left", "below", "cell"], material = "fluid" }] }]
initial.group = [{ group = "left", value = 1.0 }, { group = "below", value = 0.7 }]
time = { steps = 6, size = 0.05 }
iteration = { largest = 40, relative = 1e-8, absolute = 1e-8 }
homogenization = { medium = true, fit = true, directions = ["x", "y"], fit_curve = true, fit_distance = true }
[[fibre_set]]
diameter = 0.5
length = 0.25
wall_cut = 0.5
points = [[0.5, 0.5, 0.0], [0.5, 0.5, 0.25]]
diameters = [0.5]
table = { distances = ["0.1 nm", "100 nm", "300 nm"], concentrations = [1.0], factors = [[0.3], [0.7], [1.0]] }
"""


def test_page_of_a_fit_of_two_directions(tmp_path):
    """The flows along each direction are those of its own run: masses agree to the tolerance of the fit, 1e-4, along both."""
    n, h = 12, 0.25
    k, j, i = (each.ravel() for each in numpy.indices((1, n, n)))
    node = lambda a, b, c: ((k + c) * (n + 1) + j + b) * (n + 1) + i + a
    cells = numpy.column_stack([node(a, b, c) for c in (0, 1) for a, b in ((0, 0), (1, 0), (1, 1), (0, 1))])
    points = numpy.array([(-1 + h * x, -1 + h * y, h * z) for z in range(2) for y in range(n + 1) for x in range(n + 1)])
    tags = numpy.where(i < 4, 1, numpy.where(j < 4, 2, 3))
    names = {name: numpy.array([tag, 3]) for tag, name in enumerate(("left", "below", "cell"), 1)}
    meshio.write(tmp_path / "box.msh", meshio.Mesh(points, [("hexahedron", cells)], field_data=names,
                                                   cell_data={"gmsh:physical": [tags], "gmsh:geometrical": [tags]}), "gmsh22", binary=False)
    (tmp_path / "fit.toml").write_text(TWO_DIRECTIONS)
    assert deck.main([str(tmp_path / "box.msh"), str(tmp_path / "fit.toml"), "-o", str(tmp_path / "fit.dat")]) == 0
    run = zurt.run(tmp_path / "fit.dat", tmp_path / "out")
    assert report.main([run.folder, "--solve-fibres", "--no-pictures"]) == 0
    page = Page((tmp_path / "out" / "report.html").read_text())
    for axis in "xy":
        share = page.words[page.words.index(f"Mass along {axis}") + 1]
        assert abs(float(share.split()[0].replace("−", "-"))) <= 0.011 and run.masses[axis.upper()][0].fitted["D1D"] < 1.0
    assert page.words.count("Flows of both models") == 2 and (tmp_path / "out" / "fibres-y").is_dir()
    before = os.path.getmtime(tmp_path / "out" / "medium-x" / "zurt.lst")
    assert report.main([run.folder, "--solve-fibres", "--no-pictures"]) == 0 and os.path.getmtime(tmp_path / "out" / "medium-x" / "zurt.lst") == before


def test_flows_of_both_models():
    flows = compare_flows([1.0, 3.0], [2.0, 1.0], [2.2, 0.9])
    assert flows.difference == pytest.approx([0.1, -0.1]) and flows.passed == pytest.approx(0.0)
    lines = direct_deck(example_text("homogenization").splitlines(keepends=True), "Y")
    header = zurt.results.deck_header.read_deck_header(lines)
    assert header["IDIRECTD"] == 1 and header["NP"] == 754 and header["IGRAF"] == 1000
    header = zurt.results.deck_header.read_homogenization(single_fit(example_text("homogenization").splitlines(keepends=True), "Z"))
    assert [header[name] for name in ("NFIT", "INDFITX", "INDFITY", "INDFITZ", "INDDEG", "NFITMAX")] == [1, 0, 0, 1, 3, 40]


@pytest.mark.parametrize("name", ["two_problems", "membrane", "line_network", "drug_release"])
def test_pages_without_pictures(name):
    run = example_run(name)
    page = Page(render.render_run(gather.gather_run(run, False)))
    assert run.graphics[0].title in page.words and "finished" in page.words
    assert ("Problem 2: " + run.graphics[-1].title in page.words) == (name == "two_problems")
    assert ("node 41" in page.words) == (name == "membrane")


def test_comparison_and_runs_that_stopped(tmp_path):
    text = example_text("first")
    finer = text.replace("25 25 25 25", "50 50 50 50").replace("0.002 0.002 0.004 0.012", "0.001 0.001 0.002 0.006")
    other = tmp_path / "finer <b> & blanks"  # a name that must not become part of the page
    zurt.run(finer, other)
    both = [example_run("first").folder, str(other)]
    assert report.main(["--compare", *both, "--no-pictures", "--output", str(tmp_path / "c.html")]) == 0
    page = Page((tmp_path / "c.html").read_text())
    assert "+100 %" in page.words and any("root mean square" in words for words in page.words) and any(other.name in words for words in page.words)
    assert "%" not in page.words[page.words.index("Largest balance error") + 3]  # residues
    bad = zurt.run(text.replace("1 0 0 20 ", "1 0 0 x ", 1), tmp_path / "bad", check=False)
    page = Page(render.render_run(gather.gather_run(bad)))
    assert "stopped" in page.words and any("an integer is expected" in words for words in page.words)
    for arguments in (["--compare", "a"], [], [str(tmp_path / "none")], [str(other), "--console", "none"], [str(other), "--solve-fibres"],
                      ["--compare", *both, "--deck", "none"]):
        with pytest.raises(zurt.ZurtError):
            report.main(arguments)


def test_spoilt_files_are_errors_in_words(tmp_path):
    """Every file of a run cut, or with bytes changed: a page, or a ZurtError, nothing else."""
    random, said = numpy.random.default_rng(1), 0
    for k in range(30):
        folder = tmp_path / str(k)
        shutil.copytree(example_run(("homogenization", "two_problems")[k % 2]).folder, folder, ignore=shutil.ignore_patterns("fibres", "ZITEMP"))
        victims = sorted(path for path in folder.iterdir() if path.stat().st_size > 0)
        victim = victims[random.integers(len(victims))]
        text = bytearray(victim.read_bytes())
        if k % 3 == 0:
            del text[random.integers(len(text)):]
        else:
            for at in random.integers(len(text), size=5):
                text[at] = b"0123 -+.EDx*\n\xff"[random.integers(14)]
        victim.write_bytes(text)
        try:
            render.render_run(gather.gather_run(zurt.read(folder), False))
        except zurt.ZurtError as error:
            said += bool(error.message)
    assert 3 < said < 25


def test_pages_of_runs_that_were_killed(tmp_path):
    """Every file as a signal half way may leave it, nothing kept beside; a field without numbers; a fit without a result."""
    folder = tmp_path / "killed"
    folder.mkdir()
    listing = open(example_run("first").files.listing, "rb").read()
    for share in (0.5, 0.7, 0.9, 0.99):
        (folder / "zurt.lst").write_bytes(listing[:int(share * len(listing))])
        page = Page(render.render_run(gather.gather_run(zurt.read(folder))))
        assert "not complete: the listing has no END OF JOB" in page.words and "Where it stopped" not in page.words
    run = example_run("first")
    place = run.graphics[0].places[-1]
    offset, length = place.datasets["concentration"]
    text = open(run.files.graphics, "rb").read()
    lost = re.sub(rb"\n.{13}(?=\n|$)", b"\n          NaN", text[offset:offset + length])
    (folder / "zurt.unv").write_bytes(text[:offset] + lost + text[offset + length:])
    page = Page(render.render_run(gather.gather_run(zurt.read(folder))))
    assert "Nodes without a number" in page.words and "260 of 260" in page.words
    begun = tmp_path / "begun"
    shutil.copytree(example_run("homogenization").folder, begun, ignore=shutil.ignore_patterns("fibres", "*.pvd", "*.vt?", "run.json"))
    (begun / "MASS-X.LST").write_text("")
    (begun / "console.txt").write_text("".join(open(begun / "console.txt").readlines()[:60]))
    page = Page(render.render_run(gather.gather_run(zurt.read(begun), False)))
    assert "not ended" in page.words and any(words.startswith("Search for the diffusion curve") for words in page.words)


def test_peaks_of_long_curves_are_drawn():
    values = numpy.zeros(100_000)
    values[[12_345, 67_890]] = 1.0, -2.0
    values[50_000] = numpy.nan
    kept = charts._telling_points(values)
    assert {0, 12_345, 67_890, 99_999} <= set(kept) and len(kept) < 600
    chart = charts.line_chart("a", [charts.Curve("b", numpy.arange(4.0), numpy.array([1e-320, 1e300, numpy.inf, 5.0]))], "x", "y", True)
    assert "nan" not in chart.svg and "inf" not in chart.svg


def test_profile_of_a_known_field():
    """Means, lowest and highest of planes and of slices; the part of a channel between long reservoirs."""
    x = numpy.concatenate([[-40.0], numpy.linspace(0.0, 2.0, 21), [42.0]])
    points = numpy.array([(a, b, 0.0) for a in x for b in (0.0, 1.0)])
    values = points[:, 0] + points[:, 1]
    step = fields.Fields(0.0, points, [], values, numpy.ones(len(points), bool), {}, None, "")
    assert fields.dense_part(points, 0) == (0.0, 2.0) and fields.dense_part(points, 1) is None
    line = fields.profile(step, values, 0, (0.0, 2.0))
    assert numpy.allclose(line.at, x[1:-1]) and numpy.allclose(line.mean, line.at + 0.5) and numpy.allclose(line.high - line.low, 1.0)
    points = numpy.random.default_rng(3).random((200, 3))
    step = fields.Fields(0.0, points, [], points[:, 1], numpy.ones(200, bool), {}, None, "")
    line = fields.profile(step, points[:, 1] ** 2, 0)
    assert not line.planes and 5 <= len(line.at) < 20 and numpy.abs(line.mean - 1 / 3).max() < 0.25


def test_pictures_without_a_display(monkeypatch):
    monkeypatch.delenv("DISPLAY", raising=False)
    monkeypatch.setattr(shutil, "which", lambda name: None)
    for name in ("ring", "line_network", "membrane"):
        [(words, image)] = pictures.draw_step(example_run(name) and fields.written_steps(example_run(name), 0)[-1][1](), None)
        assert words.startswith("Concentration") and image.startswith(b"\x89PNG") and len(image) > 4000


@pytest.mark.parametrize("value, text", [(0.66507, "0.6651"), (123456.0, "123 456"), (9.99999e-11, "1 × 10⁻¹⁰"), (-4.1e-7, "−4.1 × 10⁻⁷"), (0, "0"),
                                         (1e6, "1 × 10⁶")])
def test_tidy_numbers(value, text):
    assert charts.tidy(value) == text.replace(" ", charts.UNBROKEN)


@pytest.mark.skipif(shutil.which("chromium") is None, reason="no browser: ./setup companions")
def test_a_browser_shows_the_page(tmp_path):
    """Faults: a page wider than the window, a drawing or picture without a size, a message on the console."""
    text = render.render_run(gather.gather_run(example_run("membrane")))
    probe = ("<script>const broken = [...document.querySelectorAll('svg, img')].filter(e => e.getBoundingClientRect().height < 50 || "
             "(e.tagName == 'IMG' && !e.naturalWidth)).length; parent.document.title += [' probe', innerWidth, document.documentElement.scrollWidth,"
             "broken, document.querySelectorAll('svg').length].join(' ');</script>")
    inner = escape(text.replace("</body>", probe + "</body>"), quote=True)
    path = tmp_path / "page.html"
    path.write_text("".join(f'<iframe style="border:0;width:{width}px;height:900px" srcdoc="{inner}"></iframe>' for width in (400, 1200)))
    command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--enable-logging=stderr", f"--user-data-dir={tmp_path / 'profile'}",
               "--window-size=1300,900", "--dump-dom", path.as_uri()]
    done = subprocess.run(command, capture_output=True, text=True, timeout=60, env=dict(os.environ, HOME=str(tmp_path)), check=False)
    found = [tuple(map(int, match)) for match in re.findall(r"probe (\d+) (\d+) (\d+) (\d+)", done.stdout.split("</title>")[0])]
    assert sorted(width for width, *_ in found) == [400, 1200]
    assert all(scroll <= width and broken == 0 and drawings >= 6 for width, scroll, broken, drawings in found)
    assert "CONSOLE" not in done.stderr
