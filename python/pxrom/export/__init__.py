"""Turns fitted models into databases, so that C++ and any other host predict the same as the tool.

One fitted object, in one line::

    text = pxrom.export.to_text(gpr, inputs=["L", "b"], outputs=["mass"])

A whole study, with units, captions, bounds, combinations of discrete inputs, weighted ensembles and
errors from cross-validation: :class:`Study`.

===============  ===========================================================
Tool             Exported
===============  ===========================================================
scikit-learn     see :mod:`pxrom.export.scikit_learn`
OpenTURNS        results of Kriging, functional chaos and linear models
scipy            ``RBFInterpolator``
statsmodels      results of ``OLS`` and other linear models
SMT              ``KRG``, ``KPLS``, ``KPLSK``
GPy              ``GPRegression``
pyKriging        ``kriging``
===============  ===========================================================

**Every export checks itself**: it compares the predictions of the exported text and of the tool, at
the samples and at points between and a little beyond them. If they differ by more than the
tolerance and more than rounding explains, if ``X`` and ``y`` are not those of the fit, or if
something has no counterpart in a database, :class:`NotExportable` says why. Nothing is
approximated.

**Errors.** A predicted error is exported if the tool has one that maps: the standard deviation of a
Gaussian process or of a Bayesian linear model, the root of OpenTURNS' conditional variance, the
half-width of statsmodels' prediction interval, to first order if the fit predicts a function of the
output. ``Prediction.errors`` has it in the unit of the output.
"""

from ._surface import NotExportable
from .study import Study, save, to_text

__all__ = ["NotExportable", "Study", "save", "to_text"]
