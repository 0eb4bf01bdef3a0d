"""What a page shows of a run: headline figures, pictures, charts and tables, as plain values for the template."""
import base64
import os

import numpy

from ..errors import ZurtError
from ..notes import error_texts, note_texts
from . import balance, convergence, fit_page, pictures
from .charts import Curve, line_chart, tidy
from .fields import dense_part, header_of, profile, telling_axes, written_steps
from .records import Headline, ProblemPage, RunPage

AXES = "xyz"
MOST_STEPS = 5


def gather_run(run, with_pictures=True, beside=None):
    """RunPage of a run. beside: fibre_run.FitRuns, the runs that a fit is held against."""
    listing = run.listing
    problems = [gather_problem(run, k, with_pictures, beside) for k in range(len(listing.problems))]
    status, words = _status(run)
    notes = note_texts(run.notes) if run.notes is not None else None
    errors = error_texts(run.notes) if run.notes is not None else []
    return RunPage(run.files.name, os.path.basename(os.path.abspath(run.folder)), status, words, listing.message, errors, notes,
                   _counted(run.messages), problems, _files(run))


def gather_problem(run, k, with_pictures, beside):
    listed = run.listing.problems[k]
    last, steps, fault = last_of(readable_steps(run, k))
    history = run.histories[k] if k < len(run.histories) else None
    page = ProblemPage(k + 1, _title(run, k), _facts(run, k, last, steps))
    page.headlines = balance.headlines(history) if history else []
    if last is not None:
        _add_fields(page, run, steps, last, with_pictures)
    if fault:
        page.hints.append(f"A step that was written last can't be read, so an earlier one is shown: {fault}" if last else f"No step can be read: {fault}")
    if history:
        page.balance_charts, page.bars, page.bars_title = balance.charts(history), balance.bars(history), balance.bars_title(history)
        page.probe_charts = balance.probe_charts(history)
    else:
        page.hints.append("Stored amounts, flows and the balance are in the run's history: run the deck with --history.")
    page.convergence_charts, page.convergence_table, words = convergence.gather(run, k, history)
    if words:
        page.headlines.append(Headline("Solves", *words))
    if k == 0:
        page.fits = fit_page.gather(run, beside)
        page.headlines = [headline for fit in page.fits for headline in fit.headlines] + page.headlines
    if listed.torsion_moments:
        page.headlines.insert(0, Headline("Torsional moment", tidy(listed.torsion_moments[-1], 5), "TORZM, of the section in the mesh"))
    return page


def readable_steps(run, k):
    """Written steps, but those whose file is gone or spoilt."""
    try:
        return written_steps(run, k)
    except ZurtError:
        return []


def last_of(steps):
    """(Fields of the last of the steps that can be read, or None; the steps up to it; what is wrong with the last one, or nothing)."""
    fault = ""
    for count in range(len(steps), 0, -1):
        try:
            return steps[count - 1][1](), steps[:count], fault
        except ZurtError as error:
            fault = fault or str(error)
    return None, [], fault


def _add_fields(page, run, steps, last, with_pictures):
    values = last.concentration[numpy.isfinite(last.concentration)]
    if len(values):
        low, high = float(values.min()), float(values.max())
        page.headlines.append(Headline("Concentration", f"{tidy(low)} to {tidy(high)}" if tidy(high) != tidy(low) else tidy(low),
                                       f"lowest and highest of the last step, from {last.source}"))
    lost = int((~numpy.isfinite(last.concentration) & last.nodes).sum())
    if lost and not run.files.fibres:
        page.headlines.append(Headline("Nodes without a number", f"{lost} of {int(last.nodes.sum())}", "NaN or infinite in the last step"))
    if last.points is None:
        page.hints.append("No mesh is known, so there are no pictures: write the graphics file (IGRAF) or run with --vtu.")
        return
    if with_pictures:
        page.pictures = [(words, "data:image/png;base64," + base64.b64encode(image).decode())
                         for words, image in pictures.draw_step(last, run.files.fibres if page.number == 1 else None)]
    page.field_charts = [chart for k, axis in enumerate(telling_axes(last)) if (chart := _profile_chart(steps, last, axis, k == 0))]
    page.flux_charts = _flux_charts(last)


def _profile_chart(steps, last, axis, with_earlier):
    part = dense_part(last.points, axis)
    curves = []
    if with_earlier and len(steps) > 1:
        chosen = numpy.unique(numpy.linspace(0, len(steps) - 2, min(MOST_STEPS - 1, len(steps) - 1)).astype(int))
        for time, read in [steps[k] for k in chosen]:
            if time == last.time:
                continue
            try:
                earlier = read()
            except ZurtError:
                continue
            line = profile(earlier, earlier.concentration, axis, part)
            curves.append(Curve(f"t = {tidy(time)}", line.at, line.mean, "line", None, len(curves) + 2))
    line = profile(last, last.concentration, axis, part)
    shown = last.concentration[numpy.isfinite(last.concentration) & last.nodes]
    spread = numpy.ptp(shown) if len(shown) else 0.0
    band = (line.low, line.high) if numpy.max(line.high - line.low, initial=0.0) > 1e-3 * spread else None
    style = "both" if len(line.at) < 40 else "line"
    name = f"t = {tidy(last.time)}" if curves or last.time else "mean of the section"
    curves.append(Curve(name, line.at, line.mean, style, band, 1))
    where = "planes of nodes" if line.planes else "slices"
    note = f"Means of the nodes over {where} across {AXES[axis]}" + (", the shade from lowest to highest." if band else ".")
    note += f" Only the part where nodes lie close, {AXES[axis]} = {tidy(part[0])} to {tidy(part[1])}." if part else ""
    return line_chart(f"Concentration along {AXES[axis]}", curves, AXES[axis], "concentration", note=note)


