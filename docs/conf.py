"""The site of script/docs: what is special about it are its links and its formulas.

The pages are written to be read as files of the repository too, so their links are relative to the file. Here
a link to a header leads to the page about the library that it describes, a link to a page outside this
folder leads to its copy (SHOWN), and a link to any other file downloads it. Formulas are rendered by
KaTeX when the site is built, so that a page asks no other site for anything.
"""

import functools
import html
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
from xml.etree import ElementTree

from docutils.nodes import SkipNode

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, os.environ.get("PXROM_PYTHON", str(ROOT / "build/python/python")))
KATEX = pathlib.Path("/usr/share/javascript/katex")
KATEX_FONTS = pathlib.Path("/usr/share/fonts/truetype/katex")

project = "PXROM"
author = "the PXROM developers"
version = release = re.search(
    r'PXROM_VERSION_STRING "([^"]+)"', (ROOT / "include/pxrom/version.h").read_text()
)[1]
extensions = ["myst_parser", "breathe", "sphinx.ext.autodoc", "sphinx.ext.napoleon", "sphinx_copybutton"]
root_doc = "index"
nitpicky = True

html_theme = "furo"
html_title = f"PXROM {version}"
html_copy_source = False
html_show_sourcelink = False
html_static_path = ["site"]
html_css_files = ["katex/katex.min.css", "site.css"]

myst_heading_anchors = 4
myst_enable_extensions = ["dollarmath", "deflist", "colon_fence"]
copybutton_prompt_text = "$ "

breathe_projects = {"pxrom": str(ROOT / "build/docs/doxygen/xml")}
breathe_default_project = "pxrom"
cpp_id_attributes = ["PXROM_API"]
c_id_attributes = ["PXROM_API"]

autodoc_member_order = "bysource"
autodoc_typehints = "description"

# Breathe looks up each name in a declaration, and finds neither enumerators nor names of the standard
# library. script/check-site finds links that lead nowhere.
suppress_warnings = ["ref.ref"]
nitpick_ignore_regex = [(r"(c|cpp):.*", r".*"), (r"py:.*", r"(?!pxrom\.).*|pxrom\._.*")]

# Pages of the repository that the site shows as its own.
SHOWN = {
    "project/working-on-it": "HACKING.md",
    "project/changes": "CHANGELOG.md",
    "project/security": "SECURITY.md",
    "how-to/in-a-browser": "web/README.md",
}
LINK = re.compile(r"(?<!!)\[((?:[^\[\]]|\[[^\[\]]*\])*)\]\(([^)\s]+)\)")
FENCE = re.compile(r"^(```|~~~).*?^\1$", re.MULTILINE | re.DOTALL)


@functools.lru_cache(maxsize=None)
def own_anchors(page):
    """The anchors that a page sets in HTML, beside those of its headings."""
    return set(re.findall(r'<a id="([^"]+)">', page.read_text()))


def site_link(app, docname, origin, words, target):
    """What the link of a file becomes on the page that shows the file."""
    if re.match(r"[a-z]+:", target):
        return f"[{words}]({target})"
    path, _, anchor = target.partition("#")
    file = (origin.parent / path).resolve() if path else origin
    if not file.exists():
        raise ValueError(f"{origin.relative_to(ROOT)}: there is no {target}")
    name = file.relative_to(ROOT).as_posix()
    page = next((page for page, shown in SHOWN.items() if shown == name), None)
    if page is None and name.startswith("docs/") and file.suffix == ".md":
        page = name[len("docs/") : -len(".md")]
    if name == "README.md":
        page = root_doc
    if name.startswith("include/pxrom"):
        page, anchor = "reference/cpp", file.stem.replace("_", "-") + "-h" if file.is_file() else ""
        if name.endswith("pxrom_c.h"):
            page, anchor = "reference/c", ""
    here = os.path.dirname(docname) or "."
    if page is None:
        if not file.is_file():
            raise ValueError(f"{origin.relative_to(ROOT)}: {target} is a folder")
        return "{download}`" + words.strip("`") + " <" + os.path.relpath(file, ROOT / "docs" / here) + ">`"
    if anchor and (anchor in own_anchors(file) or page == "reference/cpp"):
        address = os.path.relpath(f"{page}.html", here)
        return f'<a class="reference internal" href="{address}#{anchor}">{html.escape(words)}</a>'
    address = os.path.relpath(f"{page}.md", here) if page != docname else ""
    return f"[{words}]({address}{'#' + anchor if anchor else ''})"


