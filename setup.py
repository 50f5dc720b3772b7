"""What `pip install` builds: CMake makes the package, setuptools packs it.

CMAKE_ARGS in the environment are further arguments for CMake, such as -DUNDULA_FFT=fftw.
"""

import importlib.util
import os
import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent
FOLDER = ROOT / "build" / "pip"


class BuildByCMake(build_ext):
    def run(self):
        # What a former build has found, such as the tools of pip's temporary environment, may be gone.
        subprocess.run(["cmake", "--fresh", "-S", ROOT, "-B", FOLDER, *options()], check=True)
        workers = str(os.cpu_count() or 1)
        subprocess.run(
            ["cmake", "--build", FOLDER, "--target", "undula_package", "--parallel", workers], check=True
        )
        # For `pip install --editable` what is made goes beside the sources.
        target = ROOT / "python" if self.inplace else Path(self.build_lib)
        made = FOLDER / "python" / "undula"
        shutil.copytree(made, target / "undula", ignore=shutil.ignore_patterns("*.py"), dirs_exist_ok=True)


def options():
    yield from ("-DCMAKE_BUILD_TYPE=Release", f"-DUNDULA_PYTHON_EXECUTABLE={sys.executable}")
    yield from ("-DUNDULA_TESTS=OFF", "-DUNDULA_BENCH=OFF", "-DUNDULA_OCTAVE=OFF")
    if shutil.which("ninja"):
        yield from ("-G", "Ninja")
    if importlib.util.find_spec("pybind11"):  # Debian's is CMake's alone
        import pybind11

        yield f"-Dpybind11_DIR={pybind11.get_cmake_dir()}"
    yield from shlex.split(os.environ.get("CMAKE_ARGS", ""))


def version():
    text = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(undula VERSION ([\d.]+)", text)[1]


# The extension has no sources here: CMake knows them.
setup(version=version(), cmdclass={"build_ext": BuildByCMake}, ext_modules=[Extension("undula._host", [])])
