"""How each step converged: from the table of balances, else from the console, else from the listing, which has the printed steps alone."""
import numpy

from ..results.listing import ITERATION
from .charts import Curve, line_chart, tidy
from .fields import header_of
from .records import MOST_ROWS, Table


def gather(run, k, history):
    """(charts, records.Table or None, (value, hint) for the top of the page or None) of problem k from zero."""
    iterations, source = _iterations(run, k)
    steps, solves, ratio, where = _by_step(iterations, source, history)
    if not len(steps):
        return [], None, None
    linear = not len(iterations) and not numpy.isfinite(ratio).any()
    charts = []
    accuracy = header_of(run).get("EPSTR") if k == 0 else None
    marks = [(accuracy, f"EPSTR {accuracy:g}")] if accuracy else []
    if len(steps) >= 4 and not linear:
        if numpy.ptp(solves):
            charts.append(line_chart("Solves of each step", [Curve("solves", steps, solves, "both" if len(steps) < 60 else "line")], "step",
                                     "solves", whole_x=True, from_zero=True))
        charts.append(line_chart("Where each step ended", [Curve("ratio", steps, ratio, "both" if len(steps) < 60 else "line")], "step",
                                 "last increment over largest", True, marks=marks, whole_x=True))
    charts.append(_slowest(iterations, marks))
    most = ", one each" if linear else f", at most {int(solves.max())} in one"
    words = (str(int(solves.sum())), f"in {len(steps)} step{'s' if len(steps) > 1 else ''}{where}{most}")
    return [chart for chart in charts if chart], _table(steps, solves, ratio, where), words


def _iterations(run, k):
    """Rows of every iteration, and where they are from. The console has all steps; it is one text of all problems and passes."""
    console = run.console
    if console is not None and console.searches and not console.passes:
        return numpy.zeros(0, ITERATION), "console"  # a fit that has not come to the run that writes results
    if console is not None and len(run.listing.problems) == 1 and console.passes:
        return console.passes[-1], "console"
    return run.listing.problems[k].iterations, "listing"


def _by_step(iterations, source, history):
    if history is not None and len(history.values):
        values = history.values
        return values["step"], values["iterations"].astype(float), values["ratio"], ""
    if not len(iterations):
        return numpy.zeros(0), numpy.zeros(0), numpy.zeros(0), ""
    steps, first = numpy.unique(iterations["step"], return_index=True)
    last = numpy.append(first[1:], len(iterations)) - 1
    return steps, iterations["iteration"][last] + 1.0, iterations["step_ratio"][last], " of the listing" if source == "listing" else ""


def _slowest(iterations, marks):
    """Increments of the step with the most iterations."""
    if not len(iterations):
        return None
    step = iterations["step"][numpy.argmax(iterations["iteration"])]
    rows = iterations[iterations["step"] == step]
    if len(rows) < 3:
        return None
    return line_chart(f"Step {step}, the one of most solves", [Curve("increment over largest", rows["iteration"], rows["step_ratio"], "both")],
                      "iteration", "increment over largest", True, marks=marks, whole_x=True)


def _table(steps, solves, ratio, where):
    shown = slice(0, MOST_ROWS)
    rows = [(str(int(step)), str(int(count)), tidy(value, 2) if numpy.isfinite(value) else "")
            for step, count, value in zip(steps[shown], solves[shown], ratio[shown])]
    note = f"The first {MOST_ROWS} of {len(steps)} steps." if len(steps) > MOST_ROWS else ""
    return Table("Every printed step" if where else "Every step", ["step", "solves", "last increment over largest"], rows, note, True)
