"""zurt-convert: graphics files of earlier runs as VTU files and their list."""
import argparse
import os
import time

import numpy

from ..errors import ZurtError
from ..results.graphics import FIELDS, read_graphics, read_step
from ..results.vtu_writer import compress_cells, part, write_pvd, write_vtu

EXAMPLES = """examples:
  zurt-convert plate.unv                     plate.pvd, plate-0001.vtu ... in the current folder
  zurt-convert -o paraview old/*.unv         several files, into a folder
  zurt-convert --fields concentration --last plate.unv
"""


def parse(arguments):
    parser = argparse.ArgumentParser("zurt-convert", description="Turns graphics files (.unv) of earlier runs into files for ParaView.",
                                     epilog=EXAMPLES, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="+", metavar="FILE.unv")
    parser.add_argument("-o", "--output", default=".", metavar="DIR", help="folder of what is written, made if it is missing")
    parser.add_argument("-f", "--force", action="store_true", help="overwrites files")
    parser.add_argument("--fields", metavar="NAME[,NAME]", help="only these of " + ", ".join(FIELDS.values()))
    parser.add_argument("--last", action="store_true", help="only the last step of each problem")
    options = parser.parse_args(arguments)
    options.fields = options.fields.split(",") if options.fields else list(FIELDS.values())
    for name in options.fields:
        if name not in FIELDS.values():
            parser.error(f"there is no field {name}; a graphics file has {', '.join(FIELDS.values())}")
    return options


def base_name(path, number):
    """Name of the files of a problem, as the program names its own: the second one's with -p2."""
    name = os.path.splitext(os.path.basename(path))[0]
    return name if number == 1 else f"{name}-p{number}"


def fields_with_values(path, problem, wanted):
    """Fluxes and coefficients stand in every graphics file, and are zero all over unless the deck asks for them: those of such a problem
    are left out, and mass fluxes that are the fluxes, as without a molar mass. The last step tells."""
    if wanted == ["concentration"] or not problem.places:
        return wanted
    fields = read_step(path, problem, problem.places[-1], list(FIELDS.values())[1:]).fields
    left_out = {name for name in fields if not fields["coefficient"].any()} if "coefficient" in fields else set()
    if "flux" in fields and "mass_flux" in fields and numpy.allclose(fields["flux"], fields["mass_flux"], rtol=0.0, atol=1.0e-14):
        left_out.add("mass_flux")
    return [name for name in wanted if name not in left_out]


def mesh_parts(problem):
    """(points and cells, parts of Points, Cells and CellData, number of each point). Inner nodes of radial fibres stand behind the mesh as
    vertices."""
    nodes, inner = len(problem.points), len(problem.fibre_points)
    blocks = [(block.kind, block.elements) for block in problem.blocks]
    groups = [numpy.full(len(block.labels), block.group, "<i4") for block in problem.blocks]
    labels = [block.labels.astype("<i4") for block in problem.blocks]
    if inner:
        blocks.append(("vertex", numpy.arange(nodes, nodes + inner)[:, None]))
        groups.append(numpy.zeros(inner, "<i4"))
        labels.append(numpy.zeros(inner, "<i4"))
    if not blocks:
        raise ZurtError(f"problem {problem.number} has no elements")
    sections = {"Points": [part("Points", numpy.concatenate([problem.points, problem.fibre_points]))], "Cells": compress_cells(blocks),
                "CellData": [part("group", numpy.concatenate(groups)), part("label", numpy.concatenate(labels))]}
    counts = nodes + inner, sum(len(rows) for _, rows in blocks)
    return counts, sections, part("node", numpy.arange(1, nodes + inner + 1, dtype="<i4"))


def point_parts(problem, step):
    """Values at the points; those of inner nodes of radial fibres are known for the concentration alone."""
    inner = len(problem.fibre_points)
    parts = []
    for name, values in step.fields.items():
        behind = numpy.full((inner, *values.shape[1:]), numpy.nan)
        if name == "concentration":
            behind[:len(step.fibres)] = step.fibres[:inner]
        if len(values) != len(problem.points):
            raise ZurtError(f"step {step.number}: {len(values)} values of {name} for {len(problem.points)} nodes")
        parts.append(part(name, numpy.concatenate([values, behind])))
    return parts


def convert_problem(path, problem, options):
    """Writes the files of a problem; returns how many steps."""
    base = os.path.join(options.output, base_name(path, problem.number))
    places = problem.places[-1:] if options.last else problem.places
    names = [f"{base}-{place.number:04d}.vtu" for place in places]
    check_free([*names, base + ".pvd"], options.force)
    fields = fields_with_values(path, problem, options.fields)
    counts, sections, node = mesh_parts(problem)
    entries = []
    for place, name in zip(places, names):
        step = read_step(path, problem, place, fields)
        write_vtu(name, counts, {**sections, "PointData": [*point_parts(problem, step), node]}, step.time)
        entries.append((step.time, os.path.basename(name)))
        write_pvd(base + ".pvd", entries)
    if not places:
        write_vtu(f"{base}-mesh.vtu", counts, {**sections, "PointData": [node]}, 0.0)
    print(f"{base}: {counts[0]} points, {counts[1]} cells, {len(places)} step(s) of {', '.join(fields)}"
          + ("" if places else "; no results: the mesh alone"))
    return len(places)


def check_free(names, force):
    for name in names:
        if not force and os.path.exists(name):
            raise ZurtError("this file exists; --force overwrites it", name)


def main(arguments):
    options = parse(arguments)
    begin = time.monotonic()
    try:
        os.makedirs(options.output, exist_ok=True)
        for path in options.files:
            for problem in read_graphics(path):
                try:
                    convert_problem(path, problem, options)
                except ZurtError as error:
                    raise ZurtError(error.message, error.file or path) from None
    except OSError as error:
        raise ZurtError(error.strerror, error.filename) from None
    print(f"{time.monotonic() - begin:.1f} s")
    return 0
