#!/usr/bin/env python3
"""Solves the same cubes with this program, by each of its solvers, and with CalculiX's ccx; prints times side by side.

    bench/compare_calculix.py                              # cubes of 20, 30 and 40 elements a side, about 15 minutes
    bench/compare_calculix.py --sides 10 20 --steps 5 --rounds 1

A transient run on a sheared cube of 8-node bricks, start value 1, lowest and highest section held at 0, a coefficient
that rises with the concentration (conductivity with temperature), fixed steps, Euler backward, one core. Both programs
iterate in every step and solve in every iteration: a pass is one of those, forming and solving together. Its time is the
difference of two runs, one of them with a single step, over the difference of their passes; so reading, numbering and
results cancel. Times are processor time. The values of the last step are compared node by node.
"""
import argparse
import glob
import os
import shutil
import sys

import make_block_deck
from measure import WORK, clean_up, in_turns, median, new_folder, pin_to_core, prepare, run, solve

STEP_SIZE = 0.01
ACCURACY = 1e-5  # of the last increment, relative to the change in the step; the peer takes it of its residual too
PLAN = {20: (10, 3), 30: (10, 1), 40: (3, 1)}  # steps and rounds of a cube, so that the largest ends in minutes
OURS = {"skyline": (), "sparse": ("--solver", "sparse"), "gradients": ("--solver", "cg")}
PEER = {"peer": "", "peer, iterative": ",SOLVER=ITERATIVE CHOLESKY"}  # its default is a sparse direct solver


def write_peer_deck(name, options, solver):
    """The deck of make_block_deck.py in the peer's words."""
    nx, ny, nz = options.sides
    plane = (nx + 1) * (ny + 1)
    with open(name, "w", buffering=1 << 20) as out:
        out.write("*NODE,NSET=ALL\n")
        places = ((i, j, k) for k in range(nz + 1) for j in range(ny + 1) for i in range(nx + 1))
        out.writelines("%d,%15.8e,%15.8e,%15.8e\n" % (number, *make_block_deck.place(options, *ijk))
                       for number, ijk in enumerate(places, 1))
        out.write("*ELEMENT,TYPE=DC3D8,ELSET=BRICKS\n")
        lows = (1 + i + j * (nx + 1) + k * plane for k in range(nz) for j in range(ny) for i in range(nx))
        for number, low in enumerate(lows, 1):
            nodes = make_block_deck.nodes_of(low, nx, plane)
            out.write("%d,%d,%d,%d,%d,%d,%d,%d,%d\n" % (number, *nodes[4:], *nodes[:4]))
        out.write("*NSET,NSET=HELD,GENERATE\n")
        out.writelines(f"{plane * k + 1},{plane * (k + 1)}\n" for k in range(nz + 1) if make_block_deck.is_held(options, k))
        out.write("*MATERIAL,NAME=MEDIUM\n*CONDUCTIVITY\n")
        out.writelines(f"{D!r},{c!r}\n" for c, D in make_block_deck.CURVE)
        out.write("*SPECIFIC HEAT\n1.\n*DENSITY\n1.\n*SOLID SECTION,ELSET=BRICKS,MATERIAL=MEDIUM\n"
                  "*INITIAL CONDITIONS,TYPE=TEMPERATURE\nALL,1.\n"
                  f"*STEP,INC={options.steps},AMPLITUDE=STEP\n*HEAT TRANSFER,DIRECT{PEER[solver]}\n"
                  f"{options.step_size!r},{options.step_size * options.steps!r}\n*BOUNDARY\nHELD,11,11,0.\n"
                  f"*CONTROLS,PARAMETERS=FIELD,FIELD=TEMPERATURE\n{ACCURACY},{ACCURACY},,,,{ACCURACY},{ACCURACY}\n"
                  f"*NODE PRINT,NSET=ALL,FREQUENCY={options.steps}\nNT\n*END STEP\n")


def solve_ours(folder, options):
    """What ended, its passes, and the values of the last step by node."""
    ended = solve(folder, options=options)
    return ended, ended.output.count("ITERATION ="), values_of(os.path.join(folder, "zurt.lst"), "NODE CONCENTRAT\n")


def solve_peer(folder):
    ended = run(["ccx", "cube"], folder)
    with open(os.path.join(folder, "cube.sta")) as file:
        rows = [line.split() for line in file]
    passes = sum(int(row[3]) for row in rows if row and row[0].isdigit())
    return ended, passes, values_of(os.path.join(folder, "cube.dat"), "temperatures for set ")


