"""scikit-learn: which estimator maps to which family, and what may surround it.

Exported: ``GaussianProcessRegressor``, ``SVR``, ``NuSVR``, ``KernelRidge``, linear models
(``LinearRegression``, ``Ridge``, ``Lasso``, ``LinearSVR``, ``PLSRegression``, ...),
``DummyRegressor``; averages of these (``VotingRegressor``, ``BaggingRegressor``),
``MultiOutputRegressor``, and what a ``GridSearchCV`` or its like found.

In a ``Pipeline`` after scalers. Before a linear model, or one with a polynomial kernel, also after
``PolynomialFeatures`` of any degree, ``PowerTransformer``, ``FunctionTransformer`` of a function
that a database has, ``PCA`` and other linear maps, selectors, ``ColumnTransformer`` and
``FeatureUnion``, in any order that leaves one function of each input. Around the target
(``TransformedTargetRegressor``): a scaler, or around such a model a function or
``PowerTransformer``. Polynomial kernels of degree 3 and more, and products of features, are written
out in monomials, 20000 of them at most.
"""

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from . import _scikit_learn_kernels, _scikit_learn_process
from ._features import Features
from ._functions import KNOWN, NAMED, Function, Recognised, recognise
from ._monomials import Term
from ._options import Options
from ._regression_surface import RegressionSurface, merged
from ._scikit_learn_steps import affine, after, named, passes, power_functions, require_fitted
from ._surface import ConstantSurface, NotExportable, Surface, identity


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output."""
    made = _convert(fitted, options)
    for column, surface in enumerate(made):
        surface.predict = Column(fitted, column)
    return made


class Column:
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
    from sklearn.cross_decomposition import PLSRegression
    from sklearn.dummy import DummyRegressor
    from sklearn.ensemble import BaggingRegressor, VotingRegressor
    from sklearn.gaussian_process import GaussianProcessRegressor
    from sklearn.kernel_ridge import KernelRidge
    from sklearn.multioutput import MultiOutputRegressor
    from sklearn.pipeline import Pipeline
    from sklearn.svm import SVR, NuSVR

    fitted = _inner(fitted)
    for kind, convert in (
        (Pipeline, _pipeline),
        (MultiOutputRegressor, _several),
        ((VotingRegressor, BaggingRegressor), _average),
        (PLSRegression, _least_squares),
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
    raise NotExportable(
        f"a {type(fitted).__name__} has no counterpart among the families of a database; "
        "the exporter accepts GaussianProcessRegressor, SVR, NuSVR, KernelRidge, PLSRegression, "
        "linear models and DummyRegressor, and pipelines, averages and searches of them; fit one "
        "of these"
    )


def _is_linear(fitted: Any) -> bool:
    from sklearn.base import is_regressor

    module = type(fitted).__module__
    return (
        is_regressor(fitted)
        and (module.startswith("sklearn.linear_model") or type(fitted).__name__ == "LinearSVR")
        and hasattr(type(fitted), "fit")
        and (hasattr(fitted, "coef_") or not hasattr(fitted, "n_features_in_"))
    )


def _dummy(fitted: Any, options: Options) -> List[Surface]:
    require_fitted(fitted, "constant_")
    inputs = getattr(fitted, "n_features_in_", None)
    if inputs is None:
        if options.X is None:
            raise NotExportable("a DummyRegressor does not know its inputs: pass X")
        inputs = options.X.shape[1]
    return [ConstantSurface(*identity(inputs), value=float(v)) for v in fitted.constant_.ravel()]


# Linear models with a standard deviation.
_BAYESIAN = ("BayesianRidge", "ARDRegression")

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
            surface.before_output_transform(NAMED["log"])
        elif type(fitted).__name__ in _BAYESIAN:
            _add_deviation(fitted, surface)
        made.append(surface)
    return made


def _add_deviation(fitted: Any, surface: RegressionSurface) -> None:
    """That of a new observation: the noise counts as the constant's."""
    used = np.arange(surface.inputs)
    if hasattr(fitted, "threshold_lambda"):
        used = used[fitted.lambda_ < fitted.threshold_lambda]
    covariance = np.zeros((1 + surface.inputs, 1 + surface.inputs))
    covariance[np.ix_(1 + used, 1 + used)] = fitted.sigma_
    covariance[0, 0] = 1.0 / fitted.alpha_
    surface.covariance = covariance
    surface.predict_error = lambda X: fitted.predict(X, return_std=True)[1]


def _pipeline(fitted: Any, options: Options) -> List[Surface]:
    steps = [(name, step) for name, step in fitted.steps if not passes(step)]
    made = _convert(steps[-1][1], options)
    features = Features.of_inputs(_inputs_of(fitted, steps, made))
    culprit = ""
    for name, step in steps[:-1]:
        features = after(name, step, features)
        if not culprit and features.affine() is None:
            culprit = named(name, step)
    scale = features.affine()
    for surface in made:
        if scale is not None:
            surface.after_inputs(*scale)
        elif isinstance(surface, RegressionSurface):
            surface.after_features(features)
        else:
            raise NotExportable(
                f"{culprit} is not a slope and an intercept per input, so the estimator after it "
                "has to be a linear model, or one with a polynomial kernel"
            )
    return made


def _inputs_of(fitted: Any, steps: List[Tuple[str, Any]], made: List[Surface]) -> int:
    for _, step in steps:
        count = getattr(step, "n_features_in_", None)
        if count is not None:
            return int(count)
    return int(getattr(fitted, "n_features_in_", made[0].inputs))


