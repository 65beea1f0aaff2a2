"""The results of a prediction."""

from typing import Any, Dict, FrozenSet, Iterator, List, Mapping, Optional, Tuple

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


class Prediction:
    """Results of one call of :meth:`Model.predict`, at n points for m outputs and d inputs.

    Attributes:
        outputs: the m names, in the order of the columns.
        inputs: the d names, in the order of the last axis of gradients.
        values: :class:`Columns` of the shape (n, m). NaN where the status is 1.
        errors: the same for predicted errors, NaN where there is none; ``None`` unless asked for.
        statuses: integers (n, m): 0 success; -2 the value is valid, and there is no predicted
            error; 1 there is no value. Without errors there is no -2.
        gradients: (n, m, d), the derivative of output j with respect to input k at point i in
            physical units, NaN where there is none; ``None`` unless asked for.
        scaled_errors: the outputs whose error is **not in their unit**: the surface reports it in
            its own scaled space. Errors from cross-validation are in the unit.
    """

    def __init__(
        self,
        outputs: Tuple[str, ...],
        inputs: Tuple[str, ...],
        values: np.ndarray,
        errors: Optional[np.ndarray],
        statuses: np.ndarray,
        gradients: Optional[np.ndarray],
        scaled_errors: FrozenSet[str],
        index: Any = None,
    ) -> None:
        self.outputs = outputs
        self.inputs = inputs
        self.values = Columns(outputs, values)
        self.errors = None if errors is None else Columns(outputs, errors)
        self.statuses = Columns(outputs, statuses)
        self.gradients = None if gradients is None else Columns(outputs, gradients)
        self.scaled_errors = scaled_errors
        self._index = index

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
