"""What a call from Python costs, and what a second thread gains, as rows of the table of script/bench.

    PYTHONPATH=build/release/python PXROM_COMMAND=build/release/tools/pxrom /usr/bin/python3 bench/python_bench.py

The models are Gaussian processes of scikit-learn, which is the peer. Times are the best of several
repetitions, which take turns.
"""

import os
import pathlib
import subprocess
import tempfile
import timeit
import warnings

import numpy as np
from sklearn.gaussian_process import GaussianProcessRegressor
from sklearn.gaussian_process.kernels import RBF

import pxrom
import pxrom.export

INPUTS = 6
REPETITIONS = 5


def fitted(samples):
    """A process, and its model."""
    draw = np.random.default_rng(samples)
    X = draw.random((samples, INPUTS))
    y = np.sin(X @ np.arange(1, INPUTS + 1))
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        process = GaussianProcessRegressor(RBF(0.5), optimizer=None, alpha=1e-6).fit(X, y)
        return process, pxrom.loads(pxrom.export.to_text(process, X=X, y=y))


def best(number, **calls):
    """The best time of each call in seconds."""
    times = {name: [] for name in calls}
    for _ in range(REPETITIONS):
        for name, call in calls.items():
            times[name].append(timeit.timeit(call, number=number) / number)
    return {name: min(values) for name, values in times.items()}


def shown(seconds):
    for size, unit in ((1.0, "s"), (1e-3, "ms"), (1e-6, "us")):
        if seconds >= size:
            return f"{seconds / size:#.3g} {unit}"
    return f"{seconds / 1e-9:#.3g} ns"


def row(name, ours, yardstick, peer="", goal="", reached=True):
    ratio = f"{yardstick / ours:.2f}"
    goal += "" if reached else ", **missed**"
    print(f"| {name} | {shown(ours)} | {shown(yardstick)} | {ratio} | {peer} | {goal} |", flush=True)


def one_point():
    """A predictor, against predict."""
    for samples in (50, 200, 1000):
        process, model = fitted(samples)
        at, x = model.at(), np.full(INPUTS, 0.4)
        table = x[None]
        for what, call, predict, peer in (
            ("", at, lambda: model.predict(table), lambda: process.predict(table)),
            (
                " and error",
                at.value_and_error,
                lambda: model.predict(table, return_error=True),
                lambda: process.predict(table, return_std=True),
            ),
        ):
            time = best(200, ours=lambda: call(x), predict=predict, peer=peer)
            most = (6e-6 if what else 3e-6) if samples == 50 else None
            row(
                f"Python, one point: value{what}, n{samples} d{INPUTS}",
                time["ours"],
                time["predict"],
                f"scikit-learn {shown(time['peer'])} ({time['peer'] / time['ours']:.1f})",
                f"<= {shown(most)}" if most else "",
                most is None or time["ours"] <= most,
            )


def two_jobs():
    """Two threads, against one."""
    command = os.environ["PXROM_COMMAND"]
    draw = np.random.default_rng(0)
    for samples, rows in ((200, 400000), (1000, 100000)):
        _, model = fitted(samples)
        X = draw.random((rows, INPUTS))
        for what, asked in (("values", False), ("values and errors", True)):
            time = best(
                1,
                two=lambda: model.predict(X=X, return_error=asked, jobs=2),
                one=lambda: model.predict(X=X, return_error=asked),
            )
            name = f"Python, jobs=2: {what}, {rows} points, n{samples}"
            row(name, time["two"], time["one"], "", ">= 1.90", time["one"] >= 1.9 * time["two"])
        with tempfile.TemporaryDirectory() as folder:
            text, points = pathlib.Path(folder, "model.pxdb"), pathlib.Path(folder, "points.csv")
            text.write_text(model.text)
            names = ",".join(parameter.name for parameter in model.inputs)
            np.savetxt(points, X, "%.17g", ",", header=names, comments="")
            evaluate = [command, "eval", text, "--points", points, "-o", pathlib.Path(folder, "out")]

            def run(jobs):
                subprocess.run([*evaluate, "--jobs", jobs], check=True, stderr=subprocess.DEVNULL)

            time = best(1, two=lambda: run("2"), one=lambda: run("1"))
            name = f"pxrom eval --jobs 2: {rows} rows, n{samples}"
            row(name, time["two"], time["one"], "", ">= 1.90", time["one"] >= 1.9 * time["two"])


if __name__ == "__main__":
    one_point()
    two_jobs()
