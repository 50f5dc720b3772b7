"""Writes docs/functions.md from the descriptions of the functions; docs/make_site.py makes a page a function.

    PYTHONPATH=build/python python3 docs/make_functions.py
"""

import re
from pathlib import Path

from undula._descriptions import AXIS, paragraphs, read_descriptions, read_kinds

PAGE = Path(__file__).with_name("functions.md")
DESCRIPTIONS = read_descriptions()

# What many functions give for the call as a whole, said once.
SHARED = ("Wrong number of Arguments", "out of memory", "interrupted", "internal fft error")

INTRODUCTION = """\
# Functions

<!-- Made by docs/make_functions.py from functions/functions.toml; edit that file. -->

The functions of the pack as Python shows them: `import undula`. Arguments are given by position or
by name: `undula.dwt(x, 3, w)`, `undula.dwt(x, level=3, wavelet=w)`. Every function also has its help
text: `help(undula.dwt)`. GNU Octave has the same functions under the same names.

{functions}

## Arguments and results

An argument of another kind is refused with the message of the kind. A function or any other value
where none is expected is refused with "illegal context", before all kinds are looked at.

| kind | in Python | refusal |
|---|---|---|
{kinds}

A list or tuple of arrays is a column of nested arrays (a packet table), a 2-D object array a matrix
whose cells may be nested. What has no kind at all, such as a dict, is a `TypeError`.

A scalar comes back as a `float`, a column as a 1-D `float64` array, another matrix as a 2-D array,
a column of nested arrays as a list of arrays; numbers are complex where an imaginary part is not
zero.

## Errors

A refused call raises `undula.Error`, a `ValueError` with the fields `function`, `message` and
`argument`, the position of the argument at fault counted from 1, or 0 for the call as a whole:
`dwt: must be real array (argument 1: data)`. "out of memory" is also a `MemoryError`;
"singularity", "overflow" and "floating point error", the faults of the arithmetic, are also a
`FloatingPointError`. What your own function raises is raised by the call. Ctrl-C raises
`KeyboardInterrupt` in a call that polls for interruption.

Some errors mean the same wherever they occur:

| message | when |
|---|---|
{shared}

The tables of the functions give their other errors in the order in which they are looked for.
"""


def page():
    """One page with all functions, for readers of the repository."""
    parts = [introduction(_anchor, 3)]
    for group, names in groups().items():
        parts.append(f"## {group}\n")
        parts += [entry(DESCRIPTIONS[name], "###", _anchor, "") for name in names]
    return "\n".join(parts)


def introduction(target, depth):
    """What holds for all functions, after a list of them; `target` tells where a function is described."""
    kinds = [f'| {name} | {kind["python"]} | "{kind["refusal"]}" |' for name, kind in read_kinds().items()]
    lists = []
    for group, names in groups().items():
        lists.append(f"{'#' * depth} {group}\n\n| function | what it does |\n|---|---|")
        lists += [f"| [`{name}`]({target(name)}) | {DESCRIPTIONS[name].summary} |" for name in names]
        lists.append("")
    shared = [f'| "{message}" | {when} |' for message, when in _shared_errors()]
    return INTRODUCTION.format(
        functions="\n".join(lists).strip(), kinds="\n".join(kinds), shared="\n".join(shared)
    )


def groups():
    """The names of the functions of each group, in the order of the descriptions."""
    named = {}
    for description in DESCRIPTIONS.values():
        named.setdefault(description.group, []).append(description.name)
    return named


def entry(description, heading, target, page, picture=""):
    """The description of one function; `page` is where the errors that all share are described."""
    folder, result = page.removesuffix("functions.md"), description.result
    arguments = [*description.arguments, *([AXIS] if description.takes_axis else [])]
    parts = [
        f"{heading} `{description.name}`",
        _code("python", "\n".join(description.calls())),
        *_linked(description, f"{description.summary}\n\n{description.details}", target, folder),
        picture,
        _table("argument", "kind", "meaning", map(_argument_row, arguments)),
        *_linked(description, f"Result: {result.kind}. {result.meaning}", target, folder),
        *_errors(description, page),
        _code("pycon", description.example),
        "\n".join(f"- {work}" for work in description.literature),
    ]
    return "\n\n".join(part for part in parts if part) + "\n"


def _anchor(name):
    return f"#{name.lower()}"


def _linked(description, text, target, folder):
    """Paragraphs in which the names of other functions and of pages are links."""

    def link(match):
        name = match[1]
        other = name in DESCRIPTIONS and name != description.name
        return f"[`{name}`]({target(name)})" if other else match[0]

    linked = [re.sub(r"`(\w+)`", link, part) for part in paragraphs(text)]
    return [re.sub(r"docs/(\w+)\.md", rf"[\1]({folder}\1.md)", part) for part in linked]


def _shared_errors():
    when = {error.message: error.when for each in DESCRIPTIONS.values() for error in each.errors}
    return [(message, when[message]) for message in SHARED]


def _errors(description, page):
    """The table of a function's own errors, and a line with those that it shares."""
    own = [error for error in description.errors if error.message not in SHARED]
    shared = [f'"{error.message}"' for error in description.errors if error.message in SHARED]
    if own:
        yield _table("argument at fault", "message", "when", map(_error_row, own))
    if shared:
        yield f"{'Also' if own else 'Errors'}: {', '.join(shared)} ([errors]({page}#errors))."


def _argument_row(argument):
    kind = f"{argument.kind} or {argument.also}" if argument.also else argument.kind
    names = ", ".join([f"`{argument.name}`", *(f"`{alias}=`" for alias in argument.aliases)])
    return names, kind, argument.meaning


def _error_row(error):
    return f"`{error.argument}`" if error.argument else "the call", f'"{error.message}"', error.when


def _code(language, text):
    return f"```{language}\n{text}\n```"


def _table(first, second, third, rows):
    lines = [f"| {first} | {second} | {third} |", "|---|---|---|"]
    return "\n".join(lines + [f"| {' | '.join(row)} |" for row in rows])


if __name__ == "__main__":
    PAGE.write_text(page(), encoding="utf-8")
