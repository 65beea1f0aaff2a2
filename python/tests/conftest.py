"""What the tests share: models with their tools' own predictions."""

import json
import os
import pathlib
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BEAM = ROOT / "examples" / "beam.pxdb"
MODELS = sorted(path.parent.name for path in (ROOT / "tests/data/models").glob("*/model.pxdb"))

sys.path += [str(ROOT / "tests" / "support"), str(ROOT / "script")]


def cases_of(name):
    """The path of a model, and what its tools predict."""
    folder = ROOT / "tests" / "data" / "models" / name
    return folder / "model.pxdb", json.loads((folder / "cases.json").read_text())


@pytest.fixture(scope="session")
def command():
    """The command of the same build."""
    path = os.environ.get("PXROM_COMMAND", "")
    assert path, "PXROM_COMMAND has to name the built command; script/test-python does"
    return path
