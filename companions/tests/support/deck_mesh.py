"""The mesh of a deck as gmsh's file: nodes, elements, groups. For examples whose decks are made again from a mesh and a job file.

Groups: group1, group2, ... of elements, with -2 behind where their material is 2 and -line3 where they are the third line; held: nodes
with an indicator above 0. Sides of quadrilaterals whose nodes lie in a plane make further groups.
"""
import numpy

from zurt.deck.tables import CARDS

GMSH_TYPES = {(1, 2): 1, (1, 3): 8, (2, 4): 3, (2, 8): 16, (2, 9): 10, (3, 8): 5, (3, 20): 17}
# Places of gmsh's nodes in the order of the manual's figures.
GMSH_ORDER = {5: [4, 5, 6, 7, 0, 1, 2, 3], 17: [4, 5, 6, 7, 0, 1, 2, 3, 12, 15, 16, 13, 17, 14, 18, 19, 8, 11, 9, 10]}


def card_lines(path):
    """Lines of a deck without comments."""
    with open(path, encoding="utf-8") as file:
        return [line.rstrip("\n") for line in file if line[:2] not in ("C ", "C*", "C-") and line.strip() != "C"]


def card_numbers(line, name, free):
    """Numbers of a card, missing ones 0."""
    fields = [field for field in CARDS[name].fields for _ in range(field.count)]
    if free:
        words = line.replace(",", " ").split()
        kept = [field for field in fields if field.letter != "X"]
        texts = words[:len(kept)] + ["0"] * (len(kept) - len(words))
        fields = kept
    else:
        starts = numpy.cumsum([0] + [field.width for field in fields])
        pairs = [(line[a:b].replace(" ", "") or "0", field) for a, b, field in zip(starts, starts[1:], fields) if field.letter != "X"]
        texts, fields = zip(*pairs)
    return [int(text) if field.letter == "I" else float(text.replace("D", "E")) for text, field in zip(texts, fields)]


def read_nodes(lines, place, count, free):
    """(points, indicators, place behind the cards); generated nodes by running sums, as the program makes them."""
    points, indicator, covered, opened = numpy.zeros((count, 3)), numpy.zeros(count, dtype=int), 0, None
    while covered < count:
        number, held, x, y, z, _, step = card_numbers(lines[place], "Node card", free)
        place += 1
        if opened:
            first, start, mark, width = opened
            between = abs(number - first) // width
            delta = (numpy.array([x, y, z]) - start) / between
            current = start.copy()
            for i in range(1, between):
                current = current + delta
                node = first + i * width * (1 if number > first else -1)
                points[node - 1], indicator[node - 1] = current, mark
                covered += 1
        points[number - 1], indicator[number - 1] = (x, y, z), held
        covered += 1
        opened = (number, numpy.array([x, y, z]), held, step) if step else None
    return points, indicator, place


def read_elements(lines, place, dimension, count, most, free):
    """((element, nodes, material) of a group in the order of their numbers, place behind the cards)."""
    corners = {1: 2, 2: 4, 3: 8}[dimension]
    name = f"{dimension}D element card" + (" of 3 nodes" if dimension == 1 and most > 2 else "")
    width = 3 if dimension == 1 and most > 2 else corners
    elements = {}
    while len(elements) < count:
        numbers = card_numbers(lines[place], name, free)
        place += 1
        first, nodes, (material, _, step, more) = numbers[0], numbers[1:1 + width], numbers[1 + width:5 + width]
        if dimension > 1 and most > corners:
            nodes = nodes + card_numbers(lines[place], f"{dimension}D mid-side node card", free)
            place += 1
        for i in range(more + 1):
            elements[first + i] = ([node + i * step if node else 0 for node in nodes], material)
    return [elements[number] for number in sorted(elements)], place


def skip_to_groups(lines, place, free):
    """Place of the first element group card: behind the homogenization card, the card of the curve ends and the fibre sets."""
    from zurt.deck.fibre_file import CardReader, read_set
    card = card_numbers(lines[place], "Homogenization card", free)
    place += 1 if card[13] == 1 or card[11] else 2
    reader = CardReader("", list(enumerate(lines)), place)
    for _ in range(card[0]):
        read_set(reader, 1.0)
    return reader.place


