"""Random calls with the results of the native library, for compare_calls.mjs, as JSON.

    python3 compare_calls.py [CALLS [SEED]]

The calls are made as JavaScript makes them: by the pack itself, without what Python does to arguments.
"""

import json
import sys

import numpy as np
import undula
from random_calls import FUNCTIONS, Drawing, bits
from undula import _host

FILTERS = [undula.daublet(4), undula.symmlet(8), undula.coiflet(6), undula.Bspline(2, 2)]


class RawDrawing(Drawing):
    """A wavelet is a filter, not a name; now and then the data is so large that its sums are not finite.

    A filter of `bl` is known to be one only where it was computed, so that of another program is left out.
    """

    def __init__(self, seed):
        super().__init__(seed)
        self.described["wavelet"] = [each for each in self.described["wavelet"] if np.size(each) != undula.bl(3).size]

    def argument(self, argument, shape):
        value = super().argument(argument, shape)
        is_name = argument.name == "wavelet" and isinstance(value, str)
        if is_name and argument.kind != "string" and self.random.random() < 0.9:
            return self.one_of(FILTERS)
        if argument.name == "data" and not isinstance(value, str) and self.random.random() < 0.05:
            return np.clip(value, -1.9, 1.9) * 2.0**1023
        return value


def encoded(value):
    if isinstance(value, str):
        return {"function": value} if value in FUNCTIONS else {"text": value}
    array = np.asarray(value) if not isinstance(value, list) else np.array([None, *value], object)[1:]
    if array.dtype == object:
        return {"table": [encoded(part) for part in array.ravel(order="F")]}
    rows, cols = {0: (1, 1), 1: (array.size, 1)}.get(array.ndim, array.shape)
    im = bits(array.imag) if np.iscomplexobj(array) else None
    return {"scalar": array.ndim == 0, "rows": rows, "cols": cols, "re": bits(array.real), "im": im}


def outcome(row, form, arguments):
    ready = tuple(FUNCTIONS.get(part, part) if isinstance(part, str) else part for part in arguments)
    result = row.call(ready, form)
    if isinstance(result, _host.ErrorValue):
        return {"error": result.message, "argument": result.argument}
    return encoded(result)


def main(count=500, seed=1):
    rows = {row.name: row for row in _host.load()}
    drawing = RawDrawing(seed)
    calls = []
    while len(calls) < count:
        description, form, arguments = drawing.call()
        try:
            expected = outcome(rows[description.name], form, arguments)
        except TypeError:  # Python's own, of what it cannot hand to the pack or take from a user's function
            continue
        calls.append({"name": description.name, "arguments": [encoded(each) for each in arguments],
                      "expected": expected})
    json.dump(calls, sys.stdout)


if __name__ == "__main__":
    main(*map(int, sys.argv[1:]))
