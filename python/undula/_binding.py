"""Arguments given by name, put where the pack expects them."""

import difflib
import inspect
from operator import itemgetter

# What the same thing is called elsewhere.
ELSEWHERE = {
    "x": "data",
    "signal": "data",
    "image": "data",
    "coeffs": "data",
    "levels": "level",
    "maxlevel": "level",
    "filter": "wavelet",
    "offset": "offsets",
    "func": "function",
}
BOUNDARIES = {
    "dwt": "dwt is periodic, dwts mirrors at the ends, dwti has boundary filters",
    "wpt": "wpt is periodic, wpts mirrors at the ends, wpti has boundary filters",
}

_UNKNOWN = object()


def signature(description):
    """The signature; a default is what a call without the argument means, None where no value means it."""
    placed, named = description.parameters()
    needed = min(description.forms, key=len)
    kinds = [inspect.Parameter.POSITIONAL_OR_KEYWORD] * len(placed)
    kinds += [inspect.Parameter.KEYWORD_ONLY] * len(named)
    parameters = [
        inspect.Parameter(
            name,
            kind,
            default=inspect.Parameter.empty if name in needed else description.argument(name).default,
        )
        for name, kind in zip(placed + named, kinds)
    ]
    if description.takes_axis:
        parameters.append(inspect.Parameter("axis", inspect.Parameter.KEYWORD_ONLY, default=None))
    return inspect.Signature(parameters)


def binder(description):
    """A function that puts arguments by position and by name in the order of a form."""
    orders = [{} for _ in range(max(map(len, description.forms)) + 1)]

    def bind(args, named):
        names = tuple(named)
        try:
            order = orders[len(args)][names]
        except LookupError:
            order = _UNKNOWN
        if order is _UNKNOWN:
            order = _order(description, len(args), names)
            orders[len(args)][names] = order
        values = args + tuple(named.values())
        return values if order is None else order(values)

    return bind


def without_trailing_nones(description, args):
    """The arguments without those at the end that are None, which a shorter form leaves out."""
    names, needed = max(description.forms, key=len), min(map(len, description.forms))
    while len(args) > needed and args[-1] is None:
        args = args[:-1]
    for place in range(needed, len(args)):
        if args[place] is None:
            last = names[len(args) - 1]
            raise TypeError(f"{description.name}() takes {last!r} only together with {names[place]!r}")
    return args


def count_text(description, count):
    """How many arguments the function takes, and how many were given."""
    counts = sorted(map(len, description.forms))
    if len(counts) == 1:
        wanted = f"{counts[0]} argument" + "s" * (counts[0] != 1)
    elif counts == list(range(counts[0], counts[-1] + 1)):
        wanted = f"{counts[0]} to {counts[-1]} arguments"
    else:
        wanted = f"{counts[0]} or {counts[-1]} arguments"
    return f"takes {wanted}, got {count}: {_shown(description)}"


def _shown(description):
    """The calls, the longest for all where longer ones append arguments."""
    if description.parameters()[1]:
        return " or ".join(description.calls())
    return f"{description.name}{signature(description)}"


def _order(description, count, given):
    """What puts values by position, followed by those by name, in the order of a form.

    None when they stand in it already.
    """
    given = tuple(_real_name(description, name) for name in given)
    if len(set(given)) < len(given):
        raise TypeError(f"{description.name}() got one argument by two of its names")
    names = _placed(description, count, given) + given
    form = _shortest_form(description, names)
    if form == names:
        return None
    added = tuple(name for name in form if name not in names)
    every = names + added
    defaults = tuple(description.argument(name).default for name in added)
    pick = itemgetter(*(every.index(name) for name in form))
    return (lambda values: pick(values + defaults)) if defaults else pick


def _placed(description, count, given):
    """The names of the arguments by position, of which forms may have several orders."""
    longest = max(description.forms, key=len)
    for order in (description.parameters()[0], longest):
        if count <= len(order) and not set(order[:count]) & set(given):
            return order[:count]
    if count > len(longest):
        raise TypeError(f"{description.name}() {count_text(description, count + len(given))}")
    twice = next(name for name in longest[:count] if name in given)
    raise TypeError(f"{description.name}() got {twice!r} by position and by name: {_shown(description)}")


def _shortest_form(description, names):
    """The shortest form that has all the names; arguments that no shorter form has may be missing."""
    missing = [name for name in min(description.forms, key=len) if name not in names]
    if missing:
        raise TypeError(f"{description.name}() misses {' and '.join(missing)}: {_shown(description)}")
    return min((form for form in description.forms if set(names) <= set(form)), key=len)


def _real_name(description, name):
    for argument in description.arguments:
        if name == argument.name or name in argument.aliases:
            return argument.name
    raise TypeError(_unknown_text(description, name))


def _unknown_text(description, name):
    names = [argument.name for argument in description.arguments]
    text = f"{description.name}() has no argument {name!r}"
    if name == "mode" and "wavelet" in names:
        return f"{text}; {BOUNDARIES['wpt' if 'wpt' in description.name else 'dwt']}"
    close = difflib.get_close_matches(name, names, 1)
    meant = ELSEWHERE.get(name) if ELSEWHERE.get(name) in names else (close[0] if close else None)
    asked = f"; did you mean {meant!r}?" if meant else ""
    return f"{text}{asked} It takes {', '.join(names)}" if meant else f"{text}; it takes {', '.join(names)}"
