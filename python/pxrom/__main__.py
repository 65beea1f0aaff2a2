"""``python3 -m pxrom`` is the command ``pxrom``: the same program, inside the package's module."""

import os
import signal
import sys

from . import _core


def main():
    if not hasattr(_core, "run_command"):
        sys.exit(
            "pxrom: this copy was built without the command, which needs CLI11 and nlohmann_json: "
            "install libcli11-dev and nlohmann-json3-dev, or the packages of those names, and "
            "install pxrom again"
        )
    # As in a program of its own: both end it at once, and Python turns neither into an exception.
    for name in ("SIGINT", "SIGPIPE"):
        if hasattr(signal, name):
            signal.signal(getattr(signal, name), signal.SIG_DFL)
    status = _core.run_command([os.fsencode(argument) for argument in ["pxrom", *sys.argv[1:]]])
    sys.exit(status)


if __name__ == "__main__":
    main()
