"""Examples run as they are and as job files make them again, and their results compared."""
import os
import subprocess
import sys

from zurt.commands import deck
from zurt.program import find_program

from .deck_mesh import mesh_of_deck

HERE = os.path.dirname(os.path.abspath(__file__))
EXAMPLES = os.path.join(HERE, "..", "..", "..", "examples")
JOBS = os.path.join(HERE, "..", "jobs")
PLANES = {"t4": [("right", 0, 0.6), ("top", 1, 1.0)], "radiating_edge": [("left", 0, 0.0), ("right", 0, 0.1)]}
OPTIONS = {"membrane": ["--prescribed", os.path.join(EXAMPLES, "membrane", "faces.dat")]}


def names_of_jobs():
    """Names of the examples that have a job file."""
    return sorted(name[:-5] for name in os.listdir(JOBS) if name.endswith(".toml"))


def run_deck(path, folder, options):
    """Runs a deck; its outputs go to a folder."""
    command = [find_program(), "--quiet", "--force", "--output", folder, *options, path]
    result = subprocess.run(command, capture_output=True, text=True, timeout=120, check=False)
    assert result.returncode == 0, f"{' '.join(command)}\n{result.stderr}"


def deck_of_job(name, folder):
    """(deck, options of zurt) of an example's job file and mesh."""
    mesh, path = os.path.join(folder, name + ".msh"), os.path.join(folder, "zurt.dat")
    mesh_of_deck(os.path.join(EXAMPLES, name, "zurt.dat"), mesh, PLANES.get(name, ()))
    assert deck.main([mesh, os.path.join(JOBS, name + ".toml"), "--output", path]) == 0
    options = ["--prescribed", os.path.join(folder, "zurt-prescribed.dat")] if name in OPTIONS else []
    with open(path, encoding="ascii") as file:
        free = any(line == "1 1 1 0\n" or line.split()[:2] in (["1", "1"], ["1", "3"]) for line in file.readlines()[:12])
    return path, options + (["--free"] if free else [])


def results_of(folder):
    """Lines of the results of a run: of the listing from the first iteration on, of the graphics file, of the table of masses."""
    with open(os.path.join(folder, "zurt.lst"), encoding="utf-8", errors="replace") as file:
        listing = [line.rstrip() for line in file]
    first = next(i for i, line in enumerate(listing) if "ITERATION = " in line or "N O D A L" in line)
    last = next((i for i, line in enumerate(listing) if "T I M I N G" in line), len(listing))
    with open(os.path.join(folder, "zurt.unv"), encoding="utf-8", errors="replace") as file:
        graphics = without_elements([line.rstrip() for line in file])
    with open(os.path.join(folder, "MASS-X.LST"), encoding="utf-8", errors="replace") as file:
        return listing[first:last], graphics, [line.rstrip() for line in file]


def without_elements(lines):
    """A graphics file without its datasets of elements, whose order is the mesh file's."""
    kept, inside = [], False
    for line, follows in zip(lines, lines[1:] + [""]):
        if line.strip() == "-1":
            inside = follows.strip() == "71"
        if not inside:
            kept.append(line)
    return kept


def numbers_of(line):
    """The numbers of a line, None for words."""
    values = []
    for word in line.split():
        try:
            values.append(float(word))
        except ValueError:
            values.append(None)
    return values


def largest_difference(before, after):
    """(lines that differ, largest difference of their numbers relative to the largest number around) of two lists of lines."""
    assert len(before) == len(after), f"{len(before)} lines and {len(after)}"
    different, largest = 0, 0.0
    scale = max((abs(value) for line in before for value in numbers_of(line) if value is not None), default=1.0)
    for one, other in zip(before, after):
        if one == other:
            continue
        different += 1
        pairs = list(zip(numbers_of(one), numbers_of(other)))
        if len(numbers_of(one)) != len(numbers_of(other)) or any((a is None) != (b is None) for a, b in pairs):
            return different, float("inf")
        largest = max([largest] + [abs(a - b) / max(abs(a), 1e-5 * scale) for a, b in pairs if a is not None])
    return different, largest


def compare_example(name, folder):
    """[(what, lines, lines that differ, largest relative difference)] of an example and the deck of its job file."""
    there, again = os.path.join(folder, "example"), os.path.join(folder, "again")
    os.makedirs(again)
    run_deck(os.path.join(EXAMPLES, name, "zurt.dat"), there, OPTIONS.get(name, []))
    path, options = deck_of_job(name, folder)
    run_deck(path, again, options)
    pairs = zip(("listing", "graphics file", "masses"), results_of(there), results_of(again))
    return [(what, len(one), *largest_difference(one, other)) for what, one, other in pairs]


def main(names):
    """Compares all examples, or those that are named, in a folder that goes."""
    import tempfile
    for name in names or names_of_jobs():
        with tempfile.TemporaryDirectory() as folder:
            print(name, compare_example(name, folder))


if __name__ == "__main__":
    main(sys.argv[1:])
