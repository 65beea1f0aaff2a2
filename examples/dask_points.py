"""More points than one batch, on a Dask cluster: here two worker processes of this machine.

    python3 dask_points.py beam.pxdb Material=1 Holes=2

Each block of rows is drawn, predicted and reduced where it lies; only the answers travel. In place of
drawn points, dask.dataframe.read_csv or read_parquet give a table that no machine has to hold whole,
and Client("scheduler:8786") a cluster of many.
"""

import argparse

import dask
import dask.dataframe as dd
import numpy as np
import pandas as pd
import pxrom
from dask.distributed import Client, LocalCluster, progress


def drawn(block, model, rows):
    """One block of random points between the bounds: the same for a number, wherever it is drawn."""
    random = np.random.default_rng(block)
    return pd.DataFrame({p.name: random.uniform(*p.bounds, rows) for p in model.inputs})


def predicted(points, model, combination):
    """The points with outputs and errors as further columns."""
    return points.join(model.predict(combination, points, return_error=True).frame())


def main():
    arguments = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    arguments.add_argument("database")
    arguments.add_argument("discrete", nargs="*", metavar="NAME=VALUE")
    arguments.add_argument("--blocks", type=int, default=20)
    arguments.add_argument("--rows", type=int, default=20000, help="of a block")
    options = arguments.parse_args()
    model = pxrom.load(options.database)
    combination = {name: int(value) for name, value in (d.split("=") for d in options.discrete)}

    with LocalCluster(n_workers=2, threads_per_worker=1) as cluster, Client(cluster) as client:
        # Delayed, so that the model goes to each worker once and not with each block.
        shared = dask.delayed(model)
        head = drawn(0, model, 1)
        points = dd.from_delayed(
            [dask.delayed(drawn)(block, shared, options.rows) for block in range(options.blocks)],
            meta=head,
        )
        table = points.map_partitions(
            predicted, shared, combination, meta=predicted(head, model, combination)
        )
        # Held by the workers. table.to_parquet("answers") would write it instead.
        table = client.persist(table)
        progress(table, notebook=False)
        summary = client.compute(table.describe()).result()
        print(f"\n{len(table):,} points in {table.npartitions} blocks")
        print(summary.loc[["mean", "min", "max"]].T)

        # The same points on this machine alone give the same bits.
        for block in (0, options.blocks - 1):
            own = predicted(drawn(block, model, options.rows), model, combination)
            theirs = client.compute(table.partitions[block]).result()
            pd.testing.assert_frame_equal(own, theirs, check_exact=True)
        print("equal to this process, bit by bit")


# Worker processes import this file.
if __name__ == "__main__":
    main()
