"""What is stored and what flows, from the table of balances."""
import re

import numpy

from .charts import Curve, line_chart, tidy
from .records import Bar, Headline

FLOWS = {"held": "held nodes", "flux": "given flux", "convection": "convection", "radiation": "radiation", "sources": "sources",
         "fibres": "into fibres", "storing": "storing", "inlet": "inlet section"}
SHORTEST = 3  # steps: below it there is no curve


def label_of(name):
    """A column of the table in words."""
    match = re.fullmatch(r"held_f(\d+)", name)
    return f"held, function {match.group(1)}" if match else FLOWS.get(name, name)


def headlines(history):
    """Figures for the top of the page, [Headline]."""
    values, names, found = history.values, history.values.dtype.names, []
    if not len(values):
        return found
    last = values[-1]
    if "stored" in names and numpy.isfinite(last["stored"]):
        start = stored_at_start(values)
        start = 0.0 if abs(start) < 1e-8 * numpy.nanmax(numpy.abs(values["stored"])) else start
        hint = f"at time {tidy(last['time'])}; {tidy(start)} at the start" if numpy.isfinite(start) else f"at time {tidy(last['time'])}"
        found.append(Headline("Stored at the end", tidy(last["stored"]), hint))
        if numpy.isfinite(start) and start > 1e-12 * abs(last["stored"]) and last["stored"] < start * (1.0 - 1e-6):
            found.append(Headline("Released", f"{tidy(100.0 * (1.0 - last['stored'] / start))} %", "of what was stored at the start"))
    flow_in, flow_out = in_and_out(last, names)
    if numpy.isfinite(flow_in) and (flow_in or flow_out):
        found.append(Headline("Flow in, out", f"{tidy(flow_in)}, {tidy(flow_out)}", "in the last step, per unit time"))
    worst = numpy.nanmax(values["error"]) if numpy.isfinite(values["error"]).any() else numpy.nan
    if numpy.isfinite(worst):
        found.append(Headline("Balance error", tidy(worst, 2), "largest of all steps, over what moves"))
    return found


def stored_at_start(values):
    """What the mesh held before the first step, as the discrete equations count it."""
    first = values[0]
    return float(first["stored"] - first["storing"] * first["time"])


def in_and_out(row, names):
    """Sums of the flows into and out of the mesh."""
    held = [name for name in names if name.startswith("held_f")] or [name for name in names if name == "held"]
    signed = [row[name] for name in [*held, *[name for name in ("flux", "convection", "radiation", "sources") if name in names]]]
    signed += [-row["fibres"]] if "fibres" in names else []
    return sum(value for value in signed if value > 0.0), -sum(value for value in signed if value < 0.0)


def charts(history):
    """Stored amounts, flows and the balance over time."""
    values, names = history.values, history.values.dtype.names
    if len(values) < SHORTEST or not numpy.ptp(values["time"]):
        return []
    time, found = values["time"], []
    materials = [name for name in names if re.fullmatch(r"stored_\d+", name)]
    stored = [Curve("stored", time, values["stored"])] if "stored" in names else []
    stored += [Curve(f"material {name[7:]}", time, values[name], "dashed") for name in materials] if len(materials) > 1 else []
    stored += [Curve("in radial fibres", time, values["stored_fibres"])] if "stored_fibres" in names else []
    found.append(line_chart("Stored amount", stored, "time", "amount"))
    size = {name: numpy.nanmax(numpy.abs(values[name]), initial=0.0) for name in names if name in FLOWS or name.startswith("held_f")}
    shown = [name for name in size if size[name] > 1e-9 * max(size.values()) and not (name == "held" and any(n.startswith("held_f") for n in size))]
    found.append(_flow_chart(values, shown))
    found.append(line_chart("Error of the balance", [Curve("error", time, values["error"])], "time", "imbalance over what moves", True))
    return [chart for chart in found if chart]


def _flow_chart(values, shown):
    """Flows over time; their sizes on a logarithmic axis where the first steps would hide all others."""
    style = {name: "dashed" if name in ("storing", "inlet") else "line" for name in shown}
    steep = any(numpy.nanmax(numpy.abs(values[name])) > 10.0 * numpy.nanmedian(numpy.abs(values[name])) for name in shown)
    if not steep or any(numpy.nanmin(values[name]) < 0.0 < numpy.nanmax(values[name]) for name in shown):
        curves = [Curve(label_of(name), values["time"], values[name], style[name]) for name in shown]
        return line_chart("Flows", curves, "time", "amount per time", note="Positive into the mesh; the inlet section's to its high side.")
    negative = {"storing": " (shrinking)", "inlet": " (to its low side)"}
    labels = [label_of(name) + (negative.get(name, " (out)") if values[name][-1] < 0.0 else "") for name in shown]
    curves = [Curve(label, values["time"], numpy.abs(values[name]), style[name]) for label, name in zip(labels, shown)]
    return line_chart("Size of the flows", curves, "time", "amount per time", True)


def bars(history):
    """Bar of each flow of the last step."""
    values, names = history.values, history.values.dtype.names
    if not len(values):
        return []
    last = values[-1]
    shown = [name for name in names if (name in FLOWS or name.startswith("held_f")) and numpy.isfinite(last[name])]
    if any(name.startswith("held_f") for name in shown):
        shown.remove("held")
    largest = max((abs(last[name]) for name in shown), default=0.0)
    if largest == 0.0:
        return []
    both = any(last[name] < -1e-9 * largest for name in shown) and any(last[name] > 1e-9 * largest for name in shown)
    rows = []
    for name in shown:
        share = abs(last[name]) / largest * (50.0 if both else 100.0)
        positive = last[name] >= 0.0
        left = 50.0 if both and positive else 50.0 - share if both else 0.0
        rows.append(Bar(label_of(name), _flow_text(last[name], largest), left, share, bool(positive)))
    return rows


def _flow_text(flow, largest):
    return tidy(flow) if abs(flow) > 1e-8 * largest else "0" if flow == 0.0 else "≈ 0"


def bars_title(history):
    time = history.values["time"][-1] if len(history.values) else 0.0
    return f"Flows at time {tidy(time)}" if time else "Flows"


def probe_charts(history):
    """Concentrations at the probes over time."""
    values = history.values
    probes = [name for name in values.dtype.names if re.fullmatch(r"c_\d+", name)]
    if not probes or len(values) < 2:
        return []
    curves = [Curve(f"node {name[2:]}", values["time"], values[name]) for name in probes]
    charts = [line_chart("Concentration at the probes", curves[k:k + 8], "time", "concentration") for k in range(0, len(curves), 8)]
    return [chart for chart in charts if chart]
