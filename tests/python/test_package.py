"""The package as a thing that is installed, copied, typed and run."""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import undula
from undula import __main__ as program

PACKAGE = Path(undula.__file__).parent


def run(*command, path, cwd):
    environment = os.environ | {"PYTHONPATH": str(path)}
    return subprocess.run(command, cwd=cwd, env=environment, capture_output=True, text=True, timeout=120)


def test_a_copied_package_works_and_tells_about_itself(tmp_path):
    shutil.copytree(PACKAGE, tmp_path / "undula")
    done = run(sys.executable, "-m", "undula", path=tmp_path, cwd="/")
    assert (done.returncode, done.stderr) == (0, "")
    assert f"undula {undula.__version__}\nloaded from {tmp_path / 'undula'}\n" in done.stdout
    assert all(f"\n  {name} " in done.stdout for name in undula.__all__ if hasattr(undula, f"i{name}"))
    mapped = "import undula; print(open('/proc/self/maps').read())"
    maps = run(sys.executable, "-c", mapped, path=tmp_path, cwd="/").stdout
    libraries = set(re.findall(r"/\S*lib(?:undula|efihost)\.so", maps))
    assert {Path(library).parent for library in libraries} == {tmp_path / "undula" / "lib"}


def test_the_self_test_finds_what_does_not_hold(monkeypatch, capsys):
    monkeypatch.setattr(undula, "idwts", undula.dwts)
    assert program.main() == 1
    assert "FAILED: symmetric transform, Bspline24" in capsys.readouterr().out


def test_importing_loads_nothing_that_it_does_not_need():
    listed = "import sys, numpy; before = set(sys.modules); import undula; print(set(sys.modules) - before)"
    loaded = run(sys.executable, "-c", listed, path=PACKAGE.parent, cwd="/").stdout
    assert "undula._functions" in loaded
    assert not re.search(r"tomllib|matplotlib|scipy|dask", loaded)


USE = """
from typing import assert_type
import numpy as np
from numpy.typing import NDArray
import undula

Array = NDArray[np.float64]
x = np.ones(8)
assert_type(undula.dwt(x, level=1, wavelet="db2"), Array)
assert_type(undula.dwt([1, 2], 1, [0.7, 0.7], offsets=0, flips=None), Array)
assert_type(undula.father(0.5, "haar", shift=1), float)
assert_type(undula.father(0.5, 0, np.int64(1), x), float)
assert_type(undula.mother2d(0, 0, 0, 0, 0, "haar", "H"), float)
assert_type(undula.wpt(x, 2, "haar"), list[Array])
assert_type(undula.wpt(x, basis=undula.create_level(1, 1), wavelet="haar"), Array)
assert_type(undula.wpt(x, level=2, wavelet="haar"), list[Array])
assert_type(undula.denoise(x, "haar"), Array)
assert_type(undula.father(0.5, "haar"), float)
assert_type(undula.father(x, wavelet="haar"), Array)
assert_type(undula.waveterp(x, x, 0, 0, "haar"), Array)
assert_type(undula.wavelets()[0].names(), tuple[str, ...])
assert_type(undula.best_basis([x, x], abs), Array)
assert_type(undula.best_basis([x, x], "shannon"), Array)
undula.dwt(x, 1, filter=x)  # wrong
undula.dwt(x, "1", x)  # wrong
undula.father(0.5, 0, "haar")  # wrong
undula.cpt(x)  # wrong
"""


# What modules declare counts, not what their bodies do.
CONFIGURATION = """
[mypy]
ignore_missing_imports = True
[mypy-undula.*]
ignore_errors = True
[mypy-undula]
ignore_errors = False
[mypy-dask.*]
follow_imports = skip
"""


def test_types(tmp_path):
    """Those of functions with several ways of calling them cannot be compared, but only used."""
    (tmp_path / "mypy.ini").write_text(CONFIGURATION, encoding="utf-8")
    (tmp_path / "use.py").write_text(USE, encoding="utf-8")
    overloaded = re.findall(r"@overload\ndef (\w+)", (PACKAGE / "__init__.pyi").read_text(encoding="utf-8"))
    modules = "|".join(["_host", *(source.stem for source in PACKAGE.glob("*.py"))])
    allowed = {f"undula.{name}" for name in overloaded} | {rf"undula\.({modules})\..*"}  # those have no stubs
    (tmp_path / "allowed").write_text("\n".join(allowed), encoding="utf-8")
    path = {"path": PACKAGE.parent, "cwd": tmp_path}
    options = ["--allowlist", "allowed", "--ignore-unused-allowlist", "--mypy-config-file", "mypy.ini"]
    compared = run(sys.executable, "-m", "mypy.stubtest", "undula", *options, **path)
    assert compared.returncode == 0, compared.stdout + compared.stderr
    used = run(sys.executable, "-m", "mypy", "--strict", "--no-error-summary", "use.py", **path)
    wrong = [number for number, line in enumerate(USE.splitlines(), 1) if line.endswith("# wrong")]
    found = [int(number) for number in re.findall(r"^use.py:(\d+): error", used.stdout, re.M)]
    assert found == wrong, used.stdout