def read_problem(lines, place):
    """(points, indicators, list of (dimension, elements), place behind the groups) of the problem whose title stands at place."""
    form = [int(word) for word in lines[place + 1].split()]
    free, device = form[0] == 1, form[1] != 0
    place += 2
    if device and form[2] > 0:
        degraded = card_numbers(lines[place + 1], "Second device card", False)[4]
        place += 3 if degraded else 2
    basic = card_numbers(lines[place], "Basic data card", free)
    place += 3 + (2 if basic[3] else 0)
    points, indicator, place = read_nodes(lines, place, basic[0], free)
    place = skip_to_groups(lines, place, free)
    groups = []
    for _ in range(basic[1] or 1):
        dimension, count = card_numbers(lines[place], "Element group card", free)[:2]
        if dimension > 3:
            break
        name = f"{dimension}D group card" + (" with NDS" if device else "")
        most = card_numbers(lines[place + 1], name, free)[1 if device else 2]
        elements, place = read_elements(lines, place + 2, dimension, count, most, free)
        groups.append((dimension, elements))
    return points, indicator, groups, place


def plane_sides(points, groups, axis, level):
    """Sides of quadrilaterals, pairs of node numbers, in a plane."""
    inside = numpy.abs(points[:, axis] - level) < 1e-9
    found = []
    for dimension, elements in groups:
        for nodes, _ in elements if dimension == 2 else []:
            found += [(a, b) for a, b in zip(nodes[:4], nodes[1:4] + nodes[:1]) if inside[a - 1] and inside[b - 1]]
    return found


def write_gmsh(path, points, elements):
    """gmsh's file, version 2.2. elements: (name, dimension, gmsh's type, node numbers from 1)."""
    names = {}
    for name, dimension, _, _ in elements:
        names.setdefault((dimension, name), len(names) + 1)
    with open(path, "w", encoding="ascii") as file:
        print("$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$PhysicalNames", len(names), sep="\n", file=file)
        for (dimension, name), number in names.items():
            print(f"{dimension} {number} \"{name}\"", file=file)
        print("$EndPhysicalNames\n$Nodes", len(points), sep="\n", file=file)
        for number, point in enumerate(numpy.asarray(points).tolist(), 1):
            print(number, *map(repr, point), file=file)
        print("$EndNodes\n$Elements", len(elements), sep="\n", file=file)
        for number, (name, dimension, kind, nodes) in enumerate(elements, 1):
            place = names[dimension, name]
            print(number, kind, 2, place, place, *nodes, file=file)
        print("$EndElements", file=file)


def write_mesh(path, points, indicator, groups, sides):
    """The mesh of a deck. sides: name to pairs of nodes."""
    rows = []
    for number, (dimension, elements) in enumerate(groups, 1):
        for place, (nodes, material) in enumerate(elements, 1):
            while nodes[-1] == 0:
                nodes = nodes[:-1]
            kind = GMSH_TYPES[dimension, len(nodes)]
            name = f"group{number}" + (f"-{material}" if material > 1 else "") + (f"-line{place}" if dimension == 1 else "")
            rows.append((name, dimension, kind, [nodes[i] for i in GMSH_ORDER.get(kind, range(len(nodes)))]))
    rows += [(name, 1, 1, pair) for name, pairs in sides.items() for pair in pairs]
    rows += [("held", 0, 15, [node]) for node in numpy.nonzero(indicator > 0)[0] + 1]
    write_gmsh(path, points, rows)


def mesh_of_deck(deck, path, planes=()):
    """Writes the mesh of a deck's first problem. planes: (name, axis, level) of groups of sides."""
    points, indicator, groups, _ = read_problem(card_lines(deck), 0)
    write_mesh(path, points, indicator, groups, {name: plane_sides(points, groups, axis, level) for name, axis, level in planes})
