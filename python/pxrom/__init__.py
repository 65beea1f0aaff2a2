"""Predicts with fitted response surfaces.

    >>> import pxrom
    >>> model = pxrom.load("beam.pxdb")
    >>> result = model.predict({"Material": 1, "Holes": 2}, X, return_error=True)
    >>> result.values["mass"], result.errors["mass"]

``load`` and ``loads`` read a database, ``Model.predict`` evaluates it at many points and
``Model.at`` at one after the other, ``check`` says what is wrong
with a text, and ``format`` writes a text in its canonical form. ``pxrom.export`` turns fits from
scikit-learn, OpenTURNS, scipy and statsmodels into databases.
"""

from ._core import __version__
from ._findings import Finding, check
from ._model import CodeNeeds, Combination, Cost, Model, Parameter, format, load, loads
from ._prediction import Columns, Prediction
from ._predictor import Predictor
from ._validation import Scores, Validation

__all__ = [
    "CodeNeeds",
    "Columns",
    "Combination",
    "Cost",
    "Finding",
    "Model",
    "Parameter",
    "Prediction",
    "Predictor",
    "Scores",
    "Validation",
    "__version__",
    "check",
    "format",
    "load",
    "loads",
]
