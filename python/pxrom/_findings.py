"""What is wrong with a text."""

from dataclasses import dataclass
from typing import List

from . import _core


@dataclass(frozen=True)
class Finding:
    """One thing that an inspection found.

    ``severity`` is "error" for damage, "warning" for what reads and evaluates but was probably not
    meant so, "note" for what is worth knowing. ``code`` is a name that never changes. ``line`` and
    ``column`` count from 1, columns in bytes. ``group``, ``key``, ``found`` and ``expected`` may be
    empty. ``str(finding)`` is the line that the command prints.
    """

    severity: str
    code: str
    line: int
    column: int
    group: str
    key: str
    found: str
    expected: str
    sentence: str

    def __str__(self) -> str:
        return f"{self.line}:{self.column}: {self.severity}: {self.sentence} [{self.code}]"


def check(text: str) -> List[Finding]:
    """Says what is wrong with the text of a database, where reading is silent.

    Any text will do. The findings come by place; without one of severity "error" the text is read,
    and each of its combinations evaluates in the middle of its bounds.
    """
    return [Finding(**found) for found in _core.inspect(text)]
