"""Makes the site: the pages of docs/, a page for each function, the helpers' help and the gallery.

    PYTHONPATH=build/python python3 docs/make_site.py FOLDER WEB

The sources are put together in FOLDER/source; FOLDER/html is the site. Any warning is an error. WEB holds the page
that computes in the browser, as `make web` makes it; in the site it is html/try.
"""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")

import make_functions
from function_pictures import draw_pictures
from run_pages import PAGES, run_page

DOCS = Path(__file__).resolve().parent
ROOT = DOCS.parent
NORMALIZE = Path("/usr/share/javascript/normalize.css/normalize.css")
MORE_PAGES = ("CONTRIBUTING.md", "CHANGELOG.md")

HELPERS = {
    "Signals and images": ["denoise", "levels", "pad", "transform_nd", "evaluate", "wavelets"],
    "Thresholds": ["thresholding.sure", "thresholding.bayes", "thresholding.universal"],
    "Pictures": [f"plot.{name}" for name in
                 ("levels", "tiling", "table", "mosaic", "partition", "decay", "function", "sheet")],
}


def gather(source):
    """The pages of docs/ and what is made for the site."""
    shutil.copytree(DOCS, source, ignore=shutil.ignore_patterns("*.py", "__pycache__"))
    for name in MORE_PAGES:
        text = (ROOT / name).read_text(encoding="utf-8")
        (source / name).write_text(text.replace("](docs/", "]("), encoding="utf-8")
    for page in source.rglob("*.md"):
        page.write_text(with_links_of_the_site(page, source), encoding="utf-8")
    os.chdir(source / "images")
    for page in PAGES:
        run_page(page)
    write_functions(source)
    (source / "reference.md").write_text(helpers_page(), encoding="utf-8")


def with_links_of_the_site(page, source):
    """An example is a page of the gallery; of a file that is not in the site only the name is left."""
    top = "../" * len(page.relative_to(source).parents[:-1])

    def link(match):
        label, outside = match.groups()
        example = re.fullmatch(r"examples/(\w+)\.py", outside)
        if example:
            return f"[{label}]({top}gallery/{example[1]}.rst)"
        return f"[{label}]({top}{outside})" if (source / outside.split("#")[0]).is_file() else label

    text = page.read_text(encoding="utf-8")
    return re.sub(rf"\[([^]]+)\]\({top}\.\./([^)]+)\)", link, text)


def write_functions(source):
    """In place of the one page with all functions a list of them, and a page for each."""
    folder = source / "functions"
    folder.mkdir()
    pictures = draw_pictures(folder)
    listing = make_functions.introduction(lambda name: f"functions/{name}.md", 2)
    for name, description in make_functions.DESCRIPTIONS.items():
        page = make_functions.entry(
            description, "#", lambda other: f"{other}.md", "../functions.md", pictures.get(name, "")
        )
        (folder / f"{name}.md").write_text(page.replace(f"# `{name}`", f"# {name}", 1), encoding="utf-8")
    names = "\n".join(f"functions/{name}" for name in make_functions.DESCRIPTIONS)
    (source / "functions.md").write_text(f"{listing}\n{_toctree(names)}", encoding="utf-8")


def mend_theme(html):
    """Debian's theme expects a web server with Debian's folders, and a browser that is told of modules."""
    styles, scripts = html / "_static" / "styles", html / "_static" / "scripts"
    shutil.copy(NORMALIZE, styles)
    furo, absolute = styles / "furo.css", f"/{NORMALIZE.relative_to('/usr/share')}"
    furo.write_text(furo.read_text(encoding="utf-8").replace(absolute, NORMALIZE.name), encoding="utf-8")
    gumshoe = (scripts / "gumshoe-patched.js").read_text(encoding="utf-8")
    furo = scripts / "furo.js"
    without_imports = re.sub(r"^import .*$", "", furo.read_text(encoding="utf-8"), flags=re.MULTILINE)
    furo.write_text(gumshoe + without_imports, encoding="utf-8")


def take_in(web, folder):
    """The page links to the site's, of which it knows nothing where it lies alone."""
    shutil.copytree(web, folder)
    page = folder / "index.html"
    text = page.read_text(encoding="utf-8")
    assert text.count('id="site" hidden') == 1
    page.write_text(text.replace('id="site" hidden', 'id="site"'), encoding="utf-8")


def helpers_page():
    introduction = "[Helpers](helpers.md) and [pictures](plotting.md) say what they are for."
    parts = [f"# Python helpers, one by one\n\n{introduction}\n"]
    for title, names in HELPERS.items():
        parts.append(f"## {title}\n")
        parts += [f"```{{eval-rst}}\n.. autofunction:: undula.{name}\n```\n" for name in names]
    return "\n".join(parts)


def _toctree(names):
    return f"```{{toctree}}\n:hidden:\n\n{names}\n```\n"


def main():
    folder, web = (Path(argument).resolve() for argument in sys.argv[1:3])
    shutil.rmtree(folder, ignore_errors=True)
    gather(folder / "source")
    command = [sys.executable, "-m", "sphinx", "-q", "-W", "--keep-going", "-c", DOCS,
               "-d", folder / "doctrees", folder / "source", folder / "html"]
    subprocess.run(command, env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"}, check=True)
    mend_theme(folder / "html")
    take_in(web, folder / "html" / "try")


if __name__ == "__main__":
    main()
