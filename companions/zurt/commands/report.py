"""zurt-report: one HTML page about a run, or about several side by side."""
import argparse
import os
import warnings

from .. import door
from ..errors import ZurtError
from ..report import compare, fibre_run, gather, render
from . import add_version

TEXT = """Writes one self-contained HTML page about a run: what was solved, pictures and sections of the last step, what is stored
and what flows, how it converged; for a fit the story of its runs. RUN is the folder of a run, or its listing
where a folder holds several."""
EXAMPLES = """examples:
  zurt --history --vtu --output out plate.dat && zurt-report out
  zurt-report out --output plate.html
  zurt-report fit --solve-fibres          runs the model with fibres, too, and shows how far the fitted medium's flow differs
  zurt-report --compare coarse fine --output compare.html
"""
OF_ONE_RUN = ("deck", "console", "fibres", "solve_fibres")


def main(arguments):
    """Writes the page and returns the status."""
    options = _parse(arguments)
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", RuntimeWarning)  # of columns and fields that hold no number
        text, output = _comparison(options) if options.compare else _page(options)
    try:
        with open(output, "w", encoding="utf-8") as file:
            file.write(text)
    except OSError as error:
        raise ZurtError(f"{error.strerror}; --output FILE writes the page elsewhere", output) from None
    print(f"{output}: {len(text) / 1e3:.0f} kB")
    return 0


def _comparison(options):
    """(page, its file) of runs side by side."""
    runs = [door.read(each) for each in [*([options.run] if options.run else []), *options.compare]]
    if len(runs) < 2:
        raise ZurtError("a comparison takes two runs at least: zurt-report --compare A B")
    return render.render_comparison(compare.gather_comparison(runs, not options.no_pictures)), options.output or "compare.html"


def _page(options):
    """(page, its file) of one run."""
    run = _with_files(door.read(options.run), options)
    beside = fibre_run.solve(run) if options.solve_fibres else fibre_run.FitRuns([door.read(each) for each in options.fibres])
    text = render.render_run(gather.gather_run(run, not options.no_pictures, beside))
    name = "report.html" if os.path.isdir(options.run) else f"{run.files.name}-report.html"
    return text, options.output or os.path.join(run.folder, name)


def _parse(arguments):
    parser = argparse.ArgumentParser("zurt-report", description=TEXT, epilog=EXAMPLES, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("run", nargs="?", metavar="RUN", help="folder or listing of a run")
    parser.add_argument("-o", "--output", metavar="FILE", help="the page (without it RUN/report.html, or NAME-report.html beside the listing NAME.lst)")
    parser.add_argument("--compare", nargs="+", metavar="RUN", help="lays runs side by side")
    parser.add_argument("--deck", metavar="FILE", help="the run's deck, where the folder doesn't say (zurt.run does)")
    parser.add_argument("--console", metavar="FILE", help="what the run wrote on standard output (console.txt in the folder)")
    parser.add_argument("--fibres", metavar="RUN", action="append", default=[],
                        help="the run of the model with fibres that a fit is held against; once for each direction")
    parser.add_argument("--solve-fibres", action="store_true",
                        help="runs that model along each fitted direction, in RUN/fibres, from the run's deck")
    parser.add_argument("--no-pictures", action="store_true", help="leaves the pictures of the mesh out")
    add_version(parser)
    options = parser.parse_args(arguments)
    given = [name for name in OF_ONE_RUN if getattr(options, name)]
    if options.compare and given:
        raise ZurtError(f"--{given[0].replace('_', '-')} goes with a page about one run, not with --compare")
    if options.fibres and options.solve_fibres:
        raise ZurtError("--fibres names runs that are there, --solve-fibres makes them: give one of the two")
    if not options.compare and not options.run:
        raise ZurtError("no run is named; zurt-report --help shows how")
    return options


def _with_files(run, options):
    for name, path in (("deck", options.deck), ("console", options.console)):
        if path and not os.path.isfile(path):
            raise ZurtError(f"there is no such {name}", path)
    run.deck = options.deck or run.deck
    run.files.console = options.console or run.files.console
    return run