def declared_in(header):
    """What a header declares, as directives of Breathe in the order of the header."""
    xml = ROOT / "build/docs/doxygen/xml"
    found = []
    for path in xml.glob("*.xml"):
        compound = ElementTree.parse(path).getroot().find("compounddef")
        if compound is None:
            continue
        if compound.get("kind") in ("class", "struct") and compound.get("prot") == "public":
            where = compound.find("location")
            name = compound.findtext("compoundname")
            if where.get("file").endswith("/" + header) and "::" not in name.split("PXROM::")[-1]:
                found.append((int(where.get("line")), compound.get("kind"), name))
        if compound.get("kind") in ("namespace", "file"):
            space = compound.findtext("compoundname") + "::" if compound.get("kind") == "namespace" else ""
            for member in compound.iter("memberdef"):
                where = member.find("location")
                kind, name = member.get("kind"), space + member.findtext("name")
                if not where.get("file").endswith("/" + header) or not member.findtext("name"):
                    continue
                if kind == "function":
                    types = [parameter_type(each) for each in member.findall("param")]
                    name += f"({', '.join(types)})"
                if kind == "typedef" and f" {name} {{" in (ROOT / "include/pxrom" / header).read_text():
                    continue  # the name of a structure or enumeration in C
                if kind in ("function", "enum", "typedef", "variable", "define"):
                    found.append((int(where.get("line")), kind, name))
    lines = ["```{eval-rst}"]
    for _, kind, name in sorted(set(found)):
        lines += [f".. doxygen{kind}:: {name}"]
        lines += ["   :members:", ""] if kind in ("class", "struct") else [""]
    return "\n".join(lines + ["```"])


def parameter_type(parameter):
    return "".join(parameter.find("type").itertext()).strip()


def require_all_headers(app, config):
    """A new header needs its place in the reference."""
    shown = (ROOT / "docs/reference/cpp.md").read_text()
    for header in (ROOT / "include/pxrom").glob("*.h"):
        if header.name not in ("pxrom.h", "pxrom_c.h") and f"\n%{header.name}\n" not in shown:
            raise ValueError(f"docs/reference/cpp.md does not show {header.name}")


def source_read(app, docname, source):
    origin = ROOT / SHOWN.get(docname, f"docs/{docname}.md")
    text = origin.read_text() if docname in SHOWN else source[0]
    parts, end = [], 0
    relink = functools.partial(
        LINK.sub, lambda match: site_link(app, docname, origin, match[1], match[2])
    )
    for fence in FENCE.finditer(text):
        parts += [relink(text[end : fence.start()]), fence[0]]
        end = fence.end()
    text = "".join(parts) + relink(text[end:])
    source[0] = re.sub(r"^%(\w+\.h)$", lambda match: declared_in(match[1]), text, flags=re.MULTILINE)


RENDER = """
const katex = require(process.argv[1]);
require("readline").createInterface({input: process.stdin}).on("line", line => {
  const [latex, displayMode] = JSON.parse(line);
  let made;
  try { made = [katex.renderToString(latex, {displayMode, strict: "error"}), ""]; }
  catch (error) { made = ["", error.message]; }
  console.log(JSON.stringify(made));
});
"""


@functools.lru_cache(maxsize=None)
def renderer():
    """A process that renders a formula for each line that it gets."""
    return subprocess.Popen(
        ["node", "-e", RENDER, str(KATEX / "katex.js")],
        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
    )


def formula(latex, display):
    """Markup of a formula, without a script."""
    renderer().stdin.write(json.dumps([latex, display]) + "\n")
    renderer().stdin.flush()
    made, fault = json.loads(renderer().stdout.readline())
    if fault:
        raise ValueError(f"KaTeX refuses {latex!r}: {fault}")
    return made


def visit_math(translator, node):
    translator.body.append(formula(node.astext(), False))
    raise SkipNode


def visit_math_block(translator, node):
    translator.body.append(f'<div class="formula">{formula(node.astext(), True)}</div>\n')
    raise SkipNode


def finish(app, _):
    if renderer.cache_info().currsize:
        renderer().stdin.close()
        renderer().wait()
    # Pages may show a picture in HTML, to give its width.
    ignored = shutil.ignore_patterns("*.py", "__pycache__")
    shutil.copytree(ROOT / "docs/pictures", pathlib.Path(app.outdir) / "pictures", ignore=ignored, dirs_exist_ok=True)
    target = pathlib.Path(app.outdir) / "_static/katex"
    (target / "fonts").mkdir(parents=True, exist_ok=True)
    shutil.copy(KATEX / "katex.min.css", target)
    for font in KATEX_FONTS.glob("*.woff2"):
        shutil.copy(font, target / "fonts")


def setup(app):
    app.connect("config-inited", require_all_headers)
    app.connect("source-read", source_read)
    app.connect("build-finished", finish)
    app.add_html_math_renderer(
        "katex", inline_renderers=(visit_math, None), block_renderers=(visit_math_block, None)
    )


html_math_renderer = "katex"
