"""All cards of a deck by their headings."""
from .cards import make_cards
from .header_cards import HEADER_CARDS
from .mesh_cards import MESH_CARDS
from .model_cards import MODEL_CARDS

CARDS = make_cards({**HEADER_CARDS, **MESH_CARDS, **MODEL_CARDS})
