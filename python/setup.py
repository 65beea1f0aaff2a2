"""Builds the module of the package with CMake, from the C++ tree around this folder.

A source distribution holds that tree in a folder ``cpp``, with the headers that the command needs.
The build folder is ``build/wheel`` of the checkout, so that a second build compiles what has changed.
The environment variable CMAKE_ARGS adds options for CMake, such as ``-DPXROM_REPORT_LIVE=OFF``.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext
from setuptools.command.sdist import sdist

HERE = pathlib.Path(__file__).resolve().parent
IN_SDIST = (HERE / "cpp").is_dir()
CPP = HERE / "cpp" if IN_SDIST else HERE.parent
BUILD = (HERE if IN_SDIST else CPP) / "build" / "wheel"
# What the module is made of.
TREE = (
    "CMakeLists.txt", "README.md", "cmake", "codegen", "include", "src", "tools", "web",
    "python/CMakeLists.txt", "python/src",
)
# The header-only libraries of the command, which a machine with only a compiler lacks.
LIBRARIES = ("CLI", "nlohmann")
INCLUDE_FOLDERS = [CPP / "third_party", *map(pathlib.Path, ("/usr/local/include", "/usr/include"))]
NEEDED_CMAKE = (3, 25)
# Without what nothing calls, and without symbols for other libraries.
SMALL = {
    "CMAKE_CXX_FLAGS_RELEASE": "-O3 -DNDEBUG -ffunction-sections -fdata-sections",
    "CMAKE_MODULE_LINKER_FLAGS": "-Wl,--gc-sections,--exclude-libs,ALL",
}


def version():
    text = (CPP / "include/pxrom/version.h").read_text()
    return re.search(r'PXROM_VERSION_STRING "([^"]+)"', text)[1]


class BuildModule(build_ext):
    def build_extension(self, extension):
        import pybind11

        folder = pathlib.Path(self.build_temp).resolve()
        folder.mkdir(parents=True, exist_ok=True)
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            **(SMALL if sys.platform == "linux" else {}),
            "Python_EXECUTABLE": sys.executable,
            "pybind11_DIR": pybind11.get_cmake_dir(),
            "BUILD_SHARED_LIBS": "OFF",
            "PXROM_BUILD_PYTHON": "ON",
            "PXROM_BUILD_TESTS": "OFF",
            "PXROM_BUILD_EXAMPLES": "OFF",
            "PXROM_JOIN_SOURCES": "ON",
        }
        arguments = [f"-D{name}={value}" for name, value in options.items()]
        arguments += shlex.split(os.environ.get("CMAKE_ARGS", ""))
        jobs = str(self.parallel or os.cpu_count() or 1)
        subprocess.run(["cmake", "-S", CPP, "-B", folder, *arguments], check=True)
        subprocess.run(
            ["cmake", "--build", folder, "--target", "pxrom_python", "--parallel", jobs], check=True
        )
        prefix = pathlib.Path(self.build_lib).resolve()
        subprocess.run(
            ["cmake", "--install", folder, "--component", "python", "--strip", "--prefix", prefix],
            check=True,
        )


class SourceDistribution(sdist):
    def make_release_tree(self, base, files):
        super().make_release_tree(base, files)
        cpp = pathlib.Path(base) / "cpp"
        for name in TREE:
            copy(CPP / name, cpp / name)
        for name in LIBRARIES:
            found = [folder / name for folder in INCLUDE_FOLDERS if (folder / name).is_dir()]
            if not found:
                sys.exit(f"a source distribution holds the headers of {name}: run script/bootstrap")
            copy(found[0], cpp / "third_party" / name)


def copy(source, target):
    target.parent.mkdir(parents=True, exist_ok=True)
    if source.is_dir():
        shutil.copytree(source, target)
    else:
        shutil.copy(source, target)


def has_cmake():
    try:
        run = subprocess.run(["cmake", "--version"], capture_output=True, text=True, check=True)
    except (OSError, subprocess.CalledProcessError):
        return False
    found = re.search(r"(\d+)\.(\d+)", run.stdout)
    return found is not None and tuple(map(int, found.groups())) >= NEEDED_CMAKE


BUILD.mkdir(parents=True, exist_ok=True)
setup(
    version=version(),
    long_description=(CPP / "README.md").read_text(),
    long_description_content_type="text/markdown",
    # pip brings it where the machine has none, or one that is too old.
    setup_requires=[] if has_cmake() else ["cmake>=%d.%d" % NEEDED_CMAKE],
    ext_modules=[Extension("pxrom._core", sources=[])],
    cmdclass={"build_ext": BuildModule, "sdist": SourceDistribution},
    options={"build": {"build_base": str(BUILD)}, "egg_info": {"egg_base": str(BUILD)}},
)
