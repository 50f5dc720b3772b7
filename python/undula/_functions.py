"""The functions of the pack as functions of Python."""

from pathlib import Path

from undula import _host
from undula._descriptions import read_descriptions
from undula._errors import error_for
from undula._evaluate import at_points

LIBRARY = Path(_host.__file__).parents[2] / "lib" / "libundula.so"


def load_functions():
    """Loads the pack. Returns all its functions and the names of those that are described."""
    descriptions = read_descriptions()
    rows = _host.load(str(LIBRARY))
    functions = {row.name: _function(row, descriptions.get(row.name)) for row in rows}
    return functions, [name for name in descriptions if name in functions]


def _function(row, description):
    name, count = row.name, row.arity
    names_of = description.argument_names if description else lambda _: ()
    kinds = {argument.name: argument.kind for argument in description.arguments} if description else {}

    def kinds_of(names):
        return tuple(kinds[each] for each in names)

    has_points = description is not None and description.result.kind == "scalar"

    def function(*args):
        if count is not None and len(args) != count:
            raise TypeError(_count_message(name, count, len(args)))
        names = names_of(len(args))
        if has_points:
            scalars = [place for place, kind in enumerate(kinds_of(names)) if kind == "scalar"]
            values = at_points(row, names, args, scalars)
            if values is not None:
                return values
        outcome = row.call(args, names, kinds_of(names))
        if isinstance(outcome, _host.ErrorValue):
            raise error_for(name, outcome.message, outcome.argument, names)
        return outcome

    function.__name__ = function.__qualname__ = name
    function.__module__ = "undula"
    function._row, function._description = row, description
    if description:
        function.__doc__ = description.docstring()
        function.__signature__ = description.signature()
    else:
        function.__doc__ = f"Takes {'a varying number of' if count is None else count} arguments."
    return function


def _count_message(name, count, given):
    arguments = "argument" if count == 1 else "arguments"
    were = "was" if given == 1 else "were"
    return f"{name}() takes {count} positional {arguments} but {given} {were} given"
