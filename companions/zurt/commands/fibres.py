"""zurt-fibres: sets of fibres, made at random or read, as cards for a deck."""
import argparse
import os
import time

import numpy

from ..errors import ZurtError
from ..fibres.cards import fibre_cards, prepare
from ..fibres.model import BALLS, LINES, UNITS, Fibres, dimension_of, lengths_of
from ..fibres.orientation import mean_tensor
from ..fibres.recipe import CardChoice, read_recipe
from ..fibres.volume import fraction_as_seen, volume_fraction
from . import add_version

EXAMPLES = """examples:
  zurt-fibres random fibres.toml                           fibres.cards and fibres.csv from a recipe
  zurt-fibres random fibres.toml --picture fibres.png
  zurt-fibres from-csv measured.csv --unit nm --box 2000 2000 2000
  zurt-fibres from-image scan.tif --voxel 0.05 --unit um --threshold 128
What a recipe holds stands in docs/fibres.md.
"""


def parse(arguments):
    parser = argparse.ArgumentParser("zurt-fibres", description="Makes or reads sets of straight fibres and writes their cards.",
                                     epilog=EXAMPLES, formatter_class=argparse.RawDescriptionHelpFormatter)
    add_version(parser)
    commands = parser.add_subparsers(dest="command", required=True, metavar="random | from-csv | from-image")
    make = commands.add_parser("random", help="random fibres by a recipe (TOML)")
    make.add_argument("file", metavar="RECIPE.toml")
    table = commands.add_parser("from-csv", help="fibres from a table: x1,y1,z1,x2,y2,z2,diameter, or x,y,z,diameter for balls")
    table.add_argument("file", metavar="FILE.csv")
    table.add_argument("--unit", choices=UNITS, default="um", help="of the lengths in the file and on this line (um)")
    table.add_argument("--box", type=float, nargs="+", required=True, metavar="SIZE", help="sizes of the box from the origin, 2 or 3")
    image = commands.add_parser("from-image", help="straight fibres in a segmented image: a TIFF stack or .vti")
    image.add_argument("file", metavar="IMAGE")
    image.add_argument("--unit", choices=UNITS, default="um", help="of --voxel, or of the spacing in a .vti (um)")
    image.add_argument("--voxel", type=float, help="edge of a voxel; a .vti knows its own")
    image.add_argument("--threshold", type=float, help="voxels above it are fibre; without it those above 0")
    image.add_argument("--array", help="of a .vti; its first one without this")
    image.add_argument("--shortest", type=float, default=3.0, metavar="N", help="what is shorter than N diameters is dropped (3)")
    for command in (make, table, image):
        command.add_argument("-o", "--output", metavar="NAME", help="NAME.cards and NAME.csv are written; the file's own name without it")
        command.add_argument("--picture", metavar="FILE", help="a picture, .png, .svg or .pdf")
        command.add_argument("--points", type=int, default=18, metavar="N", help="2**N points for volume fractions, 10 to 26 (18)")
    for command in (table, image):
        command.add_argument("--format", choices=("fixed", "free"), default="fixed", help="of the deck (fixed)")
        command.add_argument("--classes", type=int, default=8, metavar="N", help="at most so many diameters, each a set of its own (8)")
    options = parser.parse_args(arguments)
    for name in ("voxel", "shortest"):
        value = getattr(options, name, None)
        if value is not None and not 0.0 < value < numpy.inf:
            parser.error(f"--{name} is a number above 0")
    if not 10 <= options.points <= 26 or getattr(options, "classes", 1) < 1:
        parser.error("--points is a number from 10 to 26, --classes one from 1 on")
    return options


def read_fibres(options):
    """(Fibres, CardChoice, seed of the fractions) that the command asks for."""
    if options.command == "random":
        from ..fibres.generator import generate
        recipe = read_recipe(options.file)
        return generate(recipe), recipe.cards, recipe.seed
    choice = CardChoice(format=options.format, classes=options.classes)
    if options.command == "from-image":
        from ..fibres.image import fibres_of_image
        return fibres_of_image(options.file, options.unit, options.voxel, options.threshold, options.array, options.shortest), choice, 1
    from ..fibres.table_file import read_table
    if len(options.box) not in (2, 3) or not all(0.0 < size < numpy.inf for size in options.box):
        raise ZurtError("--box takes 2 or 3 sizes above 0")
    box = UNITS[options.unit] * numpy.array(options.box + [0.0] * (3 - len(options.box)))
    return read_table(options.file, UNITS[options.unit], box), choice, 1


