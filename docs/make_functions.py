"""Writes docs/functions.md from the descriptions of the functions.

    PYTHONPATH=build/python python3 docs/make_functions.py
"""

from pathlib import Path

from undula._descriptions import paragraphs, read_descriptions, read_kinds

PAGE = Path(__file__).with_name("functions.md")

INTRODUCTION = """\
# Functions

<!-- Made by docs/make_functions.py from functions/functions.toml; edit that file. -->

The functions of the pack as Python shows them: `import undula`. Arguments are given by position or
by name: `undula.dwt(x, 3, w)`, `undula.dwt(x, level=3, wavelet=w)`. Every function also has its help
text: `help(undula.dwt)`.

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
`FloatingPointError`. What a user's own function raises is raised by the call. Ctrl-C raises
`KeyboardInterrupt` in a call that polls for interruption.

The tables below give the errors of each function in the order in which they are looked for.
"""


def page():
    kinds = "\n".join(
        f'| {name} | {kind["python"]} | "{kind["refusal"]}" |' for name, kind in read_kinds().items()
    )
    parts = [INTRODUCTION.format(kinds=kinds)]
    group = None
    for description in read_descriptions().values():
        if description.group != group:
            group = description.group
            parts.append(f"## {group}\n")
        parts.append(_entry(description))
    return "\n".join(parts)


def _entry(description):
    arguments = map(_argument_row, description.arguments)
    parts = [
        f"### `{description.name}`",
        _code("python", "\n".join(description.calls())),
        *paragraphs(f"{description.summary}\n\n{description.details}"),
        _table("argument", "kind", "meaning", arguments),
        *paragraphs(f"Result: {description.result.kind}. {description.result.meaning}"),
        _table("argument at fault", "message", "when", map(_error_row, description.errors)),
        _code("pycon", description.example),
    ]
    if description.literature:
        parts.append("\n".join(f"- {work}" for work in description.literature))
    return "\n\n".join(parts) + "\n"


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
