#!/usr/bin/python3
"""How long the slab of examples/first takes to give off half of what it holds, by how its coefficient grows with the concentration.

  companions/examples/study/study.py [FOLDER]      runs 14 decks in FOLDER (study without it); writes study.csv and picture.png there
"""
import os
import sys

import numpy

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", ".."))  # the package of this tree; not needed where it is installed
import zurt  # noqa: E402

with open(os.path.join(HERE, "..", "..", "..", "examples", "first", "zurt.dat")) as file:
    DECK = file.read()


def deck(slope, finer):
    """The deck with D = 1 + slope c, and `finer` times as many steps of time."""
    text = DECK.replace("-10.0 1.0\n10.0 1.0", f"-0.01 {1 - 0.01 * slope}\n10.0 {1 + 10 * slope}")
    return text.replace("25 25 25 25\n0.002 0.002 0.004 0.012", " ".join([str(25 * finer)] * 4) + "\n" +
                        " ".join(str(size / finer) for size in (0.002, 0.002, 0.004, 0.012)))


def measure(run):
    """The time at which half of the amount at the start, 0.02, has left."""
    released = 1.0 - run.history["stored"] / 0.02
    return {"half_time": numpy.interp(0.5, released, run.history["time"])}


def draw(study, path):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot
    figure, (left, right) = pyplot.subplots(1, 2, figsize=(8.4, 3.4), dpi=90)
    slope, finer, half = (study.column(name) for name in ("slope", "finer", "half_time"))
    left.plot(slope[finer == 4], half[finer == 4], marker="o", label="400 steps")
    left.plot(slope[finer == 1], half[finer == 1], "kx", label="100 steps")
    left.set(xlabel="b in D = 1 + b c", ylabel="time to give off half", ylim=(0, None))
    for row, run in zip(study.rows, study.runs):
        if row["finer"] == 4:
            right.plot(run.history["time"], 1.0 - run.history["stored"] / 0.02, label=f"b = {row['slope']:g}")
    right.set(xlabel="time", ylabel="fraction given off", xlim=(0, 0.5), ylim=(0, 1))
    for axis in (left, right):
        axis.grid(alpha=0.3)
        axis.legend(fontsize="small")
    figure.tight_layout()
    figure.savefig(path)


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else "study"
    study = zurt.study(deck, grid={"slope": [0, 0.5, 1, 2, 3, 4, 6], "finer": [1, 4]}, measure=measure, folder=folder, force=True)
    study.save(os.path.join(folder, "study.csv"))
    draw(study, os.path.join(folder, "picture.png"))
    for row in study.rows:
        print("slope {slope:3g}, {finer:2d} times the steps: half time {half_time:.5f}".format(**row))


main()
