"""The descriptions against the pack that is loaded."""

import doctest
import importlib
import inspect
import itertools
import runpy
from pathlib import Path

import numpy as np
import pytest
import undula
from undula import _descriptions

ROOT = Path(__file__).resolve().parents[2]
DESCRIPTIONS = _descriptions.read_descriptions()
KINDS = _descriptions.read_kinds()
ROWS = {row.name: row for row in undula._host.load()}
FORMS = [(name, form) for name, entry in DESCRIPTIONS.items() for form in entry.forms]

# For every kind a value of it, and values of other kinds that are no functions.
RIGHT = {"scalar": 0, "string": "", "function": len, "vector": [1], "array": [[1, 2]], "scalar or array": 0}
WRONG = {
    "scalar": ["", [1]],
    "string": [0, [1]],
    "function": [0, [1], ""],
    "vector": ["", 0, [[1, 2]]],
    "array": ["", 0],
    "scalar or array": [""],
}


def test_every_row_is_a_function_and_the_described_ones_are_public():
    assert set(DESCRIPTIONS) == set(ROWS)
    for name in ROWS:
        function = getattr(undula, name)
        assert function.__name__ == name and function.__module__ == "undula" and function.__doc__
        assert (name in undula.__all__) == (name in DESCRIPTIONS)


@pytest.mark.parametrize("name", DESCRIPTIONS)
def test_the_numbers_of_arguments_are_those_of_the_pack(name):
    counts = {len(form) for form in DESCRIPTIONS[name].forms}
    arity = ROWS[name].arity
    if arity is not None:
        assert counts == {arity}
        return
    refused = {n for n in range(12) if answer(name, [""] * n)[0] == "Wrong number of Arguments"}
    assert counts == set(range(12)) - refused


@pytest.mark.parametrize("name, form", FORMS)
def test_the_kinds_of_arguments_are_those_of_the_pack(name, form):
    kinds = {argument.name: argument.kind for argument in DESCRIPTIONS[name].arguments}
    right = [RIGHT[kinds[argument]] for argument in form]
    for place, argument in enumerate(form):
        kind = kinds[argument]
        points = [[1]] if kind == "scalar" and DESCRIPTIONS[name].result.kind == "scalar" else []
        for wrong in (value for value in WRONG[kind] if value not in points):
            arguments = [*right[:place], wrong, *right[place + 1 :]]
            assert answer(name, arguments) == (KINDS[kind]["refusal"], place + 1)


def answer(name, arguments):
    """The error of the pack itself, which knows wavelets by fewer kinds than Python."""
    error = ROWS[name].call(tuple(arguments), ())
    return error.message, error.argument


def complaint(name, arguments):
    with pytest.raises(undula.Error) as caught:
        getattr(undula, name)(*arguments)
    return caught.value.message, caught.value.argument


ERRORS = [
    (name, error.argument, error.message, error.call)
    for name, entry in DESCRIPTIONS.items()
    for error in entry.errors
]


@pytest.mark.parametrize("name, argument, message, call", [row for row in ERRORS if row[3]])
def test_every_error_is_given_as_described(name, argument, message, call):
    with pytest.raises(undula.Error) as caught:
        eval(call, vars(undula) | {"np": np})
    assert call.startswith(f"{name}(")
    names = [form for form in DESCRIPTIONS[name].forms if len(form) >= caught.value.argument]
    place = names[-1].index(argument) + 1 if argument else 0
    assert (caught.value.function, caught.value.message, caught.value.argument) == (name, message, place)


def examples(name):
    """The errors that have a call, each with the arguments of its call."""
    lists = vars(undula) | {"np": np, name: lambda *arguments: list(arguments)}
    return [(error, eval(error.call, lists)) for error in DESCRIPTIONS[name].errors if error.call]


@pytest.mark.parametrize("name", DESCRIPTIONS)
def test_of_two_errors_the_one_described_first_is_given(name):
    """Of each pair of calls the first one, with the argument that the error of the second one is about."""
    for (error, arguments), (later, others) in itertools.combinations(examples(name), 2):
        both = arguments + others[len(arguments) :]
        names = DESCRIPTIONS[name].argument_names(len(both))
        place = names.index(error.argument) if error.argument else -1
        if later.argument in {"", error.argument}:
            realness = error.message.startswith("must be real") and later.argument not in {"", "table"}
            if realness and np.isscalar(arguments[place]) == np.isscalar(others[place]):
                both[place] = np.add(others[place], 1j)
        else:
            both[names.index(later.argument)] = others[names.index(later.argument)]
            if later.argument == "basis" and place != 0:
                both[0] = others[0]  # the data says whether a basis is wrong
        assert complaint(name, both) == (error.message, place + 1), (error.call, later.call)


@pytest.mark.parametrize("name", DESCRIPTIONS)
def test_of_a_number_neither_whole_nor_in_range_the_error_described_first_is_given(name):
    first = {}
    for error, arguments in examples(name):
        if error.argument and not error.message.startswith("must be real"):
            first.setdefault(error.argument, (error, arguments))
    for argument, (error, arguments) in first.items():
        if not DESCRIPTIONS[name].kind_of(argument).startswith("scalar"):
            continue
        place = DESCRIPTIONS[name].argument_names(len(arguments)).index(argument)
        for number in [-0.5] if name == "Bspline" else [-0.5, np.nan]:  # NaN is not below 1 either
            arguments[place] = number
            assert complaint(name, arguments) == (error.message, place + 1)


def test_only_errors_that_cannot_be_provoked_lack_a_call():
    without = {message for _, _, message, call in ERRORS if not call}
    # "must be array": Python refuses a table with a text in a cell before the pack sees it.
    assert without <= {"out of memory", "interrupted", "internal fft error", "Wrong number of Arguments",
                       "must be array"}


@pytest.mark.parametrize("name", DESCRIPTIONS)
def test_every_example_runs(name):
    check_examples(DESCRIPTIONS[name].example, name)


@pytest.mark.parametrize("owner", [undula, undula.evaluate, undula.wavelets])
def test_the_examples_of_the_package_run(owner):
    check_examples(owner.__doc__, owner.__name__)


HELPERS = ["_denoise", "_levels", "_padding", "costs", "plot", "thresholding"]


def examples_of(module):
    finder = doctest.DocTestFinder(exclude_empty=True)
    return finder.find(importlib.import_module(f"undula.{module}"), globs={"undula": undula, "np": np})


@pytest.mark.parametrize(
    "test", [test for name in HELPERS for test in examples_of(name)], ids=lambda test: test.name
)
def test_every_example_of_a_helper_runs(test, ax):
    run_examples(test)


def check_examples(text, name):
    test = doctest.DocTestParser().get_doctest(text, {"undula": undula, "np": np}, name, None, 0)
    assert test.examples
    run_examples(test)


def run_examples(test):
    report = []
    doctest.DocTestRunner().run(test, out=report.append)
    assert not report, "".join(report)


def test_help_names_arguments_errors_and_example():
    text = inspect.getdoc(undula.dwt)
    assert "dwt(data, level, wavelet, offsets, flips)" in text
    assert "wavelet : array or string" in text
    assert '"invalid level"' in text


def test_what_is_made_of_the_descriptions_and_kept_is_up_to_date():
    for file, kept, made in (
        ("docs/make_functions.py", "PAGE", "page"),
        ("host/make_argument_names.py", "TABLE", "table"),
    ):
        maker = runpy.run_path(ROOT / file)
        assert maker[kept].read_text(encoding="utf-8") == maker[made]()
