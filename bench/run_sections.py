"""Sections of the performance document about whole runs: where the time goes, the peer, memory, homogenization.

measure_NAME(effort) returns plain data, figures_NAME(data) the texts for the places of the template.
"""
import os
import shutil
import subprocess
import sys

import compare_calculix
from deck_sections import phases_of
from document import percent, ratio, short, span, table
from measure import ROOT, WORK, make_deck

# Phases as the reader of the document knows them, each a sum of those of bench/phase_timer.cpp; the rest of a run is
# clearing the store, the sums of vectors, and the test of convergence.
PHASES = {"reading": ("opening", "input"), "numbering": ("numbering",), "forming": ("forming",),
          "analysis": ("analysis",), "factor": ("factor",), "substitution": ("substitution",),
          "handing over": ("sparse solver",), "results": ("fluxes", "results")}
PHASE_SIDES, QUICK_PHASE_SIDES, PHASE_STEPS = (10, 20, 30), (5, 10), 4


# --- phases -----------------------------------------------------------------------------------------------------------

def measure_phases(effort):
    runs = []
    for side in QUICK_PHASE_SIDES if effort.quick else PHASE_SIDES:
        for solver in ("skyline", "sparse"):
            folder = make_deck("phases", side, side, side, "--format", "fixed", "--steps", PHASE_STEPS, "--step-size", 0.01,
                               "--hold", side, "--solver", solver, "--results", "all")
            times = phases_of(folder)
            parts = {name: sum(times[key] for key in keys) for name, keys in PHASES.items()}
            parts["the rest"] = times["total"] - sum(parts.values())
            runs.append({"side": side, "solver": solver, "total": times["total"], "solves": times["solves"],
                         "parts": parts})
            shutil.rmtree(folder)
    return {"runs": runs}


def figures_phases(data):
    names = list(data["runs"][0]["parts"])
    rows = [[f"{entry['side']}, {entry['solver']}", short(entry["total"], "s"), entry["solves"],
             *(percent(entry["parts"][name], entry["total"]) for name in names)] for entry in data["runs"]]
    largest = {solver: max((entry for entry in data["runs"] if entry["solver"] == solver), key=lambda entry: entry["side"])
               for solver in ("skyline", "sparse")}
    figures = {"table": table(["elements a side, solver", "run", "passes", *names], rows), "steps": str(PHASE_STEPS),
               "largest": str(largest["skyline"]["side"])}
    for solver, entry in largest.items():
        for name in ("analysis", "factor", "forming"):
            figures[f"{solver}_{name}"] = percent(entry["parts"][name], entry["total"])
    return figures


# --- the peer ---------------------------------------------------------------------------------------------------------

def measure_peer(effort):
    return {"cubes": compare_calculix.measure_cubes({10: (3, 1)} if effort.quick else compare_calculix.PLAN)}


def figures_peer(data):
    head, *rows = compare_calculix.rows_of(data["cubes"])
    figures = {"table": table(head, rows)}
    cubes = [cube for cube in data["cubes"] if "peer" in cube["solvers"]]
    if not cubes:
        return {**figures, "passes": "The peer was not on the machine."}

    def times(solver, key):
        return [cube["solvers"]["peer"][key] / cube["solvers"][solver][key] for cube in cubes]

    better = [max(pair) for pair in zip(times("skyline", "pass"), times("sparse", "pass"))]
    better_step = [max(pair) for pair in zip(times("skyline", "step"), times("sparse", "step"))]
    gradients, iterative = times("gradients", "pass"), times("peer, iterative", "pass")
    sides = ", ".join(str(cube["side"]) for cube in cubes)
    figures["passes"] = (
        f"At {sides} elements a side the better of our direct solvers does a pass {', '.join(map(short, better))} times as fast as the "
        f"peer's direct solver, and a step {', '.join(map(short, better_step))} times; the skyline solver alone a pass "
        f"{', '.join(map(short, times('skyline', 'pass')))} times, the sparse solver alone "
        f"{', '.join(map(short, times('sparse', 'pass')))} times. The peer's iterative solver does "
        f"{', '.join(map(short, times('peer, iterative', 'pass')))} passes in the time of one of its direct solver"
        f"{iterative_beside_ours(cubes)}. Our conjugate gradients do a pass "
        f"{', '.join(short(own / other) for own, other in zip(gradients, better))} times as fast as the better of our direct "
        f"solvers, and {', '.join(short(own / other) for own, other in zip(gradients, iterative))} times as fast as the peer's "
        "iterative solver.")
    figures["iterative"] = span(times("peer, iterative", "pass"))
    figures["passes_ratio"] = span(cube["solvers"]["skyline"]["passes"] / cube["solvers"]["peer"]["passes"] for cube in cubes)
    figures["difference"] = ", ".join(f"{100 * cube['solvers']['peer']['difference']:.2g} % at {cube['side']} "
                                      f"(step {cube['steps']})" for cube in cubes)
    return figures


def iterative_beside_ours(cubes):
    """How the peer's iterative solver stands to the better of our direct ones, as the end of a sentence."""
    ratios = [min(cube["solvers"][solver]["pass"] for solver in ("skyline", "sparse"))
              / cube["solvers"]["peer, iterative"]["pass"] for cube in cubes]
    return f", which is {', '.join(map(short, ratios))} times as fast as the better of our direct ones"


# --- what scripts of their own measure --------------------------------------------------------------------------------

def measure_script(name, *for_quick):
    """A section whose text a script of bench/ prints, in Markdown; with arguments for a quick look."""
    path = os.path.join(ROOT, "bench", name)

    def measure(effort):
        if not os.path.exists(path):
            return {"text": f"Not measured: there is no bench/{name}."}
        printed = subprocess.run([sys.executable, path, *(for_quick if effort.quick else ())], stdout=subprocess.PIPE, text=True, check=True).stdout
        os.makedirs(WORK, exist_ok=True)  # such a script cleans up behind itself
        return {"text": printed.strip()}
    return measure


def figures_script(data):
    return {"text": data["text"]}
