"""Diameters of random fibres, and the classes of them that a deck can hold: all fibres of a set have one diameter."""
import numpy
from scipy import stats

LAWS = {"constant": ("mean",), "uniform": ("low", "high"), "normal": ("mean", "deviation"), "lognormal": ("mean", "deviation")}


def draw_diameters(random, law, count):
    """(count,) diameters. law: a dictionary with distribution and its numbers, see LAWS; mean and deviation are those of the diameters
    themselves. A normal law is cut at 0.1 and 1.9 of its mean, so all diameters are positive and the mean stays."""
    kind = law["distribution"]
    if kind == "constant":
        return numpy.full(count, law["mean"])
    if kind == "uniform":
        return random.uniform(law["low"], law["high"], count)
    mean, deviation = law["mean"], law["deviation"]
    if kind == "normal":
        bound = 0.9 * mean / deviation
        return stats.truncnorm.rvs(-bound, bound, loc=mean, scale=deviation, size=count, random_state=random)
    variance = numpy.log1p((deviation / mean) ** 2)
    return random.lognormal(numpy.log(mean) - 0.5 * variance, numpy.sqrt(variance), count)


def class_limits(random, law, classes):
    """(classes - 1,) limits between classes of equal number, from a large sample of the law."""
    sample = draw_diameters(random, law, 200_000)
    return numpy.quantile(sample, numpy.arange(1, classes) / classes), sample


def class_diameters(limits, sample):
    """(classes,) root mean square of the sample's diameters between the limits: cross-sections keep their sum."""
    place = numpy.searchsorted(limits, sample)
    number = numpy.maximum(numpy.bincount(place, minlength=len(limits) + 1), 1)
    return numpy.sqrt(numpy.bincount(place, sample**2, minlength=len(limits) + 1) / number)


def into_classes(diameters, weights, classes):
    """(n,) diameters with at most so many different values, each the root of the mean square, by weights, of those it stands for."""
    values = numpy.unique(diameters)
    if len(values) <= classes:
        return diameters
    order = numpy.argsort(diameters, kind="stable")
    place = numpy.empty(len(diameters), int)
    place[order] = numpy.arange(len(diameters)) * classes // len(diameters)
    square = numpy.bincount(place, weights * diameters**2) / numpy.bincount(place, weights)
    return numpy.sqrt(square)[place]
