"""The door: runs, their errors, studies."""
import csv

import numpy
import pytest
from example_runs import example_run, example_text

import zurt
from zurt.commands import convert, deck, fibres, report


def test_errors_name_file_and_line(tmp_path):
    bad = tmp_path / "bad.dat"
    bad.write_text(example_text("first").replace("1 0 0 20 ", "1 0 0 x ", 1))
    with pytest.raises(zurt.ZurtError, match="field MAXIT.*an integer is expected") as caught:
        zurt.run(bad, tmp_path / "bad")
    line = bad.read_text().split("\n").index("1 0 0 x 0.0 1.0E-8 1 0") + 1
    assert (caught.value.file, caught.value.line, caught.value.run.status) == (str(bad), line, 2)
    stopped = example_text("steady_nonlinear").replace("    1    0    0   40", "    1    0    0    1", 1)
    with pytest.raises(zurt.ZurtError, match="MAXIMUM NUMBER OF ITERATION ACHIEVED") as caught:
        zurt.run(stopped, tmp_path / "stopped")
    assert caught.value.file.endswith("zurt.lst") and "a larger MAXIT" in caught.value.message
    assert caught.value.run.listing.message.startswith("MAXIMUM NUMBER OF ITERATION")
    assert zurt.run(stopped, tmp_path / "stopped", check=False, force=True).status == 1
    for deck, folder, words in ((tmp_path / "none.dat", None, "no such deck"), (stopped, tmp_path / "stopped", "force=True")):
        with pytest.raises(zurt.ZurtError, match=words):
            zurt.run(deck, folder)
    with pytest.raises(zurt.ZurtError, match=r"vtu=True \(--vtu\)"):
        zurt.run(example_text("ring"), tmp_path / "ring").step()


def test_a_run_that_takes_too_long_ends_whole(tmp_path):
    text = example_text("first").replace("25 25 25 25", "25 25 25 200000")
    with pytest.raises(zurt.ZurtError, match="took more than 0.4 s") as caught:
        zurt.run(text, tmp_path / "long", timeout=0.4)
    run = caught.value.run
    assert run.status == 3 and run.seconds < 5.0
    assert len(run.history) > 10 and (numpy.diff(run.history["step"]) == 1).all()


def test_held_values_and_probes():
    """At rest the flux through the membrane is that of the integral of D, linear in x: 3.375 times 0.01."""
    run = example_run("membrane")
    last = run.history[-1]
    assert last["held_f1"] == pytest.approx(0.03375, rel=1e-6) and last["held_f2"] == pytest.approx(-0.03375, rel=1e-6)
    assert last["c_41"] == pytest.approx(-1.0 + numpy.sqrt(1.0 + 2.0 * (4.0 - 3.375 * 0.5)), rel=1e-7)
    assert run.notes == [] and run.header["NP"] == 84


def test_study(tmp_path):
    """Half of what a slab holds has left at D t / a**2 = 0.196731 (series, J. Crank, 1975); a faster diffusion scales the time."""
    def deck(coefficient):
        if coefficient < 0:
            return "\n"
        return example_text("first").replace("-10.0 1.0\n10.0 1.0", f"-10.0 {coefficient}\n10.0 {coefficient}")

    def measure(run):
        return {"half": numpy.interp(0.5, 1.0 - run.history["stored"] / 0.02, run.history["time"])}

    study = zurt.study(deck, {"coefficient": [1.0, 1.5, -1.0]}, measure, tmp_path / "study")
    assert study.column("half")[:2] == pytest.approx([0.196731, 0.196731 / 1.5], rel=6e-3)
    assert numpy.isnan(study.column("half")[2]) and study.rows[2]["message"] and study.rows[2]["status"] != 0
    study.save(tmp_path / "study.csv")
    with open(tmp_path / "study.csv", newline="") as file:
        rows = list(csv.DictReader(file))
    assert [row["coefficient"] for row in rows] == ["1.0", "1.5", "-1.0"] and float(rows[0]["half"]) == study.rows[0]["half"]
    with pytest.raises(zurt.ZurtError, match="has no column"):
        study.column("heq")
    with pytest.raises(zurt.ZurtError, match="grid"):
        zurt.study(deck)


def test_what_a_folder_holds_is_kept(tmp_path):
    """Console and notes that a shell kept of a run; results of another deck in the folder; results that a new run does not write."""
    folder = tmp_path / "shell"
    folder.mkdir()
    for name, text in (("zurt.lst", "a listing"), ("console.txt", "iterations"), ("zurt.dat", "the deck of this run")):
        (folder / name).write_text(text)
    with pytest.raises(zurt.ZurtError, match="force=True"):
        zurt.run(example_text("ring"), folder)
    assert (folder / "console.txt").read_text() == "iterations" and (folder / "zurt.dat").read_text() == "the deck of this run"
    run = zurt.run(example_text("ring"), tmp_path / "ring", vtu=True)
    assert run.series and zurt.run(example_text("ring"), tmp_path / "ring", force=True).files.series == []
    (tmp_path / "ring" / "other.lst").write_bytes(open(run.files.listing, "rb").read())
    assert zurt.read(tmp_path / "ring" / "other.lst").status is None and zurt.read(run.files.listing).status == 0
    with pytest.raises(zurt.ZurtError, match="Latin-1"):
        zurt.run(example_text("ring").replace("C ", "C \u2212 ", 1), tmp_path / "signs")
    with pytest.raises(zurt.ZurtError, match="no problem 3: there are 1"):
        run.graphics_step(problem=3)


def test_all_programs_say_their_version(capsys):
    for program in (convert, deck, fibres, report):
        with pytest.raises(SystemExit):
            program.main(["--version"])
        assert capsys.readouterr().out == f"zurt-{program.__name__.split('.')[-1]} {zurt.__version__}\n"
