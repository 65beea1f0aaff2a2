"""scikit-learn: which estimator maps to which family, and what may surround it.

Exported: ``GaussianProcessRegressor``, ``SVR``, ``NuSVR``, ``KernelRidge``, linear models
(``LinearRegression``, ``Ridge``, ``Lasso``, ``LinearSVR``, ...), ``DummyRegressor``; in a
``Pipeline`` after ``StandardScaler``, ``MinMaxScaler``, ``MaxAbsScaler``, ``RobustScaler`` and,
before a linear model, ``PolynomialFeatures`` up to the second degree; in a
``TransformedTargetRegressor`` with one of these scalers, or with log, log10 or sqrt around a linear
model.
"""

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from . import _scikit_learn_kernels, _scikit_learn_process
from ._monomials import Term
from ._options import Options
from ._surface import ConstantSurface, NotExportable, RegressionSurface, Surface, identity

Affine = Tuple[np.ndarray, np.ndarray]


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output."""
    made = _convert(fitted, options)
    for column, surface in enumerate(made):
        surface.predict = _Column(fitted, column)
    return made


class _Column:
    """One column of an estimator's predictions; passes the names of features if it knows them."""

    def __init__(self, fitted: Any, column: int) -> None:
        self._fitted = fitted
        self._column = column

    def __call__(self, X: np.ndarray) -> np.ndarray:
        names = getattr(self._fitted, "feature_names_in_", None)
        if names is not None:
            import pandas

            X = pandas.DataFrame(X, columns=names)
        predicted = np.asarray(self._fitted.predict(X), dtype=float)
        return predicted.reshape(len(X), -1)[:, self._column]


def _convert(fitted: Any, options: Options) -> List[Surface]:
    from sklearn.compose import TransformedTargetRegressor
    from sklearn.dummy import DummyRegressor
    from sklearn.gaussian_process import GaussianProcessRegressor
    from sklearn.kernel_ridge import KernelRidge
    from sklearn.pipeline import Pipeline
    from sklearn.svm import SVR, NuSVR

    for kind, convert in (
        (Pipeline, _pipeline),
        (TransformedTargetRegressor, _target),
        (GaussianProcessRegressor, _scikit_learn_process.convert),
        ((SVR, NuSVR), _scikit_learn_kernels.vectors),
        (KernelRidge, _scikit_learn_kernels.ridge),
        (DummyRegressor, _dummy),
    ):
        if isinstance(fitted, kind):
            return list(convert(fitted, options))
    if _is_linear(fitted):
        return _linear(fitted, options)
    hint = _instead(fitted)
    if hint:
        raise NotExportable(f"a {type(fitted).__name__} is exported by its parts: {hint}")
    raise NotExportable(
        f"a {type(fitted).__name__} has no counterpart among the families of a database; "
        "the exporter accepts GaussianProcessRegressor, SVR, NuSVR, KernelRidge, linear models, "
        "DummyRegressor, and pipelines of them"
    )


def _instead(fitted: Any) -> str:
    """What to pass in place of an estimator that only wraps others."""
    name = type(fitted).__name__
    if name == "VotingRegressor":
        weights = "numpy.divide(voting.weights, sum(voting.weights))"
        if fitted.weights is None:
            weights = f"[1 / {len(fitted.estimators)}] * {len(fitted.estimators)}"
        return f"pass the weighted ensemble list(zip(voting.estimators_, {weights}))"
    if hasattr(fitted, "best_estimator_") or name.endswith(("SearchCV", "HalvingSearchCV")):
        return "pass its best_estimator_"
    return "add each of its estimators_ for one output" if name == "MultiOutputRegressor" else ""


def _is_linear(fitted: Any) -> bool:
    from sklearn.base import is_regressor

    module = type(fitted).__module__
    return (
        is_regressor(fitted)
        and (module.startswith("sklearn.linear_model") or type(fitted).__name__ == "LinearSVR")
        and hasattr(type(fitted), "fit")
        and (hasattr(fitted, "coef_") or not hasattr(fitted, "n_features_in_"))
    )


def require_fitted(fitted: Any, attribute: str) -> None:
    if not hasattr(fitted, attribute):
        raise NotExportable(f"the {type(fitted).__name__} is not fitted; call fit first")


