"""Sections of the performance document that time kernels in one process: skyline, forming, fibres, sparse.

Each section is a pair: measure_NAME(effort) returns plain data, figures_NAME(data) the texts for the places of the
template. Rates are per second.
"""
from document import percent, ratio, short, span, table
from measure import kernels

SIDES = (10, 15, 20, 25, 30)      # elements a side of the cubes
SINGLE_SIDE = 35                  # once: the plain loops take half a minute
LARGE_SIDE = 40                   # once, without the plain loops, which would take minutes
PATHS = ("plain", "portable", "AVX2", "AVX-512")
QUICK_SIDES = (10, 15)
LIBRARY_PRODUCT = "product of full matrices by the BLAS"


# --- skyline ----------------------------------------------------------------------------------------------------------

def measure_skyline(effort):
    sides = QUICK_SIDES if effort.quick else SIDES
    which = "/(" + "|".join(map(str, sides)) + ")$"
    found = kernels("^(TimeFactor/.*|TimeMatrixProduct|TimeSubstitution/.*|ReadStore)" + which, effort.rounds)
    if not effort.quick:
        found.update(kernels(f"^(TimeFactor/.*|TimeMatrixProduct)/{SINGLE_SIDE}$", 1))
        found.update(kernels(f"^(TimeFactor/(solver|portable|AVX.*)|TimeMatrixProduct)/{LARGE_SIDE}$", 1))
    return {name: entry.get("flops", entry.get("bytes_per_second")) for name, entry in found.items()}


def by_side(data, name):
    """Figures of one benchmark as (side, figure), by rising side."""
    return sorted((int(key.rsplit("/", 1)[1]), value) for key, value in data.items() if key.rsplit("/", 1)[0] == name)


def skyline_curves(data):
    """GFLOP/s over elements a side for the paths that this machine has, for plots and tables."""
    names = {"plain": "plain loops", "portable": "skyline, portable", "AVX2": "skyline, AVX2", "AVX-512": "skyline, AVX-512"}
    curves = [(names[path], by_side(data, f"TimeFactor/{path}")) for path in PATHS]
    curves.append((LIBRARY_PRODUCT, by_side(data, "TimeMatrixProduct")))
    return [(name, [(side, value / 1e9) for side, value in points]) for name, points in curves if points]


def figures_skyline(data):
    sides = [side for side, _ in by_side(data, "TimeFactor/solver")]
    curves = [(name, dict(points)) for name, points in skyline_curves(data)]
    solver = dict(by_side(data, "TimeFactor/solver"))
    factor = table(["elements a side", *(name for name, _ in curves), "the solver's own choice", "over plain loops"],
                   [[side, *(short(points.get(side)) for _, points in curves), short(solver[side] / 1e9),
                     ratio(solver[side], data.get(f"TimeFactor/plain/{side}"), 1)] for side in sides])
    rows, over_read, over_plain = [], [], []
    for side, own in by_side(data, "TimeSubstitution/solver"):
        read, plain = data.get(f"ReadStore/{side}"), data.get(f"TimeSubstitution/plain/{side}")
        rows.append([side, short(own / 1e9), short(read and read / 1e9), ratio(own, read), short(plain / 1e9),
                     ratio(own, plain)])
        over_read += [own / read] if read else []
        over_plain.append(own / plain)
    return {"factor_table": factor,
            "solve_table": table(["elements a side", "solve", "plain read of the same bytes", "ratio", "plain loops", "ratio"],
                                 rows),
            "over_plain": span(solver[side] / data[f"TimeFactor/plain/{side}"] for side in sides
                               if f"TimeFactor/plain/{side}" in data),
            "of_product": span(solver[side] / data[f"TimeMatrixProduct/{side}"] for side in sides
                               if f"TimeMatrixProduct/{side}" in data),
            "solve_over_read": span(over_read), "solve_over_plain": span(over_plain)}


# --- forming and fibres -----------------------------------------------------------------------------------------------

FORMING = {"SteadyConstant": "8 nodes, 2 x 2 x 2 points, steady",
           "TransientConstant": "8 nodes, 2 x 2 x 2 points, transient",
           "TransientDiffusionCurve": "8 nodes, 2 x 2 x 2 points, transient, diffusion curve looked up at every point",
           "TransientDiffusionCurve20Nodes": "20 nodes, 3 x 3 x 3 points, the same"}