def values_of(name, heading):
    """Pairs of node and value of the last table below a heading, by node."""
    with open(name) as file:
        lines = file.read().rpartition(heading)[2].splitlines()
    values = {}
    for line in lines:
        words = line.split()
        if len(words) % 2 == 0 and words and words[0].isdigit():
            values.update((int(node), float(value)) for node, value in zip(words[::2], words[1::2]))
        elif values:
            break
    return values


def make_cube(name, side, steps, solver):
    """A folder with the cube's deck for a solver, and the function that solves it there."""
    folder = new_folder(f"{name}_{solver.replace(', ', '_')}")
    words = [side] * 3 + ["--format", "fixed", "--cards", "rows", "--steps", steps, "--step-size", STEP_SIZE,
                          "--device", 2, "--hold", side, "--held-from-start", "--accuracy", ACCURACY,
                          "--results", "last"]
    deck = os.path.join(folder, "zurt.dat")
    options = make_block_deck.parse_arguments([deck, *map(str, words)])
    if solver in PEER:
        write_peer_deck(os.path.join(folder, "cube.inp"), options, solver)
        return lambda: solve_peer(folder)
    with open(deck, "w", buffering=1 << 20) as out:
        make_block_deck.write_deck(out, options)
    return lambda: solve_ours(folder, OURS[solver])


def difference(values, others):
    """The largest difference of two fields over the range of the second."""
    if values.keys() != others.keys():
        sys.exit("compare_calculix: the two programs do not show the same nodes")
    return max(abs(values[node] - others[node]) for node in others) / (max(others.values()) - min(others.values()))


def measure_cube(side, steps, rounds, solvers):
    """Figures of each solver on one cube: seconds a pass, a step and of the whole run, passes, memory, values."""
    sides = [make_cube(f"cube_{count}", side, count, solver) for solver in solvers for count in (1, steps)]
    ended = in_turns(rounds, *sides, warm_up=False)
    figures = {}
    for solver, short, long in zip(solvers, ended[::2], ended[1::2]):
        seconds = median(after[0].cpu - before[0].cpu for before, after in zip(short, long))
        (whole, passes, values), few = long[0], short[0][1]
        figures[solver] = {"pass": seconds / (passes - few), "step": seconds / (steps - 1), "passes": passes,
                           "whole": median(run[0].cpu for run in long), "memory": whole.memory, "values": values}
    first = figures[solvers[0]]["values"]
    for solver in solvers:
        figures[solver]["difference"] = difference(figures[solver].pop("values"), first)
    return {"side": side, "steps": steps, "rounds": rounds, "solvers": figures}


def measure_cubes(plan):
    """`plan` gives (steps, rounds) by elements a side. Without the peer on the machine, ours alone."""
    solvers = [*OURS, *(PEER if shutil.which("ccx") else [])]
    cubes = []
    for side, (steps, rounds) in plan.items():
        print(f"... cube of {side} elements a side, {steps} steps", file=sys.stderr)
        cubes.append(measure_cube(side, steps, rounds, solvers))
        for folder in glob.glob(os.path.join(WORK, "cube_*")):
            shutil.rmtree(folder)
    return cubes


def rows_of(cubes):
    """Lines of the table, the head first; ratios say how many times as fast as the peer's direct solver."""
    rows = [("elements a side", "solver", "passes", "a pass", "ratio", "a step", "ratio", "whole run", "ratio", "memory",
             "difference")]
    for cube in cubes:
        peer = cube["solvers"].get("peer")
        for solver, figures in cube["solvers"].items():
            row = [f"{cube['side']} ({cube['steps']} steps)", solver, str(figures["passes"])]
            for key in ("pass", "step", "whole"):
                row += [f"{figures[key]:.3g} s", f"{peer[key] / figures[key]:.2f}" if peer else "-"]
            rows.append((*row, f"{figures['memory'] / 1e6:.0f} MB", f"{figures['difference']:.1e}"))
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--sides", type=int, nargs="+", default=list(PLAN), help="elements a side of the cubes")
    parser.add_argument("--steps", type=int, help="steps of each run, 2 or more (10, and 3 from 40 a side on)")
    parser.add_argument("--rounds", type=int, help="runs of which the median is taken (3, and 1 from 30 a side on)")
    options = parser.parse_args()
    if options.steps is not None and options.steps < 2:
        parser.error("--steps is 2 or more")
    prepare()
    pin_to_core()
    plan = {}
    for side in options.sides:
        steps, rounds = PLAN[min(PLAN, key=lambda known: abs(known - side))]
        plan[side] = (options.steps or steps, options.rounds or rounds)
    rows = rows_of(measure_cubes(plan))
    widths = [max(map(len, column)) for column in zip(*rows)]
    for row in rows:
        print("  ".join(text.rjust(width) for text, width in zip(row, widths)))
    clean_up()
    return 0


if __name__ == "__main__":
    sys.exit(main())
