"""Job files of rare keys: each deck passes the program's check and gives the same results in fixed columns and in free cards."""
import math
import os
import re
import subprocess
import tomllib

import gmsh
import pytest
from support.example_decks import results_of, run_deck
from support.small_meshes import write_bar, write_plate
from zurt.commands import deck
from zurt.deck.keys_model import TABLES
from zurt.program import find_program

RARE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "jobs", "rare")
NAMES = sorted(name[:-5] for name in os.listdir(RARE) if name.endswith(".toml"))
PLATES = ("plane", "polynomial")


def keys_given(raw, path=""):
    """(table, key) of everything that stands in a job."""
    found = set()
    for name, value in raw.items():
        inside = f"{path}.{name}" if path else name
        if inside in TABLES and inside != "functions":
            for entry in value if isinstance(value, list) else [value]:
                found |= keys_given(entry, inside)
        else:
            found.add((path, name))
    return found


def listing_of(folder):
    """Lines of a listing, with the echo of all fields, but for the format, numbers of cards and times."""
    lines = (folder / "zurt.lst").read_text(encoding="utf-8", errors="replace").splitlines()
    last = next((i for i, line in enumerate(lines) if "T I M I N G" in line), len(lines))
    return [line for line in lines[:last] if "INDFOR" not in line and "CARD" not in line]


def make_deck(name, form, folder):
    """(deck, options) of a job in a format."""
    with open(os.path.join(RARE, name + ".toml"), encoding="utf-8") as file:
        text = file.read()
    head, between, rest = text.partition("\n[")
    job = folder / f"{form}.toml"
    job.write_text(f"{head}\nformat = \"{form}\"{between}{rest}")
    (folder / "balls.dat").write_text(open(os.path.join(RARE, "balls.dat"), encoding="ascii").read())
    mesh = folder / "mesh.msh"
    (write_plate if name in PLATES else write_bar)(mesh)
    path = str(folder / form / "zurt.dat")
    assert deck.main([str(mesh), str(job), "-o", path]) == 0
    values = folder / form / "values.dat"
    return path, (["--prescribed", str(values)] if values.exists() else []) + (["--free"] if form == "free" else [])


@pytest.mark.parametrize("name", NAMES)
def test_fixed_and_free_decks_agree(name, tmp_path):
    results = []
    for form in ("fixed", "free"):
        path, options = make_deck(name, form, tmp_path)
        check = subprocess.run([find_program(), "--check", *[option for option in options if option == "--free"], path], capture_output=True, text=True,
                               check=False)
        assert check.returncode == 0, check.stdout + check.stderr
        run_deck(path, str(tmp_path / form / "out"), options)
        results.append(listing_of(tmp_path / form / "out") + results_of(str(tmp_path / form / "out"))[1])
    assert results[0] == results[1]


def test_jobs_use_every_key():
    used = set()
    for name in NAMES:
        with open(os.path.join(RARE, name + ".toml"), "rb") as file:
            used |= keys_given(tomllib.load(file))
    left = {(path, key) for path, table in TABLES.items() for key in table.keys} - used
    # The format is written by the test; the rest stands in the jobs of examples or has no card.
    assert left <= {("", "format"), ("deck", "format"), ("mesh", "file"), ("mesh", "labels"), ("group.part", "thickness"), ("group.part", "source"),
                    ("group.part", "area"), ("group", "source_amount"), ("steady", "steps"), ("shared", "group"), ("shared", "plane"), ("held", "nodes"),
                    ("node_value", "group"), ("node_value", "nodes")}, left


def blocks_of_reference():
    """Code blocks of docs/jobs.md: (language, text)."""
    with open(os.path.join(RARE, "..", "..", "..", "..", "docs", "jobs.md"), encoding="utf-8") as file:
        return re.findall(r"^```(\w*)\n(.*?)^```$", file.read(), re.M | re.S)


def test_recipes_of_the_reference_have_known_keys():
    known = {(path, key) for path, table in TABLES.items() for key in table.keys} | {("functions", "dose"), ("functions", "rise")}
    recipes = [tomllib.loads(text) for language, text in blocks_of_reference() if language == "toml"]
    for recipe in recipes:
        for problem in recipe.pop("problem", [recipe]):
            given = {(path, key) for path, key in keys_given(problem) if key != "functions"}
            assert given <= known, given - known
    assert len(recipes) >= 5


def test_first_example_of_the_reference(tmp_path, capsys):
    """From gmsh's geometry to the amount that is left: the series of a slab, and the output that the page shows."""
    blocks = blocks_of_reference()
    geometry = next(text for _, text in blocks if text.startswith("Point(1)"))
    shown = next(text for _, text in blocks if text.startswith("Mesh slab.msh"))
    (tmp_path / "slab.geo").write_text(geometry)
    (tmp_path / "slab.toml").write_text(next(text for language, text in blocks if language == "toml"))
    gmsh.initialize()
    gmsh.option.setNumber("General.Terminal", 0)
    gmsh.open(str(tmp_path / "slab.geo"))
    gmsh.model.mesh.generate(3)
    gmsh.write(str(tmp_path / "slab.msh"))
    gmsh.finalize()
    assert deck.main([str(tmp_path / "slab.msh"), str(tmp_path / "slab.toml"), "-o", str(tmp_path / "slab.dat")]) == 0
    assert capsys.readouterr().out.replace(str(tmp_path) + os.sep, "") == shown
    run_deck(str(tmp_path / "slab.dat"), str(tmp_path / "out"), ["--history"])
    stored = float((tmp_path / "out" / "slab-history.csv").read_text().splitlines()[-1].split(",")[5])
    series = sum(8.0 / ((2 * n + 1) * math.pi) ** 2 * math.exp(-((2 * n + 1) * math.pi) ** 2 * 0.36 * 2.0 / 4.0) for n in range(20))
    assert abs(stored / (5.0 * 0.08 * series) - 1.0) < 0.007
