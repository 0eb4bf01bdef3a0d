"""The tutorial: its files and commands in the order of the page, and what it says they print. The gallery: every picture is there."""
import glob
import os
import re
import subprocess

from zurt.program import TREE, find_program

DOCS = os.path.join(TREE, "docs")


def read_blocks(text):
    """(file name or None, language, body) of the page's code blocks in order."""
    found = re.findall(r"(?:^`([\w.]+)`:\n\n)?^```(\w*)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
    return [(name or None, language, body) for name, language, body in found]


def test_the_tutorial_does_what_it_says(tmp_path):
    """Each command ends with status 0, each line of printed output comes out of the commands before it in this order."""
    with open(os.path.join(DOCS, "tutorial.md")) as file:
        blocks = read_blocks(file.read())
    prepare = [body for _, language, body in blocks if language == "sh"][0]
    environment = dict(os.environ, PATH="/usr/bin:/bin", ZURT=find_program())
    said, compared = "", 0
    for name, language, body in blocks:
        if name:
            (tmp_path / name).write_text(body)
        elif language == "sh":
            script = f'set -eu\ncd "{TREE}"\n{prepare}\ncd "{tmp_path}"\n{body}'
            done = subprocess.run(["bash", "-c", script], capture_output=True, text=True, timeout=120, env=environment, check=False)
            assert done.returncode == 0, body + done.stdout + done.stderr
            said = done.stdout
        else:
            assert said.startswith(body), f"the page says\n{body}\nthe commands said\n{said}"
            compared += 1
    assert compared == 6
    for page, words in (("out/report.html", ("93.31 %", "20.28")), ("compare.html", ("softened",))):
        text = (tmp_path / page).read_text().replace("\u202f", " ").replace("\u00a0", " ")
        assert all(word in text for word in words)


def test_the_gallery_shows_every_picture():
    with open(os.path.join(DOCS, "gallery.md")) as file:
        text = file.read()
    shown = re.findall(r'\[<img src="\.\./([^"]+)/picture\.png" width="\d+" alt="[^"]{10,}">\]\(\.\./([^)]+)/README\.md\)', text)
    pictures = glob.glob(os.path.join(TREE, "examples", "*", "picture.png")) + glob.glob(os.path.join(TREE, "companions", "examples", "*", "picture.png"))
    assert sorted(folder for folder, _ in shown) == sorted(os.path.relpath(os.path.dirname(path), TREE) for path in pictures)
    assert all(picture == page for picture, page in shown)
