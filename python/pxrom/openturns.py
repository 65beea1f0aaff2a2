"""A model as a function of OpenTURNS, with its gradient.

    >>> import pxrom.openturns
    >>> stress = pxrom.openturns.function(model, {"Material": 1, "Holes": 2}, "stress")
    >>> event = ot.ThresholdEvent(ot.CompositeRandomVector(stress, inputs), ot.Greater(), 150.0)
"""

from typing import Any, Mapping, Optional

import numpy as np
import openturns as ot

from ._model import Model

__all__ = ["function"]


def function(
    model: Model,
    combination: Optional[Mapping[str, int]] = None,
    output: Any = None,
    *,
    jobs: int = 1,
) -> Any:
    """An ``openturns.Function`` of the continuous inputs, in the order of ``model.inputs``.

    Args:
        combination: the value of each discrete input by name, as for :meth:`Model.predict`.
        output: the name of one output, or several names. Without it, all outputs.
        jobs: the number of threads that evaluate a sample.

    It evaluates whole samples at once, and its gradient is the model's own. Values have the same
    bits as those of :meth:`Model.predict`. What can't be evaluated is NaN.
    """
    names = [output] if isinstance(output, str) else output
    at = model.at(combination, names)

    def sample(points: Any) -> np.ndarray:
        result = model.predict(combination, np.array(points, dtype=float), jobs=jobs)
        return np.stack([result[name] for name in at.outputs], axis=1)

    def gradient(point: Any) -> np.ndarray:
        # OpenTURNS has inputs by row, outputs by column.
        return np.reshape(at.gradient(np.array(point, dtype=float)), (len(at.outputs), -1)).T

    def value(point: Any) -> np.ndarray:
        return np.reshape(at(np.array(point, dtype=float)), len(at.outputs))

    made = ot.PythonFunction(
        len(at.inputs), len(at.outputs), func=value, func_sample=sample, gradient=gradient
    )
    made.setInputDescription(at.inputs)
    made.setOutputDescription(at.outputs)
    return made
