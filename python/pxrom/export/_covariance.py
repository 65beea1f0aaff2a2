"""Covariance functions as sums of products, in which every tool's kernels are written here.

A factor is one function of a scaled distance, a product is a tuple of factors, and a covariance is
a sum of products with an amplitude each. White noise is kept apart, and so are kernels of the
product of two points, such as x . x': they are random coefficients of monomials.
"""

from dataclasses import dataclass, field, replace
from typing import Callable, Dict, Iterable, Tuple

import numpy as np

from ._monomials import Term
from ._surface import NotExportable

# E_CovarianceFunctionType
MATERN12, MATERN32, MATERN52, GAUSSIAN, RATIONAL, EXPONENTIAL = 1, 2, 3, 4, 5, 6
THIN_PLATE, LINEAR, CUBIC, QUINTIC, MULTIQUADRIC = 8, 9, 10, 11, 12
INVERSE_MULTIQUADRIC, INVERSE_QUADRATIC = 13, 14

MATERN = {0.5: MATERN12, 1.5: MATERN32, 2.5: MATERN52, np.inf: GAUSSIAN}

_MOST_TERMS, _LARGEST_POWER = 100, 20


def _matern32(r: np.ndarray, _: float) -> np.ndarray:
    t = np.sqrt(3.0) * r
    return np.asarray((1.0 + t) * np.exp(-t))


def _matern52(r: np.ndarray, _: float) -> np.ndarray:
    t = np.sqrt(5.0) * r
    return np.asarray((1.0 + t + t**2 / 3.0) * np.exp(-t))


# Of the scaled distance and the parameter, as gaussian_process.h defines them.
_FUNCTIONS: Dict[int, Callable[[np.ndarray, float], np.ndarray]] = {
    MATERN12: lambda r, _: np.exp(-r),
    MATERN32: _matern32,
    MATERN52: _matern52,
    GAUSSIAN: lambda r, _: np.exp(-0.5 * r**2),
    RATIONAL: lambda r, a: (1.0 + r**2 / (2.0 * a)) ** -a,
    EXPONENTIAL: lambda r, a: np.exp(-(r**a)),
    THIN_PLATE: lambda r, _: r**2 * np.log(np.where(r > 0.0, r, 1.0)),
    LINEAR: lambda r, _: -r,
    CUBIC: lambda r, _: r**3,
    QUINTIC: lambda r, _: -(r**5),
    MULTIQUADRIC: lambda r, _: -np.sqrt(1.0 + r**2),
    INVERSE_MULTIQUADRIC: lambda r, _: 1.0 / np.sqrt(1.0 + r**2),
    INVERSE_QUADRATIC: lambda r, _: 1.0 / (1.0 + r**2),
}


@dataclass(frozen=True, order=True)
class Factor:
    """``lengths`` by input; an infinite one drops the input from the distance."""

    function: int
    lengths: Tuple[float, ...]
    parameter: float = 0.0

    def values(self, away: np.ndarray) -> np.ndarray:
        """For distances per input (n, d)."""
        r = np.sqrt(((away / np.array(self.lengths)) ** 2).sum(axis=1))
        return np.asarray(_FUNCTIONS[self.function](r, self.parameter))

    def to_the(self, power: float) -> "Factor":
        """The factors of which a power is a factor of the same kind."""
        lengths = np.array(self.lengths)
        if self.function == GAUSSIAN:
            return replace(self, lengths=tuple(lengths / np.sqrt(power)))
        if self.function == MATERN12:
            return replace(self, lengths=tuple(lengths / power))
        if self.function == EXPONENTIAL:
            return replace(self, lengths=tuple(lengths / power ** (1.0 / self.parameter)))
        if self.function == RATIONAL:
            return Factor(RATIONAL, tuple(lengths / np.sqrt(power)), self.parameter * power)
        raise NotExportable(
            f"a kernel to the power {power:g} has no counterpart; whole powers have, and others of "
            "an RBF, an exponential or a RationalQuadratic"
        )


Product = Tuple[Factor, ...]


def product_values(product: Product, away: np.ndarray) -> np.ndarray:
    """For distances per input (n, d)."""
    made = np.ones(len(away))
    for factor in product:
        made = made * factor.values(away)
    return made


def per_input(function: int, lengths: Iterable[float], parameter: float = 0.0) -> Product:
    """One factor for each input: a function of the distance in it alone."""
    every = list(lengths)
    alone = [tuple(l if i == j else np.inf for j in range(len(every))) for i, l in enumerate(every)]
    return tuple(Factor(function, one, parameter) for one in alone)


