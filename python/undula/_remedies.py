"""What to do about an error of the pack: notes beside its text.

The pack's message says what is wrong. A note says what would be right, made from the arguments of the
call. Where no remedy is known, it says when the message is given, as the descriptions do.
"""

import difflib
import re
from dataclasses import dataclass
from numbers import Real

import numpy as np

from undula._binding import count_text
from undula._descriptions import Description
from undula._errors import error_for
from undula._wavelets import PAIRS, function_of, wavelets


@dataclass(frozen=True)
class Refused:
    """A refused call: the name of the argument at fault, and what was given, by name."""

    description: Description
    message: str
    name: str
    given: dict

    def value(self):
        return self.given.get(self.name)

    def function(self):
        return self.description.name


def failure(description, outcome, names, args):
    """The exception for an error value; `names` are those of the arguments that the pack was given."""
    own = description.argument_names(len(args))
    name = names[outcome.argument - 1] if 0 < outcome.argument <= len(names) else ""
    place = own.index(name) + 1 if name in own else 0
    return refusal(description, outcome.message, place, args)


def refusal(description, message, place, args):
    """The exception for a message about the argument at a place, 0 for the call, with its notes."""
    names = description.argument_names(len(args))
    error = error_for(description.name, message, place, names)
    name = names[place - 1] if place else ""
    for note in _notes(Refused(description, message, name, dict(zip(names, args))), len(args)):
        error.add_note(note)
    return error


def _notes(refused, count):
    if refused.message == "Wrong number of Arguments":
        return [f"{refused.function()} {count_text(refused.description, count)}"]
    found = [remedy(refused) for remedy in _REMEDIES.get(refused.message, ())]
    return [note for note in found if note] or _when(refused)


def _when(refused):
    """When the message is given, from the description; of a wrong kind, what is right."""
    cases = [
        error.when
        for error in refused.description.errors
        if (error.argument, error.message) == (refused.name, refused.message)
    ]
    if cases:
        return ["given when " + "; or when ".join(cases)]
    if refused.name:
        return [f"{refused.name} is {_kind_text(refused)}"]
    return []


_KINDS = {
    "scalar": "one number",
    "string": "a text",
    "vector": "a 1-D array",
    "array": "an array",
    "scalar or array": "a number or an array",
    "table": "a list of arrays, one for each level, such as wpt returns",
    "number function": "a function of one number",
    "packet function": "a function of one packet",
}


def _kind_text(refused):
    argument = refused.description.argument(refused.name)
    kind = _KINDS[argument.type or argument.kind]
    return f"{kind} or {_KINDS[argument.also]}" if argument.also else kind


# Wrong kinds


def _not_called(refused):
    value = refused.value()
    name = getattr(value, "__name__", "")
    if not callable(value):
        return None
    form = ", ".join(refused.given)
    if name in ("daublet", "symmlet", "coiflet", "bl", "Bspline"):
        example = {"Bspline": "Bspline(2, 4)", "bl": "bl(3)", "coiflet": "coiflet(6)"}.get(name, f"{name}(4)")
        return f"{name} is a function; did you mean what it returns, such as {example}?"
    return f"a function was given for {refused.name}; the order is {refused.function()}({form})"


def _number_for_wavelet(refused):
    value = refused.value()
    if refused.name != "wavelet" or not isinstance(value, Real):
        return None
    if f"daublet{value:g}" not in {wavelet.name for wavelet in wavelets()}:
        return "a wavelet is a filter or a name, such as 'daublet4': undula.wavelets() lists all"
    return f"did you mean daublet({value:g}), or its name 'daublet{value:g}'? undula.wavelets() lists all"


def _number_for_basis(refused):
    value = refused.value()
    if refused.name != "basis" or not isinstance(value, Real):
        return None
    dimension = 2 if len(_sides(refused.given.get("data"))) == 2 else 1
    return f"did you mean create_level({value:g}, {dimension}), all packets of that level?"


def _named_cost(refused):
    if refused.function() == "best_basis" and isinstance(refused.value(), str):
        return "the costs with a name are shannon, l1 and log_energy; undula.costs has others"
    return None


def _called_already(refused):
    if isinstance(refused.value(), (str, int, float, np.ndarray, np.generic)):
        return f"pass the function itself as {refused.name}, such as np.abs or a lambda, not what it returns"
    return None


def _expected(refused):
    kind, form = _kind_text(refused), refused.description.argument_names(len(refused.given))
    order = f"; the order is {refused.function()}({', '.join(form)})" if len(form) > 1 else ""
    return f"{refused.name} is {kind}; given was {_shown(refused.value())}{order}"


def _shown(value):
    if callable(value):
        return "a function"
    shape = _shape(value)
    if shape is None:
        return "a list of different arrays"
    return f"an array of shape {shape}" if shape else repr(value)


