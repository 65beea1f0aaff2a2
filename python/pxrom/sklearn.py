"""A model as an estimator of scikit-learn.

    >>> from pxrom.sklearn import Surrogate
    >>> mass = Surrogate(model, {"Material": 1, "Holes": 2}, "mass")
    >>> mass.predict(X, return_std=True)

:class:`Surrogate` takes part in what scikit-learn does with a fitted regressor, such as
``VotingRegressor``, ``permutation_importance`` and ``PartialDependenceDisplay``.
"""

from typing import Any, List, Mapping, Optional, Tuple, Union

import numpy as np
from sklearn.base import BaseEstimator, RegressorMixin
from sklearn.utils import check_array, check_X_y

from . import _points
from ._model import Model
from ._prediction import Columns

__all__ = ["Surrogate"]


class Surrogate(RegressorMixin, BaseEstimator):
    """Outputs of a model as a regressor.

    Args:
        model: a :class:`pxrom.Model`.
        combination: the values of discrete inputs. Those that it leaves out are features.
        output: the name of one output, whose predictions have the shape (n,), or several names, for
            (n, m). Without it the only output, or all of them.

    Points are an array with the columns of :attr:`feature_names`, or a frame that has them, in any
    order. NaN is refused, as usual in scikit-learn. The model is fitted already: ``predict`` needs
    no ``fit``, and ``fit`` only checks its arguments. Copies share the model.
    """

    def __init__(
        self,
        model: Optional[Model] = None,
        combination: Optional[Mapping[str, int]] = None,
        output: Any = None,
    ) -> None:
        self.model = model
        self.combination = combination
        self.output = output

    @property
    def feature_names(self) -> Tuple[str, ...]:
        """The names of the columns of points: discrete inputs first."""
        model = self._required_model()
        fixed = self.combination or {}
        free = [parameter.name for parameter in model.discrete if parameter.name not in fixed]
        return (*free, *(parameter.name for parameter in model.inputs))

    def fit(self, X: Any, y: Any = None, sample_weight: Any = None) -> "Surrogate":
        """Checks the shapes and numbers of its arguments. Learns nothing."""
        table = self._table(X)
        if y is not None:
            check_X_y(table, y, multi_output=not self._has_one_output(), y_numeric=True)
        if sample_weight is not None and np.asarray(sample_weight).shape != (len(table),):
            raise ValueError(f"sample_weight has to have the shape ({len(table)},)")
        self.n_features_in_ = table.shape[1]
        return self

    def predict(
        self, X: Any, return_std: bool = False
    ) -> Union[np.ndarray, Tuple[np.ndarray, np.ndarray]]:
        """Values at points, and with ``return_std`` the predicted errors in the unit of the output,
        which are standard deviations if the model states these. ValueError if a point has none."""
        columns = dict(zip(self.feature_names, self._table(X).T))
        model = self._required_model()
        result = model.predict(self.combination, columns, return_error=return_std)
        if result.errors is None:
            return self._shaped(result.values)
        for name in self._outputs():
            if (result.statuses[name] != 0).any():
                raise ValueError(f"there is a point without a predicted error of {name!r}")
        return self._shaped(result.values), self._shaped(result.errors)

    def _required_model(self) -> Model:
        if not isinstance(self.model, Model):
            raise ValueError(f"model has to be a pxrom.Model, not {type(self.model).__name__}")
        return self.model

    def _outputs(self) -> List[str]:
        if self.output is None:
            return [parameter.name for parameter in self._required_model().outputs]
        return _points.names_of(self.output)

    def _has_one_output(self) -> bool:
        return isinstance(self.output, str) or self.output is None and len(self._outputs()) == 1

    def _shaped(self, columns: Columns) -> np.ndarray:
        made = np.stack([columns[name] for name in self._outputs()], axis=1)
        return made[:, 0] if self._has_one_output() else made

    def _table(self, X: Any) -> np.ndarray:
        names = self.feature_names
        if _points.is_frame(X) and any(isinstance(column, str) for column in X.columns):
            return check_array(_points.table(X, names), input_name="X")
        table = check_array(X, input_name="X")
        if table.shape[1] != len(names):
            raise ValueError(
                f"X has {table.shape[1]} features, but Surrogate is expecting {len(names)} features "
                f"as input: {', '.join(names)}"
            )
        return table

    def __sklearn_is_fitted__(self) -> bool:
        return True

    def _more_tags(self) -> Mapping[str, Any]:
        return {
            "requires_fit": False,
            "poor_score": True,
            "_xfail_checks": {"check_fit_check_is_fitted": "the model was fitted before"},
        }

    def __sklearn_tags__(self) -> Any:
        tags = super().__sklearn_tags__()
        tags.requires_fit = False
        tags.regressor_tags.poor_score = True
        return tags
