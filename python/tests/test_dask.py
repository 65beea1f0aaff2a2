"""The example for clusters, on two worker processes; it compares its answers itself."""

import os
import subprocess
import sys

from conftest import BEAM


def test_the_example_answers_as_one_process_does(tmp_path):
    run = subprocess.run(
        [sys.executable, BEAM.with_name("dask_points.py"), BEAM, "Material=1", "Holes=2"]
        + ["--blocks=4", "--rows=1500"],
        cwd=tmp_path,
        env={**os.environ, "OMP_NUM_THREADS": "1"},
        capture_output=True,
        text=True,
        timeout=300,
    )
    assert run.returncode == 0, run.stderr
    assert "100% Completed" in run.stdout
    assert "6,000 points in 4 blocks" in run.stdout
    assert run.stdout.endswith("equal to this process, bit by bit\n")
