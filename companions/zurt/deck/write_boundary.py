"""Outlet, boundary card, functions, start values."""
import numpy

from .card_writer import FIXED, put_card, put_comment, put_flow, put_heading, put_rows
from .job_errors import job_error
from .node_data import all_start_groups, runs_of
from .problem_model import setting
from .write_head import has_device_cards, has_time_functions
from .write_materials import check_range, most_points
from .write_mesh import end_of_list

BY_TIME = ("NQE", "NQP", "NTOK")
FAMILY_NAMES = {"NQE": "Volume sources", "NQP": "Surface fluxes", "NTOK": "Environments", "NHP": "Convection coefficients, by concentration",
                "NHR": "Emissivities, by concentration"}


def timed_points(problem, curve, from_start=False):
    """Points of a function of time that reaches beyond the end of the run; a constant is given a time behind it."""
    if curve.constant:
        return ((2.0 * problem.end if problem.end else 1.0, curve.points[0][1]),)
    first, last = curve.points[0][0], curve.points[-1][0]
    if last <= problem.end:
        raise job_error(problem.job, curve.place, f"the table ends at the time {last:g}; it must reach beyond the end of the run, {problem.end:g}")
    if first > 0.0 and (from_start or problem.end == 0.0) and len(curve.points) > 1:
        raise job_error(problem.job, curve.place, f"the table begins at the time {first:g}; it must begin at 0")
    return curve.points


def write_functions(problem, deck):
    """Boundary card and the functions of its families."""
    tables = {family: [timed_points(problem, curve, True) if family in BY_TIME else curve.points for curve in curves]
              for family, curves in problem.functions.items()}
    for curve in problem.functions["NHP"] + problem.functions["NHR"]:
        check_range(problem, curve)
    counts = {}
    for family, name in (("NQP", "MAXTQP"), ("NHP", "MAXTHP"), ("NTOK", "MAXTOK"), ("NQE", "MAXTQE"), ("NHR", "MAXTHR")):
        counts[family] = len(tables[family])
        counts[name] = max(map(len, tables[family]), default=0)
    groups = all_start_groups(problem)
    put_heading(deck, "General boundary card")
    put_card(deck, "General boundary card", {"NPOC": len(groups) if groups else 1, **counts})
    for family in ("NQE", "NQP", "NTOK", "NHP", "NHR"):
        if tables[family]:
            put_comment(deck, f"{FAMILY_NAMES[family]} ({family}): each with number, points, and its arguments and values")
        for number, points in enumerate(tables[family], 1):
            put_function(deck, number, points)
    if tables["NHR"]:
        write_radiation(problem, deck)
    write_starts(problem, deck, groups)


def put_function(deck, number, points):
    """A function: header and points."""
    put_card(deck, "Function header card", {"F": number, "N": len(points)})
    values = numpy.array(points, dtype=float)
    deck.lines += put_rows(deck, "Function point card", {"ARGUMENT": values[:, 0], "VALUE": values[:, 1]}, len(points))


def write_radiation(problem, deck):
    """Radiation card and shape factors, one for each emissivity."""
    given = [factor is not None for factor in problem.shape_factors]
    factors = [1.0 if factor is None else factor for factor in problem.shape_factors] if any(given) else []
    put_heading(deck, "Radiation card")
    put_card(deck, "Radiation card", {"SBC": setting(problem, "radiation", "constant"), "NFO": len(factors)})
    if factors:
        put_heading(deck, "Shape factor cards")
        put_flow(deck, "Shape factor cards", factors)


def iterates(problem):
    """Whether the program takes the problem for one that iterates."""
    curves = [material.values[key] for material in problem.section.arrays["material"] for key in ("diffusion", "diffusion_y", "diffusion_z")
              if material.values[key] is not None]
    device = setting(problem, "device", "mode")
    if any(isinstance(curve, str) for curve in curves) or most_points(problem, [curve for curve in curves if not isinstance(curve, str)]) > 1:
        return True
    capacities = [material.values["capacity"] for material in problem.section.arrays["material"] if material.values["capacity"] is not None]
    if not device and any(isinstance(curve, str) or len(curve.points) > 1 for curve in capacities):
        return True
    return any(len(curve.points) > 1 for curve in problem.functions["NHP"]) or bool(problem.functions["NHR"])


