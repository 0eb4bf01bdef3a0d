"""Element groups of the deck from blocks of the mesh."""
import numpy

from .job_errors import job_error, place_text, suggest
from .problem_model import DeckGroup, function_number, setting

FAMILIES = {1: "lines", 2: "quadrilaterals", 3: "bricks"}


def blocks_named(problem, place, names):
    """Blocks of the mesh of these groups, in the mesh's order."""
    known = {block.name for block in problem.mesh.blocks}
    for name in names:
        if name not in known:
            raise job_error(problem.job, place, f"the mesh has no elements of a group \"{name}\"" + suggest(name, known))
    return [block for block in problem.mesh.blocks if block.name in names]


def material_number(problem, section):
    """Number of the material that a section names."""
    names = [material.values["name"] for material in problem.section.arrays["material"]]
    name, place = section.values["material"], section.place + ("material",)
    if name is None:
        if len(names) > 1:
            raise job_error(problem.job, section.place, f"the key material is missing: there are {', '.join(names)}")
        return 1
    if name not in names:
        raise job_error(problem.job, place, f"there is no material \"{name}\"" + suggest(name, names))
    number = names.index(name) + 1
    if number > 1 and not setting(problem, "device", "mode"):
        raise job_error(problem.job, place, "without device modelling every element has the first material; several ask for device.mode = 1")
    return number


def source_number(problem, section):
    """Number of the source function of a section; 0 for none."""
    rate, amount = section.values["source"], section.values["source_amount"]
    if rate is not None and amount is not None:
        raise job_error(problem.job, section.place + ("source_amount",), "a source is given by source or by source_amount, not by both")
    if amount is not None and not problem.end:
        raise job_error(problem.job, section.place + ("source_amount",), "a steady problem has no amounts given off; give source")
    return function_number(problem, "NQE", amount if rate is None else rate) if rate is not None or amount is not None else 0


def inherited(part, group):
    """A part without a key of its own has the group's."""
    for key in ("material", "source", "source_amount", "area", "thickness"):
        if key not in part.given and key in group.given and not (key.startswith("source") and part.given & {"source", "source_amount"}):
            part.values[key] = group.values[key]
    return part


def joined(blocks, width):
    """Elements of blocks one behind the other, rows of node numbers from 1, 0 where absent, and their places in the mesh."""
    elements = [numpy.pad(block.elements + 1, ((0, 0), (0, width - block.elements.shape[1]))) for block in blocks]
    return numpy.concatenate(elements), numpy.concatenate([block.source for block in blocks])


def trimmed(elements):
    """Elements without columns of nodes that none of them has."""
    used = numpy.nonzero(elements.any(axis=0))[0]
    return elements[:, :used[-1] + 1]


def gather_group(problem, section):
    """The DeckGroup of a [[group]] table."""
    parts = [inherited(part, section) for part in section.arrays["part"]]
    if bool(parts) == bool(section.values["mesh"]):
        raise job_error(problem.job, section.place, "a group names its elements by mesh = \"GROUP\", or by [[group.part]] tables")
    parts = parts or [section]
    check_sizes(problem, parts)
    blocks = [blocks_named(problem, part.place + ("mesh",), part.values["mesh"]) for part in parts]
    dimensions = {block.dimension for some in blocks for block in some}
    if len(dimensions) != 1:
        raise job_error(problem.job, section.place, f"the elements of a group are of one family, not {' and '.join(FAMILIES[d] for d in sorted(dimensions))}")
    width = max(block.elements.shape[1] for some in blocks for block in some)
    pieces = [joined(some, width) for some in blocks]
    counts = [len(piece[0]) for piece in pieces]
    order = numpy.argsort(numpy.concatenate([piece[1] for piece in pieces]), kind="stable") if len(pieces) > 1 else slice(None)

    def each(values, kind):
        return numpy.repeat(numpy.array(values, dtype=kind), counts)[order]

    def prints(key):
        return each([part.values[key] or 0 if part is not section else 0 for part in parts], int)

    return DeckGroup(
        section, dimensions.pop(), trimmed(numpy.concatenate([piece[0] for piece in pieces])[order]),
        each([material_number(problem, part) for part in parts], int), each([source_number(problem, part) for part in parts], int),
        each([part.values["area"] or 1.0 for part in parts], float), each([part.values["thickness"] or 1.0 for part in parts], float),
        prints("print_points"), prints("print_concentrations"))


