"""The descriptions of the functions, as the build has read them from functions.toml."""

import json
import textwrap
from dataclasses import dataclass
from pathlib import Path

WIDTH = 88


FORWARD = ("dwt", "dwts", "dwti")
INVERSE = ("idwt", "idwts", "idwti")


@dataclass(frozen=True)
class Argument:
    """`also` is a kind that Python takes besides; `type` says more than the kind, for type checkers."""

    name: str
    kind: str
    meaning: str
    also: str = ""
    type: str = ""
    default: float | None = None
    aliases: tuple[str, ...] = ()


AXIS = Argument(
    "axis",
    "int or pair of int, by name only",
    "The axis of many signals, or those of the rows and columns of many images, in an array of any number "
    "of dimensions, each of which is transformed for itself. Without it the data is one signal or one image.",
)


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
    doc: str
    octave: str = ""

    def argument_names(self, count):
        """Names of the arguments of a call with `count` of them; empty when no form has that many."""
        return next((form for form in self.forms if len(form) == count), ())

    def argument(self, name):
        return next(argument for argument in self.arguments if argument.name == name)

    def kind_of(self, name):
        return self.argument(name).kind

    @property
    def takes_axis(self):
        """Whether it goes along the axes of an array of more dimensions than its own."""
        return self.name in FORWARD + INVERSE

    def calls(self):
        """Every form as it is written in a call."""
        return [f"{self.name}({', '.join(form)})" for form in self.forms]

    def parameters(self):
        """The names that calls may give by position, and those after them that they only name.

        The arguments of the shortest form come first. What longer forms add follows them where it is
        appended; what they put in between has a place of its own in those forms only.
        """
        shortest, longest = min(self.forms, key=len), max(self.forms, key=len)
        if longest[: len(shortest)] == shortest:
            return longest, ()
        return shortest, tuple(name for name in longest if name not in shortest)


def read_kinds():
    """The kinds of arguments: what Python value each takes, and the message when it is another."""
    return _read()["kinds"]


def read_descriptions():
    """Every described function by name, in the order of functions.toml."""
    return {entry["name"]: description_of(entry) for entry in _read()["functions"]}


def paragraphs(text):
    """The paragraphs of a text, each filled to the width of a docstring."""
    return [textwrap.fill(part, WIDTH) for part in text.strip().split("\n\n") if part]


def description_of(entry):
    """The record of an entry of functions.json."""
    shaped = {
        "forms": tuple(map(tuple, entry["forms"])),
        "arguments": tuple(Argument(**argument) for argument in entry["arguments"]),
        "result": Argument("", **entry["result"]),
        "errors": tuple(Failure(*error) for error in entry["errors"]),
    }
    return Description(**entry | shaped)


def _read():
    return json.loads(Path(__file__).with_name("functions.json").read_bytes())
