"""Indicators and values of nodes, start values, radial fibres."""
import numpy

from .job_errors import job_error
from .problem_model import RadialFibre, setting
from .selection import select_nodes


def nearest_nodes(problem, at, count):
    """Numbers of the nodes of the mesh nearest to a point; of equally far ones the lowest."""
    distance = numpy.linalg.norm(problem.mesh.points * problem.job.length_factor - at, axis=1)
    size = float(distance.max()) or 1.0
    order = numpy.lexsort((numpy.arange(len(distance)), numpy.round(distance / size, 9)))
    return sorted((order[:count] + 1).tolist())


def gather_radial(problem):
    """Radial fibres with their nodes; assembled ones bring nodes of their own, which stand behind those of the mesh."""
    extra = []
    for section in problem.section.arrays["radial"]:
        common = section.values["common_nodes"]
        substructured = section.values["substructured"]
        if common > 1 and not substructured:
            raise job_error(problem.job, section.place + ("common_nodes",), "common nodes are those of substructured fibres (substructured = true)")
        if common not in (1, 4, 8):
            raise job_error(problem.job, section.place + ("common_nodes",), "1, 4 or 8 nodes share the flux of a fibre")
        if not section.arrays["fibre"]:
            raise job_error(problem.job, section.place, "there is no [[radial.fibre]]")
        wanted = common if substructured else 1
        most = max(fibre.values["rings"] for fibre in section.arrays["fibre"])
        if section.values["most_rings"] is not None and not most <= section.values["most_rings"] <= 10:
            raise job_error(problem.job, section.place + ("most_rings",), f"the fibres have up to {most} rings, and there can be 10")
        fibres = []
        for fibre in section.arrays["fibre"]:
            if fibre.values["nodes"] and problem.job.settings.values["renumber"] != "false":
                raise job_error(problem.job, fibre.place + ("nodes",), "numbers of nodes want [deck] renumber = false")
            nodes = fibre.values["nodes"] or nearest_nodes(problem, fibre.values["at"], wanted)
            if len(nodes) != wanted or not all(1 <= node <= len(problem.mesh.points) for node in nodes):
                raise job_error(problem.job, fibre.place + ("nodes",), f"{wanted} numbers of nodes of the mesh are wanted")
            continuum, rings = nodes[0], fibre.values["rings"]
            if not substructured:
                first = len(problem.mesh.points) + len(extra) + 1
                nodes = list(range(first, first + rings)) + nodes
                extra += [fibre.values["at"]] * rings
            fibres.append(RadialFibre(fibre, nodes if not substructured or common > 1 else [], continuum))
        problem.radial.append((section, fibres))
    points = problem.mesh.points * problem.job.length_factor if problem.job.length_factor != 1.0 else problem.mesh.points
    problem.points = numpy.concatenate([points, numpy.array(extra).reshape(-1, 3)]) if extra else points


def gather_nodes(problem):
    """Indicators and values of the node cards; held nodes and start values as the job names them."""
    count = len(problem.points)
    problem.indicator, problem.value = numpy.zeros(count, dtype=int), numpy.zeros(count)
    for section in problem.section.arrays["shared"]:
        problem.indicator[select_nodes(problem, section)] = -1
    for section in problem.section.arrays["held"]:
        rows = select_nodes(problem, section)
        problem.indicator[rows] = 1
        problem.held.append((section, rows))
    initial = problem.section.tables["initial"]
    for section in initial.arrays["group"] if initial else []:
        problem.starts.append((section.values["value"], select_nodes(problem, section)))
    # A held node that is in a group of start values must have the same value on its card.
    for value, rows in [(setting(problem, "initial", "value"), numpy.arange(count)), *problem.starts] if problem.starts else []:
        problem.value[rows[problem.indicator[rows] > 0]] = value
    constant = setting(problem, "prescribed", "constant")
    outlet = problem.section.tables["outlet"]
    if constant:  # the values on the cards are those that hold, whatever start values are
        problem.value[problem.indicator > 0] = outlet.values["concentration"] if outlet else 0.0
    for section in problem.section.arrays["node_value"]:
        problem.value[select_nodes(problem, section)] = section.values["value"]
    if constant:
        hold_constants(problem)


def hold_constants(problem):
    """Puts constants of held nodes on their cards; of a node in several tables the last one counts."""
    before = problem.value.copy()
    for section, rows in problem.held:
        value = section.values["value"]
        if value is None:
            problem.value[rows] = before[rows]
            continue
        if not value.constant:
            raise job_error(problem.job, section.place + ("value",), "with prescribed.constant held values are constants")
        problem.value[rows] = value.points[0][1] * section.values["factor"]


def all_start_groups(problem):
    """(value, node numbers from 1) of each group of start values, or None where one value serves all nodes."""
    if not problem.starts:
        return None
    everywhere = setting(problem, "initial", "value")
    owner = numpy.zeros(len(problem.points), dtype=int)
    for number, (_, rows) in enumerate(problem.starts, 1):
        owner[rows] = number
    values = [everywhere] + [value for value, _ in problem.starts]
    # Held nodes whose cards have values of their own stay out.
    owner[(problem.indicator > 0) & (problem.value != numpy.array(values)[owner])] = -1
    groups = [(value, numpy.nonzero(owner == number)[0] + 1) for number, value in enumerate(values)]
    groups = [(value, numbers) for value, numbers in groups if len(numbers)]
    if not groups:
        return None
    return groups if len(groups) > 1 else groups + [(groups[0][0], groups[0][1][:1])]


def runs_of(numbers):
    """Rising numbers as runs (first, last) of neighbours."""
    breaks = numpy.nonzero(numpy.diff(numbers) != 1)[0]
    first = numpy.concatenate([[0], breaks + 1])
    last = numpy.concatenate([breaks, [len(numbers) - 1]])
    return list(zip(numbers[first].tolist(), numbers[last].tolist()))
