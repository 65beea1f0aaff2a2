"""The table of docs/exporters.md against what the exporters do on this machine."""

import pytest
from exporters_table import ROWS, outcome, written

PAGE = {(tool, model): rest for tool, model, *rest in written()}


def test_the_page_has_these_rows():
    assert list(PAGE) == [(row.tool, row.model) for row in ROWS]


@pytest.mark.parametrize("row", ROWS, ids=lambda row: f"{row.tool}: {row.model}")
def test_row(row):
    becomes, value, error = PAGE[row.tool, row.model]
    found = outcome(row)
    assert becomes == (f"refused: {found.refused}" if found.refused else found.family)
    assert found.value <= float(value or 0)
    assert (found.error is not None) == bool(error)
    assert (found.error or 0) <= float(error or 0)
