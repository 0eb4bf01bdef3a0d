"""Nodes that a table of the job names: by groups of the mesh, by planes, by numbers."""
import re

import numpy

from .job_errors import job_error, suggest
from .quantities import UnitFault, convert

PLANE = re.compile(r"\s*([xyz])\s*=\s*(.+?)\s*$")


def plane_nodes(problem, place, text):
    """Rows of the nodes in a plane; those within 1e-9 of the mesh's size count."""
    match = PLANE.match(text)
    if not match:
        raise job_error(problem.job, place, f"\"{text}\" is no plane; write \"x = 0.5\" or \"z = max\"")
    column = problem.mesh.points[:, "xyz".index(match.group(1))] * problem.job.length_factor
    where = match.group(2)
    try:
        level = {"min": column.min(), "max": column.max()}.get(where)
        level = convert(where, "length", problem.job.units, problem.job.deck_units) if level is None else level
    except UnitFault as fault:
        raise job_error(problem.job, place, str(fault)) from None
    size = float(numpy.ptp(problem.mesh.points, axis=0).max()) * problem.job.length_factor
    rows = numpy.nonzero(numpy.abs(column - level) <= 1e-9 * max(size, abs(level)))[0]
    if not len(rows):
        raise job_error(problem.job, place, f"no node lies in the plane {text}; {match.group(1)} runs from {column.min():g} to {column.max():g}")
    return rows


def group_nodes(problem, place, name):
    """Rows of the nodes of a group of the mesh."""
    sets = problem.mesh.node_sets
    if name in sets:
        return numpy.asarray(sets[name])
    for block in problem.mesh.blocks:
        if block.name == name:
            return numpy.unique(block.elements[block.elements >= 0])
    raise job_error(problem.job, place, f"the mesh has no group \"{name}\"" + suggest(name, set(sets) | {block.name for block in problem.mesh.blocks}))


def select_nodes(problem, section):
    """Rows of all nodes that a section with the keys group, plane and nodes names, rising."""
    rows, values = [], section.values
    for name in values["group"] or []:
        rows.append(group_nodes(problem, section.place + ("group",), name))
    for text in values["plane"] or []:
        rows.append(plane_nodes(problem, section.place + ("plane",), text))
    if values["nodes"] and problem.job.settings.values["renumber"] != "false":
        raise job_error(problem.job, section.place + ("nodes",), "numbers of nodes want [deck] renumber = false")
    for number in values["nodes"] or []:
        if not 1 <= number <= len(problem.mesh.points):
            raise job_error(problem.job, section.place + ("nodes",), f"node {number}: the mesh has {len(problem.mesh.points)} nodes")
        rows.append(numpy.array([number - 1]))
    if not rows:
        raise job_error(problem.job, section.place, "say which nodes: group, plane or nodes")
    return numpy.unique(numpy.concatenate(rows))
