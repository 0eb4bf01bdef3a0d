"""zurt-convert: graphics files of earlier runs as VTU files and their list, or as XDMF."""
import argparse
import os
import time

import numpy

from ..errors import ZurtError
from ..results.graphics import FIELDS, read_graphics, read_step
from ..results.vtu_writer import compress_cells, part, write_pvd, write_vtu
from . import add_version

EXAMPLES = """examples:
  zurt-convert plate.unv                     plate.pvd, plate-0001.vtu ... in the current folder
  zurt-convert --xdmf plate.unv              plate.xdmf and plate.h5, with all steps
  zurt-convert -o paraview old/*.unv         several files, into a folder
  zurt-convert --fields concentration --last plate.unv
"""


def parse(arguments):
    parser = argparse.ArgumentParser("zurt-convert", description="Turns graphics files (.unv) of earlier runs into files for ParaView.",
                                     epilog=EXAMPLES, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="+", metavar="FILE.unv")
    parser.add_argument("-o", "--output", default=".", metavar="DIR", help="folder of what is written, made if it is missing")
    parser.add_argument("-f", "--force", action="store_true", help="overwrites files")
    parser.add_argument("--xdmf", action="store_true", help="writes NAME.xdmf and NAME.h5 with all steps, no .vtu and .pvd")
    parser.add_argument("--fields", metavar="NAME[,NAME]", help="only these of " + ", ".join(FIELDS.values()))
    parser.add_argument("--last", action="store_true", help="only the last step of each problem")
    add_version(parser)
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
    if "flux" in fields and "mass_flux" in fields:
        rounding = 1.0e-12 * numpy.abs(fields["flux"]).max(initial=0.0)
        if numpy.allclose(fields["flux"], fields["mass_flux"], rtol=2.0e-5, atol=rounding):
            left_out.add("mass_flux")
    return [name for name in wanted if name not in left_out]


def mesh_of(problem):
    """(points, blocks of elements, values that all steps have at points, and at cells: [(name, array)]). Inner nodes of radial fibres stand
    behind the mesh as vertices."""
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
    points = numpy.concatenate([problem.points, problem.fibre_points])
    numbers = [("node", numpy.arange(1, nodes + inner + 1, dtype="<i4"))]
    return points, blocks, numbers, [("group", numpy.concatenate(groups)), ("label", numpy.concatenate(labels))]


def values_of(problem, step):
    """[(name, array)] at the points; those of inner nodes of radial fibres are known for the concentration alone."""
    inner = len(problem.fibre_points)
    found = []
    for name, values in step.fields.items():
        behind = numpy.full((inner, *values.shape[1:]), numpy.nan)
        if name == "concentration":
            behind[:len(step.fibres)] = step.fibres[:inner]
        if len(values) != len(problem.points):
            raise ZurtError(f"step {step.number}: {len(values)} values of {name} for {len(problem.points)} nodes")
        found.append((name, numpy.concatenate([values, behind])))
    return found


def write_as_vtu(base, mesh, steps, names):
    """Writes a file for each of the steps (time, values) under these names, and their list; that of the mesh alone where there is no step."""
    points, blocks, numbers, cell_values = mesh
    counts = len(points), sum(len(rows) for _, rows in blocks)
    fixed = {"Points": [part("Points", points)], "Cells": compress_cells(blocks), "CellData": [part(*pair) for pair in cell_values]}
    node, entries = [part(*pair) for pair in numbers], []
    for (moment, values), name in zip(steps, names):
        write_vtu(name, counts, {**fixed, "PointData": [*(part(*pair) for pair in values), *node]}, moment)
        entries.append((moment, os.path.basename(name)))
        write_pvd(base + ".pvd", entries)
    if not entries:
        write_vtu(names[0], counts, {**fixed, "PointData": node}, 0.0)


def write_as_xdmf(base, mesh, steps):
    """Writes the steps (time, values) into one file; the mesh alone as a step of time 0 where there is none."""
    from ..results.xdmf_writer import add_step, begin_series, end_series
    series = begin_series(base, *mesh)
    try:
        for moment, values in steps:
            add_step(series, moment, values)
        if not series.steps:
            add_step(series, 0.0, [])
    finally:
        end_series(series)  # what has been written stays readable, however this ends


def convert_problem(path, problem, options):
    """Writes the files of a problem."""
    base = os.path.join(options.output, base_name(path, problem.number))
    places = problem.places[-1:] if options.last else problem.places
    base += "" if places else "-mesh"
    numbers = [place.number for place in places]
    numbers = numbers if len(set(numbers)) == len(numbers) else range(1, len(places) + 1)
    names = [f"{base}-{number:04d}.vtu" for number in numbers] or [base + ".vtu"]
    check_free([base + ".xdmf", base + ".h5"] if options.xdmf else [*names, base + ".pvd"], options.force)
    fields = fields_with_values(path, problem, options.fields)
    mesh = mesh_of(problem)
    read = (read_step(path, problem, place, fields) for place in places)
    steps = ((step.time, values_of(problem, step)) for step in read)
    if options.xdmf:
        write_as_xdmf(base, mesh, steps)
    else:
        write_as_vtu(base, mesh, steps, names)
    held = f"{len(places)} step(s) of {', '.join(fields) or 'no field: those asked for are zero all over'}" if places else "no results: the mesh alone"
    print(f"{base}: {len(mesh[0])} points, {sum(len(rows) for _, rows in mesh[1])} cells, {held}")


def check_free(names, force):
    for name in names:
        if not force and os.path.exists(name):
            raise ZurtError("this file exists; --force overwrites it", name)


def check_names(paths):
    """Files of one name from two folders would overwrite each other."""
    first = {}
    for path in paths:
        name = base_name(path, 1)
        if name in first:
            raise ZurtError(f"its files would have the names of those of {first[name]}: convert it into another folder (--output)", path)
        first[name] = path


def main(arguments):
    options = parse(arguments)
    begin = time.monotonic()
    check_names(options.files)
    try:
        os.makedirs(options.output, exist_ok=True)
        for path in options.files:
            for problem in read_graphics(path):
                try:
                    convert_problem(path, problem, options)
                except ZurtError as error:
                    raise ZurtError(error.message, error.file or path) from None
    except OSError as error:
        raise ZurtError(error.strerror or str(error), error.filename) from None
    print(f"{time.monotonic() - begin:.1f} s")
    return 0
