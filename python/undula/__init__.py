"""Wavelets: a function pack and its Python host.

Every function of the pack is a function of this module and takes positional arguments:

>>> import undula
>>> x = [3, 1, 4, 1, 5, 9, 2, 6]
>>> w = undula.daublet(4)
>>> undula.idwt(undula.dwt(x, 2, w), 2, w).round(12)
array([3., 1., 4., 1., 5., 9., 2., 6.])

What arrives as what
--------------------
A number is a scalar. A 1-D array or a sequence of numbers is a column; a 2-D array of any memory
order and numeric dtype, or a sequence of equally long sequences of numbers, is a matrix. A list or
tuple of arrays is a column of nested arrays, such as a packet table, and a 2-D object array a
matrix whose cells may be nested. A str is a string, any other callable a function. Arguments are
never modified.

A scalar comes back as a float, a column as a 1-D array, another matrix as a 2-D array, a column of
nested arrays as a list; with an imaginary part that is not zero, numbers are complex. A function
that is called back receives its arguments in the same way, and may return whatever may be an argument;
what it raises is raised by the call.

A refused call raises `undula.Error`, which names the function, the message and the argument.

Many points at once
-------------------
`undula.evaluate` calls a function for each element of arrays, in C++:

>>> undula.evaluate(undula.father, [-0.5, 0.0, 0.5], "haar").round(12)
array([0., 1., 1.])

Helpers
-------
`denoise` takes noise out of a signal or an image, `levels` gives the parts of a transform as views, `pad`
makes lengths that can be halved. `undula.thresholding` has thresholds, `undula.costs` costs for
`best_basis`, and `undula.plot` pictures.
"""

from undula import _functions, _host, costs, plot, thresholding
from undula._denoise import denoise
from undula._errors import ArithmeticFault, Error, OutOfMemoryError
from undula._evaluate import evaluate
from undula._levels import levels
from undula._padding import pad

for _kind in (Error, OutOfMemoryError, ArithmeticFault):
    _kind.__module__ = __name__  # the name under which users know it

__version__ = _host.__version__

_loaded, _described = _functions.load_functions()
globals().update(_loaded)

_helpers = (evaluate, denoise, levels, pad)
for _helper in _helpers:
    _helper.__module__ = __name__

__all__ = [
    "Error",
    "OutOfMemoryError",
    "ArithmeticFault",
    *(_helper.__name__ for _helper in _helpers),
    "costs",
    "plot",
    "thresholding",
    *_described,
]
