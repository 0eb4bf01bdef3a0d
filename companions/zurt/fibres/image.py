"""Straight fibres in a segmented image: its skeleton is cut into branches, those on one line are joined, each gets the line of least squares.

Voxels count from the corner of the image: the middle of voxel (i, j, k) is (i + 1/2, j + 1/2, k + 1/2). Only the last step has lengths.
"""
import os

import numpy
from scipy import ndimage
from scipy.spatial import cKDTree

from ..errors import ZurtError
from .model import LINES, UNITS, Fibres

SHORTEST_BRANCH = 3  # voxels


def fibres_of_image(path, unit, voxel=None, threshold=None, array=None, shortest=3.0):
    """Fibres of an image in a box of its size. unit: of voxel (edge of a voxel) and of the spacing of a .vti. threshold: voxels above it are
    fibre, without it those above 0. shortest: in diameters; what is shorter is dropped."""
    values, spacing = read_image(path, array)
    mask = values > (0 if threshold is None else threshold)
    if spacing is None and voxel is None:
        raise ZurtError("--voxel is needed: the edge of a voxel, which a TIFF stack does not tell", path)
    edge = UNITS[unit] * (voxel if voxel is not None else spacing)
    if not mask.any() or mask.all():
        raise ZurtError(f"{'no' if not mask.any() else 'every'} voxel is fibre; values go from {values.min():g} to {values.max():g}: "
                        "--threshold N takes those above N", path)
    lines, diameters, dropped = lines_of_mask(mask, shortest)
    if len(diameters) == 0:
        raise ZurtError("no straight fibre was found in this image", path)
    fibres = Fibres(edge * lines[:, 0], edge * lines[:, 1], edge * diameters, LINES, edge * numpy.array(mask.shape, float))
    fibres.notes.append(f"fibre voxels: {mask.mean():.5f} of the image; {dropped} branches shorter than {shortest:g} diameters dropped")
    return fibres


# --- files --------------------------------------------------------------------------------------------------------------

def read_image(path, array):
    """(values by x, y and z, edge of a voxel or None)."""
    if not os.path.isfile(path):
        raise ZurtError("there is no such file", path)
    values, spacing = read_vti(path, array) if path.lower().endswith(".vti") else (read_stack(path), None)
    if values.ndim != 3 or min(values.shape) < 4:
        raise ZurtError(f"a stack of at least 4 x 4 x 4 voxels of one number each is needed; this image is {values.shape}", path)
    return values, spacing


def read_stack(path):
    import tifffile
    try:
        return numpy.asarray(tifffile.imread(path)).T
    except Exception as error:  # a spoilt file leaves that reader in many ways
        raise ZurtError(f"no TIFF stack: {error}", path) from None


def read_vti(path, array):
    import vtk
    from vtk.util.numpy_support import vtk_to_numpy
    reader = vtk.vtkXMLImageDataReader()
    if not reader.CanReadFile(path):
        raise ZurtError("no .vti file", path)
    reader.SetFileName(path)
    reader.Update()
    image = reader.GetOutput()
    for data, size in ((image.GetCellData(), [n - 1 for n in image.GetDimensions()]), (image.GetPointData(), image.GetDimensions())):
        names = [data.GetArrayName(i) for i in range(data.GetNumberOfArrays())]
        if names and (array is None or array in names):
            spacing = image.GetSpacing()
            if max(spacing) > 1.000001 * min(spacing):
                raise ZurtError(f"voxels are cubes; their edges here are {spacing}", path)
            values = data.GetArray(array or names[0])
            if values is None or values.GetNumberOfComponents() != 1:
                raise ZurtError(f"array {array or names[0]}: one number for each voxel is needed", path)
            return vtk_to_numpy(values).reshape(size, order="F"), spacing[0]
    raise ZurtError(f"there is no array {array}" if array else "there is no array in it", path)


# --- lines --------------------------------------------------------------------------------------------------------------

def lines_of_mask(mask, shortest):
    """(ends (n, 2, 3), diameters (n,), number of branches dropped), in voxels."""
    from skimage.morphology import skeletonize
    padded = numpy.pad(mask, 1, mode="edge")
    # To the middle of the nearest voxel outside: half a voxel more than to the wall, which makes up for voxels that lie beside the axis.
    distance = ndimage.maximum_filter(ndimage.distance_transform_edt(padded)[1:-1, 1:-1, 1:-1], 3)
    skeleton = skeletonize(mask, method="lee") > 0
    branches = branches_of(skeleton)
    radii = [float(numpy.median(distance[tuple(branch.T)])) for branch in branches]
    branches, radii = drop_short(branches, radii)
    groups = join_branches([branch + 0.5 for branch in branches], radii)
    ends, diameters, dropped = [], [], 0
    for points in groups:
        radius = float(numpy.median(distance[tuple(numpy.floor(points).astype(int).T)]))
        middle, direction = fitted_line(points)
        along = (points - middle) @ direction
        low = reach_out(mask, middle, -direction, -along.min(), radius)
        high = reach_out(mask, middle, direction, along.max(), radius)
        if low + high < shortest * 2.0 * radius:
            dropped += 1
            continue
        ends.append([middle - low * direction, middle + high * direction])
        diameters.append(2.0 * radius)
    return numpy.array(ends).reshape(-1, 2, 3), numpy.array(diameters), dropped


