"""Tables for a notebook."""

from html import escape
from typing import Sequence


def table(head: Sequence[str], rows: Sequence[Sequence[str]], caption: str = "") -> str:
    """A plain table; every text is escaped."""
    parts = ["<table>"]
    if caption:
        parts.append(f'<caption style="text-align:left">{escape(caption)}</caption>')
    parts.append(
        "<thead><tr>" + "".join(f"<th>{escape(cell)}</th>" for cell in head) + "</tr></thead>"
    )
    parts.append("<tbody>")
    for row in rows:
        parts.append("<tr>" + "".join(f"<td>{escape(cell)}</td>" for cell in row) + "</tr>")
    parts.append("</tbody></table>")
    return "".join(parts)