def _target_function(transformer: Any) -> Optional[Recognised]:
    """The function of a target if a database has its inverse."""
    if getattr(transformer, "func", None) is None:
        return None
    points = np.linspace(0.5, 2.5, 9)[:, None]
    with np.errstate(all="ignore"):
        got = np.asarray(transformer.transform(points), dtype=float)
    known = recognise(points, got) if got.shape == points.shape else None
    if known is None or (known.function is None and known.power == 1):
        return None
    if known.function is not None and known.function.kind == 6 and 0.0 < known.function.value < 1.0:
        return None  # a database has no way back from roots of this kind
    # x^2 and x^3 as powers, which have an inverse.
    return known if known.function is not None else Recognised(Function(6, float(known.power)))


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
    kind = type(transformer).__name__
    if kind == "PowerTransformer":
        known = [Recognised(function) for function in power_functions(transformer)]
        scale = affine(transformer._scaler) if transformer.standardize else None
    else:
        one = _target_function(transformer)
        if one is None:
            raise NotExportable(
                f"the transformer of the target, a {kind}, has no counterpart; the exporter "
                f"accepts the scalers, PowerTransformer, and func= of {KNOWN} around a linear model"
            )
        known = [one] * len(made)
    for place, (surface, each) in enumerate(zip(made, known)):
        if not isinstance(surface, RegressionSurface):
            raise NotExportable(
                "a function of the target maps only to a regression surface, so the regressor "
                "has to be a linear model, or one with a polynomial kernel"
            )
        # The target t = scale f(slope y + intercept) + shift, from t back to y.
        if scale is not None:
            slope, intercept = scale[0][place], scale[1][place]
            surface.before_output(1.0 / slope, -intercept / slope)
        surface.before_output(1.0 / each.scale, -each.shift / each.scale)
        assert each.function is not None
        surface.before_output_transform(each.function)
        surface.before_output(1.0 / each.slope, -each.intercept / each.slope)
    return made


def parts(fitted: Any) -> Optional[List[Tuple[Any, float]]]:
    """The members and weights of an estimator that is an average of others, each with the steps
    around it; None for any other. A search counts as its best estimator."""
    from sklearn.ensemble import BaggingRegressor, VotingRegressor
    from sklearn.pipeline import Pipeline

    fitted = _inner(fitted)
    if isinstance(fitted, Pipeline):
        last = parts(fitted.steps[-1][1])
        if last is None:
            return None
        return [
            (Pipeline([*fitted.steps[:-1], ("member", member)]), weight) for member, weight in last
        ]
    if isinstance(fitted, VotingRegressor):
        require_fitted(fitted, "estimators_")
        weights = np.ones(len(fitted.estimators_))
        if fitted.weights is not None:
            weights = np.array(
                [w for w, (_, e) in zip(fitted.weights, fitted.estimators) if e != "drop"], float
            )
        members = list(fitted.estimators_)
    elif isinstance(fitted, BaggingRegressor):
        require_fitted(fitted, "estimators_")
        weights = np.ones(len(fitted.estimators_))
        members = [
            _of_columns(member, columns, fitted.n_features_in_)
            for member, columns in zip(fitted.estimators_, fitted.estimators_features_)
        ]
    else:
        return None
    flat: List[Tuple[Any, float]] = []
    for member, weight in zip(members, weights / weights.sum()):
        inner = parts(member) or [(member, 1.0)]
        flat += [(one, float(weight) * share) for one, share in inner]
    return flat


def _of_columns(member: Any, columns: np.ndarray, inputs: int) -> Any:
    """A member of a bag that may know some of the inputs only."""
    if list(columns) == list(range(inputs)):
        return member
    from sklearn.compose import ColumnTransformer
    from sklearn.pipeline import Pipeline

    choice = ColumnTransformer([("chosen", "passthrough", [int(c) for c in columns])])
    choice.fit(np.zeros((1, inputs)))
    return Pipeline([("chosen", choice), ("member", member)])


def _inner(fitted: Any) -> Any:
    """What a search or a robust fit found."""
    while True:
        if type(fitted).__name__.endswith(("SearchCV", "HalvingSearchCV")):
            if not hasattr(fitted, "best_estimator_"):
                require_fitted(fitted, "best_index_")
                raise NotExportable(
                    f"the {type(fitted).__name__} kept no best estimator: search with refit=True"
                )
            fitted = fitted.best_estimator_
        elif type(fitted).__name__ == "RANSACRegressor":
            require_fitted(fitted, "estimator_")
            fitted = fitted.estimator_
        else:
            return fitted


def _several(fitted: Any, options: Options) -> List[Surface]:
    """A MultiOutputRegressor: an estimator for each output."""
    require_fitted(fitted, "estimators_")
    return [surface for one in fitted.estimators_ for surface in _convert(one, options)]


def _average(fitted: Any, options: Options) -> List[Surface]:
    """An average inside something else: of linear models it is a linear model."""
    members = parts(fitted) or []
    made = [_convert(member, options)[0] for member, _ in members]
    whole = merged(made, [weight for _, weight in members])
    if whole is None:
        raise NotExportable(
            f"a {type(fitted).__name__} inside another estimator is exported only if its members "
            "are linear or polynomial; pass it alone or as the last step of a pipeline"
        )
    return [whole]


def _least_squares(fitted: Any, options: Options) -> List[Surface]:
    """PLSRegression, by its values at the mean and one deviation beside it."""
    require_fitted(fitted, "x_rotations_")
    mean, spread = np.asarray(fitted._x_mean), np.asarray(fitted._x_std)
    points = np.vstack([mean, mean + np.diag(spread)])
    values = np.asarray(fitted.predict(points), dtype=float).reshape(len(points), -1)
    made: List[Surface] = []
    for column in values.T:
        terms: Dict[Term, float] = {(): float(column[0])}
        terms.update({(i,): float(v - column[0]) for i, v in enumerate(column[1:])})
        made.append(RegressionSurface(1.0 / spread, -mean / spread, terms=terms))
    return made
