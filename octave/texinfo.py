"""The help of a function in Texinfo."""

import re

KINDS = {
    "scalar": "a number",
    "string": "a text",
    "vector": "a vector",
    "array": "a vector or a matrix",
    "scalar or array": "a number or a matrix",
    "vector or array": "a vector or a matrix, or a packet table",
    "table": "a packet table, which is a cell array",
    "number function": "a handle of a function of a number",
    "packet function": "a handle of a function of a packet",
}


def documentation(description, example):
    """The help text; `example` is a list of lines."""
    parts = [
        "-*- texinfo -*-",
        *_definitions(description),
        _text(description.summary),
        *map(_text, description.details.strip().split("\n\n")),
        _table("@var{%s}: %s", _arguments(description)),
        f"@var{{y}} is {_kind(description.result)}. {_text(description.result.meaning)}",
        "Errors, in the order in which they are looked for:",
        _table("%s%s", _errors(description)),
        "@example\n@group\n" + "\n".join(map(_shown, example)) + "\n@end group\n@end example",
        *(_text(work) for work in description.literature),
        "@end deftypefn",
    ]
    return "\n\n".join(part for part in parts if part) + "\n"


def _definitions(description):
    lines = []
    for form in description.forms:
        command = "@deftypefnx" if lines else "@deftypefn "
        names = ", ".join(f"@var{{{name}}}" for name in form)
        lines.append(f"{command} {{}} {{@var{{y}} =}} {description.name} ({names})")
    return ["\n".join(lines)]


def _kind(argument):
    text = KINDS[argument.type or argument.kind]
    return f"{text}, or {KINDS[argument.also]}" if argument.also else text


def _arguments(description):
    for argument in description.arguments:
        yield (argument.name, _kind(argument)), argument.meaning


def _errors(description):
    for error in description.errors:
        place = f"@var{{{error.argument}}}: " if error.argument else ""
        yield (place, f"\"{_text(error.message)}\""), f"when {error.when}"


def _table(heading, rows):
    lines = [f"@item {heading % names}\n{_text(meaning)}" for names, meaning in rows]
    return "@table @asis\n" + "\n".join(lines) + "\n@end table"


def _text(text):
    return re.sub(r"`([^`]*)`", r"@code{\1}", _escaped(text.strip()))


def _escaped(text):
    return re.sub(r"([@{}])", r"@\1", text)


def _shown(line):
    """A result stands behind its sign."""
    return _escaped(line).replace("=> ", "@result{} ", 1) if line.startswith("=> ") else _escaped(line)
