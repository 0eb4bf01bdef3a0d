"""Readers of results against meshio, against one another and against closed forms."""
import os

import meshio
import numpy
import pytest
from example_runs import example_run

import zurt
from zurt.results import graphics, tables
from zurt.results.console import parse_console
from zurt.results.listing import step_values
from zurt.results.numbers import parse_numbers


@pytest.mark.parametrize("name", ["brick20", "drug_release", "two_problems", "fibrous_sheet"])
def test_graphics_file_has_what_meshio_reads_from_the_vtu(name):
    """Faults: orders of nodes of bricks, rows of another problem or step, inner nodes of fibres taken for those of the mesh."""
    run = example_run(name)
    assert len(run.graphics) == len(run.files.series)
    for k, problem in enumerate(run.graphics):
        series = zurt.results.vtk_files.read_series(run.files.series[k])
        assert len(series) == len(problem.places)
        for (time, path), place in zip(series, problem.places):
            mesh, step = meshio.read(path), graphics.read_step(run.files.graphics, problem, place)
            values = mesh.point_data.get("solution", mesh.point_data["concentration"])
            count = len(problem.points)
            assert step.time == pytest.approx(time, rel=1e-5)
            assert numpy.allclose(problem.points, mesh.points[:count], rtol=5.01e-5, atol=1e-12)
            assert numpy.allclose(step.fields["concentration"], values[:count], rtol=5.01e-5, atol=1e-14)
            inner = values[count:].reshape(6, 11)[:, :10].ravel() if name == "drug_release" else []  # the surfaces are in the .vtu alone
            assert numpy.allclose(step.fibres, inner, rtol=5.01e-5, atol=1e-14)
        solid = [block for block in problem.blocks if not block.kind.startswith("line")]
        ours = numpy.concatenate([block.elements for block in solid])
        theirs = numpy.concatenate([block.data for block in mesh.cells if block.type == solid[0].kind])
        assert (ours == theirs).all()
    assert [len(problem.fibre_points) for problem in run.graphics] == ([60] if name == "drug_release" else [0] * len(run.graphics))


def test_graphics_file_of_a_run_that_was_killed(tmp_path):
    """Each length of the file gives the steps that are whole, and no error but that of a file without a mesh."""
    text = open(example_run("two_problems").files.graphics, "rb").read()
    counts = []
    for length in range(4000, len(text), 1777):
        cut = tmp_path / "cut.unv"
        cut.write_bytes(text[:length])
        steps = [step for _, step in graphics.iterate_steps(str(cut))]
        assert all(len(values) == 44 for step in steps for values in step.fields.values())
        counts.append(len(steps))
    assert counts == sorted(counts) and counts[0] == 0 and counts[-1] == 2
    (tmp_path / "none.unv").write_bytes(text[:100])
    with pytest.raises(zurt.ZurtError, match="no mesh"):
        graphics.read_graphics(str(tmp_path / "none.unv"))


def test_listing_history_and_console_tell_the_same():
    run = example_run("device")
    problem, history = run.listing.problems[0], run.history
    assert [step.number for step in problem.steps] == [1, 20, 40, 60] and problem.complete and problem.solver == "skyline"
    assert problem.data["JEDN"] == 80 and run.header["title"] == "Gel plug fed by a dissolving powder" and run.header["EPSTR"] == 1e-8
    for step, place in zip(problem.steps[1:], run.graphics[0].places):
        values, fields = step_values(run.listing, step), graphics.read_step(run.files.graphics, run.graphics[0], place).fields
        assert numpy.array_equal(values["concentration"], fields["concentration"])
        assert numpy.array_equal(values["flux_x"], fields["mass_flux"][:, 0])
    rows = run.console.passes[0]
    solves = numpy.bincount(rows["step"])[1:]
    assert numpy.array_equal(solves, history["iterations"]) and len(solves) == 60
    printed = numpy.isin(rows["step"], [1, 20, 40, 60])
    assert numpy.array_equal(rows[printed], problem.iterations)
    assert example_run("cube_sparse").listing.problems[0].solver == "sparse"


def test_stored_amount_is_the_integral_of_the_field():
    """The table of balances against the trapezoidal rule over the 65 sections of the bar, which is exact for its elements."""
    run = example_run("first")
    for k, (time, _) in enumerate(run.series):
        step = run.step(k)
        order = numpy.argsort(step.points[::4, 0])
        amount = 0.01 * numpy.trapz(step.fields["concentration"][::4][order], step.points[::4, 0][order])
        row = run.history[numpy.isclose(run.history["time"], time)]
        assert row["stored"] == pytest.approx(amount, rel=1e-12)


