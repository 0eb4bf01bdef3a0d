"""What all benchmarks share: where things are, processes with their processor time, medians of runs in turns, decks.

Imported by run_benchmarks and the scripts of bench/. Times are seconds, memory is bytes.
"""
import json
import os
import shutil
import statistics
import subprocess
import sys
import time
from collections import namedtuple

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.join(ROOT, "build", "bench")
WORK = os.path.join(BUILD, "runs")
PROGRAM = os.path.join(BUILD, "zurt")

# How much is measured: runs that a median is taken of, and whether small problems will do.
Effort = namedtuple("Effort", "rounds quick")

# One process that ended: processor and wall seconds, largest resident memory in bytes, what it printed.
Ended = namedtuple("Ended", "cpu wall memory output")


def prepare():
    """Installs and builds what the benchmarks need; a fresh folder for their files; libraries keep to one
    thread and choose their kernels themselves."""
    subprocess.run([os.path.join(ROOT, "setup"), "bench"], check=True, stdout=sys.stderr)
    shutil.rmtree(WORK, ignore_errors=True)
    os.makedirs(WORK)
    for name in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS"):
        os.environ[name] = "1"
    for name in ("OPENBLAS_CORETYPE", "OPENBLAS_L2_SIZE"):  # the library chooses its kernels by the machine, as for a user
        os.environ.pop(name, None)


def pin_to_core():
    """Keeps this process and those that it starts on one core."""
    os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})


def clean_up():
    shutil.rmtree(WORK)


def run(command, folder=WORK, answers=""):
    """Runs a process to its end; a status other than 0 ends the benchmarks."""
    with open(os.path.join(WORK, "output"), "w+") as output:
        start = time.monotonic()
        process = subprocess.Popen(command, cwd=folder, stdin=subprocess.PIPE, stdout=output, stderr=output, text=True)
        process.stdin.write(answers)
        process.stdin.close()
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.monotonic() - start
        process.returncode = os.waitstatus_to_exitcode(status)
        output.seek(0)
        text = output.read()
    if process.returncode != 0:
        sys.exit(f"{os.path.basename(sys.argv[0])}: {command[0]} ended with status {process.returncode}\n{text}")
    return Ended(usage.ru_utime + usage.ru_stime, wall, usage.ru_maxrss * 1024, text)


def median(values):
    return statistics.median(list(values))


def in_turns(rounds, *sides, warm_up=True):
    """Calls the sides one after the other, `rounds` times after one call that warms up; returns a list for each."""
    results = [[] for _ in sides]
    for number in range(rounds + warm_up):
        for side, ended in zip(sides, results):
            value = side()
            if number >= warm_up:
                ended.append(value)
    return results


def new_folder(name):
    folder = os.path.join(WORK, name)
    os.makedirs(folder, exist_ok=True)
    return folder


def make_deck(name, *arguments):
    """A folder with the deck that make_block_deck.py writes for the arguments."""
    folder = new_folder(name)
    run([sys.executable, os.path.join(ROOT, "bench", "make_block_deck.py"), os.path.join(folder, "zurt.dat"),
         *map(str, arguments)])
    return folder


def solve(folder, program=PROGRAM, options=()):
    """The program on the deck of a folder, every offered file name taken, or with options; results of an earlier run are removed."""
    for name in os.listdir(folder):
        if name != "zurt.dat":
            os.remove(os.path.join(folder, name))
    return run([program, *map(str, options), "zurt.dat"], folder) if options else run([program], folder, "\n\n\n")


def kernels(pattern, rounds):
    """Medians of the kernel benchmarks that match and that this machine runs, by name."""
    result = os.path.join(WORK, "kernels.json")
    run([os.path.join(BUILD, "zurt_bench"), f"--benchmark_filter={pattern}", f"--benchmark_repetitions={rounds}",
         "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.2",
         "--benchmark_report_aggregates_only=true", f"--benchmark_out={result}", "--benchmark_out_format=json"])
    with open(result) as file:
        found = json.load(file)["benchmarks"]
    return {entry["run_name"]: entry for entry in found
            if entry.get("aggregate_name", "median") == "median" and not entry.get("error_occurred")}
