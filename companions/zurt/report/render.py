"""Pages from what was gathered: one HTML file with everything inside."""
import os

import jinja2

_TEMPLATES = jinja2.Environment(loader=jinja2.FileSystemLoader(os.path.dirname(__file__)), autoescape=True, undefined=jinja2.StrictUndefined,
                                trim_blocks=True)
_TEMPLATES.globals["zip"] = zip


def render_run(page):
    """HTML text of a gather.RunPage."""
    title = page.problems[0].title if page.problems and page.problems[0].title else page.name
    return _TEMPLATES.get_template("run.html").render(title=f"{title} – {page.folder}", page=page)


def render_comparison(page):
    """HTML text of a compare.ComparisonPage."""
    return _TEMPLATES.get_template("compare.html").render(title=" and ".join(page.names) + " side by side", page=page)
