#!/usr/bin/env python3
"""Largest resident memory of whole runs beside what they have to hold: sections of the working vector, element data
outside it, the deck, and the program with its libraries.

    bench/memory_use.py

Builds build/bench (./setup bench) and prints one table; takes about half a minute. Nothing large is read into this
process: the system counts its memory as the least of any process that it starts.
"""
import os
import re
import subprocess
import sys

import measure
from measure import make_deck, new_folder, solve

RECORD_BYTES, MARK_BYTES = 40, 4  # of a Gauss point, of an element


def partition_bytes(folder, output):
    """Bytes of the sections that a run touches: all of them, or those ahead of a store that did not fit."""
    outside = re.search(r"behind word (\d+)", output)
    if outside:
        return 8 * int(outside.group(1))
    with open(os.path.join(folder, "zurt.lst")) as listing:
        return 8 * int(next(line for line in listing if "LMAXM =" in line).split()[-1])


def make_fibre_deck(side, between):
    """Bricks between two reservoirs of two columns each, with 200 random fibres; returns its folder and the bricks."""
    folder = new_folder("memory_fibres")
    generator = os.path.join(measure.ROOT, "examples", "homogenization", "make_deck.py")
    options = {"cells": 1, "mesh": side, "depth": side, "along": between, "fibres": 200, "diameter": 0.03, "steps": 1,
               "size": 0.1, "reservoir": 4, "dreservoir": 100, "nfitmax": 1, "solver": 1, "nprint": 1, "igraf": 1}
    with open(os.path.join(folder, "zurt.dat"), "w") as deck:
        subprocess.run([sys.executable, generator] + [f"--{name}={value}" for name, value in options.items()],
                       stdout=deck, check=True)
    return folder, (between + 4) * side * side


def table_row(what, folder, element_data, base):
    ended = solve(folder)
    partition = partition_bytes(folder, ended.output)
    deck = os.path.getsize(os.path.join(folder, "zurt.dat"))
    expected = partition + element_data + deck + base
    figures = [f"{value / 1e6:9.1f}" for value in (partition, element_data, deck, base, expected, ended.memory)]
    print(f"| {what:49} | {' | '.join(figures)} | {ended.memory / expected:5.2f} |", flush=True)


def main():
    measure.prepare()
    base = solve(make_deck("memory_base", 1, 1, 1, "--format", "fixed", "--steps", 1)).memory
    print("| run, MB                                           | partition |  elements |      deck |      base | "
          " together |  measured | ratio |")
    print("|" + "---|" * 8)
    steps = ("--format", "fixed", "--steps", 2, "--step-size", 100, "--results", "all")
    table_row("30 x 30 x 30 bricks, skyline, 2 steps, results", make_deck("memory_cube", 30, 30, 30, *steps), 0, base)
    table_row("1 x 1 x 250 000 bricks, the same", make_deck("memory_bar", 1, 1, 250000, *steps, "--hold", 100), 0, base)
    folder, bricks = make_fibre_deck(30, 26)
    table_row("30 x 30 x 30 bricks under 200 fibres, 1 step", folder, bricks * (8 * RECORD_BYTES + MARK_BYTES), base)
    for form in ("free", "fixed"):
        table_row(f"check of 99 x 99 x 99 bricks, {form} format",
                  make_deck(f"memory_{form}", 99, 99, 99, "--format", form), 0, base)
    print("\nElements: the records of Gauss points under fibres. Integers fill the first half of their sections and touch no\n"
          "more, so a run stays below what it has to hold. The sparse solver's factors lie outside the working vector\n"
          "and are the library's own, so such runs are left out.")
    measure.clean_up()


if __name__ == "__main__":
    main()
