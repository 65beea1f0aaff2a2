"""Every code block of the pages does what the page says, in an empty folder with the example.

A block whose first line names a file is written there; one of `console` runs the lines that begin
with "$ ", and what follows each is its output; Python blocks of a page run one after the other, and
a `text` block behind one is what it printed. The lines of `sh` are typed in the checkout, in a new
account; what they export holds for the commands of the page. Those that build have run: this is what
they built.
"""

import contextlib
import io
import os
import pathlib
import re
import shutil
import subprocess

import numpy as np
import pytest
import scipy.stats
from conftest import BEAM, ROOT

BLOCK = re.compile(r"^```(\w*) ?([\w.]*)\n(.*?)^```$", re.DOTALL | re.MULTILINE)
PAGES = ["README.md"] + [
    f"docs/{name}.md"
    for name in ("command", "cpp", "python", "report", "scikit-learn-to-cpp", "how-to/find-faults")
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


def account(blocks, home):
    """The environment after the lines of the `sh` blocks."""
    lines = "".join(body for language, _, body in blocks if language == "sh")
    built = re.sub(r"^(script/|cmake --preset|cmake --build).*\n", "", lines, flags=re.MULTILINE)
    built = re.sub(r"\bbuild/(demo|python)(?=\s)", os.environ["PXROM_BUILD"], built)
    names = ("LD_LIBRARY_PATH", "PKG_CONFIG_PATH", "CMAKE_PREFIX_PATH", "PYTHONPATH")
    clean = {key: value for key, value in os.environ.items() if key not in names}
    run = subprocess.run(
        ["bash", "-c", f"set -e\n{{\n{built}}} >/dev/null\nenv -0"],
        cwd=ROOT, env={**clean, "HOME": str(home)}, check=True, capture_output=True, text=True,
    )
    return dict(pair.split("=", 1) for pair in run.stdout.split("\0") if pair)


def commands(block):
    """(command, output) of each line that begins with "$ "."""
    for part in re.split(r"^\$ ", block, flags=re.MULTILINE)[1:]:
        command, _, output = part.partition("\n")
        yield command, output


def run_blocks(page, installed, folder):
    """Runs the page in an empty folder, and gives the names that its Python blocks leave."""
    (folder / "examples").mkdir()
    for place in (folder, folder / "examples"):
        for data in BEAM.parent.iterdir():
            if data.suffix in (".pxdb", ".csv", ".xml"):
                shutil.copy(data, place)
    blocks = BLOCK.findall((ROOT / page).read_text())
    assert blocks
    names, printed, ran = {}, None, 0
    environment = installed
    if any(language == "sh" for language, _, _ in blocks):
        environment = account(blocks, folder / "home")
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
                    ["bash", "-c", command], env=environment, capture_output=True, text=True
                )
                assert run.returncode == 0, f"{command}\n{run.stdout}{run.stderr}"
                assert run.stdout == output, command
                ran += 1
    assert ran > 0
    return names


@pytest.mark.parametrize("page", PAGES)
def test_blocks_of(page, installed, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    run_blocks(page, installed, tmp_path)


def test_recipes_give_what_closed_forms_give(tmp_path, monkeypatch):
    """The page prints fewer digits than agree."""
    monkeypatch.chdir(tmp_path)
    names = run_blocks("docs/recipes.md", {}, tmp_path)
    feasible = {key: best for key, best in names["designs"].items() if best}
    assert sorted(feasible) == [(1, 1), (1, 2), (2, 1)]
    for (material, section), best in feasible.items():
        # At the upper bound of the height, as wide as the strength of the material needs.
        modulus = {1: 1.0, 2: 1 - 0.8**4}[section]
        width = 6 * 6000 * 1500 / ({1: 160, 2: 100}[material] * modulus * 120**2)
        assert best.x == pytest.approx([width, 120, 6000], rel=2e-3)
    # Saltelli et al. (2008), Global Sensitivity Analysis, section 4.
    sobol = names["sobol"]
    assert list(sobol.getFirstOrderIndices()) == pytest.approx([0.3139, 0.4424, 0], abs=2e-3)
    assert list(sobol.getTotalOrderIndices()) == pytest.approx([0.5576, 0.4424, 0.2437], abs=2e-3)
    # The logarithm of the stress is normal, with this mean and standard deviation.
    mean, deviation = np.log(6 * 6000 * 1500 / (40 * 100**2)), np.sqrt(0.03**2 + 0.06**2 + 0.1**2)
    beta = (np.log(160) - mean) / deviation
    assert names["form"].getResult().getHasoferReliabilityIndex() == pytest.approx(beta, rel=5e-3)
    assert names["by_sampling"] == pytest.approx(scipy.stats.norm.sf(beta), rel=2e-2)
    assert names["found"].x[0] == pytest.approx(names["exact_force"], rel=1e-3)
    assert names["deviation"] == pytest.approx(names["exact_deviation"], rel=1e-2)
    for picture in re.findall(r"pictures/([\w-]+\.png)", (ROOT / "docs/recipes.md").read_text()):
        assert (tmp_path / picture).stat().st_size > 5000
