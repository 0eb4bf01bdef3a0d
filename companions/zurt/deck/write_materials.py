"""Cards of materials."""
import numpy

from .card_writer import put_card, put_heading, put_rows
from .job_errors import job_error
from .job_values import BUILT_IN, Curve
from .problem_model import setting

UNIT_CAPACITY = Curve(((0.0, 1.0),), True, ())


def known_values(problem):
    """(value, what it is) of all concentrations that the job gives: start values and those of held nodes."""
    values = [(setting(problem, "initial", "value"), "the start value")] + [(value, "a start value") for value, _ in problem.starts]
    for section, _ in problem.held:
        curve = section.values["value"]
        if curve is not None:
            values += [(value * section.values["factor"], "a prescribed value") for _, value in curve.points]
        else:
            outlet = problem.section.tables["outlet"]
            values.append((outlet.values["concentration"] if outlet else 0.0, "the value of held nodes"))
    return values


def check_diffusion(problem, curve, absolute):
    """Refuses negative coefficients, and a curve that doesn't hold the concentrations that the job gives."""
    if curve == BUILT_IN:
        return
    if any(value < 0.0 and argument >= 0.0 for argument, value in curve.points):
        raise job_error(problem.job, curve.place, "a diffusion coefficient is 0 or above at concentrations of 0 and above")
    check_range(problem, curve, absolute)


def check_range(problem, curve, absolute=False):
    """Refuses a curve by concentration that doesn't hold the concentrations that the job gives; with absolute their absolute values."""
    if len(curve.points) == 1:
        return
    low, high = curve.points[0][0], curve.points[-1][0]
    for value, what in known_values(problem):
        value = abs(value) if absolute else value
        if not low <= value <= high:
            raise job_error(problem.job, curve.place, f"{what}, {value:g}, lies outside the curve, which reaches from {low:g} to {high:g}; "
                            "it must hold every concentration that any iteration meets")


def put_curve(deck, header, point, number, points, names):
    """A curve: its header and its points."""
    put_card(deck, header, {"N": number, "P": len(points)})
    values = numpy.array(points, dtype=float)
    deck.lines += put_rows(deck, point, {names[0]: values[:, 0], names[1]: values[:, 1]}, len(points))


def most_points(problem, curves):
    """Largest number of points: 2 at least, so that a problem of constants iterates, unless it is to be linear."""
    return max([len(curve.points) for curve in curves] + [1 if setting(problem, "model", "linear") else 2])


def check_materials(problem):
    """Materials, at least one, of different names."""
    materials = problem.section.arrays["material"]
    if not materials:
        raise job_error(problem.job, problem.section.place, "there is no [[material]]")
    names = [material.values["name"] for material in materials]
    for material in materials:
        if names.count(material.values["name"]) > 1:
            raise job_error(problem.job, material.place + ("name",), "two materials have this name")
    return materials


def device_materials(problem, deck, materials):
    """Diffusion curves under device modelling."""
    curves = []
    for material in materials:
        curve = material.values["diffusion"]
        other = material.given & {"diffusion_y", "diffusion_z", "density", "capacity", "multipliers", "highest", "lowest"}
        capacity = material.values["capacity"]
        if other - {"capacity", "density"} or curve == BUILT_IN or material.values["density"] != 1.0 or (capacity is not None and (
                capacity == BUILT_IN or any(value != 1.0 for _, value in capacity.points))):
            raise job_error(problem.job, material.place, "with device.mode a material is one diffusion curve; its capacity is 1")
        check_diffusion(problem, curve, True)
        curves.append(curve)
    put_heading(deck, "Material header card under NDS", "Most points of a curve.")
    put_card(deck, "Material header card under NDS", {"MAXPMAT": most_points(problem, curves)})
    for number, (material, curve) in enumerate(zip(materials, curves), 1):
        put_heading(deck, "Diffusion curve header", f"Material {material.values['name']}, then its points.")
        put_curve(deck, "Diffusion curve header", "Diffusion curve point", number, curve.points, ("CONC", "DIFF"))


def diffusion_numbers(problem, material, curves):
    """Numbers of the functions along x, y and z; new ones are added to curves."""
    values, numbers = material.values, []
    if (values["diffusion_y"] is None) != (values["diffusion_z"] is None):
        raise job_error(problem.job, material.place, "diffusion_y and diffusion_z go together")
    given = [values["diffusion"]] + ([values["diffusion_y"], values["diffusion_z"]] if values["diffusion_y"] is not None else [])
    if BUILT_IN in given:
        if len(given) > 1:
            raise job_error(problem.job, material.place + ("diffusion",), "a built-in material has one coefficient for all directions")
        return [0, 0, 0]
    for curve in given:
        check_diffusion(problem, curve, False)
        same = [number for number, known in enumerate(curves, 1) if known.points == curve.points]
        if not same:
            curves.append(curve)
        numbers.append(same[0] if same else len(curves))
    return numbers + [0] * (3 - len(numbers))


def plain_materials(problem, deck, materials):
    """Materials without device modelling: cards, diffusion functions, capacity curves."""
    diffusion, capacities = [], []
    numbers = [diffusion_numbers(problem, material, diffusion) for material in materials]
    for number, material in enumerate(materials, 1):
        capacity = material.values["capacity"]
        if capacity is None and problem.end:
            capacity = UNIT_CAPACITY
        if capacity is not None and capacity != BUILT_IN and any(value < 0.0 for _, value in capacity.points):
            raise job_error(problem.job, capacity.place, "a capacity is 0 or above")
        if capacity is not None and capacity != BUILT_IN:
            capacities.append((number, capacity))
    built_in = sum(material.values["diffusion"] == BUILT_IN for material in materials)
    built_in_capacity = sum(material.values["capacity"] == BUILT_IN for material in materials)
    if built_in_capacity and capacities:
        raise job_error(problem.job, materials[0].place, "capacities are built-in for all materials or for none")
    put_heading(deck, "Material header card")
    put_card(deck, "Material header card", {
        "NANLK": built_in, "NTABK": len(diffusion), "MAXTK": most_points(problem, diffusion) if diffusion else 0, "NANLC": built_in_capacity,
        "NTABC": len(capacities), "MAXTC": max((len(curve.points) for _, curve in capacities), default=0)})
    put_heading(deck, "Material card", ", ".join(f"{number} {material.values['name']}" for number, material in enumerate(materials, 1)) + ".")
    for own, material in zip(numbers, materials):
        values = material.values
        if len(values["multipliers"]) != 3:
            raise job_error(problem.job, material.place + ("multipliers",), "three are wanted, along x, y and z")
        put_card(deck, "Material card", {"NFUN": own, "PROP": values["multipliers"], "DENS": values["density"], "TOPM": values["highest"],
                                         "TMNM": values["lowest"]})
    for number, curve in enumerate(diffusion, 1):
        put_heading(deck, "Conduction function header", "Then its points, concentration and coefficient.")
        put_curve(deck, "Conduction function header", "Conduction function point", number, curve.points, ("ARGUMENT", "VALUE"))
    for number, curve in capacities:
        put_heading(deck, "Specific heat curve header", "Number of the material; then its points, concentration and capacity.")
        put_curve(deck, "Specific heat curve header", "Specific heat curve point", number, curve.points, ("ARGUMENT", "VALUE"))


def write_materials(problem, deck):
    """All cards of materials."""
    materials = check_materials(problem)
    if setting(problem, "device", "mode"):
        device_materials(problem, deck, materials)
    else:
        plain_materials(problem, deck, materials)
