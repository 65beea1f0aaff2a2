"""Prints what a call of an installed package costs at one point of a constant model, beside a function
of pybind11 that computes nothing. Best times of calls that take turns.

    overhead.py CHECKOUT FOLDER_OF_NO_OP
"""

import pathlib
import sys
import timeit

import numpy as np

import pxrom

checkout, folder = sys.argv[1:]
sys.path.append(folder)
import no_op

model = pxrom.load(pathlib.Path(checkout, "examples/constant.pxdb"))
at = model.at()
point = np.full(len(at.inputs), 0.5)
table = point[None]
calls = {
    "pybind11 that computes nothing": lambda: no_op.value(point),
    "Model.at()(x)": lambda: at(point),
    "Model.predict(X=x)": lambda: model.predict(X=table),
}
NUMBER = 100
best = dict.fromkeys(calls, float("inf"))
for _ in range(1000):
    for name, call in calls.items():
        best[name] = min(best[name], timeit.timeit(call, number=NUMBER) / NUMBER)
print("python: one call: " + ", ".join(f"{name} {time * 1e6:.2f} us" for name, time in best.items()))
