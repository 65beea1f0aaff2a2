"""scikit-learn's transformers as features: what the steps of a pipeline compute from its inputs."""

from typing import Any, List, Optional, Tuple

import numpy as np

from ._features import MOST_TERMS, Features, NoVariable, TooManyTerms
from ._functions import KNOWN, Function, Recognised, recognise
from ._surface import NotExportable, identity

Affine = Tuple[np.ndarray, np.ndarray]

# Transformers that are linear in all columns together.
_LINEAR = (
    "IncrementalPCA",
    "TruncatedSVD",
    "FastICA",
    "FactorAnalysis",
    "GaussianRandomProjection",
    "SparseRandomProjection",
)

ACCEPTED = (
    "the exporter accepts scalers, PolynomialFeatures, PowerTransformer, FunctionTransformer of "
    "one function for each input, PCA and other linear maps, selectors of columns, "
    "ColumnTransformer and FeatureUnion"
)


def require_fitted(fitted: Any, attribute: str) -> None:
    if not hasattr(fitted, attribute):
        raise NotExportable(f"the {type(fitted).__name__} is not fitted; call fit first")


def passes(step: Any) -> bool:
    return step is None or (isinstance(step, str) and step == "passthrough")


def named(name: str, step: Any) -> str:
    return f"the step {name!r}, a {type(step).__name__},"


def after(name: str, step: Any, features: Features) -> Features:
    """The features after a fitted transformer."""
    try:
        made = _after(step, features)
    except NoVariable:
        raise NotExportable(
            f"{named(name, step)} takes a function of a step that mixes inputs or takes a function "
            "itself, and a database holds one function of each input; apply the function to the "
            "inputs first"
        ) from None
    except TooManyTerms:
        raise NotExportable(
            f"{named(name, step)} makes more than {MOST_TERMS} terms of the inputs; use a lower "
            "degree or fewer inputs"
        ) from None
    if made is None:
        raise NotExportable(
            f"{named(name, step)} is not a slope and an intercept per input, nor a polynomial or "
            f"a known function of the inputs; {ACCEPTED}"
        )
    return made


def _after(step: Any, features: Features) -> Optional[Features]:
    from sklearn.compose import ColumnTransformer
    from sklearn.feature_selection import SelectorMixin
    from sklearn.pipeline import FeatureUnion, Pipeline

    if passes(step):
        return features
    scale = affine(step)
    if scale is not None:
        return features.scaled(*scale)
    kind = type(step).__name__
    if isinstance(step, Pipeline):
        for name, inner in step.steps:
            features = after(name, inner, features)
        return features
    if isinstance(step, ColumnTransformer):
        return _after_columns(step, features)
    if isinstance(step, FeatureUnion):
        return _after_union(step, features)
    if isinstance(step, SelectorMixin):
        return features.selected(np.flatnonzero(step.get_support()))
    if not type(step).__module__.startswith("sklearn."):
        return None
    if kind == "PolynomialFeatures":
        require_fitted(step, "powers_")
        return features.products(step.powers_)
    if kind == "PowerTransformer":
        return _after_power(step, features)
    if kind == "FunctionTransformer":
        return _after_function(step, features)
    if kind == "PCA":
        require_fitted(step, "components_")
        spread = np.sqrt(step.explained_variance_) if step.whiten else 1.0
        centred = features.scaled(np.ones(len(step.mean_)), -step.mean_)
        return centred.mapped(step.components_.T / spread)
    if kind in ("PLSRegression", "PLSCanonical", "CCA"):
        require_fitted(step, "x_rotations_")
        scaled = features.scaled(1.0 / step._x_std, -step._x_mean / step._x_std)
        return scaled.mapped(step.x_rotations_)
    if kind in _LINEAR:
        return _after_linear(step, features)
    return None


def affine(step: Any) -> Optional[Affine]:
    """x' = slope x + intercept of a fitted scaler; None for any other transformer."""
    kind = type(step).__name__
    if kind == "SimpleImputer" and type(step).__module__.startswith("sklearn."):
        # Complete points pass; a database has no others.
        require_fitted(step, "statistics_")
        if not step.add_indicator and not np.isnan(np.asarray(step.statistics_, float)).any():
            return identity(step.n_features_in_)
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


def power_functions(step: Any) -> List[Function]:
    """The function of each column of a PowerTransformer, before it standardises."""
    require_fitted(step, "lambdas_")
    kind = 7 if step.method == "box-cox" else 9
    return [Function(kind, parameter=float(each)) for each in step.lambdas_]


def _after_power(step: Any, features: Features) -> Features:
    made = features.under([Recognised(function) for function in power_functions(step)])
    scale = affine(step._scaler) if step.standardize else None
    return made if scale is None else made.scaled(*scale)


def _after_function(step: Any, features: Features) -> Features:
    """Recognises a function by its values, whatever it is called."""
    count = len(features.columns)
    points = np.random.default_rng(3).uniform(0.5, 2.5, (9, count))
    with np.errstate(all="ignore"):
        got = np.asarray(_called(step, points), dtype=float)
    if got.shape == points.shape:
        known = [recognise(points[:, i], got[:, i]) for i in range(count)]
        if all(one is not None for one in known):
            return features.under([one for one in known if one is not None])
    raise NotExportable(
        f"the function {getattr(step.func, '__name__', step.func)!r} of a FunctionTransformer is "
        f"not one that a database has for each input; the exporter knows {KNOWN}"
    )


def _called(step: Any, points: np.ndarray) -> Any:
    names = getattr(step, "feature_names_in_", None)
    if names is not None:
        import pandas

        return step.transform(pandas.DataFrame(points, columns=names))
    return step.transform(points)


def _after_linear(step: Any, features: Features) -> Features:
    count = len(features.columns)
    at_zero = np.asarray(step.transform(np.zeros((1, count))), dtype=float)[0]
    matrix = np.asarray(step.transform(np.eye(count)), dtype=float) - at_zero
    return features.mapped(matrix).scaled(np.ones(len(at_zero)), at_zero)


def _after_columns(step: Any, features: Features) -> Features:
    require_fitted(step, "transformers_")
    columns = []
    for name, transformer, places in step.transformers_:
        if isinstance(transformer, str) and transformer == "drop":
            continue
        chosen = features.selected(_places(step, places, len(features.columns)))
        columns += after(name, transformer, chosen).columns if chosen.columns else []
    return features.with_columns(columns)


def _places(step: Any, places: Any, count: int) -> List[int]:
    """The numbers of columns that are given by number, name, mask or slice."""
    from sklearn.utils import _get_column_indices

    frame: Any = np.zeros((1, count))
    names = getattr(step, "feature_names_in_", None)
    if names is not None:
        import pandas

        frame = pandas.DataFrame(frame, columns=names)
    return [int(place) for place in _get_column_indices(frame, places)]


def _after_union(step: Any, features: Features) -> Features:
    weights = step.transformer_weights or {}
    columns = []
    for name, transformer in step.transformer_list:
        if isinstance(transformer, str) and transformer == "drop":
            continue
        part = after(name, transformer, features)
        weight = np.full(len(part.columns), float(weights.get(name, 1.0)))
        columns += part.scaled(weight, np.zeros(len(weight))).columns
    return features.with_columns(columns)
