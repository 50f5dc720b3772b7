"""The same random calls through Python and Octave: equal bytes, and equal errors.

    python3 compare_calls.py OCTAVE_PACKAGE [CALLS [SEED]]

Arguments are drawn by what the descriptions say of them, now and then from the calls there that provoke errors.
A signal goes to Octave as a row or as a column, and comes back as it went.
"""

import subprocess
import sys
import tempfile
import warnings
from pathlib import Path

import numpy as np
import undula
from undula._descriptions import read_descriptions

DESCRIPTIONS = list(read_descriptions().values())
FUNCTIONS = {
    "@abs": np.abs,
    "@(p) 2 * p": lambda p: 2 * p,
    "@(p) p(1)": lambda p: np.asarray(p).ravel()[0],
    "@(p) 'text'": lambda p: "text",
    "@(p) p .* p": lambda p: p * p,
}
NAMES = ["haar", "s8", "daub4", "db3", "bs22", "bior2.4", "c6", "coif2", "bl3", "nothing", "d5", ""]
SCALARS = [-1, 0, 1, 2, 3, 0.25, 1.5, np.nan, np.inf, 2.0**40, 1 + 1j]
ARRAY_LIKE = {"array", "vector"}


def given_by_errors():
    """Values that arguments have in the described calls, by their names."""
    found = {}
    for description in DESCRIPTIONS:
        lists = vars(undula) | {"np": np, description.name: lambda *arguments: arguments}
        for error in description.errors:
            arguments = eval(error.call, lists) if error.call else ()
            for name, value in zip(description.argument_names(len(arguments)), arguments):
                if not callable(value):
                    found.setdefault(name, []).append(value)
    return found


class Drawing:
    def __init__(self, seed):
        self.random = np.random.default_rng(seed)
        self.described = given_by_errors()

    def one_of(self, items):
        return items[self.random.integers(len(items))]

    def call(self):
        description = self.one_of(DESCRIPTIONS)
        form = self.one_of(description.forms)
        side = int(self.one_of([5, 8, 16, 48]))
        is_image = "2d" in description.name or self.random.random() < 0.2
        shape = (side, int(self.one_of([2, 4, 8]))) if is_image else (side,)
        return description, form, [self.argument(description.argument(name), shape) for name in form]

    def argument(self, argument, shape):
        kind = argument.type or argument.kind
        if self.random.random() < 0.06:
            if argument.name in self.described:
                return plain(self.one_of(self.described[argument.name]), argument)
            return plain(self.one_of([1.0, "text", np.arange(4.0)]), argument)
        if kind.endswith("function"):
            return self.one_of(list(FUNCTIONS))
        if kind == "table":
            level = self.random.integers(min(min(shape).bit_length(), 3))
            return undula.wpts(self.random.normal(size=shape), int(level), "haar")
        if argument.name == "wavelet":
            filters = [undula.daublet(4), undula.Bspline(2, 2)]
            return self.one_of(NAMES if self.random.random() < 0.6 else filters)
        if kind == "string":
            return self.one_of(["H", "V", "D", "X"])
        if argument.name in ("data", "subband"):
            return plain(self.random.normal(size=shape), argument)
        if kind == "array":
            return undula.create_level(int(self.random.integers(2)), len(shape))
        if argument.name in ("offsets", "flips"):
            return float(self.random.integers(2))
        return self.one_of(SCALARS) if self.random.random() < 0.08 else float(self.random.integers(2))


def plain(value, argument):
    """A value that both have: in Octave an array of one number is a number, and a row is a signal."""
    if isinstance(value, str):
        return value
    if isinstance(value, list) and value and all(np.ndim(part) for part in value) and argument.name == "table":
        return [np.asarray(part) for part in value]
    value = np.asarray(value)
    if value.size == 1:
        number = complex(value.ravel()[0])
        number = number if number.imag else number.real
        return np.array([number]) if argument.kind in ARRAY_LIKE else number
    is_signal = argument.name in ("data", "subband", "wavelet", "table") and value.shape[0] == 1
    return value.ravel() if is_signal else value


# What a call returns, as both programs write it


