"""Random calls of the functions, for hosts that are compared with each other.

Arguments are drawn by what the descriptions say of them, now and then from the calls there that provoke errors.
"""

import numpy as np
import undula
from undula._descriptions import read_descriptions

DESCRIPTIONS = list(read_descriptions().values())
FUNCTIONS = {
    "@abs": np.abs,
    "@(p) 2 * p": lambda p: 2 * p,
    "@(p) p(1)": lambda p: np.asarray(p).ravel()[0],
    "@(p) 'text'": lambda p: "text",
    "@(p) p .* p": lambda p: p * p,
}
NAMES = ["haar", "s8", "daub4", "db3", "bs22", "bior2.4", "c6", "coif2", "bl3", "nothing", "d5", ""]
SCALARS = [-1, 0, 1, 2, 3, 0.25, 1.5, np.nan, np.inf, 2.0**40, 1 + 1j]
ARRAY_LIKE = {"array", "vector"}


def given_by_errors():
    """Values that arguments have in the described calls, by their names."""
    found = {}
    for description in DESCRIPTIONS:
        lists = vars(undula) | {"np": np, description.name: lambda *arguments: arguments}
        for error in description.errors:
            arguments = eval(error.call, lists) if error.call else ()
            for name, value in zip(description.argument_names(len(arguments)), arguments):
                if not callable(value):
                    found.setdefault(name, []).append(value)
    return found


class Drawing:
    def __init__(self, seed):
        self.random = np.random.default_rng(seed)
        self.described = given_by_errors()

    def one_of(self, items):
        return items[self.random.integers(len(items))]

    def call(self):
        description = self.one_of(DESCRIPTIONS)
        form = self.one_of(description.forms)
        side = int(self.one_of([5, 8, 16, 48]))
        is_image = "2d" in description.name or self.random.random() < 0.2
        shape = (side, int(self.one_of([2, 4, 8]))) if is_image else (side,)
        return description, form, [self.argument(description.argument(name), shape) for name in form]

    def argument(self, argument, shape):
        kind = argument.type or argument.kind
        if self.random.random() < 0.06:
            if argument.name in self.described:
                return plain(self.one_of(self.described[argument.name]), argument)
            return plain(self.one_of([1.0, "text", np.arange(4.0)]), argument)
        if kind.endswith("function"):
            return self.one_of(list(FUNCTIONS))
        if kind == "table":
            level = self.random.integers(min(min(shape).bit_length(), 3))
            return undula.wpts(self.random.normal(size=shape), int(level), "haar")
        if argument.name == "wavelet":
            filters = [undula.daublet(4), undula.Bspline(2, 2)]
            return self.one_of(NAMES if self.random.random() < 0.6 else filters)
        if kind == "string":
            return self.one_of(["H", "V", "D", "X"])
        if argument.name in ("data", "subband"):
            return plain(self.random.normal(size=shape), argument)
        if kind == "array":
            return undula.create_level(int(self.random.integers(2)), len(shape))
        if argument.name in ("offsets", "flips"):
            return float(self.random.integers(2))
        return self.one_of(SCALARS) if self.random.random() < 0.08 else float(self.random.integers(2))


def plain(value, argument):
    """A value that both have: in Octave an array of one number is a number, and a row is a signal."""
    if isinstance(value, str):
        return value
    if isinstance(value, list) and value and all(np.ndim(part) for part in value) and argument.name == "table":
        return [np.asarray(part) for part in value]
    value = np.asarray(value)
    if value.size == 1:
        number = complex(value.ravel()[0])
        number = number if number.imag else number.real
        return np.array([number]) if argument.kind in ARRAY_LIKE else number
    is_signal = argument.name in ("data", "subband", "wavelet", "table") and value.shape[0] == 1
    return value.ravel() if is_signal else value


def bits(array):
    return np.asarray(array, ">f8").tobytes(order="F").hex()
