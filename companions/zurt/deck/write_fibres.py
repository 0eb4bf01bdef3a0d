"""Homogenization card, fibre sets and correction tables."""
import numpy

from .card_writer import put_card, put_comment, put_flow, put_heading
from .fibre_sets import ONE_TABLE, check_size, correction_table
from .job_errors import job_error
from .problem_model import choice_of, is_given, setting


def fit_steps(problem):
    """Steps of one run of a fit: as given, else all of them."""
    given, time = setting(problem, "homogenization", "steps"), problem.section.tables["time"]
    if given is not None or not setting(problem, "homogenization", "fit"):
        return given or 0
    return sum(time.values["steps"]) if time else setting(problem, "steady", "steps")


def check_homogenization(problem):
    """Refuses what would come to nothing."""
    section = problem.section.tables["homogenization"]
    if section is None:
        return
    values = section.values
    if not problem.fibre_sets and (values["medium"] or values["fit"] or not values["direct"]):
        raise job_error(problem.job, section.place, "homogenization needs fibres: [[fibre_set]] or [fibres]")
    if values["fit"] and values["direct"]:
        raise job_error(problem.job, section.place + ("direct",), "a direct calculation makes no fit beside it")
    if values["direct_pass"] and not values["direct"]:
        raise job_error(problem.job, section.place + ("direct_pass",), "it is that of a direct calculation (direct = true)")
    if values["fit"] and not values["medium"]:
        raise job_error(problem.job, section.place + ("fit",), "a fit needs medium = true")
    if values["fit"] and not values["directions"]:
        raise job_error(problem.job, section.place, "the key directions is missing: a fit has at least one")
    if values["fit"] and not (values["fit_curve"] or values["fit_distance"] or values["curve_alone"]):
        raise job_error(problem.job, section.place, "say what to fit: fit_curve, fit_distance or both")
    if values["fit"] and values["steps"] == 0:
        raise job_error(problem.job, section.place + ("steps",), "a run of the fit has at least one step")
    check_curve_ends(problem, section)


def check_curve_ends(problem, section):
    """Refuses ends of the curve where no card has them, and a fit of the distance without them."""
    values, place = section.values, section.place + ("curve_ends",)
    curve = values["fit_curve"] or values["curve_alone"]
    if len(values["curve_ends"]) != 2:
        raise job_error(problem.job, place, "two values are wanted")
    if curve and "curve_ends" in section.given:
        raise job_error(problem.job, place, "they are for a fit of the distance alone; a fit of the curve begins with that of the last material")
    if values["fit"] and not curve and max(values["curve_ends"]) <= 0.0:
        raise job_error(problem.job, section.place, "the key curve_ends is missing: first and last value of the curve that the medium has while the distance "
                        "is fitted")


def write_homogenization(problem, deck):
    """The homogenization card and the card behind it."""
    check_homogenization(problem)
    fits = problem.section.tables["homogenization"] is not None

    def fit_value(key):
        return setting(problem, "homogenization", key) if fits and (setting(problem, "homogenization", "fit")
                                                                    or is_given(problem, "homogenization", key)) else 0

    directions = setting(problem, "homogenization", "directions")
    curve, alone = (setting(problem, "homogenization", key) for key in ("fit_curve", "curve_alone"))
    put_heading(deck, "Homogenization card")
    put_card(deck, "Homogenization card", {
        "NSETS": len(problem.fibre_sets), "IEHM": int(setting(problem, "homogenization", "medium")), "NFIT": int(setting(problem, "homogenization", "fit")),
        "NFSTEP": fit_steps(problem), "NFITMAX": fit_value("largest"), "FITERR": fit_value("tolerance"), "INDFITX": int("x" in directions),
        "INDFITY": int("y" in directions), "INDFITZ": int("z" in directions),
        "INDDEG": choice_of(problem, "homogenization", "main_direction") if fits else 0,
        "IHEQ": int(setting(problem, "homogenization", "fit_distance")), "IDCC": int(curve), "IDIAM": int(setting(problem, "homogenization", "molecule")),
        "IDCSF": int(alone)})
    if not alone and not curve:
        ends = setting(problem, "homogenization", "curve_ends")
        put_heading(deck, "Card of the curve ends")
        put_card(deck, "Card of the curve ends", {"D1D": ends[0], "D2D": ends[1]})


def write_correction_table(deck, table):
    """Sizes, distances, concentrations and rows of factors, each from a new card on."""
    put_card(deck, "Correction table sizes", {"NDIST": len(table.distances), "NCONC": len(table.concentrations)})
    for values in [table.distances, table.concentrations, *table.factors]:
        put_flow(deck, "Correction table values", values)


def write_fibre_set(deck, fibre_set, number):
    """All cards of one set."""
    put_heading(deck, "Fibre set card", f"Set {number}; then search box and grid.")
    put_card(deck, "Fibre set card", {
        "NSETID": fibre_set.number, "NUMFIB": len(fibre_set.points), "IANISY": len(fibre_set.tables) - 1, "NTYPE": fibre_set.kind,
        "DIAM": fibre_set.diameter, "DLENGTH": fibre_set.length, "WALLCUT": fibre_set.wall_cut})
    put_card(deck, "Fibre search box card", {"LOW": fibre_set.low, "BASE": fibre_set.base})
    put_card(deck, "Fibre search grid card", {"N": fibre_set.counts, "STEP": fibre_set.step})
    put_comment(deck, "Fibres, NFIBID NPOINTS DIAMFIB, each with its points, ID x y z")
    for i, points in enumerate(fibre_set.points):
        put_card(deck, "Fibre card", {"NFIBID": fibre_set.numbers[i], "NPOINTS": len(points), "DIAMFIB": fibre_set.diameters[i]})
        for place, point in enumerate(points):
            put_card(deck, "Fibre point card", {"ID": (fibre_set.point_numbers + [0, 0])[place], "POINT": point})
    put_comment(deck, "Correction factors: NDIST NCONC; distances in nanometres; concentrations; a row of factors for each distance")
    for table in fibre_set.tables:
        write_correction_table(deck, table)


def write_fibres(problem, deck):
    """Homogenization card and all fibre sets."""
    write_homogenization(problem, deck)
    for number, fibre_set in enumerate(problem.fibre_sets, 1):
        write_fibre_set(deck, fibre_set, number)


def write_channel_table(problem, deck):
    """The correction table of the nanochannel."""
    device = problem.section.tables["device"]
    inside = device.tables["table"] if device else None
    table = correction_table(problem, inside) if inside else ONE_TABLE
    if inside and numpy.max(table.distances) > 0.0:
        check_size(problem, inside.place, table)
    put_comment(deck, "Table of the nanochannel, read and echoed: NDIST NCONC, distances, concentrations, factors")
    write_correction_table(deck, table)