def of_rates(rates: Iterable[float], powers: Iterable[float]) -> Product:
    """The product over the inputs i of exp(-rates[i] |x - x'|^powers[i])."""
    made: Product = ()
    for place, (rate, power) in enumerate(zip(rates, powers)):
        function, parameter = EXPONENTIAL, float(power)
        length = np.inf if rate == 0.0 else float(rate) ** (-1.0 / power)
        if power == 1.0:
            function, parameter = MATERN12, 0.0
        elif power == 2.0:
            function, parameter, length = GAUSSIAN, 0.0, length / np.sqrt(2.0)
        made += (Factor(function, (np.inf,) * place + (length,), parameter),)
    inputs = len(made)
    return tuple(
        replace(f, lengths=f.lengths + (np.inf,) * (inputs - len(f.lengths))) for f in made
    )


def joined(product: Product) -> Product:
    """With its Gaussian factors as one, and without the factors that take no input."""
    others = [f for f in product if f.function != GAUSSIAN and min(f.lengths) < np.inf]
    gaussian = [np.array(f.lengths) for f in product if f.function == GAUSSIAN]
    if len(gaussian) > 1:
        with np.errstate(divide="ignore"):
            gaussian = [1.0 / np.sqrt(sum(l**-2.0 for l in gaussian))]
    made = [Factor(GAUSSIAN, tuple(lengths)) for lengths in gaussian if lengths.min() < np.inf]
    return tuple(made + others)


@dataclass
class Covariance:
    """``terms``: amplitudes by product, of which the empty one is a constant. ``noise``: the
    variance of white noise. ``priors``: variances of random coefficients of monomials."""

    terms: Dict[Product, float] = field(default_factory=dict)
    noise: float = 0.0
    priors: Dict[Term, float] = field(default_factory=dict)

    @staticmethod
    def of(product: Product, amplitude: float = 1.0) -> "Covariance":
        return Covariance({product: float(amplitude)})

    @staticmethod
    def constant(value: float) -> "Covariance":
        return Covariance.of((), value)

    @property
    def variance(self) -> float:
        """Of the function itself, where no monomial adds to it."""
        return sum(self.terms.values())

    def matrix(self, X: np.ndarray) -> np.ndarray:
        """Of ``terms`` alone, at the points ``X`` (n, d)."""
        made = np.zeros((len(X), len(X)))
        for product, amplitude in self.terms.items():
            for row, point in zip(made, X):
                row += amplitude * product_values(product, np.abs(point - X))
        return made

    def plus(self, other: "Covariance") -> "Covariance":
        made = Covariance(dict(self.terms), self.noise + other.noise, dict(self.priors))
        for product, amplitude in other.terms.items():
            made.terms[product] = made.terms.get(product, 0.0) + amplitude
        for term, prior in other.priors.items():
            made.priors[term] = made.priors.get(term, 0.0) + prior
        return made

    def times(self, other: "Covariance") -> "Covariance":
        made = Covariance()
        for a, size in self.terms.items():
            for b, by in other.terms.items():
                made = made.plus(Covariance.of(tuple(sorted(a + b)), size * by))
        for one, two in ((self, other), (other, self)):
            if one.priors and (set(two.terms) - {()} or two.noise):
                raise NotExportable(
                    "a product of a DotProduct (a linear kernel) and a kernel of the distance has "
                    "no counterpart; a sum of them has"
                )
            constant = two.terms.get((), 0.0)
            if constant:
                made = made.plus(
                    Covariance(priors={t: constant * p for t, p in one.priors.items()})
                )
        for a_term, prior in self.priors.items():
            for b_term, by in other.priors.items():
                together = tuple(sorted(a_term + b_term))
                made = made.plus(Covariance(priors={together: prior * by}))
        # White noise is 0 between points, and a constant where they are the same.
        made.noise = self.noise * (other.variance + other.noise) + other.noise * self.variance
        if len(made.terms) > _MOST_TERMS:
            raise NotExportable(f"the kernel is a sum of more than {_MOST_TERMS} products")
        return made

    def to_the(self, power: float) -> "Covariance":
        is_whole = power == int(power) and 0 < power <= _LARGEST_POWER
        if len(self.terms) == 1 and not self.priors and power > 0:
            ((product, amplitude),) = self.terms.items()
            try:
                made = Covariance.of(tuple(f.to_the(power) for f in product), amplitude**power)
            except NotExportable:
                if not is_whole:
                    raise
            else:
                made.noise = (amplitude + self.noise) ** power - amplitude**power
                return made
        if not is_whole:
            raise NotExportable(
                f"a sum to the power {power:g} has no counterpart; whole powers up to "
                f"{_LARGEST_POWER} have"
            )
        made = self
        for _ in range(int(power) - 1):
            made = made.times(self)
        return made
