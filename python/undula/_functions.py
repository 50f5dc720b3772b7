"""The functions of the pack as functions of Python."""

from undula import _host
from undula._arguments import preparation
from undula._batches import apply_along
from undula._binding import binder, count_text, signature
from undula._descriptions import read_descriptions
from undula._evaluate import at_points
from undula._filters import Filters
from undula._remedies import failure

_NO_SCALARS = {"data", "wavelet", "offsets", "flips", "type"}


def load_functions():
    """Loads the pack. Returns its functions by name, in the order of their descriptions."""
    rows = {row.name: row for row in _host.load()}
    filters = Filters(rows)
    return {
        name: _function(description, rows, filters) for name, description in read_descriptions().items()
    }


def _function(description, rows, filters):
    row = rows[description.name]
    names_of = {len(form): form for form in description.forms}
    bind = binder(description)
    prepare, finish = preparation(description, rows, filters)

    takes_axis = description.takes_axis
    has_points = description.result.kind == "scalar"
    places_of = _ScalarPlaces()

    def function(*args, **named):
        axis = None
        if named:
            if takes_axis:
                axis = named.pop("axis", None)
            args = bind(args, named) if named else args
        if len(args) not in names_of:
            return _call_with_wrong_count(row, description, args)
        target, ready, names = prepare(args)
        try:
            outcome = None
            if has_points:
                places = places_of[names]
                outcome = at_points(
                    target,
                    description.name,
                    names,
                    ready,
                    places,
                    lambda e: failure(description, e, names, args),
                )
            if axis is not None:
                outcome = apply_along(
                    target, names, ready, axis, lambda e, one: failure(description, e, names, (one, *args[1:]))
                )
            elif outcome is None:
                outcome = target.call(ready, names)
        except (TypeError, ValueError):
            if target is not row:
                row.call(args, names_of[len(args)])  # refuses them under the names that the caller knows
            raise
        if type(outcome) is _host.ErrorValue:
            raise failure(description, outcome, names, args)
        if finish is not None and getattr(outcome, "size", 1):  # at no points at all, nothing was called
            finish(ready)
        return outcome

    function.__name__ = function.__qualname__ = description.name
    function.__module__ = "undula"
    function.__doc__ = description.doc
    function.__signature__ = signature(description)
    function._description, function._bind, function._prepare = description, bind, prepare
    return function


class _ScalarPlaces(dict):
    """Where scalars stand among the arguments of these names of a function of points."""

    def __missing__(self, names):
        places = [place for place, name in enumerate(names) if name not in _NO_SCALARS]
        return self.setdefault(names, places)


def _call_with_wrong_count(row, description, args):
    """Only a function that takes various numbers of arguments has words of its own for it."""
    if row.arity is None:
        raise failure(description, row.call(args, ()), (), args)
    raise TypeError(f"{row.name}() {count_text(description, len(args))}")
