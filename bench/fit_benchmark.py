#!/usr/bin/env python3
"""A full fit, curve and wall distance, of a box of bricks with random fibres between two reservoirs: time of each run.

    bench/fit_benchmark.py                    # 30 x 30 x 30 bricks, 200 fibres, 20 steps: some ten minutes
    bench/fit_benchmark.py --side 12 --steps 5

Needs build/bench/zurt_phases (./setup bench). Prints tables for docs/performance.md: processor time by run and by phase, and
what a run costs beyond forming and solving its systems.
"""
import argparse
import json
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOLVES = ("forming", "analysis", "factor", "substitution", "sparse solver")
STAGES = {"FIB model - without SF": "fibres, no factors", "EHM model - Calculation of D-C": "medium, curve",
          "FIB model - with prescribed SF": "fibres, factors", "EHM model - Calculation of HEQ": "medium, distance"}


def make_deck(args):
    """The box has side columns of bricks along x, of which four are reservoirs."""
    generator = ROOT / "examples" / "homogenization" / "make_deck.py"
    options = {"cells": 1, "mesh": args.side, "depth": args.side, "along": args.side - 4, "fibres": args.fibres,
               "diameter": 0.03, "slope": 0.05, "steps": args.steps, "size": 0.1, "reservoir": 4, "dreservoir": 100,
               "epstr": 1e-4, "fiterr": 2e-3, "iheq": 1, "idcc": 1, "solver": args.solver, "nprint": 1000}
    command = [sys.executable, generator] + [f"--{name}={value}" for name, value in options.items()]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def stages_of_runs(console):
    """The stage of every run, in order: a banner begins a stage; the medium's has as many runs as iteration lines."""
    stages, current = [], None
    for line in console.splitlines():
        for words, name in STAGES.items():
            if "running " + words in line:
                current = name
                if name.startswith("fibres"):
                    stages.append(name)
        if re.fullmatch(r" *\d+ +-?\d\.\d+E[+-]\d+", line):
            stages.append(current)
    return stages + ["closing run"]


def beyond(run):
    return run["total"] - sum(run[phase] for phase in SOLVES)


def print_tables(args, job, runs, stages):
    solver = "sparse" if args.solver == 2 else "skyline"
    print(f"{args.side} x {args.side} x {args.side} bricks, {args.fibres} fibres, {args.steps} steps, {solver} solver: "
          f"{len(runs)} runs, {job['solves']} systems, {job['total']:.1f} s of processor time, "
          f"{job['input']:.2f} s of it for the input.\n")
    print("| stage | runs | systems a run | a run | forming | factor and substitution | beyond both |")
    print("|---|---|---|---|---|---|---|")
    for stage in dict.fromkeys(stages):
        own = [run for run, name in zip(runs, stages) if name == stage]
        total = sum(run["total"] for run in own)
        share = [100.0 * part / total for part in (sum(run["forming"] for run in own),
                                                   sum(run[phase] for run in own for phase in SOLVES[1:]),
                                                   sum(beyond(run) for run in own))]
        print(f"| {stage} | {len(own)} | {sum(run['solves'] for run in own) / len(own):.1f} | {total / len(own):.2f} s | "
              f"{share[0]:.1f} % | {share[1]:.1f} % | {share[2]:.2f} % |")
    print("\nRuns in their order, in seconds: " + ", ".join(f"{run['total']:.2f}" for run in runs) + ".")
    print(f"\nThe dearest run spends {100.0 * max(beyond(run) / run['total'] for run in runs):.2f} % beyond its solves.")


def parse_arguments(words=None):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--side", type=int, default=30)
    parser.add_argument("--fibres", type=int, default=200)
    parser.add_argument("--steps", type=int, default=20)
    parser.add_argument("--solver", type=int, default=0, help="SolverSelector: 2 is the sparse solver")
    return parser.parse_args(words)


def main():
    args = parse_arguments()
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "zurt.dat").write_text(make_deck(args))
        console = subprocess.run([ROOT / "build" / "bench" / "zurt_phases"], input="\n\n\n", cwd=folder, check=True,
                                 capture_output=True, text=True).stdout
        times = json.loads(pathlib.Path(folder, "phases.json").read_text())
    stages = stages_of_runs(console)
    if "HOMOGENIZATION FINISHED" not in console or len(stages) != len(times["runs"]):
        sys.exit("the fit did not come to its end")
    print_tables(args, times["job"], times["runs"], stages)


if __name__ == "__main__":
    main()
