"""Meshes of Gmsh (.msh of all versions) and universal files (.unv), by Gmsh's own module."""
import numpy

from ..errors import ZurtError
from .middles import cells_of_nodes
from .source import BEHIND_NUMBER, SourceMesh

# Gmsh's numbers of element types of first and second order: 15 is a point.
FAMILY_OF_TYPE = {1: "line", 8: "line", 2: "triangle", 9: "triangle", 3: "quad", 10: "quad", 16: "quad", 4: "tetra", 11: "tetra",
                  5: "hexahedron", 12: "hexahedron", 17: "hexahedron", 6: "wedge", 13: "wedge", 18: "wedge",
                  7: "pyramid", 14: "pyramid", 19: "pyramid"}
POINT_TYPE = 15


def read_gmsh(path):
    """The file's mesh with its physical groups as a SourceMesh. A group without a name is "group-7" after its number."""
    try:
        import gmsh
    except ImportError:
        raise ZurtError("Gmsh's module for Python is missing, which reads this file: install python3-gmsh (./setup companions)", path)
    was_open = gmsh.isInitialized() if hasattr(gmsh, "isInitialized") else False
    if not was_open:
        gmsh.initialize(["zurt"], False)
    own_model = gmsh.model.getCurrent() if was_open else None
    gmsh.option.setNumber("General.Terminal", 0)
    gmsh.model.add("zurt-reading")
    try:
        gmsh.merge(path)
        return _read_model(gmsh, path)
    except ZurtError:
        raise
    except Exception as error:  # what Gmsh throws has no class of its own
        raise ZurtError(f"Gmsh can't read this mesh: {str(error).strip() or 'it gives no reason'}", path)
    finally:
        gmsh.model.remove()
        if was_open:
            gmsh.model.setCurrent(own_model)
        else:
            gmsh.finalize()


def _read_model(gmsh, path):
    tags, coordinates, _ = gmsh.model.mesh.getNodes()
    if not len(tags):
        raise ZurtError("there are no nodes in this file", path)
    order = numpy.argsort(tags)  # Gmsh hands nodes out entity by entity; the file's numbers tell their order
    tags = tags[order]
    mesh = SourceMesh(path, numpy.array(coordinates).reshape(-1, 3)[order])
    row_of_tag = numpy.full(int(tags.max()) + 1, -1, numpy.int64)
    row_of_tag[tags.astype(numpy.int64)] = numpy.arange(len(tags))
    parts = _elements_by_type(gmsh, path)
    entity_cells, points_of_entity = _join_parts(gmsh, mesh, parts, row_of_tag)
    _take_groups(gmsh, mesh, entity_cells, points_of_entity)
    return mesh


def _elements_by_type(gmsh, path):
    """{type: [(entity, element tags, node tags)]}"""
    parts = {}
    for entity in gmsh.model.getEntities():
        types, element_tags, node_tags = gmsh.model.mesh.getElements(*entity)
        for kind, elements, nodes in zip(types, element_tags, node_tags):
            if kind not in FAMILY_OF_TYPE and kind != POINT_TYPE:
                name = gmsh.model.mesh.getElementProperties(kind)[0]
                raise ZurtError(f'there are elements of the type "{name}"; elements of first and second order are read: '
                                "export the mesh with order 1 or 2", path)
            parts.setdefault(int(kind), []).append((entity, elements, nodes))
    return parts


def _join_parts(gmsh, mesh, parts, row_of_tag):
    """Fills mesh.cells, one entry a type; for each entity its counts of elements, or the points of its point elements."""
    entity_cells, points_of_entity, start = {}, {}, 0
    for kind, found in parts.items():
        if kind == POINT_TYPE:
            for entity, _, nodes in found:
                points_of_entity[entity] = row_of_tag[nodes.astype(numpy.int64)]
            continue
        numbers = numpy.concatenate([elements for _, elements, _ in found]).astype(numpy.int64)
        nodes = row_of_tag[numpy.concatenate([nodes for _, _, nodes in found]).astype(numpy.int64)].reshape(len(numbers), -1)
        mesh.cells.append(cells_of_nodes(FAMILY_OF_TYPE[kind], mesh.points, nodes, numbers, mesh.file))
        for entity, elements, _ in found:
            entity_cells.setdefault(entity, []).append(numpy.arange(start, start + len(elements)))
            start += len(elements)
    return entity_cells, points_of_entity


def _take_groups(gmsh, mesh, entity_cells, points_of_entity):
    physical = gmsh.model.getPhysicalGroups()
    bare = [tag for dimension, tag in physical if not gmsh.model.getPhysicalName(dimension, tag)]
    for dimension, tag in physical:
        name = gmsh.model.getPhysicalName(dimension, tag)
        if not name:
            highest = max(other for other, number in physical if number == tag)
            name = f"group-{tag}" + (BEHIND_NUMBER[dimension] if bare.count(tag) > 1 and dimension < highest else "")
        entities = [(dimension, int(entity)) for entity in gmsh.model.getEntitiesForPhysicalGroup(dimension, tag)]
        cells = [rows for entity in entities for rows in entity_cells.get(entity, [])]
        if cells:
            mesh.groups[name] = numpy.unique(numpy.concatenate([mesh.groups.get(name, numpy.empty(0, numpy.int64))] + cells))
        points = [points_of_entity[entity] for entity in entities if entity in points_of_entity]
        if points:
            mesh.node_sets[name] = numpy.unique(numpy.concatenate([mesh.node_sets.get(name, numpy.empty(0, numpy.int64))] + points))
