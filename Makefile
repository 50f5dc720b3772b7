# make build         the libraries and the Python package, in build/
# make demo          remove noise from a real electrocardiogram; draws out/denoise_ecg.png
# make test          the C++ and the Python tests
# make octave        the package for GNU Octave, build/undula-VERSION.tar.gz
# make octave-test   the tests from Octave, beside Python
# make bench         time the kernels and transforms, also beside PyWavelets
# make accuracy      how exact the arithmetic is: the tables and the picture of docs/accuracy.md, in 15 minutes
# make lint          check the formatting, the code with clang-tidy, and the share of tests
# make asan          the C++ tests under the address and undefined-behaviour sanitizers
# make coverage      the lines and branches that the tests reach: build/coverage/report/
# make fuzz          random calls of every function, for SECONDS=60
# make mutants       small faults in the pack, FAULTS=100, and those that no test notices; can be stopped and resumed
# make windows       the 32-bit Windows libraries, in build/windows/
# make windows-test  check them, and run the C++ tests as Windows programs under Wine
# make release-check the long checks before a release, FUZZ=1800 seconds of random calls among them
# make clean         remove build/ and out/
#
# Each installs what is missing (Debian 12; root or sudo). Underneath is CMake: CMakePresets.json.
# Python is Debian's, or the one that the setting UNDULA_PYTHON_EXECUTABLE of build/ names.

SECONDS = 60
FAULTS = 100
FUZZ = 1800

.PHONY: help build demo test octave octave-test bench accuracy lint asan coverage fuzz mutants windows windows-test release-check clean

help:
	@sed -n 's/^# make/make/p' Makefile

build:
	tools/install build
	cmake --preset release
	cmake --build --preset release

demo:
	tools/install build demo
	cmake --preset release
	cmake --build --preset release --target demo

test:
	tools/install build test
	cmake --preset release
	cmake --build --preset release
	ctest --preset python
	ctest --preset release

octave:
	tools/install build octave
	cmake --preset release
	cmake --build --preset release --target undula_octave_tarball

octave-test:
	tools/install build octave
	cmake --preset release
	cmake --build --preset release
	ctest --preset octave

bench:
	tools/install build bench
	cmake --preset release
	cmake --build --preset release --target bench

accuracy:
	tools/install build demo
	cmake --preset release
	cmake --build --preset release --target accuracy

lint:
	tools/install build lint
	cmake --preset lint
	tools/lint build/lint

asan:
	tools/install build
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan

coverage:
	tools/install build test coverage
	cmake --preset coverage
	cmake --build --preset coverage
	find build/coverage -name '*.gcda' -delete
	ctest --preset coverage
	tools/coverage build/coverage

fuzz:
	tools/install build fuzz
	cmake --preset fuzz
	cmake --build --preset fuzz
	tools/fuzz build/fuzz $(SECONDS)

mutants:
	tools/install build test
	tools/mutants $(FAULTS)

windows:
	tools/install build windows
	cmake --preset windows
	cmake --build --preset windows

windows-test: build windows
	tools/install wine
	tools/test_windows

release-check:
	tools/install build fftw test octave demo lint fuzz windows wine
	tools/release_check $(FUZZ)

clean:
	rm -rf build out
