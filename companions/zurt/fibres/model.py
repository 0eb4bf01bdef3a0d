"""Sets of fibres: what readers and the generator make, and what writers and pictures take. Lengths are in the unit of the mesh, micrometres."""
from dataclasses import dataclass, field

import numpy

LINES = "lines"
BALLS = "balls"
UNITS = {"nm": 1.0e-3, "um": 1.0, "mm": 1.0e3, "cm": 1.0e4, "m": 1.0e6}


@dataclass
class Fibres:
    """n straight fibres with flat ends, or n balls: circles in the plane, spheres in space.

    starts, ends: (n, 3) ends of the axes, alike for balls. diameters: (n,). shape: LINES or BALLS. box: (3,) sizes of the box from the
    origin in which they are; its last size is 0 in the plane. period: as box where the fibres continue on the opposite face, else None.
    overlapping: whether two of them may have volume in common. notes: sentences about what was dropped or changed.
    """
    starts: numpy.ndarray
    ends: numpy.ndarray
    diameters: numpy.ndarray
    shape: str
    box: numpy.ndarray
    period: numpy.ndarray = None
    overlapping: bool = True
    notes: list = field(default_factory=list)


def dimension_of(box):
    """2 for a box without a third size, else 3."""
    return 3 if box[2] > 0.0 else 2


def volume_of_box(box):
    """Volume, or area in the plane."""
    return float(numpy.prod(box[:dimension_of(box)]))


def lengths_of(fibres):
    """(n,) lengths of the axes."""
    return numpy.linalg.norm(fibres.ends - fibres.starts, axis=1)


def cross_sections(diameters, dimension):
    """(n,) areas across the axes; widths in the plane."""
    return diameters if dimension == 2 else 0.25 * numpy.pi * diameters**2


def own_volumes(fibres):
    """(n,) volume of each fibre alone, areas in the plane."""
    dimension = dimension_of(fibres.box)
    if fibres.shape == LINES:
        return cross_sections(fibres.diameters, dimension) * lengths_of(fibres)
    d = fibres.diameters
    return 0.25 * numpy.pi * d**2 if dimension == 2 else numpy.pi / 6.0 * d**3


def select(fibres, rows):
    """The fibres of these rows, in their order."""
    return Fibres(fibres.starts[rows], fibres.ends[rows], fibres.diameters[rows], fibres.shape, fibres.box, fibres.period,
                  fibres.overlapping, list(fibres.notes))


def joined(fibres, others):
    """The fibres of both, those of the first ahead."""
    return Fibres(numpy.vstack([fibres.starts, others.starts]), numpy.vstack([fibres.ends, others.ends]),
                  numpy.concatenate([fibres.diameters, others.diameters]), fibres.shape, fibres.box, fibres.period, fibres.overlapping,
                  fibres.notes + others.notes)
