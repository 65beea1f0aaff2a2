"""Turns fitted models into databases, so that C++ and any other host predicts what the tool does.

One fitted object, in one line::

    text = pxrom.export.to_text(gpr, inputs=["L", "b"], outputs=["mass"])

A whole study, with units, captions, bounds, combinations of discrete inputs, weighted ensembles and
errors from cross-validation: :class:`Study`.

| Tool         | Exported                                                        |
|--------------|-----------------------------------------------------------------|
| scikit-learn | see :mod:`pxrom.export.scikit_learn`                            |
| OpenTURNS    | Kriging results (:mod:`pxrom.export.openturns`)                 |
| scipy        | ``RBFInterpolator`` (:mod:`pxrom.export.scipy_rbf`)             |
| statsmodels  | results of ``OLS`` (:mod:`pxrom.export.statsmodels`)            |

**Every export checks itself**: at the samples and at points between and a little beyond them, the
exported text is asked what the tool predicts. Where the answers differ by more than the tolerance,
or where something has no counterpart in a database, :class:`NotExportable` says why; nothing is
approximated.

**Errors.** A predicted error goes along where the tool has one and it maps: the standard deviation
of a Gaussian process, the root of OpenTURNS' conditional variance, the half-width of statsmodels'
prediction interval. It is exported in the unit of the output, although ``Prediction.scaled_errors``
names it: the format can't say so.
"""

from ._surface import NotExportable
from .study import Study, save, to_text

__all__ = ["NotExportable", "Study", "save", "to_text"]