def in_own_box(written):
    """The written fibres seen from the corner of their own box, without the margin."""
    low, high = written.fraction_box
    fibres = written.fibres
    return Fibres(fibres.starts - low, fibres.ends - low, fibres.diameters, fibres.shape, high - low)


def percent(fraction):
    error = "exact" if fraction.error == 0.0 else f"standard error {fraction.error:.1e}"
    return f"{fraction.value:.5f} ({error})"


def names_of(fibres):
    """What they are called, and their share."""
    plane = dimension_of(fibres.box) == 2
    kind = {LINES: "fibres", BALLS: "circles" if plane else "spheres"}[fibres.shape]
    return kind, "area fraction" if plane else "volume fraction"


def report(fibres, written, exponent, seed):
    """Lines about what was reached, and the volume fraction as the program sees it."""
    cut = written.fibres
    full = volume_fraction(fibres, exponent - 4, seed)
    seen = fraction_as_seen(in_own_box(written), exponent - 4, seed)
    kind, share = names_of(fibres)
    box = " x ".join(f"{size:g}" for size in fibres.box if size > 0.0)
    d = fibres.diameters
    lines = [f"{len(d)} {kind} in a box of {box} um, as {len(cut.diameters)} on the cards, in {len(written.sets)} set(s)",
             f"{share}: {percent(full)}",
             f"{share} as zurt sees it: {percent(seen)}",
             f"diameters: {d.min():.5g} to {d.max():.5g} um, mean {d.mean():.5g}, deviation {d.std():.3g}; on the cards "
             + ", ".join(f"{cut.diameters[first]:.5g}" for first, _ in written.sets[:12]) + (" ..." if len(written.sets) > 12 else "")]
    if fibres.shape == LINES:
        length = lengths_of(cut)
        tensor = mean_tensor((cut.ends - cut.starts) / length[:, None], length)
        lines.append("orientation tensor (by length): " + "; ".join(" ".join(f"{value:.4f}" for value in row) for row in tensor))
    if abs(full.value - seen.value) > max(0.01 * full.value, 4.0 * (full.error + seen.error)):
        lines.append("the two differ: a deck can't hold a fibre's body whose axis lies outside the box, and where thick and thin fibres come "
                     "close the nearest axis decides (margin and gap, docs/fibres.md)")
    return lines + fibres.notes, full


def main(arguments):
    options = parse(arguments)
    begin = time.monotonic()
    fibres, choice, seed = read_fibres(options)
    name = options.output or os.path.splitext(os.path.basename(options.file))[0]
    if options.command == "from-csv" and os.path.abspath(name + ".csv") == os.path.abspath(options.file):
        name += "-fibres"
    written = prepare(fibres, choice.margin, choice.classes)
    text = fibre_cards(written, choice)
    write_files(name, text, fibres)
    lines, fraction = report(fibres, written, options.points, seed)
    print("\n".join(lines))
    if options.picture:
        from ..fibres.picture import draw_picture
        try:
            kind, share = names_of(fibres)
            draw_picture(options.picture, in_own_box(written), f"{len(fibres.diameters)} {kind}, {share} {fraction.value:.3f}")
        except (OSError, ValueError) as error:
            raise ZurtError(str(error), options.picture) from None
    print(f"written: {name}.cards, {name}.csv" + (f", {options.picture}" if options.picture else "")
          + f" ({time.monotonic() - begin:.1f} s)")
    return 0


def write_files(name, text, fibres):
    from ..fibres.table_file import write_table
    try:
        with open(name + ".cards", "w", encoding="ascii") as file:
            file.write(text)
        write_table(name + ".csv", fibres)
    except OSError as error:
        raise ZurtError(error.strerror, error.filename) from None
