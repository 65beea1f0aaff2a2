"""Tables for a notebook."""

from html import escape
from typing import Sequence

from ._wording import visible


def table(head: Sequence[str], rows: Sequence[Sequence[str]], caption: str = "") -> str:
    """A plain table; every text is escaped."""

    def shown(text: str) -> str:
        return escape(visible(text))

    parts = ["<table>"]
    if caption:
        parts.append(f'<caption style="text-align:left">{shown(caption)}</caption>')
    parts.append(
        "<thead><tr>" + "".join(f"<th>{shown(cell)}</th>" for cell in head) + "</tr></thead>"
    )
    parts.append("<tbody>")
    for row in rows:
        parts.append("<tr>" + "".join(f"<td>{shown(cell)}</td>" for cell in row) + "</tr>")
    parts.append("</tbody></table>")
    return "".join(parts)
