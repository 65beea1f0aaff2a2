"""The words of refusals: what is wrong, and what would be correct."""

import difflib
import re
from itertools import islice
from typing import Iterable

_DIRECTIONS = re.compile("[\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")
# Names of a file may be many and long; those that people mistype are neither.
_MOST_NAMES = 1000
_LONGEST_NAME = 64


def visible(text: str) -> str:
    """``text`` with each character that changes the direction of what is shown around it as an
    escape such as \\u202E."""
    return _DIRECTIONS.sub(lambda found: f"\\u{ord(found[0]):04X}", text)


def listed(names: Iterable[object], last: str = "and") -> str:
    """'a', 'b' and 'c'."""
    quoted = [repr(name) for name in names]
    if len(quoted) < 2:
        return "".join(quoted) or "none"
    return f"{', '.join(quoted[:-1])} {last} {quoted[-1]}"


def counted(count: int, what: str) -> str:
    """'1 input', '2 inputs'."""
    return f"{count} {what}" if count == 1 else f"{count} {what}s"


def did_you_mean(typed: object, known: Iterable[str]) -> str:
    """'; did you mean 'mass'?', or the known names."""
    known = list(known)
    short = (name for name in known if len(name) <= _LONGEST_NAME)
    by_small = {name.lower(): name for name in islice(short, _MOST_NAMES)}
    small = str(typed).lower()[: _LONGEST_NAME + 1]
    near = difflib.get_close_matches(small, list(by_small), n=1, cutoff=0.6)
    if near:
        return f"; did you mean {by_small[near[0]]!r}?"
    return f"; there are {listed(known)}" if known else "; there are none"
