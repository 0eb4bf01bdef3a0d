"""Fibre sets over the mesh, from the job's tables and files."""
import numpy

from .fibre_file import CorrectionTable, FibreSet, read_fibre_file
from .job_errors import job_error
from .problem_model import setting

FAR_BELOW, FAR_ABOVE = 1e-5, 1e3


ONE_TABLE = CorrectionTable([1000.0], [1.0], [[1.0]])


def device_box(problem):
    """Lengths of the device's box along x, y and z."""
    return numpy.array([setting(problem, "device", key) or 0.0 for key in ("length", "depth", "width")])


def correction_table(problem, section):
    """The table of a section, its shape and size tested."""
    values = section.values
    table = CorrectionTable(values["distances"], values["concentrations"], values["factors"])
    for key, numbers in (("distances", table.distances), ("concentrations", table.concentrations)):
        if any(after <= before for before, after in zip(numbers, numbers[1:])):
            raise job_error(problem.job, section.place + (key,), "the values must rise")
    if len(table.factors) != len(table.distances) or any(len(row) != len(table.concentrations) for row in table.factors):
        raise job_error(problem.job, section.place + ("factors",), f"{len(table.distances)} rows of {len(table.concentrations)} factors are wanted, "
                        f"a row for each distance (found {', '.join(str(len(row)) for row in table.factors)})")
    return table


def check_size(problem, place, table):
    """Refuses distances far from the size of the box: those of another unit."""
    size, positive = float(device_box(problem).max()) * 1000.0, [distance for distance in table.distances if distance > 0.0]
    if positive and size and (max(positive) <= FAR_BELOW * size or min(positive) >= FAR_ABOVE * size):
        raise job_error(problem.job, place + ("distances",), f"the distances run up to {max(positive):g} nm, and the box of the fibres is {size:g} nm long: "
                        "one of them is in another unit. Lengths are in [units] length; write \"5 nm\" or { unit = \"nm\", values = [...] }")


def search_box(problem, section):
    """(low, base, counts, step) of the cards: the high corner is (counts - 1) step + base."""
    values, low = section.values, numpy.asarray(section.values["low"], dtype=float)
    if section.given & {"base", "counts", "step"}:
        if not {"base", "counts", "step"} <= section.given or "high" in section.given:
            raise job_error(problem.job, section.place, "a search box is given by high, or by base, counts and step together")
        if len(values["counts"]) != 3:
            raise job_error(problem.job, section.place + ("counts",), "three counts are wanted, along x, y and z")
        return low, values["base"], values["counts"], values["step"]
    high = device_box(problem) if values["high"] is None else values["high"]
    return low, low, [2, 2, 2], high - low


def gather_set(problem, section, number):
    """The FibreSet of a [[fibre_set]] table."""
    values = section.values
    spheres = values["kind"] == "spheres"
    each = 1 if spheres else 2
    points = values["points"]
    if points is None or not len(points):
        raise job_error(problem.job, section.place, "the key points is missing: fibres of a file stand in [fibres] file")
    if len(points) % each:
        raise job_error(problem.job, section.place + ("points",), "a line takes two points")
    if values["diameter"] <= 0.0:
        raise job_error(problem.job, section.place + ("diameter",), "a diameter is above 0")
    tables = []
    for key in ("table", "normal_table"):
        inside = section.tables[key]
        if inside:
            tables.append(correction_table(problem, inside))
            check_size(problem, inside.place, tables[-1])
        elif key == "table":
            tables.append(ONE_TABLE)
    fibres = points.reshape(-1, each, 3)
    for key in ("diameters", "numbers"):
        if values[key] is not None and len(values[key]) != len(fibres):
            raise job_error(problem.job, section.place + (key,), f"one for each of the {len(fibres)} fibres is wanted")
    return FibreSet(section.place, values["number"] or number, int(spheres), values["diameter"], values["length"] or 0.0, values["wall_cut"] or 0.0,
                    *search_box(problem, section), fibres, values["numbers"] or list(range(1, len(fibres) + 1)),
                    values["diameters"] or [0.0] * len(fibres), values["point_numbers"] or [1, 2], tables)


def gather_fibre_sets(problem):
    """All fibre sets of a problem, and refusal of what the program doesn't take."""
    sections, file = problem.section.arrays["fibre_set"], problem.section.tables["fibres"]
    if not sections and not file:
        return
    place = sections[0].place if sections else file.place
    check_box(problem, place)
    problem.fibre_sets = [gather_set(problem, section, number) for number, section in enumerate(sections, 1)]
    if file:
        problem.fibre_sets += read_fibre_file(problem, file)
    size = device_box(problem).max()
    for fibre_set in problem.fibre_sets:
        if not 1e-6 * size < fibre_set.diameter < 1e2 * size:
            raise job_error(problem.job, fibre_set.place or place, f"a diameter of {fibre_set.diameter:g} in a box of {size:g}: one is in another unit")


def check_box(problem, place):
    """Refuses fibres without a box, and a box of another size than the mesh."""
    if not (setting(problem, "device", "mode") and setting(problem, "device", "nanochannel") > 0):
        raise job_error(problem.job, place, "fibres need device.mode and device.nanochannel above 0")
    box, planar = device_box(problem), all(group.dimension < 3 for group in problem.groups)
    if (box[:2] <= 0.0).any() or (box[2] <= 0.0 and not planar):
        raise job_error(problem.job, place, "fibres lie in the box of device.length, device.depth and device.width, which must be above 0")
    size = float(numpy.ptp(problem.points, axis=0).max())
    if box.max() > 1e3 * size or box.max() < 1e-4 * size:
        raise job_error(problem.job, problem.section.place + ("device", "length"), f"the box of the fibres is {box.max():g} long and the mesh {size:g}: "
                        "one of them is in another unit")
