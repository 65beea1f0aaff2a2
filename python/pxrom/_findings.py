"""What is wrong with a text."""

import os
from dataclasses import dataclass
from typing import List, Union

from . import _core, _files


@dataclass(frozen=True)
class Finding:
    """One finding of an inspection.

    ``severity`` is "error" for damage, "warning" for a text that reads and evaluates but probably
    not as its author meant, "note" for what is worth knowing. ``code`` is a name that never
    changes. ``line`` and ``column`` count from 1, columns in bytes. ``group``, ``key``, ``found``
    and ``expected`` may be empty. ``str(finding)`` is the line that the command prints.
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


def require_text(text: object) -> str:
    """Refuses an object that is not a text, and says how to get the text."""
    if isinstance(text, str):
        return text
    hint = ""
    if isinstance(text, os.PathLike):
        hint = f"; to read a file, call pxrom.load({os.fspath(text)!r})"
    raise TypeError(
        f"the text of a database is a str, bytes or an open file, not {type(text).__name__}{hint}"
    )


def check(text: Union[str, "os.PathLike[str]", _files.Content]) -> List[Finding]:
    """Says what is wrong with the text of a database, which reading does not report.

    Accepts any text: a ``str`` is the text itself, a ``pathlib.Path`` names a file; bytes and open
    files hold the text, compressed by gzip or not. The findings are in the order of the text.
    Without a finding of severity "error", the text can be read, and each of its combinations
    evaluates in the middle of its bounds.
    """
    if isinstance(text, os.PathLike):
        text = _files.read(text)
    elif _files.has_content(text):
        text = _files.text_of(text)
    return [Finding(**found) for found in _core.inspect(require_text(text))]
