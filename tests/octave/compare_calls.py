"""The same random calls through Python and Octave: equal bytes, and equal errors.

    python3 compare_calls.py OCTAVE_PACKAGE [CALLS [SEED]]

A signal goes to Octave as a row or as a column, and comes back as it went.
"""

import subprocess
import sys
import tempfile
import warnings
from pathlib import Path

import numpy as np
import undula
from random_calls import FUNCTIONS, Drawing, bits

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
