"""Runs side by side: the same figures and charts with a curve for each run, and how far they differ."""
import os
from dataclasses import dataclass, field

import numpy

from . import balance
from .charts import Curve, line_chart, tidy
from .fields import dense_part, profile, telling_axes
from .fit_story import fitted_table
from .gather import AXES, gather_problem, last_of, readable_steps
from .records import Table

STYLES = ("line", "dashed")
STORED = {"stored": "Stored amount", "stored_fibres": "Stored in radial fibres"}
FLOW = "Flow, "
RESIDUE = "Largest balance error"
ROUNDING = 1e-8  # of the largest flow


@dataclass
class ComparisonPage:
    """problems: [ComparedProblem] of those that all runs have."""
    names: list
    states: list
    problems: list


@dataclass
class ComparedProblem:
    number: int
    titles: list
    figures: Table
    facts: Table
    pictures: list = field(default_factory=list)
    charts: list = field(default_factory=list)
    sentences: list = field(default_factory=list)


def gather_comparison(runs, with_pictures=True):
    """ComparisonPage of two runs or more."""
    names = _names(runs)
    count = min(len(run.listing.problems) for run in runs)
    states = ["not complete" if not run.listing.problems or not run.listing.problems[-1].complete else "finished" for run in runs]
    problems = [_problem(runs, names, k, with_pictures) for k in range(count)]
    if problems and count < max(len(run.listing.problems) for run in runs):
        problems[-1].sentences.append("The runs have different numbers of problems; only those that all have are compared.")
    return ComparisonPage(names, states, problems)


def _names(runs):
    """The shortest ends of the folders' paths that differ, with the listings' names where one folder holds several."""
    paths = [os.path.abspath(run.folder).split(os.sep) for run in runs]
    if len({tuple(path) for path in paths}) < len(paths):
        paths = [[*path, run.files.name] for path, run in zip(paths, runs)]
    for depth in range(1, max(len(path) for path in paths) + 1):
        names = ["/".join(path[-depth:]) for path in paths]
        if len(set(names)) == len(names):
            return names
    return [f"{name} ({k})" for k, name in enumerate(names, 1)]


def _problem(runs, names, k, with_pictures):
    pages = [gather_problem(run, k, with_pictures, None) for run in runs]
    histories = [run.histories[k].values if k < len(run.histories) and run.histories[k] else None for run in runs]
    lasts = [last_of(readable_steps(run, k))[0] for run in runs]
    found = ComparedProblem(k + 1, [page.title for page in pages], _figures(runs, names, histories, lasts, k), _facts(pages, names))
    found.pictures = [(f"{name}: {page.pictures[0][0].lower()}", page.pictures[0][1]) for name, page in zip(names, pages) if page.pictures]
    charts = [*_profile_charts(names, lasts), *_history_charts(names, histories), *_convergence_charts(names, histories)]
    found.charts = [chart for chart in charts if chart]
    found.sentences = [words for name, last in zip(names[1:], lasts[1:]) if (words := _field_difference(names[0], lasts[0], name, last))]
    return found


def _figures(runs, names, histories, lasts, k):
    """Rows of numbers, each with its differences to the first run."""
    columns = [_numbers(run, history, last, k) for run, history, last in zip(runs, histories, lasts)]
    labels = list(dict.fromkeys(label for column in columns for label in column))
    flows = [abs(value) for column in columns for label, value in column.items() if label.startswith(FLOW) and numpy.isfinite(value)]
    rounding, rows = ROUNDING * max(flows, default=0.0), []
    for label in labels:
        values = [column.get(label) for column in columns]
        first = values[0]
        differences = [_difference(label, first, value, rounding if label.startswith(FLOW) else 0.0) for value in values[1:]]
        rows.append([label, *[tidy(value, 6) if value is not None else "" for value in values], *differences])
    heads = ["", *names, *([f"{name}, difference" for name in names[1:]] if len(names) > 2 else ["difference"])]
    note = f"Differences are those to the first run, in per cent of it. {RESIDUE}: residues, whose difference is stated as it is."
    return Table("Figures", heads, rows, note)


def _difference(label, first, value, rounding):
    """The difference of a figure in words; both are taken for zero up to `rounding`."""
    if first is None or value is None or not numpy.isfinite([first, value]).all():
        return ""
    if first == value:
        return "none"
    if max(abs(first), abs(value)) <= rounding:
        return "none, both ≈ 0"
    if label == RESIDUE or not first:
        return ("+" if value > first else "") + tidy(value - first, 2)
    return f"{100.0 * (value - first) / abs(first):+.3g} %".replace("-", "−")


def _numbers(run, history, last, k):
    numbers = {}
    if k == 0:
        for axis in run.masses:
            if table := fitted_table(run, axis):
                numbers.update({f"{name} along {axis.lower()}": table.fitted[name] for name in ("D1D", "D2D", "HEQ")})
    if history is not None and len(history):
        end = history[-1]
        numbers.update({"End of the run": float(end["time"]), "Steps": len(history), "Solves": int(history["iterations"].sum())})
        for name in history.dtype.names:
            if name in STORED or name.startswith("held_f") or name in balance.FLOWS and name != "storing":
                label = STORED.get(name, f"{FLOW}{balance.label_of(name)}")
                numbers[label + " at the end"] = float(end[name])
        numbers[RESIDUE] = float(numpy.nanmax(history["error"])) if numpy.isfinite(history["error"]).any() else None
    if last is not None:
        numbers["Lowest concentration"] = float(numpy.nanmin(last.concentration))
        numbers["Highest concentration"] = float(numpy.nanmax(last.concentration))
    if run.listing.problems[k].torsion_moments:
        numbers["Torsional moment"] = run.listing.problems[k].torsion_moments[-1]
    return numbers