def _is_list(value):
    return isinstance(value, (list, tuple))


def _is_array(value):
    return _is_list(value) or np.ndim(value) > 0


def _shape(value):
    """The shape of an array or of rows of numbers; None for other lists, which may hold lists without end."""
    if not _is_list(value):
        return np.shape(value)
    if any(_is_list(row) and any(map(_is_array, row)) for row in value):
        return None
    rows = {(len(row),) if _is_list(row) else np.shape(row) for row in value}
    return None if len(rows) > 1 else (len(value), *(rows.pop() if rows else ()))


def _not_a_column(refused):
    shape = _sides(refused.value())
    if len(shape) != 2 or refused.name == "table":
        return None
    if 1 in shape:
        return f"a {shape[0]} x {shape[1]} array is a row; {refused.name}.ravel() is a column"
    name = refused.function()
    return f"for an image there is {name}2d" if name[:4] in ("get_", "put_") else None


def _not_a_table(refused):
    return "a table is a list of arrays of one shape, one for each level, such as wpt returns"


def _complex(refused):
    if refused.name not in ("data", "subband"):
        return None
    if isinstance(refused.value(), list) and any(map(_is_array, refused.value())):
        rows = f"; of rows of an image make one: np.array({refused.name})" if _shape(refused.value()) else ""
        return f"a table holds several arrays; one of them, or extract_basis(table, basis), is data{rows}"
    return f"transform {refused.name}.real and {refused.name}.imag one by one"


def _letters(refused):
    return f"{refused.name} is {refused.description.argument(refused.name).meaning}"


def _not_whole(refused):
    return None if _is_array(refused.value()) else f"{refused.name} was {refused.value()}"


# Levels


def _sides(value):
    return _shape(value) or ()


def _twos(number):
    """How often a number can be halved."""
    return (number & -number).bit_length() - 1


# The levels that sides allow: those by which they can be halved without a rest, one less, or with a rest.
_EXACT = {"dwt", "idwt", "wpt", "iwpt", "waveterp", "waveterp2d", "icpt", "ilct", "dwti", "idwti", "wpti"}
_EXACT_BUT_ONE = {"cpt", "lct"}
_WITH_REST = {"dwts", "idwts", "wpts", "swaveterp", "swaveterp2d"}


def _deepest(refused, sides):
    """The deepest level that the sides allow, -1 for none; None where it is not known."""
    name = refused.function()
    if name in _WITH_REST or name[:4] in ("get_", "put_"):
        return min(side.bit_length() for side in sides) - 1
    if name not in _EXACT | _EXACT_BUT_ONE:
        return None
    level = min(map(_twos, sides)) - (name in _EXACT_BUT_ONE)
    if name.endswith("ti") or name == "wpti":
        shortest = 2 * _taps(refused.given["wavelet"])
        while level > 0 and min(sides) >> (level - 1) < shortest:
            level -= 1
    return level


def _taps(wavelet):
    if not isinstance(wavelet, str):
        return len(wavelet)
    function, numbers = function_of(wavelet)
    return numbers[0]


def _too_deep(refused):
    sides = _sides(refused.given.get("data"))
    level = refused.value()
    if 0 in sides or _is_array(level) or isinstance(level, str) or np.iscomplexobj(level):
        return None
    if level < 0:
        return f"{'levels' if refused.name == 'level' else 'packets'} count from 0"
    if len(sides) == 2 and 1 in sides:
        sides = sides[:1] if sides[1] == 1 else ()
    if not sides:
        return None
    deepest = _deepest(refused, sides)
    if deepest is None or level <= deepest:
        return None
    given = f"{sides[0]} rows" if len(sides) == 1 else f"{sides[0]} rows and {sides[1]} columns"
    allowed = f"at most level {deepest}" if deepest > 0 else ("level 0 only" if deepest == 0 else "no level")
    return f"{given} allow {allowed}"


def _any_length(refused):
    """What takes data that cannot be halved so often."""
    other = {"dwt": "dwts", "dwti": "dwts", "wpt": "wpts", "wpti": "wpts"}.get(refused.function())
    sides = _sides(refused.given.get("data"))
    level = refused.value()
    if other is None or not sides or 1 in sides or _is_array(level) or isinstance(level, str):
        return None
    if np.iscomplexobj(level) or level < 0:
        return None
    if level < min(side.bit_length() for side in sides):
        return f"{other} takes any length, with a symmetric wavelet such as 'Bspline24'"
    return None


def _image_of_one_row(refused):
    shape = _sides(refused.given.get("data"))
    if len(shape) == 2 and shape[0] == 1 and shape[1] > 1:
        return f"a 1 x {shape[1]} array is an image of one row; data.ravel() is a signal"
    return None


def _from_one(refused):
    """The error is about the call, since the pack asks for subband 1 of the level."""
    if refused.given.get("level") == 0:
        return "a level counts from 1, the finest; level 0 is the data itself"
    return None