def branches_of(skeleton):
    """Voxels (n, 3) of each branch: the skeleton without the voxels where branches meet, in connected parts."""
    around = ndimage.convolve(skeleton.astype(numpy.uint8), numpy.ones((3, 3, 3), numpy.uint8), mode="constant") - 1
    alone = skeleton & (around <= 2)
    labels, count = ndimage.label(alone, numpy.ones((3, 3, 3)))
    voxels = numpy.argwhere(alone)
    order = numpy.argsort(labels[tuple(voxels.T)], kind="stable")
    limits = numpy.cumsum(numpy.bincount(labels[tuple(voxels.T)], minlength=count + 1)[1:])[:-1]
    return [part for part in numpy.split(voxels[order], limits) if len(part) >= SHORTEST_BRANCH]


def drop_short(branches, radii):
    """Branches at least as long as their radius; the others are links between fibres that touch, or spurs."""
    keep = [numpy.linalg.norm(numpy.ptp(branch, axis=0)) >= radius for branch, radius in zip(branches, radii)]
    return [b for b, k in zip(branches, keep) if k], [r for r, k in zip(radii, keep) if k]


def moments(points):
    """Number, sum and sum of products: those of two sets of points add up."""
    return len(points), points.sum(0), points.T @ points


def off_line(together):
    """Root of the mean square distance of points from their line of least squares, from their moments."""
    count, total, square = together
    values = numpy.linalg.eigvalsh(square / count - numpy.outer(total, total) / count**2)
    return float(numpy.sqrt(max(values[0] + values[1], 0.0)))


def fitted_line(points):
    """(a point of it, direction) of the line of least squares."""
    middle = points.mean(0)
    return middle, numpy.linalg.svd(points - middle, full_matrices=False)[2][0]


def branch_ends(points):
    middle, direction = fitted_line(points)
    along = (points - middle) @ direction
    return numpy.array([middle + along.min() * direction, middle + along.max() * direction]), direction


def join_branches(branches, radii):
    """Points of fibres: branches whose ends lie within three diameters, whose directions differ by less than 20 degrees and whose points,
    taken together, lie within 0.4 radii of one line, best pairs first."""
    if not branches:
        return []
    found = [branch_ends(points) for points in branches]
    ends = numpy.concatenate([pair for pair, _ in found])
    near = cKDTree(ends).query_pairs(6.0 * max(radii), output_type="ndarray")
    known = [moments(points) for points in branches]
    candidates = []
    for i, j in near.tolist():
        a, b = i // 2, j // 2
        if a != b and numpy.linalg.norm(ends[i] - ends[j]) < 6.0 * max(radii[a], radii[b]) and abs(found[a][1] @ found[b][1]) > 0.94:
            candidates.append((off_line(tuple(x + y for x, y in zip(known[a], known[b]))), a, b))
    group = list(range(len(branches)))
    members = [[k] for k in group]
    for _, a, b in sorted(candidates):
        a, b = group[a], group[b]
        together = tuple(x + y for x, y in zip(known[a], known[b]))
        if a == b or off_line(together) > max(0.4 * min(radii[a], radii[b]), 0.6):
            continue
        known[a] = together
        members[a] += members[b]
        for k in members[b]:
            group[k] = a
        members[b] = []
    return absorb_parts([numpy.concatenate([branches[k] for k in part]) for part in members if part],
                        [float(numpy.median([radii[k] for k in part])) for part in members if part])


def absorb_parts(groups, radii):
    """The groups; one whose points lie within a radius of the line of a longer one, no further than three diameters beyond its ends, goes
    into that: where fibres cross, the skeleton of both is bent."""
    kept, lines, radius = [], numpy.zeros((2, len(groups), 3)), numpy.zeros(len(groups))  # a point and the direction of each line
    for k in sorted(range(len(groups)), key=lambda k: -len(groups[k])):
        points, count = groups[k], len(kept)
        near = lines_near(points, lines[0, :count], lines[1, :count], radius[:count])
        into = next((n for n in near if lies_along(points, kept[n], lines[0, n], lines[1, n], radius[n])), None)
        if into is None:
            kept.append(points)
            lines[:, count], radius[count] = fitted_line(points), radii[k]
        else:
            kept[into] = numpy.concatenate([kept[into], points])
    return kept


def lines_near(points, middles, directions, radius):
    """Numbers of the lines of which four of five points can lie within the radius: the mean of the points is then no further from a line than
    its radius and a fifth of the way across the points."""
    to = points.mean(0) - middles
    along = (to * directions).sum(1)
    across = numpy.sqrt(numpy.maximum((to * to).sum(1) - along**2, 0.0))
    return numpy.flatnonzero(across <= radius + 0.2 * numpy.linalg.norm(numpy.ptp(points, axis=0)) + 1.0e-6).tolist()


def lies_along(points, others, middle, direction, radius):
    """Whether four of five points lie along the line (a point of it, direction) of the others."""
    to = points - middle
    along, known = to @ direction, (others - middle) @ direction
    across = numpy.sqrt(numpy.maximum((to * to).sum(1) - along**2, 0.0))
    near = (across < radius) & (along > known.min() - 6.0 * radius) & (along < known.max() + 6.0 * radius)
    return near.mean() > 0.8


def reach_out(mask, middle, direction, start, radius):
    """How far the fibre reaches from the middle: on from the end of its skeleton, which lies about a radius ahead of it, to the last voxel
    of the mask."""
    steps = start + numpy.arange(0.0, 2.0 * radius + 1.0, 0.1)
    places = numpy.floor(middle + steps[:, None] * direction).astype(int)
    outside = ((places < 0) | (places >= mask.shape)).any(axis=1)
    inside = mask[tuple(numpy.clip(places, 0, numpy.array(mask.shape) - 1).T)] & ~outside
    stop = numpy.flatnonzero(~inside)
    return float(steps[stop[0]]) if len(stop) else float(steps[-1])
