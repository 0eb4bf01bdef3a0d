"""Decks of job files against the examples that they make again: equal results, to the byte where coordinates are free of columns."""
import pytest
from support.example_decks import compare_example, names_of_jobs

# Coordinates in fixed columns, and for the fit the order of its elements, change last digits.
ROUNDED = {"homogenization": 1e-6, "spheres": 1e-8}


@pytest.mark.parametrize("name", [name for name in names_of_jobs() if name != "fibre_box"])
def test_example_comes_out_of_its_job_file(name, tmp_path):
    for what, lines, different, largest in compare_example(name, str(tmp_path)):
        assert lines > 3
        assert different == 0 if name not in ROUNDED else largest < ROUNDED[name], (what, different, largest)