def _facts(pages, names):
    """What was solved, the lines in which the runs differ first."""
    facts = [dict(page.facts) for page in pages]
    labels = list(dict.fromkeys(label for each in facts for label in each))
    rows = [[label, *[each.get(label, "") for each in facts]] for label in labels]
    rows.sort(key=lambda row: len(set(row[1:])) == 1)
    return Table("What was solved", ["", *names], rows)


def _profile_charts(names, lasts):
    meshed = [(k, last) for k, last in enumerate(lasts) if last is not None and last.points is not None]
    if not meshed:
        return []
    axis = telling_axes(meshed[0][1])[0]
    curves = []
    for k, last in meshed:
        line = profile(last, last.concentration, axis, dense_part(last.points, axis))
        curves.append(Curve(f"{names[k]}, t = {tidy(last.time)}" if last.time else names[k], line.at, line.mean, STYLES[k % 2], None, k + 1))
    return [line_chart(f"Concentration along {AXES[axis]}, last step", curves, AXES[axis], "concentration")]


def _history_charts(names, histories):
    there = [(k, history) for k, history in enumerate(histories)
             if history is not None and len(history) >= balance.SHORTEST and numpy.ptp(history["time"])]
    columns = list(dict.fromkeys(name for _, history in there for name in history.dtype.names))
    wanted = [name for name in columns if name in STORED or name in balance.FLOWS or name.startswith(("held_f", "c_"))]
    flows = _largest([history[name] for _, history in there for name in wanted
                      if name in history.dtype.names and name not in STORED and not name.startswith("c_")])
    charts = []
    for name in wanted:
        if name == "storing" or (name == "held" and any(column.startswith("held_f") for column in columns)):
            continue
        curves = [Curve(names[k], history["time"], history[name], STYLES[k % 2], None, k + 1) for k, history in there if name in history.dtype.names]
        largest = _largest([curve.y for curve in curves])
        if largest <= (0.0 if name in STORED or name.startswith("c_") else 1e-12 * flows):
            continue
        title = STORED.get(name) or (f"Concentration at node {name[2:]}" if name.startswith("c_") else f"{FLOW}{balance.label_of(name)}")
        unit = "amount" if name.startswith("stored") else "concentration" if name.startswith("c_") else "amount per time"
        charts.append(line_chart(title, curves, "time", unit))
        charts.append(_difference_chart(title, names, there, name))
    return charts


def _largest(arrays):
    return max((float(numpy.nanmax(numpy.abs(values), initial=0.0)) for values in arrays), default=0.0)


def _difference_chart(title, names, there, name):
    """Runs less the first one at its times, in per cent of its largest value."""
    (first, base), *others = there
    if name not in base.dtype.names:
        return None
    size = numpy.nanmax(numpy.abs(base[name]), initial=0.0)
    curves = []
    for k, history in others:
        if name in history.dtype.names and size > 0.0:
            inside = (base["time"] >= history["time"][0]) & (base["time"] <= history["time"][-1] * (1.0 + 1e-9))
            other = numpy.interp(base["time"][inside], history["time"], history[name])
            difference = 100.0 * (other - base[name][inside]) / size
            curves.append(Curve(f"{names[k]} less {names[first]}", base["time"][inside], difference, "line", None, k + 1))
    if not any(numpy.any(curve.y) for curve in curves):
        return None
    return line_chart(f"{title}: difference", curves, "time", "per cent of the largest")


def _convergence_charts(names, histories):
    curves = []
    for number, history in enumerate(histories):
        if history is not None and len(history) >= 4:
            curves.append(Curve(names[number], history["step"], history["iterations"], STYLES[number % 2], None, number + 1))
    return [line_chart("Solves of each step", curves, "step", "solves", whole_x=True, from_zero=True)] if len(curves) > 1 else []


def _field_difference(name, base, other_name, other):
    """How far the last fields differ, where both have the same nodes."""
    if base is None or other is None or base.points is None or other.points is None or base.points.shape != other.points.shape:
        return f"{other_name} has another mesh than {name}, so its nodes are not compared." if base is not None and other is not None else ""
    extent = numpy.ptp(base.points, axis=0).max()
    if numpy.abs(base.points - other.points).max() > 1e-4 * extent:
        return f"{other_name} has its nodes at other places than {name}, so they are not compared."
    difference = numpy.where(base.nodes & other.nodes, other.concentration - base.concentration, numpy.nan)
    if not numpy.isfinite(difference).any():
        return ""
    node = int(numpy.nanargmax(numpy.abs(difference)))
    times = "" if base.time == other.time else f" (at times {tidy(base.time)} and {tidy(other.time)})"
    if difference[node] == 0.0:
        return f"The concentrations of {other_name} and {name} are the same at every node of the last step{times}."
    root = float(numpy.sqrt(numpy.nanmean(difference ** 2)))
    return (f"At the nodes of the last step{times} {other_name} and {name} differ by {tidy(root, 3)} in the root mean square and by "
            f"{tidy(abs(difference[node]), 3)} at most, at node {node + 1}.")
