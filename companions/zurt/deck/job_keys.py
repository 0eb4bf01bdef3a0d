"""What a job file may hold: the tables and their keys, with types, kinds of quantity, defaults and the card fields that they make.

A key is declared as a tuple: name, type, default, card fields, meaning. Types:
  text, flag, integer, integers (one or a list), names (one or a list), choice:NAME=NUMBER,..., switches:NAME,...
  quantity:KIND (a number in the declared units, or a text with a unit), list:KIND (one or a list), point (three lengths), points (a list of them)
  curve:KIND>KIND (a constant, a table of pairs, or the name of a table in [functions]), pairs:KIND>KIND (a table or a name)
  matrix:KIND (rows of numbers), nodes (numbers of nodes)
A default of REQUIRED must be given; None leaves the field 0, which is the manual's default.
The tables stand in keys_problem.py, keys_mesh.py and keys_model.py.
"""
from dataclasses import dataclass

REQUIRED = "required"


@dataclass(frozen=True)
class Key:
    """fields: "FIELD@Card" for each card field that the key makes."""
    name: str
    type: str
    default: object
    fields: tuple
    text: str


@dataclass(frozen=True)
class Table:
    """path: dotted name; its last part is the key within the table around it. many: an array of tables."""
    path: str
    many: bool
    text: str
    keys: dict
    order: int


def make_tables(declared):
    """declared: list of (path, text, keys); a path that ends with [] is an array of tables. Returns path to Table, outer ones first."""
    tables = {}
    for order, (path, text, keys) in enumerate(declared):
        many = path.endswith("[]")
        records = {}
        for name, kind, default, fields, meaning in keys:
            records[name] = Key(name, kind, default, tuple(fields.split(", ")) if fields else (), meaning)
        tables[path.removesuffix("[]")] = Table(path.removesuffix("[]"), many, text, records, order)
    return tables
