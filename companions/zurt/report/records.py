"""What a page is made of: plain values for the template."""
from dataclasses import dataclass, field

MOST_ROWS = 2000  # of a table


@dataclass
class Headline:
    """A figure of the top of a page. hint: a few words below it."""
    label: str
    value: str
    hint: str = ""


@dataclass
class Table:
    title: str
    heads: list
    rows: list
    note: str = ""
    folded: bool = False


@dataclass
class Bar:
    """A flow of the last step. left, width: per cent of the row; positive flows into the mesh."""
    label: str
    value: str
    left: float
    width: float
    positive: bool


@dataclass
class FitPage:
    """One direction. sentences: the story in words. tables: Table."""
    title: str
    headlines: list
    sentences: list = field(default_factory=list)
    charts: list = field(default_factory=list)
    tables: list = field(default_factory=list)


@dataclass
class ProblemPage:
    """What is shown of one problem. bars: Bar of the last step's flows. pictures: [(caption, data address)]."""
    number: int
    title: str
    facts: list
    headlines: list = field(default_factory=list)
    pictures: list = field(default_factory=list)
    field_charts: list = field(default_factory=list)
    flux_charts: list = field(default_factory=list)
    balance_charts: list = field(default_factory=list)
    bars: list = field(default_factory=list)
    bars_title: str = ""
    probe_charts: list = field(default_factory=list)
    fits: list = field(default_factory=list)
    convergence_charts: list = field(default_factory=list)
    convergence_table: Table = None
    hints: list = field(default_factory=list)


@dataclass
class RunPage:
    """status: finished or stopped; status_words says it in words. message: the listing's at its end. errors: the program's on standard error.
    notes: None when nobody kept them."""
    name: str
    folder: str
    status: str
    status_words: str
    message: str
    errors: list
    notes: list
    messages: list
    problems: list
    files: list
