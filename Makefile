# make build         the libraries and the Python package, in build/
# make demo          remove noise from a real electrocardiogram; draws out/denoise_ecg.png
# make test          the C++ and the Python tests
# make install       the libraries and headers for C++, in PREFIX=/usr/local
# make wheel         what pip installs, in build/wheel/: the source distribution and the wheel, both tried
# make deb           packages for Debian, in build/deb/
# make octave        the package for GNU Octave, build/undula-VERSION.tar.gz
# make octave-test   the tests from Octave, beside Python
# make bench         time the kernels and transforms, also beside PyWavelets
# make accuracy      how exact the arithmetic is: the tables and the picture of docs/accuracy.md, in 15 minutes
# make reliability   what the tests make to fail, and how long a call goes on: the tables of docs/reliability.md
# make lint          check the formatting, the code with clang-tidy, and the share of tests
# make asan          the C++ tests under the address and undefined-behaviour sanitizers
# make coverage      the lines and branches that the tests reach: build/coverage/report/
# make fuzz          random calls of every function under the sanitizers, for SECONDS=60, from sequence FIRST=1 on
# make mutants       small faults in the pack, FAULTS=100, and those that no test notices; can be stopped and resumed
# make windows       the 32-bit Windows libraries, in build/windows/
# make windows-test  check them, and run the C++ tests as Windows programs under Wine
# make release-check the long checks before a release, FUZZ=1800 seconds of random calls among them
# make web           the page that computes in the browser, in build/web
# make web-test      its functions beside the native library, and the page in Chromium: pictures in build/web_pictures
# make site          the site with guide, functions and gallery, in build/site/html
# make site-check    open it in Chromium, check its links and take pictures, in build/site_pictures
# make clean         remove build/ and out/
#
# Each installs what is missing (Debian 12; root or sudo). Underneath is CMake: CMakePresets.json.
# Python is Debian's, or the one that the setting UNDULA_PYTHON_EXECUTABLE of build/ names.

SECONDS = 60
FIRST = 1
FAULTS = 100
FUZZ = 1800
PREFIX = /usr/local

.PHONY: help build demo test install wheel deb octave octave-test bench accuracy reliability lint asan coverage fuzz mutants \
        windows windows-test web web-test site site-check release-check clean

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

install:
	tools/install cpp
	cmake -B build/install -DCMAKE_INSTALL_PREFIX=$(PREFIX) \
		-DUNDULA_TESTS=OFF -DUNDULA_BENCH=OFF -DUNDULA_PYTHON=OFF -DUNDULA_OCTAVE=OFF
	cmake --build build/install --parallel
	cmake --install build/install

wheel:
	tools/install build wheel test
	tools/check_wheel

deb:
	tools/install build octave deb
	tools/make_deb

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

reliability:
	tools/install build bench
	cmake --preset release
	cmake --build --preset release --target reliability

lint:
	tools/install build lint web
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
	tools/fuzz build/fuzz $(FIRST) $(SECONDS)s

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

web:
	tools/install build web
	cmake --preset web
	cmake --build --preset web

web-test: build web
	tools/install chromium
	tools/test_web

site: web
	tools/install build site
	cmake --preset release
	cmake --build --preset release --target site

site-check: site
	tools/install chromium
	tools/photograph_site build/site/html build/site_pictures

release-check:
	tools/install build fftw test wheel octave demo lint libcxx fuzz windows wine web site chromium deb
	tools/release_check $(FUZZ)

clean:
	rm -rf build out
