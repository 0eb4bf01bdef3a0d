"""Sides of elements that carry surface data."""
import numpy

from .job_errors import job_error, place_text, suggest
from .problem_model import function_number

SIDES = {
    1: numpy.array([[0], [1]]),
    2: numpy.array([[0, 1], [1, 2], [2, 3], [3, 0]]),
    3: numpy.array([[0, 1, 2, 3], [4, 5, 6, 7], [0, 1, 5, 4], [1, 2, 6, 5], [2, 3, 7, 6], [3, 0, 4, 7]]),
}


def side_corners(problem, place, name):
    """Corners (m, 1, 2 or 4) from zero of the sides of a group of the mesh."""
    mesh = problem.mesh
    if name in mesh.faces:
        faces = numpy.asarray(mesh.faces[name])
        corners = {1: 1, 2: 2, 3: 2}.get(faces.shape[1], 4)
        return faces[:, :corners]
    lines = any(group.dimension == 1 for group in problem.groups)
    if lines and name in mesh.node_sets and not any(block.name == name for block in mesh.blocks):
        return numpy.asarray(mesh.node_sets[name]).reshape(-1, 1)
    raise job_error(problem.job, place, f"the mesh has no edges or faces of a group \"{name}\"" + suggest(name, mesh.faces))


def row_keys(rows):
    """Rows of node numbers as single comparable values, whatever the order within a row."""
    rows = numpy.ascontiguousarray(numpy.sort(rows, axis=1).astype(numpy.int64))
    return rows.view([("", numpy.int64)] * rows.shape[1]).ravel()


def find_owners(groups, corners):
    """For each side the number of its group (from 0, -1 where none) and element (from 0). corners: node numbers from 1."""
    owner = numpy.full(len(corners), -1)
    element = numpy.zeros(len(corners), dtype=int)
    dimension = {1: 1, 2: 2, 4: 3}[corners.shape[1]]
    wanted = row_keys(corners)
    for number, group in enumerate(groups):
        if group.dimension != dimension:
            continue
        sides = group.elements[:, SIDES[dimension]]
        known = row_keys(sides.reshape(-1, corners.shape[1]))
        order = numpy.argsort(known, kind="stable")
        place = numpy.minimum(numpy.searchsorted(known[order], wanted), len(known) - 1)
        found = (known[order[place]] == wanted) & (owner < 0)
        owner[found] = number
        element[found] = order[place[found]] // len(SIDES[dimension])
    return owner, element


def side_numbers(problem, section):
    """The five numbers of a surface card."""
    values, numbers = section.values, []
    for key, family in (("flux", "NQP"), ("convection", "NHP"), ("environment", "NTOK")):
        numbers.append(function_number(problem, family, values[key]) if values[key] is not None else 0)
    numbers.append(emissivity_number(problem, section))
    if not any(numbers):
        raise job_error(problem.job, section.place, "give a flux, a convection or an emissivity")
    if (values["convection"] is not None or values["emissivity"] is not None) and values["environment"] is None:
        raise job_error(problem.job, section.place, "the key environment is missing: convection and radiation need it")
    return numbers + [values["shape"] or 0]


def emissivity_number(problem, section):
    """Number of the emissivity; with shape factors each number has one of its own."""
    curve, factor = section.values["emissivity"], section.values["shape_factor"]
    if curve is None:
        if factor is not None:
            raise job_error(problem.job, section.place + ("shape_factor",), "a shape factor goes with an emissivity")
        return 0
    if problem.section.tables["radiation"] is None:
        raise job_error(problem.job, section.place + ("emissivity",), "radiation needs [radiation] constant, the Stefan-Boltzmann constant")
    curves = problem.functions["NHR"]
    for number, (known, its_factor) in enumerate(zip(curves, problem.shape_factors), 1):
        if known.points == curve.points and its_factor == factor:
            return number
    curves.append(curve)
    problem.shape_factors.append(factor)
    return len(curves)


def refuse_taken(problem, place, name, corners, numbers, taken):
    """Refuses sides that another table has given other data: the program takes those of the last card alone. taken: (keys, five numbers)."""
    keys = row_keys(corners)
    for known, others in taken:
        twice = numpy.isin(keys, known).sum() if known.dtype == keys.dtype and others != numbers else 0
        if twice:
            raise job_error(problem.job, place, f"{twice} sides of \"{name}\" have other data from a [[surface]] ahead of this one: flux, convection and "
                            "radiation of a side stand in one table")
    taken.append((keys, numbers))


def gather_sides(problem):
    """Gives every element group its sides: (elements from 1, corners, five numbers) for each [[surface]]."""
    taken = []
    for section in problem.section.arrays["surface"]:
        numbers = side_numbers(problem, section)
        for name in section.values["group"]:
            place = section.place + ("group",)
            corners = side_corners(problem, place, name) + 1
            owner, element = find_owners(problem.groups, corners)
            if (owner < 0).any():
                lost = int((owner < 0).sum())
                raise job_error(problem.job, place, f"{lost} of {len(owner)} sides of \"{name}\" belong to no element of a [[group]], the first with "
                                f"the nodes {' '.join(map(str, corners[numpy.argmax(owner < 0)]))}")
            refuse_taken(problem, place, name, corners, numbers, taken)
            for number in numpy.unique(owner):
                mine = owner == number
                problem.groups[number].sides.append((element[mine] + 1, corners[mine], numbers))
                if problem.groups[number].dimension != 2:
                    problem.notes.append(f"{place_text(section.place)}: only sides of quadrilaterals have surface terms")
