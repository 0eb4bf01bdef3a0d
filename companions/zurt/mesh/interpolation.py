"""Shape functions of the elements of mesh files, linear and of second order, from the functions that each element spans.

The span is a list of terms x^i y^j z^k / (1 - z)^l, and the functions are those combinations that are 1 at one node and 0 at the others:
complete polynomials on triangles and tetrahedra, products on lines, quadrilaterals and bricks without or with (27, 9 nodes) the terms of
faces and centre, both on wedges. Pyramids have rational terms (G. Bedrosian, Shape functions and integration formulas for
three-dimensional finite element analysis, 1992), which are polynomials on every face.
"""
import functools
import itertools

import numpy

from .families import FAMILIES, reference_places


def _products(dimension, degree):
    return list(itertools.product(range(degree + 1), repeat=dimension))


def _complete(dimension, degree):
    return [term for term in _products(dimension, degree) if sum(term) <= degree]


def _serendipity(dimension):
    """Products of degree 2 whose squares come with first powers alone: the sum of the degrees above 1 is at most 2."""
    return [term for term in _products(dimension, 2) if sum(power for power in term if power > 1) <= 2]


def _wedge_terms(edges, faces):
    if not edges:
        return [(i, j, k) for i, j in _complete(2, 1) for k in (0, 1)]
    if faces:
        return [(i, j, k) for i, j in _complete(2, 2) for k in (0, 1, 2)]
    return [(i, j, k) for i, j in _complete(2, 2) for k in (0, 1)] + [(i, j, 2) for i, j in _complete(2, 1)]


def _pyramid_terms(edges, faces):
    if not edges:
        return [term + (0,) for term in _complete(3, 1)] + [(1, 1, 0, 1)]
    terms = [term + (0,) for term in _complete(3, 2)] + [(1, 1, 0, 1), (2, 1, 0, 1), (1, 2, 0, 1)]
    return terms + [(2, 2, 0, 2)] if faces else terms


def _terms(name, edges, faces, centre):
    dimension = FAMILIES[name].dimension
    if name in ("triangle", "tetra"):
        terms = _complete(dimension, 2 if edges else 1)
    elif name == "wedge":
        terms = _wedge_terms(edges, faces)
    elif name == "pyramid":
        return _pyramid_terms(edges, faces)
    elif not edges:
        terms = _products(dimension, 1)
    elif name == "line" or faces:
        terms = _products(dimension, 2)
    else:
        terms = _serendipity(dimension) + ([(2, 2, 2)] if centre else [])
    return [tuple(term) + (0,) * (4 - len(term)) for term in terms]


def _values(terms, places):
    """(p, terms) values of the terms; at the apex of a pyramid x and y are zero, and so are the rational terms."""
    x, y, z = (places[:, axis] if axis < places.shape[1] else numpy.zeros(len(places)) for axis in range(3))
    rest = numpy.where(numpy.abs(1.0 - z) < 1e-14, 1.0, 1.0 - z)
    return numpy.stack([x ** i * y ** j * z ** k / rest ** power for i, j, k, power in terms], axis=1)


def _slopes(terms, places):
    """(dimension, p, terms) derivatives of polynomial terms."""
    slopes = []
    for axis in range(places.shape[1]):
        lowered = [tuple(max(power - (number == axis), 0) for number, power in enumerate(term)) for term in terms]
        slopes.append(_values(lowered, places) * numpy.array([term[axis] for term in terms]))
    return numpy.stack(slopes)


@functools.lru_cache(maxsize=None)
def _combinations(name, edges, faces, centre):
    """The terms, and (terms, nodes) factors of each shape function."""
    terms = _terms(name, edges, faces, centre)
    nodes = reference_places(FAMILIES[name], edges, faces, centre)
    return terms, numpy.linalg.inv(_values(terms, nodes))


def shape_values(name, kind, places):
    """(p, nodes) shape functions of the family `name` at natural coordinates (p, dimension).

    kind: (nodes on edges or not, faces with a node, node at the centre or not), as in families.KINDS; nodes stand in that order behind
    the corners.
    """
    terms, factors = _combinations(name, *kind)
    return _values(terms, numpy.asarray(places, dtype=float)) @ factors


def shape_slopes(name, kind, places):
    """(dimension, p, nodes) derivatives by natural coordinates, of any family but pyramids."""
    terms, factors = _combinations(name, *kind)
    return _slopes(terms, numpy.asarray(places, dtype=float)) @ factors
