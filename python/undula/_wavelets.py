"""The wavelets that have names, here and in PyWavelets."""

import re
from dataclasses import dataclass

# The pack's spellings, and what the number in them says: the number of coefficients but for the splines.
# The first spelling is the one that is shown.
_DAUBLET = ("daublet", "daub", "d")
_SYMMLET = ("symmlet", "symm", "s")
_COIFLET = ("coiflet", "coif", "c")
_BSPLINE = ("Bspline", "bs")

PAIRS = ((1, 1), (1, 3), (1, 5), (2, 2), (2, 4), (2, 6), (2, 8), (3, 1), (3, 3), (3, 5), (3, 7), (3, 9))


@dataclass(frozen=True)
class Wavelet:
    """A wavelet with a name.

    Attributes
    ----------
    name : str
        The name that is shown; every function that wants a wavelet takes it.
    function : str
        The function of the pack that returns the filter.
    arguments : tuple of int
        Its arguments.
    taps : tuple of int
        The number of coefficients of the analysis and of the synthesis low-pass filter.
    moments : tuple of int
        Vanishing moments of the analysis and of the synthesis wavelet.
    symmetric : bool
        Whether the filters are symmetric.
    boundaries : tuple of str
        The treatments of the ends that take it: periodic (`dwt`), symmetric (`dwts`), interval (`dwti`).
    pywavelets : str
        Its name in PyWavelets; empty if it is not there.
    aliases : tuple of str
        Shorter names that the pack has for it.
    """

    name: str
    function: str
    arguments: tuple[int, ...]
    taps: tuple[int, int]
    moments: tuple[int, int]
    symmetric: bool
    boundaries: tuple[str, ...]
    pywavelets: str
    aliases: tuple[str, ...]

    def names(self) -> tuple[str, ...]:
        """All names that mean it."""
        return (self.name, *self.aliases, self.pywavelets) if self.pywavelets else (self.name, *self.aliases)


class Wavelets(list[Wavelet]):
    """A list that is shown as a table."""

    def __repr__(self):
        rows = [("name", "taps", "moments", "symmetric", "boundaries", "PyWavelets", "also")]
        rows += [
            (
                wavelet.name,
                _pair(wavelet.taps),
                _pair(wavelet.moments),
                "yes" if wavelet.symmetric else "no",
                ", ".join(wavelet.boundaries),
                wavelet.pywavelets or "-",
                ", ".join(wavelet.aliases),
            )
            for wavelet in self
        ]
        widths = [max(map(len, column)) for column in zip(*rows)]
        return "\n".join("  ".join(map(str.ljust, row, widths)).rstrip() for row in rows)


def _pair(numbers):
    return "/".join(map(str, dict.fromkeys(numbers)))


def wavelets() -> Wavelets:
    """The wavelets that have names.

    Where a function wants a wavelet, any of these names may stand instead of a filter. `pywavelets`
    is the name of the same wavelet there, which is taken too.

    Returns
    -------
    list of Wavelet
        Plain records; the list prints as a table.

    Examples
    --------
    >>> [wavelet.name for wavelet in undula.wavelets() if "interval" in wavelet.boundaries][:4]
    ['daublet4', 'daublet6', 'symmlet4', 'symmlet6']
    >>> undula.wavelets()[1].pywavelets
    'db2'
    """
    return Wavelets([*_daublets(), *_symmlets(), *_coiflets(), *_splines(), *_orthonormal_splines()])


def _orthonormal(spellings, length, moments, pywavelets, more=(), aliases=(), symmetric=False):
    names = [f"{spelling}{length}" for spelling in spellings]
    return Wavelet(
        names[0],
        spellings[0],
        (length,),
        (length, length),
        (moments, moments),
        symmetric,
        ("periodic", *more),
        pywavelets,
        (*names[1:], *aliases),
    )


def _daublets():
    yield _orthonormal(_DAUBLET, 2, 1, "db1", ("symmetric",), ("haar",), symmetric=True)
    for length in range(4, 21, 2):
        more = ("interval",) if length <= 6 else ()
        yield _orthonormal(_DAUBLET, length, length // 2, f"db{length // 2}", more)


def _symmlets():
    for length in range(4, 21, 2):
        more = ("interval",) if length <= 16 else ()
        yield _orthonormal(_SYMMLET, length, length // 2, f"sym{length // 2}", more)


def _coiflets():
    for length in range(6, 31, 6):
        yield _orthonormal(_COIFLET, length, length // 3, f"coif{length // 6}")


def _splines():
    for m, n in PAIRS:
        yield Wavelet(
            f"Bspline{m}{n}",
            "Bspline",
            (m, n),
            (2 * n + m - 1, m + 1),
            (m, n),
            True,
            ("periodic", "symmetric"),
            f"bior{m}.{n}",
            (f"bs{m}{n}",),
        )


def _orthonormal_splines():
    for degree in range(7):
        length = 40 - degree % 2
        boundaries = ("periodic", "symmetric")
        moments = (degree + 1, degree + 1)
        yield Wavelet(f"bl{degree}", "bl", (degree,), (length, length), moments, True, boundaries, "", ())


def function_of(name):
    """The function of the pack that returns the filter of that name, and its arguments.

    None when the text is no name. The number may be one that the family does not have: then the
    function says so.
    """
    if name == "haar":
        return "daublet", (2,)
    parts = re.fullmatch(r"([A-Za-z]+)(\d+)(?:\.(\d+))?", name, re.ASCII)
    if not parts:
        return None
    letters, digits, second = parts[1], parts[2], parts[3]
    if letters == "bior":
        return ("Bspline", (int(digits), int(second))) if second else None
    if second:
        return None
    if letters in _BSPLINE:
        return ("Bspline", (int(digits[0]), int(digits[1]))) if len(digits) == 2 else None
    return _family(letters, int(digits))


def _family(letters, number):
    if letters in _DAUBLET:
        return "daublet", (number,)
    if letters in _SYMMLET:
        return "symmlet", (number,)
    if letters == "coif" and 1 <= number <= 5:  # orders elsewhere; no coiflet is that short
        return "coiflet", (6 * number,)
    if letters in _COIFLET:
        return "coiflet", (number,)
    if letters == "bl":
        return "bl", (number,)
    if letters in ("db", "sym"):
        return {"db": "daublet", "sym": "symmlet"}[letters], (2 * number,)
    return None


# The pack's names for those that only PyWavelets has.
PACK_NAMES = {wavelet.pywavelets: wavelet.name for wavelet in wavelets() if wavelet.pywavelets}
