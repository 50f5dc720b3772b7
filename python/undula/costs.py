"""Costs of coefficients, which `best_basis` adds up.

Each is a function of a number or of an array of numbers. Handed to `best_basis` it is computed in C++,
without a call of Python for each coefficient.

shannon
    -x^2 ln x^2, and 0 at 0: the entropy of Coifman and Wickerhauser (1992). Scaled data has the same
    best basis as long as the filter is orthonormal, so there is no need to scale it to unit energy.
l1
    The magnitude.
log_energy
    ln x^2. Below the smallest normal number, 2.2e-308, it is the cost of that number, so zeros are cheap.
count_above(threshold)
    1 above the threshold in magnitude, else 0: how many coefficients would be kept.
clipped_energy(threshold)
    The lesser of x^2 and threshold^2: what a coefficient costs if leaving it out costs its square and
    keeping it the square of the threshold.

`best_basis` takes the names of the first three too, as texts.

NaN costs NaN, and no packet with such a cost is preferred to its children.

>>> undula.costs.l1(-2), undula.costs.l1([-2, 0, 1])
(2.0, array([2., 0., 1.]))
>>> table = undula.wpt([8, 8, 8, 8, 1, 9, 1, 9], 2, undula.daublet(2))
>>> undula.best_basis(table, undula.costs.shannon)
array([[2., 0.],
       [2., 1.],
       [2., 2.],
       [2., 3.]])
"""

from undula import _host
from undula._numbers import not_negative

__all__ = ["shannon", "l1", "log_energy", "count_above", "clipped_energy"]

shannon = _host.cost("shannon")
l1 = _host.cost("l1")
log_energy = _host.cost("log_energy")


def _cost(name, threshold):
    """A cost that was pickled."""
    return _host.cost(name, threshold)


def count_above(threshold: float) -> _host.Cost:
    """The cost that counts coefficients above a threshold in magnitude.

    Examples
    --------
    >>> undula.costs.count_above(1)([-2, 0.5, 1, 3])
    array([1., 0., 0., 1.])
    """
    return _host.cost("count_above", not_negative("count_above", "threshold", threshold))


def clipped_energy(threshold: float) -> _host.Cost:
    """The cost min(x^2, threshold^2).

    Examples
    --------
    >>> undula.costs.clipped_energy(2)([-3, 1])
    array([4., 1.])
    """
    return _host.cost("clipped_energy", not_negative("clipped_energy", "threshold", threshold))
