"""The tutorial of homogenization: its files and commands in the order of the page, and the numbers that it states."""
import os
import re
import shutil
import subprocess

import numpy
import pytest

import zurt
from zurt.program import TREE, find_program

PAGE = os.path.join(TREE, "docs", "homogenization_tutorial.md")


def code_blocks(text):
    """(file name or "", language, body) of the page's code blocks in order."""
    return re.findall(r"(?:^`([\w.]+)`:\n\n)?^```(\w+)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


def walk(text, folder):
    """Writes the files and runs the commands; each ends with status 0, and printed lines come out of the last ones in their order."""
    environment = dict(os.environ, PATH="/usr/bin:/bin", HOME=str(folder), ZURT=find_program())
    blocks = code_blocks(text)
    prepare = next(body for _, language, body in blocks if language == "sh")
    browser, said, compared = shutil.which("chromium") is not None, "", 0
    for name, language, body in blocks:
        if name:
            (folder / name).write_text(body)
        elif language == "sh":
            commands = body if browser else body.split("chromium")[0]
            script = f'set -eu\ncd "{TREE}"\n{prepare}\ncd "{folder}"\n{commands}'
            done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, timeout=120, env=environment, check=False)
            assert done.returncode == 0, body + done.stdout + done.stderr
            said = done.stdout.splitlines()
        else:
            rest = iter(said)
            missing = [line for line in body.splitlines() if line not in rest]
            assert not missing, f"the page prints {missing}, the commands said {said}"
            compared += 1
    assert compared == 3
    assert not browser or (folder / "homogenization_tutorial.png").read_bytes().startswith(b"\x89PNG")


def test_the_tutorial_does_what_it_says(tmp_path):
    with open(PAGE) as file:
        text = file.read()
    walk(text, tmp_path)
    fitted = zurt.read(tmp_path / "out").masses["X"][0].fitted
    distance = 1000.0 * fitted["HEQ"]
    factor = numpy.interp(distance, [1.0, 20.0, 100.0], [0.3, 0.7, 1.0])
    stated = [f"{fitted['D1D']:.3f} um2/s", f"{fitted['D1D']:.1f} % of", f"{fitted['HEQ']:.6f} um", f"{distance:.0f} nm; the table's factor there is {factor:.3f}",
              f"{fitted['D1D'] * factor:.1f} um2/s", f"| 12 | 2.4 | {fitted['D1D']:.2f} | {fitted['HEQ']:.5f} |"]
    assert [words for words in stated if words not in text] == []
    assert fitted["D1D"] == pytest.approx(69.4, rel=0.05)      # cylinders along and across by the tensor, as the page has it
    assert (tmp_path / "out" / "notes.txt").read_text() == ""
    report = re.sub("[\u00a0\u202f]", " ", re.sub(r"<[^>]+>", " ", (tmp_path / "out" / "report.html").read_text()))
    curve, wall = re.findall(r"(\d+) runs of the medium against", report)
    assert f"the curve took {curve} runs of the medium, `HEQ` {wall}" in text
    differences = [float(value.replace("\u2212", "-")) for value in re.findall(r"([+\u2212]\d\.\d+) %", report.split("Flows of both models")[1])][:5]
    assert f"{differences[0]:.2f} % in the first step" in text and max(map(abs, differences[1:])) < 0.02
    overall = re.search(r"medium passes ([\d.]+) % more than", report)[1]
    assert f"+{overall} % as the difference" in text
