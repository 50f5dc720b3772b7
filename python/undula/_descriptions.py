"""The descriptions of functions.toml as records, and the docstrings made from them."""

import inspect
import textwrap
import tomllib
from dataclasses import dataclass
from pathlib import Path

WIDTH = 88


@dataclass(frozen=True)
class Argument:
    name: str
    kind: str
    meaning: str


@dataclass(frozen=True)
class Failure:
    """An error that a function returns; `argument` is empty when it concerns the whole call."""

    argument: str
    message: str
    when: str
    call: str = ""


@dataclass(frozen=True)
class Description:
    name: str
    group: str
    summary: str
    details: str
    forms: tuple[tuple[str, ...], ...]
    arguments: tuple[Argument, ...]
    result: Argument
    errors: tuple[Failure, ...]
    example: str
    literature: tuple[str, ...]

    def argument_names(self, count):
        """Names of the arguments of a call with `count` of them; empty when no form has that many."""
        return next((form for form in self.forms if len(form) == count), ())

    def kind_of(self, name):
        return next(argument.kind for argument in self.arguments if argument.name == name)

    def calls(self):
        """Every form as it is written in a call."""
        return [f"{self.name}({', '.join(form)})" for form in self.forms]

    def signature(self):
        """The signature, where longer forms only append arguments; otherwise `(*args)`."""
        longest = max(self.forms, key=len)
        if any(form != longest[: len(form)] for form in self.forms):
            return inspect.Signature([inspect.Parameter("args", inspect.Parameter.VAR_POSITIONAL)])
        needed = min(map(len, self.forms))
        return inspect.Signature(
            inspect.Parameter(
                name,
                inspect.Parameter.POSITIONAL_ONLY,
                default=inspect.Parameter.empty if place < needed else _LEFT_OUT,
            )
            for place, name in enumerate(longest)
        )

    def docstring(self):
        parts = [self.summary, *paragraphs(self.details)]
        if len(self.forms) > 1:
            parts.append(_section("Forms", self.calls()))
        parts.append(_section("Parameters", _entries(self.arguments)))
        parts.append(_section("Returns", [self.result.kind, *_indented(self.result.meaning)]))
        parts.append(_section("Raises", ["undula.Error", *_failures(self.errors)]))
        if self.literature:
            parts.append(_section("References", [textwrap.fill(work, WIDTH) for work in self.literature]))
        parts.append(_section("Examples", self.example.splitlines()))
        return "\n\n".join(parts) + "\n"


class _LeftOut:
    """Stands in a signature for the default of an argument that a shorter form goes without."""

    def __repr__(self):
        return "..."


_LEFT_OUT = _LeftOut()


def read_kinds():
    """The kinds of arguments: what Python value each takes, and the message when it is another."""
    return _read()["kinds"]


def read_descriptions():
    """Every described function by name, in the order of functions.toml."""
    data = _read()
    return {name: _description(name, entry, data) for name, entry in data["functions"].items()}


def paragraphs(text):
    """The paragraphs of a text, each filled to the width of a docstring."""
    return [textwrap.fill(part, WIDTH) for part in text.strip().split("\n\n") if part]


def _read():
    with open(Path(__file__).with_name("functions.toml"), "rb") as file:
        return tomllib.load(file)


def _description(name, entry, data):
    return Description(
        name=name,
        group=entry["group"],
        summary=entry["summary"],
        details=entry.get("details", ""),
        forms=tuple(map(tuple, entry["forms"])),
        arguments=tuple(_argument(item, data["arguments"]) for item in entry["arguments"]),
        result=Argument("", entry["result"]["kind"], entry["result"]["meaning"]),
        errors=tuple(_failure(item, data["errors"]) for item in entry["errors"]),
        example=entry["example"].strip(),
        literature=tuple(data["literature"][key] for key in entry.get("literature", ())),
    )


def _argument(item, shared):
    if isinstance(item, str):
        item = {"name": item, **shared[item]}
    return Argument(item["name"], item["kind"], " ".join(item["meaning"].split()))


def _failure(item, shared):
    return Failure(*(shared[item] if isinstance(item, str) else item))


def _section(title, lines):
    return "\n".join([title, "-" * len(title), *lines])


def _indented(text, hang=""):
    return textwrap.wrap(text, WIDTH, initial_indent="    ", subsequent_indent="    " + hang)


def _entries(arguments):
    lines = []
    for argument in arguments:
        lines += [f"{argument.name} : {argument.kind}", *_indented(argument.meaning)]
    return lines


def _failures(errors):
    lines = []
    for error in errors:
        place = f"{error.argument}: " if error.argument else ""
        lines += _indented(f'{place}"{error.message}" when {error.when}', hang="  ")
    return lines
