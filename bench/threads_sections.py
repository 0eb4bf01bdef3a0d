"""The section of the performance document about one thread and two.

measure_threads(effort) returns plain data, figures_threads(data) the texts for the places of the template. Times are those of the
clock on the wall: only on an idle machine do they tell what threads bring.
"""
import os

from document import ratio, short, table
from measure import in_turns, kernels, make_deck, median, solve

KERNELS = {"ThreadsForm": "forming, 8-node bricks with a diffusion curve", "ThreadsFactor": "skyline factor",
           "ThreadsGradients": "conjugate gradients, one system"}
QUICK_SIDE = 10
RUNS = {"skyline": (20, 30), "cg": (30, 60)}  # elements a side of whole runs


def with_all_processors(work):
    """What work() returns, with all processors for this process and those that it starts."""
    pinned = os.sched_getaffinity(0)
    os.sched_setaffinity(0, range(os.cpu_count()))
    try:
        return work()
    finally:
        os.sched_setaffinity(0, pinned)


def measure_runs(effort):
    found = []
    for solver, sides in RUNS.items():
        for side in ((QUICK_SIDE,) if effort.quick else sides):
            folder = make_deck("threads", side, side, side, "--format", "fixed", "--cards", "rows", "--steps", 1,
                               "--step-size", 0.01, "--hold", side, "--device", 2)
            one, two = in_turns(effort.rounds, *(
                lambda count=count: solve(folder, options=("--solver", solver, "--threads", count)).wall for count in ("1", "2")))
            found.append({"what": f"whole run, --solver {solver}", "side": side, "one": median(one), "two": median(two)})
    return found


def measure_kernels(effort):
    sides = f"/({QUICK_SIDE})/2" if effort.quick else "/.*"
    found = kernels(f"^({'|'.join(KERNELS)})" + sides, effort.rounds)
    order = list(KERNELS)
    ran = sorted((order.index(name.split("/")[0]), int(name.split("/")[1]), entry) for name, entry in found.items())
    return [{"what": KERNELS[order[which]], "side": side, "one": entry["one_median_s"], "two": entry["several_median_s"]}
            for which, side, entry in ran]


def measure_threads(effort):
    return with_all_processors(lambda: {"processors": os.cpu_count(), "rows": measure_kernels(effort) + measure_runs(effort)})


def figures_threads(data):
    return {"processors": str(data["processors"]),
            "table": table(["what", "elements a side", "one thread", "two threads", "times as fast"],
                           [[row["what"], row["side"], short(1e3 * row["one"], "ms"), short(1e3 * row["two"], "ms"),
                             ratio(row["one"], row["two"])] for row in data["rows"]])}
