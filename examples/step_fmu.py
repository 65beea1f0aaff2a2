"""Steps an FMU of FMI 2.0: a small importer, with Python's own modules only.

    python3 examples/step_fmu.py beam.fmu F=1000:5000 h=100 Holes=2 Material=1

A value such as 1000:5000 grows from the first to the second number in ten seconds.
"""

import ctypes
import pathlib
import platform
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
import zipfile

SECONDS, STEPS = 10.0, 5
OK, CO_SIMULATION = 0, 1
FOLDERS = {
    ("Linux", "x86_64"): ("linux64", ".so"),
    ("Linux", "aarch64"): ("aarch64-linux", ".so"),
    ("Windows", "AMD64"): ("win64", ".dll"),
}


class Callbacks(ctypes.Structure):
    """No function of them is needed."""

    _fields_ = [(name, ctypes.c_void_p) for name in ("log", "allocate", "free", "finished", "self")]


def check(status):
    if status != OK:
        sys.exit(f"the FMU returned the status {status}")


def main(path, settings):
    with tempfile.TemporaryDirectory() as folder:
        zipfile.ZipFile(path).extractall(folder)
        root = ElementTree.parse(pathlib.Path(folder, "modelDescription.xml")).getroot()
        identifier = root.find("CoSimulation").get("modelIdentifier")
        places, integers, outputs = {}, set(), []
        for variable in root.iter("ScalarVariable"):
            name = variable.get("name")
            places[name] = int(variable.get("valueReference"))
            if variable.find("Integer") is not None:
                integers.add(name)
            if variable.get("causality") == "output":
                outputs.append(name)
        binaries, suffix = FOLDERS[platform.system(), platform.machine()]
        fmu = ctypes.CDLL(str(pathlib.Path(folder, "binaries", binaries, identifier + suffix)))

        fmu.fmi2Instantiate.restype = ctypes.c_void_p
        guid = root.get("guid").encode()
        instance = ctypes.c_void_p(
            fmu.fmi2Instantiate(b"one", CO_SIMULATION, guid, b"", ctypes.byref(Callbacks()), 0, 0)
        )
        real = ctypes.c_double

        def set_inputs(time):
            for name, (first, last) in settings.items():
                place = (ctypes.c_uint * 1)(places[name])
                if name in integers:
                    check(fmu.fmi2SetInteger(instance, place, 1, (ctypes.c_int * 1)(int(first))))
                else:
                    value = first + (last - first) * time / SECONDS
                    check(fmu.fmi2SetReal(instance, place, 1, (real * 1)(value)))

        check(fmu.fmi2SetupExperiment(instance, 0, real(0), real(0), 0, real(0)))
        set_inputs(0.0)
        check(fmu.fmi2EnterInitializationMode(instance))
        check(fmu.fmi2ExitInitializationMode(instance))
        print(",".join(["time"] + outputs))
        asked = (ctypes.c_uint * len(outputs))(*(places[name] for name in outputs))
        values = (real * len(outputs))()
        step = SECONDS / STEPS
        for k in range(STEPS + 1):
            set_inputs(k * step)
            check(fmu.fmi2GetReal(instance, asked, len(outputs), values))
            print(",".join(repr(value) for value in [k * step] + list(values)))
            if k < STEPS:
                check(fmu.fmi2DoStep(instance, real(k * step), real(step), 1))
        check(fmu.fmi2Terminate(instance))
        fmu.fmi2FreeInstance(instance)


def setting(text):
    name, _, value = text.partition("=")
    first, _, last = value.partition(":")
    return name, (float(first), float(last or first))


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(sys.argv[1], dict(setting(text) for text in sys.argv[2:]))
