"""The part of a page about a fit or the direct calculation."""
import numpy

from .charts import Curve, line_chart, tidy
from .fields import dense_part, written_steps
from .fit_story import compare_flows, direct_table, fibre_flow, fitted_table, read_searches
from .records import FitPage, Headline, Table


def gather(run, fibres):
    """FitPage of every direction that was fitted or directly calculated. fibres: Run of the model with fibres, or None."""
    searches = read_searches(run)
    pages = []
    for direction in run.masses:
        if fitted := fitted_table(run, direction):
            pages.append(_fit(run, direction, fitted, [s for s in searches if s.direction == direction.lower()], fibres))
        elif direct := direct_table(run, direction):
            pages.append(_direct(run, direction, direct))
    return pages


def _fit(run, direction, table, searches, fibres):
    found, axis = table.fitted, direction.lower()
    same = abs(found["D2D"] - found["D1D"]) <= 1e-6 * abs(found["D1D"])
    curve = tidy(found["D1D"], 5) if same else f"{tidy(found['D1D'], 5)} to {tidy(found['D2D'], 5)}"
    ends = "D1D = D2D of the medium" if same else "D1D to D2D of the medium"
    page = FitPage(f"The fit along {axis}", [_found(f"Coefficient along {axis}", curve, ends, "D1D", searches),
                                             _found(f"HEQ along {axis}", tidy(found["HEQ"], 5), "wall distance", "HEQ", searches)])
    for search in searches:
        page.sentences.append(_sentence(search))
        page.charts += _search_charts(search)
        page.tables.append(_search_table(search))
    if not searches:
        page.sentences.append("The runs of the fit stand on the console alone, which was not kept: zurt.run keeps it, and so does "
                              "zurt --progress progress.txt ... > console.txt in the run's folder.")
    alike = not searches or any(search.key == "HEQ" for search in searches)
    if fibres is not None and not alike:
        page.sentences.append("This fit sought the curve alone, without correction factors, and the run of the model with fibres has those of "
                              "the deck: compare flows only where the deck's factors are 1.")
    _add_flows(page, run, direction, table, fibres, alike)
    page.charts += _coefficient_chart(run) if len(run.masses) == 1 else []
    page.charts = [chart for chart in page.charts if chart]
    return page


def _count(search):
    """Runs of the medium; the error of the last one of a search without a result is not stated, nor that of any first one."""
    return len(search.runs) + (1 if search.finished else 2)


def _found(label, value, words, key, searches):
    """Headline of a parameter, which says when it is no result of the fit."""
    search = next((each for each in searches if each.key == key), None)
    if search is not None and not search.finished:
        return Headline(label, "no result", f"the search ended after {_count(search)} runs; it began with {value}")
    return Headline(label, value, words + (", not fitted" if searches and search is None else ""))


def _sentence(search):
    count = _count(search)
    factors = "with correction factors" if "without" not in search.fibres else "without correction factors"
    end = f", the last within {tidy(abs(search.errors[-1]), 2)} of its mass" if len(search.errors) else ""
    state = "" if search.finished else " It ended without a result: see the notes below."
    return f"Search for the {search.parameter}: {count} runs of the medium against the model with fibres {factors}{end}.{state}"


def _search_charts(search):
    if not len(search.runs):
        return []
    much = numpy.where(search.errors > 0.0, search.errors, numpy.nan)
    little = numpy.where(search.errors < 0.0, -search.errors, numpy.nan)
    path = Curve("size of the error", search.runs, numpy.abs(search.errors), "line", None, 6)
    charts = [line_chart(f"Error in mass, {search.parameter}", [path, Curve("too much", search.runs, much, "points", None, 2),
                                                               Curve("too little", search.runs, little, "points", None, 1)],
                         "run of the medium", "relative error", True, whole_x=True)]
    if numpy.isfinite(search.values).sum() > 1:
        low, high = numpy.min(search.brackets, axis=1), numpy.max(search.brackets, axis=1)
        tried = Curve("value tried", search.runs, search.values, "both", None, 1)
        bracket = Curve("bracket", search.runs, (low + high) / 2.0, "dashed", (low, high), 3)
        note = "The shade is the bracket: between the last value with too little mass and the last with too much."
        charts.append(line_chart(f"Values tried, {search.parameter}", [bracket, tried], "run of the medium", search.key, note=note, whole_x=True))
    return [chart for chart in charts if chart]


def _search_table(search):
    rows = [(str(int(number)), tidy(value, 5) if numpy.isfinite(value) else "", f"{100.0 * error:+.4f} %".replace("-", "−"),
             "too much" if error > 0.0 else "too little",
             f"{tidy(min(bracket), 5)} to {tidy(max(bracket), 5)}" if numpy.isfinite(bracket).all() else "")
            for number, value, error, bracket in zip(search.runs, search.values, search.errors, search.brackets)]
    return Table(f"Runs of the search for the {search.parameter}", ["run", search.key, "error in mass", "", "bracket"], rows,
                 "The program states no error for the first run.", True)


