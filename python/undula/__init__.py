"""Wavelets: a function pack and its Python host.

Every function of the pack is a function of this module. Arguments are given by position or by name,
wavelets as filters or by name:

>>> import undula
>>> x = [3, 1, 4, 1, 5, 9, 2, 6]
>>> y = undula.dwt(x, level=2, wavelet="daublet4")
>>> undula.idwt(y, 2, undula.daublet(4)).round(12)
array([3., 1., 4., 1., 5., 9., 2., 6.])

`undula.wavelets()` lists the wavelets that have names; `python3 -m undula` lists the functions.

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

A refused call raises `undula.Error`, which names the function, the message and the argument; notes
say what would be right. What is computed, but is probably not what was meant, is an
`undula.UndulaWarning`.

Many points at once
-------------------
Where a function whose result is a real number takes a scalar, an array may stand. The function is
called for each element, in C++; several arrays are broadcast against each other:

>>> undula.father([-0.5, 0.0, 0.5], "haar").round(12)
array([0., 1., 1.])

Helpers
-------
`denoise` takes noise out of a signal or an image, `levels` gives the parts of a transform as views, `pad`
makes lengths that can be halved. `undula.thresholding` has thresholds, `undula.costs` costs for
`best_basis`, and `undula.plot` pictures.
"""

from undula import _functions, _host, costs, plot, thresholding
from undula._batches import transform_nd
from undula._denoise import denoise
from undula._errors import ArgumentCountError, ArithmeticFault, Error, OutOfMemoryError
from undula._evaluate import evaluate
from undula._levels import levels
from undula._padding import pad
from undula._warnings import UndulaWarning
from undula._wavelets import Wavelet, wavelets

__version__ = _host.__version__

_loaded = _functions.load_functions()
globals().update(_loaded)

_public = [
    ArgumentCountError,
    ArithmeticFault,
    Error,
    OutOfMemoryError,
    UndulaWarning,
    Wavelet,
    denoise,
    evaluate,
    levels,
    pad,
    transform_nd,
    wavelets,
    *_loaded.values(),
]
for _one in _public:
    _one.__module__ = __name__  # the name under which users know it

__all__ = [*(_one.__name__ for _one in _public), "costs", "plot", "thresholding"]