def test_tables_of_a_fit():
    """The fitted coefficient is that of a square array of cylinders (Perrins et al., 1979) to the accuracy of the mesh, 0.3 %."""
    run = example_run("homogenization")
    table = run.masses["X"][0]
    assert table.fitted["D1D"] == pytest.approx(0.666531, rel=3e-3)
    assert numpy.allclose(table.flows["flow"], run.history["inlet"], rtol=1.01e-4) and numpy.allclose(table.flows["time"], run.history["time"])
    curve, distance = run.console.searches
    assert (curve.direction, curve.parameter, distance.parameter) == ("X", "D-C curve", "HEQ") and curve.finished and distance.finished
    assert abs(curve.errors[-1]) <= 1e-4 and len(curve.errors) == 16
    places, rows = run.progress
    assert places[0] == "fit in x, model with fibres" and "fit in x, closing run" in places and rows["steps"].max() == 12


def test_tables_of_a_direct_calculation_along_y(tmp_path):
    """The file of Y has the head of the line of sizes, and the file of X the line."""
    head = " NUMBER OF TIME STEPS, POROSITY\n"
    rows = (" VALUES OF DIFFUSION COEFFICIENTS\n          C            Dbulk(C)         Deqv(C)\n     0.43921D+00     0.10000D+01     0.50399D+00\n"
            " CHANGE OF MASS AT INLET CROSS-SECTION WITH TIME\n       STEP                 FLUX-MICRO          FLUX-EQUIV\n"
            "         1          0.29433D-01          0.24604D-01\n      \n")
    of_x = head + "         1   0.99526D+00\n" + rows.replace("Deqv(C)\n", "Deqv(C)\n         1\n")
    for name, text in (("MASS-X.LST", of_x), ("MASS-Y.LST", head + rows)):
        (tmp_path / name).write_text(text)
    [x], [y] = (tables.read_masses(str(tmp_path / f"MASS-{axis}.LST")) for axis in "XY")
    assert (x.direction, x.steps, x.porosity, y.direction, y.steps, y.porosity) == ("X", 1, 0.99526, "Y", None, None)
    for table in (x, y):
        assert (table.coefficients["equivalent"][0], table.flows["fibres"][0]) == (0.50399, 0.029433)


def test_console_of_a_search_without_a_result():
    small = [" ITERATIONS FOR STEP:       340 /   1200", " ITERATION =  0: INCREMENT      =   9.0510E-11  NORM     =   1.2991E+01",
             "   ICR/ICREMSTEP  =  1.0000E-10  ICR/NORM =   0.0000E+00"]  # which runs of the fit say, too, where hardly anything changes
    lines = [" Homogenization for Difusion Y", " running FIB model - without SF", " running EHM model - Calculation of D-C curve...",
             "    1   0.100000E+01", *small, "    2   0.216979E+00", " Max number of iterations for Homogenization reached", " HOMOGENIZATION FINISHED!", *small]
    console = parse_console(lines)
    [search] = console.searches
    assert [len(rows) for rows in console.passes] == [1] and parse_console(lines[:-3]).passes == []
    assert (search.direction, search.errors, search.finished) == ("Y", [1.0, 0.216979], False)


def test_numbers_that_are_hard_to_read(tmp_path):
    values = parse_numbers(b"0.12345D-02 -0.5-100 ***** 1 NaN")
    assert values[0] == 0.0012345 and values[1] == -0.5e-100 and numpy.isnan(values[2]) and values[3] == 1.0 and numpy.isnan(values[4])
    with pytest.raises(zurt.ZurtError):
        parse_numbers(b"1.0 two")
    short = tmp_path / "zurt-history.csv"
    short.write_text("step [1],time [time],iterations [1],ratio [1]\n1,0.5,1,\n2,1.0,3,1e-9\n3,1.5,2,1e-1")
    history = tables.read_history(str(short))
    assert len(history.values) == 2 and numpy.isnan(history.values["ratio"][0]) and history.units["time"] == "time"
    short.write_text("step [1],time [time],iterations [1],ratio [1]\n1,0.5,1,\n2,1.0,x,1e-9\n")
    with pytest.raises(zurt.ZurtError, match="column iterations.*not x") as caught:
        tables.read_history(str(short))
    assert caught.value.line == 3
    with pytest.raises(zurt.ZurtError, match="line|folder|listing"):
        zurt.read(str(tmp_path))
    assert os.path.basename(zurt.read(example_run("first").folder).files.listing) == "zurt.lst"
