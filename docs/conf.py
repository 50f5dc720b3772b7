"""Settings of Sphinx for the site, which docs/make_site.py makes."""

import shutil
import tempfile
from pathlib import Path

from sphinx_gallery.scrapers import figure_rst

import undula

ROOT = Path(__file__).resolve().parents[1]

project = "Undula"
version = release = undula.__version__
copyright = "The Undula developers"
extensions = ["sphinx.ext.autodoc", "numpydoc", "myst_parser", "sphinx_gallery.gen_gallery"]
source_suffix = {".md": "markdown", ".rst": "restructuredtext"}
myst_heading_anchors = 3
exclude_patterns = ["gallery/*.ipynb", "gallery/*.md5"]
highlight_language = "default"
default_role = "code"
smartquotes = False
numpydoc_show_class_members = False
autodoc_typehints = "none"

html_theme = "furo"
html_title = f"Undula {version}"
html_static_path = [str(ROOT / "docs" / "static")]
html_favicon = str(ROOT / "docs" / "static" / "undula.svg")
html_css_files = ["site.css"]
html_copy_source = False
html_show_sphinx = False

# The examples draw what their first argument names: a picture, or a folder of pictures.
PICTURES = Path(tempfile.mkdtemp())


class ArgumentOfExample:
    def __call__(self, gallery_conf, script_vars):
        script_vars["example_globals"]["__file__"] = script_vars["src_file"]  # its data lies beside it
        return [str(PICTURES / Path(script_vars["src_file"]).stem)]

    def __repr__(self):  # one text, so that the configuration does not count as changed
        return "ArgumentOfExample"


def drawn_pictures(block, block_vars, gallery_conf):
    """The pictures that an example has drawn."""
    stem = Path(block_vars["src_file"]).stem
    drawn = sorted([*PICTURES.glob(f"{stem}.png"), *PICTURES.glob(f"{stem}/*.png")])
    placed = [shutil.move(path, place) for path, place in zip(drawn, block_vars["image_path_iterator"])]
    return "".join(figure_rst([path], gallery_conf["src_dir"]) for path in placed)


sphinx_gallery_conf = {
    "examples_dirs": str(ROOT / "examples"),
    "gallery_dirs": "gallery",
    "filename_pattern": r"/(?!(many|long)_signals?\b)\w+\.py$",  # those on Dask take several processes
    "reset_argv": ArgumentOfExample(),
    "image_scrapers": (drawn_pictures,),
    "min_reported_time": 1000,
    "show_memory": False,
    "show_signature": False,
    "download_all_examples": False,
    "plot_gallery": "True",
}


def without_paths(app, docname, source):
    """Where an example has put its picture is of no interest in the gallery."""
    if docname.startswith("gallery/"):
        lines = source[0].splitlines(keepends=True)
        source[0] = "".join(line for line in lines if not line.strip().startswith("figure: "))


def setup(app):
    app.connect("source-read", without_paths)