def _flux_charts(last):
    charts = []
    for name, title in (("flux", "Flux"), ("coefficient", "Diffusion coefficient")):
        if name not in last.vectors:
            continue
        axis = telling_axes(last)[0]
        part = _inside(dense_part(last.points, axis))
        vectors = numpy.where(numpy.isfinite(last.concentration)[:, None], last.vectors[name], numpy.nan)
        inside = slice(None) if part is None else (last.points[:, axis] >= part[0]) & (last.points[:, axis] <= part[1])
        largest = numpy.nanmax(numpy.abs(vectors[inside]))
        shown = [component for component in range(3) if numpy.nanmax(numpy.abs(vectors[inside, component])) > 1e-3 * largest]
        lines = [profile(last, vectors[:, component], axis, part) for component in shown]
        curves = [Curve(f"along {AXES[component]}", line.at, line.mean, "line", (line.low, line.high), component + 1)
                  for component, line in zip(shown, lines)]
        when = f" at time {tidy(last.time)}" if last.time else ""
        chart = line_chart(f"{title} at the nodes", curves, AXES[axis], title.lower(),
                           note=f"Means of the nodes across {AXES[axis]}{when}, the shade from lowest to highest.")
        charts += [chart] if chart else []
    return charts


def _inside(part):
    """A part of an axis without its ends, whose nodes share what lies outside."""
    if part is None:
        return None
    spare = 1e-6 * (part[1] - part[0])
    return part[0] + spare, part[1] - spare


def _title(run, k):
    meshes = _meshes(run)
    if k < len(meshes) and meshes[k].title:
        return meshes[k].title
    return header_of(run).get("title", "") if k == 0 else f"Problem {k + 1}"


def _meshes(run):
    """Problems of the graphics file; none where it is missing or was left without a mesh."""
    try:
        return run.graphics
    except ZurtError:
        return []


def _facts(run, k, last, steps):
    listed, header = run.listing.problems[k], header_of(run) if k == 0 else {}
    transient = header["NSTAC"] != 0 if header else any(step.time for step in listed.steps)
    kind = "transient" if transient else "steady"
    size = {"line": "lines", "quad": "quadrilaterals", "hexa": "bricks"}
    counts = {}
    for shape, cells in last.cells if last else []:
        counts[size.get(shape[:4], shape)] = counts.get(size.get(shape[:4], shape), 0) + len(cells)
    kind += (", device modelling" if header.get("NDS") else "") + (", torsion analogue" if header.get("ITOR") == 1 else "")
    facts = [("Kind", kind)] if header or listed.steps else []
    if header.get("NP") or k < len(_meshes(run)):
        facts.append(("Nodes", f"{header.get('NP') or len(_meshes(run)[k].points):,}".replace(",", " ")))
    if counts:
        facts.append(("Elements", ", ".join(f"{count:,} {shape}".replace(",", " ") for shape, count in counts.items())))
    if last is not None and last.points is not None:
        facts.append(("Size", " × ".join(tidy(extent) for extent in numpy.ptp(last.points, axis=0))))
    if header:
        facts += [("Materials", str(header["NMATT"] or 1)), ("Groups", str(header["NGET"] or 1))]
    if "JEDN" in listed.data:
        facts.append(("Solver", {"cg": "conjugate gradients", "sparse": "sparse (direct)", "skyline": "skyline (direct)"}[listed.solver]))
        facts.append(("Equations", f"{listed.data['JEDN']:,}".replace(",", " ")))
    facts += _steps_facts(run, k, listed, steps)
    if run.seconds is not None:
        facts.append(("Time of the whole run", f"{run.seconds:.1f} s"))
    return facts


def _steps_facts(run, k, listed, steps):
    history = run.histories[k] if k < len(run.histories) else None
    count = len(history.values) if history else listed.step_count or (listed.steps[-1].number if listed.steps else 0)
    end = history.values["time"][-1] if history and len(history.values) else listed.steps[-1].time if listed.steps else 0.0
    facts = [("Steps", f"{count}" + (f", to time {tidy(end)}" if end else ""))]
    return facts + [("Written", f"{len(steps)} of them with fields")] if steps else facts


def _status(run):
    if run.status == 0:
        return "finished", "finished"
    if run.status == 3:
        return "stopped", "interrupted"
    if run.status is not None and run.status < 0:
        return "stopped", f"ended by signal {-run.status}"
    if run.status is not None:
        return "stopped", "stopped"
    if run.notes and any(line.startswith("zurt: interrupted") for line in run.notes):
        return "stopped", "interrupted"
    problems = run.listing.problems
    if problems and problems[-1].complete:
        return "finished", "finished"
    return "stopped", "not complete: the listing has no END OF JOB"


def _counted(messages):
    counted = dict.fromkeys(messages, 0)
    for message in messages:
        counted[message] += 1
    return [f"{message} ({count} times)" if count > 1 else message for message, count in counted.items() if any(c.isalpha() for c in message)][:20]


def _files(run):
    files = run.files
    named = [("Listing", files.listing), ("Graphics file", files.graphics), *[("Table of balances", path) for path in files.histories if path],
             *[("Files for ParaView", path) for path in files.series if path], ("Fibres", files.fibres),
             *[(f"Masses in {axis}", path) for axis, path in files.masses.items()], ("Console", files.console), ("Notes", files.notes)]
    return [(what, os.path.basename(path), f"{max(os.path.getsize(path) / 1e3, 0.1):,.1f} kB".replace(",", " ")) for what, path in named if path]
