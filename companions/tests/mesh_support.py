"""Meshes that Gmsh makes, and runs of the program on a Mesh: for the tests of zurt.mesh."""
import os
import subprocess

import gmsh
import meshio
import numpy

from zurt.program import find_program


def make_gmsh_mesh(path, build, size, order=1, recombine=False, version=4.1, binary=False):
    """Writes the mesh of what build() adds to the model. Its body is the group "body", its sides have the number 7 and no name.

    Returns the body's volume (area), by Gmsh's own integration.
    """
    gmsh.initialize(["zurt"], False)
    try:
        gmsh.option.setNumber("General.Terminal", 0)
        gmsh.model.add("model")
        build()
        gmsh.model.occ.synchronize()
        for name, value in (("MeshSizeMax", size), ("MeshSizeMin", size), ("RecombineAll", int(recombine)), ("Binary", int(binary)),
                            ("MshFileVersion", version)):
            gmsh.option.setNumber("Mesh." + name, value)
        dimension = gmsh.model.getDimension()
        gmsh.model.mesh.generate(dimension)
        gmsh.model.mesh.setOrder(order)
        gmsh.model.addPhysicalGroup(dimension, [tag for _, tag in gmsh.model.getEntities(dimension)], 1)
        gmsh.model.setPhysicalName(dimension, 1, "body")
        sides = gmsh.model.getBoundary(gmsh.model.getEntities(dimension), oriented=False)
        gmsh.model.addPhysicalGroup(dimension - 1, [tag for _, tag in sides], 7)
        gmsh.write(str(path))
        size_of_body = 0.0
        for kind in gmsh.model.mesh.getElementTypes(dimension):
            places, weights = gmsh.model.mesh.getIntegrationPoints(kind, "Gauss4")
            _, determinants, _ = gmsh.model.mesh.getJacobians(kind, places)
            size_of_body += float((numpy.reshape(determinants, (-1, len(weights))) @ weights).sum())
        return size_of_body
    finally:
        gmsh.finalize()


def _cards_of_block(block):
    family = {1: (1, 2, 3), 2: (2, 4, 9), 3: (3, 8, 21)}[block.dimension]
    gauss = 2 if block.elements.shape[1] <= family[1] else 3
    most = family[1] if block.elements.shape[1] <= family[1] else family[2]
    yield f"{family[0]} {len(block.elements)} 0 1 0 0"
    yield f"1 1 {most} 0 0 " + " ".join([str(gauss)] * block.dimension) + (" 0 1." if block.dimension == 2 else "")
    numbers = numpy.zeros((len(block.elements), most), int)
    numbers[:, :block.elements.shape[1]] = block.elements + 1
    for count, row in enumerate(numbers.tolist(), start=1):
        first, rest = (row, []) if block.dimension == 1 else (row[:family[1]], row[family[1]:])
        yield " ".join(map(str, [count] + first)) + " 0 1 0 0 0 0" + (" 1." if block.dimension < 3 else "")
        if rest:
            yield " ".join(map(str, rest))


def run_steady(folder, mesh, held, values, source=0.0, solver="skyline"):
    """Solves -div grad u = source with u = values at the held nodes (rows); (n,) values at all nodes, with all their digits."""
    indicator = numpy.zeros(len(mesh.points), int)
    indicator[held] = 1
    given = numpy.where(indicator > 0, values, 0.0)
    lines = ["A mesh", "1 0 0 0", f"{len(mesh.points)} {len(mesh.blocks)} 1 0 1 -1 0 -1 0 -1 0", "1 0 0 20 0. 1e-12 1 0", "1 0 0 0. 0"]
    lines += [f"{row + 1} {flag} {x!r} {y!r} {z!r} {value!r} 0"
              for row, (flag, (x, y, z), value) in enumerate(zip(indicator.tolist(), mesh.points.tolist(), given.tolist()))]
    lines += ["0 0 0 0 0 0. 0 0 0 0 0 0 0 0", "0. 0."]
    for block in mesh.blocks:
        lines += _cards_of_block(block)
    lines += ["0 1 2 0 0 0", "1 0 0 1. 1. 1. 1. 1e6 -1e6", "1 2", "-1000. 1.", "1000. 1.", "1 0 0 0 0 0 0 1 1 0 0", "1 1",
              f"0. {source!r}", "0.", "STOP", ""]
    with open(os.path.join(folder, "mesh.dat"), "w") as file:
        file.write("\n".join(lines))
    with open(os.path.join(folder, "held.dat"), "w") as file:
        file.write("0 1\n")
    ended = subprocess.run([find_program(), "-q", "-f", "--vtu", "--solver", solver, "--prescribed", "held.dat", "mesh.dat"], cwd=folder,
                           capture_output=True, text=True)
    assert ended.returncode == 0, ended.stderr
    result = meshio.read(os.path.join(folder, "mesh-0001.vtu"))
    node = result.point_data["node"]
    found = numpy.empty(len(mesh.points))
    found[node[node > 0] - 1] = result.point_data["concentration"][node > 0]
    return found
