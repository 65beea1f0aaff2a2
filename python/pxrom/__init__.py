"""Predicts with fitted response surfaces.

    >>> import pxrom
    >>> model = pxrom.load("beam.pxdb")
    >>> result = model.predict({"Material": 1, "Holes": 2}, X, return_error=True)
    >>> result.values["mass"], result.errors["mass"]

``load`` and ``loads`` read a database, ``Model.predict`` answers, ``check`` says what is wrong with
a text, ``format`` writes it in its canonical form. ``pxrom.export`` turns what scikit-learn,
OpenTURNS, scipy and statsmodels have fitted into databases.
"""

from ._core import __version__
from ._findings import Finding, check
from ._model import Combination, Model, Parameter, format, load, loads
from ._prediction import Columns, Prediction

__all__ = [
    "Columns",
    "Combination",
    "Finding",
    "Model",
    "Parameter",
    "Prediction",
    "__version__",
    "check",
    "format",
    "load",
    "loads",
]
