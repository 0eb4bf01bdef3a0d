"""zurt-report: one HTML page about a run, or about several side by side."""
import argparse
import os

from .. import door
from ..errors import ZurtError
from ..report import compare, fibre_run, gather, render

TEXT = """Writes one self-contained HTML page about a run: what was solved, pictures and sections of the last step, what is stored
and what flows, how it converged; for a fit the story of its runs. RUN is the folder of a run, or its listing
where a folder holds several."""
EXAMPLES = """examples:
  zurt --history --vtu --output out plate.dat && zurt-report out
  zurt-report out --output plate.html
  zurt-report fit --solve-fibres          runs the model with fibres, too, and shows how far the fitted medium's flow differs
  zurt-report --compare coarse fine --output compare.html
"""


def main(arguments):
    """Writes the page and returns the status."""
    options = _parser().parse_args(arguments)
    if options.compare:
        runs = [*([options.run] if options.run else []), *options.compare]
        if len(runs) < 2:
            raise ZurtError("a comparison takes two runs at least: zurt-report --compare A B")
        text = render.render_comparison(compare.gather_comparison([door.read(each) for each in runs], not options.no_pictures))
        output = options.output or "compare.html"
    else:
        if not options.run:
            raise ZurtError("no run is named; zurt-report --help shows how")
        run = _with_files(door.read(options.run), options)
        fibres = door.read(options.fibres) if options.fibres else fibre_run.solve(run) if options.solve_fibres else None
        text = render.render_run(gather.gather_run(run, not options.no_pictures, fibres))
        output = options.output or os.path.join(run.folder, "report.html")
    try:
        with open(output, "w", encoding="utf-8") as file:
            file.write(text)
    except OSError as error:
        raise ZurtError(error.strerror, output) from None
    print(f"{output}: {len(text) / 1e3:.0f} kB")
    return 0


def _parser():
    parser = argparse.ArgumentParser("zurt-report", description=TEXT, epilog=EXAMPLES, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("run", nargs="?", metavar="RUN", help="folder or listing of a run")
    parser.add_argument("-o", "--output", metavar="FILE", help="the page (RUN/report.html without it)")
    parser.add_argument("--compare", nargs="+", metavar="RUN", help="lays runs side by side")
    parser.add_argument("--deck", help="the run's deck, where the folder doesn't say (zurt.run does)")
    parser.add_argument("--console", help="what the run wrote on standard output (console.txt in the folder)")
    parser.add_argument("--fibres", metavar="RUN", help="the run of the model with fibres that a fit is held against")
    parser.add_argument("--solve-fibres", action="store_true", help="runs that model, in RUN/fibres, from the run's deck")
    parser.add_argument("--no-pictures", action="store_true", help="leaves the pictures of the mesh out")
    return parser


def _with_files(run, options):
    for name, path in (("deck", options.deck), ("console", options.console)):
        if path and not os.path.isfile(path):
            raise ZurtError(f"there is no such {name}", path)
    run.deck = options.deck or run.deck
    run.files.console = options.console or run.files.console
    return run
