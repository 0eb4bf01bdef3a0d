"""Sections of the performance document that time the real program on large decks: reading and writing.

measure_NAME(effort) returns plain data, figures_NAME(data) the texts for the places of the template. Beside the program
stands a Fortran program that reads, or writes, the same lines, if gfortran is there.
"""
import json
import os
import shutil
import sys

from document import percent, ratio, short, span, table
from measure import BUILD, ROOT, WORK, in_turns, kernels, make_deck, median, run, solve

CUBE_SIDE = 99                     # of the deck that is read: 1 000 000 nodes, 970 299 bricks
BAR_BRICKS = 250000                # of the mesh that results are written for: 1 000 004 nodes
QUICK_SIDE, QUICK_BRICKS = 30, 8000
LINES_AHEAD, LINES_BETWEEN = 5, 4  # cards ahead of the nodes and of the elements in a deck that is read


def fortran_program(name):
    """A compiled program of bench/, or None without gfortran."""
    if shutil.which("gfortran") is None:
        return None
    program = os.path.join(WORK, name)
    run(["gfortran", "-O2", os.path.join(ROOT, "bench", name + ".f90"), "-o", program])
    return program


def fortran_times(command):
    """The numbers that a Fortran program prints."""
    return [float(item) for item in run(command).output.split()]


def phases_of(folder):
    """Seconds by phase of the program with a clock on the deck of a folder."""
    solve(folder, os.path.join(BUILD, "zurt_phases"))
    with open(os.path.join(folder, "phases.json")) as file:
        return json.load(file)["job"]


def grouped(number):
    return f"{number:,}".replace(",", " ")


# --- reading ----------------------------------------------------------------------------------------------------------

def read_decks(effort, side, form, reader):
    """Decks with a card each for nodes and elements, for nodes alone, and for rows of both."""
    decks = {kind: make_deck(f"reading_{kind}", side, side, side, "--format", form, "--cards", kind)
             for kind in ("single", "nodes", "rows")}
    deck = os.path.join(decks["single"], "zurt.dat")
    lines = [str(count) for count in (LINES_AHEAD, (side + 1) ** 3, LINES_BETWEEN, side**3)]
    sides = [lambda kind=kind: solve(decks[kind]) for kind in decks]
    if reader is not None:
        sides.append(lambda: fortran_times([reader, deck, form, *lines]))
    single, nodes, rows, *fortran = in_turns(effort.rounds, *sides)
    data = {"whole": median(ended.cpu for ended in single), "memory": median(ended.memory for ended in single),
            "wall": median(ended.wall for ended in single), "size": os.path.getsize(deck),
            "nodes": median(ended.cpu for ended in nodes) - median(ended.cpu for ended in rows),
            "fortran": [median(sum(times[:lists]) for times in fortran[0]) for lists in (2, 1)] if fortran
            else [None, None], "phases": phases_of(decks["single"])}
    for folder in decks.values():
        shutil.rmtree(folder)
    return data


def measure_reading(effort):
    side = QUICK_SIDE if effort.quick else CUBE_SIDE
    reader = fortran_program("read_lines")
    return {"side": side, **{form: read_decks(effort, side, form, reader) for form in ("free", "fixed")}}


def figures_reading(data):
    rows, phases, fresh, lead = [], [], [], []
    for form in ("free", "fixed"):
        entry = data[form]
        for what, ours, yardstick in (("whole check run", entry["whole"], entry["fortran"][0]),
                                      ("node lines alone", entry["nodes"], entry["fortran"][1])):
            rows.append([f"{form} format, {what}", short(ours, "s"), short(yardstick, "s"), ratio(yardstick, ours, 1)])
            lead += [yardstick / ours] if yardstick else []
        rows[-2] += [short(entry["wall"], "s"), short(entry["memory"] / 1e6, "MB"), short(entry["size"] / 1e6, "MB"),
                     ratio(entry["memory"], entry["size"])]
        rows[-1] += [""] * 4
        fresh.append(entry["memory"] / entry["size"])
        times = entry["phases"]
        known = times["opening"] + times["numbering"]
        phases.append([form, *(percent(part, times["total"])
                               for part in (times["opening"], times["total"] - known, times["numbering"]))])
    side = data["side"]
    return {"table": table(["deck", "program", "Fortran read of these lines", "times as fast", "on the wall",
                            "largest memory", "deck", "ratio"], rows),
            "phase_table": table(["", "opening: bytes into memory",
                                  "cards: fields, rules, storing", "heights of columns"], phases),
            "nodes": grouped((side + 1) ** 3), "bricks": grouped(side**3), "over_fortran": span(lead),
            "memory": span(fresh)}


