"""Directions of fibres with a given orientation tensor.

Directions follow the angular central Gaussian law (Tyler, Biometrika 74, 1987): p = z / |z|, z normal with the covariance B. Along the
axes of B the second moments <p p> are elliptic integrals of its eigenvalues b,

    a_i = R_D(1 / b_j, 1 / b_k, 1 / b_i) / (3 sqrt(b_1 b_2 b_3)),

with Carlson's R_D; the b of given a are their inverse. An eigenvalue 0 leaves a law in the plane (a_i = sqrt(b_i) / sum) or one direction.
"""
import numpy
from scipy.optimize import root
from scipy.special import elliprd

SMALLEST_EIGENVALUE = 1.0e-9


def moments_of_law(b):
    """(3,) second moments of the law with the positive eigenvalues b (3,)."""
    x = 1.0 / b
    scale = 3.0 * numpy.sqrt(b.prod())
    return numpy.array([elliprd(x[(i + 1) % 3], x[(i + 2) % 3], x[i]) for i in range(3)]) / scale


def law_of_moments(a):
    """(3,) eigenvalues b of the law, product 1, whose second moments are a (3,), all positive and of sum 1."""
    def residual(logarithms):
        q = numpy.append(logarithms, -logarithms.sum())
        return (moments_of_law(numpy.exp(q)) / a - 1.0)[:2]

    start = 2.0 * numpy.log(a)
    solution = root(residual, (start - start.mean())[:2], tol=1.0e-13)
    b = numpy.exp(numpy.append(solution.x, -solution.x.sum()))
    if not numpy.allclose(moments_of_law(b), a, rtol=1.0e-6):
        raise ArithmeticError("no law was found")
    return b


def scales_of_law(a):
    """(3,) standard deviations of z along the axes for second moments a (3,) of sum 1, of which some may be 0."""
    present = a > SMALLEST_EIGENVALUE
    if present.all():
        return numpy.sqrt(law_of_moments(a))
    return numpy.where(present, a if present.sum() == 2 else 1.0, 0.0)


def draw_directions(random, tensor, count):
    """(count, 3) unit vectors. tensor: (3, 3), symmetric, of trace 1, no eigenvalue below 0."""
    values, axes = numpy.linalg.eigh(tensor)
    values = numpy.clip(values, 0.0, None)
    z = random.standard_normal((count, 3)) * scales_of_law(values / values.sum())
    return (z / numpy.linalg.norm(z, axis=1)[:, None]) @ axes.T


def mean_tensor(directions, weights):
    """(3, 3) weighted mean of p p."""
    return numpy.einsum("n,ni,nj->ij", weights / weights.sum(), directions, directions)


def match_tensor(directions, weights, tensor):
    """The directions, turned a little so that their weighted mean of p p is the tensor to 1e-10; as they were when they are too few or
    the tensor is that of a plane or an axis, where a sample can't be brought there by a linear map."""
    values, axes = numpy.linalg.eigh(tensor)
    if len(directions) < 6 or values[0] < 1.0e-3:
        return directions
    wanted = axes * numpy.sqrt(values) @ axes.T
    turned = directions
    for _ in range(200):
        found = mean_tensor(turned, weights)
        if numpy.abs(found - tensor).max() < 1.0e-10:
            return turned
        s, q = numpy.linalg.eigh(found)
        if s[0] < 1.0e-6:
            break
        turned = turned @ (wanted @ (q / numpy.sqrt(s) @ q.T)).T
        turned /= numpy.linalg.norm(turned, axis=1)[:, None]
    return turned if numpy.abs(mean_tensor(turned, weights) - tensor).max() < 1.0e-6 else directions