def _add_flows(page, run, direction, table, fibres, alike):
    if table.flows is None or not len(table.flows) or "flow" not in table.flows.dtype.names:
        return
    time, medium = table.flows["time"], table.flows["flow"]
    history = next((each.values for each in run.histories if each is not None), None)
    if history is not None and "inlet" in history.dtype.names and len(run.masses) == 1:
        time, medium = history["time"], history["inlet"]  # all digits, all steps
    reference = fibre_flow(fibres, direction) if fibres is not None else None
    if reference is None:
        page.charts.append(line_chart("Flow through the inlet section", [Curve("fitted medium", time, medium, "both")], "time", "amount per time"))
        page.sentences.append("The flow of the model with fibres is not among a fit's results. With --solve-fibres this report runs that model "
                              "and shows how far each step's flow differs; --fibres RUN takes a run that is there." if fibres is None else
                              f"The run of the model with fibres has no flow along {direction.lower()}: its INDDEG is another.")
        return
    flows = compare_flows(time, reference, medium)
    both = [Curve("model with fibres", flows.time, flows.fibres, "both"), Curve("fitted medium", flows.time, flows.medium, "dashed")]
    difference = Curve("medium over fibres, less one", flows.time, 100.0 * flows.difference, "both", None, 2)
    page.charts.append(line_chart("Flow through the inlet section", both, "time", "amount per time"))
    page.charts.append(line_chart("How far the medium's flow differs", [difference], "time", "per cent"))
    page.tables.append(_flow_table(flows))
    if not alike:
        return
    passed = f"{100.0 * flows.passed:+.3f} %".replace("-", "−")
    page.headlines.append(Headline("Mass of the medium", passed, "against the model with fibres, all steps"))
    page.sentences.append(f"Over all steps the medium passes {abs(100.0 * flows.passed):.3f} % {'more' if flows.passed > 0 else 'less'} than the "
                          f"model with fibres; single steps differ by up to {100.0 * numpy.nanmax(numpy.abs(flows.difference)):.2f} %.")


def _flow_table(flows):
    rows = [(tidy(time), tidy(a), tidy(b), f"{100.0 * d:+.3f} %".replace("-", "−"))
            for time, a, b, d in zip(flows.time, flows.fibres, flows.medium, flows.difference)]
    return Table("Flows of both models", ["time", "fibres", "medium", "difference"], rows, "", True)


def _coefficient_chart(run):
    """The medium's coefficient over the concentration, as the nodes have them in the last step."""
    steps = written_steps(run, 0)
    last = steps[-1][1]() if steps else None
    if last is None or "coefficient" not in last.vectors:
        return []
    inside = numpy.isfinite(last.concentration)
    for axis in range(3):
        part = dense_part(last.points, axis)
        if part:
            spare = 1e-6 * (part[1] - part[0])
            inside &= (last.points[:, axis] > part[0] + spare) & (last.points[:, axis] < part[1] - spare)
    axis = int(numpy.argmax(numpy.nanmax(numpy.abs(last.vectors["flux"][inside]), axis=0))) if "flux" in last.vectors and inside.any() else 0
    order = numpy.argsort(last.concentration[inside])
    chart = line_chart("Coefficient of the medium", [Curve(f"along {'xyz'[axis]}, at the nodes", last.concentration[inside][order],
                                                           last.vectors["coefficient"][inside, axis][order], "points")],
                       "concentration", "coefficient", note="The fitted curve times the factors at HEQ, in the last step.")
    return [chart] if chart else []


def _direct(run, direction, table):
    rows, axis = table.coefficients, direction.lower()
    page = FitPage(f"Direct calculation along {axis}", [Headline(f"Equivalent coefficient along {axis}", tidy(rows["equivalent"][-1], 5),
                                                                 f"of the last step, at concentration {tidy(rows['concentration'][-1])}")])
    if table.porosity is not None:
        page.headlines.append(Headline("Porosity", tidy(table.porosity, 5), "share of fluid in all elements"))
    steps = numpy.arange(1, len(rows) + 1)
    equivalent = Curve("equivalent", steps, rows["equivalent"], "both")
    page.charts.append(line_chart("Equivalent coefficient", [equivalent], "step", "coefficient", whole_x=True))
    flows = table.flows
    if flows is not None and len(flows) and "fibres" in flows.dtype.names:
        page.charts.append(line_chart("Flow through the inlet section", [Curve("model with fibres", flows["step"], flows["fibres"], "both"),
                                                                       Curve("equivalent medium", flows["step"], flows["medium"], "dashed")],
                                      "step", "amount per time", whole_x=True))
        story = compare_flows(flows["step"], flows["fibres"], flows["medium"])
        page.tables.append(Table("Flows of both passes", ["step", "fibres", "medium", "difference"],
                                 [(str(int(s)), tidy(a), tidy(b), f"{100.0 * d:+.2f} %".replace("-", "−"))
                                  for s, a, b, d in zip(flows["step"], flows["fibres"], flows["medium"], story.difference)], "", True))
    page.charts = [chart for chart in page.charts if chart]
    return page
