"""The part of a page about a fit or the direct calculation."""
import numpy

from .charts import Curve, line_chart, tidy
from .fibre_run import AXES, FitRuns, fibre_flow, fitted_directions, medium_flow
from .fields import dense_part, written_steps
from .fit_story import compare_flows, direct_table, fitted_table, read_searches
from .records import MOST_ROWS, FitPage, Headline, Table


def gather(run, beside=None):
    """FitPage of every direction that was fitted or directly calculated, or whose fit has begun. beside: fibre_run.FitRuns."""
    searches, beside = read_searches(run), beside or FitRuns()
    pages = []
    for direction in AXES:
        own = [search for search in searches if search.direction == direction.lower()]
        if fitted := fitted_table(run, direction):
            pages.append(_fit(run, direction, fitted, own, beside))
        elif direct := direct_table(run, direction):
            pages.append(_direct(run, direction, direct))
        elif own:
            pages.append(_begun(direction, own))
    return pages


def _begun(direction, searches):
    """A direction whose fit has written no result: the run was ended, or has not ended yet."""
    title = f"The fit along {direction.lower()}"
    page = FitPage(title, [Headline(title, "not ended", "no parameters are in its mass file")])
    _add_searches(page, searches, False)
    return page


def _add_searches(page, searches, ended):
    for search in searches:
        page.sentences.append(_sentence(search, ended))
        page.charts += _search_charts(search)
        page.tables.append(_search_table(search))


def _fit(run, direction, table, searches, beside):
    found, axis = table.fitted, direction.lower()
    same = abs(found["D2D"] - found["D1D"]) <= 1e-6 * abs(found["D1D"])
    curve = tidy(found["D1D"], 5) if same else f"{tidy(found['D1D'], 5)} to {tidy(found['D2D'], 5)}"
    ends = "D1D = D2D of the medium" if same else "D1D to D2D of the medium"
    page = FitPage(f"The fit along {axis}", [_found(f"Coefficient along {axis}", curve, ends, "D1D", searches),
                                             _found(f"HEQ along {axis}", tidy(found["HEQ"], 5), "wall distance", "HEQ", searches)])
    _add_searches(page, searches, True)
    if not searches:
        page.sentences.append("The runs of the fit stand on the console alone, which was not kept: zurt.run keeps it, and so does "
                              "zurt --progress progress.txt ... > console.txt in the run's folder.")
    alike = not searches or any(search.key == "HEQ" for search in searches)
    if beside.fibres and not alike:
        page.sentences.append("This fit sought the curve alone, without correction factors, and the run of the model with fibres has those of "
                              "the deck: compare flows only where the deck's factors are 1.")
    _add_flows(page, run, direction, beside, alike)
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


def _sentence(search, ended):
    count = _count(search)
    factors = "with correction factors" if "without" not in search.fibres else "without correction factors"
    end = f", the last within {tidy(abs(search.errors[-1]), 2)} of its mass" if len(search.errors) else ""
    state = "" if search.finished else " It came to no result" + (": see the notes below." if ended else ".")
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
    rows = [(str(int(number)), tidy(value, 5) if numpy.isfinite(value) else "", _percent(error, 4),
             "too much" if error > 0.0 else "too little",
             f"{tidy(min(bracket), 5)} to {tidy(max(bracket), 5)}" if numpy.isfinite(bracket).all() else "")
            for number, value, error, bracket in zip(search.runs, search.values, search.errors, search.brackets)]
    return Table(f"Runs of the search for the {search.parameter}", ["run", search.key, "error in mass", "", "bracket"], rows,
                 "The program states no error for the first run.", True)


def _add_flows(page, run, direction, beside, alike):
    """What both models let through the inlet section along a direction, as far as there are runs that tell."""
    axis, last = direction.lower(), fitted_directions(run)[-1]
    of_medium = medium_flow(run, direction)
    if direction != last:
        page.sentences.append(f"A fit writes the medium's flow along the last of its directions alone, here {last.lower()}. "
                              + (f"That along {axis} is of a fit along {axis} by itself." if direction in beside.media else
                                 f"With --solve-fibres this report makes a fit along {axis} by itself, and shows the flow of that."))
        of_medium = medium_flow(beside.media[direction], direction) if direction in beside.media else None
    reference = fibre_flow(beside.fibres, direction)
    if reference is None and beside.fibres:
        page.sentences.append(f"No run of the model with fibres has a flow along {axis}: its INDDEG is another, or it has no history.")
    elif reference is None and direction == last:
        page.sentences.append("The flow of the model with fibres is not among a fit's results. With --solve-fibres this report runs that model "
                              "and shows how far each step's flow differs; --fibres RUN takes a run that is there.")
    if of_medium is not None:
        times, medium = of_medium
        place = "time" if times is not None and numpy.any(times) else "step"
        flows = compare_flows(times, medium if reference is None else reference, medium)
        if reference is None:
            page.charts.append(line_chart("Flow through the inlet section", [Curve("fitted medium", flows.time, flows.medium, "both")], place,
                                          "amount per time"))
        else:
            _compare(page, axis, flows, place, alike, len(reference))


def _compare(page, axis, flows, place, alike, steps):
    both = [Curve("model with fibres", flows.time, flows.fibres, "both"), Curve("fitted medium", flows.time, flows.medium, "dashed")]
    difference = Curve("medium over fibres, less one", flows.time, 100.0 * flows.difference, "both", None, 2)
    page.charts.append(line_chart("Flow through the inlet section", both, place, "amount per time", whole_x=place == "step"))
    page.charts.append(line_chart("How far the medium's flow differs", [difference], place, "per cent", whole_x=place == "step"))
    page.tables.append(_flow_table(flows, place))
    known = flows.difference[numpy.isfinite(flows.difference)]
    if not alike or not len(known) or not numpy.isfinite(flows.passed):
        return
    count = len(flows.time)
    over = "all steps" if count == steps else f"the first {count} of {steps} steps"
    page.headlines.append(Headline(f"Mass along {axis}", _percent(flows.passed), f"of the medium against the model with fibres, {over}"))
    page.sentences.append(f"Over {over} the medium passes {abs(100.0 * flows.passed):.3f} % {'more' if flows.passed > 0 else 'less'} than the "
                          f"model with fibres; single steps differ by up to {100.0 * numpy.max(numpy.abs(known)):.2f} %.")


def _percent(share, digits=3):
    return f"{100.0 * share:+.{digits}f} %".replace("-", "−") if numpy.isfinite(share) else "–"


def _flow_table(flows, place):
    rows = [(tidy(time), tidy(a), tidy(b), _percent(d)) for time, a, b, d in zip(flows.time, flows.fibres, flows.medium, flows.difference)]
    return Table("Flows of both models", [place, "fibres", "medium", "difference"], rows[:MOST_ROWS], _first_of(rows), True)


def _first_of(rows):
    return f"The first {MOST_ROWS} of {len(rows)} steps." if len(rows) > MOST_ROWS else ""


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
                                 [(str(int(s)), tidy(a), tidy(b), _percent(d, 2))
                                  for s, a, b, d in zip(flows["step"], flows["fibres"], flows["medium"], story.difference)], "", True))
    page.charts = [chart for chart in page.charts if chart]
    return page