def shown(value, as_row):
    if isinstance(value, list):
        return " ".join([f"cells {len(value)}", *(shown(part, as_row) for part in value)])
    array = np.asarray(value)
    if array.dtype == object and all(np.size(part) == 1 for part in array.ravel()):
        array = np.vectorize(lambda part: np.ravel(part)[0])(array).astype(float)
    if array.dtype == object:
        parts = [shown(part, as_row) for part in array.ravel(order="F")]
        return " ".join([f"cells {array.size}", *parts])
    rows, cols = {0: (1, 1), 1: (array.size, 1)}.get(array.ndim, array.shape)
    if as_row and cols == 1 and array.ndim == 1:
        rows, cols = cols, rows
    text = f"{rows} x {cols} {bits(array.real)}"
    return f"{text} i {bits(array.imag)}" if np.iscomplexobj(array) else text


def bits(array):
    return np.asarray(array, ">f8").tobytes(order="F").hex()


def outcome(name, arguments, as_row):
    try:
        result = getattr(undula, name)(*(FUNCTIONS.get(part, part) if isinstance(part, str) else part
                                         for part in arguments))
    except undula.Error as error:
        return f"error {error}"
    except TypeError:
        return "error of another class"
    return shown(result, as_row)


# The calls, as Octave reads them


def source(value, as_row):
    if isinstance(value, str):
        return value if value.startswith("@") else f'"{value}"'
    if isinstance(value, list):
        return "{" + "; ".join(source(part, as_row) for part in value) + "}"
    array = np.asarray(value)
    text = f'fromhex("{bits(array.real)}")'
    if np.iscomplexobj(array) and np.any(array.imag != 0):
        text = f'complex({text}, fromhex("{bits(array.imag)}"))'
    rows, cols = {0: (1, 1), 1: (array.size, 1)}.get(array.ndim, array.shape)
    if as_row and array.ndim == 1:
        rows, cols = cols, rows
    return f"reshape({text}, {rows}, {cols})"


OCTAVE = """\
1;
function x = fromhex (text)
  x = hex2num (reshape (text, 16, numel (text) / 16)')';
endfunction
function text = hex (x)
  text = num2hex (x(:))'(:)';
endfunction
function text = shown (value)
  if (iscell (value))
    parts = cellfun (@shown, value(:)', "uniformoutput", false);
    text = strjoin ([{sprintf("cells %d", numel (value))}, parts], " ");
    return;
  endif
  text = sprintf ("%d x %d %s", rows (value), columns (value), hex (real (value)));
  if (iscomplex (value))
    text = [text " i " hex(imag (value))];
  endif
endfunction
function try_call (varargin)
  try
    printf ("%s\\n", shown (undula_call (varargin{:})));
  catch err
    if (strcmp (err.identifier, "Undula:no-such-value") || strncmp (err.identifier, "Octave:", 7))
      puts ("error of another class\\n");
    else
      printf ("error %s\\n", err.message);
    endif
  end_try_catch
endfunction
addpath ("@PACKAGE@");
"""


def octave_lines(calls, package):
    script = OCTAVE.replace("@PACKAGE@", str(Path(package).resolve())) + "\n".join(calls) + "\n"
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "calls.m"
        path.write_text(script)
        done = subprocess.run(["octave-cli", "--norc", path], stdout=subprocess.PIPE, text=True)
    return done.stdout.splitlines()


def main(package, count=500, seed=1):
    warnings.simplefilter("ignore")
    drawing = Drawing(seed)
    calls, expected = [], []
    for _ in range(count):
        description, form, arguments = drawing.call()
        leading = [part for name, part in zip(form, arguments) if name in ("data", "table")]
        signal = leading and not isinstance(leading[0], str)
        first = leading[0][0] if signal and isinstance(leading[0], list) else leading[0] if signal else 0
        as_row = bool(np.ndim(first) == 1 and np.size(first) != 1 and drawing.random.random() < 0.5)
        in_row = [as_row and name in ("data", "table", "subband") for name in form]
        texts = [source(part, row) for part, row in zip(arguments, in_row)]
        calls.append(f"try_call ({', '.join([repr(description.name), *texts])});")
        expected.append(outcome(description.name, arguments, as_row))
    got = octave_lines(calls, package)
    wrong = [place for place in range(count) if got[place : place + 1] != expected[place : place + 1]]
    for place in wrong[:10]:
        print(calls[place], "Python:", expected[place], "Octave:", *got[place : place + 1], "", sep="\n")
    errors = sum(line.startswith("error") for line in expected)
    print(f"{count} calls of seed {seed}, {errors} of them errors: {len(wrong)} differ")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], *map(int, sys.argv[2:])))
