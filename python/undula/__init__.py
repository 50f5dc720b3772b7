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
Where a function whose result is a real number takes a scalar, an array may stand. The function is
called for each element, in C++; several arrays are broadcast against each other:

>>> undula.father([-0.5, 0.0, 0.5], "haar").round(12)
array([0., 1., 1.])
"""

from undula import _functions, _host
from undula._batches import transform_nd
from undula._errors import ArithmeticFault, Error, OutOfMemoryError
from undula._evaluate import evaluate

for _kind in (Error, OutOfMemoryError, ArithmeticFault):
    _kind.__module__ = __name__  # the name under which users know it

__version__ = _host.__version__

_loaded, _described = _functions.load_functions()
globals().update(_loaded)

evaluate.__module__ = transform_nd.__module__ = __name__

__all__ = ["Error", "OutOfMemoryError", "ArithmeticFault", "evaluate", "transform_nd", *_described]