def check_named_once(problem, sections):
    """Refuses a group of the mesh in two tables: its elements would count twice."""
    first = {}
    for section in sections:
        for part in [section, *section.arrays["part"]]:
            for name in dict.fromkeys(part.values["mesh"] or []):
                if name in first:
                    raise job_error(problem.job, part.place + ("mesh",), f"the group \"{name}\" is in {place_text(first[name])} already; its elements would "
                                    "count twice")
                first[name] = part.place


def check_sizes(problem, parts):
    """Refuses areas of 0, which the program takes for those of the element before."""
    for part in parts:
        for key in ("area", "thickness"):
            if part.values[key] == 0.0:
                raise job_error(problem.job, part.place + (key,), "a value above 0 is wanted")


def check_family(problem, group):
    """Refuses keys that are not for the elements of a group, and a radius below 0."""
    section = group.section
    if group.dimension != 1 and any("area" in part.given for part in [section, *section.arrays["part"]]):
        raise job_error(problem.job, section.place + ("area",), f"lines have an area, {FAMILIES[group.dimension]} have none")
    if not section.values["axisymmetric"]:
        return
    place = section.place + ("axisymmetric",)
    if group.dimension == 3:
        raise job_error(problem.job, place, "quadrilaterals and lines are turned about an axis, bricks are not")
    axis = 1 if group.dimension == 2 else 0
    rows = group.elements[group.elements > 0] - 1
    least, size = problem.mesh.points[rows, axis].min(), numpy.ptp(problem.mesh.points[rows], axis=0).max()
    if least < -1e-9 * size:
        raise job_error(problem.job, place, f"{'xy'[axis]} is the radius, and goes down to {least:g}: it is 0 or above ([mesh] move, or axes = \"yxz\")")


def gather_groups(problem):
    """All element groups, and refusal of what the program doesn't take."""
    sections, radial = problem.section.arrays["group"], problem.section.arrays["radial"]
    if not sections and not radial:
        raise job_error(problem.job, problem.section.place, "there is no [[group]]: the mesh has " + ", ".join(block.name for block in problem.mesh.blocks))
    if len(sections) + len(radial) > 10:
        raise job_error(problem.job, (sections + radial)[-1].place, "the program takes up to 10 element groups")
    check_named_once(problem, sections)
    problem.groups = [gather_group(problem, section) for section in sections]
    for group in problem.groups:
        check_family(problem, group)
        if group.elements.shape[1] > 8 and setting(problem, "model", "solver") == "sparse":
            raise job_error(problem.job, group.section.place, "the sparse solver takes elements of up to 8 nodes; use the skyline solver or zurt --solver cg")
    amounts = any("source_amount" in part.given for section in sections for part in [section, *section.arrays["part"]])
    rates = any("source" in part.given for section in sections for part in [section, *section.arrays["part"]])
    if amounts and (rates or len(problem.functions["NQE"]) > 1):
        raise job_error(problem.job, sections[0].place, "source_amount is for the only source of a problem; give source in all groups")
    if problem.end and len(problem.functions["NQE"]) == 1 and not amounts:
        # One function alone is taken for an amount, whose slope is the source; a second one makes it a rate.
        problem.functions["NQE"].append(type(problem.functions["NQE"][0])(((0.0, 0.0),), True, ()))
    used = {name for section in sections for part in [section, *section.arrays["part"]] for name in part.values["mesh"] or []}
    left = {}
    for block in problem.mesh.blocks:
        if block.name not in used and block.dimension == max(other.dimension for other in problem.mesh.blocks):
            left[block.name] = left.get(block.name, 0) + len(block.elements)
    problem.notes += [f"group \"{name}\" of the mesh, {count} elements, is in no [[group]]: left out" for name, count in left.items()]