def write_starts(problem, deck, groups):
    """Start values: one for all nodes, or groups of nodes."""
    if not problem.end and not iterates(problem):
        return
    if groups is None:
        put_heading(deck, "Initial value card", "Start value of all nodes.")
        put_card(deck, "Initial value card", {"VALUE": setting(problem, "initial", "value")})
        return
    put_comment(deck, "Groups of start values, each VALUE K1 K2; with K1 numbers of nodes, with K2 ranges N1 KOR N2; 0 ends them")
    for value, numbers in groups:
        runs = runs_of(numbers)
        single = [first for first, last in runs if first == last]
        ranges = [(first, last) for first, last in runs if last > first]
        put_card(deck, "Initial value group", {"VALUE": value, "K1": int(bool(single)), "K2": int(bool(ranges))})
        if single:
            write_node_list(deck, single)
        if ranges:
            first, last = numpy.array(ranges).T
            deck.lines += put_rows(deck, "Initial value range", {"N1": first, "KOR": 1, "N2": last}, len(ranges))
            end_of_list(deck)


def write_node_list(deck, numbers):
    """Numbers of nodes, 14 to a card, ended by a 0."""
    full = len(numbers) // 14 * 14
    put_flow(deck, "Initial value node list", numbers[:full])
    if deck.form == FIXED:
        put_flow(deck, "Initial value node list", numbers[full:] or [0])
    else:
        deck.lines.append(" ".join(str(number) for number in numbers[full:] + [0]) + " /")


def write_time_functions(problem, deck):
    """Time functions, or the outlet, under device modelling."""
    device, outlet = problem.section.tables["device"], problem.section.tables["outlet"]
    nanochannel = has_device_cards(problem)
    if outlet and not (nanochannel and has_time_functions(problem)):
        raise job_error(problem.job, outlet.place, "an outlet needs device.mode 1 or 3 and device.nanochannel above 0")
    if device and device.arrays["time_functions"] and not (has_time_functions(problem) and not nanochannel):
        raise job_error(problem.job, device.place + ("time_functions",), "time functions need device.mode 1 or 3 and no nanochannel")
    if not has_time_functions(problem):
        return
    if nanochannel:
        write_outlet(problem, deck, outlet)
        return
    tables = [timed_points(problem, section.values["table"]) for section in device.arrays["time_functions"]]
    put_heading(deck, "Time function counts")
    put_card(deck, "Time function counts", {"NTABFT": len(tables), "MAXTFT": max(map(len, tables), default=0)})
    for number, points in enumerate(tables, 1):
        put_function(deck, number, points)


def put_pairs(deck, points):
    """Time pair cards."""
    values = numpy.array(points, dtype=float)
    deck.lines += put_rows(deck, "Time pair card", {"TIME": values[:, 0], "VALUE": values[:, 1]}, len(points))


def write_outlet(problem, deck, outlet):
    """Mode and concentration of the outlet, and the time multiplier."""
    values = outlet.values if outlet else {"concentration": 0.0, "mode": 1, "table": None, "coefficients": None}
    if outlet and sum(key in outlet.given for key in ("concentration", "table", "coefficients")) > 1:
        raise job_error(problem.job, outlet.place, "an outlet has a concentration, a table or coefficients, one of them")
    table, coefficients = values["table"], values["coefficients"]
    if table is not None and len(table.points) < 2:
        raise job_error(problem.job, outlet.place + ("table",), "at least two pairs are wanted")
    if coefficients is not None and len(coefficients) != 4:
        raise job_error(problem.job, outlet.place + ("coefficients",), "four are wanted: A, B, D, E")
    if table is None and coefficients is None and values["mode"] not in (0, 1):
        raise job_error(problem.job, outlet.place + ("mode",), "the mode of a constant outlet is 0 or 1")
    mode = len(table.points) if table is not None else -1 if coefficients is not None else values["mode"]
    if outlet and "mode" in outlet.given and values["mode"] != mode:
        raise job_error(problem.job, outlet.place + ("mode",), f"with a table or coefficients it follows from these: {mode}")
    put_heading(deck, "Outlet mode card", "Then its concentration, and the time multiplier.")
    put_card(deck, "Outlet mode card", {"NPOUT2": mode})
    if table is not None:
        put_pairs(deck, table.points)
    elif coefficients is not None:
        put_card(deck, "Outlet coefficients card", {"coefficients": coefficients})
    else:
        put_card(deck, "Outlet concentration card", {"CONCOUT0": values["concentration"]})
    multiplier = outlet.tables["multiplier"] if outlet else None
    groups = multiplier.values["groups"] if multiplier else []
    if multiplier and not groups:
        raise job_error(problem.job, multiplier.place + ("groups",), "name element groups: 1, 2 or both")
    points = multiplier.values["table"].points if multiplier else []
    put_card(deck, "Time multiplier card", {"ITMF1": int(1 in groups), "ITMF2": int(2 in groups), "NTMF": len(points)})
    if points:
        put_pairs(deck, points)