# --- writing ----------------------------------------------------------------------------------------------------------

def check_same_text(folder, bricks, copy, tables):
    """The yardstick counts only if it wrote what the program wrote."""
    def text(name):
        with open(name, "rb") as file:
            return file.read()
    listing, written = text(os.path.join(folder, "zurt.lst")), text(tables)
    second = written.index(b"\n", written.index(b" %d " % (4 * (bricks + 1)))) + 1
    if text(os.path.join(folder, "zurt.unv")) != text(copy):
        sys.exit("run_benchmarks: the graphics file differs from the Fortran program's")
    if written[:second] not in listing or written[second:] not in listing:
        sys.exit("run_benchmarks: the tables of the listing differ from the Fortran program's")


ROWS = {"unv_nodes": "rows of nodes in the graphics file, kept nowhere",
        "unv_step": "rows of results in the graphics file, kept nowhere",
        "listing_step": "nodes in a table of the listing, kept nowhere"}


def measure_writing(effort):
    bricks = QUICK_BRICKS if effort.quick else BAR_BRICKS
    mesh = (1, 1, bricks, "--format", "fixed", "--steps", 1, "--step-size", 2000, "--hold", 100)
    loud, silent = make_deck("writing", *mesh, "--results", "all"), make_deck("writing_nothing", *mesh)
    writer = fortran_program("write_lines")
    copy, tables = os.path.join(WORK, "copy.unv"), os.path.join(WORK, "tables.lst")
    sides = [lambda: solve(loud), lambda: solve(silent)]
    if writer is not None:
        sides.append(lambda: fortran_times([writer, os.path.join(loud, "zurt.unv"), str(4 * (bricks + 1)), str(bricks),
                                            copy, tables]))
    with_results, without, *fortran = in_turns(effort.rounds, *sides)
    if fortran:
        check_same_text(loud, bricks, copy, tables)
    entries = kernels("^WriteAllNodes/", effort.rounds)
    return {"bricks": bricks, "fortran": median(sum(times) for times in fortran[0]) if fortran else None,
            "seconds": median(ended.cpu for ended in with_results) - median(ended.cpu for ended in without),
            "memory": median(ended.memory for ended in with_results),
            "deck": os.path.getsize(os.path.join(loud, "zurt.dat")),
            "size": sum(os.path.getsize(os.path.join(loud, name)) for name in ("zurt.unv", "zurt.lst")),
            "rows": {name: entries[f"WriteAllNodes/{name}"]["rows"] for name in ROWS}}


def figures_writing(data):
    rows = [[f"all of it, {short(data['size'] / 1e6)} MB", short(data["seconds"], "s"),
             f"{short(data['fortran'], 's')}, Fortran write of these rows",
             f"{ratio(data['fortran'], data['seconds'], 1)} times as fast"],
            ["a second", short(data["size"] / data["seconds"] / 1e6, "MB"), "", ""],
            ["largest memory, solution included", short(data["memory"] / 1e6, "MB"),
             f"{short(data['deck'] / 1e6, 'MB')}, the deck", ratio(data["memory"], data["deck"])]]
    rows += [[what, short(data["rows"][name] / 1e6, "million/s"), "", ""] for name, what in ROWS.items()]
    return {"table": table(["", "program", "beside it", "ratio"], rows),
            "nodes": grouped(4 * (data["bricks"] + 1)), "bricks": grouped(data["bricks"])}
