"""What a wheel holds: one module, small, which needs no other library and knows no build folder.

    wheel_test.py WHEEL CHECKOUT
"""

import sys
import tempfile
import zipfile
from subprocess import run

MOST_BYTES = 3_000_000
SYSTEM = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6"}

path, checkout = sys.argv[1:]
with zipfile.ZipFile(path) as wheel:
    modules = [name for name in wheel.namelist() if ".so" in name or name.endswith((".a", ".pyd"))]
    assert len(modules) == 1 and modules[0].startswith("pxrom/_core."), modules
    assert "pxrom/py.typed" in wheel.namelist()
    assert not [name for name in wheel.namelist() if "test" in name or name.endswith(".cpp")]
    module = wheel.read(modules[0])

assert len(module) <= MOST_BYTES, f"the module takes {len(module)} bytes, of {MOST_BYTES}"
for folder in (checkout, "/tmp/"):
    assert folder.encode() not in module, f"the module names {folder}"
with tempfile.NamedTemporaryFile(suffix=".so") as file:
    file.write(module)
    file.flush()
    dynamic = run(["readelf", "-dW", file.name], capture_output=True, text=True, check=True).stdout
    exported = run(["nm", "-D", "--defined-only", file.name], capture_output=True, text=True, check=True).stdout
assert "RPATH" not in dynamic and "RUNPATH" not in dynamic, dynamic
needed = {line.split("[")[1].rstrip("]") for line in dynamic.splitlines() if "(NEEDED)" in line}
assert {name for name in needed if not name.startswith("ld-linux")} <= SYSTEM, needed
assert "PyInit__core" in exported
print(f"python: module {len(module) // 1000} kB")
