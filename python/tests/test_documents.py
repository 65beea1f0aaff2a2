"""Every code block of the pages does what the page says, in an empty folder with the example.

A block whose first line names a file is written there; one of `console` runs the lines that begin
with "$ ", and what follows each is its output; Python blocks of a page run one after the other, and
a `text` block behind one is what it printed.
"""

import contextlib
import io
import os
import pathlib
import re
import shutil
import subprocess

import pytest
from conftest import BEAM, ROOT

BLOCK = re.compile(r"^```(\w*) ?([\w.]*)\n(.*?)^```$", re.DOTALL | re.MULTILINE)
PAGES = ["README.md"] + [
    f"docs/{name}.md" for name in ("command", "cpp", "python", "report", "scikit-learn-to-cpp")
]


@pytest.fixture(scope="session")
def installed(tmp_path_factory):
    """The environment of a user who has installed the library to a prefix."""
    build = os.environ.get("PXROM_BUILD", "")
    assert build, "PXROM_BUILD has to name the build folder; script/test-python does"
    prefix = tmp_path_factory.mktemp("prefix")
    subprocess.run(
        ["cmake", "--install", build, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL
    )
    library = next(prefix.rglob("libpxrom.so")).parent
    return {
        **os.environ,
        "CMAKE_PREFIX_PATH": str(prefix),
        "PKG_CONFIG_PATH": str(library / "pkgconfig"),
        "LD_LIBRARY_PATH": str(library),
        "PATH": f"{prefix / 'bin'}:{os.environ['PATH']}",
    }


def commands(block):
    """(command, output) of each line that begins with "$ "."""
    for part in re.split(r"^\$ ", block, flags=re.MULTILINE)[1:]:
        command, _, output = part.partition("\n")
        yield command, output


@pytest.mark.parametrize("page", PAGES)
def test_blocks_of(page, installed, tmp_path, monkeypatch):
    (tmp_path / "examples").mkdir()
    for folder in (tmp_path, tmp_path / "examples"):
        for data in BEAM.parent.iterdir():
            if data.suffix in (".pxdb", ".csv", ".xml"):
                shutil.copy(data, folder)
    monkeypatch.chdir(tmp_path)
    blocks = BLOCK.findall((ROOT / page).read_text())
    assert blocks
    names, printed, ran = {}, None, 0
    for language, file, body in blocks:
        if file:
            pathlib.Path(file).write_text(body)
        elif language == "python":
            out = io.StringIO()
            with contextlib.redirect_stdout(out):
                exec(compile(body, page, "exec"), names)
            printed = out.getvalue()
            ran += 1
        elif language == "text":
            assert printed == body
        elif body.startswith("$ "):
            for command, output in commands(body):
                run = subprocess.run(
                    ["bash", "-c", command], env=installed, capture_output=True, text=True
                )
                assert run.returncode == 0, f"{command}\n{run.stdout}{run.stderr}"
                assert run.stdout == output, command
                ran += 1
    assert ran > 0
