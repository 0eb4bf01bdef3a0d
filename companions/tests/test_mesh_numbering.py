"""Numbering for the band, and the solver advised."""
import os

import numpy
import pytest

from mesh_support import stored_words
from zurt.mesh.model import ElementBlock, Mesh
from zurt.mesh.numbering import advise_solver, profile_size, renumber_for_band
from zurt.program import TREE


def bar(along, across, dice=None):
    """Bricks of 8 nodes, with so many elements along x and to a side of the section; nodes in random order with `dice`."""
    x, y, z = numpy.meshgrid(numpy.arange(along + 1), numpy.arange(across + 1), numpy.arange(across + 1), indexing="ij")
    points = numpy.stack([x.ravel(), y.ravel(), z.ravel()], axis=1).astype(float)
    row = numpy.arange(len(points)).reshape(x.shape)
    corners = [(1, 1, 1), (0, 1, 1), (0, 0, 1), (1, 0, 1), (1, 1, 0), (0, 1, 0), (0, 0, 0), (1, 0, 0)]
    elements = numpy.stack([row[i:i + along, j:j + across, k:k + across].ravel() for i, j, k in corners], axis=1)
    order = numpy.arange(len(points)) if dice is None else dice.permutation(len(points))
    new_of_old = numpy.argsort(order)
    ends = new_of_old[numpy.flatnonzero(points[:, 0] == along)]
    return Mesh(points[order], [ElementBlock("all", 3, new_of_old[elements], numpy.arange(len(elements)))], {"end": numpy.sort(ends)})


def test_store_of_a_shuffled_bar(tmp_path):
    """The bar's own order, sections one behind the other, is the best there is; sizes are those of the program's report."""
    ordered, shuffled = bar(12, 2), bar(12, 2, numpy.random.default_rng(1))
    mesh, before, after = renumber_for_band(shuffled)
    assert (before, after) == (profile_size(shuffled), profile_size(mesh)) and after <= 1.02 * profile_size(ordered) < 0.5 * before
    assert (mesh.points[mesh.node_sets["end"]][:, 0] == 12.0).all() and len(mesh.node_sets["end"]) == 9
    for one in (shuffled, mesh):
        corners = one.points[one.blocks[0].elements]
        assert (corners.max(axis=1) - corners.min(axis=1) == 1.0).all()
        assert stored_words(tmp_path, one) == profile_size(one)


def test_store_with_absent_middles(tmp_path):
    """Rows of -1 take no place: a brick with one mid-side node."""
    mesh = bar(3, 1)
    mesh.points = numpy.concatenate([mesh.points, [[0.5, 1.0, 1.0]]])
    elements = numpy.pad(mesh.blocks[0].elements, ((0, 0), (0, 12)), constant_values=-1)
    elements[mesh.points[elements[:, :8]][:, :, 0].min(axis=1) == 0, 8] = len(mesh.points) - 1
    mesh.blocks[0].elements = elements
    assert stored_words(tmp_path, mesh) == profile_size(mesh)
    renumbered, before, after = renumber_for_band(mesh)
    assert after < before and stored_words(tmp_path, renumbered) == after


@pytest.mark.parametrize("along, across, name", [(400, 1, "skyline"), (6, 6, "skyline"), (24, 24, "cg")])
def test_solver_advised(along, across, name):
    assert advise_solver(bar(along, across)).name == name


def test_advice_agrees_with_the_figures_measured():
    """docs/solvers.md, cubes of three passes: seconds of the skyline solver and of conjugate gradients by nodes."""
    with open(os.path.join(TREE, "docs", "solvers.md")) as file:
        rows = [line.split("|")[1:-1] for line in file if line.startswith(("| 20 | 9", "| 30 | 29"))]
    for side, nodes, skyline, _, gradients, _ in rows:
        mesh = bar(int(side), int(side))
        assert len(mesh.points) == int(nodes.replace(",", ""))
        seconds = advise_solver(mesh).seconds
        assert 0.4 < 3 * seconds["skyline"] / float(skyline) < 2.5 and 0.4 < 3 * seconds["cg"] / float(gradients) < 2.5
