"""Makes wheels of packages that Debian has installed, into the folder of the first argument: an
index for pip on a machine that reaches no other.

    debian_wheels.py FOLDER NAME...
"""

import pathlib
import sys
import sysconfig
import zipfile
from importlib import metadata

TAG = f"cp{sys.version_info[0]}{sys.version_info[1]}"
PLATFORM = sysconfig.get_platform().replace("-", "_").replace(".", "_")


def make_wheel(folder, name):
    distribution = metadata.distribution(name)
    place = pathlib.Path(distribution.locate_file(""))
    version = distribution.version
    files = [path for path in (place / name).rglob("*") if path.is_file() and "__pycache__" not in path.parts]
    info = f"{name}-{version}.dist-info"
    made = {
        f"{info}/METADATA": f"Metadata-Version: 2.1\nName: {name}\nVersion: {version}\n",
        f"{info}/WHEEL": f"Wheel-Version: 1.0\nRoot-Is-Purelib: false\nTag: {TAG}-{TAG}-{PLATFORM}\n",
    }
    names = [str(path.relative_to(place)) for path in files]
    made[f"{info}/RECORD"] = "".join(f"{each},,\n" for each in [*names, *made, f"{info}/RECORD"])
    with zipfile.ZipFile(folder / f"{name}-{version}-{TAG}-{TAG}-{PLATFORM}.whl", "w") as wheel:
        for path, each in zip(files, names):
            wheel.write(path, each)
        for each, text in made.items():
            wheel.writestr(each, text)


folder = pathlib.Path(sys.argv[1])
folder.mkdir(parents=True, exist_ok=True)
for name in sys.argv[2:]:
    make_wheel(folder, name)
