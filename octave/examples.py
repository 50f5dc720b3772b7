"""The examples of the descriptions, which are written in Python, in the language of Octave.

Only what they use is known here: lists, calls, arithmetic and one-line functions. Beside an example
beyond that stands one in Octave in the description.
"""

import ast
import doctest

NUMPY = {"np.sum": "sum", "np.sort": "sort", "np.sin": "sin", "np.sqrt": "sqrt", "np.pi": "pi", "abs": "abs"}
OPERATORS = {ast.Add: "+", ast.Sub: "-", ast.Mult: "*", ast.Div: "/", ast.Pow: ".^"}


def octave_example(description):
    """Lines of code; one that begins with => shows what the line before returns."""
    if description.octave:
        return description.octave.strip().splitlines()
    lines = []
    for example in doctest.DocTestParser().get_examples(description.example):
        tree = ast.parse(example.source).body[0]
        lines.append(_statement(tree))
        if example.want:
            column = description.group == "Filters"
            lines.append("=> " + _literal(ast.parse(example.want.strip(), mode="eval").body, column))
    return lines


def _statement(tree):
    if isinstance(tree, ast.Assign):
        return f"{tree.targets[0].id} = {_code(tree.value)};"
    return _code(_unrounded(tree.value))


def _literal(tree, column):
    """What a Python example shows, as Octave has it: a list is a row, the arrays of a table are cells."""
    if isinstance(tree, ast.Call):
        tree = tree.args[0]
    if isinstance(tree, ast.Constant) and isinstance(tree.value, bool):
        return str(tree.value).lower()
    if isinstance(tree, ast.List) and isinstance(tree.elts[0], ast.Call):
        return "{" + "; ".join(_literal(item, column) for item in tree.elts) + "}"
    return _list(tree, column) if isinstance(tree, ast.List) else _number(ast.literal_eval(tree))


def _list(tree, column=False):
    if tree.elts and isinstance(tree.elts[0], ast.List):
        return "[" + "; ".join(", ".join(map(_code, row.elts)) for row in tree.elts) + "]"
    return "[" + ("; " if column else ", ").join(map(_code, tree.elts)) + "]"


def _number(value):
    return str(int(value)) if value == int(value) else repr(value)


def _unrounded(tree):
    """Without rounding, which the number of digits shown stands for, and without + 0.0 behind it."""
    if isinstance(tree, ast.BinOp) and isinstance(tree.right, ast.Constant) and tree.right.value == 0.0:
        return _unrounded(tree.left)
    if isinstance(tree, ast.Call) and ast.unparse(tree.func) == "round":
        return tree.args[0]
    if isinstance(tree, ast.Call) and isinstance(tree.func, ast.Attribute) and tree.func.attr == "round":
        return tree.func.value
    return tree


def _code(tree):
    return _WRITERS[type(tree)](tree)


def _call(tree):
    name = ast.unparse(tree.func)
    if name == "np.arange":
        first, last = ([ast.Constant(0), *tree.args])[-2:]
        return f"({_code(first)}:{_number(ast.literal_eval(last) - 1)})"
    if name.endswith(".reshape"):
        rows, cols = map(_code, tree.args)
        return f"reshape ({_code(tree.func.value)}, {cols}, {rows})'"
    arguments = tree.args
    if name.endswith(".mean"):
        name, arguments = "mean", [tree.func.value]
    return f"{_name(name)} ({', '.join(map(_argument, arguments))})"


def _argument(tree):
    """The name of a function as an argument is a handle."""
    return f"@{NUMPY[ast.unparse(tree)]}" if ast.unparse(tree) in NUMPY else _code(tree)


def _name(name):
    return NUMPY.get(name, name.removeprefix("undula."))


def _comprehension(tree):
    """Of numbers or letters."""
    loop = tree.generators[0]
    body = f"@({loop.target.id}) {_code(_unrounded(tree.elt))}"
    items = loop.iter
    over = f'"{items.value}"' if isinstance(items, ast.Constant) else _list(ast.List(items.elts))
    return f"arrayfun ({body}, {over})"


_WRITERS = {
    ast.Call: _call,
    ast.ListComp: _comprehension,
    ast.List: lambda tree: _cells(tree) if _holds_arrays(tree) else _list(tree),
    ast.Constant: lambda tree: f'"{tree.value}"' if isinstance(tree.value, str) else _number(tree.value),
    ast.Name: lambda tree: _name(tree.id),
    ast.Attribute: lambda tree: _name(ast.unparse(tree)),
    ast.BinOp: lambda tree: f"{_code(tree.left)} {OPERATORS[type(tree.op)]} {_code(tree.right)}",
    ast.UnaryOp: lambda tree: f"-{_code(tree.operand)}",
    ast.Compare: lambda tree: f"{_code(tree.left)} == {_code(tree.comparators[0])}",
    ast.Lambda: lambda tree: f"@({tree.args.args[0].arg}) {_code(tree.body)}",
    ast.Subscript: lambda tree: f"{_code(tree.value)}{{{tree.slice.value + 1}}}",
}


def _holds_arrays(tree):
    return any(isinstance(item, ast.Call) for item in tree.elts)


def _cells(tree):
    return "{" + "; ".join(map(_code, tree.elts)) + "}"
