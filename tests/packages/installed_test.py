"""Uses an installed package: predictions, and the command in its module.

    installed_test.py CHECKOUT
"""

import pathlib
import signal
import subprocess
import sys

import pxrom

checkout = pathlib.Path(sys.argv[1])
beam = checkout / "examples/beam.pxdb"
assert not pathlib.Path(pxrom.__file__).is_relative_to(checkout / "python")

model = pxrom.load(beam)
points = {"L": [1.2, 1.5, 1.8], "b": 45, "h": 90, "F": 3000}
mass = model.predict({"Material": 1, "Holes": 2}, points).values["mass"]
assert mass.round(4).tolist() == [37.7606, 47.2795, 56.8048], mass


def command(*arguments, **options):
    return subprocess.run(
        [sys.executable, "-I", "-m", "pxrom", *map(str, arguments)], capture_output=True, text=True, **options
    )


version = command("--version")
assert (version.returncode, version.stdout) == (0, f"{pxrom.__version__}\n"), version
evaluated = command("eval", beam, "Material=1", "Holes=2", "L=1.5", "b=45", "h=90", "F=3000")
assert evaluated.returncode == 0 and "47.2795   0.33  kg" in evaluated.stdout, evaluated
for arguments in (["info"], ["check"], ["report"]):
    assert command(*arguments, beam).returncode == 0, arguments
refused = command("evil")
assert (refused.returncode, refused.stderr) == (1, 'pxrom: there is no command "evil"; did you mean "eval"?\n')
# A program that stops reading ends it, as it ends every command, without a word.
piped = subprocess.Popen(
    [sys.executable, "-I", "-m", "pxrom", "report", beam], stdout=subprocess.PIPE, stderr=subprocess.PIPE
)
piped.stdout.close()
assert (piped.stderr.read(), piped.wait()) == (b"", -signal.SIGPIPE)
