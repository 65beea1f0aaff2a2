"""The results of a prediction."""

from typing import (
    Any,
    Callable,
    Dict,
    FrozenSet,
    Iterator,
    List,
    Mapping,
    NamedTuple,
    Optional,
    Tuple,
)

import numpy as np

from . import _html
from ._wording import did_you_mean, visible


class Columns(Mapping[str, np.ndarray]):
    """A table of results by output name.

    ``columns["mass"]`` is the column of one output, ``columns.array`` the whole table with outputs
    as its second axis; ``numpy.asarray(columns)`` gives the same. Nothing is copied.
    """

    def __init__(self, names: Tuple[str, ...], array: np.ndarray) -> None:
        self._names = names
        self._places = {name: place for place, name in enumerate(names)}
        self.array = array

    def __getitem__(self, name: str) -> np.ndarray:
        try:
            return self.array[:, self._places[name]]
        except KeyError:
            raise KeyError(
                f"there is no output {name!r}{did_you_mean(name, self._names)}"
            ) from None

    def __iter__(self) -> Iterator[str]:
        return iter(self._names)

    def __len__(self) -> int:
        return len(self._names)

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> np.ndarray:
        if copy:
            return np.array(self.array, dtype=dtype)
        return np.asarray(self.array, dtype=dtype)

    def __repr__(self) -> str:
        return visible(f"Columns({', '.join(self._names)}; shape {self.array.shape})")


def _columns_or_none(outputs: Tuple[str, ...], array: Optional[np.ndarray]) -> Optional[Columns]:
    return None if array is None else Columns(outputs, array)


class Located(NamedTuple):
    """Where points are relative to samples; see :class:`Prediction`."""

    inside: np.ndarray
    distance: np.ndarray
    sides: np.ndarray


class Prediction:
    """Results of one call of :meth:`Model.predict`, at n points for m outputs and d inputs.

    Attributes:
        outputs: the m names, in the order of the columns.
        inputs: the d names, in the order of the last axis of gradients.
        values: :class:`Columns` of the shape (n, m). NaN where the status is 1.
        errors: the same for predicted errors, in the unit of the output and never negative, NaN
            for a missing error; ``None`` unless asked for, and so are the next four.
        lower: the lower end of the interval that the error means: value minus error, unless the
            surface transforms the output, which makes the interval skewed.
        upper: the upper end.
        raw_errors: the errors as the surfaces report them.
        error_origin: by output whose error it is: "cross-validation"; "all surfaces" of the
            ensemble; "surface 2 of 3", which is **not that of the ensemble**, since the others
            report none; or "none". ", first order" follows if the error went through an output
            transformation by its derivative.
        statuses: integers (n, m): 0 success; -2 the value is valid, and there is no predicted
            error; 1 there is no value. Without errors there is no -2.
        gradients: (n, m, d), the derivative of output j with respect to input k at point i in
            physical units, NaN where it does not exist; ``None`` unless asked for.
        scaled_errors: the outputs whose raw error is in a scaled space, that of its ensemble or
            surface. Those from cross-validation are in the unit.
        inside: booleans (n, m), whether all inputs are within the range of the samples that the
            output was fitted to. Bounds of the inputs play no role. Where the database keeps no
            samples it is False, and the distance is NaN.
        distance: the distance to the nearest sample (n, m), in units of the typical spacing: the
            median distance of a sample to its nearest neighbour, with inputs scaled by the ranges
            of the samples. Far above 1 the model has little to go by, also inside.
        sides: integers (n, m, d): -1 where an input is below the range of the samples, 1 where it
            is above, else 0.

    ``inside``, ``distance`` and ``sides`` are computed when they are first asked for.
    """

    def __init__(
        self,
        outputs: Tuple[str, ...],
        inputs: Tuple[str, ...],
        values: np.ndarray,
        statuses: np.ndarray,
        errors: Optional[np.ndarray],
        lower: Optional[np.ndarray],
        upper: Optional[np.ndarray],
        raw_errors: Optional[np.ndarray],
        gradients: Optional[np.ndarray],
        scaled_errors: FrozenSet[str],
        error_origin: Optional[Dict[str, str]],
        locate: Callable[[], Located],
        index: Any = None,
    ) -> None:
        self.outputs = outputs
        self.inputs = inputs
        self.values = Columns(outputs, values)
        self.errors = _columns_or_none(outputs, errors)
        self.lower = _columns_or_none(outputs, lower)
        self.upper = _columns_or_none(outputs, upper)
        self.raw_errors = _columns_or_none(outputs, raw_errors)
        self.statuses = Columns(outputs, statuses)
        self.gradients = _columns_or_none(outputs, gradients)
        self.scaled_errors = scaled_errors
        self.error_origin = error_origin
        self._locate: Optional[Callable[[], Located]] = locate
        self._located: Optional[Located] = None
        self._index = index

    @property
    def inside(self) -> Columns:
        return Columns(self.outputs, self._locations().inside)

    @property
    def distance(self) -> Columns:
        return Columns(self.outputs, self._locations().distance)

    @property
    def sides(self) -> Columns:
        return Columns(self.outputs, self._locations().sides)

    def _locations(self) -> Located:
        if self._located is None:
            assert self._locate is not None
            self._located = self._locate()
            self._locate = None  # with the points
        return self._located

    def __getstate__(self) -> Dict[str, Any]:
        self._locations()
        return dict(self.__dict__)

    def __len__(self) -> int:
        """The number of points."""
        return len(self.values.array)

    def __getitem__(self, output: str) -> np.ndarray:
        """The values of one output: ``prediction["mass"]``, of the shape (n,)."""
        return self.values[output]

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> np.ndarray:
        """The values (n, m), for ``numpy.asarray(prediction)``."""
        return self.values.__array__(dtype, copy)

    def __iter__(self) -> Iterator[Dict[str, float]]:
        """The values by output name, point after point."""
        for row in self.values.array.tolist():
            yield dict(zip(self.outputs, row))

    def frame(self) -> Any:
        """A pandas frame: the outputs by name, then ``"<output> error"`` and
        ``"d<output>/d<input>"`` if they were asked for. It has the index of the frame of
        points, if they were a frame."""
        import pandas

        return pandas.DataFrame(dict(self._columns()), index=self._index)

    def _columns(self) -> List[Tuple[str, np.ndarray]]:
        columns = list(self.values.items())
        if self.errors is not None:
            columns += [(f"{name} error", self.errors[name]) for name in self.outputs]
        if self.gradients is not None:
            for name in self.outputs:
                for place, by in enumerate(self.inputs):
                    columns.append((f"d{name}/d{by}", self.gradients[name][:, place]))
        return columns

    def __repr__(self) -> str:
        asked = [word for word in ("errors", "gradients") if getattr(self, word) is not None]
        extra = f" with {' and '.join(asked)}" if asked else ""
        return visible(f"<Prediction of {', '.join(self.outputs)} at {len(self)} point(s){extra}>")

    def _repr_html_(self) -> str:
        shown = 12
        columns = self._columns()
        rows = [
            [f"{values[row]:.6g}" for _, values in columns] for row in range(min(shown, len(self)))
        ]
        caption = repr(self)[1:-1]
        if len(self) > shown:
            caption += f", the first {shown}"
        return _html.table([name for name, _ in columns], rows, caption)