def measure_forming(effort):
    found = kernels("^(" + "|".join(FORMING) + ")$", effort.rounds)
    return {name: found[name]["elements"] for name in FORMING}


def figures_forming(data):
    return {"table": table(["element", "elements a second"],
                           [[what, short(data[name] / 1e6, "million")] for name, what in FORMING.items()]),
            "twenty_nodes": ratio(data["TransientDiffusionCurve"], data["TransientDiffusionCurve20Nodes"], 1)}


def measure_fibres(effort):
    found = kernels("^(FormUnderFibres|CachedFactor|PlainSearch|CellSearch|Classify)(/|$)", effort.rounds)
    keys = ("cpu_time", "time_unit", "plain_ns", "fibres_ns", "ratio")
    return {name: {key: entry[key] for key in keys if key in entry} for name, entry in found.items()}


def figures_fibres(data):
    def times(name):
        """In the unit of the benchmark, over its cases."""
        return [entry["cpu_time"] for key, entry in data.items() if key.split("/")[0] == name]

    forming = {tables: next(entry for key, entry in data.items() if key.startswith(f"FormUnderFibres/{tables}/"))
               for tables in (1, 2)}
    rows = [["without fibres", short(forming[1]["plain_ns"], "ns"), "1"]]
    rows += [[f"fibres with {words}", short(forming[tables]["fibres_ns"], "ns"), short(forming[tables]["ratio"])]
             for tables, words in ((1, "one table"), (2, "two tables"))]
    return {"table": table(["", "time"],
                           [["nearest of 1000 fibres by a visit of all",
                             span((time / 1000 for time in times("PlainSearch")), "us a point")],
                            ["the same by cells", span(times("CellSearch"), "ns a point")],
                            ["classification of 512,000 points, records included",
                             span((time / 1000 for time in times("Classify")), "s, once a problem")],
                            ["factors of a point from its record, two tables of 8 x 4", span(times("CachedFactor"), "ns")]]),
            "forming_table": table(["forming, 20 x 20 x 20 bricks, transient, with a diffusion curve", "an element", "ratio"],
                                   rows)}


# --- sparse -----------------------------------------------------------------------------------------------------------

STAGES = ("analysis", "factorisation", "substitution")


def measure_sparse(effort):
    sides = QUICK_SIDES[:1] if effort.quick else (10, 20, 30, 40)
    found = kernels("^BM_(Assembly|Solver|ProgramSolve)/(" + "|".join(map(str, sides)) + ")(/|$)", effort.rounds)
    data = {}
    for side in sides:
        solver = found[f"BM_Solver/{side}"]
        data[str(side)] = {stage: solver[stage + "_s"] for stage in STAGES}
        data[str(side)].update(operations=solver["operations"], assembly=found[f"BM_Assembly/{side}"]["cpu_time"] * 1e-3,
                               program=found[f"BM_ProgramSolve/{side}/manual_time"]["real_time"] * 1e-3)
    return data


def sparse_curve(data):
    """GFLOP/s of the library's factorisation over elements a side."""
    return "sparse factorisation", [(int(side), entry["operations"] / entry["factorisation"] / 1e9)
                                    for side, entry in data.items()]


def figures_sparse(data):
    rows, beside, shares = [], [], []
    for side, entry in data.items():
        bare = sum(entry[stage] for stage in STAGES)
        rate = entry["operations"] / entry["factorisation"]
        rows.append([side, short(entry["assembly"], "s"), *(short(entry[stage], "s") for stage in STAGES),
                     short(entry["operations"] / 1e9), short(rate / 1e9)])
        beside.append([side, short(entry["program"], "s"), short(bare, "s"), ratio(entry["program"], bare)])
        shares.append(f"{percent(entry['analysis'], bare)} at {side}")
    return {"table": table(["elements a side", "assembly", *STAGES, "GFLOP of the factorisation", "GFLOP/s"], rows),
            "program_table": table(["elements a side", "program", "bare calls", "ratio"], beside),
            "analysis_shares": ", ".join(shares),
            "assembly_share": span((100.0 * entry["assembly"] / sum(entry[stage] for stage in STAGES)
                                    for entry in data.values()), "%")}