def _dummy(fitted: Any, options: Options) -> List[Surface]:
    require_fitted(fitted, "constant_")
    inputs = getattr(fitted, "n_features_in_", None)
    if inputs is None:
        if options.X is None:
            raise NotExportable("a DummyRegressor does not know its inputs: pass X")
        inputs = options.X.shape[1]
    return [ConstantSurface(*identity(inputs), value=float(v)) for v in fitted.constant_.ravel()]


# Linear models of the logarithm of the output.
_LOG_LINKED = ("PoissonRegressor", "GammaRegressor")


def _linear(fitted: Any, options: Options) -> List[Surface]:
    require_fitted(fitted, "coef_")
    coefficients = np.atleast_2d(np.asarray(fitted.coef_, dtype=float))
    intercepts = np.broadcast_to(np.ravel(fitted.intercept_), len(coefficients))
    made: List[Surface] = []
    for row, intercept in zip(coefficients, intercepts):
        terms: Dict[Term, float] = {(): float(intercept)}
        terms.update({(i,): float(value) for i, value in enumerate(row)})
        surface = RegressionSurface(*identity(len(row)), terms=terms)
        if type(fitted).__name__ in _LOG_LINKED:
            surface.before_output_transform("log")
        made.append(surface)
    return made


def _pipeline(fitted: Any, options: Options) -> List[Surface]:
    steps = [(name, step) for name, step in fitted.steps if not _passes(step)]
    made = _convert(steps[-1][1], options)
    for name, step in reversed(steps[:-1]):
        if type(step).__name__ == "PolynomialFeatures":
            for surface in made:
                if not isinstance(surface, RegressionSurface):
                    raise NotExportable(
                        "polynomial features map only to a regression surface, so the "
                        "estimator after them has to be a linear model"
                    )
                surface.after_polynomial(np.asarray(step.powers_))
            continue
        scale = affine(step)
        if scale is None:
            raise NotExportable(
                f"the step {name!r}, a {type(step).__name__}, is not a slope and an intercept per "
                "input; the exporter accepts StandardScaler, MinMaxScaler(clip=False), "
                "MaxAbsScaler, RobustScaler and PolynomialFeatures"
            )
        for surface in made:
            surface.after_inputs(*scale)
    return made


def _passes(step: Any) -> bool:
    return step is None or step == "passthrough"


def affine(step: Any) -> Optional[Affine]:
    """x' = slope x + intercept of a fitted scaler; None for any other transformer."""
    kind = type(step).__name__
    if not type(step).__module__.startswith("sklearn.preprocessing"):
        return None
    require_fitted(step, "n_features_in_")
    ones, zeros = identity(step.n_features_in_)
    if kind == "StandardScaler":
        slope = ones if step.scale_ is None else ones / step.scale_
        return slope, (-step.mean_ * slope if step.with_mean else zeros)
    if kind == "MinMaxScaler" and not step.clip:
        return np.asarray(step.scale_), np.asarray(step.min_)
    if kind == "MaxAbsScaler":
        return ones / step.scale_, zeros
    if kind == "RobustScaler":
        slope = ones / step.scale_ if step.with_scaling else ones
        return slope, (-step.center_ * slope if step.with_centering else zeros)
    if kind == "FunctionTransformer" and step.func is None and step.inverse_func is None:
        return ones, zeros
    return None


# Functions of a target for which a regression surface has a back-transformation.
_TARGET_FUNCTIONS = {np.log: "log", np.log10: "log10", np.sqrt: "sqrt"}


def _target(fitted: Any, options: Options) -> List[Surface]:
    require_fitted(fitted, "regressor_")
    transformer = fitted.transformer_
    scale = affine(transformer)
    made = _convert(fitted.regressor_, options)
    if scale is not None:
        slopes, intercepts = scale
        for surface, slope, intercept in zip(made, slopes, intercepts):
            surface.before_output(1.0 / slope, -intercept / slope)
        return made
    name = _TARGET_FUNCTIONS.get(getattr(transformer, "func", None))
    if name is None:
        raise NotExportable(
            f"the transformer of the target, a {type(transformer).__name__}, has no counterpart; "
            "the exporter accepts the scalers, and func=numpy.log, log10 or sqrt around a linear "
            "model"
        )
    for surface in made:
        if not isinstance(surface, RegressionSurface):
            raise NotExportable(
                f"a target under {name} maps only to a regression surface, so the regressor "
                "has to be a linear model"
            )
        surface.before_output_transform(name)
    return made
