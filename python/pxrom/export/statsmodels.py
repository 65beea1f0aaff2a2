"""statsmodels: linear models as regression or polynomial surfaces, with the prediction interval of
ordinary least squares.

The columns of the design are recognised by their values at the points ``X`` that are passed with
the results: each has to be a product of inputs and of functions of one input that a database has,
such as logarithms, roots, exponentials and powers. In a formula, each factor of a term is
recognised for itself. The exported error is the half-width of the two-sided prediction interval of
an observation (``obs_ci``) at the requested level.
"""

from typing import Any, Callable, List, Optional

import numpy as np

from ._columns import Columns
from ._features import Features, Polynomial, by_terms, combined, multiplied
from ._functions import KNOWN, NAMED
from ._options import Options
from ._regression_surface import RegressionSurface
from ._surface import NotExportable, Surface, identity

_LINEAR_MODELS = ("OLS", "WLS", "GLS", "GLSAR", "RLM")


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """The results of a linear model."""
    model: Any = getattr(fitted, "model", None)
    kind = type(model).__name__
    if kind not in _LINEAR_MODELS or not hasattr(fitted, "params"):
        raise NotExportable(
            f"a {type(fitted).__name__} has no counterpart; the exporter accepts the results of "
            "OLS, WLS, GLS, GLSAR and RLM; fit one of these"
        )
    if options.output_transform not in (None, *NAMED):
        raise NotExportable(
            f"output_transform={options.output_transform!r} has to be 'log', 'log10' or 'sqrt'"
        )
    exog = np.asarray(model.exog, dtype=float)
    X = _points(exog) if options.X is None else options.X
    if len(X) != len(exog):
        raise NotExportable(f"X has {len(X)} rows, but the fit had {len(exog)} observations")
    features = Features.of_inputs(X.shape[1])
    columns = Columns(features, X)
    info = getattr(model.data, "design_info", None)
    if info is not None and options.names is not None:
        found = _by_formula(columns, info, options)
    else:
        found = columns.all_of(exog, list(model.exog_names))

    def design(points: np.ndarray) -> np.ndarray:
        if info is not None and options.names is not None:
            import patsy

            return np.asarray(patsy.dmatrix(info, _frame(points, options)))
        return features.with_columns(found).values(points)

    function = None if options.output_transform is None else NAMED[options.output_transform]
    back: Callable[[np.ndarray], np.ndarray] = np.asarray if function is None else function.back
    params = np.asarray(fitted.params, dtype=float).ravel()
    surface = RegressionSurface(
        *identity(X.shape[1]),
        samples=X,
        outputs=back(np.asarray(model.endog, dtype=float)),
        terms=combined(zip(params, found)),
        variables=features.variables,
        output_transform=function,
    )
    surface.predict = lambda points: back(model.predict(params, design(points)))
    why = _why_no_error(fitted, kind)
    if why is not None:
        surface.drop_error(why)
        return [surface]
    if not 0.0 < options.level < 1.0:
        raise NotExportable(f"level={options.level!r} has to be between 0 and 1, such as 0.95")
    terms, by_term = by_terms(found)
    surface.terms = dict(zip(terms, params @ by_term))
    normal = np.asarray(fitted.normalized_cov_params, dtype=float)
    surface.inv_xtx = by_term.T @ normal @ by_term
    surface.level = 0.5 + 0.5 * options.level
    surface.variance, surface.freedom = float(fitted.scale), float(fitted.df_resid)

    def predict_error(points: np.ndarray) -> np.ndarray:
        predicted = fitted.get_prediction(design(points), transform=False)
        half = 0.5 * np.ptp(predicted.conf_int(obs=True, alpha=1.0 - options.level), axis=1)
        if function is None:
            return half
        # To first order, as the library gives it in the unit of the output.
        return half * np.abs(function.back_slope(predicted.predicted_mean))

    surface.predict_error = predict_error
    return [surface]


def _why_no_error(fitted: Any, kind: str) -> Optional[str]:
    if not hasattr(fitted, "cov_type"):
        return "a regularized fit has no covariance of its coefficients"
    if kind != "OLS":
        return "an interval of a weighted fit depends on the weight of a new observation"
    if fitted.cov_type != "nonrobust":
        return f"the covariance type {fitted.cov_type!r} has no counterpart; 'nonrobust' has"
    if fitted.df_resid != fitted.nobs - len(fitted.params):
        return "the design has not full rank"
    return None


def _points(exog: np.ndarray) -> np.ndarray:
    """The columns of a design that are not constant, as inputs."""
    varying = np.ptp(exog, axis=0) > 0
    if not varying.any():
        raise NotExportable("the design is a constant: pass the inputs as X")
    return exog[:, varying]


def _frame(points: np.ndarray, options: Options) -> Any:
    import pandas

    return pandas.DataFrame(points, columns=list(options.names or ()))


def _by_formula(columns: Columns, info: Any, options: Options) -> List[Polynomial]:
    """The columns of a formula, from those of its factors."""
    assert options.X is not None
    frame = _frame(options.X, options)
    factors = {}
    for factor, facts in info.factor_infos.items():
        if facts.type != "numerical":
            raise NotExportable(
                f"the formula has the categories {factor.name()}, and a surface has numbers only; "
                "make them a discrete input of a Study, with one fit for each"
            )
        values = np.asarray(factor.eval(facts.state, frame), dtype=float)
        one = columns.find(values.ravel()) if values.size == len(frame) else None
        if one is None:
            raise NotExportable(
                f"{factor.name()!r} in the formula is not a product of inputs and of functions "
                f"that a database has ({KNOWN}); make it an input of its own"
            )
        factors[factor] = one
    found: List[Polynomial] = []
    for term in info.terms:
        product: Polynomial = {(): 1.0}
        for factor in term.factors:
            product = multiplied(product, factors[factor])
        found.append(product)
    return found
