"""Makes what the package knows about the functions of the pack: functions.json, with their help texts,
and the types in __init__.pyi.

    python3 python/make_described.py functions/functions.toml FOLDER
"""

import ast
import json
import sys
import textwrap
import tomllib
from pathlib import Path

PACKAGE = Path(__file__).with_name("undula")
sys.path.insert(0, str(PACKAGE))
from _descriptions import AXIS, WIDTH, description_of, paragraphs  # noqa: E402


def read_toml(path):
    """The kinds, and every function with all that it shares with others filled in."""
    with open(path, "rb") as file:
        data = tomllib.load(file)
    functions = [_entry(name, entry, data) for name, entry in data["functions"].items()]
    return {"kinds": data["kinds"], "functions": functions}


def _entry(name, entry, shared):
    made = {
        "name": name,
        "group": entry["group"],
        "summary": entry["summary"],
        "details": entry.get("details", ""),
        "forms": entry["forms"],
        "arguments": [_argument(item, shared["arguments"]) for item in entry["arguments"]],
        "result": entry["result"],
        "errors": [shared["errors"][item] if isinstance(item, str) else item for item in entry["errors"]],
        "example": entry["example"].strip(),
        "octave": entry.get("octave", ""),
        "literature": [shared["literature"][key] for key in entry.get("literature", ())],
    }
    return made | {"doc": docstring(description_of(made | {"doc": ""}))}


def _argument(item, shared):
    if isinstance(item, str):
        item = {"name": item} | shared[item]
    return item | {"meaning": " ".join(item["meaning"].split())}


def docstring(description):
    parts = [description.summary, *paragraphs(description.details)]
    if len(description.forms) > 1:
        parts.append(_section("Forms", description.calls()))
    axis = [AXIS] if description.takes_axis else []
    parts.append(_section("Parameters", _entries([*description.arguments, *axis])))
    result = description.result
    parts.append(_section("Returns", [result.type or result.kind, *_indented(result.meaning)]))
    parts.append(_section("Raises", ["undula.Error", *_failures(description.errors)]))
    if description.literature:
        works = [textwrap.fill(work, WIDTH) for work in description.literature]
        parts.append(_section("References", works))
    parts.append(_section("Examples", description.example.splitlines()))
    return "\n\n".join(parts) + "\n"


def _section(title, lines):
    return "\n".join([title, "-" * len(title), *lines])


def _indented(text, hang=""):
    return textwrap.wrap(text, WIDTH, initial_indent="    ", subsequent_indent="    " + hang)


def _entries(arguments):
    lines = []
    for argument in arguments:
        kind = f"{argument.kind} or {argument.also}" if argument.also else argument.kind
        names = ", ".join([argument.name, *(f"{alias}=" for alias in argument.aliases)])
        lines += [f"{names} : {kind}", *_indented(argument.meaning)]
    return lines


def _failures(errors):
    lines = []
    for error in errors:
        place = f"{error.argument}: " if error.argument else ""
        lines += _indented(f'{place}"{error.message}" when {error.when}', hang="  ")
    return lines


# What type checkers are told. Numbers of NumPy are no float to them, except float64.

STUB = '''\
"""Made by python/make_described.py."""

from collections.abc import Callable, Sequence
from typing import Any, Literal, TypeAlias, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

{imports}

_Real: TypeAlias = float | np.integer[Any] | np.floating[Any]
_Array: TypeAlias = NDArray[np.float64]
_PacketFunction: TypeAlias = Callable[[_Array], ArrayLike]
_CostName: TypeAlias = Literal["shannon", "l1", "log_energy"]
_NumberFunction: TypeAlias = Callable[[float], _Real]

__version__: str
__all__ = {names}

{functions}
'''

TYPES = {
    "scalar": "_Real",
    "string": "str",
    "vector": "ArrayLike",
    "array": "ArrayLike",
    "scalar or array": "ArrayLike",
    "table": "Sequence[ArrayLike]",
    "number function": "_NumberFunction",
    "packet function": "_PacketFunction",
}
RESULTS = {"scalar": "float", "vector": "_Array", "array": "_Array", "table": "list[_Array]"}


def stub(descriptions):
    functions = "\n".join(line for description in descriptions for line in _typed(description))
    imported = list(_imports())
    imports = "\n".join(f"from {module} import {name} as {name}" for module, name in imported)
    names = [name for _, name in imported] + [description.name for description in descriptions]
    return STUB.format(imports=imports, names=names, functions=functions)


def _imports():
    """The public names that the package takes from its modules, each after its module."""
    for node in ast.parse((PACKAGE / "__init__.py").read_text(encoding="utf-8")).body:
        if isinstance(node, ast.ImportFrom):
            for name in node.names:
                if not name.name.startswith("_"):
                    yield node.module, name.name


def _typed(description):
    """A line for each way of calling a function that a type checker must know by itself."""
    ways = _table_or_basis(description) or [_parameters(description, *description.parameters())]
    longest = max(description.forms, key=len)
    if description.parameters()[0] != longest:  # the longest form has places of its own
        ways.append(_parameters(description, longest, (), required=longest))
    result = description.result.type or description.result.kind
    ways = [way if isinstance(way, tuple) else (way, RESULTS[result]) for way in ways]
    if result == "scalar":  # at one point or at many
        scalar = TYPES["scalar"]
        many = f"{scalar} | ArrayLike"
        ways += [(parameters.replace(scalar, many), RESULTS["array"]) for parameters, _ in ways]
    for parameters, returned in ways:
        if len(ways) > 1:
            yield "@overload"
        # A number is an array to NumPy's types too, so that of two ways the first one counts.
        first = returned == RESULTS["scalar"] or (parameters == ways[0][0] and returned == RESULTS["table"])
        overlaps = "  # type: ignore[misc]" if first else ""
        yield f"def {description.name}({parameters}) -> {returned}: ...{overlaps if len(ways) > 1 else ''}"


def _table_or_basis(description):
    """A number of levels gives a table and a basis an array; either may be given by a name of its own."""
    either = next((argument for argument in description.arguments if argument.aliases), None)
    if either is None:
        return []
    names = max(description.forms, key=len)
    place = names.index(either.name)
    ways = []
    for kind, alias in zip(("scalar", "array"), either.aliases):
        result = RESULTS["table" if kind == "scalar" else "array"]
        kinds = {either.name: kind, alias: kind}
        ways.append((_parameters(description, names, (), kinds), result))
        named = (alias, *names[place + 1 :])
        ways.append((_parameters(description, names[:place], named, kinds), result))
    return ways


def _parameters(description, placed, named, kinds={}, required=()):
    required = required or min(description.forms, key=len)

    def typed(name):
        if name in kinds:
            return f"{name}: {TYPES[kinds[name]]}"
        argument = description.argument(name)
        text = f"{name}: {TYPES[argument.type or argument.kind]}"
        if argument.also:
            text += f" | {TYPES[argument.also]}"
        if name == "cost":
            text += " | _CostName"
        if name in required:
            return text
        return f"{text} | None = ..." if argument.default is None else f"{text} = ..."

    axis = ["axis: int | tuple[int, int] | None = ..."] if description.takes_axis else []
    last = [*map(typed, named), *axis]
    return ", ".join([*map(typed, placed), *(["*"] if last else []), *last])


def main(source, folder):
    data = read_toml(source)
    (Path(folder) / "functions.json").write_text(json.dumps(data), encoding="utf-8")
    descriptions = [description_of(entry) for entry in data["functions"]]
    (Path(folder) / "__init__.pyi").write_text(stub(descriptions), encoding="utf-8")
    (Path(folder) / "py.typed").write_text("", encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
