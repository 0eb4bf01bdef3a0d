"""The file of prescribed values, for `zurt --prescribed`."""
import numpy

from .card_writer import FREE, DeckText, put_card, put_comment, put_rows
from .problem_model import setting
from .write_boundary import put_function, timed_points


def has_values(problem):
    """Whether held nodes have values of their own."""
    return any(section.values["value"] is not None for section, _ in problem.held)


def wants_file(problem):
    """Whether the file is asked for."""
    inside = problem.section.tables["prescribed"]
    return has_values(problem) or bool(inside and (inside.given & {"file", "constant"}))


def entries_of(problem):
    """(functions, node numbers, function numbers, factors): one entry a node; of a node in several tables the last one counts."""
    functions, numbers, factors = [], numpy.zeros(len(problem.points), dtype=int), numpy.zeros(len(problem.points))
    for section, rows in problem.held:
        curve = section.values["value"]
        if curve is None:
            numbers[rows] = 0
            continue
        points = timed_points(problem, curve, True)
        if points not in functions:
            functions.append(points)
        numbers[rows] = functions.index(points) + 1
        factors[rows] = section.values["factor"]
    nodes = numpy.nonzero(numbers)[0]
    return functions, nodes + 1, numbers[nodes], factors[nodes]


def prescribed_text(problems):
    """Lines of the file for all problems of a deck."""
    deck = DeckText(FREE)
    put_comment(deck, "Values of the held nodes: entries (NZADC, IGATH); time functions; node, function, factor, step")
    for problem in problems:
        if setting(problem, "prescribed", "constant"):
            put_card(deck, "Prescribed value count", {"NZADC": 0, "IGATH": 1})
            continue
        functions, nodes, numbers, factors = entries_of(problem)
        put_card(deck, "Prescribed value count", {"NZADC": len(nodes)})
        if not len(nodes):
            continue
        put_card(deck, "Time function counts", {"NTABFT": len(functions), "MAXTFT": max(map(len, functions))})
        for number, points in enumerate(functions, 1):
            put_function(deck, number, points)
        deck.lines += put_rows(deck, "Prescribed value card", {"N": nodes, "F": numbers, "V": factors}, len(nodes))
    return deck.lines
