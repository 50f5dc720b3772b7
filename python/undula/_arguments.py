"""What Python does with arguments before the pack sees them.

A preparation returns the row of the pack to be called, its arguments and their names.
"""

import numpy as np

from undula import _host, costs
from undula._binding import without_trailing_nones
from undula._remedies import refusal
from undula._warnings import warn
from undula._wavelets import PACK_NAMES

# The packets that are the scaling function and the wavelets, and in the plane their products.
_PACKETS = {"father": 0, "mother": 1}
_PRODUCTS = {"H": (1, 0), "V": (0, 1), "D": (1, 1)}
_COSTS = {name: getattr(costs, name) for name in ("shannon", "l1", "log_energy")}


def preparation(description, rows, filters):
    """How a function prepares its arguments, and what it does after a call that has succeeded."""
    row = rows[description.name]
    types = {argument.name: argument.type or argument.kind for argument in description.arguments}
    if types.get("wavelet") == "array":
        return _with_filter(description, row, filters)
    if types.get("wavelet") == "string":
        return _with_name(description, rows, filters)
    names_of = {len(form): form for form in description.forms}
    if any(argument.kind == "function" for argument in description.arguments):
        return _with_function(description, row), _AFTERWARDS.get(description.name)
    return lambda args: (row, args, names_of[len(args)]), _AFTERWARDS.get(description.name)


def _with_filter(description, row, filters):
    names_of = {len(form): form for form in description.forms}
    needed = min(names_of)
    place = needed - 1
    named, seen = filters.named, filters.seen

    def prepare(args):
        if len(args) > needed:
            args = without_trailing_nones(description, args)
        wavelet = args[place]
        if isinstance(wavelet, str):
            filter = named.get(wavelet)
            if filter is None:
                filter = _load(description, filters, place, args)
            args = args[:place] + (filter,) + args[needed:]
        return row, args, names_of[len(args)]

    def finish(args):
        if id(args[place]) not in seen or len(args) > needed:
            filters.look_at(args[place], args[needed:])

    return prepare, finish


def _load(description, filters, place, args):
    made = filters.load(args[place])
    if isinstance(made, str):
        raise refusal(description, made, place + 1, args)
    return made


def _with_name(description, rows, filters):
    """A filter stands for the packets that the functions of a wavelet are."""
    row = rows[description.name]
    names_of = {len(form): form for form in description.forms}
    place_of = {count: names.index("wavelet") for count, names in names_of.items()}
    packets = rows[_packet_function(description.name)]

    def prepare(args):
        names, place = names_of[len(args)], place_of[len(args)]
        wavelet = args[place]
        if isinstance(wavelet, str):
            if wavelet in PACK_NAMES:
                args = args[:place] + (PACK_NAMES[wavelet],) + args[place + 1 :]
            return row, args, names
        if not isinstance(wavelet, (list, tuple)) and not hasattr(wavelet, "__array__"):
            return row, args, names
        given = dict(zip(names, args))
        indices = _packet_indices(description.name, given)
        if indices is None:  # the pack refuses the type, whatever the wavelet
            return row, (*args[:place], "haar", *args[place + 1 :]), names
        names, args = _as_packet(given, indices)
        return packets, args, names

    def finish(args):
        wavelet = args[-1]
        if isinstance(wavelet, (list, tuple, np.ndarray)) and id(wavelet) not in filters.seen:
            filters.look_at(wavelet, ())

    return prepare, finish


def _packet_function(name):
    return ("dl" if name.startswith("dl") else "") + ("wavelet2d" if name.endswith("2d") else "wavelet")


def _packet_indices(name, given):
    """The indices of the packets by name; None when the type of a wavelet in the plane is none."""
    base = name.removeprefix("dl").removesuffix("2d")
    if not name.endswith("2d"):
        return {"index": _PACKETS[base]}
    if base == "father":
        return {"index_x": 0, "index_y": 0}
    kind = given["type"]
    if not isinstance(kind, str) or kind not in _PRODUCTS:
        return None
    return dict(zip(("index_x", "index_y"), _PRODUCTS[kind]))


def _as_packet(given, indices):
    points = {name: given[name] for name in ("x", "y") if name in given}
    shifts = ("shift_x", "shift_y") if "y" in given else ("shift",)
    places = {name: given.get(name, 0) for name in ("level", *shifts)}
    all = points | places | indices | {"wavelet": given["wavelet"]}
    return tuple(all), tuple(all.values())


def _with_function(description, row):
    """Whatever can be called is a function there, be it a number or a sequence as well."""
    (names,) = description.forms
    place = next(i for i, name in enumerate(names) if description.kind_of(name) == "function")
    wants_number = description.argument(names[place]).type == "number function"

    def prepare(args):
        function = args[place]
        if isinstance(function, str) and names[place] == "cost":
            function = _COSTS.get(function, function)
            args = (*args[:place], function, *args[place + 1 :])
        if callable(function) and type(function).__module__ != _host.__name__:
            args = (*args[:place], _host.UserFunction(function, wants_number), *args[place + 1 :])
        return row, args, names

    return prepare


def _after_best_basis(args):
    if isinstance(args[1], _host.UserFunction) and args[1].met_nan:
        warn("best_basis: the cost of some coefficient is NaN, and a packet that holds one never wins")


def _after_inverse_cosines(args):
    """Where blocks of different sizes meet, foldings do not commute."""
    data, _, basis = args[:3]
    if np.ndim(data) != 2 or np.shape(data)[1] == 1:
        return
    levels = np.asarray(basis)[:, 0]
    if levels.min() != levels.max():
        warn(
            "the blocks of the basis are of several sizes, so the image comes back with errors of some "
            "per cent where they meet; a basis of one level restores it"
        )


_AFTERWARDS = {
    "best_basis": _after_best_basis,
    "icpt": _after_inverse_cosines,
    "ilct": _after_inverse_cosines,
}