def _positions(refused):
    level = refused.given.get("level")
    if refused.name not in ("index", "index_x", "index_y", "row", "col") or not isinstance(level, Real):
        return None
    if 0 <= level < 32 and not refused.function().removeprefix("dl").startswith("wavelet"):
        return f"positions count from 0: level {level:g} has 0 to {2 ** int(level) - 1}"
    return None


# Wavelets


def _lengths(refused):
    """For the functions that return filters, and for names of wavelets."""
    if refused.name in ("length", "degree", "m", "n"):
        return refused.description.argument(refused.name).meaning
    if refused.function() == "Bspline":
        return "the pairs are " + ", ".join(map(str, PAIRS))
    return None


def _names(refused):
    value = refused.value()
    if refused.name != "wavelet" or not isinstance(value, str) or _is_name(value):
        return None
    family = re.match(r"[A-Za-z]*", value)[0]
    if family == "rbio":
        return "the pack has the spline pairs bior, but none with analysis and synthesis exchanged"
    known = [name for wavelet in wavelets() for name in wavelet.names()]
    same = [name for name in known if re.fullmatch(rf"{family}[\d.]+", name)] if family else []
    meant = difflib.get_close_matches(value.lower(), known, 1)
    if same:
        return f"the names of that kind are {', '.join(same)}"
    asked = f"did you mean {meant[0]!r}? " if meant else ""
    return f"{asked}A name is letters and a number, such as 'symmlet8' or 'db4': undula.wavelets() lists all"


def _is_name(text):
    """Whether a wavelet has that name; then other arguments are at fault."""
    return any(text in wavelet.names() for wavelet in wavelets())


def _filter_shape(refused):
    shape = _sides(refused.value())
    if refused.name != "wavelet" or isinstance(refused.value(), str):
        return None
    if len(shape) == 2 and shape[0] == 1:
        return f"a filter is a column; this one is a row of {shape[1]}: wavelet.ravel()"
    if len(shape) == 2 and shape[1] > 2:
        return f"a filter has one column, or two for a pair; this array is {shape[0]} x {shape[1]}"
    if shape and shape[0] > 100:
        return f"a filter has at most 100 coefficients; this one has {shape[0]}"
    return None


def _options(refused):
    if "offsets" not in refused.given or _filter_shape(refused):
        return None
    if not isinstance(refused.value(), str):
        taps = np.asarray(refused.value(), float)
        if taps.size == 0 or not np.isfinite(taps).all():
            return None
    return (
        "the filter is right, but not offsets or flips: each is a number, or for a pair one row of two, such "
        "as [[-1, -2]]; offsets are whole, flips 0 or 1"
    )


def _interval(refused):
    return "interval wavelets are " + _taken("interval")


def _symmetric(refused):
    return f"symmetric wavelets are {_taken('symmetric')}; dwt and wpt take any"


def _taken(boundary):
    return ", ".join(wavelet.name for wavelet in wavelets() if boundary in wavelet.boundaries)


# Bases and tables


def _basis(refused):
    dimension = 2 if "2" in refused.message else 1
    row = "(level, row, column)" if dimension == 2 else "(level, position)"
    whose = "an image" if dimension == 2 else "a signal"
    return f"a packet of {whose} is {row}, as in create_level(level, {dimension})"


def _tiling(refused):
    return "the packets must tile the data: create_level, wavebs and best_basis return bases that do"


def _subband_size(refused):
    getter = refused.function().replace("put_", "get_")
    return f"subband must be as large as what {getter} returns; given was {_shown(refused.value())}"


_REMEDIES = {
    "illegal context": [_not_called],
    "must be array": [_number_for_wavelet, _number_for_basis, _expected],
    "must be vector": [_not_a_column, _expected],
    "must be string": [_number_for_wavelet, _expected],
    "non-scalar value": [_expected],
    "EfiMustBeScalarOrArray": [_expected],
    "must be function": [_named_cost, _called_already],
    "must be real array": [_complex],
    "must be real vector": [_complex],
    "must be integer": [_not_whole],
    "invalid level": [_too_deep, _any_length, _image_of_one_row, _positions],
    "invalid packet index": [_from_one, _positions],
    "filter unimplemented": [_lengths, _names, _filter_shape, _options],
    "must be even integer": [_lengths, _names],
    "must be positive integer": [_lengths, _names],
    "invalid filter wavelet string": [_names],
    "interval wavelets unimplemented": [_interval],
    "not a symmetric wavelet": [_symmetric],
    "must be 1 dimensional packet basis": [_basis],
    "must be 2 dimensional packet basis": [_basis],
    "invalid packet basis": [_tiling],
    "invalid packet table": [_not_a_table],
    "invalid 2d wavelet string": [_letters],
    "invalid subband dimensions": [_subband_size],
}
