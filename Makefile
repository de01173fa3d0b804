# The two commands of the README: `make demo` and `make test`.
# Both install what is missing first (scripts/setup.sh).

BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
WIN_BUILD  ?= build-windows
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
CLI        := $(BUILD)/src/cli/vantoro-cli
DEMO_OUT   ?= demo-output

.PHONY: all setup build test test-main test-asan test-windows release-windows test-release-windows test-flightgear demo voices bench format clean screenshots

all: build

setup:
	@bash scripts/setup.sh

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTORO_WERROR=ON -DVANTORO_BENCH=OFF

build: setup $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

# The packs are rendered before the tests run: replays read the length of
# every phrase from its file, so a test must never see a half-built pack.
test-main: build voices
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

$(ASAN_BUILD)/CMakeCache.txt:
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DVANTORO_WERROR=ON \
	  -DVANTORO_SANITIZE=ON -DVANTORO_BENCH=OFF

# The core tests again under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan: setup voices $(ASAN_BUILD)/CMakeCache.txt
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 ctest --output-on-failure -j $(JOBS) -L core

# The Windows build takes its header-only libraries from Debian packages into
# $(WIN_BUILD)/deps (scripts/windows-deps.sh says what it fetched).
$(WIN_BUILD)/CMakeCache.txt:
	bash scripts/windows-deps.sh $(WIN_BUILD)
	cmake -S tests/wine -B $(WIN_BUILD) -DCMAKE_TOOLCHAIN_FILE=$(CURDIR)/cmake/mingw-w64.cmake \
	  -DCMAKE_BUILD_TYPE=Release -DVANTORO_WERROR=ON \
	  $(if $(shell command -v ccache),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

# The Windows program (vantoro.exe, vantoro-cli.exe) and the link,
# cross-built with mingw-w64 and tested under wine (on a virtual display, in
# a fresh wine prefix inside $(WIN_BUILD)) against the test offset server.
test-windows: setup $(WIN_BUILD)/CMakeCache.txt
	cmake --build $(WIN_BUILD) -j $(JOBS)
	bash scripts/wine-test.sh $(WIN_BUILD)

# $(WIN_BUILD)/release/Vantoro/ and Vantoro.zip: the two programs, the data
# with both voice packs, README-Windows.txt and the licences.
release-windows: setup build voices $(WIN_BUILD)/CMakeCache.txt
	cmake --build $(WIN_BUILD) -j $(JOBS) --target vantoro vantoro-cli
	bash scripts/release-windows.sh $(WIN_BUILD)

# The release as a pilot gets it: Vantoro.zip unpacked into a path with
# spaces, its vantoro.exe coaching the demo circuit that the test offset
# server plays, and writing the pilot's log. Not part of `make test`: the
# zip with its voice packs is over 200 MB.
test-release-windows: release-windows
	cmake --build $(WIN_BUILD) -j $(JOBS) --target program_test
	bash scripts/wine-test.sh $(WIN_BUILD) --release

test: test-main test-asan test-windows

# A real FlightGear take-off, recorded through the FlightGear link and replayed
# through the instructor. Not part of `make test`: Debian's FlightGear brings
# 1.3 GB of data (about 20 minutes to fetch and unpack here), and its first
# start builds a navigation cache for minutes more.
test-flightgear: build voices
	command -v /usr/games/fgfs >/dev/null || DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends flightgear xvfb
	cd $(BUILD) && VANTORO_FLIGHTGEAR=1 ctest --output-on-failure -R '^flightgear_flight$$'

# The instructors' voice packs, rendered from data/text/english.txt into
# data/Sound (files already up to date are skipped).
voices: build
	$(CLI) voices build --root data

demo: build voices
	rm -rf $(DEMO_OUT) && mkdir -p $(DEMO_OUT)
	$(CLI) replay data/Recordings/demo-c172-circuit.vrec --root data --out $(DEMO_OUT)
	@echo "The pilot's log files are in $(DEMO_OUT)/"

$(BENCH_BUILD)/CMakeCache.txt:
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DVANTORO_TESTS=OFF -DVANTORO_BENCH=ON

bench: setup $(BENCH_BUILD)/CMakeCache.txt
	cmake --build $(BENCH_BUILD) -j $(JOBS)
	@for b in $(BENCH_BUILD)/bench/bench_*; do echo "== $$b"; $$b --benchmark_min_time=0.2; done

# A picture of each page of the pilot's app (build/screenshots/*.png), taken
# in headless Chromium while the demo circuit flies.
screenshots: build voices
	/usr/bin/python3 tests/app/app_browser.py screenshots \
	  --host $(BUILD)/tests/app/vantoro-app-standin --source . --out $(BUILD)/screenshots

format:
	find src tests bench tools -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD) $(WIN_BUILD) $(DEMO_OUT)
