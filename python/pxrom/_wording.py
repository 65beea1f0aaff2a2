"""How refusals are worded: what is wrong, and what would be right."""

import difflib
from typing import Iterable


def listed(names: Iterable[object], last: str = "and") -> str:
    """'a', 'b' and 'c'."""
    quoted = [repr(name) for name in names]
    if len(quoted) < 2:
        return "".join(quoted) or "none"
    return f"{', '.join(quoted[:-1])} {last} {quoted[-1]}"


def did_you_mean(typed: object, known: Iterable[str]) -> str:
    """'; did you mean 'mass'?', or else what there is."""
    known = list(known)
    by_small = {name.lower(): name for name in known}
    near = difflib.get_close_matches(str(typed).lower(), list(by_small), n=1, cutoff=0.6)
    if near:
        return f"; did you mean {by_small[near[0]]!r}?"
    return f"; there are {listed(known)}" if known else "; there are none"
