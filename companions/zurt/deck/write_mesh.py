"""Cards of nodes, element groups, radial fibres and sides."""
import numpy

from .card_writer import ALL_FREE, FIXED, put_card, put_flow, put_heading, put_rows
from .job_errors import job_error, place_text
from .problem_model import setting

ORDERS = {1: ["NGAU1X"], 2: ["NGAU2X", "NGAU2Y"], 3: ["NGAUSX", "NGAUSY", "NGAUSZ"]}
CORNERS = {1: 2, 2: 4, 3: 8}


def write_nodes(problem, deck):
    """One card a node."""
    count = len(problem.points)
    put_heading(deck, "Node card", "IND above 0: held.")
    deck.lines += put_rows(deck, "Node card", {
        "N": numpy.arange(1, count + 1), "IND": problem.indicator, "X": problem.points[:, 0], "Y": problem.points[:, 1], "Z": problem.points[:, 2],
        "VALUE": problem.value}, count)


def gauss_orders(problem, group):
    """The orders of a group, one a direction; 0 leaves the manual's default."""
    given, names = group.section.values["gauss"], ORDERS[group.dimension]
    if group.elements.shape[1] > CORNERS[group.dimension] > 2 and min(given or [2]) < 3:
        problem.notes.append(f"{place_text(group.section.place)}: elements with mid-side nodes want gauss = 3; with order 2 the matrix can be singular")
    if given is None:
        return dict.fromkeys(names, 0)
    place = group.section.place + ("gauss",)
    if len(given) not in (1, len(names)):
        raise job_error(problem.job, place, f"one order, or {len(names)}, are wanted")
    return dict(zip(names, given * len(names) if len(given) == 1 else given))


def most_nodes(problem, group):
    """Largest number of nodes of a group's elements, as its card wants it."""
    given, count = group.section.values["most_nodes"], group.elements.shape[1]
    if given is not None and (given < count or (given > CORNERS[group.dimension]) != (count > CORNERS[group.dimension])):
        raise job_error(problem.job, group.section.place + ("most_nodes",), f"the elements have up to {count} nodes")
    if group.dimension == 3 and count > 8:
        return given or (21 if count > 20 else 20)
    return given or max(count, CORNERS[group.dimension])


def write_group_cards(problem, deck, group):
    """Element group card and the card of its family."""
    values, dimension = group.section.values, group.dimension
    device = setting(problem, "device", "mode") != 0
    name = f"{dimension}D group card" + (" with NDS" if device else "")
    source = {"time": 1, "concentration": 2}[values["source_mode"]] if group.source.any() else 0
    put_heading(deck, "Element group card", f"NETIP {dimension}.")
    put_card(deck, "Element group card", {"NETIP": dimension, "NET": len(group.elements), "INDAX": int(values["axisymmetric"]), "IZIP": source})
    card = {f"NP{dimension}DMX": most_nodes(problem, group), **gauss_orders(problem, group)}
    if device:
        card[f"MAT{dimension}DD"] = int(group.material[0])
    else:
        card.update({f"NMAT{dimension}D": values["material_count"], f"MAT{dimension}D": int(group.material[0])})
    card[f"IPR{dimension}DC"] = values["print_points"] or 0
    card[{1: "IPTG1", 2: "IPTG2", 3: "IPRTG3"}[dimension]] = values["print_concentrations"] or 0
    if dimension == 2:
        several = len(numpy.unique(group.thickness)) > 1
        card.update({"NTHIC": int(several), "THIC": float(group.thickness[0])})
    put_heading(deck, name)
    put_card(deck, name, card)


def carried(flags):
    """Flags of elements that carry from one to the next: -1 for none where some have one."""
    return numpy.where(flags == 0, -1, flags) if flags.any() else flags


