"""statsmodels: ordinary least squares as a regression surface, with its prediction interval.

The columns of the design are recognised by their values: each has to be a constant, an input, a
square or a product of two inputs, of the points ``X`` that are passed with the results, or of
their logarithms. The exported error is the half-width of the two-sided prediction interval of an
observation (``obs_ci``) at the requested level.
"""

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from .._wording import listed
from . import _monomials
from ._monomials import Term
from ._options import Options
from ._surface import BACK, FORWARD, NotExportable, RegressionSurface, Surface, identity


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """The results of an ``OLS`` fit."""
    model: Any = getattr(fitted, "model", None)
    kind = type(model).__name__
    if kind not in ("OLS", "WLS") or not hasattr(fitted, "params"):
        raise NotExportable(
            f"a {type(fitted).__name__} has no counterpart; the exporter accepts the results of "
            "OLS().fit()"
        )
    if not hasattr(fitted, "cov_type"):
        raise NotExportable(
            f"what {kind}.fit_regularized returns has no counterpart; call fit(), or fit with "
            "scikit-learn's Ridge, Lasso or ElasticNet, which are exported"
        )
    if options.output_transform not in BACK:
        raise NotExportable(
            f"output_transform={options.output_transform!r} has to be 'log', 'log10' or 'sqrt'"
        )
    exog = np.asarray(model.exog, dtype=float)
    X = _points(exog) if options.X is None else options.X
    if len(X) != len(exog):
        raise NotExportable(f"X has {len(X)} rows, but the fit had {len(exog)} observations")
    transform, terms = _terms(exog, X, list(model.exog_names))

    def design(points: np.ndarray) -> np.ndarray:
        info = getattr(model.data, "design_info", None)
        if info is not None and options.names is not None:
            import pandas
            import patsy

            frame = pandas.DataFrame(points, columns=list(options.names))
            return np.asarray(patsy.dmatrix(info, frame))
        return _monomials.design(terms, FORWARD[transform](points))

    back = BACK[options.output_transform]
    surface = RegressionSurface(
        *identity(X.shape[1]),
        samples=X,
        outputs=back(np.asarray(model.endog, dtype=float)),
        terms={term: float(value) for term, value in zip(terms, np.asarray(fitted.params))},
        input_transform=transform,
        output_transform=options.output_transform,
    )
    surface.predict = lambda points: back(
        np.asarray(fitted.predict(design(points), transform=False))
    )
    why = _why_no_error(fitted, kind, terms, options.output_transform)
    if why is not None:
        surface.drop_error(why)
        return [surface]
    if not 0.0 < options.level < 1.0:
        raise NotExportable(f"level={options.level!r} has to be between 0 and 1, such as 0.95")
    surface.level = 0.5 + 0.5 * options.level
    surface.variance = float(fitted.scale)
    surface.inv_xtx = np.asarray(fitted.normalized_cov_params, dtype=float)
    surface.predict_error = lambda points: 0.5 * np.ptp(
        fitted.get_prediction(design(points), transform=False).conf_int(
            obs=True, alpha=1.0 - options.level
        ),
        axis=1,
    )
    return [surface]


def _why_no_error(
    fitted: Any, kind: str, terms: List[Term], transform: Optional[str]
) -> Optional[str]:
    if kind != "OLS":
        return "an interval of a weighted fit depends on the weight of a new observation"
    if fitted.cov_type != "nonrobust":
        return f"the covariance type {fitted.cov_type!r} has no counterpart; 'nonrobust' has"
    if transform is not None:
        return "a predicted error can't go back through a transformation of the output"
    if fitted.df_resid != fitted.nobs - len(terms):
        return "the design has not full rank"
    return None


def _points(exog: np.ndarray) -> np.ndarray:
    """The columns of a design that are not constant, as inputs."""
    varying = np.ptp(exog, axis=0) > 0
    if not varying.any():
        raise NotExportable("the design is a constant: pass the inputs as X")
    return exog[:, varying]


def _terms(exog: np.ndarray, X: np.ndarray, names: List[str]) -> Tuple[Optional[str], List[Term]]:
    known: Dict[Optional[str], List[Optional[Term]]] = {}
    for transform in (None, "log", "log10", "sqrt"):
        if transform is not None and not np.all(X > 0):
            break
        found = known[transform] = _monomials.recognised(exog, FORWARD[transform](X))
        terms = [term for term in found if term is not None]
        if len(terms) == len(found) and len(set(terms)) == len(terms):
            return transform, terms
    unknown = [name for name, term in zip(names, known[None]) if term is None]
    for transform, found in known.items():
        both = [a is not None or b is not None for a, b in zip(found, known[None])]
        if unknown and transform is not None and all(both):
            raise NotExportable(
                f"the design takes {transform} of some inputs, {listed(unknown)}, and the others "
                f"unchanged, but a regression surface transforms all inputs or none: take "
                f"{transform} of every input, or make it a column of X and an input of its own"
            )
    raise NotExportable(
        f"in the design, {', '.join(map(repr, unknown)) or 'a repeated column'} is not a constant, "
        "an input, a square or a product of two inputs of X, or of their logarithms or roots; "
        "X holds the inputs as points, one row per observation"
    )
