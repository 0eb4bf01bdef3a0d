"""Sections of the performance document about conjugate gradients and threads.

measure_NAME(effort) returns plain data, figures_NAME(data) the texts for the places of the template.
"""
import math
import os
import re
import shutil

import fit_benchmark
from document import ratio, short, table
from measure import in_turns, make_deck, median, new_folder, solve

GROWTH_SIDES, QUICK_GROWTH_SIDES = (20, 40, 60, 80, 100, 120), (10, 20)
MILLION_SIDE, QUICK_MILLION_SIDE = 99, 20
GRADIENTS = ("--solver", "cg")


def make_cube(name, side, steps):
    """A transient run with a diffusion curve, and nothing but the listing's last step written."""
    return make_deck(name, side, side, side, "--format", "fixed", "--cards", "rows", "--steps", steps, "--step-size", 0.01,
                     "--hold", side, "--device", 2)


def passes_of(ended):
    return ended.output.count("ITERATION =")


# --- growth, a million nodes, a fit -----------------------------------------------------------------------------------

def measure_growth(side, rounds):
    """Seconds a pass, from runs of one step and of two, and the memory of the longer."""
    folders = [make_cube(f"growth_{steps}", side, steps) for steps in (1, 2)]
    ended = in_turns(rounds, *(lambda folder=folder: solve(folder, options=GRADIENTS) for folder in folders), warm_up=False)
    seconds = median(after.cpu - before.cpu for before, after in zip(*ended))
    passes = passes_of(ended[1][0]) - passes_of(ended[0][0])
    for folder in folders:
        shutil.rmtree(folder)
    return {"side": side, "pass": seconds / passes, "memory": max(run.memory for run in ended[1])}


def fit_once(options, side, steps):
    """Processor seconds of a whole fit, and the numbers of its mass table: fitted parameters, and the flow of each step."""
    folder = new_folder("fit")
    with open(os.path.join(folder, "zurt.dat"), "w") as deck:
        deck.write(fit_benchmark.make_deck(fit_benchmark.parse_arguments(["--side", str(side), "--steps", str(steps)])))
    ended = solve(folder, options=options)
    with open(os.path.join(folder, "MASS-X.LST")) as file:
        fitted = [float(number.replace("D", "E")) for number in re.findall(r"-?\d\.\d+D[+-]\d+", file.read())]
    shutil.rmtree(folder)
    return {"cpu": ended.cpu, "fitted": fitted}


def measure_gradients(effort):
    growth = [measure_growth(side, 3 if side < 80 else 1) for side in (QUICK_GROWTH_SIDES if effort.quick else GROWTH_SIDES)]
    million = solve(make_cube("million", QUICK_MILLION_SIDE if effort.quick else MILLION_SIDE, 1), options=GRADIENTS)
    size = (8, 3) if effort.quick else (30, 20)
    fits = {name: fit_once(options, *size) for name, options in (("skyline", ("--solver", "skyline")), ("gradients", GRADIENTS))}
    return {"growth": growth, "fit": fits, "fit_side": size[0],
            "million": {"cpu": million.cpu, "wall": million.wall, "memory": million.memory, "passes": passes_of(million)}}


def figures_gradients(data):
    growth, million, fits = data["growth"], data["million"], data["fit"]
    nodes = [(entry["side"] + 1) ** 3 for entry in growth]
    exponent = math.log(growth[-1]["pass"] / growth[0]["pass"]) / math.log(nodes[-1] / nodes[0])
    pairs = list(zip(fits["skyline"]["fitted"], fits["gradients"]["fitted"]))
    apart = max((abs(one - other) / max(abs(one), abs(other), 1e-300) for one, other in pairs), default=math.inf)
    return {"growth_table": table(["elements a side", "nodes", "a pass", "microseconds a node", "memory of the run"],
                                  [[entry["side"], f"{count:,}", short(entry["pass"], "s"), short(1e6 * entry["pass"] / count),
                                    f"{entry['memory'] / 1e6:.0f} MB"] for entry, count in zip(growth, nodes)]),
            "exponent": short(exponent), "million_cpu": short(million["cpu"], "s"), "million_wall": short(million["wall"], "s"),
            "million_memory": f"{million['memory'] / 1e6:.0f} MB", "million_passes": str(million["passes"]),
            "fit_side": str(data["fit_side"]), "fit_skyline": short(fits["skyline"]["cpu"], "s"),
            "fit_gradients": short(fits["gradients"]["cpu"], "s"),
            "fit_ratio": ratio(fits["skyline"]["cpu"], fits["gradients"]["cpu"]), "fit_values": str(len(pairs)),
            "fit_apart": short(apart)}