def write_elements(problem, deck, group):
    """A card an element, with its mid-side nodes behind it."""
    dimension, elements, count = group.dimension, group.elements, len(group.elements)
    corners = CORNERS[dimension]
    name = f"{dimension}D element card" + (" of 3 nodes" if dimension == 1 and elements.shape[1] > 2 else "")
    several = (group.material != group.material[0]).any()
    columns = {"NN": numpy.arange(1, count + 1), "MAT": group.material if several else 0, "ISRC": carried(group.source),
               "COORD": carried(group.coordinates), "CONC": carried(group.concentrations)}
    if dimension == 1:
        columns["NODE1 to NODE3" if elements.shape[1] > 2 else "NODE1 to NODE2"] = elements
        columns["AREA"] = group.area
    else:
        columns[f"NODE1 to NODE{corners}"] = elements[:, :corners]
    if dimension == 2 and len(numpy.unique(group.thickness)) > 1:
        columns["THIC"] = group.thickness
    put_heading(deck, name)
    rows = put_rows(deck, name, columns, count)
    if dimension > 1 and elements.shape[1] > corners:
        middle = f"{dimension}D mid-side node card"
        put_heading(deck, middle, "Behind each element.")
        own = {"NODE5 to NODE9": elements[:, 4:]} if dimension == 2 else {"NODE9 to NODE17": elements[:, 8:17], "NODE18 to NODE21": elements[:, 17:]}
        rows = [line for pair in zip(rows, put_rows(deck, middle, own, count)) for line in pair]
    deck.lines += rows


def write_radial(problem, deck, section, fibres):
    """A group of radial fibres."""
    values = section.values
    substructured, common = values["substructured"], {1: 0, 4: 1, 8: 2}[values["common_nodes"]]
    put_heading(deck, "Element group card", "NETIP 4: radial fibres.")
    put_card(deck, "Element group card", {"NETIP": 4, "NET": len(fibres), "ISUB4": int(substructured), "IND4N": common if substructured else 0})
    partition = any(fibre.section.values["partition"] is not None for fibre in fibres)
    rings = max(fibre.section.values["rings"] for fibre in fibres)
    put_heading(deck, "Radial group card")
    put_card(deck, "Radial group card", {"NSUBEL4MX": values["most_rings"] or rings, "NP4DMX": values["most_nodes"], "CFIBER0": values["initial"],
                                         "IPARTIT": int(partition)})
    put_heading(deck, "Radial element card", "Behind each its nodes.")
    for number, fibre in enumerate(fibres, 1):
        own = fibre.section.values
        put_card(deck, "Radial element card", {
            "NN": number, "D": own["diffusion"], "LENGTH": own["length"], "RADIUS": own["radius"], "COUNT": own["rings"] + int(substructured),
            "ContinuumNode": fibre.continuum if substructured else 0, "CENTRE": own["at"],
            "PARTITION": own["partition"] if own["partition"] is not None else float(partition)})
        if fibre.nodes:
            put_flow(deck, "Radial node card", fibre.nodes)


def write_groups(problem, deck):
    """All element groups."""
    for group in problem.groups:
        write_group_cards(problem, deck, group)
        write_elements(problem, deck, group)
    for section, fibres in problem.radial:
        write_radial(problem, deck, section, fibres)


def write_sides(problem, deck):
    """Surface cards of every group, each ended by a card of zeros."""
    if not any(problem.functions[family] for family in ("NQP", "NHP", "NTOK", "NHR")):
        return
    for group in problem.groups:
        name = f"{group.dimension}D surface card"
        put_heading(deck, name, "NE 0 ends the group.")
        for elements, corners, numbers in group.sides:
            nodes = "NODE1" if group.dimension == 1 else f"NODE1 to NODE{corners.shape[1]}"
            columns = dict(zip(("FLUX", "CONV", "ENVI", "EMIS", "SHAPE"), numbers))
            deck.lines += put_rows(deck, name, {"NE": elements, nodes: corners, **columns}, len(elements))
        put_card(deck, name, {})
    for _ in problem.radial:
        put_heading(deck, "3D surface card", "Radial fibres have none.")
        put_card(deck, "3D surface card", {})


def needs_columns(problem):
    """Whether the deck has cards that are free under `zurt --free` alone."""
    return setting(problem, "device", "mode") != 0 or bool(problem.radial) or bool(problem.starts)


def end_of_list(deck):
    """The card that ends a list of node numbers or ranges."""
    deck.lines.append("    0" if deck.form == FIXED else "0 /")
    assert deck.form in (FIXED, ALL_FREE)
