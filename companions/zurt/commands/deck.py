"""zurt-deck: from a mesh and a job file to a deck."""
import argparse
import os
import subprocess

from ..deck.card_writer import ALL_FREE, FIXED
from ..deck.deck_building import build_deck, prescribed_path, program_has
from ..deck.job_file import read_job
from ..deck.meshes import read_job_mesh
from ..deck.problem_model import values_of
from ..errors import ZurtError
from ..mesh.numbering import advise_solver
from ..mesh.reading import read_mesh
from ..program import find_program
from . import add_version

EXAMPLES = """examples:
  zurt-deck plate.msh plate.toml                  writes plate.dat
  zurt-deck plate.msh plate.toml --check          and has zurt check it
  zurt-deck plate.msh plate.toml -o run/plate.dat
  zurt-deck plate.msh                             shows groups and elements of the mesh

The job file's tables and keys, with a first example: docs/jobs.md."""

SHAPES = {(1, 2): "lines", (1, 3): "lines of 3 nodes", (2, 4): "quadrilaterals", (3, 8): "bricks"}
FORMS = {FIXED: "fixed format", ALL_FREE: "free cards throughout"}


def parse(arguments):
    """The command line."""
    parser = argparse.ArgumentParser(prog="zurt-deck", description="Writes a deck from a mesh and a job file.", epilog=EXAMPLES,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="+", metavar="MESH JOB.toml", help="the mesh, in any format that meshio or gmsh reads, and the job file; the job "
                        "file alone where it names the mesh; the mesh alone to see its groups")
    parser.add_argument("-o", "--output", metavar="DECK", help="the deck; without it the job file's name with .dat, in the current folder")
    parser.add_argument("-f", "--force", action="store_true", help="overwrites files that exist")
    parser.add_argument("--check", action="store_true", help="has zurt check the deck (zurt --check)")
    add_version(parser)
    return parser.parse_args(arguments)


def shape_name(dimension, nodes):
    """What elements are called."""
    family = {1: "lines", 2: "quadrilaterals", 3: "bricks"}[dimension]
    return SHAPES.get((dimension, nodes), f"{family} of {nodes} nodes")


def count_text(counts):
    """Counts by name in one line."""
    return ", ".join(f"{count} {name}" for name, count in counts.items()) or "nothing"


def show_mesh(path, mesh):
    """Nodes, elements by shape, groups, notes."""
    shapes, groups = {}, {}
    for block in mesh.blocks:
        name = shape_name(block.dimension, block.elements.shape[1])
        shapes[name] = shapes.get(name, 0) + len(block.elements)
        groups.setdefault(block.name, []).append(f"{len(block.elements)} {name}")
    print(f"Mesh {path}: {len(mesh.points)} nodes, {count_text(shapes)}")
    for name, parts in groups.items():
        print(f"  elements \"{name}\": {', '.join(parts)}")
    for name, faces in mesh.faces.items():
        print(f"  sides \"{name}\": {len(faces)}")
    others = [f"\"{name}\" ({len(rows)})" for name, rows in mesh.node_sets.items() if name not in groups and name not in mesh.faces]
    if others:
        print(f"  nodes {', '.join(others)}")
    for note in mesh.notes:
        print(f"  note: {note}")


def show_band(problem, band):
    """Band and advised solver."""
    if band:
        before, after = band
        print(f"Skyline store {after} words" + (f", {before} before nodes were sorted" if after != before else "; the mesh's numbering stays"))
    if problem.mesh.blocks:
        advice = advise_solver(problem.mesh)
        print(f"Solver advised: {advice.name} ({advice.reason})" + (": zurt --solver cg" if advice.name == "cg" else ""))


def check_target(path, inputs, force):
    """Refuses to write over a file that has been read, and without `force` over any other."""
    if not os.path.exists(path):
        return
    if any(os.path.samefile(path, name) for name in inputs):
        raise ZurtError("this file has been read, and is not written over: name another one (--output)", path)
    if not force:
        raise ZurtError("the file exists; --force overwrites it", path)


def write_lines(path, lines):
    """A file of lines, in a folder that is made if it is missing."""
    try:
        os.makedirs(os.path.dirname(path) or ".", exist_ok=True)
        with open(path, "w", encoding="ascii") as file:
            file.write("\n".join(lines) + "\n")
    except OSError as error:
        raise ZurtError(f"the file can't be written: {error.strerror}", path) from None


def check_deck(path, options):
    """Has the program check the deck. Returns its status; 0 where it has no --check."""
    if not program_has("--check"):
        print("Check: this zurt has no --check")
        return 0
    result = subprocess.run([find_program(), "--check", *options, path], capture_output=True, text=True, check=False)
    print("Check:", (result.stdout.strip() or "nothing found") + (f"\n{result.stderr.strip()}" if result.stderr.strip() else ""))
    return result.returncode


def split_files(files):
    """(mesh or None, job or None) of the command line."""
    if len(files) > 2:
        raise ZurtError(f"a mesh and a job file are wanted, not {len(files)} files")
    if len(files) == 2:
        return tuple(files) if not files[0].endswith(".toml") or files[1].endswith(".toml") else (files[1], files[0])
    return (None, files[0]) if files[0].endswith(".toml") else (files[0], None)


def write_deck(mesh_file, job_file, options):
    """Reads job and mesh, writes the deck, reports. Returns the exit status."""
    job = read_job(job_file)
    if mesh_file is not None and all(values_of(section, "mesh").get("file") for section in job.problems):
        raise ZurtError(f"the job names its mesh itself (mesh.file), so {mesh_file} has no place", job_file)
    read = [read_job_mesh(job, section, mesh_file) for section in job.problems]
    built = build_deck(job, [mesh for _, mesh in read])
    path = options.output or os.path.splitext(os.path.basename(job_file))[0] + ".dat"
    written = {path: built.lines}
    if built.prescribed:
        if prescribed_path(job, path) == path:
            raise ZurtError("prescribed.file names the deck itself", job_file)
        written[prescribed_path(job, path)] = built.prescribed
    for name in written:
        check_target(name, [job_file, *(mesh_path for mesh_path, _ in read)], options.force)
    for (mesh_path, mesh), problem, band in zip(read, built.problems, built.bands):
        show_mesh(mesh_path, mesh)
        show_band(problem, band)
    for note in built.notes:
        print(f"Note: {note}")
    for name, lines in written.items():
        write_lines(name, lines)
    run = [*built.options, *(word for name in list(written)[1:] for word in ("--prescribed", name))]
    for name in list(written)[1:]:
        print(f"Prescribed values: {name}")
    print(f"Deck: {path}, {len(built.lines)} lines, {', '.join(FORMS.get(form, 'free format') for form in dict.fromkeys(built.forms))}")
    print("Run:", " ".join(["zurt", *run, path]))
    return check_deck(path, run) if options.check else 0


def main(arguments):
    """The program. Returns the exit status."""
    options = parse(arguments)
    mesh_file, job_file = split_files(options.files)
    if job_file is None:
        show_mesh(mesh_file, read_mesh(mesh_file))
        return 0
    return write_deck(mesh_file, job_file, options)
